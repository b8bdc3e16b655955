// Query throughput of the composite horizontal curve and of the axis, single thread, against the sin + cos
// floor (see sin_cos_floor.h).
//
// The curve has 1,000 pieces end to end. Arg 0 of the curve benchmarks picks the mix: 0 the pieces of road
// alignments (segments, circle arcs, clothoid arcs), 1 the same with one piece in ten defined by a control
// polygon (clothoid splines and clamped-spline polylines). The axis adds a 100-piece elevation profile and a
// 50-piece banking profile over the same length.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <orvia/geometry/axis.h>
#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/clotho_arc.h>
#include <orvia/geometry/clothoid_spline.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/segment.h>
#include <orvia/ruvex/counted.h>
#include <orvia/vek/mark.h>

#include "geometry/axis_test_support.h"
#include "sin_cos_floor.h"

namespace {

constexpr int kPieces = 1000;

// A gently bent polygon leaving its start along +x (the first point and the first edge's direction are kept
// by the origin constraints).
std::vector<vek::Vector2> BentPolygon(std::mt19937& rng) {
    std::uniform_real_distribution<double> edge(15, 35), bend(-0.25, 0.25);
    std::vector<vek::Vector2> points = {{0, 0}, {edge(rng), 0}};
    double direction = 0;
    for (int j = 0; j < 2; ++j) {
        direction += bend(rng);
        points.push_back(points.back() + vek::Vector2(std::cos(direction), std::sin(direction)) * edge(rng));
    }
    return points;
}

// 1,000 tangent-continuous pieces of 8 to 40 m, |curvature| <= 0.02 /m, clothoids within the Cornu series'
// accurate range.
void FillMixedCurve(Orvia::Curve2D& curve, bool withPolygonPieces) {
    std::mt19937 rng(1234);
    std::uniform_real_distribution<double> length(8, 40), curvature(-0.02, 0.02), unit(0, 1);
    for (int i = 0; i < kPieces; ++i) {
        const double r = unit(rng);
        if (withPolygonPieces && r < 0.1) {
            if (r < 0.05) {
                auto* spline = new ClothoidSpline;
                spline->SetOriginConstraints(true, true);
                spline->SetControlPoints(BentPolygon(rng));
                curve.AddFunction(spline);
            } else {
                auto* polyline = new PolyLine(PolyLine::EType::ClampedSpline, true);
                polyline->SetControlPoints(BentPolygon(rng));
                curve.AddFunction(polyline);
            }
        } else if (r < 0.4) {
            curve.AddFunction(new Segment(length(rng)));
        } else if (r < 0.65) {
            curve.AddFunction(new CircleArc(length(rng), curvature(rng)));
        } else {
            double l = 0, k0 = 0, k1 = 0;
            do {
                l = length(rng);
                k0 = curvature(rng);
                k1 = curvature(rng);
            } while (!(std::fabs(k1 - k0) > 0 &&
                       0.5 * std::max(std::fabs(k0), std::fabs(k1)) * std::sqrt(2 * l / std::fabs(k1 - k0)) <=
                           2.5));
            curve.AddFunction(new ClothoArc(l, k0, k1));
        }
    }
    curve.SetOrigin({5000, -3000}, 0.4);
    curve.UpdateFunctionsFromStart();
}

Ruvex::CountedPtr<Orvia::Curve2D> MixedCurve(bool withPolygonPieces) {
    Ruvex::CountedPtr<Orvia::Curve2D> curve(new Orvia::Curve2D);
    FillMixedCurve(*curve, withPolygonPieces);
    return curve;
}

// An axis over the mixed curve with a rolling elevation profile and a banking profile: the tests' axis.
class BenchAxis : public axis_test::TestAxis {
public:
    BenchAxis() {
        FillMixedCurve(*GetXYCurve(), false);
        const double length = GetXYCurve()->GetLength();
        std::vector<Orvia::PtInCurve> elevation, banking;
        for (int i = 0; i <= 100; ++i)
            elevation.push_back({{length * i / 100, 100 + 8 * std::sin(i * 0.7)}, 0.03 * std::cos(i * 0.7)});
        for (int i = 0; i <= 50; ++i)
            banking.push_back({{length * i / 50, 0.04 * std::sin(i * 1.3)}, 0});
        GetSZCurve()->MakeFrom(elevation);
        GetBankingCurve()->MakeFrom(banking);
        Validate();
    }
};

void BM_Floor_SinCos(benchmark::State& state) {
    const std::vector<double> s = bench::ScrambledAbscissas(100);
    bench::RunAgainstFloor(state, [&](int i) { benchmark::DoNotOptimize(std::sin(s[i]) + std::cos(s[i])); });
}

// Arg 0: the mix; arg 1: the lateral offset (m).
void BM_Curve2D_GetPointData(benchmark::State& state) {
    const Ruvex::CountedPtr<Orvia::Curve2D> curve = MixedCurve(state.range(0) != 0);
    const std::vector<double> s = bench::ScrambledAbscissas(curve->GetLength());
    const double t = static_cast<double>(state.range(1));
    bench::RunAgainstFloor(state, [&](int i) {
        PointData pd;
        benchmark::DoNotOptimize(curve->GetPointData(s[i], t, pd));
        benchmark::DoNotOptimize(pd);
    });
}

// Points within 5 m of the curve; the search starts from a guess up to 2 m off (a caller's previous answer).
// Arg 0: the mix; arg 1: -log10 of the tolerance (m).
void BM_Curve2D_SearchNearestAbscissa(benchmark::State& state) {
    const Ruvex::CountedPtr<Orvia::Curve2D> curve = MixedCurve(state.range(0) != 0);
    const double tolerance = std::pow(10.0, -static_cast<double>(state.range(1)));
    std::mt19937 rng(99);
    std::uniform_real_distribution<double> along(0, curve->GetLength()), across(-5, 5), guess(-2, 2);
    std::vector<vek::Vector2> points(bench::kBatch);
    std::vector<double> starts(bench::kBatch);
    for (int i = 0; i < bench::kBatch; ++i) {
        const double s = along(rng);
        PointData pd;
        curve->GetPointData(s, across(rng), pd);
        points[i] = pd.position;
        starts[i] = s + guess(rng);
    }
    bench::RunAgainstFloor(state, [&](int i) {
        benchmark::DoNotOptimize(curve->SearchNearestAbscissa(points[i], starts[i], tolerance, 100));
    });
}

void BM_Axis_GetMark(benchmark::State& state) {
    BenchAxis axis;
    const std::vector<double> s = bench::ScrambledAbscissas(axis.GetXYLength());
    const double t = static_cast<double>(state.range(0)) * 0.5;
    bench::RunAgainstFloor(state, [&](int i) {
        vek::Mark mark;
        benchmark::DoNotOptimize(axis.GetMark(mark, s[i], t));
        benchmark::DoNotOptimize(mark);
    });
}

void BM_Axis_GetGeometricData(benchmark::State& state) {
    BenchAxis axis;
    const std::vector<double> s = bench::ScrambledAbscissas(axis.GetXYLength());
    const vek::Vector2 offset(static_cast<double>(state.range(0)) * 0.5, 0);
    bench::RunAgainstFloor(state, [&](int i) {
        vek::Vector2 position, tangent;
        double altitude, slope, curvature, vertical, banking;
        benchmark::DoNotOptimize(axis.GetGeometricData(s[i], offset, &position, &altitude, &tangent, &slope,
                                                       &curvature, &vertical, &banking));
        benchmark::DoNotOptimize(position);
        benchmark::DoNotOptimize(altitude);
    });
}

}  // namespace

BENCHMARK(BM_Floor_SinCos);
BENCHMARK(BM_Curve2D_GetPointData)->Args({0, 0})->Args({0, 2})->Args({1, 0});
BENCHMARK(BM_Curve2D_SearchNearestAbscissa)->Args({0, 3})->Args({0, 6})->Args({1, 3});
BENCHMARK(BM_Axis_GetMark)->Arg(0)->Arg(7);
BENCHMARK(BM_Axis_GetGeometricData)->Arg(0)->Arg(7);

// Sampling throughput of the curve pieces, single thread, against the sin + cos floor (see sin_cos_floor.h).

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/clotho_arc.h>
#include <orvia/geometry/clothoid_spline.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/polynomial_function.h>
#include <orvia/geometry/segment.h>
#include <orvia/ruvex/counted.h>

#include "sin_cos_floor.h"

namespace {

void SamplePiece(benchmark::State& state, const ParametricFunction& piece) {
    const std::vector<double> s = bench::ScrambledAbscissas(piece.GetLength());
    bench::RunAgainstFloor(state, [&](int i) {
        const PointData pd = piece.GetPointData(s[i]);
        benchmark::DoNotOptimize(pd);
    });
}

void BM_Floor_SinCos(benchmark::State& state) {
    const std::vector<double> s = bench::ScrambledAbscissas(100);
    bench::RunAgainstFloor(state, [&](int i) { benchmark::DoNotOptimize(std::sin(s[i]) + std::cos(s[i])); });
}

void BM_Segment(benchmark::State& state) {
    Ruvex::CountedPtr<Segment> piece(new Segment(100));
    piece->SetStartPosition({1000, 2000});
    piece->SetStartOrientation(0.7);
    SamplePiece(state, *piece);
}

void BM_CircleArc(benchmark::State& state) {
    Ruvex::CountedPtr<CircleArc> piece(new CircleArc(100, 0.01));
    piece->SetStartPosition({1000, 2000});
    piece->SetStartOrientation(0.7);
    SamplePiece(state, *piece);
}

// Arg: 0 a transition from a straight line (Cornu parameter 0 to 2.2), 1 one between two curves further along
// the spiral (Cornu parameter 2.8 to 3.0: the longest series), 2 one between two tight curves beyond the
// series' reach (Cornu parameter 6.3 to 6.7: integrated from nodes).
void BM_ClothoArc(benchmark::State& state) {
    const double shapes[3][3] = {{200, 0, 0.05}, {20, 0.056, 0.060}, {20, 0.28, 0.30}};
    const double* shape = shapes[state.range(0)];
    Ruvex::CountedPtr<ClothoArc> piece(new ClothoArc(shape[0], shape[1], shape[2]));
    piece->SetStartPosition({1000, 2000});
    piece->SetStartOrientation(0.7);
    SamplePiece(state, *piece);
}

void BM_PolyLine(benchmark::State& state) {
    const auto type = static_cast<PolyLine::EType>(state.range(0));
    Ruvex::CountedPtr<PolyLine> piece(new PolyLine(type, false));
    piece->SetControlPoints({{0, 0}, {30, 0}, {60, 10}, {80, 40}, {90, 80}, {120, 100}, {160, 100}});
    SamplePiece(state, *piece);
}

void BM_ClothoidSpline(benchmark::State& state) {
    Ruvex::CountedPtr<ClothoidSpline> piece(new ClothoidSpline);
    piece->SetControlPoints({{0, 0}, {50, 0}, {80, 40}, {140, 40}, {150, 100}, {200, 130}});
    SamplePiece(state, *piece);
}

void BM_PolynomialFunction_GetValue(benchmark::State& state) {
    const PolynomialFunction cubic({0, 10}, 0.02, {100, 12}, -0.01);
    const std::vector<double> s = bench::ScrambledAbscissas(100);
    bench::RunAgainstFloor(state, [&](int i) { benchmark::DoNotOptimize(cubic.GetValue(s[i])); });
}

}  // namespace

BENCHMARK(BM_Floor_SinCos);
BENCHMARK(BM_Segment);
BENCHMARK(BM_CircleArc);
BENCHMARK(BM_ClothoArc)->Arg(0)->Arg(1)->Arg(2);
BENCHMARK(BM_PolyLine)->Arg(0)->Arg(1)->Arg(2)->Arg(4);
BENCHMARK(BM_ClothoidSpline);
BENCHMARK(BM_PolynomialFunction_GetValue);

// Shared by the composite-curve and axis tests: a small concrete axis owning its three curves, a generator of
// mixed tangent-continuous curves, and a scope that runs with the library's factory installed.
#pragma once

#include <orvia/core/library.h>
#include <orvia/geometry/axis.h>
#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/clotho_arc.h>
#include <orvia/geometry/clothoid_spline.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/segment.h>
#include <orvia/ruvex/counted.h>
#include <orvia/ruvex/dom.h>
#include <orvia/ruvex/factory.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace axis_test {

// The smallest useful axis: it owns a horizontal curve, an elevation curve and a banking curve and caches
// the XY length when it validates.
class TestAxis : public Orvia::Axis {
public:
    TestAxis()
        : m_xy(new Orvia::Curve2D),
          m_sz(new Orvia::CartesianCurve("SZCurve")),
          m_banking(new Orvia::CartesianCurve("BankingCurve")) {}

    Orvia::Curve2D* GetXYCurve() const override { return m_xy.Get(); }
    Orvia::CartesianCurve* GetSZCurve() const override { return m_sz.Get(); }
    Orvia::CartesianCurve* GetBankingCurve() const override { return m_banking.Get(); }
    void UpdateCacheData() override {
        ++cacheUpdates;
        SetCachedXYLength(m_xy->GetLength());
        SetCachedTotalLength(m_xy->GetLength());
    }
    bool Validate() override {
        ++validations;
        if (!ValidateAxis()) return false;
        if (!IsXYLengthValid()) {
            m_xy->UpdateParametricFunctionVector();
            UpdateCacheData();
            SetXYLengthValid(true);
        }
        return true;
    }
    bool ValidateAxis() override {
        if (IsAxisValid()) return true;
        if (m_xy->GetFunctionCount() == 0) return false;
        m_xy->UpdateFunctionsFromStart();
        UpdateCacheData();
        SetAxisValid(true);
        SetXYLengthValid(true);
        return true;
    }
    void InvertAxis() override { InvertCurves(); }

    void DropBanking() { m_banking = nullptr; }
    using Orvia::Axis::IsAxisValid;
    using Orvia::Axis::IsXYLengthValid;
    using Orvia::Axis::SetBoundingMargin;

    int validations = 0;
    int cacheUpdates = 0;

private:
    Ruvex::CountedPtr<Orvia::Curve2D> m_xy;
    Ruvex::CountedPtr<Orvia::CartesianCurve> m_sz;
    Ruvex::CountedPtr<Orvia::CartesianCurve> m_banking;
};

// Runs with the library's factory installed (as a network load does), then puts the previous factory back.
class ScopedOrviaFactory {
public:
    ScopedOrviaFactory() : m_previous(Ruvex::GetFactory()) {
        Ruvex::SetFactory(nullptr);
        Orvia::Init(Ruvex::Encoding::GetMode());
    }
    ~ScopedOrviaFactory() { Ruvex::SetFactory(m_previous.Get()); }
    ScopedOrviaFactory(const ScopedOrviaFactory&) = delete;
    ScopedOrviaFactory& operator=(const ScopedOrviaFactory&) = delete;

private:
    Ruvex::CountedPtr<Ruvex::Factory> m_previous;
};

// Largest Cornu parameter of the generated clothoid arcs: there the series is within 4e-9 of the integrals.
inline constexpr double kMaxCornuParameter = 2.5;

// Appends `count` random pieces that join with a continuous heading: segments, circle arcs and clothoid arcs
// (|curvature| <= maxCurvature), plus, when `withPolygonPieces`, clothoid splines and clamped-spline
// polylines over gently bent control polygons. Then chains them from `origin`.
inline void AddMixedPieces(Orvia::Curve2D& curve, std::mt19937& rng, int count, double maxCurvature,
                           bool withPolygonPieces, const vek::Vector2& origin = {}, double heading = 0) {
    std::uniform_real_distribution<double> length(8, 40), curvature(-maxCurvature, maxCurvature);
    std::uniform_real_distribution<double> bend(-0.25, 0.25), edge(15, 35);
    std::uniform_int_distribution<int> kind(0, withPolygonPieces ? 4 : 2);
    for (int i = 0; i < count; ++i) {
        switch (kind(rng)) {
            case 0:
                curve.AddFunction(new Segment(length(rng)));
                break;
            case 1: {
                const double k = curvature(rng);
                curve.AddFunction(new CircleArc(length(rng), std::fabs(k) < 1e-3 ? 1e-3 : k));
                break;
            }
            case 2: {
                // Kept where the Cornu series is accurate: |t| = |k| a / 2 <= kMaxCornuParameter at both ends
                // (a = sqrt(2 length / |k1 - k0|)); nearly equal curvatures push t far out of range.
                double l = 0, k0 = 0, k1 = 0;
                do {
                    l = length(rng);
                    k0 = curvature(rng);
                    k1 = curvature(rng);
                } while (!(std::fabs(k1 - k0) > 0 && 0.5 * std::max(std::fabs(k0), std::fabs(k1)) *
                                                             std::sqrt(2 * l / std::fabs(k1 - k0)) <=
                                                         kMaxCornuParameter));
                curve.AddFunction(new ClothoArc(l, k0, k1));
                break;
            }
            default: {
                // A gently bent polygon leaving its start along +x.
                std::vector<vek::Vector2> points = {{0, 0}, {edge(rng), 0}};
                double direction = 0;
                for (int j = 0; j < 2; ++j) {
                    direction += bend(rng);
                    const double d = edge(rng);
                    points.push_back(points.back() +
                                     vek::Vector2(std::cos(direction), std::sin(direction)) * d);
                }
                if (kind(rng) % 2 == 0) {
                    auto* spline = new ClothoidSpline;
                    spline->SetOriginConstraints(true, true);
                    spline->SetControlPoints(points);
                    curve.AddFunction(spline);
                } else {
                    auto* polyline = new PolyLine(PolyLine::EType::ClampedSpline, true);
                    polyline->SetControlPoints(points);
                    curve.AddFunction(polyline);
                }
                break;
            }
        }
    }
    curve.GetFunction(0)->SetStartPosition(origin);
    curve.GetFunction(0)->SetStartOrientation(heading);
    curve.UpdateFunctionsFromStart();
}

}  // namespace axis_test

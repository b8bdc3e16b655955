// Shared by the composite-curve and axis tests: a small concrete axis owning its three curves, a generator of
// mixed tangent-continuous curves, and a scope that runs with the library's factory installed.
#pragma once

#include <orvia/core/library.h>
#include <orvia/core/orvia_factory.h>
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

// The smallest useful axis: it owns its curves, chains the horizontal pieces and caches the XY length when
// it validates.
class TestAxis : public Orvia::Axis {
public:
    Orvia::Curve2D* GetXYCurve() const override { return m_xy.Get(); }
    Orvia::CartesianCurve* GetSZCurve() const override { return m_sz.Get(); }
    Orvia::CartesianCurve* GetBankingCurve() const override { return m_banking.Get(); }
    void UpdateCacheData() override {
        SetCachedXYLength(m_xy->GetLength());
        SetCachedTotalLength(m_xy->GetLength());
    }
    bool Validate() override {
        ++validations;
        if (!ValidateAxis()) return false;
        if (!IsXYLengthValid()) UpdateCacheData();
        SetXYLengthValid(true);
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

private:
    Ruvex::CountedPtr<Orvia::Curve2D> m_xy{new Orvia::Curve2D};
    Ruvex::CountedPtr<Orvia::CartesianCurve> m_sz{new Orvia::CartesianCurve("SZCurve")};
    Ruvex::CountedPtr<Orvia::CartesianCurve> m_banking{new Orvia::CartesianCurve("BankingCurve")};
};

// Runs with the library's factory installed (as a network load does), then puts the previous factory back.
// The library's factory, except that the axis curve tags make runtime curves (as the owner of an axis does
// when it reads them), so that curves can be loaded on their own.
class ScopedOrviaFactory {
public:
    ScopedOrviaFactory() : m_previous(Ruvex::GetFactory()) {
        class CurveFactory : public Orvia::OrviaFactory {
        public:
            Ruvex::Element* Create(const std::string& tag) override {
                if (tag == "XYCurve") return new Orvia::Curve2D;
                if (tag == "SZCurve" || tag == "BankingCurve" || tag == "TrajectoryCurve")
                    return new Orvia::CartesianCurve(tag);
                return Orvia::OrviaFactory::Create(tag);
            }
        };
        Ruvex::SetFactory(new CurveFactory);
        Orvia::Init(Ruvex::Encoding::GetMode());
    }
    ~ScopedOrviaFactory() { Ruvex::SetFactory(m_previous.Get()); }
    ScopedOrviaFactory(const ScopedOrviaFactory&) = delete;
    ScopedOrviaFactory& operator=(const ScopedOrviaFactory&) = delete;

private:
    Ruvex::CountedPtr<Ruvex::Factory> m_previous;
};

// Appends `count` random pieces joined with a continuous heading, then chains them from origin: segments,
// circle arcs and clothoid arcs (|curvature| <= maxCurvature), clothoid splines and clamped-spline polylines
// over gently bent polygons. The clothoids keep their Cornu parameter |t| = |k| a / 2 (a = sqrt(2 length /
// |k1 - k0|)) within 2.5, where the series is accurate; nearly equal curvatures push t far out.
inline void AddMixedPieces(Orvia::Curve2D& curve, std::mt19937& rng, int count, double maxCurvature,
                           const vek::Vector2& origin, double heading) {
    std::uniform_real_distribution<double> length(8, 40), curvature(-maxCurvature, maxCurvature);
    std::uniform_real_distribution<double> bend(-0.25, 0.25), edge(15, 35);
    std::uniform_int_distribution<int> kind(0, 4);
    for (int i = 0; i < count; ++i) {
        const int k = kind(rng);
        if (k == 0) curve.AddFunction(new Segment(length(rng)));
        if (k == 1) {
            const double c = curvature(rng);
            curve.AddFunction(new CircleArc(length(rng), std::fabs(c) < 1e-3 ? 1e-3 : c));
        }
        if (k == 2) {
            double l = 0, k0 = 0, k1 = 0;
            do {
                l = length(rng), k0 = curvature(rng), k1 = curvature(rng);
            } while (!(0.5 * std::max(std::fabs(k0), std::fabs(k1)) * std::sqrt(2 * l / std::fabs(k1 - k0)) <=
                       2.5));
            curve.AddFunction(new ClothoArc(l, k0, k1));
        }
        if (k >= 3) {
            std::vector<vek::Vector2> points = {{0, 0}, {edge(rng), 0}};
            double direction = 0;
            for (int j = 0; j < 2; ++j) {
                direction += bend(rng);
                points.push_back(points.back() +
                                 vek::Vector2(std::cos(direction), std::sin(direction)) * edge(rng));
            }
            PolyLineCommonData* polygon = k == 3 ? static_cast<PolyLineCommonData*>(new ClothoidSpline)
                                                 : new PolyLine(PolyLine::EType::ClampedSpline, true);
            polygon->SetOriginConstraints(true, true);
            polygon->SetControlPoints(points);
            curve.AddFunction(polygon);
        }
    }
    curve.GetFunction(0)->SetStartPosition(origin);
    curve.GetFunction(0)->SetStartOrientation(heading);
    curve.UpdateFunctionsFromStart();
}

}  // namespace axis_test

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <orvia/ruvex/factory.h>
#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using Orvia::Curve2D;
using Ruvex::CountedPtr;

constexpr double kPi = vek::kPi;

PointData Sample(const Curve2D& curve, double s, double t = 0) {
    PointData pd;
    EXPECT_TRUE(curve.GetPointData(s, t, pd)) << s;
    return pd;
}

// 10 m along +x, a quarter turn left of radius 10 (centre (10, 10)), 5 m along +y: ends at (20, 15).
CountedPtr<Curve2D> LShape() {
    CountedPtr<Curve2D> curve(new Curve2D);
    curve->AddFunction(new Segment(10));
    curve->AddFunction(new CircleArc(5 * kPi, 0.1));
    curve->AddFunction(new Segment(5));
    curve->UpdateFunctionsFromStart();
    return curve;
}

// Tangential distance from p to the sample at s: zero at a foot, positive before it.
double FootResidual(const Curve2D& curve, const vek::Vector2& p, double s) {
    const PointData pd = Sample(curve, s);
    return (p - pd.position).dot(pd.GetTangent());
}

// The nearest point of the curve and its straight extensions by brute force: the nearest of samples every
// `step` (m) over [-margin, length + margin], then bisection on the tangential residual around it. Its
// distance.
double DenseNearest(const Curve2D& curve, const vek::Vector2& p, double margin, double step,
                    double& abscissa) {
    double bestDistance = INFINITY;
    for (double s = -margin; s <= curve.GetLength() + margin; s += step) {
        const double d = (Sample(curve, s).position - p).norm();
        if (d < bestDistance) bestDistance = d, abscissa = s;
    }
    double lo = abscissa - step, hi = abscissa + step;
    if (FootResidual(curve, p, lo) > 0 && FootResidual(curve, p, hi) < 0)
        for (int i = 0; i < 60; ++i) {
            const double mid = 0.5 * (lo + hi);
            (FootResidual(curve, p, mid) > 0 ? lo : hi) = mid;
        }
    abscissa = 0.5 * (lo + hi);
    return std::min(bestDistance, (Sample(curve, abscissa).position - p).norm());
}

}  // namespace

TEST(Curve2D, PieceLookupOnBoundaries) {
    CountedPtr<Curve2D> curve = LShape();
    const double arc = 5 * kPi, length = 15 + arc;
    // Both ends of the arc belong to it: the bisection meets the middle piece first.
    EXPECT_EQ(curve->GetFunctionIndexAt(10, 0, 3), 1u);
    EXPECT_EQ(curve->GetFunctionIndexAt(10 + arc, 0, 3), 1u);
    EXPECT_EQ(curve->GetFunctionIndexAt(10, 0, 1), 0u);
    EXPECT_EQ(curve->GetFunctionIndexAt(3, 2, 2), Curve2D::npos);
    double start = -1;
    EXPECT_EQ(curve->GetFunctionIndex(length + 1, start), Curve2D::npos);
    EXPECT_NEAR(start, length, 1e-12);
    EXPECT_EQ(curve->GetFunctionIndex(length + 1e-13, start), 2u);  // within the search tolerance
    EXPECT_EQ(curve->GetFunctionIndex(-3, start), 0u);
    EXPECT_EQ(Curve2D().GetFunctionIndex(0, start), Curve2D::npos);
}

TEST(Curve2D, SamplesOffsetsAndStraightExtensions) {
    CountedPtr<Curve2D> curve = LShape();
    const double length = curve->GetLength();
    PointData pd = Sample(*curve, 10 + 2.5 * kPi);  // half way round the arc
    EXPECT_TRUE(vek::isEqual(pd.position, {10 + 10 * std::sin(kPi / 4), 10 - 10 * std::cos(kPi / 4)}, 1e-12));
    EXPECT_NEAR(pd.heading, kPi / 4, 1e-12);
    pd = Sample(*curve, -5);
    EXPECT_TRUE(vek::isEqual(pd.position, {-5, 0}, 1e-15));
    EXPECT_EQ(pd.heading, 0);
    EXPECT_EQ(pd.curvature, 0);
    EXPECT_TRUE(vek::isEqual(Sample(*curve, 4, 2).position, {4, -2}, 1e-15));  // t > 0: right
    // Beyond the end along +y, curvature 0; 2 m to the right of +y is +x.
    pd = Sample(*curve, length + 3, 2);
    EXPECT_TRUE(vek::isEqual(pd.position, {22, 18}, 1e-12));
    EXPECT_NEAR(pd.heading, kPi / 2, 1e-12);
    EXPECT_EQ(pd.curvature, 0);
    // On the left-turning arc the right side is 11 m from the centre; the curvature stays the axis one.
    pd = Sample(*curve, 11.3, 1);
    EXPECT_NEAR((pd.position - vek::Vector2(10, 10)).norm(), 11, 1e-12);
    EXPECT_NEAR(pd.curvature, 0.1, 1e-15);
    // A heading beyond pi inside the curve comes back into (-pi, pi] on the extension.
    Curve2D turn;
    turn.AddFunction(new CircleArc(15 * kPi, 0.1));
    EXPECT_NEAR(Sample(turn, turn.GetLength()).heading, 1.5 * kPi, 1e-12);
    EXPECT_NEAR(Sample(turn, turn.GetLength() + 1).heading, -0.5 * kPi, 1e-12);
    pd = PointData({7, 7}, 1, 1);
    EXPECT_FALSE(Curve2D().GetPointData(0, 0, pd));
    EXPECT_EQ(pd.position, vek::Vector2(7, 7));
}

TEST(Curve2D, SetLengthCutsStretchesAndKeepsAMinimum) {
    CountedPtr<Curve2D> curve = LShape();
    curve->SetLength(12);  // inside the arc: the last segment goes
    ASSERT_EQ(curve->GetFunctionCount(), 2u);
    EXPECT_EQ(curve->GetFunctions().size(), 2u);
    EXPECT_NEAR(curve->GetFunction(1)->GetLength(), 2, 1e-12);
    curve->SetLength(30);  // the arc, now last, grows
    EXPECT_NEAR(curve->GetLength(), 30, 1e-12);
    EXPECT_NEAR(Sample(*curve, 30).heading, 2.0, 1e-12);
    curve->SetLength(0);
    ASSERT_EQ(curve->GetFunctionCount(), 1u);
    EXPECT_NEAR(curve->GetLength(), 0.01, 1e-15);
    // A clothoid at the end keeps its rate of change of curvature.
    Curve2D spiral;
    spiral.AddFunction(new Segment(5));
    spiral.AddFunction(new ClothoArc(10, 0, 0.1));
    spiral.SetLength(25);
    EXPECT_NEAR(Sample(spiral, 25).curvature, 0.2, 1e-12);
    spiral.SetLength(10);
    EXPECT_NEAR(Sample(spiral, 10).curvature, 0.05, 1e-12);
}

TEST(Curve2D, SearchNearestAbscissaEdgeCases) {
    CountedPtr<Curve2D> curve = LShape();
    const double length = curve->GetLength(), target = 10 + 3 * kPi;
    EXPECT_NEAR(curve->SearchNearestAbscissa(Sample(*curve, target, 4).position, target - 2, 1e-9, 200),
                target, 1e-8);
    EXPECT_NEAR(curve->SearchNearestAbscissa({-3, 1}, 1, 1e-9, 200), -3, 1e-8);  // on the extensions
    EXPECT_NEAR(curve->SearchNearestAbscissa({19, 18}, length - 1, 1e-9, 200), length + 3, 1e-8);
    // A start outside [-0.2, 1.2] of the length is replaced by 0: one step from there, none allowed after.
    Curve2D line;
    line.AddFunction(new Segment(10));
    EXPECT_NEAR(line.SearchNearestAbscissa({4, 1}, 11.5, 1e-9, 0), 11.5 + 0.5 * (4 - 11.5), 1e-12);
    EXPECT_NEAR(line.SearchNearestAbscissa({4, 1}, 12.5, 1e-9, 0), 2, 1e-12);
    EXPECT_NEAR(line.SearchNearestAbscissa({4, 1}, -1.9, 1e-9, 0), -1.9 + 0.5 * 5.9, 1e-12);
    EXPECT_NEAR(line.SearchNearestAbscissa({4, 1}, -2.1, 1e-9, 0), 2, 1e-12);
    // A step leaving [-L, 2L] restarts from 0, every time, and the steps never settle: the safeguarded
    // search finds the foot on the extension. Within 2L the steps reach it themselves.
    EXPECT_NEAR(line.SearchNearestAbscissa({100, 0}, 5, 1e-6, 50), 100, 1e-6);
    EXPECT_NEAR(line.SearchNearestAbscissa({25, 0}, 5, 1e-9, 200), 25, 1e-9);
    EXPECT_NEAR(line.SearchNearestAbscissa({18, 0}, 5, 1e-9, 200), 18, 1e-8);
}

TEST(Curve2D, SearchNearestAbscissaFindsTheTrueFoot) {
    std::mt19937 rng(20240611);
    Curve2D curve;
    axis_test::AddMixedPieces(curve, rng, 24, 0.06, {100, -40}, 0.7);
    const double length = curve.GetLength();
    std::uniform_real_distribution<double> along(0, length), across(-5, 5);
    for (int i = 0; i < 1000; ++i) {
        const vek::Vector2 p = Sample(curve, along(rng), across(rng)).position;
        // A caller's first guess: the nearest sample of a 2 m grid.
        double start = 0, startDistance = INFINITY;
        for (double g = 0; g <= length; g += 2) {
            const double d = (Sample(curve, g).position - p).squaredNorm();
            if (d < startDistance) startDistance = d, start = g;
        }
        // The stopping test measures the last step, about half the remaining error (less than twice it
        // here): a tolerance ten times finer than the accuracy wanted.
        double expected = 0;
        DenseNearest(curve, p, 20, 0.25, expected);
        const double error = std::fabs(curve.SearchNearestAbscissa(p, start, 1e-7, 1000) - expected);
        EXPECT_LT(error, 1e-6) << "point " << i;
    }
}

// Where the damped steps do not settle, the answer is the nearest point, checked against dense sampling. Far
// outside a bend the steps used to cycle between two abscissas, near its centre to stall, and the search
// returned wherever they stopped, tens of metres off.
TEST(Curve2D, SearchNearestAbscissaFallsBackWhereTheStepsFail) {
    CountedPtr<Curve2D> curve = LShape();
    const vek::Vector2 centre(10, 10);
    struct Case {
        vek::Vector2 p;
        double s0;
    };
    const vek::Vector2 outward = vek::Vector2(1, -1).normalized();
    const Case cases[] = {// Three to ten radii outside the bend, starting on the arc.
                          {centre + outward * 40, 10 + 2.5 * kPi},
                          {centre + outward * 55, 12},
                          {centre + outward * 100, 24},
                          {centre + vek::Vector2(0.5, -1) * 60, 11},
                          // Near the centre of curvature, starting a quarter of the arc away from the foot.
                          {centre + vek::Vector2(0.3, -0.2), 11},
                          {centre + vek::Vector2(-0.05, -0.4), 10 + 4.5 * kPi},
                          {centre + vek::Vector2(0.02, -0.03), 10 + 0.5 * kPi}};
    for (const Case& c : cases) {
        double expected = 0;
        const double nearest = DenseNearest(*curve, c.p, 150, 0.005, expected);
        for (int iterations : {3, 100}) {
            const double found = curve->SearchNearestAbscissa(c.p, c.s0, 1e-7, iterations);
            EXPECT_NEAR((Sample(*curve, found).position - c.p).norm(), nearest, 1e-9)
                << c.p.x << " " << c.p.y;
            // The foot is unique for these points, though ill-conditioned near the centre.
            EXPECT_NEAR(found, expected, (c.p - centre).norm() < 1 ? 1e-3 : 1e-6) << c.p.x << " " << c.p.y;
        }
    }
    // Bends of every kind, points anywhere within 200 m, starts anywhere: never farther than the nearest.
    std::mt19937 rng(77);
    Curve2D mixed;
    axis_test::AddMixedPieces(mixed, rng, 12, 0.08, {0, 0}, 1.2);
    std::uniform_real_distribution<double> coordinate(-200, 200), start(-0.5, 1.5);
    for (int i = 0; i < 40; ++i) {
        const vek::Vector2 p(coordinate(rng), coordinate(rng));
        double expected = 0;
        const double nearest = DenseNearest(mixed, p, 300, 0.05, expected);
        const double found = mixed.SearchNearestAbscissa(p, start(rng) * mixed.GetLength(), 1e-7, 50);
        EXPECT_LT((Sample(mixed, found).position - p).norm(), nearest + 1e-9) << i;
    }
    // A point that is not finite has no nearest abscissa; NaN as a start is one outside the length (0).
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(curve->SearchNearestAbscissa({nan, 3}, 5, 1e-6, 20)));
    EXPECT_TRUE(std::isnan(curve->SearchNearestAbscissa({1, INFINITY}, 5, 1e-6, 20)));
    EXPECT_NEAR(curve->SearchNearestAbscissa({4, 0.5}, nan, 1e-9, 100), 4, 1e-8);
    EXPECT_EQ(Curve2D().SearchNearestAbscissa({nan, 3}, 5, 1e-6, 20), 5);
}

TEST(Curve2D, ComputeAbscissaDistOnTheExtensions) {
    CountedPtr<Curve2D> curve = LShape();
    double s = 0, d = 0;
    ASSERT_TRUE(curve->ComputeAbscissaDistBefore({-3, 2}, s, d));
    EXPECT_TRUE(vek::isEqual({s, d}, {-3, -2}, 1e-15));  // left of +x
    EXPECT_FALSE(curve->ComputeAbscissaDistBefore({1, 0}, s, d));
    ASSERT_TRUE(curve->ComputeAbscissaDistAfter({19, 18}, s, d));
    EXPECT_TRUE(vek::isEqual({s, d}, {curve->GetLength() + 3, -1}, 1e-12));  // travelling +y, x = 19 is left
    ASSERT_TRUE(curve->ComputeAbscissaDistAfter({23, 15}, s, d));
    EXPECT_NEAR(d, 3, 1e-12);
    EXPECT_FALSE(curve->ComputeAbscissaDistAfter({20, 14}, s, d));
}

TEST(Curve2D, InvertTwiceRestores) {
    std::mt19937 rng(7);
    Curve2D curve;
    axis_test::AddMixedPieces(curve, rng, 30, 0.08, {-20, 35}, -2.5);
    const double length = curve.GetLength();
    Curve2D copy(curve);
    copy.Invert();
    EXPECT_NEAR(copy.GetLength(), length, 1e-9);
    for (int i = 0; i <= 400; ++i)
        EXPECT_TRUE(vek::isEqual(Sample(copy, length * (400 - i) / 400).position,
                                 Sample(curve, length * i / 400).position, 1e-9))
            << i;
    copy.Invert();
    for (int i = 0; i <= 400; ++i) {
        const PointData a = Sample(copy, length * i / 400), b = Sample(curve, length * i / 400);
        EXPECT_TRUE(vek::isEqual(a.position, b.position, 1e-9)) << i;
        EXPECT_NEAR(vek::normalizeAngle(a.heading - b.heading), 0, 1e-9) << i;
    }
}

TEST(Curve2D, EditsKeepTheListAndTheTableInStep) {
    Curve2D curve;
    EXPECT_FALSE(curve.AddFunction(nullptr));
    CountedPtr<ParametricFunction> a(new Segment(10)), b(new CircleArc(5, 0.1)), c(new Segment(3));
    curve.AddFunction(a.Get());
    curve.InsertFunction(c.Get(), Curve2D::npos);
    curve.InsertFunction(b.Get(), 1);
    EXPECT_EQ(a->GetElement()->GetRefCount(), 2u);
    EXPECT_EQ(curve.GetFunctions()[1].Get(), b->GetElement());
    EXPECT_EQ(curve.GetFunctionIndex(c.Get()), 2u);
    ASSERT_TRUE(curve.SplitFunction(0, 0.25));
    ASSERT_EQ(curve.GetFunctionCount(), 4u);
    EXPECT_TRUE(vek::isEqual(curve.GetFunction(1)->GetStartPosition(), {2.5, 0}, 1e-15));
    EXPECT_NEAR(curve.GetLength(), 18, 1e-15);
    EXPECT_FALSE(curve.SplitFunction(0, 1));
    EXPECT_TRUE(curve.RemoveFunction(2));  // the arc
    EXPECT_EQ(b->GetElement()->GetRefCount(), 1u);
    EXPECT_TRUE(curve.RemoveFunction(1, 99));
    EXPECT_EQ(curve.GetFunctions().size(), 1u);
    EXPECT_FALSE(curve.RemoveFunction(1));
    // A length changed behind the curve's back is seen once the table is rebuilt.
    curve.GetFunction(0)->SetLength(4);
    EXPECT_NEAR(curve.GetLength(), 2.5, 1e-15);
    curve.UpdateParametricFunctionVector();
    EXPECT_NEAR(curve.GetLength(), 4, 1e-15);
    curve.Clear();
    EXPECT_EQ(curve.GetLength(), 0);
    EXPECT_EQ(a->GetElement()->GetRefCount(), 1u);
}

TEST(Curve2D, OriginCopyEqualityAndBox) {
    CountedPtr<Curve2D> curve = LShape();
    curve->SetOrigin({100, 50}, kPi / 2);  // turned a quarter left: +x becomes +y
    EXPECT_TRUE(vek::isEqual(Sample(*curve, curve->GetLength()).position, {85, 70}, 1e-12));
    const vek::Box2 box = curve->GetBoundingBox();
    for (int i = 0; i <= 50; ++i)
        EXPECT_TRUE(box.contains(Sample(*curve, curve->GetLength() * i / 50).position)) << i;
    EXPECT_LT(box.max.x, 100.5);
    Curve2D copy;
    copy.CopyFrom(curve.Get());
    EXPECT_TRUE(copy.IsEqual(curve.Get()));
    EXPECT_NE(copy.GetFunction(0), curve->GetFunction(0));  // deep
    copy.GetFunction(1)->SetLength(3);
    EXPECT_FALSE(copy.IsEqual(curve.Get()));
    copy.RemoveFunction(0);
    EXPECT_FALSE(copy.IsEqual(curve.Get()));
    EXPECT_TRUE(Curve2D().GetBoundingBox().isEmpty());
}

TEST(Curve2D, LoadPlacesAndConstrainsPiecesAndSavesTheOrigin) {
    axis_test::ScopedOrviaFactory factory;
    const char* text = R"(<?xml version="1.0" encoding="UTF-8"?>
<Ruvex version="2.5" versionRevision="0">
  <XYCurve x="10" y="20" orientation="1.5707963267948966">
    <Segment length="10"/>
    <CircleArc length="15.707963267948966" curvature="-0.1"/>
    <PolyLine type="0" points="3 4 13 4 13 14"/>
    <ClothoidSpline threshold="0.75" points="5 5 25 9 45 6"/>
    <ClothoArc length="20" startCurvature="0" endCurvature="0.05"/>
  </XYCurve>
</Ruvex>)";
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text, true));
    auto* curve = dynamic_cast<Curve2D*>(root.Get());
    ASSERT_TRUE(curve);
    ASSERT_EQ(curve->GetFunctionCount(), 5u);
    // Placed from the file's origin heading +y; the right quarter turn then heads +x.
    EXPECT_TRUE(vek::isEqual(Sample(*curve, 10).position, {10, 30}, 1e-12));
    EXPECT_TRUE(vek::isEqual(Sample(*curve, 10 + 5 * kPi).position, {20, 40}, 1e-12));
    // The polyline's first point is moved to its origin; the spline's second point onto its x axis.
    EXPECT_EQ(dynamic_cast<PolyLine*>(curve->GetFunction(2))->GetControlPoint(0), vek::Vector2(0, 0));
    EXPECT_EQ(dynamic_cast<ClothoidSpline*>(curve->GetFunction(3))->GetControlPoint(1), vek::Vector2(25, 0));
    for (size_t i = 1; i < 5; ++i) {
        const ParametricFunction* before = curve->GetFunction(i - 1);
        EXPECT_TRUE(vek::isEqual(curve->GetFunction(i)->GetStartPosition(),
                                 before->GetPointData(before->GetLength()).position, 1e-9))
            << i;
    }
    // Saved with the current origin; read back it samples the same and saves the same text.
    curve->SetOrigin({-5, 7}, 0.25);
    const std::string saved = Ruvex::SaveToString(curve);
    EXPECT_NE(saved.find("x=\"-5\""), std::string::npos) << saved;
    EXPECT_NE(saved.find("orientation=\"0.25\""), std::string::npos) << saved;
    CountedPtr<Ruvex::Element> again(Ruvex::Load(saved.c_str(), true));
    auto* reloaded = dynamic_cast<Curve2D*>(again.Get());
    ASSERT_TRUE(reloaded && reloaded->IsEqual(curve));
    for (double s = 0; s <= curve->GetLength(); s += 2)
        EXPECT_TRUE(vek::isEqual(Sample(*reloaded, s).position, Sample(*curve, s).position, 1e-9)) << s;
    EXPECT_EQ(Ruvex::SaveToString(reloaded), saved);
}

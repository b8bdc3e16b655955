#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include <orvia/geometry/curve2d.h>
#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

// Arc length of the graph of f over [u0, u1] by Simpson's rule on 20000 intervals.
double GraphLength(const BaseFunc& f, double u0, double u1) {
    constexpr int kIntervals = 20000;
    const double h = (u1 - u0) / kIntervals;
    double sum = 0;
    for (int i = 0; i <= kIntervals; ++i) {
        const double w = (i == 0 || i == kIntervals) ? 1 : (i % 2 ? 4 : 2);
        sum += w * std::hypot(1.0, f.EvalDf(u0 + i * h));
    }
    return sum * h / 3;
}

}  // namespace

TEST(BaseFunc, HermiteFitAndDerivatives) {
    BaseFunc f;
    f.Estimate(2, 1, 3, -0.5, 2);
    EXPECT_TRUE(vek::isEqual(vek::Vector2(f.Eval(-2), f.Eval(2)), {1, 3}, 1e-14));
    EXPECT_TRUE(vek::isEqual(vek::Vector2(f.EvalDf(-2), f.EvalDf(2)), {-0.5, 2}, 1e-14));
    // Derivatives against central differences.
    for (double u : {-1.5, 0.0, 0.7}) {
        EXPECT_NEAR(f.EvalDf(u), (f.Eval(u + 1e-5) - f.Eval(u - 1e-5)) / 2e-5, 1e-8);
        EXPECT_NEAR(f.EvalDf2(u), (f.EvalDf(u + 1e-5) - f.EvalDf(u - 1e-5)) / 2e-5, 1e-8);
    }
    BaseFunc derivative, combination, line;
    derivative.SetAsDf(f);
    EXPECT_NEAR(derivative.Eval(0.7), f.EvalDf(0.7), 1e-14);
    line.SetAsLine(1, 2);
    combination.SetAsLinearCombi(2, f, -3, line);
    EXPECT_NEAR(combination.Eval(1.1), 2 * f.Eval(1.1) - 3 * (1 + 2 * 1.1), 1e-13);
    // A zero-width interval gives the zero function.
    f.Estimate(1e-13, 1, 3, 0, 0);
    EXPECT_EQ(f.GetCoefficients(), (std::array<double, 4>{0, 0, 0, 0}));
}

TEST(BaseFunc, CurveLengthAndChordApproximation) {
    BaseFunc f(1, 0.3, -0.02, 0.001);
    const double exact = GraphLength(f, -20, 30);
    EXPECT_NEAR(f.CurveLen(-20, 30, 0.5, 1.0), exact, 1e-4 * exact);
    EXPECT_NEAR(f.CurveLen(30, -20, 0.5, 1.0), -f.CurveLen(-20, 30, 0.5, 1.0), 1e-12);
    EXPECT_EQ(f.CurveLen(5, 5, 0.5, 1.0), 0);
    // Finer tolerances approach the true length.
    EXPECT_NEAR(f.CurveLen(-20, 30, 1e-6, 1.0), exact, 1e-8 * exact);

    std::vector<double> cuts;
    f.LinearApprox(-20, 30, 0.01, 4, cuts);
    ASSERT_FALSE(cuts.empty());
    double previous = -20;
    cuts.push_back(30);
    for (double u : cuts) {
        EXPECT_GT(u, previous);
        EXPECT_LE(u - previous, 4 + 1e-12);
        EXPECT_LE(f.ChordError(previous, u), 0.01);
        previous = u;
    }
    f.UniformLinearApprox(-20, 30, 0.01, cuts);
    ASSERT_GE(cuts.size(), 2u);
    const double step = cuts[1] - cuts[0];
    EXPECT_LE(f.ChordError(-20, -20 + step), 0.01);
    EXPECT_NEAR(cuts[0] + 20, step, 1e-9);

    // A range no file means, with a bend that wants points everywhere: the answer stays bounded.
    BaseFunc wild(0, 0, 1e-3, 1e-6);
    wild.LinearApprox(-7e92, 7e92, 0.01, 1.0, cuts);
    EXPECT_LE(cuts.size(), BaseFunc::kMaxPoints);
    EXPECT_FALSE(cuts.empty());
}

TEST(BaseFunc, RootsExtremaAndImage) {
    BaseFunc f(0, -1, 0, 1);  // u^3 - u: roots -1, 0, 1, extrema at +-1/sqrt(3)
    std::array<double, 3> zeros{};
    ASSERT_EQ(f.Zeros(-2, 2, zeros), 3);
    EXPECT_TRUE(vek::isEqual(vek::Vector3(zeros[0], zeros[1], zeros[2]), {-1, 0, 1}, 1e-14));
    EXPECT_EQ(f.Zeros(0.5, 2, zeros), 1);
    EXPECT_EQ(f.Zeros(1.5, 2, zeros), 0);
    std::array<double, 2> extrema{};
    ASSERT_EQ(f.Extrema(-2, 2, extrema), 2);
    EXPECT_TRUE(
        vek::isEqual(vek::Vector2(extrema[0], extrema[1]), {-1 / std::sqrt(3.0), 1 / std::sqrt(3.0)}, 1e-14));
    double lo = 0, hi = 0;
    f.ComputeIntervalImage(lo, hi, -1, 1);
    EXPECT_TRUE(
        vek::isEqual(vek::Vector2(lo, hi), {-2 / (3 * std::sqrt(3.0)), 2 / (3 * std::sqrt(3.0))}, 1e-14));
    double inflexion = 9;
    ASSERT_TRUE(f.GetCurvatureInflexionAbscissia(inflexion));
    EXPECT_EQ(inflexion, 0);
    BaseFunc parabola(0, 0, 1, 0);
    EXPECT_FALSE(parabola.GetCurvatureInflexionAbscissia(inflexion));
    // The sharpest bend of u^2 is at its vertex, curvature 2.
    double where = 9;
    EXPECT_NEAR(parabola.MaxCurvature(-3, 2, where), 2, 1e-9);
    EXPECT_NEAR(where, 0, 1e-6);
    // Crossings of u^3 - u with the line y = u: u^3 = 2u.
    BaseFunc line;
    line.SetAsLine(0, 1);
    ASSERT_EQ(BaseFunc::Crosses(f, line, -3, 3, zeros), 3);
    EXPECT_TRUE(vek::isEqual(vek::Vector3(zeros[0], zeros[1], zeros[2]), {-std::sqrt(2.0), 0, std::sqrt(2.0)},
                             1e-14));
    EXPECT_EQ(BaseFunc().Zeros(-1, 1, zeros), 0);
}

TEST(PolynomialFunction, HermiteCubicOnItsInterval) {
    PolynomialFunction p({10, 2}, 0.1, {30, 5}, -0.2);
    EXPECT_NEAR(p.GetValue(10), 2, 1e-13);
    EXPECT_NEAR(p.GetValue(30), 5, 1e-13);
    EXPECT_NEAR(p.GetDerivative(10), 0.1, 1e-14);
    EXPECT_NEAR(p.GetDerivative(30), -0.2, 1e-14);
    EXPECT_NEAR(p.GetSlope(30), std::atan(-0.2), 1e-14);
    // The same cubic in (x - xIn).
    double a, b, c, d;
    p.getCoefficients(a, b, c, d);
    for (double x : {10.0, 17.5, 30.0, 35.0}) {
        const double u = x - 10;
        EXPECT_NEAR(a + u * (b + u * (c + u * d)), p.GetValue(x), 1e-12) << x;
    }
    // Chords at most 1 m apart: the length is short by a few parts in 1e5.
    const double exact = GraphLength(p.GetBaseFunc(), -10, 10);
    EXPECT_NEAR(p.GetCurveLength(10, 30), exact, 1e-4 * exact);
    EXPECT_LE(p.GetCurveLength(10, 30), exact);
    EXPECT_NEAR(p.GetCurveLength(30, 10), -p.GetCurveLength(10, 30), 1e-12);
    const vek::Box2 box = p.GetBoundingBox();
    EXPECT_EQ(box.min.x, 10);
    EXPECT_EQ(box.max.x, 30);
    for (double x = 10; x <= 30; x += 0.25)
        EXPECT_TRUE(box.contains({x, p.GetValue(x)})) << x;
    EXPECT_GT(box.max.y, 5);  // the cubic rises above its end values

    p.SetLinear({0, 1}, {4, 3});
    EXPECT_EQ(p.GetDerivativeIn(), 0.5);
    EXPECT_EQ(p.GetDerivativeOut(), 0.5);
    EXPECT_NEAR(p.GetValue(2), 2, 1e-15);
    EXPECT_NEAR(p.GetCurvature(2), 0, 1e-15);
    p.SetLinear({4, 1}, {0, 3});  // reversed interval: slope 0
    EXPECT_EQ(p.GetDerivativeIn(), 0);
    EXPECT_EQ(PolynomialFunction().GetValue(5), 0);
}

TEST(PolynomialFunction, CircleSegmentCircleJoinsTheEnds) {
    const PolynomialFunction cases[] = {
        PolynomialFunction({0, 0}, 0, {100, 4}, 0),        // S-shaped ramp
        PolynomialFunction({0, 0}, 0.05, {80, 0}, -0.05),  // crest
        PolynomialFunction({-20, 3}, -0.1, {40, 1}, 0.2),  // sag
    };
    for (const PolynomialFunction& p : cases) {
        PolynomialFunction::CircleSegmentCircle csc;
        ASSERT_TRUE(p.DecomposeToCircleSegmentCircle(csc));
        Orvia::Curve2D chain;
        chain.AddFunction(new CircleArc(csc.length1, csc.curvature1));
        chain.AddFunction(new Segment(csc.segmentLength));
        chain.AddFunction(new CircleArc(csc.length2, csc.curvature2));
        chain.SetOrigin(p.GetPosIn(), std::atan(p.GetDerivativeIn()));
        chain.UpdateFunctionsFromStart();  // SetOrigin skips a first piece already in place
        PointData end;
        ASSERT_TRUE(chain.GetPointData(chain.GetLength(), 0, end));
        EXPECT_LT((end.position - p.GetPosOut()).norm(), 1e-9);
        EXPECT_NEAR(vek::normalizeAngle(end.heading - std::atan(p.GetDerivativeOut())), 0, 1e-9);
        // No longer than the graph itself, which bends no more sharply than the circles.
        EXPECT_LE(chain.GetLength(), p.GetCurveLength(p.GetXMin(), p.GetXMax()) + 1e-3);
    }
    PolynomialFunction::CircleSegmentCircle csc;
    ASSERT_TRUE(PolynomialFunction({0, 0}, 0.5, {10, 5}, 0.5).DecomposeToCircleSegmentCircle(csc));
    EXPECT_EQ(csc.length1 + csc.length2, 0);  // a straight graph: the segment alone
    EXPECT_NEAR(csc.segmentLength, std::hypot(10, 5), 1e-12);
    EXPECT_FALSE(PolynomialFunction().DecomposeToCircleSegmentCircle(csc));
}

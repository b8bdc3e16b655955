#include <orvia/vek/math.h>
#include <orvia/vek/trajectory.h>

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace {

using vek::kPi;
using vek::Trajectory;
using vek::Vector2;

// Independent arc length: composite Simpson on |dP/du| with many samples.
double simpsonLength(const Trajectory& c, int intervals = 20000) {
    const double h = 1.0 / intervals;
    double sum = c.derivative(0).norm() + c.derivative(1).norm();
    for (int i = 1; i < intervals; ++i)
        sum += (i % 2 ? 4 : 2) * c.derivative(i * h).norm();
    return sum * h / 3;
}

std::vector<Vector2> arcPoints(double radius, double a0, double a1, int count) {
    std::vector<Vector2> pts;
    for (int i = 0; i < count; ++i) {
        const double a = a0 + (a1 - a0) * i / (count - 1);
        pts.push_back({radius * std::cos(a), radius * std::sin(a)});
    }
    return pts;
}

// Chord-length parameter of each point.
std::vector<double> chordParameters(const std::vector<Vector2>& pts) {
    std::vector<double> u{0};
    for (std::size_t i = 1; i < pts.size(); ++i)
        u.push_back(u.back() + (pts[i] - pts[i - 1]).norm());
    for (double& x : u)
        x /= u.back();
    return u;
}

// Checks s -> u -> s and that the chord between close samples matches their length difference.
void expectArcLengthInverse(const Trajectory& c) {
    const double total = c.length();
    for (int i = 0; i <= 50; ++i) {
        const double s = total * i / 50;
        const double u = c.parameterAtLength(s);
        EXPECT_NEAR(c.lengthAtParameter(u), s, 1e-10) << s;
        const double ds = 1e-4 * total;
        if (s + ds <= total) {
            EXPECT_NEAR((c.position(c.parameterAtLength(s + ds)) - c.position(u)).norm(), ds, 1e-6 * ds) << s;
        }
    }
}

TEST(Bezier, FactoryAndDegenerateEnds) {
    EXPECT_EQ(vek::NewBezier(false, {{0, 0}, {1, 0}, {2, 0}}), nullptr);
    EXPECT_EQ(vek::NewBezier(false, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}}), nullptr);
    const auto c = vek::NewBezier(true, {{0, 0}, {1, 2}, {3, 2}, {4, 0}});
    ASSERT_NE(c, nullptr);
    EXPECT_TRUE(c->position(0.5).isEqual({2, 1.5}, 1e-15));
    EXPECT_TRUE(c->derivative(0).isEqual({3, 6}, 1e-15));
    EXPECT_EQ(c->position(7), c->position(1));
    EXPECT_LT(c->curvature(0.5), 0);  // an arch turns right

    // First two and last two control points coincide: zero speed at both ends.
    const auto still = vek::NewBezier(false, {{0, 0}, {0, 0}, {2, 1}, {2, 1}});
    EXPECT_TRUE(still->tangent(0).isEqual(Vector2(2, 1).normalized(), 1e-15));
    EXPECT_TRUE(still->tangent(1).isEqual(Vector2(2, 1).normalized(), 1e-15));
    EXPECT_EQ(still->curvature(0), 0);
    EXPECT_NEAR(still->length(), std::sqrt(5.0), 1e-12);
    expectArcLengthInverse(*still);

    const auto point = vek::NewBezier(false, {{3, 3}, {3, 3}, {3, 3}, {3, 3}});
    EXPECT_EQ(point->length(), 0);
    EXPECT_EQ(point->parameterAtLength(1), 1);
    EXPECT_EQ(point->tangent(0.5), Vector2());
}

TEST(Bezier, LengthAgainstIndependentValues) {
    // Uneven control points on a line: the speed varies but the length is the distance.
    const auto c = vek::NewBezier(false, {{1, 1}, {1.3, 1.4}, {3.4, 4.2}, {4, 5}});
    EXPECT_NEAR(c->length(), 5, 5e-12);
    expectArcLengthInverse(*c);
    for (double s : {0.0, 0.7, 2.5, 4.999, 5.0})
        EXPECT_TRUE(
            c->position(c->parameterAtLength(s)).isEqual(Vector2(1, 1) + Vector2(0.6, 0.8) * s, 1e-10));
    EXPECT_EQ(c->parameterAtLength(-1), 0);
    EXPECT_EQ(c->parameterAtLength(6), 1);

    // y = x^2 on [0, 1] as a cubic Bezier; length (2 sqrt(5) + asinh(2)) / 4.
    const auto parabola = vek::NewBezier(false, {{0, 0}, {1.0 / 3, 0}, {2.0 / 3, 1.0 / 3}, {1, 1}});
    EXPECT_NEAR(parabola->length(), (2 * std::sqrt(5.0) + std::asinh(2.0)) / 4, 1e-13);
    EXPECT_NEAR(parabola->curvature(0), 2, 1e-12);

    // The usual quarter-circle Bezier of radius 10: not exactly a circle, so compared with Simpson.
    const double k = 10 * 4 * (std::sqrt(2.0) - 1) / 3;
    const auto quarter = vek::NewBezier(false, {{10, 0}, {10, k}, {k, 10}, {0, 10}});
    EXPECT_NEAR(quarter->length(), simpsonLength(*quarter), 1e-11 * quarter->length());
    EXPECT_NEAR(quarter->length(), 5 * kPi, 3e-3);  // the curve bulges ~0.03 % outside the circle
    expectArcLengthInverse(*quarter);
}

TEST(ClampedCubicSpline, ThroughCirclePoints) {
    const double r = 50;
    const std::vector<Vector2> pts = arcPoints(r, 0, kPi / 2, 17);
    const auto c = vek::NewClampedCubicSpline(pts, {0, 1}, {-1, 0});
    ASSERT_NE(c, nullptr);
    const std::vector<double> knots = chordParameters(pts);
    for (std::size_t i = 0; i < pts.size(); ++i)
        EXPECT_TRUE(c->position(knots[i]).isEqual(pts[i], 1e-10)) << i;
    EXPECT_TRUE(c->tangent(0).isEqual({0, 1}, 1e-15));
    EXPECT_TRUE(c->tangent(1).isEqual({-1, 0}, 1e-15));
    EXPECT_NEAR(c->length(), r * kPi / 2, 1e-6 * r);
    EXPECT_NEAR(c->length(), simpsonLength(*c), 1e-11 * c->length());
    for (double u = 0.05; u < 1; u += 0.05)
        EXPECT_NEAR(c->curvature(u), 1 / r, 1e-3 / r) << u;
    expectArcLengthInverse(*c);

    // Clockwise the same circle curves right.
    const auto cw = vek::NewClampedCubicSpline(arcPoints(r, kPi / 2, 0, 17), {1, 0}, {0, -1});
    EXPECT_NEAR(cw->curvature(0.5), -1 / r, 1e-3 / r);
}

TEST(ClampedCubicSpline, SmoothAtKnots) {
    const std::vector<Vector2> pts{{0, 0}, {3, 1}, {3.5, 4}, {8, 4}, {8, 4 + 1e-12}, {9, -2}};
    const auto c = vek::NewClampedCubicSpline(pts, {1, 0}, {0, 0});
    ASSERT_NE(c, nullptr);
    const std::vector<double> knots = chordParameters(pts);
    for (std::size_t i = 1; i + 2 < pts.size(); ++i) {  // the inner knots (the near-duplicate is merged)
        const double u = knots[i], e = 1e-9;
        EXPECT_TRUE(c->tangent(u - e).isEqual(c->tangent(u + e), 1e-7)) << i;
        EXPECT_TRUE(c->secondDerivative(u - e).isEqual(c->secondDerivative(u + e),
                                                       1e-5 * c->secondDerivative(u).norm()))
            << i;
    }
    // A zero end tangent asks for a natural end.
    EXPECT_TRUE(c->secondDerivative(1).isEqual({0, 0}, 1e-9));
    expectArcLengthInverse(*c);

    // The end tangent alone is the spline's, bit for bit, natural end or not, and none where there is none.
    EXPECT_EQ(vek::ClampedCubicSplineEndTangent(pts, {1, 0}, {0, 0}), c->tangent(1));
    EXPECT_EQ(vek::ClampedCubicSplineEndTangent(pts, {1, 0}, {0, 3}),
              vek::NewClampedCubicSpline(pts, {1, 0}, {0, 3})->tangent(1));
    EXPECT_EQ(vek::ClampedCubicSplineEndTangent({{1, 1}, {1, 1}}, {1, 0}, {0, 0}), std::nullopt);

    EXPECT_EQ(vek::NewClampedCubicSpline({{1, 1}}, {1, 0}, {1, 0}), nullptr);
    EXPECT_EQ(vek::NewClampedCubicSpline({{1, 1}, {1, 1}}, {1, 0}, {1, 0}), nullptr);
    const auto segment = vek::NewClampedCubicSpline({{0, 0}, {4, 3}}, {4, 3}, {4, 3});
    EXPECT_NEAR(segment->length(), 5, 1e-12);
}

TEST(BezierTS, ThroughPointsOpenAndClosed) {
    const std::vector<Vector2> pts{{0, 0}, {10, 0}, {12, 5}, {20, 5}, {21, 0}};
    const auto c = vek::NewBezierTS(false, pts);
    ASSERT_NE(c, nullptr);
    const std::vector<double> knots = chordParameters(pts);
    for (std::size_t i = 0; i < pts.size(); ++i) {
        EXPECT_TRUE(c->position(knots[i]).isEqual(pts[i], 1e-12)) << i;
        EXPECT_TRUE(c->tangent(knots[i] - 1e-9).isEqual(c->tangent(knots[i] + 1e-9), 1e-7)) << i;
    }
    expectArcLengthInverse(*c);

    // Points on a circle: Bessel tangents reproduce the circle's tangent closely.
    const auto arc = vek::NewBezierTS(false, arcPoints(20, 0, kPi, 25));
    EXPECT_NEAR(arc->length(), 20 * kPi, 1e-3);
    EXPECT_NEAR(arc->curvature(0.5), 1.0 / 20, 2e-3);

    const auto segment = vek::NewBezierTS(false, {{1, 1}, {1, 1}, {4, 5}});
    EXPECT_NEAR(segment->length(), 5, 1e-12);
    EXPECT_EQ(vek::NewBezierTS(false, {{1, 1}}), nullptr);

    // Closed, the last point repeating the first: it is dropped and the closing piece brings the curve back.
    const auto loop = vek::NewBezierTS(true, {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}});
    ASSERT_NE(loop, nullptr);
    EXPECT_EQ(loop->position(1), Vector2(0, 0));
    EXPECT_TRUE(loop->tangent(0).isEqual(loop->tangent(1), 1e-12));
    EXPECT_TRUE(loop->tangent(0).isEqual(Vector2(1, -1).normalized(), 1e-12));
    EXPECT_TRUE(loop->position(0.5).isEqual({10, 10}, 1e-12));
    expectArcLengthInverse(*loop);
    EXPECT_EQ(vek::NewBezierTS(true, {{0, 0}, {1, 0}, {0, 0}}), nullptr);
}

}  // namespace

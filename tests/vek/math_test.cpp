#include <orvia/vek/math.h>

#include <cmath>

#include <gtest/gtest.h>

namespace {

using vek::kPi;
using vek::Vector2;

TEST(Vector, ProductsAndComparisons) {
    EXPECT_EQ(Vector2(1, 0).cross(Vector2(0, 1)), 1);  // second counter-clockwise from the first
    EXPECT_EQ(vek::Vector3(0, 1, 0).cross(vek::Vector3(0, 0, 1)), vek::Vector3(1, 0, 0));
    EXPECT_EQ(Vector2().normalized(), Vector2());  // no direction, no NaN
    EXPECT_TRUE(Vector2(1, 1).isEqual(Vector2(1.1, 0.9), 0.1 + 1e-12));
    EXPECT_FALSE(Vector2(1, 1).isEqual(Vector2(1.0, 1.2), 0.1));
    EXPECT_FALSE(vek::isEqual(vek::Vector3(), vek::Vector3(0, 0, std::nan("")), 1.0));
}

TEST(Math, ScalarHelpers) {
    EXPECT_TRUE(vek::isEqual(1.0, 1.01, 0.01 + 1e-15));
    EXPECT_FALSE(vek::isEqual(1.0, 1.02, 0.01));
    EXPECT_TRUE(vek::contains(1.0, 0.0, 1.0));
    EXPECT_FALSE(vek::contains(1.0 + 1e-12, 0.0, 1.0));
    EXPECT_FALSE(vek::contains(0.5, 1.0, 0.0));
    EXPECT_DOUBLE_EQ(vek::barycenter(1, 10, 3, 2), 4);
    EXPECT_EQ(vek::barycenter(0, 10, 0, 2), 10);
    EXPECT_EQ(vek::barycenter(0, 10, 1, 2), 2);
}

TEST(Math, Angles) {
    EXPECT_DOUBLE_EQ(vek::normalizeAngle(3 * kPi), kPi);
    EXPECT_DOUBLE_EQ(vek::normalizeAngle(-kPi), kPi);
    EXPECT_NEAR(vek::normalizeAngle(-kPi / 2 - 4 * kPi), -kPi / 2, 1e-12);

    const Vector2 ex(1, 0);
    EXPECT_DOUBLE_EQ(vek::angleBetweenVectors(ex, Vector2(0, 2)), kPi / 2);
    EXPECT_DOUBLE_EQ(vek::angleBetweenVectors(Vector2(0, 2), ex), -kPi / 2);
    EXPECT_DOUBLE_EQ(vek::angleBetweenVectors(ex, Vector2(-3, -0.0)), kPi);  // -pi maps to pi
    EXPECT_DOUBLE_EQ(vek::angleBetweenVectors(Vector2(1, 1), Vector2(-1, 0)), 3 * kPi / 4);
    EXPECT_EQ(vek::angleBetweenVectors(Vector2(), ex), 0);
    const Vector2 u(std::cos(2.5), std::sin(2.5)), v(std::cos(-2.5), std::sin(-2.5));
    EXPECT_NEAR(vek::angleBetweenNormalizedVectors(u, v), 2 * kPi - 5, 1e-14);
    EXPECT_NEAR(vek::angleBetweenNormalizedVectors(v, u), 5 - 2 * kPi, 1e-14);
}

TEST(Math, IntersectLines) {
    double t0 = -1, t1 = -1;
    ASSERT_TRUE(vek::intersectLines({0, 0}, {2, 0}, {3, -1}, {0, 0.5}, t0, t1));
    EXPECT_DOUBLE_EQ(t0, 1.5);
    EXPECT_DOUBLE_EQ(t1, 2);
    EXPECT_FALSE(vek::intersectLines({0, 0}, {1, 1}, {0, 1}, {-2, -2}, t0, t1));
    EXPECT_FALSE(vek::intersectLines({0, 0}, {0, 0}, {0, 1}, {1, 0}, t0, t1));
    EXPECT_EQ(t0, 1.5);  // untouched on failure

    double ta, tb;
    EXPECT_TRUE(vek::intersectSegments({0, 0}, {2, 2}, {0, 2}, {2, 0}, ta, tb));
    EXPECT_DOUBLE_EQ(ta, 0.5);
    EXPECT_TRUE(vek::intersectSegments({0, 0}, {1, 0}, {1, 0}, {1, 1}, ta, tb));  // touching end points
    EXPECT_FALSE(vek::intersectSegments({0, 0}, {1, 0}, {2, -1}, {2, 1}, ta, tb));
    EXPECT_DOUBLE_EQ(ta, 2);
}

}  // namespace

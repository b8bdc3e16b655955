#include <orvia/vek/vector.h>

#include <gtest/gtest.h>

namespace {

using vek::Vector2;
using vek::Vector3;

TEST(Vector2, Arithmetic) {
    Vector2 a(1, 2), b(3, -4);
    EXPECT_EQ(a + b, Vector2(4, -2));
    EXPECT_EQ(a - b, Vector2(-2, 6));
    EXPECT_EQ(-a, Vector2(-1, -2));
    EXPECT_EQ(2.0 * a, a * 2.0);
    EXPECT_EQ(b / 2.0, Vector2(1.5, -2));
    a += b;
    a -= Vector2(1, 1);
    a *= 2;
    a /= 4;
    EXPECT_EQ(a, Vector2(1.5, -1.5));
    a[1] = 7;
    EXPECT_EQ(a[0], 1.5);
    EXPECT_EQ(a.y, 7);
}

TEST(Vector2, Products) {
    const Vector2 ex(1, 0), ey(0, 1);
    EXPECT_EQ(ex.cross(ey), 1);  // ey is counter-clockwise from ex
    EXPECT_EQ(ey.cross(ex), -1);
    EXPECT_EQ(Vector2(3, 4).dot(Vector2(-4, 3)), 0);
    EXPECT_EQ(Vector2(3, 4).norm(), 5);
    EXPECT_EQ(Vector2(3, 4).squaredNorm(), 25);
    EXPECT_DOUBLE_EQ(Vector2(3, 4).normalized().x, 0.6);
    EXPECT_EQ(Vector2().normalized(), Vector2());
}

TEST(Vector2, IsEqual) {
    const Vector2 a(1, 1);
    EXPECT_TRUE(a.isEqual(Vector2(1.1, 0.9), 0.1 + 1e-12));
    EXPECT_FALSE(a.isEqual(Vector2(1.0, 1.2), 0.1));
    EXPECT_FALSE(a.isEqual(Vector2(1.0, std::nan("")), 1.0));
    EXPECT_FALSE(a == Vector2(1, 1 + 1e-15));
}

TEST(Vector3, Products) {
    const Vector3 ex(1, 0, 0), ey(0, 1, 0), ez(0, 0, 1);
    EXPECT_EQ(ex.cross(ey), ez);
    EXPECT_EQ(ey.cross(ez), ex);
    EXPECT_EQ(ez.cross(ex), ey);
    EXPECT_EQ(Vector3(1, 2, 2).norm(), 3);
    EXPECT_EQ(Vector3(1, 2, 3).dot(Vector3(-1, 2, -1)), 0);
    EXPECT_EQ(Vector3().normalized(), Vector3());
    Vector3 v(1, 2, 3);
    v[2] = -3;
    EXPECT_EQ(v * 2.0 - v, Vector3(1, 2, -3));
    EXPECT_TRUE(v.isEqual(Vector3(1, 2, -2.95), 0.06));
    EXPECT_FALSE(v.isEqual(Vector3(1, 2, -2.9), 0.06));
}

}  // namespace

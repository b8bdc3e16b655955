#include <orvia/vek/mark.h>
#include <orvia/vek/math.h>
#include <orvia/vek/matrix.h>
#include <orvia/vek/transform.h>

#include <gtest/gtest.h>

namespace {

using vek::kPi;
using vek::Mark;
using vek::Matrix3;
using vek::Transform;
using vek::Vector3;

constexpr double kTol = 1e-12;
const Vector3 kX(1, 0, 0), kY(0, 1, 0), kZ(0, 0, 1);

TEST(Matrix3, RotationsAndProducts) {
    EXPECT_TRUE((Matrix3::rotationZ(kPi / 2) * kX).isEqual(kY, kTol));
    EXPECT_TRUE((Matrix3::rotationX(kPi / 2) * kY).isEqual(kZ, kTol));
    EXPECT_TRUE((Matrix3::rotationY(kPi / 2) * kZ).isEqual(kX, kTol));

    const Matrix3 m({1, 2, 3}, {4, 5, 6}, {7, 8, 10});
    EXPECT_EQ(m * Vector3(1, 0, -1), Vector3(-2, -2, -3));
    EXPECT_DOUBLE_EQ(m.determinant(), -3);
    const Matrix3 r = Matrix3::rotationX(0.3) * Matrix3::rotationY(-1.2) * Matrix3::rotationZ(2.0);
    EXPECT_TRUE((r * r.transposed()).isEqual(Matrix3(), kTol));
    const Vector3 v(0.5, -2, 3);
    EXPECT_TRUE((r * v).isEqual(
        Matrix3::rotationX(0.3) * (Matrix3::rotationY(-1.2) * (Matrix3::rotationZ(2.0) * v)), kTol));
}

TEST(Transform, ApplyInverseCompose) {
    const Transform t = Transform::fromPositionHeading({10, 5, 2}, kPi / 2);
    EXPECT_TRUE(t.apply({1, 0, 0}).isEqual({10, 6, 2}, kTol));
    EXPECT_TRUE(t.applyVector({1, 0, 0}).isEqual(kY, kTol));

    const Transform a(Matrix3::rotationX(0.7) * Matrix3::rotationZ(-0.4), {1, -2, 3});
    const Transform b = Transform::fromPositionHeading({-4, 0.5, 1}, 2.5);
    const Vector3 p(3, -1, 0.25);
    EXPECT_TRUE((a * b).apply(p).isEqual(a.apply(b.apply(p)), kTol));
    EXPECT_TRUE((a * a.inverse()).isEqual(Transform(), kTol));

    // A placed box is checked through the network's bounding box; an empty one stays empty.
    EXPECT_TRUE(t.apply(vek::Box3()).isEmpty());
}

TEST(Mark, RotationConvention) {
    auto axes = [](const Mark& m) {
        const Matrix3 r = m.rotation();
        return std::array<Vector3, 3>{r * kX, r * kY, r * kZ};
    };
    // Yaw 90 deg: forward becomes +y, left becomes -x.
    auto f = axes({{}, 0, 0, kPi / 2});
    EXPECT_TRUE(f[0].isEqual(kY, kTol));
    EXPECT_TRUE(f[1].isEqual(-kX, kTol));
    // Pitch +30 deg lowers the nose; climbing 30 deg is pitch -30 deg.
    const double s30 = 0.5, c30 = std::sqrt(3.0) / 2;
    f = axes({{}, 0, kPi / 6, 0});
    EXPECT_TRUE(f[0].isEqual({c30, 0, -s30}, kTol));
    f = axes({{}, 0, -kPi / 6, 0});
    EXPECT_TRUE(f[0].isEqual({c30, 0, s30}, kTol));
    // Roll +30 deg lifts the left side.
    f = axes({{}, kPi / 6, 0, 0});
    EXPECT_TRUE(f[1].isEqual({0, c30, s30}, kTol));
    // Heading 90 deg climbing 30 deg with left side raised 30 deg, composed by hand: roll, pitch, then yaw.
    f = axes({{}, kPi / 6, -kPi / 6, kPi / 2});
    EXPECT_TRUE(f[0].isEqual({0, c30, s30}, kTol));
    // Left after roll (0, c, s); pitch -30 about y: (s*sin(-30), c, s*cos(-30)); yaw 90: (-c, s*sin(-30),
    // ...).
    EXPECT_TRUE(f[1].isEqual({-c30, -s30 * s30, s30 * c30}, kTol));

    const Mark m{{1, 2, 3}, 0.2, -0.3, 2.9};
    EXPECT_TRUE(m.transform().apply({0, 0, 0}).isEqual({1, 2, 3}, kTol));
    const Mark back = Mark::fromTransform(m.transform());
    EXPECT_NEAR(back.roll, 0.2, kTol);
    EXPECT_NEAR(back.pitch, -0.3, kTol);
    EXPECT_NEAR(back.yaw, 2.9, kTol);
    // Nose straight down: roll and yaw fold into one angle, the rotation must survive the round trip.
    const Mark vertical{{}, 0.4, kPi / 2, 1.0};
    const Mark locked = Mark::fromTransform(vertical.transform());
    EXPECT_EQ(locked.roll, 0);
    EXPECT_NEAR(locked.pitch, kPi / 2, 1e-7);
    const Mark rebuilt{{}, locked.roll, locked.pitch, locked.yaw};
    EXPECT_TRUE(rebuilt.rotation().isEqual(vertical.rotation(), 1e-7));
}

}  // namespace

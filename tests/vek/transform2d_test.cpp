#include <orvia/vek/math.h>
#include <orvia/vek/transform2d.h>

#include <gtest/gtest.h>

namespace {

using vek::Transform2D;
using vek::Vector2;

constexpr double kTol = 1e-12;

TEST(Transform2D, ApplyInverseCompose) {
    EXPECT_EQ(Transform2D().apply({3, 4}), Vector2(3, 4));
    const Transform2D t({10, 20}, vek::kPi / 2);
    EXPECT_TRUE(t.apply({1, 2}).isEqual({8, 21}, kTol));
    EXPECT_TRUE(t.applyVector({1, 0}).isEqual({0, 1}, kTol));

    const Transform2D a({-3, 7}, 2.3), b({-5, 3}, -1.1);
    const Transform2D inv = a.globalToLocal();
    EXPECT_EQ(inv.orientation(), -2.3);
    for (const Vector2& p : {Vector2(0, 0), Vector2(5, -1), Vector2(-2, 9)}) {
        EXPECT_TRUE(inv.apply(a.apply(p)).isEqual(p, kTol));
        EXPECT_TRUE((a * b).apply(p).isEqual(a.apply(b.apply(p)), kTol));
    }
    EXPECT_NEAR((a * b).orientation(), 2.3 - 1.1, kTol);
}

}  // namespace

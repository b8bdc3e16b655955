#include <orvia/vek/box.h>

#include <gtest/gtest.h>

namespace {

using vek::Box2;
using vek::Box3;
using vek::Vector2;
using vek::Vector3;

TEST(Box2, AddContainsGrow) {
    Box2 b;
    b.grow(1);
    b.add(Box2());
    EXPECT_TRUE(b.isEmpty());
    EXPECT_FALSE(b.contains({0, 0}));

    b.add({1, 2});
    EXPECT_TRUE(b.contains({1, 2}));  // a single point is a box
    b.add({-1, 5});
    EXPECT_EQ(b.size(), Vector2(2, 3));
    EXPECT_FALSE(b.contains({0, 5.1}));
    EXPECT_EQ(b.corners()[1], Vector2(1, 2));

    Box2 other;
    other.add({4, 0});
    b.add(other);
    b.grow(0.5);
    EXPECT_EQ(b.min, Vector2(-1.5, -0.5));
    EXPECT_EQ(b.max, Vector2(4.5, 5.5));
    b.grow(-3.5);
    EXPECT_TRUE(b.isEmpty());
}

TEST(Box3, AddContainsCorners) {
    Box3 b;
    b.add({0, 0, 0});
    b.add({1, 2, 3});
    EXPECT_FALSE(b.contains({0.5, 1, 3.5}));
    Box3 rebuilt;
    for (const Vector3& p : b.corners()) {
        EXPECT_TRUE(b.contains(p));
        rebuilt.add(p);
    }
    EXPECT_EQ(rebuilt, b);
    EXPECT_EQ(b.corners()[5], Vector3(1, 0, 3));
}

}  // namespace

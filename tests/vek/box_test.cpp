#include <orvia/vek/box.h>

#include <gtest/gtest.h>

namespace {

using vek::Box2;
using vek::Box3;
using vek::Vector2;
using vek::Vector3;

TEST(Box2, AddContainsGrow) {
    Box2 b;
    EXPECT_TRUE(b.isEmpty());
    EXPECT_FALSE(b.contains({0, 0}));
    EXPECT_EQ(b.size(), Vector2());
    b.grow(1);
    EXPECT_TRUE(b.isEmpty());
    b.add(Box2());
    EXPECT_TRUE(b.isEmpty());

    b.add({1, 2});
    EXPECT_FALSE(b.isEmpty());
    EXPECT_TRUE(b.contains({1, 2}));
    b.add({-1, 5});
    EXPECT_EQ(b.size(), Vector2(2, 3));
    EXPECT_TRUE(b.contains({-1, 2}));
    EXPECT_FALSE(b.contains({0, 5.1}));
    const auto c = b.corners();
    EXPECT_EQ(c[0], Vector2(-1, 2));
    EXPECT_EQ(c[1], Vector2(1, 2));
    EXPECT_EQ(c[2], Vector2(1, 5));
    EXPECT_EQ(c[3], Vector2(-1, 5));

    Box2 other;
    other.add({4, 0});
    b.add(other);
    EXPECT_EQ(b.min, Vector2(-1, 0));
    EXPECT_EQ(b.max, Vector2(4, 5));
    b.grow(0.5);
    EXPECT_EQ(b.min, Vector2(-1.5, -0.5));
    b.grow(-3.5);
    EXPECT_TRUE(b.isEmpty());
    b.clear();
    EXPECT_EQ(b, Box2());
}

TEST(Box3, AddContainsCorners) {
    Box3 b;
    EXPECT_TRUE(b.isEmpty());
    b.add({0, 0, 0});
    b.add({1, 2, 3});
    EXPECT_EQ(b.size(), Vector3(1, 2, 3));
    EXPECT_TRUE(b.contains({1, 2, 3}));
    EXPECT_FALSE(b.contains({0.5, 1, 3.5}));
    const auto c = b.corners();
    Box3 rebuilt;
    for (const Vector3& p : c) {
        EXPECT_TRUE(b.contains(p));
        rebuilt.add(p);
    }
    EXPECT_EQ(rebuilt, b);
    EXPECT_EQ(c[0], b.min);
    EXPECT_EQ(c[7], b.max);
    EXPECT_EQ(c[5], Vector3(1, 0, 3));
    b.grow(1);
    EXPECT_EQ(b.min, Vector3(-1, -1, -1));
    Box3 empty;
    empty.grow(2);
    EXPECT_TRUE(empty.isEmpty());
}

}  // namespace

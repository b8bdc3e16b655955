#include <orvia/vek/convolution.h>

#include <gtest/gtest.h>

namespace {

using vek::Convolution1D;
using vek::Vector2;

TEST(Convolution1D, ValidityAndSmoothingKeepingEnds) {
    EXPECT_DOUBLE_EQ(Convolution1D({1, 2, 1}).weights()[1], 0.5);
    EXPECT_FALSE(Convolution1D({1, 1}).isValid());
    EXPECT_FALSE(Convolution1D({}).isValid());
    EXPECT_FALSE(Convolution1D({1, -2, 1}).isValid());
    EXPECT_TRUE(Convolution1D::gaussian(1.5, 3).isValid());
    const std::vector<double> v{0, 5, 0, 1};
    EXPECT_EQ(Convolution1D({1, 1}).apply(v), v);

    const Convolution1D k({1, 2, 1});
    // A spike spreads to its neighbours; ends stay where they are.
    const std::vector<double> s = k.apply(std::vector<double>{0, 0, 4, 0, 0});
    EXPECT_EQ(s, (std::vector<double>{0, 1, 2, 1, 0}));

    // A straight, evenly sampled polyline is unchanged even with a kernel wider than the polyline.
    const std::vector<Vector2> line{{0, 0}, {1, 2}, {2, 4}, {3, 6}};
    const std::vector<Vector2> out = Convolution1D::gaussian(2, 5).apply(line);
    for (std::size_t i = 0; i < line.size(); ++i)
        EXPECT_TRUE(out[i].isEqual(line[i], 1e-12)) << i;

    // A corner is cut: the middle point moves towards the chord, the ends do not move.
    const std::vector<Vector2> corner = k.apply(std::vector<Vector2>{{0, 0}, {1, 1}, {2, 0}});
    EXPECT_EQ(corner, (std::vector<Vector2>{{0, 0}, {1, 0.5}, {2, 0}}));
    const std::vector<vek::Vector3> two{{0, 0, 0}, {1, 1, 1}};
    EXPECT_EQ(k.apply(two), two);
}

}  // namespace

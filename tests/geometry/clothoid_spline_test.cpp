#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using Ruvex::CountedPtr;

ClothoidSpline* MakeSpline(const std::vector<vek::Vector2>& points) {
    auto* spline = new ClothoidSpline;
    spline->SetControlPoints(points);
    return spline;
}

const std::vector<vek::Vector2> kPoints = {{0, 0}, {50, 0}, {80, 40}, {140, 40}, {150, 100}};

}  // namespace

TEST(ClothoidSpline, RoundsEveryCorner) {
    CountedPtr<ClothoidSpline> spline(MakeSpline(kPoints));
    EXPECT_TRUE(spline->IsFitComplete());
    const double length = spline->GetLength();
    EXPECT_GT(length, 0);
    EXPECT_LT(length, spline->GetPolylineLength());
    EXPECT_DOUBLE_EQ(spline->GetCurveAbscissaFromLineAbscissa(spline->GetPolylineLength()), length);

    const PointData start = spline->GetPointData(0);
    EXPECT_TRUE(vek::isEqual(start.position, kPoints[0], 1e-12));
    EXPECT_NEAR(start.heading, 0, 1e-12);
    const PointData end = spline->GetPointData(length);
    EXPECT_LT((end.position - kPoints[4]).norm(), 1e-6);  // along the last edge, (10, 60)
    EXPECT_NEAR(vek::normalizeAngle(end.heading - std::atan2(60, 10)), 0, 1e-9);
    // Curvature is continuous and G1 holds along the whole curve.
    PointData previous = start;
    for (int i = 1; i <= 400; ++i) {
        const PointData pd = spline->GetPointData(length * i / 400);
        EXPECT_LT((pd.position - previous.position).norm(), length / 400 + 1e-9) << i;
        EXPECT_LT(std::fabs(vek::normalizeAngle(pd.heading - previous.heading)), 0.05) << i;
        previous = pd;
    }
    // The curve passes the midpoints of the inner edges, where one corner's fit hands over to the next.
    for (size_t i = 1; i + 2 < kPoints.size(); ++i) {
        const vek::Vector2 mid = (kPoints[i] + kPoints[i + 1]) * 0.5;
        double best = 1e9;
        for (int j = 0; j <= 20000; ++j)
            best = std::min(best, (spline->GetPointData(length * j / 20000).position - mid).norm());
        EXPECT_LT(best, length / 20000) << i;
    }

    // Placed: the global curve and the piece's own samples agree.
    spline->SetStartPosition({1000, -200});
    spline->SetStartOrientation(2.2);
    for (double s : {0.0, 33.3, 120.0, length}) {
        PointData global;
        ASSERT_TRUE(spline->GetGlobalCurve().GetPointData(s, 0, global));
        const PointData own = spline->GetPointData(s);
        EXPECT_TRUE(vek::isEqual(global.position, own.position, 1e-9)) << s;
        EXPECT_NEAR(vek::normalizeAngle(global.heading - own.heading), 0, 1e-12) << s;
    }
}

TEST(ClothoidSpline, DegenerateControlPolygons) {
    CountedPtr<ClothoidSpline> spline(new ClothoidSpline);
    EXPECT_EQ(spline->GetLength(), 0);
    EXPECT_EQ(spline->GetPointData(3).position, vek::Vector2());
    // Two points (duplicates within 1e-5 m do not count): one straight line.
    spline->SetControlPoints({{1, 1}, {1, 1 + 1e-6}, {4, 5}});
    ASSERT_EQ(spline->GetLocalCurve().GetFunctionCount(), 1u);
    EXPECT_NE(dynamic_cast<Segment*>(spline->GetLocalCurve().GetFunction(0)), nullptr);
    EXPECT_NEAR(spline->GetLength(), 5, 1e-5);
    EXPECT_TRUE(vek::isEqual(spline->GetPointData(spline->GetLength()).position, {4, 5}, 1e-5));
    // A U-turn cannot be fitted: the piece says so.
    spline->SetControlPoints({{0, 0}, {10, 0}, {5, 0}});
    EXPECT_FALSE(spline->IsFitComplete());
    spline->SetControlPoints(kPoints);
    EXPECT_TRUE(spline->IsFitComplete());
}

TEST(ClothoidSpline, ThresholdAndSymmetry) {
    CountedPtr<ClothoidSpline> spline(MakeSpline({{0, 0}, {100, 0}, {100, 20}}));
    const double length = spline->GetLength();
    spline->SetThreshold(0.1);
    EXPECT_EQ(spline->GetThreshold(), 0.1);
    EXPECT_NE(spline->GetLength(), length);
    // Symmetric: the long leg is cut to the short one and both clothoids have the same length.
    spline->SetSymmetric(true);
    const ClothoidSpline::Curve& curve = spline->GetLocalCurve();
    ASSERT_EQ(curve.GetFunctionCount(), 3u);
    EXPECT_NEAR(curve.GetFunction(0)->GetLength(), 80, 1e-9);
    EXPECT_NEAR(curve.GetFunction(1)->GetLength(), curve.GetFunction(2)->GetLength(), 1e-6);
    EXPECT_LT((spline->GetPointData(spline->GetLength()).position - vek::Vector2(100, 20)).norm(), 1e-6);

    CountedPtr<ClothoidSpline> copy(new ClothoidSpline);
    copy->CopyFrom(spline.Get());
    EXPECT_TRUE(copy->IsEqual(spline.Get()));
    EXPECT_NEAR(copy->GetLength(), spline->GetLength(), 1e-12);  // refitted, not only the points copied
    copy->SetThreshold(0.5);
    EXPECT_FALSE(copy->IsEqual(spline.Get()));
}

TEST(ClothoidSpline, SetLengthCutsOrStretchesThePolygon) {
    CountedPtr<ClothoidSpline> spline(MakeSpline(kPoints));
    const double length = spline->GetLength();
    const PointData cut = spline->GetPointData(0.6 * length);
    spline->SetLength(0.6 * length);
    // The polygon now ends at the cut point, reached along the tangent there.
    EXPECT_TRUE(vek::isEqual(spline->GetControlPoints().back(), cut.position, 1e-9));
    const PointData end = spline->GetPointData(spline->GetLength());
    EXPECT_LT((end.position - cut.position).norm(), 1e-6);
    EXPECT_NEAR(vek::normalizeAngle(end.heading - cut.heading), 0, 1e-9);
    EXPECT_NEAR(spline->GetLength(), 0.6 * length, 0.02 * length);
    EXPECT_TRUE(spline->IsFitComplete());

    // Longer: the polygon is scaled by the ratio of the lengths.
    const double before = spline->GetLength(), polygon = spline->GetPolylineLength();
    spline->SetLength(1.2 * before);
    EXPECT_NEAR(spline->GetPolylineLength(), 1.2 * before * polygon / before, 1e-9);
}

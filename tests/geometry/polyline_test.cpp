#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using EType = PolyLine::EType;
constexpr double kPi = vek::kPi;

// Signed curvature of the circle through three points, from the triangle's area: 4 A / (|ab| |bc| |ca|).
double CircleCurvature(const vek::Vector2& a, const vek::Vector2& b, const vek::Vector2& c) {
    const double twiceArea = (b - a).cross(c - a);
    return 2 * twiceArea / ((b - a).norm() * (c - b).norm() * (c - a).norm());
}

PolyLine* MakePolyLine(EType type, const std::vector<vek::Vector2>& points) {
    auto* line = new PolyLine(type, false);
    line->SetControlPoints(points);
    return line;
}

}  // namespace

TEST(PolyLineCommonData, TablesAndSamples) {
    Ruvex::CountedPtr<PolyLine> line(MakePolyLine(EType::Polygon, {{0, 0}, {3, 0}, {3, 4}}));
    EXPECT_EQ(line->GetEndAbscissas(), (std::vector<double>{3, 7}));
    EXPECT_EQ(line->GetOrientations(), (std::vector<double>{0, kPi / 2}));
    // The corner lies on the circle of diameter 5 through the three points; with three points the first
    // end is extrapolated while the last is still 0, then the last from the first two.
    const std::vector<double>& k = line->GetCurvatures();
    ASSERT_EQ(k.size(), 3u);
    EXPECT_NEAR(k[1], 0.4, 1e-15);
    EXPECT_NEAR(k[0], 0.4 + (0 - 0.4) * (0 - 3) / (7 - 3.0), 1e-15);
    EXPECT_NEAR(k[2], k[0] + (k[1] - k[0]) * 7 / 3, 1e-15);

    const PointData mid = line->GetPointData(5);
    EXPECT_TRUE(vek::isEqual(mid.position, {3, 2}, 1e-15));
    EXPECT_DOUBLE_EQ(mid.heading, kPi / 2);
    EXPECT_NEAR(mid.curvature, 0.5 * (k[1] + k[2]), 1e-15);
    // Outside the polygon: along the first and the last edge.
    EXPECT_TRUE(vek::isEqual(line->GetPointData(-1).position, {-1, 0}, 1e-15));
    EXPECT_TRUE(vek::isEqual(line->GetPointData(9).position, {3, 6}, 1e-15));
    for (const auto& [s, index] : {std::pair{-1.0, 0u}, {3.0, 0u}, {3.0001, 1u}, {100.0, 1u}})
        EXPECT_EQ(line->GetSegmentIndex(s), index) << s;

    // A zero-length edge keeps the orientation before it and samples its midpoint.
    line->SetControlPoints({{0, 0}, {0, 2}, {0, 2}, {1, 2}});
    EXPECT_DOUBLE_EQ(line->GetOrientations()[1], kPi / 2);
    EXPECT_TRUE(vek::isEqual(line->GetPointData(2).position, {0, 2}, 1e-15));
    // Fewer than two points: all zeros.
    line->SetControlPoints({{5, 5}});
    EXPECT_EQ(line->GetLength(), 0);
    EXPECT_EQ(line->GetPointData(1).position, vek::Vector2());
}

TEST(PolyLineCommonData, FourPointEndCurvatureQuirk) {
    const std::vector<vek::Vector2> p = {{0, 0}, {2, 0}, {4, 1}, {5, 3}};
    Ruvex::CountedPtr<PolyLine> line(MakePolyLine(EType::Polygon, p));
    const std::vector<double>& e = line->GetEndAbscissas();
    const std::vector<double>& k = line->GetCurvatures();
    const double k1 = CircleCurvature(p[0], p[1], p[2]);
    const double k2 = CircleCurvature(p[1], p[2], p[3]);
    EXPECT_NEAR(k[1], k1, 1e-14);
    EXPECT_NEAR(k[2], k2, 1e-14);
    EXPECT_NEAR(k[0], k1 + (k2 - k1) * (0 - e[0]) / (e[1] - e[0]), 1e-14);
    // Point 1 is taken at abscissa 0 rather than e[0] for the last curvature.
    const double quirk = k1 + (k2 - k1) * (e[2] - 0) / (e[1] - 0);
    const double plain = k1 + (k2 - k1) * (e[2] - e[0]) / (e[1] - e[0]);
    EXPECT_NEAR(k[3], quirk, 1e-14);
    EXPECT_GT(std::fabs(quirk - plain), 1e-3);
    // With five points the abscissa of point n - 3 is the true one.
    const std::vector<vek::Vector2> q = {{0, 0}, {2, 0}, {4, 1}, {5, 3}, {5, 5}};
    line->SetControlPoints(q);
    const double q2 = CircleCurvature(q[1], q[2], q[3]), q3 = CircleCurvature(q[2], q[3], q[4]);
    EXPECT_NEAR(k[4], q2 + (q3 - q2) * (e[3] - e[1]) / (e[2] - e[1]), 1e-14);
    // A short last edge (2 l[n-2] <= l[n-3]) gives no extrapolation.
    line->SetControlPoints({{0, 0}, {2, 0}, {4, 1}, {5, 3}, {5, 3.5}});
    EXPECT_EQ(k[4], 0);
}

TEST(PolyLineCommonData, SetPolylineLength) {
    Ruvex::CountedPtr<PolyLine> line(new PolyLine(EType::Polygon, false));
    line->SetPolylineLength(4);
    EXPECT_EQ(line->GetControlPoints(), (std::vector<vek::Vector2>{{0, 0}, {4, 0}}));
    line->SetControlPoints({{1, 1}});
    line->SetPolylineLength(4);
    EXPECT_EQ(line->GetControlPoints(), (std::vector<vek::Vector2>{{1, 1}, {4, 0}}));
    line->SetControlPoints({{0, 0}, {3, 0}, {3, 4}});
    line->SetPolylineLength(10);  // the last point moves along the last edge
    EXPECT_TRUE(vek::isEqual(line->GetControlPoints().back(), {3, 7}, 1e-14));
    line->SetPolylineLength(5);
    ASSERT_EQ(line->GetControlPointsCount(), 3u);
    EXPECT_TRUE(vek::isEqual(line->GetControlPoints().back(), {3, 2}, 1e-14));
    line->SetPolylineLength(2);  // within the first edge: the points after it go
    EXPECT_EQ(line->GetControlPoints(), (std::vector<vek::Vector2>{{0, 0}, {2, 0}}));
    line->SetPolylineLength(0);
    EXPECT_EQ(line->GetControlPointsCount(), 0u);
}

TEST(PolyLineCommonData, EditingUniquePointsAndConstraints) {
    Ruvex::CountedPtr<PolyLine> line(MakePolyLine(EType::Polygon, {{0, 0}, {1e-6, 0}, {2e-6, 0}, {1, 0}}));
    // Each point is compared with the stored one before it: a creeping run collapses to its first point.
    EXPECT_EQ(line->GetUniqueControlPoints(1.5e-6), (std::vector<vek::Vector2>{{0, 0}, {1, 0}}));
    EXPECT_TRUE(line->InsertControlPoint(PolyLine::npos, {2, 0}, true));
    EXPECT_TRUE(line->InsertControlPoint(0, {-1, 0}, true));
    EXPECT_FALSE(line->InsertControlPoint(99, {5, 0}, true));
    EXPECT_EQ(line->GetControlPoints(),
              (std::vector<vek::Vector2>{{-1, 0}, {0, 0}, {1e-6, 0}, {2e-6, 0}, {1, 0}, {2, 0}}));
    EXPECT_TRUE(line->RemoveControlPoint(1, 3));
    EXPECT_FALSE(line->RemoveControlPoint(3, 1));
    EXPECT_EQ(line->GetControlPoints(), (std::vector<vek::Vector2>{{-1, 0}, {1, 0}, {2, 0}}));
    EXPECT_DOUBLE_EQ(line->GetLength(), 3);

    line->SetOriginConstraints(true, true);
    line->SetControlPoints({{1, 1}, {5, 2}, {6, 6}});
    EXPECT_EQ(line->GetControlPoints(), (std::vector<vek::Vector2>{{0, 0}, {5, 0}, {6, 6}}));

    line->SetStartPosition({10, 0});
    line->SetStartOrientation(kPi / 2);
    EXPECT_TRUE(vek::isEqual(line->ConvertLocalToGlobal({5, 0}), {10, 5}, 1e-14));
    EXPECT_TRUE(vek::isEqual(line->ConvertGlobalToLocal({10, 5}), {5, 0}, 1e-14));

    line->Flip();
    EXPECT_EQ(line->GetControlPoint(2), vek::Vector2(6, -6));
}

TEST(PolyLine, PolygonHeadingAtTheEnd) {
    Ruvex::CountedPtr<PolyLine> line(MakePolyLine(EType::Polygon, {{0, 0}, {3, 0}, {3, 4}}));
    line->SetEndTangent(0.3);
    EXPECT_DOUBLE_EQ(line->GetPointData(6.9).heading, kPi / 2);
    EXPECT_EQ(line->GetPointData(7).heading, 0.3);
    EXPECT_EQ(line->GetPointData(8).heading, 0.3);
    line->SetOriginConstraints(false, true);
    line->SetControlPoints({{0, 0}, {3, 0}, {3, 4}});
    EXPECT_DOUBLE_EQ(line->GetPointData(8).heading, kPi / 2);
    line->ComputeNaturalEndTangent();
    EXPECT_DOUBLE_EQ(line->GetEndTangent(), kPi / 2);
}

TEST(PolyLine, SmoothedCurvesPassThroughTheirPoints) {
    const std::vector<vek::Vector2> points = {{0, 0}, {10, 0}, {20, 5}, {25, 15}, {22, 25}};
    for (EType type : {EType::ClampedSpline, EType::BezierThroughPoints}) {
        Ruvex::CountedPtr<PolyLine> line(MakePolyLine(type, points));
        line->SetEndTangent(2.0);
        line->SetStartPosition({100, 50});
        line->SetStartOrientation(0.5);
        const std::string name = std::to_string(static_cast<int>(type));
        EXPECT_GT(line->GetLength(), line->GetPolylineLength()) << name;
        for (size_t i = 0; i < points.size(); ++i) {
            const PointData pd = line->GetPointData(line->GetAbscissaOfControlPoint(i));
            EXPECT_TRUE(vek::isEqual(pd.position, line->ConvertLocalToGlobal(points[i]), 1e-6))
                << name << " " << i;
        }
        // Beyond the end: straight on along the end tangent.
        const PointData end = line->GetPointData(line->GetLength());
        const PointData beyond = line->GetPointData(line->GetLength() + 3);
        EXPECT_TRUE(vek::isEqual(beyond.position, end.position + end.GetTangent() * 3, 1e-9)) << name;
        if (type == EType::ClampedSpline) {
            // Clamped without orientation constraint: along the local x axis at the start, the stored end
            // tangent at the end.
            EXPECT_NEAR(line->GetPointData(0).heading, 0.5, 1e-9);
            EXPECT_NEAR(end.heading, 2.5, 1e-9);
        }
        // The same curve runs backwards once inverted, and comes back after a second inversion.
        Ruvex::CountedPtr<PolyLine> once(line->Clone()), twice(line->Clone());
        once->Invert();
        twice->Invert();
        twice->Invert();
        EXPECT_NEAR(once->GetLength(), line->GetLength(), 1e-6) << name;
        for (double f = 0; f <= 1; f += 0.125) {
            const double s = f * line->GetLength();
            const vek::Vector2 p = line->GetPointData(s).position;
            EXPECT_TRUE(vek::isEqual(once->GetPointData(once->GetLength() - s).position, p, 1e-6))
                << name << s;
            EXPECT_TRUE(vek::isEqual(twice->GetPointData(s).position, p, 1e-6)) << name << " " << s;
        }
    }
    // Two points are not smoothed.
    Ruvex::CountedPtr<PolyLine> two(MakePolyLine(EType::ClampedSpline, {{0, 0}, {4, 3}}));
    EXPECT_DOUBLE_EQ(two->GetLength(), 5);
}

TEST(PolyLine, BezierChainIsTangentContinuous) {
    const std::vector<vek::Vector2> q = {{0, 0}, {5, 0}, {9, 4}, {10, 10}, {13, 12}, {18, 12}, {20, 20}};
    Ruvex::CountedPtr<PolyLine> line(MakePolyLine(EType::BezierChain, q));
    const double junction = line->GetAbscissaOfControlPoint(3);
    EXPECT_GT(junction, 0);
    EXPECT_LT(junction, line->GetLength());
    EXPECT_TRUE(vek::isEqual(line->GetPointData(0).position, q[0], 1e-9));
    EXPECT_TRUE(vek::isEqual(line->GetPointData(junction).position, q[3], 1e-9));
    EXPECT_TRUE(vek::isEqual(line->GetPointData(line->GetLength()).position, q[6], 1e-9));
    // The stored handle before the junction is not collinear, yet the chain turns smoothly through it.
    const double before = line->GetPointData(junction - 1e-6).heading;
    const double after = line->GetPointData(junction + 1e-6).heading;
    EXPECT_NEAR(vek::normalizeAngle(after - before), 0, 1e-5);
    const vek::Vector2 away = q[4] - q[3];
    EXPECT_NEAR(vek::normalizeAngle(after - std::atan2(away.y, away.x)), 0, 1e-5);

    // Making the stored handles symmetric about the junction leaves the curve as it is.
    const double length = line->GetLength();
    line->updateBezierTangent(3);
    EXPECT_TRUE(vek::isEqual(line->GetControlPoint(2), q[3] * 2.0 - q[4], 1e-12));
    EXPECT_NEAR(line->GetLength(), length, 1e-9);
    // Moving the handle before the junction moves the one after it.
    line->SetControlPoint(2, {9, 9});
    line->updateBezierTangent(2);
    EXPECT_TRUE(vek::isEqual(line->GetControlPoint(4), {11, 11}, 1e-12));

    // Three points: the quadratic Bezier, whose middle sample is (q0 + 2 q1 + q2) / 4.
    Ruvex::CountedPtr<PolyLine> three(MakePolyLine(EType::BezierChain, {{0, 0}, {4, 4}, {8, 0}}));
    EXPECT_TRUE(
        vek::isEqual(three->GetPointData(three->GetAbscissaOfControlPoint(1)).position, {4, 2}, 1e-9));
}

TEST(PolyLine, CutBezierDropsThePointsNoPieceUses) {
    std::vector<vek::Vector2> points;
    for (int i = 0; i < 12; ++i)
        points.push_back({4.0 * i, (i % 2) * 3.0});
    const size_t expected[] = {4, 4, 7, 7, 7, 10, 10, 10};  // for 5 to 12 points
    for (size_t n = 5; n <= 12; ++n) {
        Ruvex::CountedPtr<PolyLine> line(
            MakePolyLine(EType::BezierChain, std::vector<vek::Vector2>(points.begin(), points.begin() + n)));
        const double length = line->GetLength();
        line->cutBezier();
        EXPECT_EQ(line->GetControlPointsCount(), expected[n - 5]) << n;
        EXPECT_NEAR(line->GetLength(), length, 1e-9) << n;
    }
    // Only for Bezier chains.
    Ruvex::CountedPtr<PolyLine> polygon(
        MakePolyLine(EType::Polygon, std::vector<vek::Vector2>(points.begin(), points.begin() + 6)));
    polygon->cutBezier();
    EXPECT_EQ(polygon->GetControlPointsCount(), 6u);
}

TEST(PolyLine, NearestPointAndControlPointParameters) {
    Ruvex::CountedPtr<PolyLine> line(MakePolyLine(EType::Polygon, {{0, 0}, {10, 0}, {10, 10}}));
    line->SetStartPosition({5, 5});
    PointData sample;
    const double s = line->GetPointDataFromGlobalPoint({5 + 13, 5 + 4}, sample);
    EXPECT_NEAR(s, 14, 1e-9);
    EXPECT_TRUE(vek::isEqual(sample.position, {15, 9}, 1e-9));
    EXPECT_NEAR(line->GetPointDataFromGlobalPoint({0, 0}, sample), 0, 1e-9);

    line->SetControlPoints({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}});
    EXPECT_EQ(line->GetControlPointParam(2), 0.5);
    EXPECT_EQ(line->GetControlPointBeforeIndex(0.6), 2u);
    EXPECT_EQ(line->GetControlPointBeforeIndex(0.0), 0u);
    EXPECT_EQ(line->GetControlPointBeforeIndex(1.0), 0u);  // no point beyond the last
}

TEST(PolyLine, CopyAndEquality) {
    Ruvex::CountedPtr<PolyLine> line(MakePolyLine(EType::BezierThroughPoints, {{0, 0}, {10, 0}, {20, 5}}));
    line->SetStartPosition({1, 2});
    Ruvex::CountedPtr<PolyLine> copy(new PolyLine(EType::Polygon, false));
    copy->CopyFrom(line.Get());
    EXPECT_TRUE(copy->IsEqual(line.Get()));
    EXPECT_NEAR(copy->GetLength(), line->GetLength(), 1e-12);  // the smoothed curve rebuilt
    copy->SetType(EType::ClampedSpline);
    EXPECT_FALSE(copy->IsEqual(line.Get()));
}

TEST(PolyLine, MovesRebuildWhatWaitsForARebuild) {
    const std::vector<vek::Vector2> points = {{0, 0}, {10, 2}, {20, 5}, {25, 15}};
    Ruvex::CountedPtr<PolyLine> line(MakePolyLine(EType::ClampedSpline, points));
    line->SetEndTangent(1.0);
    Ruvex::CountedPtr<PolyLine> fresh(line->Clone());
    // A plain move: the same curve, placed elsewhere.
    line->SetStartPosition({100, 50});
    line->SetStartOrientation(0.5);
    fresh->SetStartPosition({100, 50});
    fresh->SetStartOrientation(0.5);
    EXPECT_EQ(line->GetLength(), fresh->GetLength());
    for (double s : {0.0, 7.5, 20.0, line->GetLength(), line->GetLength() + 2}) {
        const PointData a = line->GetPointData(s), b = fresh->GetPointData(s);
        EXPECT_EQ(a.position, b.position) << s;
        EXPECT_EQ(a.heading, b.heading) << s;
        EXPECT_EQ(a.curvature, b.curvature) << s;
    }
    EXPECT_TRUE(vek::isEqual(line->GetBoundingBox().min, fresh->GetBoundingBox().min, 0));
    // A point inserted without update, constraints set, or the record's type or tangent changed behind the
    // runtime class's back: the next move rebuilds with them.
    const double length = line->GetLength();
    line->InsertControlPoint(4, {30, 30}, false);
    line->SetStartPosition({0, 0});
    EXPECT_GT(line->GetLength(), length + 10);
    EXPECT_EQ(line->GetEndAbscissas().size(), 4u);
    line->SetOriginConstraints(false, true);
    line->SetStartOrientation(0);
    EXPECT_EQ(line->GetControlPoint(1).y, 0);
    static_cast<Ruvex::PolyLineElement&>(*line).SetType(EType::Polygon);
    line->SetStartPosition({1, 1});
    EXPECT_DOUBLE_EQ(line->GetLength(), line->GetPolylineLength());
    // The natural end tangent asked twice rebuilds once, and the second answer is the first.
    line->SetType(EType::ClampedSpline);
    line->ComputeNaturalEndTangent();
    const double tangent = line->GetEndTangent();
    const double curveLength = line->GetLength();
    line->ComputeNaturalEndTangent();
    EXPECT_EQ(line->GetEndTangent(), tangent);
    EXPECT_EQ(line->GetLength(), curveLength);
}

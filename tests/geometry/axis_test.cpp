#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include <orvia/geometry/axis_local_geometry.h>
#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using axis_test::TestAxis;
using Orvia::Axis;
using Orvia::LongitudinalCurveType;

constexpr double kPi = vek::kPi;

// 100 m along +x then a left arc of radius 50 over 50 m; a constant 2 % grade from z = 10; banking rising
// linearly from 0 to 0.1 rad over the first 100 m, then flat.
void Build(TestAxis& axis) {
    axis.GetXYCurve()->AddFunction(new Segment(100));
    axis.GetXYCurve()->AddFunction(new CircleArc(50, 0.02));
    axis.GetSZCurve()->AddFunction(new PolynomialFunction({0, 10}, 0.02, {150, 13}, 0.02));
    axis.GetBankingCurve()->AddFunction(new PolynomialFunction({0, 0}, 0.001, {100, 0.1}, 0.001));
    axis.GetBankingCurve()->AddFunction(new PolynomialFunction({100, 0.1}, 0, {150, 0.1}, 0));
    axis.Invalidate();
}

}  // namespace

TEST(Axis, BankingLimitsAndCurveSelection) {
    EXPECT_DOUBLE_EQ(Axis::ApplyBankingOnAltitude(10, 2, 0.1), 10 - 2 * std::tan(0.1));
    EXPECT_DOUBLE_EQ(Axis::ApplyBankingOnAltitude(10, -2, 0.1), 10 + 2 * std::tan(0.1));  // left side rises
    EXPECT_EQ(Axis::ValidateBanking(2.0), 1.413716694115407);
    EXPECT_EQ(Axis::ValidateBanking(-2.0), -1.413716694115407);
    EXPECT_DOUBLE_EQ(Axis::ApplyBankingOnAltitude(10, 2, 2.0), 10 - 2 * std::tan(1.413716694115407));
    EXPECT_EQ(Axis::ApplyBankingOnAltitude(10, 2, 5e-13), 10);
    TestAxis axis;
    EXPECT_EQ(axis.GetLongitudinalCurve(static_cast<LongitudinalCurveType>(3)), axis.GetSZCurve());
    EXPECT_EQ(axis.GetLongitudinalCurve(LongitudinalCurveType::Banking), axis.GetBankingCurve());
    EXPECT_EQ(axis.GetLongitudinalCurve(static_cast<LongitudinalCurveType>(4)), nullptr);
}

TEST(Axis, MarkIsLevelOnTheCentreLineAndRolledOffIt) {
    TestAxis axis;
    Build(axis);
    ASSERT_TRUE(axis.Validate());
    const double b = axis.GetBankingCurve()->GetValue(50);
    ASSERT_NEAR(b, 0.05, 1e-12);
    vek::Mark mark;
    ASSERT_TRUE(axis.GetMark(mark, 50, 0.0));
    EXPECT_EQ(mark.roll, 0);  // banked axis, level centre-line frame
    EXPECT_NEAR(mark.pitch, -std::atan(0.02), 1e-15);
    EXPECT_TRUE(vek::isEqual(mark.position, {50, 0, 11}, 1e-12));
    ASSERT_TRUE(axis.GetMark(mark, 50, 0.5));
    EXPECT_EQ(mark.roll, b);
    EXPECT_TRUE(vek::isEqual(mark.position, {50, -0.5, 11 - 0.5 * std::tan(b)}, 1e-12));
    vek::Mark other;  // only the first component of the offset counts
    ASSERT_TRUE(axis.GetMark(other, 50, vek::Vector2(0.5, 9)));
    EXPECT_EQ(other, mark);
    ASSERT_TRUE(axis.GetMark(mark, 125, -1.0));
    EXPECT_NEAR(mark.yaw, 0.5, 1e-12);
    EXPECT_NEAR(mark.position.z, 12.5 + std::tan(0.1), 1e-12);
    // The combined query agrees with the mark.
    vek::Vector3 position, tangent;
    double curvature = 0;
    ASSERT_TRUE(axis.GetPositionTangentCurvature(125, {-1, 0}, &position, &tangent, &curvature));
    EXPECT_TRUE(vek::isEqual(position, mark.position, 1e-12));
    EXPECT_TRUE(vek::isEqual(tangent, mark.rotation().column(0), 1e-12));
    EXPECT_EQ(curvature, 0.02);
    EXPECT_FALSE(TestAxis().GetMark(mark, 0, 0.0));
}

TEST(Axis, GeometricDataExtrapolatesTheAltitudeWithTheSlopeAngle) {
    TestAxis axis;
    Build(axis);
    ASSERT_TRUE(axis.Validate());
    const double length = axis.GetXYLength(), zEnd = axis.GetSZCurve()->GetValue(length),
                 angle = std::atan(0.02);
    vek::Vector2 position, tangent;
    double altitude = 0, slope = 0, curvature = 0, vertical = 1, banking = 0;
    ASSERT_TRUE(axis.GetGeometricData(length + 10, {}, &position, &altitude, &tangent, &slope, &curvature,
                                      &vertical, &banking));
    EXPECT_NEAR(altitude, zEnd + angle * 10, 1e-12);  // the angle, not its tangent, is the rate
    EXPECT_GT(std::fabs(zEnd + 0.02 * 10 - altitude), 1e-7);
    EXPECT_NEAR(slope, angle, 1e-15);
    EXPECT_NEAR(vertical, 0, 1e-15);
    EXPECT_NEAR(banking, 0.1, 1e-15);
    EXPECT_EQ(curvature, 0);  // the straight extension
    EXPECT_NEAR(tangent.x, std::cos(1.0), 1e-12);
    // Before the start and off the centre line, with the banking read at s.
    ASSERT_TRUE(
        axis.GetGeometricData(-5, {2, 0}, nullptr, &altitude, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_NEAR(altitude,
                Axis::ApplyBankingOnAltitude(10 - 5 * angle, 2, axis.GetBankingCurve()->GetValue(-5)), 1e-12);
    axis.GetSZCurve()->GetEditableFunction(0)->Set({0, 10}, 0, {150, 13}, 0.04);
    ASSERT_TRUE(
        axis.GetGeometricData(75, {}, nullptr, nullptr, nullptr, nullptr, nullptr, &vertical, nullptr));
    EXPECT_NEAR(vertical, axis.GetSZCurve()->GetCurvature(75), 1e-15);
    // Only horizontal outputs fail on an empty horizontal curve.
    TestAxis empty;
    EXPECT_TRUE(
        empty.GetGeometricData(1, {}, nullptr, &altitude, nullptr, &slope, nullptr, nullptr, &banking));
    EXPECT_FALSE(
        empty.GetGeometricData(1, {}, &position, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST(Axis, PositionFrameAndEndPoints) {
    TestAxis axis;
    Build(axis);
    const double theta = std::atan(0.02);
    vek::Vector3 p, v, n;
    ASSERT_TRUE(axis.GetPosition(p, 20, 1));
    EXPECT_TRUE(vek::isEqual(p, {20, -1, 10.4 - std::tan(0.02)}, 1e-12));
    ASSERT_TRUE(axis.GetTangent(v, 20));
    EXPECT_TRUE(vek::isEqual(v, {std::cos(theta), 0, std::sin(theta)}, 1e-15));
    // The up axis of the unrolled frame climbing the grade leans back.
    ASSERT_TRUE(axis.GetNormal(n, 20));
    EXPECT_TRUE(vek::isEqual(n, {-std::sin(theta), 0, std::cos(theta)}, 1e-15));
    EXPECT_TRUE(
        vek::isEqual(axis.GetXYPosition(125, 0), {100 + 50 * std::sin(0.5), 50 - 50 * std::cos(0.5)}, 1e-12));
    // Without horizontal pieces: (0, 0) and the elevation; the curvature output is still written.
    TestAxis empty;
    empty.GetSZCurve()->AddFunction(new PolynomialFunction({0, 4}, 0, {10, 4}, 0));
    ASSERT_TRUE(empty.GetPosition(p, 3, 0));
    EXPECT_EQ(p, vek::Vector3(0, 0, 4));
    double curvature = 9;
    EXPECT_FALSE(empty.GetPositionTangentCurvature(3, {}, &p, nullptr, &curvature));
    EXPECT_EQ(curvature, 0);
    EXPECT_FALSE(empty.GetNormal(n, 0));
    Orvia::PointControl start, end;
    EXPECT_FALSE(empty.GetStartPoint(start));

    ASSERT_TRUE(axis.GetStartPoint(start));
    EXPECT_NEAR(start.z, 10, 1e-12);
    EXPECT_NEAR(start.slope, std::atan(0.02), 1e-15);
    ASSERT_TRUE(axis.GetEndPoint(end));
    EXPECT_NEAR(end.heading, 1, 1e-12);
    EXPECT_NEAR(end.curvature, 0.02, 1e-15);
    ASSERT_TRUE(axis.SetStartPoint({.x = 1000, .y = 2000, .z = 50, .heading = kPi / 2}));
    EXPECT_FALSE(axis.IsAxisValid());
    ASSERT_TRUE(axis.GetEndPoint(end));
    EXPECT_NEAR(end.heading, kPi / 2 + 1, 1e-12);
    EXPECT_NEAR(end.x, 1000 - (50 - 50 * std::cos(1.0)), 1e-9);
    EXPECT_NEAR(end.z, 53, 1e-12);  // the whole profile moved up by 40
}

TEST(Axis, InvertCurvesRunsTheAxisBackwards) {
    TestAxis axis;
    Build(axis);
    ASSERT_TRUE(axis.Validate());
    const double length = axis.GetXYLength();
    std::vector<vek::Mark> left(31);
    for (int i = 0; i <= 30; ++i)
        ASSERT_TRUE(axis.GetMark(left[i], length * i / 30, -1.0));
    axis.InvertCurves();
    EXPECT_TRUE(axis.IsAxisValid());
    for (int i = 0; i <= 30; ++i) {
        // The old left side is the new right side; the banking changed sign with it.
        vek::Mark m;
        ASSERT_TRUE(axis.GetMark(m, length * (30 - i) / 30, 1.0));
        EXPECT_TRUE(vek::isEqual(m.position, left[i].position, 1e-9)) << i;
        EXPECT_TRUE(vek::isEqual(vek::Vector2(m.roll, m.pitch), {-left[i].roll, -left[i].pitch}, 1e-12)) << i;
        EXPECT_NEAR(vek::normalizeAngle(m.yaw - left[i].yaw - kPi), 0, 1e-9) << i;
    }
    TestAxis flat;  // an axis without banking inverts the others
    Build(flat);
    flat.DropBanking();
    flat.InvertAxis();
    EXPECT_NEAR(flat.GetValidAltitude(0, 3), 13, 1e-12);
}

TEST(Axis, EditsInvalidateAndTheBoxFollows) {
    TestAxis axis;
    Build(axis);
    axis.SetBoundingMargin(3);
    vek::Box3 box;
    ASSERT_TRUE(axis.GetBoundingBox(box));
    EXPECT_NEAR(box.min.x, -3 - 0.5, 1e-9);  // the segment's own box is grown by 0.5 % of its length
    EXPECT_NEAR(box.min.z, 10, 1e-12);
    EXPECT_NEAR(box.max.z, 13, 1e-12);
    ASSERT_TRUE(axis.AddXYFunction(new Segment(30), Orvia::Curve2D::npos));
    EXPECT_FALSE(axis.IsAxisValid());
    EXPECT_NEAR(axis.GetValidXYLength(), 180, 1e-12);
    ASSERT_TRUE(axis.GetBoundingBox(box));
    EXPECT_GT(box.max.y, 50 - 50 * std::cos(1.0) + 30 * std::sin(1.0) + 3 - 1e-9);
    EXPECT_FALSE(axis.AddXYFunction(nullptr, 0));
    ASSERT_TRUE(axis.RemoveXYFunction(0));
    EXPECT_FALSE(axis.RemoveXYFunction(5));
    EXPECT_NEAR(axis.GetValidTotalLength(), 80, 1e-12);
    axis.SetXYLength(60);
    EXPECT_NEAR(axis.GetXYLength(), 80, 1e-12);  // cached until validated
    axis.Validate();
    EXPECT_NEAR(axis.GetXYLength(), 60, 1e-12);
    EXPECT_TRUE(axis.UpdateAxis());
    TestAxis empty;
    EXPECT_FALSE(empty.UpdateAxis());
    ASSERT_TRUE(empty.GetBoundingBox(box));
    EXPECT_TRUE(box.isEmpty());
}

TEST(AxisLocalGeometry, FillDataAndFrame) {
    TestAxis axis;
    Build(axis);
    Orvia::AxisLocalGeometry local;
    const int before = axis.validations;
    ASSERT_TRUE(local.FillData(&axis, 50, {0.5, 0}));  // through the template, as a track is passed
    EXPECT_GT(axis.validations, before);
    vek::Mark mark, frame;
    ASSERT_TRUE(axis.GetMark(mark, 50, 0.5));
    local.GetFrame(frame);
    EXPECT_TRUE(vek::isEqual(frame.position, mark.position, 1e-12));
    EXPECT_TRUE(vek::isEqual(vek::Vector3(frame.roll, frame.pitch, frame.yaw),
                             {mark.roll, mark.pitch, mark.yaw}, 1e-15));
    // On the centre line the record still carries the banking as roll; GetMark does not.
    ASSERT_TRUE(local.FillData(static_cast<Axis*>(&axis), 50, {}));
    local.GetFrame(frame);
    EXPECT_NEAR(frame.roll, 0.05, 1e-12);
    EXPECT_FALSE(local.FillData(static_cast<Axis*>(nullptr), 0, {}));
}

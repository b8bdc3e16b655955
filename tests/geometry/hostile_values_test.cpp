// Values no road has (negative, not finite, absurdly large) reach the geometry through files and setters.
// Loading brings them into range with a warning at their place, setters refuse them, and no query recurses or
// answers NaN for finite input.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using Orvia::Curve2D;
using Ruvex::CountedPtr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

bool IsFinite(const PointData& pd) {
    return std::isfinite(pd.position.x) && std::isfinite(pd.position.y) && std::isfinite(pd.heading) &&
           std::isfinite(pd.curvature);
}

// Samples inside, at the ends and far beyond them, with and without an offset: all finite.
void ExpectFiniteSamples(const Curve2D& curve) {
    const double length = curve.GetLength();
    for (double s : {-1e6, -5.0, 0.0, 0.5 * length, length, length + 5, 1e6})
        for (double t : {0.0, 3.0}) {
            PointData pd;
            ASSERT_TRUE(curve.GetPointData(s, t, pd)) << s;
            EXPECT_TRUE(IsFinite(pd)) << s << " " << t;
        }
}

// A piece of a class the curve does not know, reporting whatever length it is given.
class AnyLengthSegment : public Segment {
public:
    explicit AnyLengthSegment(double length) : m_reported(length) {}
    double GetLength() const override { return m_reported; }

private:
    double m_reported;
};

}  // namespace

TEST(Curve2D, HostileLengthsAndCurvaturesLoadClampedWithAWarning) {
    axis_test::ScopedOrviaFactory factory;
    const char* text = R"(<Ruvex version="2.5" versionRevision="0">
  <XYCurve>
    <Segment length="-20"/>
    <CircleArc length="1e300" curvature="-5e5"/>
    <ClothoArc length="-3" startCurvature="1e9" endCurvature="0.5"/>
    <Segment length="4"/>
  </XYCurve>
</Ruvex>)";
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text, true));
    auto* curve = dynamic_cast<Curve2D*>(root.Get());
    ASSERT_TRUE(curve);
    ASSERT_EQ(curve->GetFunctionCount(), 4u);
    EXPECT_EQ(curve->GetFunction(0)->GetLength(), 0);
    auto* arc = dynamic_cast<CircleArc*>(curve->GetFunction(1));
    EXPECT_EQ(arc->GetLength(), ParametricFunction::kMaxLength);
    EXPECT_EQ(arc->GetCurvature(), -ParametricFunction::kMaxCurvature);
    auto* clothoid = dynamic_cast<ClothoArc*>(curve->GetFunction(2));
    EXPECT_EQ(clothoid->GetLength(), 0);
    EXPECT_EQ(clothoid->GetStartCurvature(), ParametricFunction::kMaxCurvature);
    EXPECT_EQ(clothoid->GetEndCurvature(), 0.5);
    // One warning per value brought into range, at its element.
    std::vector<std::pair<size_t, std::string>> warnings;
    for (const Ruvex::Problem& problem : Ruvex::GetLastProblems()) {
        EXPECT_TRUE(problem.warning) << Ruvex::ToString(problem);
        warnings.emplace_back(problem.line, problem.message);
    }
    ASSERT_EQ(warnings.size(), 5u);
    EXPECT_EQ(warnings[0].first, 3u);
    EXPECT_NE(warnings[0].second.find("\"length\" of <Segment> is -20"), std::string::npos)
        << warnings[0].second;
    EXPECT_EQ(warnings[1].first, 4u);
    EXPECT_EQ(warnings[2].first, 4u);
    EXPECT_NE(warnings[2].second.find("\"curvature\""), std::string::npos) << warnings[2].second;
    EXPECT_EQ(warnings[3].first, 5u);
    EXPECT_EQ(warnings[4].first, 5u);
    EXPECT_GT(Ruvex::GetLastProblems()[0].column, 0u);
    ExpectFiniteSamples(*curve);
    // What is saved is what was kept, and loads again without a word.
    const std::string saved = Ruvex::SaveToString(curve);
    EXPECT_NE(saved.find("<Segment length=\"0\" />"), std::string::npos) << saved;
    CountedPtr<Ruvex::Element> again(Ruvex::Load(saved.c_str(), true));
    ASSERT_TRUE(again);
    EXPECT_TRUE(Ruvex::GetLastProblems().empty());
}

// A control point far beyond any road made the piece's length overflow what a track's profile curves can
// be sampled at (the fuzzer found NaN positions on a track through such a polyline).
TEST(Curve2D, FarControlPointsLoadClampedWithAWarning) {
    axis_test::ScopedOrviaFactory factory;
    const char* text = R"(<Ruvex version="2.5" versionRevision="0">
  <XYCurve>
    <PolyLine type="1" points="0 0 2e21 1 20 0 30 -1"/>
    <ClothoidSpline threshold="0.5" points="5 0 15 -1e300 30 0 45 -3"/>
  </XYCurve>
</Ruvex>)";
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text, true));
    auto* curve = dynamic_cast<Curve2D*>(root.Get());
    ASSERT_TRUE(curve);
    const auto& problems = Ruvex::GetLastProblems();
    ASSERT_EQ(problems.size(), 2u);
    EXPECT_EQ(problems[0].line, 3u);
    EXPECT_NE(problems[0].message.find("1 coordinates outside"), std::string::npos) << problems[0].message;
    EXPECT_EQ(problems[1].line, 4u);
    EXPECT_LE(curve->GetLength(), 8 * ParametricFunction::kMaxLength);
    ExpectFiniteSamples(*curve);
    const std::string saved = Ruvex::SaveToString(curve);
    EXPECT_EQ(saved.find("e+21"), std::string::npos) << saved;
}

TEST(Curve2D, HostileSettersAreRefused) {
    Segment segment(10);
    for (double bad : {kNaN, -1.0, kInf, 2 * ParametricFunction::kMaxLength}) {
        segment.SetLength(bad);
        EXPECT_EQ(segment.GetLength(), 10) << bad;
    }
    EXPECT_EQ(Segment(-7).GetLength(), 7);
    EXPECT_EQ(Segment(kNaN).GetLength(), 0);

    CircleArc arc(10, 0.1);
    arc.SetLength(kNaN);
    EXPECT_TRUE(arc.SetRawLength(-3));
    EXPECT_EQ(arc.GetLength(), 10);
    EXPECT_FALSE(arc.SetCurvature(kNaN));
    EXPECT_FALSE(arc.SetCurvature(-kInf));
    EXPECT_EQ(arc.GetCurvature(), 0.1);

    // A length that is not finite would rescale the end curvature to NaN: refused before that.
    ClothoArc clothoid(10, 0, 0.1);
    clothoid.SetLength(kNaN);
    clothoid.SetLength(kInf);
    clothoid.SetRawLength(kNaN);
    EXPECT_EQ(clothoid.GetLength(), 10);
    EXPECT_EQ(clothoid.GetEndCurvature(), 0.1);
    EXPECT_FALSE(clothoid.SetStartCurvature(kNaN));
    EXPECT_FALSE(clothoid.SetEndCurvature(kInf));
    EXPECT_EQ(clothoid.GetStartCurvature(), 0);
    EXPECT_EQ(ClothoArc(kNaN, kNaN, 0.1).GetLength(), 0);

    segment.SetStartPosition({kNaN, 1});
    segment.SetStartOrientation(kInf);
    EXPECT_EQ(segment.GetStartPosition(), vek::Vector2(0, 0));
    EXPECT_EQ(segment.GetStartOrientation(), 0);

    PolyLine polyline(Ruvex::PolyLineElement::EType::Polygon, true);
    polyline.SetControlPoints({{0, 0}, {10, 0}});
    polyline.SetLength(kNaN);
    polyline.SetLength(-1);
    EXPECT_EQ(polyline.GetLength(), 10);

    // The composite curve keeps its length for NaN and infinities; below its minimum it is raised.
    Curve2D curve;
    curve.AddFunction(new Segment(10));
    curve.AddFunction(new ClothoArc(10, 0, 0.1));
    curve.UpdateFunctionsFromStart();
    for (double bad : {kNaN, kInf, -kInf}) {
        curve.SetLength(bad);
        EXPECT_EQ(curve.GetLength(), 20) << bad;
    }
    curve.SetLength(-20);
    EXPECT_EQ(curve.GetLength(), Curve2D::kMinLength);
    ExpectFiniteSamples(curve);
}

// Extrapolating beyond an end samples that end; with a negative or non-finite total length the end used to be
// outside [0, length] too, and the two ends sampled each other until the stack ran out.
TEST(Curve2D, ExtrapolationNeverRecurses) {
    for (double reported : {-20.0, kNaN, kInf, -kInf}) {
        Curve2D curve;
        curve.AddFunction(new AnyLengthSegment(reported));
        curve.UpdateFunctionsFromStart();
        EXPECT_TRUE(std::isfinite(curve.GetLength())) << reported;
        PointData pd;
        for (double s : {0.0, -5.0, 5.0, 1e300}) {
            ASSERT_TRUE(curve.GetPointData(s, 1, pd)) << reported << " " << s;
            EXPECT_TRUE(std::isfinite(pd.position.x) && std::isfinite(pd.heading)) << reported << " " << s;
        }
        EXPECT_TRUE(std::isfinite(curve.SearchNearestAbscissa({3, 1}, 0, 1e-6, 20))) << reported;
    }
    // Pieces of negative length between ordinary ones: the table then has no abscissa index.
    Curve2D mixed;
    mixed.AddFunction(new Segment(10));
    mixed.AddFunction(new AnyLengthSegment(-20));
    mixed.AddFunction(new CircleArc(5, 0.2));
    mixed.UpdateFunctionsFromStart();
    ExpectFiniteSamples(mixed);
}

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <orvia/ruvex/counted.h>
#include <orvia/vek/math.h>

#include "curve_test_support.h"

namespace {

using Ruvex::CountedPtr;

constexpr double kPi = vek::kPi;

// Heading difference brought into (-pi, pi].
double AngleDiff(double a, double b) {
    return vek::normalizeAngle(a - b);
}

void ExpectSameSample(const PointData& a, const PointData& b, double tol, const std::string& where) {
    EXPECT_NEAR(a.position.x, b.position.x, tol) << where;
    EXPECT_NEAR(a.position.y, b.position.y, tol) << where;
    EXPECT_NEAR(AngleDiff(a.heading, b.heading), 0, tol) << where;
    EXPECT_NEAR(a.curvature, b.curvature, tol) << where;
}

std::vector<CountedPtr<ParametricFunction>> PlacedPieces() {
    std::vector<CountedPtr<ParametricFunction>> pieces = {new Segment(7), new CircleArc(9, -0.15),
                                                          new ClothoArc(40, 0.01, -0.06),
                                                          new ClothoArc(25, 0.03, 0.03)};
    auto* polygon = new PolyLine(PolyLine::EType::Polygon, false);
    polygon->SetControlPoints({{0, 0}, {4, 0}, {7, 3}, {7, 8}});
    pieces.push_back(polygon);
    for (size_t i = 0; i < pieces.size(); ++i) {
        pieces[i]->SetStartPosition({3.0 + i, -4.0});
        pieces[i]->SetStartOrientation(0.3 + 0.7 * static_cast<double>(i));
    }
    return pieces;
}

}  // namespace

TEST(PointData, TangentAndNormal) {
    PointData pd;
    EXPECT_EQ(pd.position, vek::Vector2());
    EXPECT_EQ(pd.heading, 0);
    EXPECT_EQ(pd.curvature, 0);
    pd = PointData({1, 2}, 0, 0.5);
    pd.SetTangent({0, 2});
    EXPECT_DOUBLE_EQ(pd.heading, kPi / 2);
    EXPECT_TRUE(vek::isEqual(pd.GetTangent(), {0, 1}, 1e-15));
    EXPECT_TRUE(vek::isEqual(pd.GetNormal(), {-1, 0}, 1e-15));
    pd.SetNormal({0.5, -3});  // left normal pointing down and right: travelling towards -x, slightly down
    EXPECT_DOUBLE_EQ(pd.heading, std::atan2(-0.5, -3));
    EXPECT_EQ(pd.position, vek::Vector2(1, 2));
    EXPECT_EQ(pd.curvature, 0.5);
}

TEST(ParametricFunction, StartOrientationNormalisation) {
    Segment s(1);
    s.SetStartOrientation(3 * kPi / 2);
    EXPECT_NEAR(s.GetStartOrientation(), -kPi / 2, 1e-15);
    s.SetStartOrientation(-kPi);
    EXPECT_EQ(s.GetStartOrientation(), kPi);
    s.SetStartOrientation(kPi);
    EXPECT_EQ(s.GetStartOrientation(), kPi);
    s.SetStartOrientation(-2 * kPi);
    EXPECT_NEAR(s.GetStartOrientation(), 0, 1e-15);
    s.SetStartOrientation(7 * kPi + 0.25);
    EXPECT_NEAR(s.GetStartOrientation(), -kPi + 0.25, 1e-13);
    // The placement follows: the unit segment now points along -x, turned slightly clockwise... of -pi +
    // 0.25.
    const PointData end = s.GetPointData(1);
    EXPECT_NEAR(end.position.x, std::cos(-kPi + 0.25), 1e-13);
    EXPECT_NEAR(end.position.y, std::sin(-kPi + 0.25), 1e-13);
}

TEST(ParametricFunction, ForcedStartOrientation) {
    CircleArc arc(10, 0.1);
    arc.SetStartOrientation(1);
    arc.SetForcedStartOrientation(0.7);
    EXPECT_EQ(arc.GetPointData(0.005).heading, 0.7);
    EXPECT_EQ(arc.GetPointData(-0.005).heading, 0.7);
    EXPECT_NEAR(arc.GetPointData(0.02).heading, 1 + 0.1 * 0.02, 1e-15);
    // Within 0.01 of zero counts as not forced.
    arc.SetForcedStartOrientation(0.005);
    EXPECT_NEAR(arc.GetPointData(0.005).heading, 1 + 0.1 * 0.005, 1e-15);
}

TEST(ParametricFunction, SplitRefusesRatiosOutsideTheOpenInterval) {
    for (double ratio : {0.0, 1.0, -0.5, 1.5, std::nan("")}) {
        ClothoArc arc(10, 0, 0.1);
        EXPECT_EQ(arc.Split(ratio), nullptr) << ratio;
        EXPECT_EQ(arc.GetLength(), 10);
        EXPECT_EQ(arc.GetEndCurvature(), 0.1);
    }
}

TEST(ParametricFunction, BoundingBoxFollowsChanges) {
    CircleArc arc(10 * kPi / 2, 0.1);  // quarter circle to (10, 10)
    const vek::Box2 box = arc.GetBoundingBox();
    const double margin = arc.GetLength() * 0.005;
    EXPECT_NEAR(box.min.x, -margin, 1e-12);
    EXPECT_NEAR(box.min.y, -margin, 1e-12);
    EXPECT_NEAR(box.max.x, 10 + margin, 1e-12);
    EXPECT_NEAR(box.max.y, 10 + margin, 1e-12);
    arc.SetStartPosition({100, 0});
    EXPECT_NEAR(arc.GetBoundingBox().min.x, 100 - margin, 1e-12);
    arc.Flip();
    EXPECT_NEAR(arc.GetBoundingBox().min.y, -10 - margin, 1e-12);
    arc.Invert();  // now from (110, -10) back to (100, 0)
    EXPECT_NEAR(arc.GetBoundingBox().max.x, 110 + margin, 1e-12);
    EXPECT_NEAR(arc.GetBoundingBox().min.y, -10 - margin, 1e-12);
}

TEST(ParametricFunction, ReferenceCountIsTheElements) {
    CountedPtr<ParametricFunction> piece(new ClothoArc(5, 0, 0.1));
    Ruvex::Element* element = piece->GetElement();
    EXPECT_EQ(element->GetRefCount(), 1u);
    {
        CountedPtr<Ruvex::Element> other(element);
        EXPECT_EQ(element->GetRefCount(), 2u);
        EXPECT_EQ(piece->AddRef(), 3u);
        EXPECT_EQ(piece->Release(), 2u);
    }
    EXPECT_EQ(element->GetRefCount(), 1u);
    EXPECT_EQ(element->GetTagName(), "ClothoArc");
}

TEST(Segment, SamplesAndEquality) {
    Segment s(5);
    s.SetStartPosition({1, 2});
    s.SetStartOrientation(kPi / 2);
    const PointData mid = s.GetPointData(3);
    EXPECT_TRUE(vek::isEqual(mid.position, {1, 5}, 1e-14));
    EXPECT_EQ(mid.heading, kPi / 2);
    EXPECT_EQ(mid.curvature, 0);
    EXPECT_TRUE(vek::isEqual(s.GetPointData(7).position, {1, 9}, 1e-14));
    EXPECT_TRUE(vek::isEqual(s.GetPointData(-1).position, {1, 1}, 1e-14));

    Segment same(5);
    EXPECT_TRUE(s.IsEqual(&same));
    EXPECT_TRUE(s.SetRawLength(6));
    EXPECT_FALSE(s.IsEqual(&same));
    CircleArc arc(6, 0.1);
    EXPECT_FALSE(s.IsEqual(&arc));
    EXPECT_FALSE(s.IsEqual(nullptr));
}

TEST(CircleArc, SamplesAndRefusals) {
    CircleArc arc(10 * kPi / 2, 0.1);
    const PointData end = arc.GetPointData(arc.GetLength());
    EXPECT_TRUE(vek::isEqual(end.position, {10, 10}, 1e-12));
    EXPECT_NEAR(end.heading, kPi / 2, 1e-15);
    EXPECT_EQ(end.curvature, 0.1);
    // Beyond the end the circle continues: a full turn comes back to the start.
    EXPECT_TRUE(vek::isEqual(arc.GetPointData(20 * kPi).position, {0, 0}, 1e-12));

    CircleArc right(10 * kPi / 2, -0.1);
    EXPECT_TRUE(vek::isEqual(right.GetPointData(right.GetLength()).position, {10, -10}, 1e-12));

    EXPECT_FALSE(arc.SetCurvature(1e-13));
    EXPECT_FALSE(arc.SetCurvature(0));
    EXPECT_EQ(arc.GetCurvature(), 0.1);
    EXPECT_TRUE(arc.SetCurvature(-0.2));
    EXPECT_EQ(arc.GetCurvature(), -0.2);

    // A zero curvature read from a file keeps every sample at the start, heading 0.
    CircleArc flat(10, 0);
    const PointData far = flat.GetPointData(8);
    EXPECT_EQ(far.position, vek::Vector2(0, 0));
    EXPECT_EQ(far.heading, 0);

    arc.Flip();
    EXPECT_EQ(arc.GetCurvature(), 0.2);
    CircleArc other(arc.GetLength(), 0.2);
    EXPECT_TRUE(arc.IsEqual(&other));
    EXPECT_FALSE(arc.IsEqual(&flat));
}

TEST(CircleArc, TinyCurvatureStaysOnTheCircle) {
    const double k = 1e-11;
    CircleArc arc(100, k);
    for (double s = 0; s <= 100; s += 12.5) {
        const PointData pd = arc.GetPointData(s);
        // Exact circle: x = sin(ks)/k = s - k^2 s^3 / 6 + ..., y = (1 - cos ks)/k = k s^2 / 2 - ...
        EXPECT_NEAR(pd.position.x, s, 1e-9) << s;
        EXPECT_NEAR(pd.position.y, k * s * s / 2, 1e-9 * 1e-3) << s;
    }
    EXPECT_NEAR(arc.GetPointData(100).position.y, 5e-8, 1e-12);
}

TEST(ClothoArc, KnownValues) {
    ClothoArc arc(10, 0, 0.1);
    const PointData end = arc.GetPointData(10);
    EXPECT_NEAR(end.curvature, 0.1, 1e-15);
    EXPECT_NEAR(end.heading, 0.5, 1e-15);
    const PointData start = arc.GetPointData(0);
    EXPECT_EQ(start.position, vek::Vector2(0, 0));
    EXPECT_EQ(start.heading, 0);
    EXPECT_EQ(start.curvature, 0);
    EXPECT_NEAR(arc.GetPointData(5).curvature, 0.05, 1e-15);
    const curve_test::Integrated exact = curve_test::IntegrateHeading(0, 0, 0, 0, 0.01, 10);
    EXPECT_NEAR(end.position.x, static_cast<double>(exact.x), 1e-9);
    EXPECT_NEAR(end.position.y, static_cast<double>(exact.y), 1e-9);
    // Beyond the end the clothoid goes on.
    EXPECT_NEAR(arc.GetPointData(12).curvature, 0.12, 1e-15);
}

TEST(ClothoArc, DegenerateShapes) {
    // Equal curvatures: the circle.
    ClothoArc constant(30, 0.02, 0.02);
    CircleArc circle(30, 0.02);
    for (double s : {0.0, 7.0, 30.0, 33.0})
        ExpectSameSample(constant.GetPointData(s), circle.GetPointData(s), 1e-12,
                         "circle " + std::to_string(s));
    // Curvatures within 1e-5 of each other still count as the circle of the start curvature.
    ClothoArc almost(30, -0.02, -0.02 + 5e-6);
    CircleArc right(30, -0.02);
    ExpectSameSample(almost.GetPointData(30), right.GetPointData(30), 1e-12, "near-circle");
    // Both curvatures below 1e-5: a line.
    ClothoArc flat(30, 5e-6, -5e-6);
    const PointData f = flat.GetPointData(12);
    EXPECT_EQ(f.position, vek::Vector2(12, 0));
    EXPECT_EQ(f.heading, 0);
    EXPECT_EQ(f.curvature, 0);
    // Too short: a line along +x whatever the curvatures.
    ClothoArc tiny(5e-6, 0.5, 1);
    EXPECT_EQ(tiny.GetPointData(3).position, vek::Vector2(3, 0));
    EXPECT_EQ(tiny.GetPointData(3).curvature, 0);
    // Negative lengths are stored as their magnitude.
    EXPECT_EQ(ClothoArc(-8, 0, 0.1).GetLength(), 8);
}

TEST(ClothoArc, DecreasingIsTheMirrorOfIncreasingWithNegatedCurvatures) {
    ClothoArc decreasing(50, 0.02, 0.005);
    ClothoArc increasing(50, -0.02, -0.005);
    for (double s = -5; s <= 55; s += 2.5) {
        const PointData d = decreasing.GetPointData(s);
        const PointData i = increasing.GetPointData(s);
        EXPECT_EQ(d.position.x, i.position.x) << s;
        EXPECT_EQ(d.position.y, -i.position.y) << s;
        EXPECT_EQ(d.heading, -i.heading) << s;
        EXPECT_EQ(d.curvature, -i.curvature) << s;
    }
}

TEST(ClothoArc, AgreesWithIntegratedHeading) {
    struct Case {
        double length, k0, k1;
        vek::Vector2 start;
        double orientation;
    };
    // Lengths up to 200 m, Cornu parameter |t| <= 3, both signs, increasing and decreasing, through zero.
    const Case cases[] = {
        {200, 0, 0.05, {0, 0}, 0},         {200, 0.05, -0.04, {1000, -500}, 2.5},
        {120, -0.08, -0.01, {-30, 7}, -1}, {150, 0.01, 0.09, {5, 5}, kPi},
        {60, 0.2, 0.05, {0, 250}, -2.9},   {200, -0.001, -0.03, {-1e4, 2e4}, 0.4},
        {200, 0.04, 0.0, {12, -8}, 1.2},
    };
    for (const Case& c : cases) {
        ClothoArc arc(c.length, c.k0, c.k1);
        arc.SetStartPosition(c.start);
        arc.SetStartOrientation(c.orientation);
        const double rate = (c.k1 - c.k0) / c.length;
        for (int i = 0; i <= 20; ++i) {
            const double s = c.length * i / 20;
            const PointData pd = arc.GetPointData(s);
            const curve_test::Integrated exact =
                curve_test::IntegrateHeading(c.start.x, c.start.y, c.orientation, c.k0, rate, s);
            const std::string where = std::to_string(c.length) + " " + std::to_string(c.k0) + " " +
                                      std::to_string(c.k1) + " at " + std::to_string(s);
            EXPECT_NEAR(pd.position.x, static_cast<double>(exact.x), 1e-6) << where;
            EXPECT_NEAR(pd.position.y, static_cast<double>(exact.y), 1e-6) << where;
            const double heading = c.orientation + c.k0 * s + 0.5 * rate * s * s;
            EXPECT_NEAR(AngleDiff(pd.heading, heading), 0, 1e-8) << where;
            EXPECT_NEAR(pd.curvature, c.k0 + rate * s, 1e-12) << where;
        }
    }
}

TEST(ClothoArc, FarAlongTheSpiral) {
    // Cornu parameters beyond the series' reach: tight, slowly changing curvature, and a long spiral.
    struct Case {
        double length, k0, k1;
    };
    const Case cases[] = {
        {20, 0.28, 0.30}, {100, 0.01, 0.01002}, {200, 0, 0.36}, {50, -0.5, -0.45}, {30, 2, 1.9}};
    for (const Case& c : cases) {
        ClothoArc arc(c.length, c.k0, c.k1);
        arc.SetStartPosition({-40, 15});
        arc.SetStartOrientation(-2);
        const double rate = (c.k1 - c.k0) / c.length;
        for (int i = -2; i <= 42; ++i) {
            const double s = c.length * i / 40;
            const PointData pd = arc.GetPointData(s);
            const curve_test::Integrated exact = curve_test::IntegrateHeading(-40, 15, -2, c.k0, rate, s);
            const std::string where =
                std::to_string(c.k0) + " -> " + std::to_string(c.k1) + " at " + std::to_string(s);
            EXPECT_NEAR(pd.position.x, static_cast<double>(exact.x), 1e-9 * c.length) << where;
            EXPECT_NEAR(pd.position.y, static_cast<double>(exact.y), 1e-9 * c.length) << where;
            EXPECT_NEAR(AngleDiff(pd.heading, -2 + c.k0 * s + 0.5 * rate * s * s), 0, 1e-9) << where;
        }
    }
}

TEST(ClothoArc, SeriesErrorScalesWithTheClothoidScale) {
    // A very gentle transition (clothoid scale a = 2000 m): the summed series' truncation, below 4e-9 before
    // scaling for |t| <= 3, is multiplied by a.
    ClothoArc arc(200, 0.0029, 0.0030);
    for (double s = 0; s <= 200; s += 25) {
        const curve_test::Integrated exact = curve_test::IntegrateHeading(0, 0, 0, 0.0029, 0.0001 / 200, s);
        const PointData pd = arc.GetPointData(s);
        EXPECT_NEAR(pd.position.x, static_cast<double>(exact.x), 2000 * 8e-9) << s;
        EXPECT_NEAR(pd.position.y, static_cast<double>(exact.y), 2000 * 8e-9) << s;
    }
}

TEST(ClothoArc, LengthAndCurvatureSetters) {
    ClothoArc arc(10, 0.01, 0.03);
    arc.SetLength(20);  // the curvature keeps growing at the same rate
    EXPECT_EQ(arc.GetLength(), 20);
    EXPECT_NEAR(arc.GetEndCurvature(), 0.05, 1e-15);
    EXPECT_NEAR(arc.GetPointData(20).curvature, 0.05, 1e-15);
    // A refused (negative) length still rescales the end curvature, and samples follow it.
    arc.SetLength(-1);
    EXPECT_EQ(arc.GetLength(), 20);
    EXPECT_NEAR(arc.GetEndCurvature(), 0.01 - 0.04 / 20, 1e-15);
    EXPECT_NEAR(arc.GetPointData(20).curvature, 0.01 - 0.04 / 20, 1e-15);
    EXPECT_TRUE(arc.SetRawLength(5));
    EXPECT_EQ(arc.GetLength(), 5);
    EXPECT_NEAR(arc.GetEndCurvature(), 0.008, 1e-15);
    EXPECT_TRUE(arc.SetEndCurvature(0.1));
    EXPECT_TRUE(arc.SetStartCurvature(-0.1));
    EXPECT_NEAR(arc.GetPointData(2.5).curvature, 0, 1e-15);
    arc.Flip();
    EXPECT_EQ(arc.GetStartCurvature(), 0.1);
    EXPECT_EQ(arc.GetEndCurvature(), -0.1);
    ClothoArc same(5, 0.1, -0.1);
    EXPECT_TRUE(arc.IsEqual(&same));
    CircleArc circle(5, 0.1);
    EXPECT_FALSE(arc.IsEqual(&circle));
}

TEST(CurvePieces, InvertRunsBackwardsAndTwiceRestores) {
    for (const CountedPtr<ParametricFunction>& piece : PlacedPieces()) {
        const std::string name = piece->GetElement()->GetTagName();
        const double length = piece->GetLength();
        std::vector<PointData> before;
        for (int i = 0; i <= 10; ++i)
            before.push_back(piece->GetPointData(length * i / 10));
        CountedPtr<ParametricFunction> copy(piece->Clone());
        copy->Invert();
        EXPECT_NEAR(copy->GetLength(), length, 1e-9) << name;
        for (int i = 0; i <= 10; ++i) {
            const PointData back = copy->GetPointData(length * (10 - i) / 10);
            EXPECT_TRUE(vek::isEqual(back.position, before[i].position, 1e-9)) << name << " " << i;
        }
        // Headings of the polygon are those of its edges: compare inside the first edge only.
        EXPECT_NEAR(AngleDiff(copy->GetPointData(length).heading, before[0].heading + kPi), 0, 1e-9) << name;
        copy->Invert();
        EXPECT_TRUE(copy->IsEqual(piece.Get()) || name == "PolyLine") << name;
        for (int i = 0; i <= 10; ++i)
            ExpectSameSample(copy->GetPointData(length * i / 10), before[i], 1e-9,
                             name + " " + std::to_string(i));
    }
}

TEST(CurvePieces, SplitAndRejoinReproducesSamples) {
    for (double ratio : {0.1, 0.37, 0.5, 0.9}) {
        for (const CountedPtr<ParametricFunction>& original : PlacedPieces()) {
            const std::string name = original->GetElement()->GetTagName() + " " + std::to_string(ratio);
            const double length = original->GetLength();
            CountedPtr<ParametricFunction> first(original->Clone());
            CountedPtr<ParametricFunction> second(first->Split(ratio));
            ASSERT_TRUE(second) << name;
            const double split = first->GetLength();
            EXPECT_NEAR(split, ratio * length, 1e-9) << name;
            EXPECT_NEAR(second->GetLength(), length - split, 1e-9) << name;
            for (int i = 0; i <= 40; ++i) {
                const double s = length * i / 40;
                const PointData expected = original->GetPointData(s);
                const PointData rejoined =
                    s < split ? first->GetPointData(s) : second->GetPointData(s - split);
                EXPECT_TRUE(vek::isEqual(rejoined.position, expected.position, 1e-9)) << name << " at " << s;
                EXPECT_NEAR(AngleDiff(rejoined.heading, expected.heading), 0, 1e-9) << name << " at " << s;
                // A polygon's curvatures are estimated from its points, which the cut changes near the cut.
                if (name.rfind("PolyLine", 0) != 0) {
                    EXPECT_NEAR(rejoined.curvature, expected.curvature, 1e-9) << name << " at " << s;
                }
            }
        }
    }
}

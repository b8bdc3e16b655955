#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include <orvia/ruvex/counted.h>
#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using Ruvex::CountedPtr;

constexpr double kPi = vek::kPi;

// Point reached after s metres along the curve whose heading is h0 + k0 s + dk s^2 / 2 from (x0, y0):
// composite 8-point Gauss-Legendre quadrature of (cos h, sin h) in long double, 500 panels by default (error
// far below 1e-10 m over 200 m; more panels where the heading turns faster).
vek::Vector2 IntegrateHeading(double x0, double y0, double h0, double k0, double dk, double s,
                              int kPanels = 500) {
    static constexpr std::array<long double, 4> kNodes = {
        0.1834346424956498049394761L, 0.5255324099163289858177390L, 0.7966664774136267395915539L,
        0.9602898564975362316835609L};
    static constexpr std::array<long double, 4> kWeights = {
        0.3626837833783619829651504L, 0.3137066458778872873379622L, 0.2223810344533744705443560L,
        0.1012285362903762591525314L};
    const long double h = static_cast<long double>(s) / kPanels;
    long double x = x0, y = y0;
    for (int p = 0; p < kPanels; ++p) {
        for (int i = 0; i < 8; ++i) {
            const long double u = (p + 0.5L) * h + (i % 2 ? 1 : -1) * kNodes[i / 2] * h / 2;
            const long double heading = h0 + k0 * u + 0.5L * dk * u * u;
            x += kWeights[i / 2] * h / 2 * std::cos(heading);
            y += kWeights[i / 2] * h / 2 * std::sin(heading);
        }
    }
    return {static_cast<double>(x), static_cast<double>(y)};
}

void ExpectSameSample(const PointData& a, const PointData& b, double tol, const std::string& where) {
    EXPECT_TRUE(vek::isEqual(a.position, b.position, tol)) << where;
    EXPECT_NEAR(vek::normalizeAngle(a.heading - b.heading), 0, tol) << where;
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

TEST(ParametricFunction, StartOrientationNormalisation) {
    // Into (-pi, pi], -pi itself becoming pi exactly.
    const struct {
        double set, expected, tolerance;
    } cases[] = {{3 * kPi / 2, -kPi / 2, 1e-15},
                 {-kPi, kPi, 0},
                 {kPi, kPi, 0},
                 {-2 * kPi, 0, 1e-15},
                 {-1, -1, 0},  // already in range: untouched, not shifted by a turn and back
                 // Far off: reduced exactly, so what is saved reloads to the same angle.
                 {999999999933974483.0, std::remainder(999999999933974483.0, 2 * kPi), 0},
                 {7 * kPi + 0.25, -kPi + 0.25, 1e-13}};
    Segment s(1);
    for (const auto& [set, expected, tolerance] : cases) {
        s.SetStartOrientation(set);
        EXPECT_NEAR(s.GetStartOrientation(), expected, tolerance) << set;
    }
    // The placement follows the normalised heading.
    EXPECT_TRUE(
        vek::isEqual(s.GetPointData(1).position, {std::cos(-kPi + 0.25), std::sin(-kPi + 0.25)}, 1e-13));
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
    const double margin = arc.GetLength() * 0.005;
    EXPECT_TRUE(vek::isEqual(arc.GetBoundingBox().min, {-margin, -margin}, 1e-12));
    EXPECT_TRUE(vek::isEqual(arc.GetBoundingBox().max, {10 + margin, 10 + margin}, 1e-12));
    arc.SetStartPosition({100, 0});
    EXPECT_NEAR(arc.GetBoundingBox().min.x, 100 - margin, 1e-12);
    arc.Flip();
    EXPECT_NEAR(arc.GetBoundingBox().min.y, -10 - margin, 1e-12);
    arc.Invert();  // now from (110, -10) back to (100, 0)
    EXPECT_NEAR(arc.GetBoundingBox().max.x, 110 + margin, 1e-12);
    EXPECT_NEAR(arc.GetBoundingBox().min.y, -10 - margin, 1e-12);
}

// Segment samples are checked through the composite curve's; here what it alone decides.
TEST(Segment, Equality) {
    Segment s(5), same(5);
    CircleArc arc(6, 0.1);
    EXPECT_TRUE(s.IsEqual(&same));
    EXPECT_TRUE(s.SetRawLength(6));
    EXPECT_FALSE(s.IsEqual(&same));
    EXPECT_FALSE(s.IsEqual(&arc));
    EXPECT_FALSE(s.IsEqual(nullptr));
}

TEST(CircleArc, SamplesAndRefusals) {
    CircleArc arc(10 * kPi / 2, 0.1);
    const PointData end = arc.GetPointData(arc.GetLength());
    EXPECT_TRUE(vek::isEqual(end.position, {10, 10}, 1e-12));
    EXPECT_NEAR(end.heading, kPi / 2, 1e-15);
    // Beyond the end the circle continues: a full turn comes back to the start.
    EXPECT_TRUE(vek::isEqual(arc.GetPointData(20 * kPi).position, {0, 0}, 1e-12));
    CircleArc right(10 * kPi / 2, -0.1);
    EXPECT_TRUE(vek::isEqual(right.GetPointData(right.GetLength()).position, {10, -10}, 1e-12));

    EXPECT_FALSE(arc.SetCurvature(1e-13));
    EXPECT_FALSE(arc.SetCurvature(0));
    EXPECT_EQ(arc.GetCurvature(), 0.1);
    EXPECT_TRUE(arc.SetCurvature(-0.2));
    arc.Flip();
    EXPECT_EQ(arc.GetCurvature(), 0.2);
    // A zero curvature read from a file keeps every sample at the start, heading 0.
    CircleArc flat(10, 0);
    EXPECT_EQ(flat.GetPointData(8).position, vek::Vector2(0, 0));
    EXPECT_EQ(flat.GetPointData(8).heading, 0);
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
    EXPECT_TRUE(vek::isEqual(end.position, IntegrateHeading(0, 0, 0, 0, 0.01, 10), 1e-9));
    EXPECT_EQ(arc.GetPointData(0).position, vek::Vector2(0, 0));
    // Beyond the end the clothoid goes on.
    EXPECT_NEAR(arc.GetPointData(12).curvature, 0.12, 1e-15);
}

TEST(ClothoArc, DegenerateShapes) {
    // Equal curvatures: the circle; within 1e-5 of each other still the circle of the start curvature.
    ClothoArc constant(30, 0.02, 0.02), almost(30, -0.02, -0.02 + 5e-6);
    CircleArc circle(30, 0.02), right(30, -0.02);
    for (double s : {0.0, 7.0, 30.0, 33.0})
        ExpectSameSample(constant.GetPointData(s), circle.GetPointData(s), 1e-12, std::to_string(s));
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

TEST(ClothoArc, AgreesWithIntegratedHeading) {
    struct Case {
        double length, k0, k1;
        vek::Vector2 start;
        double orientation, tolerance, headingTolerance;  // m, rad
    };
    const Case cases[] = {
        // Lengths up to 200 m, Cornu parameter |t| <= 3, both signs, increasing and decreasing, through zero.
        {200, 0, 0.05, {0, 0}, 0, 1e-6, 1e-8},
        {200, 0.05, -0.04, {1000, -500}, 2.5, 1e-6, 1e-8},
        {60, 0.2, 0.05, {0, 250}, -2.9, 1e-6, 1e-8},
        {200, 0.04, 0.0, {12, -8}, 1.2, 1e-6, 1e-8},
        // Beyond the series' reach (tight, slowly changing curvature; a long spiral): 1e-9 m per metre.
        {100, 0.01, 0.01002, {-40, 15}, -2, 100e-9, 1e-9},
        {200, 0, 0.36, {-40, 15}, -2, 200e-9, 1e-9},
        {50, -0.5, -0.45, {-40, 15}, -2, 50e-9, 1e-9},
        {30, 2, 1.9, {-40, 15}, -2, 30e-9, 1e-9},
        // A very gentle transition (clothoid scale a = 2000 m): the series' truncation, below 8e-9 before
        // scaling for |t| <= 3, is multiplied by a.
        {200, 0.0029, 0.0030, {0, 0}, 0, 2000 * 8e-9, 1e-8},
    };
    for (const Case& c : cases) {
        ClothoArc arc(c.length, c.k0, c.k1);
        arc.SetStartPosition(c.start);
        arc.SetStartOrientation(c.orientation);
        const double rate = (c.k1 - c.k0) / c.length;
        for (int i = -2; i <= 42; ++i) {
            const double s = c.length * i / 40;
            const PointData pd = arc.GetPointData(s);
            const std::string where =
                std::to_string(c.k0) + " -> " + std::to_string(c.k1) + " at " + std::to_string(s);
            const vek::Vector2 exact = IntegrateHeading(c.start.x, c.start.y, c.orientation, c.k0, rate, s);
            EXPECT_NEAR(pd.position.x, exact.x, c.tolerance) << where;
            EXPECT_NEAR(pd.position.y, exact.y, c.tolerance) << where;
            const double heading = c.orientation + c.k0 * s + 0.5 * rate * s * s;
            EXPECT_NEAR(vek::normalizeAngle(pd.heading - heading), 0, c.headingTolerance) << where;
            EXPECT_NEAR(pd.curvature, c.k0 + rate * s, 1e-12) << where;
        }
    }
}

// Sampled directly far beyond its ends, a clothoid goes on as itself. The series of the piece used to be
// summed there too, millions of metres off at 2.5 lengths.
TEST(ClothoArc, ContinuesAsTheClothoidBeyondItsEnds) {
    struct Case {
        double length, k0, k1, tolerance;  // m
    };
    const Case cases[] = {
        {100, 0, 0.05, 1e-7},
        {200, 0.05, -0.04, 1e-7},
        {60, 0.2, 0.05, 1e-7},
        // Beyond the series' reach inside the piece too; and a very gentle transition, which
        // carries the series' error at its end (see AgreesWithIntegratedHeading) beyond it.
        {50, -0.5, -0.45, 1e-7},
        {200, 0.0029, 0.0030, 2000 * 8e-9}};
    for (const Case& c : cases) {
        ClothoArc arc(c.length, c.k0, c.k1);
        arc.SetStartPosition({30, -20});
        arc.SetStartOrientation(0.7);
        const double rate = (c.k1 - c.k0) / c.length;
        for (double f : {-6.0, -2.5, -1.0, -0.01, 1.01, 1.5, 2.5, 4.0, 10.0}) {
            const double s = f * c.length;
            const std::string where =
                std::to_string(c.k0) + " -> " + std::to_string(c.k1) + " at " + std::to_string(s);
            const vek::Vector2 exact = IntegrateHeading(30, -20, 0.7, c.k0, rate, s, 8000);
            const PointData pd = arc.GetPointData(s);
            EXPECT_NEAR(pd.position.x, exact.x, c.tolerance) << where;
            EXPECT_NEAR(pd.position.y, exact.y, c.tolerance) << where;
            EXPECT_NEAR(vek::normalizeAngle(pd.heading - (0.7 + c.k0 * s + 0.5 * rate * s * s)), 0, 1e-8)
                << where;
            EXPECT_NEAR(pd.curvature, c.k0 + rate * s, 1e-12) << where;
        }
        // Continuous where the piece ends.
        for (double end : {0.0, c.length}) {
            const PointData at = arc.GetPointData(end), beyond = arc.GetPointData(end + (end ? 1e-9 : -1e-9));
            EXPECT_TRUE(vek::isEqual(at.position, beyond.position, 1e-8)) << end;
        }
    }
    // Any distance out, the spiral stays within its asymptotic point's reach: finite and bounded.
    ClothoArc spiral(10, 0, 1);
    for (double s : {1e3, 1e6, 1e9, -1e9}) {
        const PointData pd = spiral.GetPointData(s);
        EXPECT_LT(pd.position.norm(), 10) << s;
    }
    // The Cornu integral itself, against quadrature of its integrand on both sides of the series' limit.
    for (double u : {-7.3, -1.9, -0.4, 0.0, 1.2, 1.87, 1.89, 3.0, 25.0}) {
        const vek::Vector2 exact = IntegrateHeading(0, 0, 0, 0, 2, u, 4000);
        const vek::Vector2 value = CornuIntegral(u);
        EXPECT_NEAR(value.x, exact.x, 1e-13) << u;
        EXPECT_NEAR(value.y, exact.y, 1e-13) << u;
    }
}

TEST(ClothoArc, LengthAndCurvatureSetters) {
    ClothoArc arc(10, 0.01, 0.03);
    arc.SetLength(20);  // the curvature keeps growing at the same rate
    EXPECT_EQ(arc.GetLength(), 20);
    EXPECT_NEAR(arc.GetPointData(20).curvature, 0.05, 1e-15);
    // A refused (negative) length still rescales the end curvature, and samples follow it.
    arc.SetLength(-1);
    EXPECT_EQ(arc.GetLength(), 20);
    EXPECT_NEAR(arc.GetEndCurvature(), 0.01 - 0.04 / 20, 1e-15);
    EXPECT_NEAR(arc.GetPointData(20).curvature, 0.01 - 0.04 / 20, 1e-15);
    EXPECT_TRUE(arc.SetRawLength(5));
    EXPECT_NEAR(arc.GetEndCurvature(), 0.008, 1e-15);
    EXPECT_TRUE(arc.SetEndCurvature(0.1));
    EXPECT_TRUE(arc.SetStartCurvature(-0.1));
    EXPECT_NEAR(arc.GetPointData(2.5).curvature, 0, 1e-15);
    arc.Flip();
    ClothoArc same(5, 0.1, -0.1);
    EXPECT_TRUE(arc.IsEqual(&same));
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
        EXPECT_NEAR(vek::normalizeAngle(copy->GetPointData(length).heading - before[0].heading - kPi), 0,
                    1e-9)
            << name;
        copy->Invert();
        EXPECT_TRUE(copy->IsEqual(piece.Get()) || name == "PolyLine") << name;
        for (int i = 0; i <= 10; ++i)
            ExpectSameSample(copy->GetPointData(length * i / 10), before[i], 1e-9, name + std::to_string(i));
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
                EXPECT_NEAR(vek::normalizeAngle(rejoined.heading - expected.heading), 0, 1e-9) << name << s;
                // A polygon's curvatures are estimated from its points, which the cut changes near the cut.
                if (name.rfind("PolyLine", 0) != 0) {
                    EXPECT_NEAR(rejoined.curvature, expected.curvature, 1e-9) << name << " at " << s;
                }
            }
        }
    }
}

// The composite curve samples segments, circle arcs and clothoid arcs without virtual calls, and its
// projection steps along the centre line's point and tangent only. Both must give what the pieces' own
// GetPointData and the plain iteration give: to the bit, except where an arc's tangent is turned from its
// local one rather than taken from the heading's sine (rounding, in the offset and in the projection's
// steps).

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using Orvia::Curve2D;

// An arc whose class the curve does not know: it must be sampled through its own override.
class DriftingArc : public CircleArc {
public:
    DriftingArc(double length, double curvature) : CircleArc(length, curvature) {}

protected:
    PointData GetLocalPointData(double s) const override {
        PointData pd = CircleArc::GetLocalPointData(s);
        pd.position.y += 0.01 * s;
        return pd;
    }
};

// A piece of a class the curve does not know that reports a negative length (the library's own pieces refuse
// one): it runs backwards along -x.
class BackwardSegment : public Segment {
public:
    explicit BackwardSegment(double length) : Segment(length) {}
    double GetLength() const override { return -Segment::GetLength(); }
};

// What Curve2D::GetPointData(s, t) is defined to return: the piece the bisection finds, sampled through its
// virtual GetPointData at s clamped into its span, moved by t along the right normal (the curvature kept
// unless it is straight).
PointData ReferenceSample(const Curve2D& curve, double s, double t) {
    PointData pd;
    const double length = curve.GetLength();
    if (!(s >= 0 && s <= length)) {
        EXPECT_TRUE(curve.GetPointData(s, t, pd));  // the straight extensions are not what is checked here
        return pd;
    }
    const size_t i = curve.GetFunctionIndexAt(s, 0, curve.GetFunctionCount());
    const double start = curve.GetFunctionStartLength(i), end = curve.GetFunctionStartLength(i + 1);
    const double local = s - start, span = end - start;
    pd = curve.GetFunction(i)->GetPointData(local < 0 ? 0 : (local > span ? span : local));
    if (t != 0) {
        pd.position -= pd.GetNormal() * t;
        if (std::fabs(pd.curvature) < Curve2D::kStraightCurvature) pd.curvature /= pd.curvature * t + 1;
    }
    return pd;
}

// The damped Newton iteration written plainly on GetPointData and PointData::GetTangent: its result, and
// whether it settled on a foot (see Curve2D::kFootStepTolerance). When it did not, the search goes on
// safeguarded.
double ReferenceSearch(const Curve2D& curve, const vek::Vector2& p, double s0, double tolerance,
                       int maxIterations, bool& settled) {
    const double length = curve.GetLength();
    if (!vek::contains(length > 0 ? s0 / length : 0, Curve2D::kStartRatioMin, Curve2D::kStartRatioMax))
        s0 = 0;
    PointData sample;
    curve.GetPointData(s0, 0, sample);
    for (;;) {
        vek::Vector2 previous = sample.position;
        double s1 = s0 + Curve2D::kNewtonDamping * (p - sample.position).dot(sample.GetTangent());
        if (!vek::contains(s1, -length, 2 * length)) {
            PointData end;
            curve.GetPointData(length, 0, end);
            previous = end.position;
            s1 = 0;
        }
        curve.GetPointData(s1, 0, sample);
        if ((previous - sample.position).norm() < tolerance) {
            const vek::Vector2 offset = p - sample.position;
            const double stiffness = 1 - sample.curvature * sample.GetTangent().cross(offset);
            settled = stiffness > 0 && std::fabs(offset.dot(sample.GetTangent())) <=
                                           Curve2D::kFootStepTolerance * tolerance * stiffness;
            return s1;
        }
        if (maxIterations < 1) {
            settled = false;
            return s1;
        }
        s0 = s1;
        --maxIterations;
    }
}

double Distance(const Curve2D& curve, const vek::Vector2& p, double s) {
    PointData pd;
    curve.GetPointData(s, 0, pd);
    return (pd.position - p).norm();
}

// Same bits, the position to rounding (1e-12 m) when `rounded`.
void ExpectSameBits(const PointData& a, const PointData& b, double s, bool rounded = false) {
    EXPECT_TRUE(vek::isEqual(a.position, b.position, rounded ? 1e-12 : 0)) << s;
    EXPECT_EQ(a.heading, b.heading) << s;
    EXPECT_EQ(a.curvature, b.curvature) << s;
}

// Mixed pieces plus every shape a known class can take: a clothoid arc that is a line, a circle of either
// sign, a clothoid beyond the series' reach, an arc of zero curvature, pieces with a forced start
// orientation, and an arc of a class the curve does not know. `reversed` adds a piece of negative length,
// which leaves the table without its abscissa index.
void BuildCurve(Curve2D& curve, bool reversed) {
    std::mt19937 rng(reversed ? 11 : 7);
    axis_test::AddMixedPieces(curve, rng, 30, 0.05, {-2500, 7300}, 2.9);
    curve.InsertFunction(new ClothoArc(12, 0, 0), 3);
    curve.InsertFunction(new ClothoArc(9, 0.04, 0.04), 6);
    curve.InsertFunction(new ClothoArc(9, -0.04, -0.04), 9);
    curve.InsertFunction(new ClothoArc(30, 0.5, 0.51), 12);
    curve.InsertFunction(new CircleArc(7, 0), 15);
    curve.InsertFunction(new DriftingArc(11, 0.02), 18);
    if (reversed) curve.InsertFunction(new BackwardSegment(3), 21);
    curve.InsertFunction(new CircleArc(0, 0.03), 24);  // pieces of no length own no abscissa
    curve.InsertFunction(new CircleArc(0, -0.03), 25);
    for (size_t i : {1, 3, 6, 9, 12, 15, 20})
        curve.GetFunction(i)->SetForcedStartOrientation(0.3 * static_cast<double>(i) - 2);
    curve.UpdateFunctionsFromStart();
}

}  // namespace

TEST(Curve2D, DirectSamplesMatchThePieces) {
    for (bool reversed : {false, true}) {
        Curve2D curve;
        BuildCurve(curve, reversed);
        std::vector<double> abscissas = {0, curve.GetLength()};
        for (size_t i = 0; i < curve.GetFunctionCount(); ++i)
            for (double d : {-0.02, -1e-9, 0.0, 1e-9, 0.005, 0.0099, 0.01, 0.0101, 0.5})
                abscissas.push_back(curve.GetFunctionStartLength(i) + d);
        std::mt19937 rng(5);
        std::uniform_real_distribution<double> along(-5, curve.GetLength() + 5);
        for (int i = 0; i < 3000; ++i)
            abscissas.push_back(along(rng));
        for (double s : abscissas) {
            for (double t : {0.0, 2.5, -1.5}) {
                PointData direct, withTangent;
                vek::Vector2 tangent;
                ASSERT_TRUE(curve.GetPointData(s, t, direct));
                ExpectSameBits(direct, ReferenceSample(curve, s, t), s, t != 0);
                ASSERT_TRUE(curve.GetPointDataAndTangent(s, t, withTangent, tangent));
                ExpectSameBits(withTangent, direct, s);
                EXPECT_NEAR(tangent.x, std::cos(direct.heading), 1e-15) << s;
                EXPECT_NEAR(tangent.y, std::sin(direct.heading), 1e-15) << s;
            }
        }
    }
}

TEST(Curve2D, SearchStepsAlongTheCentreLineAsTheIterationDoes) {
    for (bool reversed : {false, true}) {
        Curve2D curve;
        BuildCurve(curve, reversed);
        const double length = curve.GetLength();
        std::mt19937 rng(9);
        std::uniform_real_distribution<double> along(-10, length + 10), across(-8, 8), guess(-3, 3);
        for (int i = 0; i < 2000; ++i) {
            PointData pd;
            const double s = along(rng);
            curve.GetPointData(s, across(rng), pd);
            // Starts near the foot, and now and then far off (a restart from the curve's start).
            const double s0 = i % 10 == 0 ? length * 1.5 : s + guess(rng);
            for (double tolerance : {1e-3, 1e-6}) {
                const double direct = curve.SearchNearestAbscissa(pd.position, s0, tolerance, 100);
                bool settled = false;
                const double iterated = ReferenceSearch(curve, pd.position, s0, tolerance, 100, settled);
                // Settled, the steps' result stands; otherwise the safeguarded search does at least as well.
                if (settled)
                    EXPECT_NEAR(direct, iterated, 2 * tolerance) << i;
                else
                    EXPECT_LE(Distance(curve, pd.position, direct), Distance(curve, pd.position, iterated))
                        << i;
            }
        }
        // Steps that leave [-length, 2 length] restart from the start, and never settle here: the
        // safeguarded search answers.
        const vek::Vector2 far(1e6, -1e6);
        bool settled = true;
        const double iterated = ReferenceSearch(curve, far, 0.5 * length, 1e-6, 3, settled);
        EXPECT_FALSE(settled);
        EXPECT_LE(Distance(curve, far, curve.SearchNearestAbscissa(far, 0.5 * length, 1e-6, 3)),
                  Distance(curve, far, iterated));
    }
}

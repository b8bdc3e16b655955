#include <gtest/gtest.h>

#include <cmath>
#include <exception>
#include <string>
#include <tuple>
#include <vector>

#include <orvia/geometry/corner_fitting.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

constexpr double kPi = vek::kPi;

struct Declared {
    char kind;  // 'L'ine, 'C'ircle, 'K' clothoid
    double length, k0, k1;
};

// Records what the fitter declares and exposes its protected parts.
template <class Fitter>
class Recording : public Fitter {
public:
    using Fitter::_F;
    using Fitter::SolveFirstTurn;

    void DeclareClothoide(double length, double k0, double k1) override {
        pieces.push_back({'K', length, k0, k1});
    }
    void DeclareLine(double length) override { pieces.push_back({'L', length, 0, 0}); }
    void DeclareCircle(double length, double k) override { pieces.push_back({'C', length, k, k}); }

    std::string Kinds() const {
        std::string kinds;
        for (const Declared& d : pieces)
            kinds += d.kind;
        return kinds;
    }
    // The declared pieces placed end to end from start along heading.
    Orvia::Curve2D Chain(const vek::Vector2& start, double heading) const {
        Orvia::Curve2D chain;
        for (const Declared& d : pieces) {
            if (d.kind == 'L') chain.AddFunction(new Segment(d.length));
            if (d.kind == 'C') chain.AddFunction(new CircleArc(d.length, d.k0));
            if (d.kind == 'K') chain.AddFunction(new ClothoArc(d.length, d.k0, d.k1));
        }
        chain.SetOrigin(start, heading);
        chain.UpdateFunctionsFromStart();  // SetOrigin skips a first piece already in place
        return chain;
    }

    std::vector<Declared> pieces;
};

using TriFit = Recording<CTriPointControlledAnalytic>;
using BiFit = Recording<CBiPointControlledAnalytic>;

// The chain ends at b heading along direction, with curvature continuous from 0 back to 0.
void ExpectEndsAt(const std::vector<Declared>& pieces, const Orvia::Curve2D& chain, const vek::Vector2& b,
                  const vek::Vector2& direction, const std::string& where) {
    PointData end;
    ASSERT_TRUE(chain.GetPointData(chain.GetLength(), 0, end)) << where;
    EXPECT_LT((end.position - b).norm(), 1e-6) << where;
    EXPECT_NEAR(vek::normalizeAngle(end.heading - std::atan2(direction.y, direction.x)), 0, 1e-9) << where;
    double k = 0;
    for (const Declared& d : pieces) {
        EXPECT_NEAR(d.k0, k, 1e-12) << where;
        EXPECT_GE(d.length, 0) << where;
        k = d.k1;
    }
    EXPECT_NEAR(k, 0, 1e-12) << where;
}

template <class F>
std::string ThrownText(F&& f) {
    try {
        f();
    } catch (const std::exception& e) {
        return e.what();
    }
    return "";
}

}  // namespace

TEST(CTriPointControlledAnalytic, StraightCornersAndRefusals) {
    TriFit fit;
    EXPECT_TRUE(fit.Create(0, 0, 3, 4, 6, 8));
    ASSERT_EQ(fit.Kinds(), "L");
    EXPECT_DOUBLE_EQ(fit.pieces[0].length, 10);

    fit.pieces.clear();
    EXPECT_FALSE(fit.Create(0, 0, 10, 0, 5, 0));  // U-turn
    EXPECT_FALSE(fit.Create(0, 0, 0, 0, 5, 5));   // no first leg
    EXPECT_FALSE(fit.Create(0, 0, 5, 5, 5, 5 + 1e-7));
    EXPECT_FALSE(fit.Create(std::nan(""), 0, 5, 5, 10, 0));
    EXPECT_TRUE(fit.pieces.empty());

    // The base fitter declares into nothing but still answers.
    CTriPointControlledAnalytic silent;
    EXPECT_TRUE(silent.Create(0, 0, 10, 0, 10, 10));
}

TEST(CTriPointControlledAnalytic, LongFirstLegDeclaresItsLineFirst) {
    // Right angle, long leg three times the short one: k = C/S(pi/2) = 1.7795 <= r = 3.
    const double k = 1.7795256642576738;
    TriFit fit;
    ASSERT_TRUE(fit.Create(-30, 0, 0, 0, 0, 10));
    ASSERT_EQ(fit.Kinds(), "LKK");
    EXPECT_NEAR(fit.pieces[0].length, 30 - ((k - 1) * 0.75 + 1) * 10, 1e-6);
    EXPECT_GT(fit.pieces[1].k1, 0);  // left turn
    ExpectEndsAt(fit.pieces, fit.Chain({-30, 0}, 0), {0, 10}, {0, 1}, "not reversed");

    // The same corner run the other way: the long leg comes last, the turn is to the right.
    TriFit back;
    ASSERT_TRUE(back.Create(0, 10, 0, 0, -30, 0));
    ASSERT_EQ(back.Kinds(), "KKL");
    EXPECT_NEAR(back.pieces[2].length, fit.pieces[0].length, 1e-9);
    EXPECT_NEAR(back.pieces[0].length, fit.pieces[2].length, 1e-9);
    EXPECT_NEAR(back.pieces[0].k1, -fit.pieces[1].k1, 1e-12);
    ExpectEndsAt(back.pieces, back.Chain({0, 10}, -kPi / 2), {-30, 0}, {-1, 0}, "reversed");

    // Blender 1 leaves a single clothoid doing the whole turn; blender 0 a symmetric pair.
    TriFit single;
    single.SetLimitBlender(1);
    ASSERT_TRUE(single.Create(-30, 0, 0, 0, 0, 10));
    ASSERT_EQ(single.Kinds(), "LKK");
    EXPECT_NEAR(single.pieces[0].length, 30 - k * 10, 1e-6);
    EXPECT_NEAR(single.pieces[2].length, 0, 1e-6);
    ExpectEndsAt(single.pieces, single.Chain({-30, 0}, 0), {0, 10}, {0, 1}, "blender 1");
    TriFit symmetric;
    symmetric.SetLimitBlender(0);
    ASSERT_TRUE(symmetric.Create(-30, 0, 0, 0, 0, 10));
    EXPECT_NEAR(symmetric.pieces[1].length, symmetric.pieces[2].length, 1e-6);
    ExpectEndsAt(symmetric.pieces, symmetric.Chain({-30, 0}, 0), {0, 10}, {0, 1}, "blender 0");
}

TEST(CTriPointControlledAnalytic, FittedPairsEndOnTheFarLeg) {
    for (bool symmetric : {false, true}) {
        for (double blender : {0.0, 0.75, 1.0}) {
            for (double degrees : {3.0, 30.0, 90.0, 135.0, 178.0, -3.0, -30.0, -90.0, -135.0, -178.0}) {
                for (double ratio : {1.0, 1.3, 2.5, 10.0}) {
                    for (double scale : {1.0, 400.0}) {
                        const double theta = vek::degToRad(degrees);
                        const vek::Vector2 a(-7, 3),
                            p = a + vek::Vector2(std::cos(0.4), std::sin(0.4)) * scale;
                        const vek::Vector2 direction(std::cos(0.4 + theta), std::sin(0.4 + theta));
                        const vek::Vector2 b = p + direction * (scale * ratio);
                        TriFit fit;
                        fit.SetLimitBlender(blender);
                        fit.SetSymmetricBlending(symmetric);
                        const std::string where =
                            testing::PrintToString(std::tuple(symmetric, blender, degrees, ratio, scale));
                        ASSERT_TRUE(fit.Create(a.x, a.y, p.x, p.y, b.x, b.y)) << where;
                        ExpectEndsAt(fit.pieces, fit.Chain(a, 0.4), b, direction, where);
                    }
                }
            }
        }
    }
}

TEST(CTriPointControlledAnalytic, SolverErrors) {
    CFresnelIntegralsFunc fresnel;
    EXPECT_EQ(ThrownText([&] { TriFit::_F(-0.1, 1, 2, fresnel); }), "out of range");
    EXPECT_EQ(ThrownText([&] { TriFit::_F(1.5, 1, 2, fresnel); }), "out of range");
    EXPECT_EQ(ThrownText([&] { TriFit::_F(0.5, 1, 2, fresnel); }), "");
    // Errors reach the caller as exceptions derived from std::exception: ThrownText catches only those.
    // A negative leg ratio inverts the bracket; a ratio below 1 / k puts the lower bound above zero.
    EXPECT_EQ(ThrownText([&] { TriFit::SolveFirstTurn(kPi / 2, -2, fresnel); }),
              "unexpected bounds for solving function");
    EXPECT_EQ(ThrownText([&] { TriFit::SolveFirstTurn(kPi / 2, 0.3, fresnel); }),
              "unexpected lower bound for solving function [_F()==0] => [k==kLimit]");
    // In range: the root, where _F changes sign.
    const double root = TriFit::SolveFirstTurn(kPi / 2, 1.2, fresnel);
    EXPECT_GT(root, 0);
    EXPECT_LT(root, kPi / 2);
    EXPECT_LE(TriFit::_F(std::max(0.0, root - 1e-9), kPi / 2, 1.2, fresnel), 0);
    EXPECT_GE(TriFit::_F(root + 1e-9, kPi / 2, 1.2, fresnel), 0);
}

TEST(CTriPointControlledAnalytic, LimitBlenderIsClamped) {
    CTriPointControlledAnalytic fit;
    fit.SetLimitBlender(2);
    EXPECT_EQ(fit.GetLimitBlender(), 1);
    fit.SetLimitBlender(-1);
    EXPECT_EQ(fit.GetLimitBlender(), 0);
}

TEST(CBiPointControlledAnalytic, FitsBetweenTwoPoses) {
    struct Case {
        vek::Vector2 a, ta, b, tb;
        const char* name;
    };
    const Case cases[] = {
        {{0, 0}, {1, 0}, {20, 20}, {0, 1}, "corner"},
        {{0, 0}, {1, 0}, {60, 3.5}, {1, 0}, "lane change"},
        {{0, 0}, {1, 0}, {60, -3.5}, {1, 0.02}, "converging lane change"},
        {{5, 5}, {0, 2}, {25, 5}, {0, -1}, "hairpin"},
        {{0, 0}, {1, 1}, {100, 0}, {1, -1}, "crest"},
        {{0, 0}, {1, 0}, {10, 40}, {-1, 0}, "more than a quarter each way"},
    };
    for (const Case& c : cases) {
        BiFit fit;
        ASSERT_TRUE(fit.Create(c.a.x, c.a.y, c.ta.x, c.ta.y, c.b.x, c.b.y, c.tb.x, c.tb.y)) << c.name;
        ExpectEndsAt(fit.pieces, fit.Chain(c.a, std::atan2(c.ta.y, c.ta.x)), c.b, c.tb, c.name);
    }
    BiFit straight;
    ASSERT_TRUE(straight.Create(0, 0, 1, 1, 10, 10, 2, 2));
    EXPECT_EQ(straight.Kinds(), "L");

    // Depth limit and refusals: nothing is declared.
    BiFit refused;
    EXPECT_TRUE(refused.Create(0, 0, 1, 0, 20, 20, 0, 1, 19));
    refused.pieces.clear();
    EXPECT_FALSE(refused.Create(0, 0, 1, 0, 20, 20, 0, 1, 20));
    EXPECT_FALSE(refused.Create(0, 0, 1, 0, -20, 0, 1, 0));  // a loop would be needed
    EXPECT_FALSE(refused.Create(0, 0, 0, 0, 20, 20, 0, 1));  // no direction
    EXPECT_FALSE(refused.Create(1, 1, 1, 0, 1, 1, 0, 1));    // same point
    EXPECT_TRUE(refused.pieces.empty());
}

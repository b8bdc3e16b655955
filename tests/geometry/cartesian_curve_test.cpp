#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include <orvia/geometry/cartesian_curve.h>
#include <orvia/ruvex/factory.h>
#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using Orvia::CartesianCurve;
using Orvia::PtInCurve;
using Ruvex::CountedPtr;

// (0, 0) -> (10, 2) -> (30, 2) -> (40, -3); slopes 0.2 -> 0.1 | 0.1 + slopeBreak -> 0 | 0 -> -0.5.
CountedPtr<CartesianCurve> ThreePieces(double slopeBreak = 0) {
    CountedPtr<CartesianCurve> curve(new CartesianCurve("SZCurve"));
    curve->AddFunction(new PolynomialFunction({0, 0}, 0.2, {10, 2}, 0.1));
    curve->AddFunction(new PolynomialFunction({10, 2}, 0.1 + slopeBreak, {30, 2}, 0));
    curve->AddFunction(new PolynomialFunction({30, 2}, 0, {40, -3}, -0.5));
    return curve;
}

}  // namespace

TEST(CartesianCurve, LookupAndValues) {
    CountedPtr<CartesianCurve> curve = ThreePieces(0.3);
    // A junction belongs to the piece the bisection meets first: the middle one for both of its ends.
    EXPECT_EQ(curve->GetFunctionIndexAt(10), 1u);
    EXPECT_EQ(curve->GetFunctionIndexAt(30), 1u);
    EXPECT_EQ(curve->GetFunctionAtIdx(10, 0, 1), 0u);
    EXPECT_NEAR(curve->GetSlope(10), std::atan(0.4), 1e-12);  // an angle, of the middle piece
    EXPECT_NEAR(curve->GetValue(40), -3, 1e-12);
    // Outside the covered range the end pieces' cubics continue.
    EXPECT_EQ(curve->GetFunctionAt(-5), curve->GetFunction(0));
    EXPECT_EQ(curve->GetValue(45), curve->GetFunction(2)->GetValue(45));
    double value = 0, slope = 0, curvature = 0;
    curve->GetData(20, value, slope, curvature);
    EXPECT_EQ(curvature, curve->GetFunction(1)->GetCurvature(20));
    const vek::Box2 box = curve->GetBoundingBox();
    for (double x = 0; x <= 40; x += 0.5)
        EXPECT_TRUE(box.contains({x, curve->GetValue(x)})) << x;
    CartesianCurve line;
    line.AddFunction(new PolynomialFunction({0, 0}, 0.75, {40, 30}, 0.75));
    EXPECT_NEAR(line.GetCurveLength(), 50, 1e-9);

    CartesianCurve empty;
    EXPECT_EQ(empty.GetFunctionAt(1), nullptr);
    EXPECT_EQ(empty.GetValue(1), 0);
    value = 7;
    empty.GetData(1, value, slope, curvature);
    EXPECT_EQ(value, 7);
}

TEST(CartesianCurve, ValidateDetectsTheEditMode) {
    // A slope break of 0.02 at a junction: the curve is edited as a polyline, every piece its chord.
    CountedPtr<CartesianCurve> broken = ThreePieces(0.02);
    broken->Validate();
    EXPECT_TRUE(broken->GetIsLinearEditMode());
    EXPECT_NEAR(broken->GetHandleNextSlope(0), 0.2, 1e-15);
    EXPECT_NEAR(broken->GetHandlePrevSlope(1), 0.2, 1e-15);
    EXPECT_NEAR(broken->GetValue(35), -0.5, 1e-12);
    // A break of 0.005: smooth mode, the junction gets the mean slope weighted by the chord lengths.
    CountedPtr<CartesianCurve> smooth = ThreePieces(0.005);
    smooth->Validate();
    EXPECT_FALSE(smooth->GetIsLinearEditMode());
    const double w1 = std::hypot(10, 2), w2 = 20, mean = (w1 * 0.1 + w2 * 0.105) / (w1 + w2);
    EXPECT_NEAR(smooth->GetHandleNextSlope(1), mean, 1e-15);
    EXPECT_NEAR(smooth->GetFunction(0)->GetDerivative(10), mean, 1e-12);  // refitted, not relabelled
    // Detected once: a later break does not switch the mode.
    smooth->SetFunctionStart(2, {30, 2}, 0.5);
    smooth->Validate();
    EXPECT_FALSE(smooth->GetIsLinearEditMode());
    EXPECT_NEAR(smooth->GetHandleNextSlope(2), 0.5 * std::hypot(10, 5) / (20 + std::hypot(10, 5)), 1e-15);
    // Reconnection: a reversed piece turned round, a gap closed, a piece of no width dropped.
    CartesianCurve repaired;
    repaired.AddFunction(new PolynomialFunction({0, 0}, 0, {10, 1}, 0));
    repaired.AddFunction(new PolynomialFunction({20, 3}, 0, {11, 2}, 0));
    repaired.AddFunction(new PolynomialFunction({20, 3}, 0, {20, 3}, 0));
    repaired.AddFunction(new PolynomialFunction({20, 3}, 0, {25, 4}, 0));
    repaired.Validate();
    ASSERT_EQ(repaired.GetFunctionCount(), 3u);
    EXPECT_EQ(repaired.GetHandlePos(1), vek::Vector2(10, 1));
    EXPECT_EQ(repaired.GetHandlePos(2), vek::Vector2(20, 3));
}

TEST(CartesianCurve, Handles) {
    CountedPtr<CartesianCurve> curve = ThreePieces();
    ASSERT_EQ(curve->GetHandleCount(), 4u);
    EXPECT_EQ(curve->GetHandlePos(3), vek::Vector2(40, -3));
    EXPECT_EQ(curve->GetHandlePrevSlope(0), 0.2);  // the ends have one slope
    EXPECT_EQ(curve->GetHandleNextSlope(3), -0.5);
    EXPECT_FALSE(curve->RemoveHandle(0));
    EXPECT_FALSE(curve->RemoveHandle(3));
    ASSERT_TRUE(curve->RemoveHandle(2));  // the middle piece now runs to (40, -3)
    ASSERT_EQ(curve->GetFunctions().size(), 2u);
    EXPECT_EQ(curve->GetHandlePrevSlope(2), -0.5);
    EXPECT_EQ(curve->GetHandleNextSlope(1), 0.1);
    EXPECT_NEAR(curve->GetValue(40), -3, 1e-12);
    ASSERT_TRUE(curve->SetFunctionEnd(0, {12, 4}, 1));
    EXPECT_NEAR(curve->GetFunction(0)->GetDerivative(12), 1, 1e-12);
    ASSERT_TRUE(curve->SetLinearFunctionEnd(1, {42, -2}));
    EXPECT_NEAR(curve->GetValue(18), 1, 1e-12);  // on the chord from (10, 2)
    EXPECT_FALSE(curve->SetFunctionStart(2, {0, 0}, 0));
}

TEST(CartesianCurve, InversionsReadTheProfileBackwards) {
    CountedPtr<CartesianCurve> original = ThreePieces(0.3);
    CountedPtr<CartesianCurve> inverted(original->Clone()), mirrored(original->Clone()),
        negated(original->Clone());
    inverted->Invert();
    mirrored->InvertYX();
    negated->InvertY();
    for (double x = 0; x <= 40; x += 0.25) {
        const PolynomialFunction* f = original->GetFunctionAt(x);
        const double back = 40 - x;
        EXPECT_NEAR(inverted->GetFunctionAt(back)->GetValue(back), f->GetValue(x), 1e-12) << x;
        EXPECT_NEAR(inverted->GetFunctionAt(back)->GetDerivative(back), -f->GetDerivative(x), 1e-12) << x;
        EXPECT_NEAR(mirrored->GetFunctionAt(back)->GetValue(back), -f->GetValue(x), 1e-12) << x;
        EXPECT_NEAR(mirrored->GetFunctionAt(back)->GetDerivative(back), f->GetDerivative(x), 1e-12) << x;
        EXPECT_NEAR(negated->GetValue(x), -original->GetValue(x), 1e-12) << x;
    }
    inverted->Invert();
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(inverted->GetHandlePos(i), original->GetHandlePos(i));
        EXPECT_EQ(inverted->GetHandleNextSlope(i), original->GetHandleNextSlope(i));
    }
}

TEST(CartesianCurve, SetXMaxAndSetXMin) {
    CountedPtr<CartesianCurve> curve = ThreePieces();
    curve->SetXMax(50);  // stretched: the last out point moves, its value and slope kept
    EXPECT_EQ(curve->GetHandlePos(3), vek::Vector2(50, -3));
    curve->SetXMax(20);  // cut inside the middle piece: its out point becomes (20, 2)
    ASSERT_EQ(curve->GetFunctionCount(), 2u);
    EXPECT_EQ(curve->GetHandlePos(2), vek::Vector2(20, 2));
    curve->SetXMax(10 + 5e-6);  // less than 1e-5 of the middle piece would remain: it goes
    EXPECT_EQ(curve->GetFunctionCount(), 1u);
    // SetXMin keeps the end part re-based to start at 0: the argument is the new length.
    CountedPtr<CartesianCurve> start = ThreePieces();
    start->SetXMin(30);
    ASSERT_EQ(start->GetFunctionCount(), 2u);
    EXPECT_EQ(vek::Vector2(start->GetXMin(), start->GetXMax()), vek::Vector2(0, 30));
    EXPECT_NEAR(start->GetValue(25), ThreePieces()->GetValue(35), 1e-12);
}

TEST(CartesianCurve, MakeFrom) {
    CartesianCurve curve("BankingCurve");
    EXPECT_FALSE(curve.MakeFrom(std::vector<vek::Vector2>{{1, 1}}));
    ASSERT_TRUE(curve.MakeFrom(std::vector<vek::Vector2>{{0, 0}, {10, 10}, {20, 10}, {20, 10}}));
    ASSERT_EQ(curve.GetFunctionCount(), 3u);
    EXPECT_NEAR(curve.GetHandleNextSlope(0), 1, 1e-15);
    EXPECT_NEAR(curve.GetHandlePrevSlope(1), std::tan(vek::kPi / 8), 1e-15);  // mean of the chord angles
    EXPECT_NEAR(curve.GetHandleNextSlope(2), 0, 1e-15);                       // a zero chord is horizontal
    EXPECT_NEAR(curve.GetValue(10), 10, 1e-12);
    EXPECT_FALSE(curve.MakeFrom(std::vector<PtInCurve>{{{0, 0}, 1}}));
    EXPECT_EQ(curve.GetFunctionCount(), 3u);  // a refusal changes nothing
    ASSERT_TRUE(curve.MakeFrom(std::vector<PtInCurve>{{{0, 1}, 0.5}, {{4, 2}, 0}, {{8, 0}, -1}}));
    EXPECT_EQ(curve.GetHandlePos(1), vek::Vector2(4, 2));
    EXPECT_EQ(curve.GetHandlePrevSlope(2), -1);
}

TEST(CartesianCurve, AppendSplitCopy) {
    CountedPtr<CartesianCurve> curve = ThreePieces();
    CountedPtr<CartesianCurve> tail(new CartesianCurve("SZCurve"));
    tail->AddFunction(new PolynomialFunction({0, 0}, -0.5, {10, -1}, 0));
    curve->AppEnd(tail.Get());
    EXPECT_EQ(tail->GetHandlePos(0), vek::Vector2(40, -3));  // the other curve was shifted
    EXPECT_EQ(curve->GetFunction(3), tail->GetFunction(0));  // and its pieces are shared
    EXPECT_NEAR(curve->GetValue(50), -4, 1e-12);
    // A split reproduces the cubic exactly on both sides.
    const CountedPtr<PolynomialFunction> whole(curve->GetFunction(1)->Clone());
    EXPECT_FALSE(curve->SplitFunction(1, 10));
    ASSERT_TRUE(curve->SplitFunction(1, 17));
    EXPECT_EQ(curve->GetHandlePos(2).x, 17);
    for (double x = 10; x <= 30; x += 0.5)
        EXPECT_NEAR(curve->GetValue(x), whole->GetValue(x), 1e-11) << x;
    CartesianCurve banking("BankingCurve");
    banking.CopyFrom(curve.Get());
    banking.Offset({0, 1});
    EXPECT_EQ(banking.GetTagName(), "BankingCurve");
    EXPECT_NEAR(banking.GetValue(10), 3, 1e-12);
    EXPECT_NEAR(curve->GetValue(10), 2, 1e-12);  // deep
}

TEST(CartesianCurve, LoadAndSave) {
    const char* text = R"(<?xml version="1.0" encoding="UTF-8"?>
<Ruvex version="2.5" versionRevision="0">
  <BankingCurve>
    <Polynomial xIn="0" yIn="0.1" derivativeIn="0" xOut="50" yOut="-0.05" derivativeOut="0.001"/>
    <Polynomial xIn="50" yIn="-0.05" derivativeIn="0.001" xOut="80" yOut="0" derivativeOut="0"/>
  </BankingCurve>
</Ruvex>)";
    std::string saved;
    {
        axis_test::ScopedOrviaFactory factory;
        CountedPtr<Ruvex::Element> root(Ruvex::Load(text, true));
        auto* curve = dynamic_cast<CartesianCurve*>(root.Get());
        ASSERT_TRUE(curve && curve->GetTagName() == "BankingCurve");
        saved = Ruvex::SaveToString(curve);
    }
    // Records made by a factory that does not know the cubics become cubics with the same values.
    class CurveOnlyFactory : public Ruvex::Factory {
    public:
        Ruvex::Element* Create(const std::string& tag) override {
            return tag == "BankingCurve" ? new CartesianCurve(tag) : Ruvex::Factory::Create(tag);
        }
    };
    CountedPtr<Ruvex::Factory> previous(Ruvex::GetFactory());
    Ruvex::SetFactory(new CurveOnlyFactory);
    CountedPtr<Ruvex::Element> root(Ruvex::Load(saved.c_str(), true));
    Ruvex::SetFactory(previous.Get());
    auto* curve = dynamic_cast<CartesianCurve*>(root.Get());
    ASSERT_TRUE(curve && curve->GetFunctionCount() == 2);
    EXPECT_NEAR(curve->GetValue(50), -0.05, 1e-15);
    EXPECT_EQ(Ruvex::SaveToString(curve), saved);
}

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

// (0, 0) -> (10, 2) -> (30, 2) -> (40, -3), slopes 0.2 | 0 | 0 | -0.5 at the handles (a smooth chain would
// repeat the slope on both sides; here the junction slopes are whatever the test needs).
CountedPtr<CartesianCurve> ThreePieces(double slopeBreak = 0) {
    CountedPtr<CartesianCurve> curve(new CartesianCurve("SZCurve"));
    curve->AddFunction(new PolynomialFunction({0, 0}, 0.2, {10, 2}, 0.1));
    curve->AddFunction(new PolynomialFunction({10, 2}, 0.1 + slopeBreak, {30, 2}, 0));
    curve->AddFunction(new PolynomialFunction({30, 2}, 0, {40, -3}, -0.5));
    return curve;
}

}  // namespace

TEST(CartesianCurve, LookupAndValues) {
    CountedPtr<CartesianCurve> curve = ThreePieces();
    EXPECT_EQ(curve->GetTagName(), "SZCurve");
    EXPECT_EQ(curve->GetXMin(), 0);
    EXPECT_EQ(curve->GetXMax(), 40);
    // A junction belongs to the piece the bisection meets first: the middle one for both of its ends.
    EXPECT_EQ(curve->GetFunctionIndexAt(10), 1u);
    EXPECT_EQ(curve->GetFunctionIndexAt(30), 1u);
    EXPECT_EQ(curve->GetFunctionIndexAt(5), 0u);
    EXPECT_EQ(curve->GetFunctionIndexAt(35), 2u);
    EXPECT_EQ(curve->GetFunctionAtIdx(10, 0, 1), 0u);
    EXPECT_EQ(curve->GetFunctionAtIdx(10, 1, 1), CartesianCurve::npos);
    EXPECT_EQ(curve->GetFunctionAt(-5), curve->GetFunction(0));
    EXPECT_EQ(curve->GetFunctionAt(99), curve->GetFunction(2));

    EXPECT_NEAR(curve->GetValue(10), 2, 1e-12);
    EXPECT_NEAR(curve->GetValue(40), -3, 1e-12);
    // The slope is an angle; at x = 10 it is the middle piece's in slope.
    EXPECT_NEAR(curve->GetSlope(10), std::atan(0.1), 1e-12);
    EXPECT_NEAR(curve->GetSlope(0), std::atan(0.2), 1e-12);
    // Outside the covered range the end pieces' cubics continue.
    const PolynomialFunction* last = curve->GetFunction(2);
    EXPECT_EQ(curve->GetValue(45), last->GetValue(45));
    EXPECT_EQ(curve->GetCurvature(45), last->GetCurvature(45));
    double value = 0, slope = 0, curvature = 0;
    curve->GetData(20, value, slope, curvature);
    EXPECT_EQ(value, curve->GetValue(20));
    EXPECT_EQ(slope, curve->GetSlope(20));
    EXPECT_EQ(curvature, curve->GetCurvature(20));

    CartesianCurve line;
    line.AddFunction(new PolynomialFunction({0, 0}, 0.75, {40, 30}, 0.75));
    EXPECT_NEAR(line.GetCurveLength(), 50, 1e-9);
    const vek::Box2 box = curve->GetBoundingBox();
    for (double x = 0; x <= 40; x += 0.5)
        EXPECT_TRUE(box.contains({x, curve->GetValue(x)})) << x;

    CartesianCurve empty;
    EXPECT_EQ(empty.GetTagName(), "SZCurve");
    EXPECT_EQ(empty.GetFunctionAt(1), nullptr);
    EXPECT_EQ(empty.GetFunctionIndexAt(1), CartesianCurve::npos);
    EXPECT_EQ(empty.GetValue(1), 0);
    EXPECT_EQ(empty.GetSlope(1), 0);
    EXPECT_EQ(empty.GetXMax(), 0);
    EXPECT_EQ(empty.GetHandleCount(), 0u);
    value = slope = curvature = 7;
    empty.GetData(1, value, slope, curvature);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(slope, 7);
    EXPECT_EQ(curvature, 7);
    EXPECT_TRUE(empty.GetBoundingBox().isEmpty());
}

TEST(CartesianCurve, ValidateDetectsTheEditMode) {
    // A slope break of 0.02 at a junction: the curve is edited as a polyline, every piece its chord.
    CountedPtr<CartesianCurve> broken = ThreePieces(0.02);
    broken->Validate();
    EXPECT_TRUE(broken->GetIsEditModeDetected());
    EXPECT_TRUE(broken->GetIsLinearEditMode());
    EXPECT_NEAR(broken->GetFunction(0)->GetDerivativeIn(), 0.2, 1e-15);
    EXPECT_NEAR(broken->GetFunction(0)->GetDerivativeOut(), 0.2, 1e-15);
    EXPECT_NEAR(broken->GetFunction(2)->GetDerivativeOut(), -0.5, 1e-15);
    EXPECT_NEAR(broken->GetValue(35), -0.5, 1e-12);

    // A break of 0.005 (below 0.01): smooth mode, the junction gets the chord-weighted mean slope.
    CountedPtr<CartesianCurve> smooth = ThreePieces(0.005);
    smooth->Validate();
    EXPECT_FALSE(smooth->GetIsLinearEditMode());
    const double w1 = std::hypot(10, 2), w2 = 20;
    const double mean = (w1 * 0.1 + w2 * 0.105) / (w1 + w2);
    EXPECT_NEAR(smooth->GetHandlePrevSlope(1), mean, 1e-15);
    EXPECT_NEAR(smooth->GetHandleNextSlope(1), mean, 1e-15);
    EXPECT_NEAR(smooth->GetFunction(0)->GetDerivative(10), mean, 1e-12);  // refitted, not just relabelled
    EXPECT_NEAR(smooth->GetHandleNextSlope(2), 0, 1e-15);  // the other junction was already smooth
    // Detected once: a later break does not switch the mode.
    smooth->SetFunctionStart(2, {30, 2}, 0.5);
    smooth->Validate();
    EXPECT_FALSE(smooth->GetIsLinearEditMode());
    EXPECT_NEAR(smooth->GetHandleNextSlope(2), (20 * 0 + std::hypot(10, 5) * 0.5) / (20 + std::hypot(10, 5)),
                1e-15);
    smooth->DetectEditMode();
    EXPECT_FALSE(smooth->GetIsLinearEditMode());
    smooth->SetLinearEditMode(true);
    smooth->Validate();
    EXPECT_NEAR(smooth->GetFunction(1)->GetDerivativeIn(), 0, 1e-15);

    // Reconnection: a gap is closed by moving the in point, a reversed piece turned round, a piece of no
    // width dropped.
    CartesianCurve repaired;
    repaired.SetLinearEditMode(false);
    repaired.AddFunction(new PolynomialFunction({0, 0}, 0, {10, 1}, 0));
    repaired.AddFunction(new PolynomialFunction({20, 3}, 0, {11, 2}, 0));
    repaired.AddFunction(new PolynomialFunction({20, 3}, 0, {20, 3}, 0));
    repaired.AddFunction(new PolynomialFunction({20, 3}, 0, {25, 4}, 0));
    repaired.Validate();
    ASSERT_EQ(repaired.GetFunctionCount(), 3u);
    EXPECT_EQ(repaired.GetHandlePos(1), vek::Vector2(10, 1));
    EXPECT_EQ(repaired.GetHandlePos(2), vek::Vector2(20, 3));
    EXPECT_EQ(repaired.GetHandlePos(3), vek::Vector2(25, 4));
}

TEST(CartesianCurve, Handles) {
    CountedPtr<CartesianCurve> curve = ThreePieces();
    ASSERT_EQ(curve->GetHandleCount(), 4u);
    EXPECT_EQ(curve->GetHandlePos(0), vek::Vector2(0, 0));
    EXPECT_EQ(curve->GetHandlePos(3), vek::Vector2(40, -3));
    EXPECT_EQ(curve->GetHandlePos(9), vek::Vector2());
    EXPECT_EQ(curve->GetHandlePrevSlope(0), 0.2);
    EXPECT_EQ(curve->GetHandleNextSlope(0), 0.2);
    EXPECT_EQ(curve->GetHandlePrevSlope(1), 0.1);
    EXPECT_EQ(curve->GetHandleNextSlope(2), 0);
    EXPECT_EQ(curve->GetHandlePrevSlope(3), -0.5);
    EXPECT_EQ(curve->GetHandleNextSlope(3), -0.5);

    EXPECT_FALSE(curve->RemoveHandle(0));
    EXPECT_FALSE(curve->RemoveHandle(3));
    ASSERT_TRUE(curve->RemoveHandle(2));  // the middle piece now runs to (40, -3)
    ASSERT_EQ(curve->GetFunctionCount(), 2u);
    EXPECT_EQ(curve->GetFunctions().size(), 2u);
    EXPECT_EQ(curve->GetHandlePos(2), vek::Vector2(40, -3));
    EXPECT_EQ(curve->GetHandlePrevSlope(2), -0.5);
    EXPECT_EQ(curve->GetHandleNextSlope(1), 0.1);
    EXPECT_NEAR(curve->GetValue(40), -3, 1e-12);

    ASSERT_TRUE(curve->SetFunctionEnd(0, {12, 4}, 1));
    EXPECT_NEAR(curve->GetFunction(0)->GetDerivative(12), 1, 1e-12);
    EXPECT_NEAR(curve->GetFunction(0)->GetValue(12), 4, 1e-12);
    ASSERT_TRUE(curve->SetFunctionStart(1, {12, 4}, 1));
    EXPECT_NEAR(curve->GetValue(12), 4, 1e-12);
    ASSERT_TRUE(curve->SetLinearFunctionEnd(1, {42, -2}));
    EXPECT_NEAR(curve->GetFunction(1)->GetDerivativeIn(), -0.2, 1e-15);
    EXPECT_NEAR(curve->GetValue(27), 1, 1e-12);
    ASSERT_TRUE(curve->SetLinearFunctionStart(0, {2, 4}));
    EXPECT_NEAR(curve->GetFunction(0)->GetDerivativeOut(), 0, 1e-15);
    EXPECT_FALSE(curve->SetFunctionStart(2, {0, 0}, 0));
    EXPECT_FALSE(curve->SetLinearFunctionEnd(5, {0, 0}));
}

TEST(CartesianCurve, InversionsReadTheProfileBackwards) {
    CountedPtr<CartesianCurve> original = ThreePieces(0.3);
    CountedPtr<CartesianCurve> inverted(original->Clone());
    inverted->Invert();
    CountedPtr<CartesianCurve> mirrored(original->Clone());
    mirrored->InvertYX();
    CountedPtr<CartesianCurve> negated(original->Clone());
    negated->InvertY();
    EXPECT_EQ(inverted->GetXMin(), 0);
    EXPECT_EQ(inverted->GetXMax(), 40);
    for (double x = 0; x <= 40; x += 0.25) {
        const PolynomialFunction* f = original->GetFunctionAt(x);
        const double value = f->GetValue(x), derivative = f->GetDerivative(x);
        const double back = 40 - x;
        EXPECT_NEAR(inverted->GetFunctionAt(back)->GetValue(back), value, 1e-12) << x;
        EXPECT_NEAR(inverted->GetFunctionAt(back)->GetDerivative(back), -derivative, 1e-12) << x;
        EXPECT_NEAR(mirrored->GetFunctionAt(back)->GetValue(back), -value, 1e-12) << x;
        EXPECT_NEAR(mirrored->GetFunctionAt(back)->GetDerivative(back), derivative, 1e-12) << x;
        EXPECT_NEAR(negated->GetFunctionAt(x)->GetValue(x), -value, 1e-12) << x;
    }
    inverted->Invert();
    mirrored->InvertYX();
    for (size_t i = 0; i < original->GetFunctionCount(); ++i) {
        const PolynomialFunction *a = original->GetFunction(i), *b = inverted->GetFunction(i),
                                 *c = mirrored->GetFunction(i);
        EXPECT_EQ(a->GetPosIn(), b->GetPosIn());
        EXPECT_EQ(a->GetDerivativeOut(), b->GetDerivativeOut());
        EXPECT_EQ(a->GetPosOut(), c->GetPosOut());
        EXPECT_EQ(a->GetDerivativeIn(), c->GetDerivativeIn());
    }
}

TEST(CartesianCurve, SetXMaxAndSetXMin) {
    CountedPtr<CartesianCurve> curve = ThreePieces();
    curve->SetXMax(40 + 1e-13);  // the same end
    EXPECT_EQ(curve->GetHandlePos(3), vek::Vector2(40, -3));
    curve->SetXMax(50);  // stretched: the last out point moves, its value kept
    EXPECT_EQ(curve->GetHandlePos(3), vek::Vector2(50, -3));
    EXPECT_EQ(curve->GetHandlePrevSlope(3), -0.5);
    curve->SetXMax(20);  // cut inside the middle piece: its out point becomes (20, 2)
    ASSERT_EQ(curve->GetFunctionCount(), 2u);
    EXPECT_EQ(curve->GetHandlePos(2), vek::Vector2(20, 2));
    curve->SetXMax(10 + 5e-6);  // less than 1e-5 of the middle piece would remain: it goes
    ASSERT_EQ(curve->GetFunctionCount(), 1u);
    EXPECT_EQ(curve->GetXMax(), 10);

    // SetXMin keeps the end part, re-based to start at 0: the argument is the new length.
    CountedPtr<CartesianCurve> start = ThreePieces();
    start->SetXMin(30);
    ASSERT_EQ(start->GetFunctionCount(), 2u);
    EXPECT_EQ(start->GetXMin(), 0);
    EXPECT_EQ(start->GetXMax(), 30);
    EXPECT_NEAR(start->GetValue(30), -3, 1e-12);
    EXPECT_NEAR(start->GetValue(20), 2, 1e-12);
    EXPECT_NEAR(start->GetValue(25), ThreePieces()->GetValue(35), 1e-12);  // the last piece is intact
    start->SetXMin(-1);                                                    // nothing left
    EXPECT_EQ(start->GetFunctionCount(), 0u);
}

TEST(CartesianCurve, MakeFrom) {
    CartesianCurve curve("BankingCurve");
    EXPECT_FALSE(curve.MakeFrom(std::vector<vek::Vector2>{{1, 1}}));
    ASSERT_TRUE(curve.MakeFrom(std::vector<vek::Vector2>{{0, 0}, {10, 10}, {20, 10}, {20, 10}}));
    ASSERT_EQ(curve.GetFunctionCount(), 3u);
    EXPECT_NEAR(curve.GetHandleNextSlope(0), 1, 1e-15);
    EXPECT_NEAR(curve.GetHandleNextSlope(1), std::tan(vek::kPi / 8), 1e-15);
    EXPECT_NEAR(curve.GetHandlePrevSlope(1), std::tan(vek::kPi / 8), 1e-15);
    EXPECT_NEAR(curve.GetHandleNextSlope(2), 0, 1e-15);  // a zero chord counts as horizontal
    EXPECT_NEAR(curve.GetValue(10), 10, 1e-12);
    EXPECT_NEAR(curve.GetValue(20), 10, 1e-12);
    EXPECT_FALSE(curve.MakeFrom(std::vector<PtInCurve>{{{0, 0}, 1}}));
    EXPECT_EQ(curve.GetFunctionCount(), 3u);  // a refusal changes nothing
    ASSERT_TRUE(curve.MakeFrom(std::vector<PtInCurve>{{{0, 1}, 0.5}, {{4, 2}, 0}, {{8, 0}, -1}}));
    ASSERT_EQ(curve.GetFunctionCount(), 2u);
    EXPECT_EQ(curve.GetHandlePos(1), vek::Vector2(4, 2));
    EXPECT_EQ(curve.GetHandleNextSlope(0), 0.5);
    EXPECT_EQ(curve.GetHandlePrevSlope(2), -1);
    EXPECT_EQ(curve.GetTagName(), "BankingCurve");
}

TEST(CartesianCurve, OffsetAppendSplitCopyAndClear) {
    CountedPtr<CartesianCurve> curve = ThreePieces();
    CountedPtr<CartesianCurve> tail(new CartesianCurve("SZCurve"));
    tail->AddFunction(new PolynomialFunction({0, 0}, -0.5, {10, -1}, 0));
    curve->AppEnd(tail.Get());
    ASSERT_EQ(curve->GetFunctionCount(), 4u);
    EXPECT_EQ(tail->GetHandlePos(0), vek::Vector2(40, -3));  // the other curve was shifted
    EXPECT_EQ(curve->GetFunction(3), tail->GetFunction(0));  // and its pieces are shared
    EXPECT_EQ(curve->GetFunction(3)->GetRefCount(), 2u);
    EXPECT_NEAR(curve->GetValue(50), -4, 1e-12);

    curve->Offset({0, 100});
    EXPECT_NEAR(curve->GetValue(10), 102, 1e-12);
    EXPECT_EQ(curve->GetHandleNextSlope(0), 0.2);

    // A split reproduces the cubic exactly on both sides.
    const CountedPtr<PolynomialFunction> whole(curve->GetFunction(1)->Clone());
    EXPECT_FALSE(curve->SplitFunction(1, 10));
    ASSERT_TRUE(curve->SplitFunction(1, 17));
    ASSERT_EQ(curve->GetFunctionCount(), 5u);
    EXPECT_EQ(curve->GetHandlePos(2).x, 17);
    for (double x = 10; x <= 30; x += 0.5)
        EXPECT_NEAR(curve->GetValue(x), whole->GetValue(x), 1e-11) << x;

    CountedPtr<CartesianCurve> copy(curve->Clone());
    EXPECT_EQ(copy->GetTagName(), "SZCurve");
    ASSERT_EQ(copy->GetFunctionCount(), 5u);
    EXPECT_NE(copy->GetFunction(0), curve->GetFunction(0));
    copy->Offset({0, 1});
    EXPECT_NEAR(curve->GetValue(10), 102, 1e-12);
    CartesianCurve banking("BankingCurve");
    banking.CopyFrom(copy.Get());
    EXPECT_EQ(banking.GetTagName(), "BankingCurve");
    EXPECT_NEAR(banking.GetValue(10), 103, 1e-12);
    EXPECT_EQ(banking.GetFunctionIndex(banking.GetFunction(4)), 4u);
    EXPECT_EQ(banking.GetFunctionIndex(curve->GetFunction(4)), CartesianCurve::npos);
    EXPECT_TRUE(banking.RemoveFunction(1, 99));
    EXPECT_EQ(banking.GetFunctionCount(), 1u);
    EXPECT_FALSE(banking.RemoveFunction(1, 1));
    banking.Clear();
    EXPECT_EQ(banking.GetFunctionCount(), 0u);
    EXPECT_FALSE(banking.GetIsEditModeDetected());
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
        ASSERT_TRUE(curve);
        EXPECT_EQ(curve->GetTagName(), "BankingCurve");
        ASSERT_EQ(curve->GetFunctionCount(), 2u);
        EXPECT_NEAR(curve->GetValue(50), -0.05, 1e-15);
        EXPECT_NEAR(curve->GetValue(0), 0.1, 1e-15);
        saved = Ruvex::SaveToString(curve);
        EXPECT_NE(saved.find("<BankingCurve>"), std::string::npos) << saved;
    }
    // Records made by a factory that does not know the cubics become cubics with the same values.
    class CurveOnlyFactory : public Ruvex::Factory {
    public:
        Ruvex::Element* Create(const std::string& tag) override {
            if (tag == "BankingCurve") return new CartesianCurve(tag);
            return Ruvex::Factory::Create(tag);
        }
    };
    CountedPtr<Ruvex::Factory> previous(Ruvex::GetFactory());
    Ruvex::SetFactory(new CurveOnlyFactory);
    CountedPtr<Ruvex::Element> root(Ruvex::Load(saved.c_str(), true));
    Ruvex::SetFactory(previous.Get());
    auto* curve = dynamic_cast<CartesianCurve*>(root.Get());
    ASSERT_TRUE(curve);
    ASSERT_EQ(curve->GetFunctionCount(), 2u);
    EXPECT_NEAR(curve->GetValue(50), -0.05, 1e-15);
    EXPECT_NEAR(curve->GetSlope(80), 0, 1e-15);
    EXPECT_EQ(Ruvex::SaveToString(curve), saved);
}

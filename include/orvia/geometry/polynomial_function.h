// A cubic y = f(x) between an input and an output point with given slopes: one piece of an elevation or
// banking profile.
#pragma once

#include <orvia/geometry/base_func.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/vek/box.h>
#include <orvia/vek/vector.h>

class PolynomialFunction : public Ruvex::PolynomialFunctionElement {
public:
    // A circle arc, a straight segment and a circle arc joined end to end (lengths in m along the curve,
    // curvatures in 1/m, positive turning left in the (x, y) plane).
    struct CircleSegmentCircle {
        double curvature1 = 0, length1 = 0;
        double segmentLength = 0;
        double curvature2 = 0, length2 = 0;
    };

    // The zero function on [0, 0].
    PolynomialFunction();
    PolynomialFunction(const vek::Vector2& in, double derivativeIn, const vek::Vector2& out,
                       double derivativeOut);
    PolynomialFunction(const PolynomialFunction& other);
    ~PolynomialFunction() override;

    // The Hermite cubic through in and out (x, y) with slopes dy/dx dIn and dOut. xOut == xIn gives the zero
    // cubic (evaluated at any x it returns 0).
    void Set(const vek::Vector2& in, double derivativeIn, const vek::Vector2& out, double derivativeOut);
    // The straight line through both points (slope 0 unless xOut > xIn).
    void SetLinear(const vek::Vector2& in, const vek::Vector2& out);

    // Evaluated at any x: outside [xIn, xOut] the cubic continues.
    double GetValue(double x) const { return m_function.Eval(x - m_xm); }
    double GetDerivative(double x) const { return m_function.EvalDf(x - m_xm); }
    // atan of the derivative, radians.
    double GetSlope(double x) const;
    // Signed curvature of the graph (1/m).
    double GetCurvature(double x) const { return m_function.EvalCurvature(x - m_xm); }
    // Arc length of the graph from x0 to x1 (negative when x1 < x0), by chords within 0.5 m of the graph and
    // at most 1 m apart in x.
    double GetCurveLength(double x0, double x1) const;
    // Box of the graph over [xIn, xOut].
    vek::Box2 GetBoundingBox() const;

    double GetXMin() const { return m_In.x; }
    double GetXMax() const { return m_Out.x; }
    const vek::Vector2& GetPosIn() const { return m_In; }
    const vek::Vector2& GetPosOut() const { return m_Out; }
    double GetDerivativeIn() const { return m_DerivativeIn; }
    double GetDerivativeOut() const { return m_DerivativeOut; }
    // The cubic in (x - xIn): y = a + b (x - xIn) + c (x - xIn)^2 + d (x - xIn)^3.
    void getCoefficients(double& a, double& b, double& c, double& d) const;
    const BaseFunc& GetBaseFunc() const { return m_function; }

    // The shortest circle-segment-circle path from the graph's start to its end, leaving and arriving along
    // the graph's tangents, whose circles have the radius of the graph's sharpest bend over [xIn, xOut] (the
    // tangent-line words of the shortest-path problem with bounded curvature). A graph without bend is one
    // segment. False when xOut <= xIn.
    bool DecomposeToCircleSegmentCircle(CircleSegmentCircle& result) const;

    // A copy with count 0: the caller owns it.
    PolynomialFunction* Clone() const;

    // Reads the tag, then Set() with the loaded values. False only when the record's reader fails.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

private:
    BaseFunc m_function;
    double m_xm = 0;  // centre abscissa: the cubic's variable is x - xm
};

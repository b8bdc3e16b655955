#pragma once

// Data of the planar curve pieces and of the curves made of them.

#include <orvia/ruvex/schema.h>

#include <string>
#include <vector>

namespace Ruvex {

#define RUVEX_SEGMENT_TABLE(F) F(ATTR, double, Length, "length", 1.0)

class SegmentElement : public Element {
    RUVEX_FIELDS(SegmentElement, Element, RUVEX_SEGMENT_TABLE)
};

#define RUVEX_CIRCLE_ARC_TABLE(F)          \
    F(ATTR, double, Length, "length", 1.0) \
    F(ATTR, double, Curvature, "curvature", 1.0)

class CircleArcElement : public Element {
    RUVEX_FIELDS(CircleArcElement, Element, RUVEX_CIRCLE_ARC_TABLE)
};

#define RUVEX_CLOTHOID_ARC_TABLE(F)                        \
    F(ATTR, double, Length, "length", 1.0)                 \
    F(ATTR, double, StartCurvature, "startCurvature", 0.0) \
    F(ATTR, double, EndCurvature, "endCurvature", 0.01)

class ClothoidArcElement : public Element {
    RUVEX_FIELDS(ClothoidArcElement, Element, RUVEX_CLOTHOID_ARC_TABLE)
};

// Control points are in the piece's own frame.
#define RUVEX_POLY_LINE_TABLE(F)                                                   \
    F(ATTR, PolyLineElement::EType, Type, "type", PolyLineElement::EType::Polygon) \
    F(ATTR, double, EndTangent, "endTangent", 0.0)                                 \
    F(ATTR, std::vector<::vek::Vector2>, Points, "points", {})

class PolyLineElement : public Element {
public:
    // How the control polygon is smoothed.
    enum class EType : int32_t { Polygon = 0, ClampedSpline = 1, BezierThroughPoints = 2, BezierChain = 4 };
    RUVEX_FIELDS(PolyLineElement, Element, RUVEX_POLY_LINE_TABLE)
};

#define RUVEX_CLOTHOID_SPLINE_TABLE(F)            \
    F(ATTR, double, Threshold, "threshold", 0.75) \
    F(ATTR, bool, Symmetric, "symmetric", false)  \
    F(ATTR, std::vector<::vek::Vector2>, Points, "points", {})

class ClothoidSplineElement : public Element {
    RUVEX_FIELDS(ClothoidSplineElement, Element, RUVEX_CLOTHOID_SPLINE_TABLE)
};

// A cubic y = f(x) between an input and an output point with given derivatives.
#define RUVEX_POLYNOMIAL_TABLE(F)                      \
    F(XY, In, "xIn", "yIn", 0.0, 0.0)                  \
    F(ATTR, double, DerivativeIn, "derivativeIn", 0.0) \
    F(XY, Out, "xOut", "yOut", 0.0, 0.0)               \
    F(ATTR, double, DerivativeOut, "derivativeOut", 0.0)

class PolynomialFunctionElement : public Element {
    RUVEX_FIELDS(PolynomialFunctionElement, Element, RUVEX_POLYNOMIAL_TABLE)
};

// The horizontal layout: the origin of the first piece and the pieces in order.
#define RUVEX_XY_CURVE_TABLE(F)                      \
    F(XY, Origin, "x", "y", 0.0, 0.0)                \
    F(ATTR, double, Orientation, "orientation", 0.0) \
    F(LIST, Element, Functions, "Segment|CircleArc|ClothoArc|PolyLine|ClothoidSpline")

class XYCurveElement : public Element {
    RUVEX_FIELDS(XYCurveElement, Element, RUVEX_XY_CURVE_TABLE)
};

// A chain of cubics; saved under the tag it was created with ("SZCurve", "BankingCurve", ...).
#define RUVEX_CARTESIAN_CURVE_TABLE(F) F(LIST, PolynomialFunctionElement, Functions, "Polynomial")

class CartesianCurveElement : public Element {
    RUVEX_FIELDS(CartesianCurveElement, Element, RUVEX_CARTESIAN_CURVE_TABLE)
    RUVEX_TAGGED(CartesianCurveElement)
};

}  // namespace Ruvex

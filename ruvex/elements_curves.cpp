#include <orvia/ruvex/elements/curves.h>

namespace Ruvex {

RUVEX_SCHEMA(SegmentElement, Element, "Segment", RUVEX_SEGMENT_TABLE)
RUVEX_SCHEMA(CircleArcElement, Element, "CircleArc", RUVEX_CIRCLE_ARC_TABLE)
RUVEX_SCHEMA(ClothoidArcElement, Element, "ClothoArc", RUVEX_CLOTHOID_ARC_TABLE)
RUVEX_SCHEMA(PolyLineElement, Element, "PolyLine", RUVEX_POLY_LINE_TABLE)
RUVEX_SCHEMA(ClothoidSplineElement, Element, "ClothoidSpline", RUVEX_CLOTHOID_SPLINE_TABLE)
RUVEX_SCHEMA(PolynomialFunctionElement, Element, "Polynomial", RUVEX_POLYNOMIAL_TABLE)
RUVEX_SCHEMA(XYCurveElement, Element, "XYCurve", RUVEX_XY_CURVE_TABLE)
RUVEX_SCHEMA(CartesianCurveElement, Element, "SZCurve", RUVEX_CARTESIAN_CURVE_TABLE)

}  // namespace Ruvex

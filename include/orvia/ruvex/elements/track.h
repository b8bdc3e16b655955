#pragma once

// Data of a track: the intersections at its two ends (by name), its axis curves and its portions.

#include <orvia/ruvex/elements/clipped.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/portion.h>
#include <orvia/ruvex/schema.h>

#include <string>

namespace Ruvex {

// The axis is the horizontal curve with elevation (s -> z), banking (s -> roll, radians) and vertical
// curvature along it; each curve child is saved under its own tag. An empty intersection name leaves that end
// free. Portions come in increasing abscissa; the objects clipped onto the track follow them. User data are
// the runtime class's children.
#define RUVEX_TRACK_TABLE(F)                                                 \
    F(ATTR, std::string, StartIntersectionName, "startIntersectionName", "") \
    F(ATTR, std::string, EndIntersectionName, "endIntersectionName", "")     \
    F(CHILD, XYCurveElement, XYCurve, "XYCurve")                             \
    F(CHILD, CartesianCurveElement, SZCurve, "SZCurve")                      \
    F(CHILD, CartesianCurveElement, BankingCurve, "BankingCurve")            \
    F(CHILD, CartesianCurveElement, SZCurvatureCurve, "SZCurvatureCurve")    \
    F(LIST, PortionElement, Portions, "Portion")                             \
    F(LIST, TrackClippedDataElement, ClippedData, "ClippedData")

class TrackElement : public NamedElement {
    RUVEX_FIELDS(TrackElement, NamedElement, RUVEX_TRACK_TABLE)
};

}  // namespace Ruvex

#include <orvia/ruvex/elements/intersection.h>

namespace Ruvex {

RUVEX_SCHEMA(ContourPieceElement, Element, "ContourPiece", RUVEX_CONTOUR_PIECE_TABLE)
RUVEX_SCHEMA(IntersectionElement, TrackConnectorElement, "Intersection", RUVEX_INTERSECTION_TABLE)

}  // namespace Ruvex

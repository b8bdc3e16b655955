#pragma once

// Data of an intersection: the node where tracks of one sub-network meet, with the outline anchored on their
// borders, the lane connections it forbids, its explicit links and the objects placed on it. Lane pairs and
// links are declared with the traffic data.

#include <orvia/ruvex/elements/clipped.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/traffic.h>
#include <orvia/ruvex/schema.h>

#include <string>
#include <vector>

namespace Ruvex {

// A stretch of an intersection's outline between a point anchored on a border of one track and a point
// anchored on another: each anchor names its track, whether it lies at the track's end (else its start) and
// whether on its left border (else its right). contourPoints are the planar points in between (metres).
#define RUVEX_CONTOUR_PIECE_TABLE(F)                                       \
    F(ATTR, std::string, StartAnchorTrack, "startAnchorTrack", "")         \
    F(ATTR, bool, StartAnchorOnTrackEnd, "isStartAnchorOnTrackEnd", false) \
    F(ATTR, bool, StartAnchorOnLeftSide, "isStartAnchorOnLeftSide", false) \
    F(ATTR, std::string, EndAnchorTrack, "endAnchorTrack", "")             \
    F(ATTR, bool, EndAnchorOnTrackEnd, "isEndAnchorOnTrackEnd", false)     \
    F(ATTR, bool, EndAnchorOnLeftSide, "isEndAnchorOnLeftSide", false)     \
    F(ATTR, std::vector<::vek::Vector2>, ContourPoints, "contourPoints", {})

class ContourPieceElement : public Element {
    RUVEX_FIELDS(ContourPieceElement, Element, RUVEX_CONTOUR_PIECE_TABLE)
};

// Tracks name the intersection at each of their ends; the intersection itself lists no tracks.
#define RUVEX_INTERSECTION_TABLE(F)                                            \
    F(ATTR, bool, DrawInsideMarking, "drawMarkingInsideIntersection", false)   \
    F(LIST_IN, ContourPieceElement, ContourPieces, "Contours", "ContourPiece") \
    F(LIST_IN, LanePairElement, BannedLinks, "BannedLinks", "LanePair")        \
    F(LIST, LinkElement, Links, "Link")                                        \
    F(LIST, MarkClippedDataElement, ClippedData, "MarkClippedData")

class IntersectionElement : public TrackConnectorElement {
    RUVEX_FIELDS(IntersectionElement, TrackConnectorElement, RUVEX_INTERSECTION_TABLE)
};

}  // namespace Ruvex

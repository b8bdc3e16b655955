#pragma once

// Data of the objects placed on the network through a clip: on a track in track coordinates within a scope,
// or at a fixed mark.

#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/traffic.h>
#include <orvia/ruvex/schema.h>

#include <limits>
#include <string>
#include <vector>

namespace Ruvex {

// Where a clipped object sits on its track: abscissa along the axis, lateral offset (positive to the right)
// and vertical offset, in metres.
#define RUVEX_TRACK_CLIP_TABLE(F)                        \
    F(ATTR, double, Abscissa, "abscissa", 0.0)           \
    F(ATTR, double, LateralOffset, "lateralOffset", 0.0) \
    F(ATTR, double, VerticalOffset, "verticalOffset", 0.0)

class TrackClipElement : public Element {
    RUVEX_FIELDS(TrackClipElement, Element, RUVEX_TRACK_CLIP_TABLE)
};

// The value of a scope limit that is not set: the largest single-precision number, on the open side. Readers
// treat any limit beyond a tenth of it as absent.
inline constexpr double kNoScopeLimit = std::numeric_limits<float>::max();

// The part of a track a clipped object applies to, relative to its clip (metres): from/to along the axis,
// left/right laterally, bottom/top vertically. The circulation way is a text ("none", "direct", "inverse",
// "both"); laneScope lists lane indices (whole numbers), empty meaning every lane.
#define RUVEX_TRACK_SCOPE_TABLE(F)                                       \
    F(ATTR, double, From, "from", -::Ruvex::kNoScopeLimit)               \
    F(ATTR, double, To, "to", ::Ruvex::kNoScopeLimit)                    \
    F(ATTR, double, LeftLimit, "leftLimit", -::Ruvex::kNoScopeLimit)     \
    F(ATTR, double, RightLimit, "rightLimit", ::Ruvex::kNoScopeLimit)    \
    F(ATTR, double, BottomLimit, "bottomLimit", -::Ruvex::kNoScopeLimit) \
    F(ATTR, double, TopLimit, "topLimit", ::Ruvex::kNoScopeLimit)        \
    F(ATTR, std::string, CirculationWayText, "circulationWay", "both")   \
    F(ATTR, std::vector<double>, LaneScope, "laneScope", {})

class TrackScopeElement : public Element {
    RUVEX_FIELDS(TrackScopeElement, Element, RUVEX_TRACK_SCOPE_TABLE)
};

// A regular sampling: a step count (at least 1 in practice) and the length of one step in metres. Clipped
// data repeat their object along X, Y and Z with one each, saved under the tag of its axis ("Sequence" for X,
// "SequenceY", "SequenceZ").
#define RUVEX_SEQUENCE_TABLE(F)                   \
    F(ATTR, uint32_t, StepCount, "stepCount", 1u) \
    F(ATTR, double, StepLength, "stepLength", 1.0)

class SequenceElement : public Element {
    RUVEX_FIELDS(SequenceElement, Element, RUVEX_SEQUENCE_TABLE)
    RUVEX_TAGGED(SequenceElement)
};

// What every clipped object has: its name and the object it carries (one kind at a time).
#define RUVEX_CLIPPED_DATA_TABLE(F)                                      \
    F(ATTR, bool, Static, "isStatic", false)                             \
    F(CHILD, ExternalFileElement, Object3D, "ExternalElement")           \
    F(CHILD, RoadSignElement, RoadSign, "RoadSign")                      \
    F(CHILD, ObstacleElement, Obstacle, "Obstacle")                      \
    F(CHILD, SurfaceModifierElement, SurfaceModifier, "SurfaceModifier") \
    F(CHILD, SequenceElement, SequenceX, "Sequence")                     \
    F(CHILD, SequenceElement, SequenceY, "SequenceY")                    \
    F(CHILD, SequenceElement, SequenceZ, "SequenceZ")                    \
    F(CHILD, LinearElement, LinearObject, "Linear")

class ClippedDataElement : public NamedElement {
    RUVEX_FIELDS(ClippedDataElement, NamedElement, RUVEX_CLIPPED_DATA_TABLE)
};

// An object clipped onto a track; saved under the tag it was created with ("ClippedData" inside a track).
#define RUVEX_TRACK_CLIPPED_DATA_TABLE(F)              \
    F(CHILD, TrackClipElement, TrackClip, "TrackClip") \
    F(CHILD, TrackScopeElement, Scope, "TrackScope")   \
    F(CHILD, ParkingLotElement, ParkingLot, "ParkingLot")

class TrackClippedDataElement : public ClippedDataElement {
    RUVEX_FIELDS(TrackClippedDataElement, ClippedDataElement, RUVEX_TRACK_CLIPPED_DATA_TABLE)
    RUVEX_TAGGED(TrackClippedDataElement)
};

// An object placed at a fixed mark in its parent's frame: position in metres, roll, pitch and yaw in radians
// (the order of vek::Mark).
#define RUVEX_MARK_CLIPPED_DATA_TABLE(F)           \
    F(XYZ, Position, "x", "y", "z", 0.0, 0.0, 0.0) \
    F(ATTR, double, Roll, "roll", 0.0)             \
    F(ATTR, double, Pitch, "pitch", 0.0)           \
    F(ATTR, double, Yaw, "yaw", 0.0)

class MarkClippedDataElement : public ClippedDataElement {
    RUVEX_FIELDS(MarkClippedDataElement, ClippedDataElement, RUVEX_MARK_CLIPPED_DATA_TABLE)
};

}  // namespace Ruvex

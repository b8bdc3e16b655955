#pragma once

// Data of the cross-section: profiles with their lanes and lane borders, the painted markings and swept
// decorations of borders, texture placement, and the library files that keep profiles and markings on their
// own.

#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/ground.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/traffic.h>
#include <orvia/ruvex/schema.h>

#include <string>

namespace Ruvex {

// Texture placement on a surface: offset and scale of the texture coordinates and their rotation (radians).
#define RUVEX_UV_MAPPING_TABLE(F)                       \
    F(XY, UVOffset, "uVOffsetX", "uVOffsetY", 0.0, 0.0) \
    F(XY, UVScale, "uVScaleX", "uVScaleY", 1.0, 1.0)    \
    F(ATTR, double, UVHeading, "uVHeading", 0.0)

class UVMappingElement : public Element {
    RUVEX_FIELDS(UVMappingElement, Element, RUVEX_UV_MAPPING_TABLE)
};

// A painted line. Lengths in metres: a dash of lineLength every totalLength (equal lengths: a continuous
// line). The crossing logics are the texts "unknown", "can", "warning" or "cannot"; the material is named.
#define RUVEX_MARKING_TABLE(F)                                  \
    F(ATTR, double, Width, "width", 0.15)                       \
    F(ATTR, double, LineLength, "lineLength", 1.0)              \
    F(ATTR, double, TotLength, "totalLength", 1.0)              \
    F(ATTR, bool, DoubleMarking, "doubleMarking", false)        \
    F(ATTR, std::string, Category, "category", "")              \
    F(ATTR, double, MarkingQuality, "quality", 1.0)             \
    F(ATTR, std::string, LeftToRight, "leftToRight", "unknown") \
    F(ATTR, std::string, RightToLeft, "rightToLeft", "unknown") \
    F(ATTR, std::string, MaterialName, "material", "")          \
    F(CHILD, UVMappingElement, UVMapping, "UVMapping")

class MarkingElement : public NamedElement {
    RUVEX_FIELDS(MarkingElement, NamedElement, RUVEX_MARKING_TABLE)
};

// A shape swept along a border; the polyline lies in the cross-section plane (lateral, vertical; metres).
#define RUVEX_DECORATION_TABLE(F)                      \
    F(CHILD, PolyLineElement, PolyLine, "PolyLine")    \
    F(ATTR, std::string, MaterialName, "material", "") \
    F(CHILD, UVMappingElement, UVMapping, "UVMapping")

class DecorationElement : public Element {
    RUVEX_FIELDS(DecorationElement, Element, RUVEX_DECORATION_TABLE)
};

// A point of the cross-section between two lanes. Distances to the axis in metres: horizontal positive to the
// right, vertical positive up. The marking is named among the markings of the owner (sub-network or library).
#define RUVEX_LANE_BORDER_TABLE(F)                           \
    F(ATTR, double, HorizDistToAxis, "horizDistToAxis", 0.0) \
    F(ATTR, double, VertDistToAxis, "vertDistToAxis", 0.0)   \
    F(ATTR, double, MarkingOffset, "markingOffset", 0.0)     \
    F(ATTR, std::string, MarkingName, "markingName", "")     \
    F(CHILD, DecorationElement, Decoration, "Decoration")

class LaneBorderElement : public Element {
    RUVEX_FIELDS(LaneBorderElement, Element, RUVEX_LANE_BORDER_TABLE)
};

// One lane of a profile. The lane type and the circulation way are kept as their texts ("paved", "sidewalk",
// ...; "none", "direct", "inverse", "both"); the speed limit is in m/s, VehicleTypeElement::gNoLimit for
// none; ground and material are named.
#define RUVEX_LANE_TABLE(F)                                                          \
    F(ATTR, std::string, LaneTypeText, "laneType", "paved")                          \
    F(ATTR, std::string, CirculationWayText, "circulationWay", "direct")             \
    F(ATTR, double, SpeedLimit, "speedLimit", ::Ruvex::VehicleTypeElement::gNoLimit) \
    F(ATTR, std::string, GroundName, "groundName", "")                               \
    F(ATTR, std::string, MaterialName, "material", "")                               \
    F(CHILD, UVMappingElement, UVMapping, "UVMapping")                               \
    F(CHILD, VehicleTypeElement, VehicleAuth, "VehicleType")

class LaneElement : public NamedElement {
    RUVEX_FIELDS(LaneElement, NamedElement, RUVEX_LANE_TABLE)
};

// A cross-section: lanes from left to right and the n + 1 borders between and around them. The road type is
// kept as its text ("none", "tunnel", "bridge", "unknown").
#define RUVEX_PROFILE_TABLE(F)                             \
    F(ATTR, std::string, RoadTypeText, "roadType", "none") \
    F(NAMED_LIST, LaneElement, Lanes, "Lane")              \
    F(LIST, LaneBorderElement, LaneBorders, "LaneBorder")

class ProfileElement : public NamedElement {
    RUVEX_FIELDS(ProfileElement, NamedElement, RUVEX_PROFILE_TABLE)
};

// A profile library file: the profile (first of the list) and the markings, grounds and materials its lanes
// and borders name.
#define RUVEX_PROFILE_STANDALONE_TABLE(F)                             \
    F(NAMED_LIST_IN, ProfileElement, Profiles, "Profiles", "Profile") \
    F(NAMED_LIST_IN, MarkingElement, Markings, "Markings", "Marking") \
    F(NAMED_LIST_IN, GroundElement, Grounds, "Grounds", "Ground")     \
    F(NAMED_LIST_IN, MaterialElement, Materials, "Materials", "Material")

class ProfileStandaloneElement : public Element {
    RUVEX_FIELDS(ProfileStandaloneElement, Element, RUVEX_PROFILE_STANDALONE_TABLE)
};

// A marking library file: the marking (first of the list) and the materials it names.
#define RUVEX_MARKING_STANDALONE_TABLE(F)                             \
    F(NAMED_LIST_IN, MarkingElement, Markings, "Markings", "Marking") \
    F(NAMED_LIST_IN, MaterialElement, Materials, "Materials", "Material")

class MarkingStandaloneElement : public Element {
    RUVEX_FIELDS(MarkingStandaloneElement, Element, RUVEX_MARKING_STANDALONE_TABLE)
};

}  // namespace Ruvex

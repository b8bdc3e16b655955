#pragma once

// Data of the traffic layer: lane pairs and links through intersections, traffic lights with their
// programmes, road signs, obstacles and vehicle authorisations. Enumerated values are kept as their texts,
// so a file stays readable and an unknown word survives a round trip.

#include <orvia/ruvex/schema.h>

#include <limits>
#include <string>

namespace Ruvex {

// One connection from a lane end to a lane end, by track name, extremity word ("start" or "end") and lane
// name.
#define RUVEX_LANE_PAIR_TABLE(F)                                            \
    F(ATTR, std::string, FromTrack, "fromTrack", "")                        \
    F(ATTR, std::string, FromTrackBoundInfo, "fromTrackBoundInfo", "start") \
    F(ATTR, std::string, FromLane, "fromLane", "")                          \
    F(ATTR, std::string, ToTrack, "toTrack", "")                            \
    F(ATTR, std::string, ToTrackBoundInfo, "toTrackBoundInfo", "start")     \
    F(ATTR, std::string, ToLane, "toLane", "")

class LanePairElement : public Element {
    RUVEX_FIELDS(LanePairElement, Element, RUVEX_LANE_PAIR_TABLE)
};

// The lane pairs of an intersection that share one drivable way.
#define RUVEX_LINK_TABLE(F) F(LIST, LanePairElement, LanePairs, "LanePair")

class LinkElement : public NamedElement {
    RUVEX_FIELDS(LinkElement, NamedElement, RUVEX_LINK_TABLE)
};

// Countdown shown beside a light: the two characters displayed and the time they stand for.
#define RUVEX_TIMER_TABLE(F)                           \
    F(ATTR, std::string, TextValue, "textValue", "99") \
    F(ATTR, double, TimeValue, "timeValue", 99.0)

class TimerElement : public Element {
    RUVEX_FIELDS(TimerElement, Element, RUVEX_TIMER_TABLE)
};

// One lamp of a sign. "direction" and "vehicle" are comma-separated word sets ("straight,left",
// "car,bus"; "none" for the empty set).
#define RUVEX_LIGHT_TABLE(F)                                  \
    F(ATTR, std::string, Color, "color", "nocolor")           \
    F(ATTR, std::string, Direction, "direction", "none")      \
    F(ATTR, std::string, Illumination, "illumination", "off") \
    F(ATTR, std::string, Vehicle, "vehicle", "none")          \
    F(CHILD, TimerElement, Timer, "Timer")

class LightElement : public NamedElement {
    RUVEX_FIELDS(LightElement, NamedElement, RUVEX_LIGHT_TABLE)
};

// One step of a light programme. "illuminations" holds one word per light of the sign, in light order,
// separated by commas ("off,off,on").
#define RUVEX_TRAFFIC_LIGHT_STATE_TABLE(F)         \
    F(ATTR, double, TimeLength, "timeLength", 0.0) \
    F(ATTR, std::string, Illuminations, "illuminations", "")

class TrafficLightStateElement : public Element {
    RUVEX_FIELDS(TrafficLightStateElement, Element, RUVEX_TRAFFIC_LIGHT_STATE_TABLE)
};

// The programme of one traffic light (a clipped sign, by name) in one cycle.
#define RUVEX_TRAFFIC_LIGHT_ANIMATION_TABLE(F)         \
    F(ATTR, std::string, CycleName, "cycleName", "")   \
    F(ATTR, std::string, RoadSignName, "roadSign", "") \
    F(LIST, TrafficLightStateElement, States, "TrafficLightState")

class TrafficLightAnimationElement : public Element {
    RUVEX_FIELDS(TrafficLightAnimationElement, Element, RUVEX_TRAFFIC_LIGHT_ANIMATION_TABLE)
};

// Lights that change together: one animation per (traffic light, cycle), the running cycle and the phase
// offset of the group within the cycle period (clock units).
#define RUVEX_TRAFFIC_LIGHT_GROUP_TABLE(F)                 \
    F(ATTR, std::string, CurrentCycle, "currentCycle", "") \
    F(ATTR, double, Offset, "offset", 0.0)                 \
    F(LIST, TrafficLightAnimationElement, Animations, "TrafficLightAnimation")

class TrafficLightGroupElement : public NamedElement {
    RUVEX_FIELDS(TrafficLightGroupElement, NamedElement, RUVEX_TRAFFIC_LIGHT_GROUP_TABLE)
};

// Which vehicles something applies to and within which size and weight limits (metres, kilograms).
// "vehicleCategories" is a comma-separated set of category words, "none" when empty.
#define RUVEX_VEHICLE_TYPE_TABLE(F)                                                         \
    F(ATTR, std::string, VehicleCategories, "vehicleCategories", "none")                    \
    F(ATTR, double, WeightLimit, "weightLimit", VehicleTypeElement::gNoLimit)               \
    F(ATTR, double, WeightPerAxleLimit, "weightPerAxleLimit", VehicleTypeElement::gNoLimit) \
    F(ATTR, double, TrailedWeightLimit, "trailedWeightLimit", VehicleTypeElement::gNoLimit) \
    F(ATTR, double, HeightLimit, "heightLimit", VehicleTypeElement::gNoLimit)               \
    F(ATTR, double, WidthLimit, "widthLimit", VehicleTypeElement::gNoLimit)                 \
    F(ATTR, double, LengthLimit, "lengthLimit", VehicleTypeElement::gNoLimit)

class VehicleTypeElement : public Element {
public:
    // A limit (or a speed limit elsewhere) equal to this means "no limit". Finite, so that it can be saved;
    // no real value compares greater.
    static constexpr double gNoLimit = std::numeric_limits<double>::max();
    RUVEX_FIELDS(VehicleTypeElement, Element, RUVEX_VEHICLE_TYPE_TABLE)
};

// A sign placed by clipped data: its type word ("stop", "traffic light", ...), the directions it governs
// (word set as for lights), its lamps and the vehicles it addresses.
#define RUVEX_ROAD_SIGN_TABLE(F)                         \
    F(ATTR, std::string, SignType, "type", "unknown")    \
    F(ATTR, std::string, Direction, "direction", "none") \
    F(LIST, LightElement, Lights, "Light")               \
    F(CHILD, VehicleTypeElement, VehicleType, "VehicleType")

class RoadSignElement : public Element {
    RUVEX_FIELDS(RoadSignElement, Element, RUVEX_ROAD_SIGN_TABLE)
};

// A box (metres, in the frame of the clipped data that carries it) that traffic must avoid, and the side
// on which it may be passed ("left", "right", "both sides", "cannot").
#define RUVEX_OBSTACLE_TABLE(F)                        \
    F(XYZ, Min, "minX", "minY", "minZ", 0.0, 0.0, 0.0) \
    F(XYZ, Max, "maxX", "maxY", "maxZ", 0.0, 0.0, 0.0) \
    F(ATTR, std::string, DodgeWay, "dodgeWay", "left")

class ObstacleElement : public Element {
    RUVEX_FIELDS(ObstacleElement, Element, RUVEX_OBSTACLE_TABLE)
};

}  // namespace Ruvex

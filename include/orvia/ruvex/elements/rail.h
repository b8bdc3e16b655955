#pragma once

// Data of the rail description: railroad tracks with their axes and ends, switches and crossings, mileage
// systems, stations, typed properties along the line, and equipment on the track or in the world. Positions
// along the line are quotes: an abscissa (metres) in a mileage system named by the quote. Enumerated values
// are kept as their texts.

#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/schema.h>

#include <string>

namespace Rail {

// A position along the line: an abscissa in the named mileage system.
#define RAIL_QUOTE_TABLE(F)                                          \
    F(ATTR, std::string, MileageSystemName, "mileageSystemName", "") \
    F(ATTR, double, AbscissaInSystem, "abscissaInSystem", 0.0)

class QuoteElement : public ::Ruvex::Element {
    RUVEX_FIELDS(QuoteElement, ::Ruvex::Element, RAIL_QUOTE_TABLE)
};

// A kilometre-post reference of the line; "usage" is "noInterpolation" or "linearInterpolation".
#define RAIL_MILEAGE_SYSTEM_TABLE(F) F(ATTR, std::string, Usage, "usage", "noInterpolation")

class MileageSystemElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(MileageSystemElement, ::Ruvex::NamedElement, RAIL_MILEAGE_SYSTEM_TABLE)
};

// Ties a mileage system to a track: at the track's curvilinear abscissa c the system reads s (metres).
#define RAIL_MILEAGE_ANCHOR_TABLE(F)                                 \
    F(ATTR, std::string, MileageSystemName, "mileageSystemName", "") \
    F(ATTR, double, CurvilinearAbscissa, "curvilinearAbscissa", 0.0) \
    F(ATTR, double, SystemAbscissa, "systemAbscissa", 0.0)

class MileageAnchorElement : public ::Ruvex::Element {
    RUVEX_FIELDS(MileageAnchorElement, ::Ruvex::Element, RAIL_MILEAGE_ANCHOR_TABLE)
};

// A point where two track ends are joined, named by the "LinkedEnd" of each.
#define RAIL_NO_FIELDS_TABLE(F)

class TrackLinkedEndElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(TrackLinkedEndElement, ::Ruvex::NamedElement, RAIL_NO_FIELDS_TABLE)
};

// A reference to another rail object by its name (empty when the reference names nothing, as an open end or
// a buffer end may). Saved under the tag it was created with: "OpenEnd", "BufferEnd", "LinkedEnd",
// "SwitchEnd", "ConnectionReference". A host's reference class derives from this one, so that the
// rail records accept it.
#define RAIL_REFERENCE_TABLE(F) F(ATTR, std::string, Name, "name", "")

class ReferenceElement : public ::Ruvex::Element {
    RUVEX_FIELDS(ReferenceElement, ::Ruvex::Element, RAIL_REFERENCE_TABLE)
    RUVEX_TAGGED(ReferenceElement)
};

// The reference from a connection point to its switch or crossing.
class ConnectionReferenceElement : public ReferenceElement {
    RUVEX_FIELDS(ConnectionReferenceElement, ReferenceElement, RAIL_NO_FIELDS_TABLE)
};

// What switches and crossings share: a model word and the normal position, both stored as read.
#define RAIL_CONNECTION_TABLE(F)             \
    F(ATTR, std::string, Model, "model", "") \
    F(ATTR, std::string, NormalPosition, "normalPosition", "")

class ConnectionElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(ConnectionElement, ::Ruvex::NamedElement, RAIL_CONNECTION_TABLE)
};

// "type": "ordinary", "curved", "outsideCurved" or "threeWay".
#define RAIL_SWITCH_TABLE(F) F(ATTR, std::string, Type, "type", "ordinary")

class SwitchElement : public ConnectionElement {
    RUVEX_FIELDS(SwitchElement, ConnectionElement, RAIL_SWITCH_TABLE)
};

// "type": "simple", "simpleSwitch" or "doubleSwitch".
#define RAIL_CROSSING_TABLE(F) F(ATTR, std::string, Type, "type", "simple")

class CrossingElement : public ConnectionElement {
    RUVEX_FIELDS(CrossingElement, ConnectionElement, RAIL_CROSSING_TABLE)
};

// Where a track meets a switch or crossing.
#define RAIL_CONNECTION_POINT_TABLE(F)                                     \
    F(CHILD, ReferenceElement, ConnectionReference, "ConnectionReference") \
    F(CHILD, QuoteElement, Quote, "Quote")

class ConnectionPointElement : public ::Ruvex::Element {
    RUVEX_FIELDS(ConnectionPointElement, ::Ruvex::Element, RAIL_CONNECTION_POINT_TABLE)
};

// A property definition ("DoubleProperty", "EnumProperty"), looked up by name by the values that use it.
class PropertyElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(PropertyElement, ::Ruvex::NamedElement, RAIL_NO_FIELDS_TABLE)
};

#define RAIL_DOUBLE_PROPERTY_TABLE(F) F(ATTR, double, DefaultValue, "defaultValue", 0.0)

class DoublePropertyElement : public PropertyElement {
    RUVEX_FIELDS(DoublePropertyElement, PropertyElement, RAIL_DOUBLE_PROPERTY_TABLE)
};

// One entry of an enumerated property.
#define RAIL_ENUM_TABLE(F) F(ATTR, std::string, Value, "value", "")

class EnumElement : public ::Ruvex::Element {
    RUVEX_FIELDS(EnumElement, ::Ruvex::Element, RAIL_ENUM_TABLE)
};

// The default is the text of one of the entries.
#define RAIL_ENUM_PROPERTY_TABLE(F)                        \
    F(ATTR, std::string, DefaultValue, "defaultValue", "") \
    F(LIST, EnumElement, Enums, "Enum")

class EnumPropertyElement : public PropertyElement {
    RUVEX_FIELDS(EnumPropertyElement, PropertyElement, RAIL_ENUM_PROPERTY_TABLE)
};

// The value of a property, as text (a number for "DoublePropertyValue", an entry for "EnumPropertyValue");
// saved under the tag it was created with.
#define RAIL_PROPERTY_VALUE_TABLE(F)                       \
    F(ATTR, std::string, PropertyName, "propertyName", "") \
    F(ATTR, std::string, Value, "value", "")

class PropertyValueElement : public ::Ruvex::Element {
    RUVEX_FIELDS(PropertyValueElement, ::Ruvex::Element, RAIL_PROPERTY_VALUE_TABLE)
    RUVEX_TAGGED(PropertyValueElement)
};

// A property that takes a value at a point, for the circulation way "direction" ("none", "direct",
// "inverse", "both").
#define RAIL_PROPERTY_CHANGE_TABLE(F)                                                      \
    F(ATTR, std::string, Direction, "direction", "none")                                   \
    F(CHILD, PropertyValueElement, PropertyValue, "DoublePropertyValue|EnumPropertyValue") \
    F(CHILD, QuoteElement, Quote, "Quote")

class PropertyChangeElement : public ::Ruvex::Element {
    RUVEX_FIELDS(PropertyChangeElement, ::Ruvex::Element, RAIL_PROPERTY_CHANGE_TABLE)
};

// A property that holds between two quotes. The file holds the two "Quote" children in that order: the
// first read is the start, the second the end, a third is kept as read.
#define RAIL_PROPERTY_SPAN_TABLE(F)                                                        \
    F(CHILD, PropertyValueElement, PropertyValue, "DoublePropertyValue|EnumPropertyValue") \
    F(CHILD, QuoteElement, StartQuote, "Quote")                                            \
    F(CHILD, QuoteElement, EndQuote, "Quote")

class PropertySpanElement : public ::Ruvex::Element {
    RUVEX_FIELDS(PropertySpanElement, ::Ruvex::Element, RAIL_PROPERTY_SPAN_TABLE)
};

// The stretch of one track (by name) between two quotes, read as for property spans.
#define RAIL_TRACK_SPAN_TABLE(F)                     \
    F(ATTR, std::string, TrackName, "trackName", "") \
    F(CHILD, QuoteElement, StartQuote, "Quote")      \
    F(CHILD, QuoteElement, EndQuote, "Quote")

class TrackSpanElement : public ::Ruvex::Element {
    RUVEX_FIELDS(TrackSpanElement, ::Ruvex::Element, RAIL_TRACK_SPAN_TABLE)
};

// A point on one track (by name).
#define RAIL_TRACK_QUOTE_TABLE(F)                    \
    F(ATTR, std::string, TrackName, "trackName", "") \
    F(CHILD, QuoteElement, Quote, "Quote")

class TrackQuoteElement : public ::Ruvex::Element {
    RUVEX_FIELDS(TrackQuoteElement, ::Ruvex::Element, RAIL_TRACK_QUOTE_TABLE)
};

// Something that covers stretches of track: tunnels, bridges, gantries, platforms, level crossings, road
// areas. Saved under the tag it was created with.
#define RAIL_OBJECT_ON_TRACK_SPAN_TABLE(F) F(LIST_IN, TrackSpanElement, TrackSpans, "TrackSpans", "TrackSpan")

class ObjectOnTrackSpanElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(ObjectOnTrackSpanElement, ::Ruvex::NamedElement, RAIL_OBJECT_ON_TRACK_SPAN_TABLE)
    RUVEX_TAGGED(ObjectOnTrackSpanElement)
};

// Equipment at one point of a track.
#define RAIL_TRACK_EQUIPMENT_TABLE(F) F(CHILD, TrackQuoteElement, TrackQuote, "TrackQuote")

class TrackEquipmentElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(TrackEquipmentElement, ::Ruvex::NamedElement, RAIL_TRACK_EQUIPMENT_TABLE)
};

class SignalElement : public TrackEquipmentElement {
    RUVEX_FIELDS(SignalElement, TrackEquipmentElement, RAIL_NO_FIELDS_TABLE)
};

class BaliseElement : public TrackEquipmentElement {
    RUVEX_FIELDS(BaliseElement, TrackEquipmentElement, RAIL_NO_FIELDS_TABLE)
};

class TelegramCalculatorElement : public TrackEquipmentElement {
    RUVEX_FIELDS(TelegramCalculatorElement, TrackEquipmentElement, RAIL_NO_FIELDS_TABLE)
};

class TrainDetectionElement : public TrackEquipmentElement {
    RUVEX_FIELDS(TrainDetectionElement, TrackEquipmentElement, RAIL_NO_FIELDS_TABLE)
};

// A placement in the world: position (metres), then roll, pitch and yaw (radians, the order of vek::Mark).
#define RAIL_FRAME_TABLE(F)                        \
    F(XYZ, Position, "x", "y", "z", 0.0, 0.0, 0.0) \
    F(ATTR, double, Roll, "roll", 0.0)             \
    F(ATTR, double, Pitch, "pitch", 0.0)           \
    F(ATTR, double, Yaw, "yaw", 0.0)

class FrameElement : public ::Ruvex::Element {
    RUVEX_FIELDS(FrameElement, ::Ruvex::Element, RAIL_FRAME_TABLE)
};

// Equipment placed in the world rather than on a track (radio antennas, area telegram calculators); saved
// under the tag it was created with.
#define RAIL_WORLD_EQUIPMENT_TABLE(F) F(CHILD, FrameElement, Frame, "Frame")

class WorldEquipmentElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(WorldEquipmentElement, ::Ruvex::NamedElement, RAIL_WORLD_EQUIPMENT_TABLE)
    RUVEX_TAGGED(WorldEquipmentElement)
};

#define RAIL_STATION_TABLE(F) F(LIST_IN, ObjectOnTrackSpanElement, Platforms, "Platforms", "Platform")

class StationElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(StationElement, ::Ruvex::NamedElement, RAIL_STATION_TABLE)
};

// A rail track: its axis (plan, elevation, banking), how it ends at its start and at its end (the first end
// element read is the start, the second the end), where mileage systems are anchored on it, where it meets
// connections, and the properties along it.
#define RAIL_END_TAGS "BufferEnd|SwitchEnd|OpenEnd|LinkedEnd"
#define RAIL_RAILROAD_TRACK_TABLE(F)                                                            \
    F(CHILD, ::Ruvex::XYCurveElement, XYCurve, "XYCurve")                                       \
    F(CHILD, ::Ruvex::CartesianCurveElement, SZCurve, "SZCurve")                                \
    F(CHILD, ::Ruvex::CartesianCurveElement, BankingCurve, "BankingCurve")                      \
    F(CHILD, ReferenceElement, StartEnd, RAIL_END_TAGS)                                         \
    F(CHILD, ReferenceElement, EndEnd, RAIL_END_TAGS)                                           \
    F(LIST_IN, MileageAnchorElement, MileageAnchors, "MileageAnchors", "MileageAnchor")         \
    F(LIST_IN, ConnectionPointElement, ConnectionPoints, "ConnectionPoints", "ConnectionPoint") \
    F(LIST_IN, PropertySpanElement, PropertySpans, "PropertySpans", "PropertySpan")             \
    F(LIST_IN, PropertyChangeElement, PropertyChanges, "PropertyChanges", "PropertyChange")

class RailroadTrackElement : public ::Ruvex::NamedElement {
    RUVEX_FIELDS(RailroadTrackElement, ::Ruvex::NamedElement, RAIL_RAILROAD_TRACK_TABLE)
};

// The rail description of a sub-network. Property definitions (double or enumerated) sit in two lists: those
// that hold along spans and those that change at points.
#define RAIL_RAIL_NETWORK_TABLE(F)                                                                           \
    F(NAMED_LIST_IN, RailroadTrackElement, RailroadTracks, "RailroadTracks", "RailroadTrack")                \
    F(NAMED_LIST_IN, TrackLinkedEndElement, TrackLinkedEnds, "TrackLinkedEnds", "TrackLinkedEnd")            \
    F(NAMED_LIST_IN, CrossingElement, Crossings, "Crossings", "Crossing")                                    \
    F(NAMED_LIST_IN, SwitchElement, Switches, "Switches", "Switch")                                          \
    F(NAMED_LIST_IN, MileageSystemElement, MileageSystems, "MileageSystems", "MileageSystem")                \
    F(NAMED_LIST_IN, StationElement, Stations, "Stations", "Station")                                        \
    F(NAMED_LIST_IN, PropertyElement, SpannedProperties, "SpannedProperties", "DoubleProperty|EnumProperty") \
    F(NAMED_LIST_IN, PropertyElement, ChangedProperties, "ChangedProperties", "DoubleProperty|EnumProperty") \
    F(LIST_IN, ObjectOnTrackSpanElement, Tunnels, "Tunnels", "Tunnel")                                       \
    F(LIST_IN, ObjectOnTrackSpanElement, Bridges, "Bridges", "Bridge")                                       \
    F(LIST_IN, ObjectOnTrackSpanElement, Gantries, "Gantries", "Gantry")                                     \
    F(LIST_IN, ObjectOnTrackSpanElement, LevelCrossings, "LevelCrossings", "LevelCrossing")                  \
    F(LIST_IN, ObjectOnTrackSpanElement, RoadAreas, "RoadAreas", "RoadArea")                                 \
    F(LIST_IN, SignalElement, Signals, "Signals", "Signal")                                                  \
    F(LIST_IN, BaliseElement, Balises, "Balises", "Balise")                                                  \
    F(LIST_IN, TelegramCalculatorElement, TelegramCalculators, "TelegramCalculators", "TelegramCalculator")  \
    F(LIST_IN, TrainDetectionElement, TrainDetections, "TrainDetections", "TrainDetection")                  \
    F(LIST_IN, WorldEquipmentElement, RadioAntenas, "RadioAntenas", "RadioAntena")                           \
    F(LIST_IN, WorldEquipmentElement, AreaTelegramCalculators, "AreaTelegramCalculators",                    \
      "AreaTelegramCalculator")

class RailNetworkElement : public ::Ruvex::Element {
    RUVEX_FIELDS(RailNetworkElement, ::Ruvex::Element, RAIL_RAIL_NETWORK_TABLE)
};

}  // namespace Rail

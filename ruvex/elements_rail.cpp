#include <orvia/ruvex/elements/rail.h>
#include <orvia/ruvex/factory.h>

#include <string>
#include <string_view>

namespace Rail {

RUVEX_SCHEMA(QuoteElement, ::Ruvex::Element, "Quote", RAIL_QUOTE_TABLE)
RUVEX_SCHEMA(MileageSystemElement, ::Ruvex::NamedElement, "MileageSystem", RAIL_MILEAGE_SYSTEM_TABLE)
RUVEX_SCHEMA(MileageAnchorElement, ::Ruvex::Element, "MileageAnchor", RAIL_MILEAGE_ANCHOR_TABLE)
RUVEX_SCHEMA(TrackLinkedEndElement, ::Ruvex::NamedElement, "TrackLinkedEnd", RAIL_NO_FIELDS_TABLE)
RUVEX_SCHEMA(ReferenceElement, ::Ruvex::Element, "OpenEnd", RAIL_REFERENCE_TABLE)
RUVEX_SCHEMA(ConnectionReferenceElement, ReferenceElement, "ConnectionReference", RAIL_NO_FIELDS_TABLE)
RUVEX_SCHEMA(ConnectionElement, ::Ruvex::NamedElement, "Connection", RAIL_CONNECTION_TABLE)
RUVEX_SCHEMA(SwitchElement, ConnectionElement, "Switch", RAIL_SWITCH_TABLE)
RUVEX_SCHEMA(CrossingElement, ConnectionElement, "Crossing", RAIL_CROSSING_TABLE)
RUVEX_SCHEMA(ConnectionPointElement, ::Ruvex::Element, "ConnectionPoint", RAIL_CONNECTION_POINT_TABLE)
RUVEX_SCHEMA(PropertyElement, ::Ruvex::NamedElement, "Property", RAIL_NO_FIELDS_TABLE)
RUVEX_SCHEMA(DoublePropertyElement, PropertyElement, "DoubleProperty", RAIL_DOUBLE_PROPERTY_TABLE)
RUVEX_SCHEMA(EnumElement, ::Ruvex::Element, "Enum", RAIL_ENUM_TABLE)
RUVEX_SCHEMA(EnumPropertyElement, PropertyElement, "EnumProperty", RAIL_ENUM_PROPERTY_TABLE)
RUVEX_SCHEMA(PropertyValueElement, ::Ruvex::Element, "DoublePropertyValue", RAIL_PROPERTY_VALUE_TABLE)
RUVEX_SCHEMA(PropertyChangeElement, ::Ruvex::Element, "PropertyChange", RAIL_PROPERTY_CHANGE_TABLE)
RUVEX_SCHEMA(PropertySpanElement, ::Ruvex::Element, "PropertySpan", RAIL_PROPERTY_SPAN_TABLE)
RUVEX_SCHEMA(TrackSpanElement, ::Ruvex::Element, "TrackSpan", RAIL_TRACK_SPAN_TABLE)
RUVEX_SCHEMA(TrackQuoteElement, ::Ruvex::Element, "TrackQuote", RAIL_TRACK_QUOTE_TABLE)
RUVEX_SCHEMA(ObjectOnTrackSpanElement, ::Ruvex::NamedElement, "Tunnel", RAIL_OBJECT_ON_TRACK_SPAN_TABLE)
RUVEX_SCHEMA(TrackEquipmentElement, ::Ruvex::NamedElement, "TrackEquipment", RAIL_TRACK_EQUIPMENT_TABLE)
RUVEX_SCHEMA(SignalElement, TrackEquipmentElement, "Signal", RAIL_NO_FIELDS_TABLE)
RUVEX_SCHEMA(BaliseElement, TrackEquipmentElement, "Balise", RAIL_NO_FIELDS_TABLE)
RUVEX_SCHEMA(TelegramCalculatorElement, TrackEquipmentElement, "TelegramCalculator", RAIL_NO_FIELDS_TABLE)
RUVEX_SCHEMA(TrainDetectionElement, TrackEquipmentElement, "TrainDetection", RAIL_NO_FIELDS_TABLE)
RUVEX_SCHEMA(FrameElement, ::Ruvex::Element, "Frame", RAIL_FRAME_TABLE)
RUVEX_SCHEMA(WorldEquipmentElement, ::Ruvex::NamedElement, "RadioAntena", RAIL_WORLD_EQUIPMENT_TABLE)
RUVEX_SCHEMA(StationElement, ::Ruvex::NamedElement, "Station", RAIL_STATION_TABLE)
RUVEX_SCHEMA(RailroadTrackElement, ::Ruvex::NamedElement, "RailroadTrack", RAIL_RAILROAD_TRACK_TABLE)
RUVEX_SCHEMA(RailNetworkElement, ::Ruvex::Element, "RailNetwork", RAIL_RAIL_NETWORK_TABLE)

namespace {

// Two children of one tag that the file tells apart by their order: the child goes to the first empty slot.
// False when both are taken or the child does not load as a T; the caller then keeps it as read.
template <class T>
bool LoadIntoFirstFree(::Ruvex::IDOMElement* child, ::Ruvex::IDOMParser* parser,
                       ::Ruvex::CountedPtr<T>& first, ::Ruvex::CountedPtr<T>& second) {
    ::Ruvex::CountedPtr<T>& slot = first ? second : first;
    if (slot) return false;
    ::Ruvex::CountedPtr<::Ruvex::Element> object(::Ruvex::CreateElement(std::string(child->GetTagName())));
    if (!object || !object->LoadFromXMLElement(child, parser)) return false;
    T* typed = dynamic_cast<T*>(object.Get());
    if (!typed) return false;
    slot = typed;
    return true;
}

bool IsEndTag(std::string_view tag) {
    return tag == "BufferEnd" || tag == "SwitchEnd" || tag == "OpenEnd" || tag == "LinkedEnd";
}

}  // namespace

bool PropertySpanElement::LoadChild(::Ruvex::IDOMElement* child, ::Ruvex::IDOMParser* parser) {
    if (child && parser && child->GetTagName() == "Quote")
        return LoadIntoFirstFree(child, parser, m_StartQuote, m_EndQuote);
    return Element::LoadChild(child, parser);
}

bool TrackSpanElement::LoadChild(::Ruvex::IDOMElement* child, ::Ruvex::IDOMParser* parser) {
    if (child && parser && child->GetTagName() == "Quote")
        return LoadIntoFirstFree(child, parser, m_StartQuote, m_EndQuote);
    return Element::LoadChild(child, parser);
}

bool RailroadTrackElement::LoadChild(::Ruvex::IDOMElement* child, ::Ruvex::IDOMParser* parser) {
    if (child && parser && IsEndTag(child->GetTagName()))
        return LoadIntoFirstFree(child, parser, m_StartEnd, m_EndEnd);
    return NamedElement::LoadChild(child, parser);
}

}  // namespace Rail

#include <orvia/core/legacy_converter.h>

namespace QorOldData {

bool DataConverter::LoadNetwork_v_2_2_2(Ruvex::NetworkElement* record, Ruvex::IDOMElement* element,
                                        Ruvex::IDOMParser* parser) {
    if (!record || !element || !parser) return false;
    // Qualified: the runtime class overrides this slot and sends old documents here.
    return record->Ruvex::NetworkElement::LoadFromXMLElement(element, parser);
}

bool DataConverter::LoadRoad(Ruvex::RoadElement* record, Ruvex::IDOMElement* element,
                             Ruvex::IDOMParser* parser) {
    if (!record || !element || !parser) return false;
    return record->Ruvex::RoadElement::LoadFromXMLElement(element, parser);
}

bool DataConverter::LoadProfile(Ruvex::ProfileElement* record, Ruvex::IDOMElement* element,
                                Ruvex::IDOMParser* parser) {
    if (!record || !element || !parser) return false;
    return record->Ruvex::ProfileElement::LoadFromXMLElement(element, parser);
}

bool DataConverter::LoadTrafficLightState(Ruvex::TrafficLightStateElement* record,
                                          Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!record || !element || !parser) return false;
    return record->Ruvex::TrafficLightStateElement::LoadFromXMLElement(element, parser);
}

bool DataConverter::LoadTrack(Ruvex::TrackElement* record, Ruvex::IDOMElement* element,
                              Ruvex::IDOMParser* parser) {
    if (!record || !element || !parser) return false;
    return record->Ruvex::TrackElement::LoadFromXMLElement(element, parser);
}

bool DataConverter::LoadIntersection(Ruvex::IntersectionElement* record, Ruvex::IDOMElement* element,
                                     Ruvex::IDOMParser* parser) {
    if (!record || !element || !parser) return false;
    return record->Ruvex::IntersectionElement::LoadFromXMLElement(element, parser);
}

bool DataConverter::LoadPortion(Ruvex::PortionElement* record, Ruvex::IDOMElement* element,
                                Ruvex::IDOMParser* parser) {
    if (!record || !element || !parser) return false;
    return record->Ruvex::PortionElement::LoadFromXMLElement(element, parser);
}

}  // namespace QorOldData

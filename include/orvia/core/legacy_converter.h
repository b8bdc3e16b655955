#pragma once

// Reading of elements written by older format versions into the records that the current layout fills.

#include <orvia/ruvex/dom.h>
#include <orvia/ruvex/elements/intersection.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/portion.h>
#include <orvia/ruvex/elements/profile.h>
#include <orvia/ruvex/elements/track.h>
#include <orvia/ruvex/elements/traffic.h>

namespace QorOldData {

class DataConverter {
public:
    // A <Network> of a document of version 2.2.2 or older, read by the record's own reader (never the runtime
    // override). False only for null arguments: a malformed attribute is reported to the parser as a warning
    // and left at its default.
    static bool LoadNetwork_v_2_2_2(Ruvex::NetworkElement* record, Ruvex::IDOMElement* element,
                                    Ruvex::IDOMParser* parser);
    // A <Road> of a document older than 1.4.2; same contract as LoadNetwork_v_2_2_2.
    static bool LoadRoad(Ruvex::RoadElement* record, Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser);
    // A <Profile> of a document of version 2.0.0 or older; same contract as LoadClothoArc.
    static bool LoadProfile(Ruvex::ProfileElement* record, Ruvex::IDOMElement* element,
                            Ruvex::IDOMParser* parser);
    // A <TrafficLightState> of a document of version 1.4.9 or older; same contract as LoadClothoArc.
    static bool LoadTrafficLightState(Ruvex::TrafficLightStateElement* record, Ruvex::IDOMElement* element,
                                      Ruvex::IDOMParser* parser);
    // A <Track> of a document of version 2.1.0 or older; same contract as LoadClothoArc.
    static bool LoadTrack(Ruvex::TrackElement* record, Ruvex::IDOMElement* element,
                          Ruvex::IDOMParser* parser);
    // An <Intersection> of a document of version 2.4.1 or older; same contract as LoadNetwork_v_2_2_2.
    static bool LoadIntersection(Ruvex::IntersectionElement* record, Ruvex::IDOMElement* element,
                                 Ruvex::IDOMParser* parser);
    // A <Portion> of a document older than 1.4.6; same contract as LoadClothoArc.
    static bool LoadPortion(Ruvex::PortionElement* record, Ruvex::IDOMElement* element,
                            Ruvex::IDOMParser* parser);
};

}  // namespace QorOldData

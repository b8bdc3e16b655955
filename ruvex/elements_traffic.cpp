#include <orvia/ruvex/elements/traffic.h>

namespace Ruvex {

RUVEX_SCHEMA(LanePairElement, Element, "LanePair", RUVEX_LANE_PAIR_TABLE)
RUVEX_SCHEMA(LinkElement, NamedElement, "Link", RUVEX_LINK_TABLE)
RUVEX_SCHEMA(TimerElement, Element, "Timer", RUVEX_TIMER_TABLE)
RUVEX_SCHEMA(LightElement, NamedElement, "Light", RUVEX_LIGHT_TABLE)
RUVEX_SCHEMA(TrafficLightStateElement, Element, "TrafficLightState", RUVEX_TRAFFIC_LIGHT_STATE_TABLE)
RUVEX_SCHEMA(TrafficLightAnimationElement, Element, "TrafficLightAnimation",
             RUVEX_TRAFFIC_LIGHT_ANIMATION_TABLE)
RUVEX_SCHEMA(TrafficLightGroupElement, NamedElement, "TrafficLightGroup", RUVEX_TRAFFIC_LIGHT_GROUP_TABLE)
RUVEX_SCHEMA(VehicleTypeElement, Element, "VehicleType", RUVEX_VEHICLE_TYPE_TABLE)
RUVEX_SCHEMA(RoadSignElement, Element, "RoadSign", RUVEX_ROAD_SIGN_TABLE)
RUVEX_SCHEMA(ObstacleElement, Element, "Obstacle", RUVEX_OBSTACLE_TABLE)

}  // namespace Ruvex

#include <orvia/traffic/traffic_light.h>

namespace Orvia {

Light::~Light() = default;
Timer::~Timer() = default;
TrafficLightGroup::~TrafficLightGroup() = default;
TrafficLightAnimation::~TrafficLightAnimation() = default;
TrafficLightState::~TrafficLightState() = default;

}  // namespace Orvia

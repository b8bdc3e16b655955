#pragma once

// Traffic lights: lamps with their countdown timers, and the groups that run their programmes by cycle.

#include <orvia/ruvex/elements/traffic.h>

namespace Orvia {

class Light : public Ruvex::LightElement {
public:
    ~Light() override;
};

class Timer : public Ruvex::TimerElement {
public:
    ~Timer() override;
};

class TrafficLightGroup : public Ruvex::TrafficLightGroupElement {
public:
    ~TrafficLightGroup() override;
};

class TrafficLightAnimation : public Ruvex::TrafficLightAnimationElement {
public:
    ~TrafficLightAnimation() override;
};

class TrafficLightState : public Ruvex::TrafficLightStateElement {
public:
    ~TrafficLightState() override;
};

}  // namespace Orvia

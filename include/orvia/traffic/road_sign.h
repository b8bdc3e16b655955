#pragma once

// Road signs, the obstacles traffic must avoid, and the vehicle authorisations that say whom a rule
// addresses.

#include <orvia/ruvex/elements/traffic.h>
#include <orvia/traffic/vehicle_authorisation.h>

namespace Orvia {

class RoadSign : public Ruvex::RoadSignElement {
public:
    ~RoadSign() override;
};

class Obstacle : public Ruvex::ObstacleElement {
public:
    ~Obstacle() override;
};

}  // namespace Orvia

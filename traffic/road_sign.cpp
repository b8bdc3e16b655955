#include <orvia/traffic/road_sign.h>

namespace Orvia {

RoadSign::~RoadSign() = default;
Obstacle::~Obstacle() = default;

}  // namespace Orvia

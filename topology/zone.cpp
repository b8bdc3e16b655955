#include <orvia/topology/zone.h>

namespace Orvia {

Zone::~Zone() = default;
ConcentricZone::~ConcentricZone() = default;

}  // namespace Orvia

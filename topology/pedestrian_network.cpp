#include <orvia/topology/pedestrian_network.h>

namespace Orvia {

PedestrianNetwork::~PedestrianNetwork() = default;

}  // namespace Orvia

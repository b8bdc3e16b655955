#pragma once

// The pedestrian network of a sub-network; its content is kept as the file has it.

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

class PedestrianNetwork : public Ruvex::PedestrianNetworkElement {
public:
    ~PedestrianNetwork() override;
};

}  // namespace Orvia

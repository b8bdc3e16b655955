#pragma once

// Links: the lane pairs of an intersection that share one drivable way.

#include <orvia/ruvex/elements/traffic.h>

namespace Orvia {

class Link : public Ruvex::LinkElement {
public:
    ~Link() override;
};

}  // namespace Orvia

#pragma once

// Portions: the stretches a track is cut into, each between a start and an end profile.

#include <orvia/ruvex/elements/portion.h>

namespace Orvia {

class Portion : public Ruvex::PortionElement {
public:
    ~Portion() override;
};

}  // namespace Orvia

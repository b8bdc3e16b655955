#pragma once

// Objects laid along a track by an axis of their own (guard rails, walls, fences).

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

// Read from and saved as "Linear".
class LinearObject : public Ruvex::LinearElement {
public:
    ~LinearObject() override;
};

}  // namespace Orvia

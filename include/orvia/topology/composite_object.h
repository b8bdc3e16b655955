#pragma once

// Objects made of several 3D files placed together, with their scale.

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

class CompositeObject : public Ruvex::CompositeObjectElement {
public:
    ~CompositeObject() override;
};

class Scale : public Ruvex::ScaleElement {
public:
    ~Scale() override;
};

}  // namespace Orvia

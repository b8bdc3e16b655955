#pragma once

// Objects laid along a track by an axis of their own (guard rails, walls, fences), and their sub-parts.

#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/schema.h>

namespace Orvia {

// Read from and saved as "Linear".
class LinearObject : public Ruvex::LinearElement {
public:
    ~LinearObject() override;
};

// Read from and saved as "SubParts"; everything a file puts in it is kept as it stands.
class SubPart : public Ruvex::SubPartsElement {
public:
    ~SubPart() override;
};

}  // namespace Orvia

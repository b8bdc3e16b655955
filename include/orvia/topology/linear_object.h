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

// The element records no field of its own: everything a file puts in it is kept as it stands.
#define ORVIA_SUB_PART_TABLE(F)

// Read from and saved as "SubParts".
class SubPart : public Ruvex::Element {
    RUVEX_FIELDS(SubPart, Ruvex::Element, ORVIA_SUB_PART_TABLE)
};

}  // namespace Orvia

#pragma once

// A reference by name to another element (how a rail track ends, which connection a point belongs to).

#include <orvia/ruvex/schema.h>

#include <string>

namespace Orvia {

// The name of the element referred to; empty when none.
#define ORVIA_REFERENCE_TABLE(F) F(ATTR, std::string, ReferencedName, "name", "")

// Saved under the tag it was made for ("OpenEnd", "BufferEnd", "LinkedEnd", "SwitchEnd", ...).
class ReferenceElement : public Ruvex::Element {
    RUVEX_FIELDS(ReferenceElement, Ruvex::Element, ORVIA_REFERENCE_TABLE)
    RUVEX_TAGGED(ReferenceElement)
};

}  // namespace Orvia

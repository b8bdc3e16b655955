#pragma once

// Deep copies of element trees, driven by the tables: what a tag declares is copied field by field, and what
// a file held beyond it is copied as it stands.

#include <orvia/ruvex/element.h>

namespace Orvia {

// Copies every declared attribute of `source` into `target`, appends deep copies of source's declared
// children (made by the installed factory for their tags) to target's lists or puts them in its single slots,
// and copies the preserved content. Meant for a fresh target: a slot the source leaves empty keeps what the
// target holds. The two must share
// a schema (the same data class); false, with nothing changed, when they do not. Runtime state derived from
// the fields is the caller's to refresh.
bool CopyElementContent(const Ruvex::Element& source, Ruvex::Element& target);

// A new element made by the installed factory for source's tag, holding a deep copy (count 0; the caller owns
// it). Null when the factory makes an element of another class for that tag.
Ruvex::Element* CloneElement(const Ruvex::Element& source);

// True when the two hold the same content: the same schema, every declared attribute written alike (so
// numbers compare exactly), the declared children pairwise alike in order, and the same preserved attributes.
bool ElementContentEquals(const Ruvex::Element& a, const Ruvex::Element& b);

}  // namespace Orvia

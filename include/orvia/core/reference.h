#pragma once

// A reference by name to another element: how a rail track ends, which connection a point belongs to.

#include <orvia/ruvex/elements/rail.h>

#include <string>

namespace Orvia {

// The referred element's name is the record's "name"; saved under the tag it was made for ("OpenEnd",
// "BufferEnd", "LinkedEnd", "SwitchEnd", "ConnectionReference").
class ReferenceElement : public Rail::ReferenceElement {
public:
    ReferenceElement() = default;
    explicit ReferenceElement(const std::string& tag) : Rail::ReferenceElement(tag) {}
    ~ReferenceElement() override;
};

}  // namespace Orvia

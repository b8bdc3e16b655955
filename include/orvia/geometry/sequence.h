#pragma once

// Regular sampling of an axis: a number of steps and the length of one step.

#include <orvia/ruvex/elements/clipped.h>

#include <string>

namespace Orvia {

// Saved under the tag it was made for: "Sequence", or "SequenceY" / "SequenceZ" for the other axes of clipped
// data. Step count (at least 1 in practice) and step length in metres come from the record.
class Sequence : public Ruvex::SequenceElement {
public:
    Sequence() = default;
    explicit Sequence(const std::string& tag) : Ruvex::SequenceElement(tag) {}
    ~Sequence() override;
};

}  // namespace Orvia

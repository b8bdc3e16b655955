#pragma once

// Regular sampling of an axis: a number of steps and the length of one step.

#include <orvia/ruvex/schema.h>

#include <cstdint>
#include <string>

namespace Orvia {

// Step count (at least 1 in practice) and step length in metres.
#define ORVIA_SEQUENCE_TABLE(F)                   \
    F(ATTR, uint32_t, StepCount, "stepCount", 1u) \
    F(ATTR, double, StepLength, "stepLength", 1.0)

// Saved under the tag it was made for: "Sequence", or "SequenceY" / "SequenceZ" for the other axes of clipped
// data.
class Sequence : public Ruvex::Element {
    RUVEX_FIELDS(Sequence, Ruvex::Element, ORVIA_SEQUENCE_TABLE)
    RUVEX_TAGGED(Sequence)
};

}  // namespace Orvia

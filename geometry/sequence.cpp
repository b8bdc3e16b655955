#include <orvia/geometry/sequence.h>

namespace Orvia {

RUVEX_SCHEMA(Sequence, Ruvex::Element, "Sequence", ORVIA_SEQUENCE_TABLE)

}  // namespace Orvia

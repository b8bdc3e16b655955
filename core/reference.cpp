#include <orvia/core/reference.h>

namespace Orvia {

RUVEX_SCHEMA(ReferenceElement, Ruvex::Element, "OpenEnd", ORVIA_REFERENCE_TABLE)

}  // namespace Orvia

#include <orvia/topology/linear_object.h>

namespace Orvia {

LinearObject::~LinearObject() = default;

RUVEX_SCHEMA(SubPart, Ruvex::Element, "SubParts", ORVIA_SUB_PART_TABLE)

}  // namespace Orvia

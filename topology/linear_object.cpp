#include <orvia/topology/linear_object.h>

namespace Orvia {

LinearObject::~LinearObject() = default;

SubPart::~SubPart() = default;

}  // namespace Orvia

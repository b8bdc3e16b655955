#include <orvia/topology/composite_object.h>

namespace Orvia {

CompositeObject::~CompositeObject() = default;
Scale::~Scale() = default;

}  // namespace Orvia

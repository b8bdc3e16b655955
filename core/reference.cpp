#include <orvia/core/reference.h>

namespace Orvia {

ReferenceElement::~ReferenceElement() = default;

}  // namespace Orvia

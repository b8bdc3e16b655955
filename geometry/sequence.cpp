#include <orvia/geometry/sequence.h>

namespace Orvia {

Sequence::~Sequence() = default;

}  // namespace Orvia

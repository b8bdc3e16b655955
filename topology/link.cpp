#include <orvia/topology/link.h>

namespace Orvia {

Link::~Link() = default;

}  // namespace Orvia

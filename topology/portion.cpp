#include <orvia/topology/portion.h>

namespace Orvia {

Portion::~Portion() = default;

}  // namespace Orvia

#include <orvia/geometry/profile_modifier.h>

namespace Orvia {

ProfileModifier::~ProfileModifier() = default;
BorderModifier::~BorderModifier() = default;
BorderOffset::~BorderOffset() = default;

}  // namespace Orvia

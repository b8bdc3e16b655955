#include <orvia/geometry/profile.h>

namespace Orvia {

Profile::~Profile() = default;
Lane::~Lane() = default;
LaneBorder::~LaneBorder() = default;
Decoration::~Decoration() = default;
Marking::~Marking() = default;
ProfileStandalone::~ProfileStandalone() = default;
MarkingStandalone::~MarkingStandalone() = default;

}  // namespace Orvia

#include <orvia/core/surface.h>

namespace Orvia {

RollingSurfaceProps::~RollingSurfaceProps() = default;
MaterialChanel::~MaterialChanel() = default;
SurfaceModifier::~SurfaceModifier() = default;

}  // namespace Orvia

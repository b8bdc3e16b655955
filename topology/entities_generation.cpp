#include <orvia/topology/entities_generation.h>

namespace Orvia {

EntitiesGeneration::~EntitiesGeneration() = default;
ExternalEntity::~ExternalEntity() = default;

}  // namespace Orvia

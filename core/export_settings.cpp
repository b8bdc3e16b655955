#include <orvia/core/export_settings.h>

namespace Orvia {

Export3DLayers::~Export3DLayers() = default;
Generate3DRoads::~Generate3DRoads() = default;
SolExportOptions::~SolExportOptions() = default;

}  // namespace Orvia

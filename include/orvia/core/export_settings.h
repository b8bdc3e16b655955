#pragma once

// Settings of the 3D export; their content is kept as the file has it.

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

class Export3DLayers : public Ruvex::Export3DLayersElement {
public:
    ~Export3DLayers() override;
};

class Generate3DRoads : public Ruvex::Generate3DRoadsElement {
public:
    ~Generate3DRoads() override;
};

class SolExportOptions : public Ruvex::SolExportOptionsElement {
public:
    ~SolExportOptions() override;
};

}  // namespace Orvia

#pragma once

// Named areas of a sub-network: polygons and concentric rings.

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

// A polygonal area; read from and saved as "Area".
class Zone : public Ruvex::AreaElement {
public:
    ~Zone() override;
};

class ConcentricZone : public Ruvex::ConcentricZoneElement {
public:
    ~ConcentricZone() override;
};

}  // namespace Orvia

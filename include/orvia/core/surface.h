#pragma once

// Surfaces: the properties of the rolling surface, the channels of a material, and the modifiers that change
// the driven surface inside a box.

#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/elements/network.h>

#include <string>

namespace Orvia {

class RollingSurfaceProps : public Ruvex::RollingSurfacePropsElement {
public:
    ~RollingSurfaceProps() override;
};

// One channel of a material; saved under the tag it was made for ("Diffuse", "Ambient", ...).
class MaterialChanel : public Ruvex::MaterialChanelElement {
public:
    MaterialChanel() = default;
    explicit MaterialChanel(const std::string& tag) : Ruvex::MaterialChanelElement(tag) {}
    ~MaterialChanel() override;
};

class SurfaceModifier : public Ruvex::SurfaceModifierElement {
public:
    ~SurfaceModifier() override;
};

}  // namespace Orvia

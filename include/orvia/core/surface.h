#pragma once

// Surfaces: the properties of the rolling surface, the channels of a material, and the modifiers that change
// the driven surface inside a box.

#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/vek/box.h>

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

    // The part of the track the carrying clipped data allows, in track coordinates (s, t); empty until it
    // validates.
    const vek::Box2& GetClipBox() const { return m_clipBox; }
    void SetClipBox(const vek::Box2& box) { m_clipBox = box; }

private:
    vek::Box2 m_clipBox;
};

}  // namespace Orvia

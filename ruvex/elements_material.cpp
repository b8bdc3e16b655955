#include <orvia/ruvex/elements/network.h>

namespace Ruvex {

RUVEX_SCHEMA(MaterialChanelElement, Element, "Diffuse", RUVEX_MATERIAL_CHANEL_TABLE)

std::array<MaterialChanelElement*, MaterialElement::kChanelCount> MaterialElement::GetChanels() const {
    return {m_Diffuse.Get(), m_Ambient.Get(), m_Specular.Get(),   m_Emissive.Get(),
            m_Bump.Get(),    m_Opacity.Get(), m_Reflection.Get(), m_ShininessChanel.Get()};
}

}  // namespace Ruvex

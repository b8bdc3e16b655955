#include <orvia/ruvex/elements/portion.h>

namespace Ruvex {

RUVEX_SCHEMA(BorderOffsetElement, Element, "BorderOffset", RUVEX_BORDER_OFFSET_TABLE)
RUVEX_SCHEMA(BorderModifierElement, Element, "BorderModifier", RUVEX_BORDER_MODIFIER_TABLE)
RUVEX_SCHEMA(ProfileModifierElement, Element, "ProfileModifier", RUVEX_PROFILE_MODIFIER_TABLE)
RUVEX_SCHEMA(PortionElement, Element, "Portion", RUVEX_PORTION_TABLE)

}  // namespace Ruvex

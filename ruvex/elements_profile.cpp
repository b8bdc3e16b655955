#include <orvia/ruvex/elements/profile.h>

namespace Ruvex {

RUVEX_SCHEMA(UVMappingElement, Element, "UVMapping", RUVEX_UV_MAPPING_TABLE)
RUVEX_SCHEMA(MarkingElement, NamedElement, "Marking", RUVEX_MARKING_TABLE)
RUVEX_SCHEMA(DecorationElement, Element, "Decoration", RUVEX_DECORATION_TABLE)
RUVEX_SCHEMA(LaneBorderElement, Element, "LaneBorder", RUVEX_LANE_BORDER_TABLE)
RUVEX_SCHEMA(LaneElement, NamedElement, "Lane", RUVEX_LANE_TABLE)
RUVEX_SCHEMA(ProfileElement, NamedElement, "Profile", RUVEX_PROFILE_TABLE)
RUVEX_SCHEMA(ProfileStandaloneElement, Element, "ProfileStandalone", RUVEX_PROFILE_STANDALONE_TABLE)
RUVEX_SCHEMA(MarkingStandaloneElement, Element, "MarkingStandalone", RUVEX_MARKING_STANDALONE_TABLE)

}  // namespace Ruvex

#include <orvia/ruvex/elements/track.h>

namespace Ruvex {

RUVEX_SCHEMA(TrackElement, NamedElement, "Track", RUVEX_TRACK_TABLE)

}  // namespace Ruvex

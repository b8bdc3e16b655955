#include <orvia/ruvex/elements/clipped.h>

namespace Ruvex {

RUVEX_SCHEMA(TrackClipElement, Element, "TrackClip", RUVEX_TRACK_CLIP_TABLE)
RUVEX_SCHEMA(TrackScopeElement, Element, "TrackScope", RUVEX_TRACK_SCOPE_TABLE)
RUVEX_SCHEMA(SequenceElement, Element, "Sequence", RUVEX_SEQUENCE_TABLE)
RUVEX_SCHEMA(ClippedDataElement, NamedElement, "ClippedData", RUVEX_CLIPPED_DATA_TABLE)
RUVEX_SCHEMA(TrackClippedDataElement, ClippedDataElement, "TrackClippedData", RUVEX_TRACK_CLIPPED_DATA_TABLE)
RUVEX_SCHEMA(MarkClippedDataElement, ClippedDataElement, "MarkClippedData", RUVEX_MARK_CLIPPED_DATA_TABLE)

}  // namespace Ruvex

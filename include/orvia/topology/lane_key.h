#pragma once

// The text that orders lane ends at an intersection, and the lane-end records of a stored lane pair.

#include <orvia/topology/intersection.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace Orvia {

// "<sub-network index>#<track>#<1 at the track's end, 0 at its start>#<lane>".
std::string GetLaneKey(const LaneOnIntersectionData& lane);
// The same text written into `buffer`; an empty view when it does not fit. No allocation.
std::string_view WriteLaneKey(const LaneOnIntersectionData& lane, char* buffer, size_t size);
// The records of any stored pair (a plain record included): the word "end" is a track end, any other a
// start; both sides take the index of `subNetwork` (kNoSubNetwork for null or an unlisted one).
void ReadLanePairRecords(const Ruvex::LanePairElement& pair, const SubNetwork* subNetwork,
                         LaneOnIntersectionData& from, LaneOnIntersectionData& to);

}  // namespace Orvia

#pragma once

// The candidate lane pairs of an intersection and the two tests the link builder asks of it.

#include <orvia/topology/lane_pair.h>

#include <utility>
#include <vector>

namespace Orvia {

class Intersection;

namespace LaneCandidates {

using Records = std::pair<LaneOnIntersectionData, LaneOnIntersectionData>;

// Every (from, to) pair of lanes of the extremities that meet here, compatible through the intersection and
// not covered by one of its explicit links; extremities in track order, start before end.
void GetNonlinkedLanesPairs(Intersection* intersection, std::vector<Records>& out);
// Both lanes exist and are compatible, the from-lane carries traffic into the intersection and the to-lane
// out of it. Sidewalks never connect here.
bool AreCompatibleLanes(Intersection* intersection, const LaneOnIntersectionData& from,
                        const LaneOnIntersectionData& to);
// A banned pair of the intersection names exactly these two lane ends.
bool IsBannedLink(Intersection* intersection, const LaneOnIntersectionData& from,
                  const LaneOnIntersectionData& to);

}  // namespace LaneCandidates
}  // namespace Orvia

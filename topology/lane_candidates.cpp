#include "lane_candidates.h"

#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/link.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

namespace Orvia::LaneCandidates {

namespace {

bool Carries(const Lane& lane, uint32_t bit) {
    return (static_cast<uint32_t>(lane.GetCirculationWay()) & bit) != 0 &&
           lane.GetCirculationWay() != kUnknownCirculationWay;
}

}  // namespace

bool AreCompatibleLanes(Intersection* intersection, const LaneOnIntersectionData& from,
                        const LaneOnIntersectionData& to) {
    Network* network = intersection ? intersection->GetNetwork() : nullptr;
    Lane* fromLane = from.GetLane(network);
    Lane* toLane = to.GetLane(network);
    if (!fromLane || !toLane || !fromLane->IsCompatibleWith(toLane)) return false;
    if (!Carries(*fromLane, from.atTrackEnd ? eWayDirect : eWayInverse)) return false;
    if (!Carries(*toLane, to.atTrackEnd ? eWayInverse : eWayDirect)) return false;
    return fromLane->GetLaneType() != eLaneSidewalk;
}

bool IsBannedLink(Intersection* intersection, const LaneOnIntersectionData& from,
                  const LaneOnIntersectionData& to) {
    if (!intersection) return false;
    SubNetwork* subNetwork = intersection->GetInSubNetwork();
    for (const auto& pair : intersection->GetBannedLinks()) {
        if (!pair) continue;
        LaneOnIntersectionData bannedFrom, bannedTo;
        LanePair::ReadRecords(*pair, subNetwork, bannedFrom, bannedTo);
        if (bannedFrom == from && bannedTo == to) return true;
    }
    return false;
}

void GetNonlinkedLanesPairs(Intersection* intersection, std::vector<Records>& out) {
    out.clear();
    SubNetwork* subNetwork = intersection ? intersection->GetInSubNetwork() : nullptr;
    if (!subNetwork || intersection->GetName().empty()) return;
    const uint64_t index = subNetwork->GetIndexInNetwork();
    // The lane ends of every extremity that meets here.
    std::vector<LaneOnIntersectionData> ends;
    for (size_t i = 0; i < subNetwork->GetTrackCount(); ++i) {
        Track* track = subNetwork->GetTrack(i);
        if (!track) continue;
        for (const bool atEnd : {false, true}) {
            const std::string& name =
                atEnd ? track->GetEndIntersectionName() : track->GetStartIntersectionName();
            if (name != intersection->GetName()) continue;
            const Profile* profile = TrackExtremity(track, atEnd).GetProfile();
            for (size_t l = 0; profile && l < profile->GetLaneCount(); ++l)
                if (const Lane* lane = profile->GetLane(l))
                    ends.push_back({track->GetName(), atEnd, lane->GetName(), index});
        }
    }
    std::vector<Records> linked;
    for (const auto& link : intersection->GetLinks()) {
        if (!link) continue;
        for (const auto& pair : link->GetLanePairs()) {
            if (!pair) continue;
            Records records;
            LanePair::ReadRecords(*pair, subNetwork, records.first, records.second);
            linked.push_back(std::move(records));
        }
    }
    for (const LaneOnIntersectionData& from : ends)
        for (const LaneOnIntersectionData& to : ends) {
            if (!AreCompatibleLanes(intersection, from, to)) continue;
            bool covered = false;
            for (const Records& records : linked)
                covered |= records.first == from && records.second == to;
            if (!covered) out.emplace_back(from, to);
        }
}

}  // namespace Orvia::LaneCandidates

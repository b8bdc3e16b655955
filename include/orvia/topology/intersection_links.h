#pragma once

// The lane-level graph through one intersection: which lane end may be followed by which, and the drivable
// way of each such connection. Links written in the file (explicit) come first; for every other suitable
// lane pair an implicit link is derived with a way laid between the two lanes. Derived links and their ways
// live in the sub-network's junction space and are never saved.

#include <orvia/topology/intersection.h>
#include <orvia/topology/link.h>

#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

class PolyLineCommonData;

namespace Orvia {

class Intersection;
class Lane;
class Marking;
class Portion;
class Profile;
class SubNetwork;
class Track;

class IntersectionLinksManager {
public:
    // Lanes count as aligned when their directions turn by less than this (degrees) through the meeting
    // point of their lines.
    static constexpr double kAlignedAngleDeg = 15.0;
    // The meeting point must lie farther than this share of the reference length (the chord between the two
    // lane ends) from both lane ends.
    static constexpr double kMinCornerShare = 0.25;
    // Inner points of a corner way, as a share of the way from each lane end to the meeting point.
    static constexpr double kCornerHandleShare = 0.75;
    // The handles of a degenerated way are the chord divided by this (m / m).
    static constexpr double kDegeneratedHandleDivisor = 2.0;
    // A dot product below this (m^2) does not put the meeting point ahead of (behind) a lane end.
    static constexpr double kAheadTolerance = 1e-9;
    // Lane directions whose cross product (the sine of the angle between them) is below this are parallel:
    // their lines do not meet.
    static constexpr double kParallelSine = 1e-12;
    // Lane ends closer than this (m) leave nothing to drive through: no way is laid.
    static constexpr double kMinChord = 1e-6;

    // One lane pair: its link, its trajectory (null when the way could not be laid) and the to-lane end.
    struct Entry {
        Link* link = nullptr;
        LinkTrajectory* trajectory = nullptr;
        LaneOnIntersectionData to;
    };
    // To-lane key -> entry, for one from-lane end; keys ordered byte by byte.
    using ToLaneMap = std::map<std::string, Entry, std::less<>>;

    IntersectionLinksManager() = default;
    // Copies share the links.
    IntersectionLinksManager(const IntersectionLinksManager&) = default;
    IntersectionLinksManager& operator=(const IntersectionLinksManager&) = default;
    ~IntersectionLinksManager();

    // Stores the flag, then the explicit links, then the implicit ones. With the flag every lane pair gets
    // its trajectory (explicit pairs included: their ways are laid as for implicit ones). Call after
    // post-load; a second call without Clear appends a second set.
    void FillFromIntersection(Intersection* intersection, bool trajectoryFlag);
    // The two halves; nothing for null.
    void FillMapWithExplicits(Intersection* intersection);
    void FillMapWithImplicits(Intersection* intersection);
    // Appends the intersection's own links, in order.
    static void GetExplicitLinks(Intersection* intersection, std::vector<Link*>& out);
    // Builds one implicit link per remaining lane pair that is not a U-turn into the same extremity, is
    // compatible through the intersection, is not banned and joins two lanes for vehicles; appends them.
    // New links are named after the count of links held before the call and their lane pair.
    void GetImplicitLinks(Intersection* intersection, std::vector<Ruvex::CountedPtr<Link>>& out);

    size_t GetLinksCount() const { return m_links.size(); }
    // Null out of range.
    Link* GetLink(size_t index) const { return index < m_links.size() ? m_links[index].Get() : nullptr; }
    // Null when either lane end is unknown (or null).
    Link* GetLink(const LaneOnIntersectionData* from, const LaneOnIntersectionData* to) const;
    LinkTrajectory* GetLinkTrajectory(const LaneOnIntersectionData* from,
                                      const LaneOnIntersectionData* to) const;
    // Every connection that leaves `from`, ordered by to-lane key; null when none does. No allocation for
    // keys up to kKeyBuffer characters.
    const ToLaneMap* GetLinksFrom(const LaneOnIntersectionData& from) const;
    // The same connections, for a host that asks often: contiguous, found by a hash of the lane end and
    // checked against it. Empty when none leaves `from`. No allocation.
    std::span<const Entry> GetFollowing(const LaneOnIntersectionData& from) const;
    // All from-lane keys with their connections.
    const std::map<std::string, ToLaneMap, std::less<>>& GetMap() const { return m_map; }

    void Clear();

    static constexpr size_t kKeyBuffer = 256;

private:
    // Lays the way of from -> to on newTrack (geometry, elevation, banking, cross-section); false when the
    // lanes cannot be found or their ends give no finite geometry. Elevation and banking are cubics from the
    // height of each lane centre (as the track's mark gives it) and the banking there, with the slopes of
    // the source tracks taken along the way: negated where the way runs against its source track (a from-lane
    // at a track start, a to-lane at a track end), where the banking value is negated too (left and right
    // swap) while its rate along the way keeps its sign.
    bool BuildTrack(Track* newTrack, Intersection* intersection, Track* fromTrack, Track* toTrack,
                    const LaneOnIntersectionData& from, const LaneOnIntersectionData& to, bool& degenerated);
    // The plan view: a cubic Bezier piece from the from-lane's centre to the to-lane's centre, tangent to
    // both, and the abscissae it leaves and joins them at. Null when no way can be laid.
    PolyLineCommonData* BuildXYTrajectoryBetweenLanes(Intersection* intersection, Track* fromTrack,
                                                      Track* toTrack, const LaneOnIntersectionData& from,
                                                      const LaneOnIntersectionData& to, double& fromAbscissa,
                                                      double& toAbscissa, bool& degenerated);
    void BuildPortionsAndProfilesToTrack(Track* track, const LaneOnIntersectionData& from,
                                         const LaneOnIntersectionData& to, SubNetwork* subNetwork);
    // The profile of one end of a way: a single lane as wide as the source lane, centred on the axis. An end
    // profile's left border takes `leftMarking` (that of the start profile).
    Profile* insertProfile(Portion* portion, const LaneOnIntersectionData& laneData, bool atStart,
                           SubNetwork* subNetwork, Marking* leftMarking);
    void insertLane(Profile* profile, const Lane* source, bool atTrackEnd);
    // A way laid for an explicit pair, as GetImplicitLinks lays it.
    LinkTrajectory* BuildExplicitTrajectory(Intersection* intersection, const LaneOnIntersectionData& from,
                                            const LaneOnIntersectionData& to);
    void Enter(Link* link, LinkTrajectory* trajectory, const LaneOnIntersectionData& from,
               const LaneOnIntersectionData& to);

    // Rebuilds the flat copy of the map that GetFollowing reads.
    void RebuildFollowing();
    static uint64_t HashLaneEnd(const LaneOnIntersectionData& lane);

    struct FromLane {
        uint64_t hash;
        uint32_t record;  // in m_fromRecords
        uint32_t first;   // in m_following
        uint32_t count;
    };

    std::vector<Ruvex::CountedPtr<Link>> m_links;
    std::vector<FromLane> m_fromLanes;  // by hash
    std::vector<LaneOnIntersectionData> m_fromRecords;
    std::vector<Entry> m_following;
    std::map<std::string, ToLaneMap, std::less<>> m_map;
    bool m_trajectoryFlag = false;
    // The lanes of the pair whose way is being laid, found before the new objects are named.
    const Lane* m_fromLane = nullptr;
    const Lane* m_toLane = nullptr;
    // Profiles made for the ways of one fill (owned by the junction space), by lane end: every way from or
    // to one lane end shares them.
    std::map<std::string, Profile*, std::less<>> m_profiles;
};

}  // namespace Orvia

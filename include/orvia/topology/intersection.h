#pragma once

// The node where track extremities of one sub-network meet, and the lane ends and lane pairs that name
// connections through it.

#include <orvia/ruvex/elements/intersection.h>
#include <orvia/topology/connector.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace Orvia {

class Lane;
class Link;
class MarkClippedData;
class Network;
class Profile;
class SubNetwork;

// One end of one lane at a node: the lane `laneName` of the profile at the `atTrackEnd` extremity of track
// `trackName` (the last portion's end profile at the end, the first portion's start profile at the start),
// in the sub-network at position `subNetworkIndex` of the network's list (kNoSubNetwork when it is in none).
struct LaneOnIntersectionData {
    static constexpr uint64_t kNoSubNetwork = std::numeric_limits<uint64_t>::max();

    std::string trackName;
    bool atTrackEnd = false;
    std::string laneName;
    uint64_t subNetworkIndex = kNoSubNetwork;

    LaneOnIntersectionData() = default;
    LaneOnIntersectionData(std::string track, bool atEnd, std::string lane, uint64_t subNetwork)
        : trackName(std::move(track)),
          atTrackEnd(atEnd),
          laneName(std::move(lane)),
          subNetworkIndex(subNetwork) {}
    bool operator==(const LaneOnIntersectionData&) const = default;

    // The lane named, looked up in `network`; null when the sub-network index, the track, its portion, the
    // profile or the lane is missing.
    Lane* GetLane(Network* network) const;
};

// A lane connection from one lane end to another.
using LaneConnection = std::pair<LaneOnIntersectionData, LaneOnIntersectionData>;

// Something an intersection names that does not exist, or an arm that cannot be told apart or has no length,
// with where it stood in its file (line and column 1-based; 0 when built in memory).
struct IntersectionProblem {
    std::string message;
    size_t line = 0;
    size_t column = 0;
};

// A lane connection as the file stores it: track, extremity word ("start" or "end") and lane of each side.
// The sub-network index of its records is that of the sub-network it belongs to.
class LanePair : public Ruvex::LanePairElement {
public:
    LanePair() = default;
    explicit LanePair(SubNetwork* subNetwork) : m_subNetwork(subNetwork) {}
    ~LanePair() override;

    SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    void SetInSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }

    void SetFrom(const LaneOnIntersectionData& from);
    void GetFrom(LaneOnIntersectionData& from) const;
    void SetTo(const LaneOnIntersectionData& to);
    void GetTo(LaneOnIntersectionData& to) const;
    // True exactly when the word is "end"; the setters write "end" or "start".
    bool IsFromTrackEnd() const { return m_FromTrackBoundInfo == "end"; }
    bool IsToTrackEnd() const { return m_ToTrackBoundInfo == "end"; }
    void SetFromTrackEnd(bool atEnd);
    void SetToTrackEnd(bool atEnd);
    // All fields and the sub-network; nothing for null.
    void CopyFrom(const LanePair* other);

    // Reads the record and remembers where it stood in the file.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    size_t GetSourceLine() const { return m_line; }
    size_t GetSourceColumn() const { return m_column; }

private:
    SubNetwork* m_subNetwork = nullptr;
    size_t m_line = 0;
    size_t m_column = 0;
};

// Tracks name the intersection at their ends; the intersection lists no tracks itself, so everything that
// gathers its extremities matches track ends by name. Lane pairs and contour pieces name tracks too.
class Intersection : public Ruvex::IntersectionElement, public TrackConnector {
public:
    // Documents up to this version are read by the legacy converter.
    static constexpr uint32_t kLegacyVersion = Ruvex::MakeVersionID(2, 4, 1);

    Intersection();
    explicit Intersection(SubNetwork* subNetwork);
    ~Intersection() override;

    // --- Connector face ------------------------------------------------------------------------------------
    using TrackConnector::GetPosition;
    using TrackConnector::SetPosition;
    SubNetwork* GetInSubNetwork() const override { return m_subNetwork; }
    // Over the sub-network's tracks (nothing without one); sorted by SortTracks on request.
    void GetTracksArroundConnector(std::vector<TrackExtremity>& out, bool sorted) const override;
    Ruvex::TrackConnectorElement* GetAsConnectionElement() override { return this; }
    const Ruvex::TrackConnectorElement* GetAsConnectionElement() const override { return this; }
    void SetMaterial(const vek::Material& material) override;
    void SetMaterial(Ruvex::MaterialElement* material) override;
    // Nothing when valid; otherwise rebuilds the drawable contour and attaches the clipped data: each gets
    // the sub-network (and so its qualified name), this intersection as parent, and its linear object is
    // linked back to it.
    bool Validate() override;
    // Also makes the banned links the sub-network's.
    void SetInSubNetwork(SubNetwork* subNetwork) override;
    Intersection* GetAsIntersection() override { return this; }

    // --- Extremities ---------------------------------------------------------------------------------------
    // `out` is cleared, then gets, for each track in order, (track, start) when its start-intersection name
    // is this intersection's name, then (track, end) likewise. Nothing for a nameless intersection.
    void BuildTrackArrayAroundIntersection(const std::vector<Track*>& tracks,
                                           std::vector<TrackExtremity>& out) const;
    // The same over the sub-network's tracks.
    void BuildTrackArrayAroundIntersection(std::vector<TrackExtremity>& out) const;
    // The gathered extremities in SortTracks order, with its angles.
    void BuildOrganizedTrackArrayAroundIntersection(const std::vector<Track*>& tracks,
                                                    std::vector<TrackExtremity>& out,
                                                    std::vector<double>& angles) const;
    // Drivable lanes of the extremity's profile (see IsDriveableLane); 0 without a profile.
    size_t GetNumberOfDriveableLanes(const TrackExtremity& extremity) const;

    // --- Candidate connections ----------------------------------------------------------------------------
    // `out` is cleared, then gets every (a, b) that AreCompatibleLanes accepts, a running over the lanes of
    // each gathered extremity in order and b over the lanes of every gathered extremity (a's own included).
    // Banned links are not filtered here.
    void ComputeAllConnections(std::vector<LaneConnection>& out) const;
    // `out` is cleared, then gets the pairs of ComputeAllConnections, in that order, that are not banned
    // (IsBannedLink) and that no lane pair of an explicit link (getLink) covers. These are the connections
    // for which implicit links are built; the lane-links code relies on the order and on banned pairs being
    // left out.
    void GetNonlinkedLanesPairs(std::vector<LaneConnection>& out) const;

    // The candidate connections (ComputeAllConnections, same order) whose two lanes are drivable
    // (IsDriveableLane): the ones a strip of traffic runs through. Banned links are not filtered here.
    void ComputeAllPassagewaysConnections(std::vector<LaneConnection>& out) const;
    // From a pair of drivable lanes, the pairs of their drivable neighbours, side by side: the lanes just
    // right of both (right of their own direction of travel) while those are drivable and compatible
    // (AreCompatibleLanes), nearest first, then likewise on the left. `out` is cleared; it gets nothing when
    // the initial pair itself is not drivable and compatible, and never the initial pair.
    void CreateFollowingLanesPairsFromInitialPair(const LaneConnection& initial,
                                                  std::vector<LaneConnection>& out) const;
    // The lane right beside `lane` in its profile, on the right (or left) of the lane's direction of travel,
    // when it is drivable; false otherwise (a non-drivable neighbour stops the search: traffic does not jump
    // a median).
    bool GetFollowingDriveableLane(const LaneOnIntersectionData& lane, bool toRight,
                                   LaneOnIntersectionData& following) const;
    // The main road first: a stable order by drivable lane count (GetNumberOfDriveableLanes), most first.
    void SortExtremitiesByMainRoad(std::vector<TrackExtremity>& extremities) const;

    // --- Banned links
    // ---------------------------------------------------------------------------------------
    size_t GetBannedLinksCount() const { return m_BannedLinks.size(); }
    // Null out of range (or for a plain record).
    LanePair* GetBannedLink(size_t index) const;
    // Appends an empty pair of this sub-network and returns it.
    LanePair* AddBannedLink();
    // True when a banned pair names exactly (from, to); the word "end" is a track end, any other a start,
    // and the sub-network index is this intersection's sub-network's. No allocation.
    bool IsBannedLink(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to) const;
    // Appends (from, to) unless already banned; true when appended.
    bool BanLink(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to);
    // Removes every banned pair equal to (from, to); true when one was.
    bool AllowLink(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to);
    // Bans every candidate connection (ComputeAllConnections) not yet banned.
    void BanAllLinks();
    void AllowAllLinks() { m_BannedLinks.clear(); }
    // Adding (remove false): bans, within the profile at that extremity of `track`, every ordered pair of
    // distinct lanes (i, j) where i suits vehicles and i is compatible with j: turning back into another
    // lane of the same end is banned by default. Removing: erases every banned pair whose two sides name the
    // track at that extremity. Nothing for null.
    void UpdateBannedTrackSelfLinks(Track* track, bool atEnd, bool remove);

    // The banned pairs that name `track` on either side (what removing the track leaves dangling), in list
    // order; `out` is cleared. RemoveLinks allows each given pair.
    void GetRemovedLinksFromTrackRemoval(const Track* track, std::vector<LaneConnection>& out) const;
    void RemoveLinks(const std::vector<LaneConnection>& pairs);

    // --- Lanes
    // ---------------------------------------------------------------------------------------------- Lane
    // `laneIndex` of the profile at the gathered extremity `trackIndex` (BuildTrackArrayAroundIntersection
    // order); null out of range.
    Lane* FindLane(size_t trackIndex, size_t laneIndex) const;
    // The inverse: false (indices untouched) when `lane` is at no gathered extremity.
    bool FindTrackAndLaneIndex(const Lane* lane, size_t& trackIndex, size_t& laneIndex) const;

    // Whether `lane` names a lane of the profile at a track extremity that meets here (in this intersection's
    // sub-network).
    bool IsLaneExtremity(const LaneOnIntersectionData& lane) const;
    // The left (right, in the track's direction) border of the lane end at the node: the track's point there
    // with its banking applied. False when IsLaneExtremity is.
    bool GetLaneBorder(const LaneOnIntersectionData& lane, bool left, vek::Vector3& point) const;
    // The lane end seen `distance` m into its track from the node (clamped to the track): the point of the
    // lane's centre, the unit tangent pointing towards the node, and the banking about that tangent (the
    // track's, negated at a track start where the tangent runs against the axis). False when IsLaneExtremity
    // is.
    bool ComputePositionBankingDirection(const LaneOnIntersectionData& lane, double distance,
                                         vek::Vector3& position, vek::Vector3& direction,
                                         double& banking) const;

    // --- Links and clipped data ----------------------------------------------------------------------------
    // A new empty explicit link of this intersection, appended.
    Link* createLink();
    size_t getLinkCount() const { return m_Links.size(); }
    // Null out of range (or for a plain record).
    Link* getLink(size_t index) const;
    size_t GetClippedDataCount() const { return m_ClippedData.size(); }
    // Null out of range (or for a plain record).
    MarkClippedData* GetClippedData(size_t index) const;
    // Appends (taking a reference); null is ignored.
    void AddClippedData(MarkClippedData* data);
    // Removes `count` entries from `first` (fewer at the end of the list); false when first is out of range.
    bool RemoveClippedData(size_t first, size_t count);
    // npos when absent.
    size_t GetClippedDataIndex(const MarkClippedData* data) const;

    // A copy of the record (outline, bans, links, clipped data) in no sub-network (count 0; the caller owns
    // it).
    Intersection* Clone() const;
    // Replaces the record's content with a deep copy of other's; nothing for null or itself.
    void CopyFrom(const Intersection* other);

    // --- Names
    // ---------------------------------------------------------------------------------------------- Renames
    // the intersection and every track end of the sub-network that bore the old name.
    void SetName(const std::string& name) override;
    // Banned pairs and contour-piece anchors naming the track `oldName` name `newName` instead.
    void ReplaceTrackName(const std::string& oldName, const std::string& newName);

    // The record is read by the legacy converter for documents up to kLegacyVersion; the place in the file
    // is remembered.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    size_t GetSourceLine() const { return m_line; }
    size_t GetSourceColumn() const { return m_column; }

    // What the banned links, the explicit links' lane pairs and the contour pieces name that the sub-network
    // does not hold (a track, the track's end at this node, a lane of the profile there), tracks meeting here
    // without length (below kZeroLength), and arms that meet at one point (within kSamePoint) with one
    // heading (within kSameHeading). In file order of the pairs, then the pieces, then the arms; a problem
    // without a place of its own takes the intersection's.
    std::vector<IntersectionProblem> CheckReferences() const;
    static constexpr double kZeroLength = 1e-9;   // m
    static constexpr double kSamePoint = 1e-6;    // m
    static constexpr double kSameHeading = 1e-9;  // rad

private:
    // A lane traffic can use through the node: of a drivable type, with a way (neither none nor both), wider
    // than kMinDriveableWidth.
    static bool IsDriveableLane(const Lane* lane);
    // The profile at the extremity a record names and the lane in it; false unless the track meets here.
    bool ResolveLaneEnd(const LaneOnIntersectionData& lane, TrackExtremity& extremity, Profile*& profile,
                        size_t& laneIndex) const;
    // Narrower lanes (m) carry no traffic through a node.
    static constexpr double kMinDriveableWidth = 1.0;

    size_t m_line = 0;
    size_t m_column = 0;
};

}  // namespace Orvia

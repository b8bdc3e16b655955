#pragma once

// What track extremities meet at: intersections inside one sub-network, and junctions joining tracks of
// different sub-networks.

#include <orvia/ruvex/elements/ground.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/vek/box.h>
#include <orvia/vek/vector.h>

#include <orvia/topology/track.h>
#include <orvia/vek/material.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Orvia {

class Ground;
class Intersection;
class Lane;
class Network;
struct LaneOnIntersectionData;
class SubNetwork;
class SubNetworkJunction;
class Track;

// Common face of intersections and sub-network junctions. Position and name live in the connector's own
// element record (GetAsConnectionElement); the owners are plain back-pointers set at post-load.
//
// The outline is the record's contour points, a closed polygon whose stretch i (point i to point i + 1, the
// last one back to point 0) is drawn straight or as a spline through its neighbours. Material and ground are
// named in the record and resolved among the sub-network's lists.
class TrackConnector {
public:
    // Contour stretches drawn as a spline are sampled with this many segments.
    static constexpr size_t kSplineSegments = 8;
    static constexpr size_t npos = static_cast<size_t>(-1);

    // --- Virtual operations (their order is part of the design) -------------------------------------------
    // The sub-network holding the connector; null for a sub-network junction.
    virtual SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    // The network set on the connector, else the one of its sub-network; null when neither is known.
    virtual Network* GetNetwork() const;
    // Position in the frame of its sub-network (the network's frame for a junction), metres.
    virtual const vek::Vector3& GetPosition() const;
    virtual void SetPosition(const vek::Vector3& position);
    // The track extremities that meet here; with `sorted`, in the order of SortTracks. `out` is cleared.
    virtual void GetTracksArroundConnector(std::vector<TrackExtremity>& out, bool sorted) const = 0;
    virtual Ruvex::TrackConnectorElement* GetAsConnectionElement() = 0;
    virtual const Ruvex::TrackConnectorElement* GetAsConnectionElement() const = 0;
    // The material resolved from the record's name (null when unnamed or not found).
    virtual Ruvex::MaterialElement* GetMaterial() const;
    // The sub-network's material of the same appearance, created there when it has none; without a
    // sub-network the connector keeps a material of its own. The record takes its name.
    virtual void SetMaterial(const vek::Material& material);
    // Stores `material` (null clears) and its name.
    virtual void SetMaterial(Ruvex::MaterialElement* material);
    // The ground resolved from the record's name (null when unnamed, not found or a plain record).
    virtual Ground* GetGround() const;
    // Stores `ground` (null clears) and its name.
    virtual void SetGround(Ground* ground);
    // Whether stretch `index` is a spline; false out of range.
    virtual bool IsInterpolationSpline(size_t index) const;
    // False out of range.
    virtual bool SetInterpolation(size_t index, bool spline);
    // The first contour point within `tolerance` (m) of `point`, or npos.
    virtual size_t FindContourPointInd(const vek::Vector2& point, double tolerance) const;
    // Moves point `index` (false out of range), or the point found at `from` (false when none is).
    virtual bool MoveContourPoint(size_t index, const vek::Vector2& to);
    virtual bool MoveContourPoint(const vek::Vector2& from, const vek::Vector2& to, double tolerance);
    // Inserts a point before `index` (npos or beyond appends) with a straight stretch after it; returns its
    // index.
    virtual size_t AddContourPoint(const vek::Vector2& point, size_t index);
    // Removes point `index` and the stretch after it; false out of range.
    virtual bool RemoveContourPoint(size_t index);
    // Replaces the outline; `splines` gives the stretches' interpolation (missing entries are straight).
    virtual void SetContourPoints(const std::vector<vek::Vector2>& points, const std::vector<bool>& splines);
    // Whether traffic may go from the lane end `from` to the lane end `to` through this connector: both lanes
    // exist and are compatible, `from` runs into the connector and `to` out of it, and a sidewalk only leads
    // to the sidewalk on its own side of the neighbouring extremity.
    virtual bool AreCompatibleLanes(const LaneOnIntersectionData& from,
                                    const LaneOnIntersectionData& to) const;
    // Rebuilds the drawable contour when invalid; true.
    virtual bool Validate();
    virtual void SetInSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }
    virtual void SetInNetwork(Network* network) { m_network = network; }
    // This connector as its concrete kind, or null.
    virtual Intersection* GetAsIntersection() { return nullptr; }
    virtual SubNetworkJunction* GetAsSubNetworkJunction() { return nullptr; }

    // --- Shared operations --------------------------------------------------------------------------------
    // AreCompatibleLanes for many pairs at one connector: the lanes already found from the records (null when
    // missing), and the extremities around in SortTracks order, gathered into `sortedArms` by the first
    // sidewalk that needs them and reused by the next ones.
    bool AreCompatibleLanes(const LaneOnIntersectionData& from, Lane* fromLane,
                            const LaneOnIntersectionData& to, Lane* toLane,
                            std::optional<std::vector<TrackExtremity>>& sortedArms) const;
    const std::string& GetConnectorName() const;
    // Whether the connector names a material of its own rather than leaving the surface to its default.
    bool IsConnectorSpecificMaterial() const { return !GetAsConnectionElement()->GetMaterialName().empty(); }
    // Back to the default surface; the sub-network keeps the material in its list.
    void RemoveConnectorMaterial() { SetMaterial(static_cast<Ruvex::MaterialElement*>(nullptr)); }

    // A contour point as an editor shows it: where it is and whether the stretch after it is a spline.
    struct UserPoint {
        vek::Vector2 position;
        bool spline = false;
        bool operator==(const UserPoint&) const = default;
    };
    // The outline as user points, as of the last GetUserPointsFromRuvexData (Validate refreshes them).
    const std::vector<UserPoint>& UserPoints() const { return m_userPoints; }
    void GetUserPointsFromRuvexData();
    bool IsValid() const { return m_valid; }
    // The drawable contour is rebuilt on the next Validate (tracks call this when their geometry changes).
    void Invalidate() { m_valid = false; }

    // Orders `extremities` around the connector: first the one with the smallest angle from its direction
    // (GetDirection) to (1, 0), then repeatedly the remaining one reached by the smallest angle from the last
    // placed one's direction; angles are counter-clockwise, in [0, 2 pi). `angles` gets the size of the list
    // and, from its second position on, the angle from the previous extremity; its first position is left
    // as it was (0 when the list grew). Ties keep the earlier extremity. Validates the tracks' axes.
    void SortTracks(std::vector<TrackExtremity>& extremities, std::vector<double>& angles) const;
    // From the connector's position to the extremity's point of the axis, offset to the middle of a profile:
    // the last portion's end profile for a start extremity, the first portion's start profile for an end
    // extremity (crossed on purpose: stored angles depend on it). A junction compares in the network's frame.
    // False (direction (0, 0)) without a track or a usable axis.
    bool GetDirection(vek::Vector2& direction, const TrackExtremity& extremity) const;
    // The counter-clockwise angle from a's direction to b's, in [0, 2 pi).
    double GetTrackAngle(const TrackExtremity& a, const TrackExtremity& b) const;
    // The lane a record names, found in the connector's network (in its sub-network when it has no network
    // and the record's index is that of no list); null when any step is missing.
    Lane* GetLaneFromLaneData(const LaneOnIntersectionData& data) const;

    // The drawable outline (closed, metres, connector's frame), as of the last Validate. One contour when the
    // outline has at least 3 points, none otherwise.
    size_t GetTrajContourNumber() const { return m_drawable.empty() ? 0 : 1; }
    const std::vector<vek::Vector2>& GetTrajContour(size_t index) const;
    void RefreshDrawableContours();
    // Where the outline meets a track: the outer left (right) border of the profile at the extremity, at the
    // track's altitude there with its banking applied. A junction answers in the network's frame. False
    // without a track, an axis or a profile.
    bool GetAnchorPos(const TrackExtremity& extremity, bool leftSide, vek::Vector3& position) const;
    // The drawable outline (as of the last Validate) and the position, the outline at the position's
    // altitude. Just the position while there is no outline.
    vek::Box3 GetBoundingBox() const;

protected:
    TrackConnector() = default;
    // A copy belongs to nobody until it is placed.
    TrackConnector(const TrackConnector&) {}
    TrackConnector& operator=(const TrackConnector&) { return *this; }
    virtual ~TrackConnector();

    Network* m_network = nullptr;
    SubNetwork* m_subNetwork = nullptr;
    // A material or ground set while the sub-network does not list it (or there is no sub-network).
    Ruvex::CountedPtr<Ruvex::MaterialElement> m_ownMaterial;
    Ruvex::CountedPtr<Ruvex::GroundElement> m_ownGround;
    std::vector<vek::Vector2> m_drawable;
    std::vector<UserPoint> m_userPoints;
    bool m_valid = false;
};

// One track extremity joined by a sub-network junction: the sub-network and track names and the extremity
// word are persisted; post-load resolves them into pointers.
class SubNetworkExit : public Ruvex::SubNetworkExitElement {
public:
    static const std::string kStart;  // "start"
    static const std::string kEnd;    // "end"

    SubNetworkExit();
    // An exit already linked to `track` (which may be null) at its start or end; names follow UpdateNames.
    SubNetworkExit(Track* track, bool atStart);
    ~SubNetworkExit() override;

    Track* GetTrack() const;
    void SetTrack(Track* track);
    SubNetwork* GetSubNetwork() const { return m_subNetwork; }
    void SetSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }
    bool IsAtStart() const { return m_atStart; }
    void SetIsAtStart(bool atStart) { m_atStart = atStart; }

    // Copies the names of the linked sub-network and track (when set) into the record, and writes the
    // extremity word from the flag.
    void UpdateNames();
    // Resolves the names in `network`: false when the sub-network or, in it, the track is missing (what was
    // found is kept). The exit is at the start exactly when the extremity word is "start".
    bool PostLoad(Network* network);

private:
    SubNetwork* m_subNetwork = nullptr;
    Ruvex::CountedPtr<Track> m_track;
    bool m_atStart = true;
};

// Joins track extremities of different sub-networks. Belongs to the network.
class SubNetworkJunction : public Ruvex::SubNetworkJunctionElement, public TrackConnector {
public:
    SubNetworkJunction();
    explicit SubNetworkJunction(Network* network);
    ~SubNetworkJunction() override;

    using TrackConnector::GetPosition;
    using TrackConnector::SetPosition;
    // The resolved exits' extremities, in exit order (sorted on request).
    void GetTracksArroundConnector(std::vector<TrackExtremity>& out, bool sorted) const override;
    Ruvex::TrackConnectorElement* GetAsConnectionElement() override { return this; }
    const Ruvex::TrackConnectorElement* GetAsConnectionElement() const override { return this; }
    SubNetworkJunction* GetAsSubNetworkJunction() override { return this; }

    size_t GetSubNetworkExitCount() const { return m_Exits.size(); }
    // Null when out of range.
    SubNetworkExit* GetSubNetworkExit(size_t index) const;
    // The first exit linked to `track` at the given extremity, or null.
    SubNetworkExit* GetSubNetworkExit(const Track* track, bool atStart) const;
    // Appends `exit` (taking a reference) and moves the junction (UpdatePosition); null is ignored.
    void AddExit(SubNetworkExit* exit);
    // Removes every exit linked to `track`, keeping the order of the others, and moves the junction.
    void RemoveExit(const Track* track);
    // The junction goes to the mean of its resolved exits' extremity points, in the network's frame (each
    // track's point carried by its sub-network's placement); unchanged when no exit is resolved.
    void UpdatePosition();
    // Links to `newTrack` every exit linked to `oldTrack`, and renames it.
    void ReplaceTrack(const Track* oldTrack, Track* newTrack);
    // True when an exit lies on `subNetwork`: linked to it, or naming it while unresolved.
    bool ConnectsSubNetwork(const SubNetwork* subNetwork) const;
    // UpdateNames on every exit.
    void UpdateNames();
    // Attaches the junction to `network` and resolves its exits in order. The first exit that fails ends the
    // resolution (later exits stay unresolved) and makes the result false.
    bool PostLoad(Network* network);

    // A copy of the record and of the exits (linked to the same tracks), in no network (count 0; the caller
    // owns it).
    SubNetworkJunction* Clone() const;
    void CopyFrom(const SubNetworkJunction* other);
};

}  // namespace Orvia

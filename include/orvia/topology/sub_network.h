#pragma once

// One self-contained piece of a network, placed in it by a position and a heading.

#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/vek/box.h>
#include <orvia/vek/transform.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Orvia {

class ClippedData;
class ExternalElement;
class Intersection;
class Network;
class Profile;
class Track;
class TrackExtremity;
class TrafficLightGroup;

// Owns the tracks, intersections, profiles, markings and materials of its piece of network (element record).
// Everything inside refers to its siblings by name; post-load resolves the names. Coordinates inside are in
// the sub-network's frame, which the placement (position in metres, heading in radians counter-clockwise from
// +x) puts into the network's frame.
class SubNetwork : public Ruvex::SubNetworkElement {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    SubNetwork();
    explicit SubNetwork(Network* network);
    ~SubNetwork() override;

    Network* GetNetwork() const { return m_network; }
    void SetNetwork(Network* network) { m_network = network; }
    // Position of this sub-network in its network's list, or npos.
    size_t GetIndexInNetwork() const;

    void SetPositionAndHeading(const vek::Vector3& position, double heading);
    // Sub-network frame -> network frame, and back.
    vek::Transform GetTransform() const;
    vek::Transform GetInverseTransform() const;

    // Tracks. Lookups by index give null out of range; by name the first exact match or null; index queries
    // npos when absent.
    size_t GetTrackCount() const { return m_Tracks.size(); }
    Track* GetTrack(size_t index) const;
    size_t GetTrackIndex(const Track* track) const;
    Track* GetTrackByName(const std::string& name) const;
    std::string GetUniqueTrackName(const std::string& requested) const;
    // Appends a new track of this sub-network named GetUniqueTrackName(requested).
    Track* CreateTrack(const std::string& requested);

    // Intersections, with the same conventions.
    size_t GetIntersectionCount() const { return m_Intersections.size(); }
    Intersection* GetIntersectionByIndex(size_t index) const;
    size_t GetIntersectionIndex(const Intersection* intersection) const;
    Intersection* GetIntersectionByName(const std::string& name) const;
    std::string GetUniqueIntersectionName(const std::string& requested) const;
    // Appends a new intersection at `position` named GetUniqueIntersectionName(requested).
    Intersection* CreateIntersection(const vek::Vector3& position, const std::string& requested);
    // The extremities of this sub-network's tracks that name `intersection` (start before end, in track
    // order), or in angular order (TrackConnector::SortTracks) when `sorted`. `out` is cleared.
    void GetTracksArroundIntersection(const Intersection* intersection, std::vector<TrackExtremity>& out,
                                      bool sorted) const;

    // Traffic-light groups, with the same conventions (the traffic module defines these). Removal by pointer
    // looks the index up first; a removed or cleared group forgets this sub-network.
    size_t GetTrafficLightGroupCount() const { return m_TrafficLightGroups.size(); }
    TrafficLightGroup* GetTrafficLightGroup(size_t index) const;
    TrafficLightGroup* GetTrafficLightGroup(const std::string& name) const;
    size_t GetTrafficLightGroupIndex(const TrafficLightGroup* group) const;
    // Appends a new empty group of this sub-network named `name`.
    TrafficLightGroup* CreateTrafficLightGroup(const std::string& name);
    // Appends `group` (null ignored) and makes it this sub-network's.
    void AddTrafficLightGroup(TrafficLightGroup* group);
    bool RemoveTrafficLightGroup(size_t index);
    bool RemoveTrafficLightGroup(TrafficLightGroup* group);
    void ClearTrafficLightGroup();
    // The first clipped data of that name held by the intersections, in order; null when none.
    ClippedData* GetClippedDataByName(const std::string& name) const;
    // Resolves every traffic-light group (part of PostLoad).
    void PostLoadTrafficLightGroups();

    // Profiles, with the same conventions.
    size_t GetProfileCount() const { return m_Profiles.size(); }
    Profile* GetProfile(size_t index) const;
    Profile* GetProfileByName(const std::string& name) const;
    // Appends the profile (the sub-network takes a reference) and makes it this sub-network's; no renaming.
    void AddProfile(Profile* profile);
    // The profile seen from the other end: an equal profile of this sub-network when there is one (IsEqual),
    // else a new one named by toggling " Invert" (" ch way" when keepWay is false) at the end of the given
    // profile's name: its last occurrence is removed, or the suffix appended. The name is not made unique.
    // Null for null.
    Profile* GetOrCreateInverse(Profile* profile, bool keepWay);

    // Files; null when absent.
    ExternalElement* GetProxyFile() const;
    ExternalElement* GetTerrain() const;
    ExternalElement* GetRollingSurface() const;
    ExternalElement* GetPhysicalSurface() const;

    // Every list gets unique names: a member whose name was already seen earlier in its list is renamed with
    // the unique-name rule. Empty names are left alone.
    void MakeNamesUnique();
    // Moves the members of `other`'s lists to the end of this one's lists. An incoming member whose name is
    // taken here is renamed first with the unique-name rule: tracks and intersections through their own
    // SetName (track ends follow), profiles with the incoming portions that name them; the users of other
    // renamed members are not followed yet. The network's road pieces over incoming tracks are made to name
    // this sub-network and the tracks' new names. `other` is left empty.
    void MergeWith(SubNetwork* other);
    // After loading: attaches the sub-network to `network`, its intersections to itself, and post-loads its
    // tracks. `searchPaths` is where proxy files are looked for.
    void PostLoad(Network* network, const std::vector<std::string>& searchPaths);

    // Box of the tracks' boxes and the intersections' positions, in the sub-network's frame; empty when there
    // is nothing with a position.
    vek::Box3 BuildBoundingBox() const;
    // Mirrors the content across the frame's Y axis: intersection positions have x negated and the flipped
    // flags of the terrain and physical surface are inverted. Track geometry is not mirrored yet.
    void SymmetrizeRespectYAxis();

    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    // Junction space: tracks and profiles derived inside intersections (the ways of lane links). They belong
    // to this sub-network but to none of its lists (the stored junction tracks included), so nothing of them
    // is saved. A derived track is named GetUniqueTrackName(requested).
    Track* CreateTrackInJunction(const std::string& requested);
    size_t GetDerivedJunctionTrackCount() const { return m_junctionTracks.size(); }
    Track* GetDerivedJunctionTrack(size_t index) const;
    void AddJunctionProfile(Profile* profile);
    size_t GetJunctionProfileCount() const { return m_junctionProfiles.size(); }
    // Drops the junction space (links still holding a way keep it alive).
    void ClearJunctionSpace();

private:
    Network* m_network = nullptr;
    std::vector<Ruvex::CountedPtr<Track>> m_junctionTracks;
    std::vector<Ruvex::CountedPtr<Profile>> m_junctionProfiles;
};

}  // namespace Orvia

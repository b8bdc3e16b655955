#pragma once

// One self-contained piece of a network, placed in it by a position and a heading.

#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/vek/box.h>
#include <orvia/vek/transform.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Rail {
class RailNetwork;
}

namespace Orvia {

class ClippedData;
class EntitiesGeneration;
class ExternalElement;
class Ground;
class Intersection;
class Marking;
class MarkClippedData;
class Network;
class ParkingSpot;
class Profile;
class Track;
class TrackExtremity;
class TrafficLightGroup;
class Trajectory;
class TrajectoryPart;
class Zone;

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
    // Junction tracks read from a file (ways laid inside sub-network junctions); CreateTrackInJunction,
    // below, makes derived ones that are not saved.
    size_t GetJunctionTrackCount() const { return m_JunctionTracks.size(); }
    Track* GetJunctionTrack(size_t index) const;
    // Unlinks the track from its intersections (their default bans go), removes its exit from every
    // sub-network junction at its ends (a junction left with fewer than two exits leaves the network), takes
    // it out of every road, releases its clipped data's links, then erases it. False when out of range or
    // the slot is empty; by pointer, when absent.
    bool RemoveTrack(size_t index);
    bool RemoveTrack(Track* track);

    // Intersections, with the same conventions.
    size_t GetIntersectionCount() const { return m_Intersections.size(); }
    Intersection* GetIntersectionByIndex(size_t index) const;
    size_t GetIntersectionIndex(const Intersection* intersection) const;
    Intersection* GetIntersectionByName(const std::string& name) const;
    std::string GetUniqueIntersectionName(const std::string& requested) const;
    // Appends a new intersection at `position` named GetUniqueIntersectionName(requested).
    Intersection* CreateIntersection(const vek::Vector3& position, const std::string& requested);
    // Frees every track end that meets it (by name), then erases it. False when out of range or empty.
    bool RemoveIntersection(size_t index);
    bool RemoveIntersection(Intersection* intersection);
    // The track extremities of this sub-network that meet `intersection` (start before end, track order);
    // with `sorted`, in TrackConnector::SortTracks order. `out` is cleared.
    void GetTracksArroundIntersection(const Intersection* intersection, std::vector<TrackExtremity>& out,
                                      bool sorted) const;
    // The index of the first piece of `pieces` equal to `piece` either way round (start anchor to start and
    // end to end, or crossed), comparing track names and both flags of each anchor; npos when none is.
    static size_t FindIndex(const Ruvex::ContourPieceElement& piece,
                            const std::vector<Ruvex::CountedPtr<Ruvex::ContourPieceElement>>& pieces);

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
    size_t GetProfileIndex(const Profile* profile) const;
    std::string GetUniqueProfileName(const std::string& requested) const;
    // An equal profile of this sub-network (Profile::IsEqual), else `profile` added under a unique name.
    Profile* AddProfileIfDoesntExist(Profile* profile);
    // Portions that show a removed profile are given the first remaining profile, as a load would.
    bool RemoveProfile(size_t index);
    bool RemoveProfile(Profile* profile);
    // True when a portion of a track or junction track names the profile.
    bool IsProfileUsed(const Profile* profile) const;
    void RemoveUseLessProfiles();
    // Renames the profile and the portions that name it; nothing when no profile bears `oldName`.
    void RenameProfile(const std::string& oldName, const std::string& newName);
    // Every portion showing `oldProfile` shows `newProfile`.
    void ReplaceProfile(Profile* oldProfile, Profile* newProfile);

    // Markings, materials and grounds: profiles (and markings, connectors, surface modifiers) name them;
    // removal leaves the names and resolves them again, so the users lose the pointer. Renames and
    // replacements rewrite the names held by the users and resolve again.
    size_t GetMarkingCount() const { return m_Markings.size(); }
    Marking* GetMarking(size_t index) const;
    size_t GetMarkingIndex(const Marking* marking) const;
    Marking* GetMarkingByName(const std::string& name) const;
    std::string GetUniqueMarkingName(const std::string& requested) const;
    void AddMarking(Marking* marking);
    // Adds `marking` under a unique name and points it at this sub-network's material equal to its own
    // (created when there is none); returns the added marking.
    Marking* AddUniqueMarking(Marking* marking);
    bool RemoveMarking(size_t index);
    bool RemoveMarking(Marking* marking);
    bool ChangeMarkingName(const std::string& oldName, const std::string& newName);
    void ReplaceMarking(Marking* oldMarking, Marking* newMarking);

    size_t GetMaterialCount() const { return m_Materials.size(); }
    Ruvex::MaterialElement* GetMaterial(size_t index) const;
    size_t GetMaterialIndex(const Ruvex::MaterialElement* material) const;
    Ruvex::MaterialElement* GetMaterialByName(const std::string& name) const;
    std::string GetUniqueMaterialName(const std::string& requested) const;
    void AddMaterial(Ruvex::MaterialElement* material);
    // The material of this sub-network with the same content as `material` (its name aside), else a copy
    // of it added under a unique name. Null for null.
    Ruvex::MaterialElement* GetOrCreateMaterial(const Ruvex::MaterialElement* material);
    bool RemoveMaterial(size_t index);
    bool RemoveMaterial(Ruvex::MaterialElement* material);
    bool ChangeMaterialName(const std::string& oldName, const std::string& newName);
    void ReplaceMaterial(Ruvex::MaterialElement* oldMaterial, Ruvex::MaterialElement* newMaterial);

    size_t GetGroundCount() const { return m_Grounds.size(); }
    Ground* GetGround(size_t index) const;
    size_t GetGroundIndex(const Ground* ground) const;
    Ground* GetGroundByName(const std::string& name) const;
    std::string GetUniqueGroundName(const std::string& requested) const;
    void AddGround(Ground* ground);
    // The ground named `name`, created (empty) when there is none.
    Ground* GetOrCreateGround(const std::string& name);
    bool RemoveGround(size_t index);
    bool RemoveGround(Ground* ground);
    bool ChangeGroundName(const std::string& oldName, const std::string& newName);
    void ReplaceGround(Ground* oldGround, Ground* newGround);

    // Trajectories list their parts by name; removing a part leaves those pieces without a part.
    size_t GetTrajectoryCount() const { return m_Trajectories.size(); }
    Trajectory* GetTrajectory(size_t index) const;
    size_t GetTrajectoryIndex(const Trajectory* trajectory) const;
    Trajectory* GetTrajectoryByName(const std::string& name) const;
    std::string GetUniqueTrajectoryName(const std::string& requested) const;
    Trajectory* CreateTrajectory(const std::string& requested);
    bool RemoveTrajectory(size_t index);
    bool RemoveTrajectory(Trajectory* trajectory);
    size_t GetTrajectoryPartCount() const { return m_TrajectoryParts.size(); }
    TrajectoryPart* GetTrajectoryPart(size_t index) const;
    size_t GetTrajectoryPartIndex(const TrajectoryPart* part) const;
    TrajectoryPart* GetTrajectoryPartByName(const std::string& name) const;
    std::string GetUniqueTrajectoryPartName(const std::string& requested) const;
    TrajectoryPart* CreateTrajectoryPart(const std::string& requested);
    bool RemoveTrajectoryPart(size_t index);
    bool RemoveTrajectoryPart(TrajectoryPart* part);

    // Zones, parking spots and entity generations (which name their zone).
    size_t GetZoneCount() const { return m_Zones.size(); }
    Zone* GetZoneByIndex(size_t index) const;
    size_t GetZoneIndex(const Zone* zone) const;
    Zone* GetZoneByName(const std::string& name) const;
    std::string GetUniqueZoneName(const std::string& requested) const;
    Zone* CreateZone(const std::string& requested);
    bool RemoveZone(size_t index);
    bool RemoveZone(Zone* zone);
    size_t GetParkingSpotsCount() const { return m_ParkingSpots.size(); }
    ParkingSpot* GetParkingSpotByIndex(size_t index) const;
    size_t GetParkingSpotIndex(const ParkingSpot* spot) const;
    ParkingSpot* GetParkingSpotByName(const std::string& name) const;
    std::string GetUniqueParkingSpotName(const std::string& requested) const;
    ParkingSpot* CreateParkingSpot(const std::string& requested);
    void AddParkingSpot(ParkingSpot* spot);
    bool RemoveParkingSpot(size_t index);
    bool RemoveParkingSpot(ParkingSpot* spot);
    bool ChangeParkingSpotName(const std::string& oldName, const std::string& newName);
    size_t GetEntitiesGenerationCount() const { return m_EntitiesGenerations.size(); }
    EntitiesGeneration* GetEntitiesGenerationByIndex(size_t index) const;
    size_t GetEntitiesGenerationIndex(const EntitiesGeneration* generation) const;
    EntitiesGeneration* GetEntitiesGenerationByName(const std::string& name) const;
    std::string GetUniqueEntitiesGeneration(const std::string& requested) const;
    void AddEntitiesGeneration(EntitiesGeneration* generation);
    bool RemoveEntitiesGeneration(size_t index);
    bool RemoveEntitiesGeneration(EntitiesGeneration* generation);
    bool ChangeEntitiesGenerationName(const std::string& oldName, const std::string& newName);

    // The sub-network's own clipped data (the "ClippedDatas" list; marks placed directly in the sub-network
    // are GetMarkClippedData()). Lookups follow the conventions above.
    size_t GetClippedDataCount() const { return m_ClippedDatas.size(); }
    ClippedData* GetClippedData(size_t index) const;
    size_t GetClippedDataIndex(const ClippedData* data) const;
    // Appends `data` (null ignored) and makes it this sub-network's.
    void AddClippedData(ClippedData* data);
    // Removes `count` entries from `first` (clipped to the list); false when `first` is out of range.
    bool RemoveClippedData(size_t first, size_t count);
    // Removes the sub-network's own marks (both lists) whose position lies inside `zone`'s polygon (even-odd
    // rule, in the sub-network's frame); returns how many went. 0 for null.
    size_t RemoveClippedDataInZone(const Zone* zone);
    // Every clipped data of the sub-network: its own, its marks, its tracks' and its intersections'.
    void GetClippedDataArray(std::vector<ClippedData*>& out) const;
    // Over GetClippedDataArray.
    std::string GetUniqueClippedDataName(const std::string& requested) const;

    // Optional parts; null when absent.
    Rail::RailNetwork* GetRailNetwork() const;
    Ruvex::MaterialElement* GetGeneratedTerrainMaterial() const;
    // Creates the holder when there is none; null clears the material.
    void SetGeneratedTerrainMaterial(Ruvex::MaterialElement* material);
    // The profile seen from the other end: an equal profile of this sub-network when there is one (IsEqual),
    // else a new one named by toggling " Invert" (" ch way" when keepWay is false) at the end of the given
    // profile's name: its last occurrence is removed, or the suffix appended. The name is not made unique.
    // Null for null.
    Profile* GetOrCreateInverse(Profile* profile, bool keepWay);

    // Proxy: a sub-network whose content lives in a file of its own (a document whose root is a sub-network),
    // named by its proxy file element. LoadProxy looks the path up as given, then against each search
    // directory, then beside the network's file; it replaces the content by the file's, which is post-loaded
    // here. While the content is loaded from the file, saving the network writes the reference only, and
    // SaveProxy writes the content back to the file it came from (or to the path as given). UnloadProxy drops
    // the content; junction exits on its tracks are left unresolved.
    bool IsProxy() const;
    bool IsProxyLoaded() const { return m_proxyLoaded; }
    bool LoadProxy(const std::vector<std::string>& searchPaths);
    // LoadProxy, then every file path of the sub-network (its proxy path included) made absolute against the
    // search directories, the proxy file's directory first.
    bool LoadProxyAndMakeAbsolutPaths(const std::vector<std::string>& searchPaths);
    void UnloadProxy();
    bool SaveProxy();
    void SetProxyFile(ExternalElement* file);
    // "" without a proxy file.
    std::string GetProxyFilePath() const;
    // Makes a proxy file element with the path, or removes it for an empty path.
    void SetProxyFilePath(const std::string& path);

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
    // After loading, in this order: markings resolve their materials; intersections are attached; parking
    // spots, profiles (resolving markings, grounds, materials), tracks; trajectory parts are attached and
    // trajectories resolve their parts; traffic-light groups; the sub-network's own clipped data; the
    // intersections validate (their marks are attached); zones; entity generations get the text form of
    // their algorithm. `searchPaths` is where proxy files are looked for.
    void PostLoad(Network* network, const std::vector<std::string>& searchPaths);
    // The qualified names of the clipped data follow.
    void SetName(const std::string& name) override;

    // Box of the tracks' boxes and the intersections' positions, in the sub-network's frame; empty when there
    // is nothing with a position.
    vek::Box3 BuildBoundingBox() const;
    // Mirrors the content across the frame's Y axis: intersection positions have x negated and the flipped
    // flags of the terrain and physical surface are inverted. Track geometry is not mirrored yet.
    void SymmetrizeRespectYAxis();

    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    // A proxy whose content came from its file writes the reference only.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

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

protected:
    // A track clipped data in the sub-network's own list lies on no track: it is kept as written, with a
    // warning at its place.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;

private:
    // Profiles and markings resolve marking, ground and material names again.
    void ResolveProfileReferences();
    // Exchanges everything but the name, the placement and the proxy file with `other`.
    void SwapContent(SubNetwork& other);

    bool m_proxyLoaded = false;
    std::string m_proxyLoadedFrom;

    Network* m_network = nullptr;
    std::vector<Ruvex::CountedPtr<Track>> m_junctionTracks;
    std::vector<Ruvex::CountedPtr<Profile>> m_junctionProfiles;
};

}  // namespace Orvia

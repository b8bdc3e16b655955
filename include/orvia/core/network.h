#pragma once

// The root of a road model and the unit of loading and saving.

#include <orvia/ruvex/elements/network.h>
#include <orvia/vek/box.h>
#include <orvia/vek/vector.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Orvia {

class BackGroundImage;
class ExternalElement;
class Geolocalisation;
class Road;
class SubNetwork;
class SubNetworkJunction;
class Track;

// The element record holds the name, the traffic hand, the sub-networks, the junctions between them, the
// roads, the geolocalisation, three external files (global terrain, rolling surface, physical surface) and
// the generated terrain material. The network adds the background images (one per camera index) and the name
// of the file it was loaded from or last saved to ("buffer" when loaded from memory).
class Network : public Ruvex::NetworkElement {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    // A fixed underlying type, so that any integer is a value (ToText answers for all of them).
    enum ETrafficHandType : int { eNotDefined = 0, eRightHand = 1, eLeftHand = 2 };
    // "not defined", "right-hand", "left-hand"; any other value gives "not defined".
    static const std::string& ToText(const ETrafficHandType& type);
    // The value whose text equals `text` exactly (case included); eNotDefined when none does.
    static ETrafficHandType ToETrafficHandType(const std::string& text);

    // Right-hand traffic, a default geolocalisation, nothing else.
    Network();
    ~Network() override;

    // ---- Loading. Each returns a new network (count 0, the caller owns it) or null when the document cannot
    // be read or its root is not a network (the element layer's GetLastProblems says why). The library is
    // initialised first with the current encoding; the network is post-loaded with `searchPaths`.
    static Network* Load(const char* path, const std::vector<std::string>& searchPaths);
    // From a NUL-terminated text; the length is ignored. The file name becomes "buffer".
    static Network* Load(const char* text, size_t length, const std::vector<std::string>& searchPaths);
    // Load, then Validate, then MakeAbsolutePaths(searchPaths).
    static Network* LoadAndMakeAbsolutePaths(const char* path, const std::vector<std::string>& searchPaths);
    static Network* LoadAndMakeAbsolutePaths(const char* text, size_t length,
                                             const std::vector<std::string>& searchPaths);

    // ---- Saving. The file name is set to `path` first, even when the save fails.
    bool Save(const char* path);
    // Makes every file path relative to `searchPaths` (to the directory of `path` when null), then saves.
    bool MakeRelativePathsAndSave(const char* path, const std::vector<std::string>* searchPaths);
    // Makes every file path absolute against `searchPaths` (the directory of the file name when empty).
    void MakeAbsolutePaths(const std::vector<std::string>& searchPaths);

    // ---- Post-load: unique names, geolocalisation, each sub-network, the junctions (unresolvable ones are
    // dropped), then each road registers itself with its tracks.
    void PostLoad(const std::vector<std::string>& searchPaths);
    // Drops, highest index first, every junction whose exits do not all resolve.
    void PostLoadSubNetworkJunctions();

    // ---- Sub-networks. Lookups by index give null out of range, by name the first exact match or null.
    SubNetwork* AddSubNetwork();
    // Attaches `subNetwork` to this network, post-loads it without search paths and appends it; null ignored.
    void AddSubNetwork(SubNetwork* subNetwork);
    // Removes the sub-network after cutting it out of the roads (pieces naming it are removed, roads left
    // empty are deleted) and removing the junctions that reach it. False when out of range.
    bool RemoveSubNetwork(size_t index);
    // Merges the sub-network of the higher index into the one of the lower index, which keeps its place and
    // name; road pieces follow. Nothing when the indices are equal or out of range.
    void MergeSubNetworks(size_t a, size_t b);
    SubNetwork* GetSubNetwork(size_t index) const;
    SubNetwork* GetSubNetworkByName(const char* name) const;
    size_t GetSubNetworkCount() const { return m_SubNetworks.size(); }
    // npos when absent.
    size_t GetSubNetworkIndex(const SubNetwork* subNetwork) const;
    std::string GetUniqueSubNetworkName(const std::string& requested) const;

    // ---- Junctions between sub-networks.
    // Appends a new, unnamed junction of this network.
    SubNetworkJunction* AddSubNetworkJunction();
    // Appends a new junction named `name` as given (no uniqueness test).
    SubNetworkJunction* CreateSubNetworkJunction(const std::string& name);
    // False when out of range / absent.
    bool RemoveSubNetworkJunction(size_t index);
    bool RemoveSubNetworkJunction(const SubNetworkJunction* junction);
    SubNetworkJunction* GetSubNetworkJunction(size_t index) const;
    SubNetworkJunction* GetSubNetworkJunctionByName(const char* name) const;
    // The first junction with an exit linked to `track` at its start (`atStart`) or end, or null.
    SubNetworkJunction* GetSubNetworkJunction(const Track* track, bool atStart) const;
    size_t GetSubNetworkJunctionCount() const { return m_SubNetworkJunctions.size(); }
    size_t GetSubNetworkJunctionIndex(const SubNetworkJunction* junction) const;
    std::string GetUniqueJunctionName(const std::string& requested) const;

    // ---- Roads.
    // Appends a new road named GetUniqueRoadName("Road").
    Road* AddRoad();
    // Deletes a road: its tracks forget it, and the last road (if another) takes its place, so road order is
    // not kept. False when out of range / unknown.
    bool DeleteRoad(size_t index);
    bool DeleteRoad(const std::string& name);
    Road* GetRoad(size_t index) const;
    size_t GetRoadCount() const { return m_Roads.size(); }
    // First exact match, or npos.
    size_t GetRoadIndexByName(const std::string& name) const;
    std::string GetUniqueRoadName(const std::string& requested) const;
    // Appends a piece naming the track to road `roadIndex` and registers the road with the track. False when
    // the road, the sub-network or the track does not exist.
    bool AddTrackToRoad(const std::string& subNetworkName, const std::string& trackName, size_t roadIndex);
    // Removes from road `roadIndex` every piece naming the track, and the road from the track's list. False
    // when the road does not exist or has no such piece.
    bool RemoveTrackFromRoad(const std::string& subNetworkName, const std::string& trackName,
                             size_t roadIndex);
    // The same for the track at `trackIndex` in `subNetwork`.
    bool RemoveTrackFromRoad(SubNetwork* subNetwork, size_t trackIndex, size_t roadIndex);

    // ---- Whole model.
    // Empties the sub-network, junction and road lists; leaves the rest.
    void Clear();
    // Appends `other`'s sub-networks, junctions and roads (shared with `other`), then makes names unique,
    // refreshes the junctions' names and post-loads. Nothing for null.
    void MergeWith(Network* other);
    // Sub-networks (empty name: "Sub Network" made unique), the content of each sub-network, and the
    // junctions (empty name: "SubNetworkJunction" made unique) get unique names. Roads are left as they are.
    void MakeNamesUnique();
    // Cuts each road after the first pair of consecutive pieces that do not meet at the same node.
    void Validate();
    // Mirrors the model across the network's Y axis.
    void SymmetrizeRespectYAxis();
    // Replaces the geolocalisation by one in `system` (an EPSG code in text when `isEpsgCode`, else WKT or
    // PROJ.4), centred on `latLon` (x latitude, y longitude, degrees) when `center`. False, and no change,
    // when the system cannot be read.
    bool ApplyProjectionSystem(const std::string& system, const vek::Vector2& latLon, bool center,
                               bool isEpsgCode);
    // The box of all sub-networks in the network's frame; false (box empty) when there is nothing.
    bool GetBoundingBox(vek::Box3& box) const;

    ETrafficHandType GetHandType() const { return ToETrafficHandType(m_TrafficHand); }
    void SetHandType(const ETrafficHandType& type) { m_TrafficHand = ToText(type); }

    // ---- Attachments.
    Geolocalisation* GetGeolocalisation();
    const Geolocalisation* GetGeolocalisation() const;
    // Files; the element setters store the pointer as given; the path setters make a new element with the
    // path, or remove the file for an empty path. Path getters give "" when there is no file.
    ExternalElement* GetGlobalTerrain() const;
    void SetGlobalTerrain(ExternalElement* element);
    std::string GetGlobalTerrainFilePath() const;
    void SetGlobalTerrainFilePath(const std::string& path);
    ExternalElement* GetRollingSurface() const;
    void SetRollingSurface(ExternalElement* element);
    std::string GetRollingSurfaceFilePath() const;
    void SetRollingSurfaceFilePath(const std::string& path);
    ExternalElement* GetPhysicalSurface() const;
    void SetPhysicalSurface(ExternalElement* element);
    std::string GetPhysicalSurfaceFilePath() const;
    void SetPhysicalSurfaceFilePath(const std::string& path);

    // Background images by camera index; null when there is none.
    BackGroundImage* GetBackGroundImage(size_t index) const;
    BackGroundImage* GetOrCreateBackGroundImage(size_t index);
    void ClearBackGroundImage(size_t index);
    const std::map<size_t, Ruvex::CountedPtr<BackGroundImage>>& GetBackGroundImages() const {
        return m_backgroundImages;
    }

    // Creates the generated terrain material element when there is none and stores `material` in it.
    void SetGeneratedTerrainMaterial(Ruvex::MaterialElement* material);

    // Format version (Ruvex::MakeVersionID) of the document the network was read from; the version this
    // library writes for a network made in memory.
    uint32_t GetFormatVersion() const { return m_formatVersion; }

    const std::string& getFileName() const { return m_fileName; }
    void setFileName(const std::string& fileName) { m_fileName = fileName; }

    // Files of format 2.2.2 and older are read through the legacy converter, newer ones by the generic load.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    // Makes names unique, then writes the record and the background images in ascending camera index.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // Takes "BackgroundImage" children into the image map (under their camera index, replacing).
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;
    vek::Box3 BuildBoundingBox() const;

private:
    static Network* Finish(Ruvex::Element* root, const char* fileName,
                           const std::vector<std::string>& searchPaths);

    std::map<size_t, Ruvex::CountedPtr<BackGroundImage>> m_backgroundImages;
    std::string m_fileName;
    uint32_t m_formatVersion = Ruvex::kCurrentVersion;
};

}  // namespace Orvia

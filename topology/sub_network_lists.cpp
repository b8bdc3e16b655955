// The collection families of a sub-network: create, look up, remove, rename and replace, keeping the users
// of each member (which refer to it by name) consistent.

#include <orvia/core/element_copy.h>
#include <orvia/core/network.h>
#include <orvia/core/surface.h>
#include <orvia/core/unique_name.h>
#include <orvia/geometry/profile.h>
#include <orvia/ground/ground.h>
#include <orvia/rail/rail_network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/entities_generation.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/parking.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/topology/trajectory.h>
#include <orvia/topology/zone.h>

#include <algorithm>

namespace Orvia {

namespace {

template <class T, class List>
T* At(const List& list, size_t index) {
    return index < list.size() ? dynamic_cast<T*>(list[index].Get()) : nullptr;
}

template <class T, class List>
T* Named(const List& list, const std::string& name) {
    const size_t index = list.find(name);
    return index == List::npos ? nullptr : dynamic_cast<T*>(list[index].Get());
}

template <class List, class T>
size_t IndexIn(const List& list, const T* item) {
    if (!item) return SubNetwork::npos;
    for (size_t i = 0; i < list.size(); ++i)
        if (list[i].Get() == item) return i;
    return SubNetwork::npos;
}

template <class List>
bool EraseAt(List& list, size_t index) {
    if (index >= list.size() || !list[index]) return false;
    list.erase(index);
    return true;
}

template <class T, class List>
T* Create(List& list, const std::string& requested) {
    Ruvex::CountedPtr<T> item(new T);
    item->SetName(GetUniqueName(requested, list));
    list.push_back(item);
    return item.Get();
}

// Renames the member bearing `oldName` to `newName`; false when none does or `newName` is taken by another.
template <class List>
bool RenameMember(List& list, const std::string& oldName, const std::string& newName) {
    const size_t index = list.find(oldName);
    if (index == List::npos || !list[index]) return false;
    if (oldName == newName) return true;
    if (list.find(newName) != List::npos) return false;
    list[index]->SetName(newName);
    return true;
}

template <class F>
void ForEachTrack(const SubNetwork& subNetwork, F f) {
    for (const auto* list : {&subNetwork.GetTracks(), &subNetwork.GetJunctionTracks()})
        for (const auto& item : *list)
            if (auto* track = dynamic_cast<Track*>(item.Get())) f(*track);
}

template <class F>
void ForEachPortion(const SubNetwork& subNetwork, F f) {
    ForEachTrack(subNetwork, [&](Track& track) {
        for (size_t i = 0; i < track.GetPortionCount(); ++i)
            if (Portion* portion = track.GetPortion(i)) f(*portion);
    });
}

template <class F>
void ForEachProfile(const SubNetwork& subNetwork, F f) {
    for (const auto& item : subNetwork.GetProfiles())
        if (auto* profile = dynamic_cast<Profile*>(item.Get())) f(*profile);
}

template <class F>
void ForEachConnectorRecord(const SubNetwork& subNetwork, F f) {
    for (const auto& item : subNetwork.GetIntersections())
        if (item) f(static_cast<Ruvex::TrackConnectorElement&>(*item));
}

// The surface modifiers carried by the sub-network's clipped data name grounds.
template <class F>
void ForEachSurfaceModifier(const SubNetwork& subNetwork, F f) {
    std::vector<ClippedData*> all;
    subNetwork.GetClippedDataArray(all);
    for (ClippedData* data : all)
        if (Ruvex::SurfaceModifierElement* modifier = data->GetClippedDataElement().GetSurfaceModifier())
            f(*modifier);
}

// The same content, the name aside.
bool SameContent(const Ruvex::Element& a, const Ruvex::Element& b) {
    Ruvex::CountedPtr<Ruvex::Element> ca(CloneElement(a));
    Ruvex::CountedPtr<Ruvex::Element> cb(CloneElement(b));
    auto* na = dynamic_cast<Ruvex::NamedElement*>(ca.Get());
    auto* nb = dynamic_cast<Ruvex::NamedElement*>(cb.Get());
    if (!na || !nb) return false;
    na->SetName("");
    nb->SetName("");
    return Ruvex::SaveToString(na) == Ruvex::SaveToString(nb);
}

}  // namespace

// ---- Tracks

Track* SubNetwork::GetJunctionTrack(size_t index) const {
    return At<Track>(m_JunctionTracks, index);
}

bool SubNetwork::RemoveTrack(size_t index) {
    Track* track = GetTrack(index);
    if (!track) return false;
    Ruvex::CountedPtr<Track> keep(track);
    track->SetStartIntersection(nullptr);
    track->SetEndIntersection(nullptr);
    if (m_network) {
        for (const bool atStart : {true, false})
            while (SubNetworkJunction* junction = m_network->GetSubNetworkJunction(track, atStart)) {
                junction->RemoveExit(track);
                if (junction->GetSubNetworkExitCount() < 2) m_network->RemoveSubNetworkJunction(junction);
            }
        // Every road, not only those registered with the track: a road may name it without having been
        // initialised.
        for (size_t r = 0; r < m_network->GetRoadCount(); ++r)
            m_network->RemoveTrackFromRoad(this, index, r);
    }
    track->SetSubNetwork(nullptr);
    for (size_t i = 0; i < track->GetClippedDataCount(); ++i)
        if (TrackClippedData* data = track->GetClippedData(i)) {
            data->ReleaseCarriedLinks();
            data->SetInSubNetwork(nullptr);
        }
    m_Tracks.erase(index);
    return true;
}

bool SubNetwork::RemoveTrack(Track* track) {
    return RemoveTrack(GetTrackIndex(track));
}

// ---- Intersections

bool SubNetwork::RemoveIntersection(size_t index) {
    Intersection* intersection = GetIntersectionByIndex(index);
    if (!intersection) return false;
    Ruvex::CountedPtr<Intersection> keep(intersection);
    std::vector<TrackExtremity> ends;
    intersection->BuildTrackArrayAroundIntersection(ends);
    for (const TrackExtremity& end : ends) {
        Track* track = end.GetTrack();
        if (!track) continue;
        // A track linked by name only still names the intersection: the setters clear the name either way.
        if (end.IsEnd())
            track->SetEndIntersection(nullptr);
        else
            track->SetStartIntersection(nullptr);
    }
    intersection->SetInSubNetwork(nullptr);
    m_Intersections.erase(index);
    return true;
}

bool SubNetwork::RemoveIntersection(Intersection* intersection) {
    return RemoveIntersection(GetIntersectionIndex(intersection));
}

void SubNetwork::GetTracksArroundIntersection(const Intersection* intersection,
                                              std::vector<TrackExtremity>& out, bool sorted) const {
    out.clear();
    if (!intersection) return;
    std::vector<Track*> tracks;
    tracks.reserve(m_Tracks.size());
    for (size_t i = 0; i < m_Tracks.size(); ++i)
        if (Track* track = GetTrack(i)) tracks.push_back(track);
    intersection->BuildTrackArrayAroundIntersection(tracks, out);
    if (!sorted) return;
    std::vector<double> angles;
    intersection->SortTracks(out, angles);
}

size_t SubNetwork::FindIndex(const Ruvex::ContourPieceElement& piece,
                             const std::vector<Ruvex::CountedPtr<Ruvex::ContourPieceElement>>& pieces) {
    struct Anchor {
        const std::string& track;
        bool onEnd;
        bool onLeft;
        bool operator==(const Anchor& o) const {
            return track == o.track && onEnd == o.onEnd && onLeft == o.onLeft;
        }
    };
    auto start = [](const Ruvex::ContourPieceElement& p) {
        return Anchor{p.GetStartAnchorTrack(), p.GetStartAnchorOnTrackEnd(), p.GetStartAnchorOnLeftSide()};
    };
    auto end = [](const Ruvex::ContourPieceElement& p) {
        return Anchor{p.GetEndAnchorTrack(), p.GetEndAnchorOnTrackEnd(), p.GetEndAnchorOnLeftSide()};
    };
    for (size_t i = 0; i < pieces.size(); ++i) {
        if (!pieces[i]) continue;
        const Ruvex::ContourPieceElement& other = *pieces[i];
        if ((start(other) == start(piece) && end(other) == end(piece)) ||
            (start(other) == end(piece) && end(other) == start(piece)))
            return i;
    }
    return npos;
}

// ---- Profiles

size_t SubNetwork::GetProfileIndex(const Profile* profile) const {
    return IndexIn(m_Profiles, static_cast<const Ruvex::ProfileElement*>(profile));
}

std::string SubNetwork::GetUniqueProfileName(const std::string& requested) const {
    return GetUniqueName(requested, m_Profiles);
}

Profile* SubNetwork::AddProfileIfDoesntExist(Profile* profile) {
    if (!profile) return nullptr;
    for (size_t i = 0; i < m_Profiles.size(); ++i)
        if (Profile* existing = GetProfile(i); existing && existing->IsEqual(profile)) return existing;
    profile->SetName(GetUniqueProfileName(profile->GetName()));
    AddProfile(profile);
    return profile;
}

bool SubNetwork::IsProfileUsed(const Profile* profile) const {
    if (!profile) return false;
    bool used = false;
    ForEachPortion(*this, [&](Portion& portion) {
        used = used || portion.GetStartProfile() == profile || portion.GetEndProfile() == profile ||
               portion.GetStartProfileName() == profile->GetName() ||
               portion.GetEndProfileName() == profile->GetName();
    });
    return used;
}

bool SubNetwork::RemoveProfile(size_t index) {
    Profile* profile = GetProfile(index);
    if (!profile) return false;
    Ruvex::CountedPtr<Profile> keep(profile);
    profile->SetParentSubNetwork(nullptr);
    m_Profiles.erase(index);
    // The portions fall back to the first remaining profile (or none), as a load would.
    Profile* fallback = GetProfile(0);
    ForEachPortion(*this, [&](Portion& portion) {
        if (portion.GetStartProfile() == profile) portion.SetStartProfile(fallback);
        if (portion.GetEndProfile() == profile) portion.SetEndProfile(fallback);
    });
    return true;
}

bool SubNetwork::RemoveProfile(Profile* profile) {
    return RemoveProfile(GetProfileIndex(profile));
}

void SubNetwork::RemoveUseLessProfiles() {
    for (size_t i = m_Profiles.size(); i-- > 0;)
        if (Profile* profile = GetProfile(i); profile && !IsProfileUsed(profile)) RemoveProfile(i);
}

void SubNetwork::RenameProfile(const std::string& oldName, const std::string& newName) {
    if (!RenameMember(m_Profiles, oldName, newName)) return;
    ForEachPortion(*this, [&](Portion& portion) {
        if (portion.GetStartProfileName() == oldName) portion.SetStartProfileName(newName);
        if (portion.GetEndProfileName() == oldName) portion.SetEndProfileName(newName);
    });
}

void SubNetwork::ReplaceProfile(Profile* oldProfile, Profile* newProfile) {
    if (!oldProfile || oldProfile == newProfile) return;
    ForEachPortion(*this, [&](Portion& portion) {
        if (portion.GetStartProfile() == oldProfile) portion.SetStartProfile(newProfile);
        if (portion.GetEndProfile() == oldProfile) portion.SetEndProfile(newProfile);
    });
}

// ---- Markings, materials, grounds

void SubNetwork::ResolveProfileReferences() {
    for (const auto& item : m_Markings)
        if (auto* marking = dynamic_cast<Marking*>(item.Get())) marking->PostLoad(m_Materials);
    ForEachProfile(*this, [&](Profile& profile) { profile.PostLoad(m_Markings, m_Grounds, m_Materials); });
}

Marking* SubNetwork::GetMarking(size_t index) const {
    return At<Marking>(m_Markings, index);
}

size_t SubNetwork::GetMarkingIndex(const Marking* marking) const {
    return IndexIn(m_Markings, static_cast<const Ruvex::MarkingElement*>(marking));
}

Marking* SubNetwork::GetMarkingByName(const std::string& name) const {
    return Named<Marking>(m_Markings, name);
}

std::string SubNetwork::GetUniqueMarkingName(const std::string& requested) const {
    return GetUniqueName(requested, m_Markings);
}

void SubNetwork::AddMarking(Marking* marking) {
    if (marking) m_Markings.push_back(marking);
}

Marking* SubNetwork::AddUniqueMarking(Marking* marking) {
    if (!marking) return nullptr;
    marking->SetName(GetUniqueMarkingName(marking->GetName()));
    AddMarking(marking);
    Marking* added = GetMarkingByName(marking->GetName());
    if (!added) return nullptr;
    Ruvex::MaterialElement* material = added->GetMaterial();
    added->SetMaterial(material ? GetOrCreateMaterial(material) : nullptr);
    return added;
}

bool SubNetwork::RemoveMarking(size_t index) {
    if (!EraseAt(m_Markings, index)) return false;
    ResolveProfileReferences();
    return true;
}

bool SubNetwork::RemoveMarking(Marking* marking) {
    return RemoveMarking(GetMarkingIndex(marking));
}

bool SubNetwork::ChangeMarkingName(const std::string& oldName, const std::string& newName) {
    if (!RenameMember(m_Markings, oldName, newName)) return false;
    ForEachProfile(*this, [&](Profile& profile) { profile.ChangeMarkingName(oldName, newName); });
    ResolveProfileReferences();
    return true;
}

void SubNetwork::ReplaceMarking(Marking* oldMarking, Marking* newMarking) {
    if (!oldMarking || oldMarking == newMarking) return;
    const std::string newName = newMarking ? newMarking->GetName() : std::string();
    ForEachProfile(*this,
                   [&](Profile& profile) { profile.ChangeMarkingName(oldMarking->GetName(), newName); });
    ResolveProfileReferences();
}

Ruvex::MaterialElement* SubNetwork::GetMaterial(size_t index) const {
    return At<Ruvex::MaterialElement>(m_Materials, index);
}

size_t SubNetwork::GetMaterialIndex(const Ruvex::MaterialElement* material) const {
    return IndexIn(m_Materials, material);
}

Ruvex::MaterialElement* SubNetwork::GetMaterialByName(const std::string& name) const {
    return Named<Ruvex::MaterialElement>(m_Materials, name);
}

std::string SubNetwork::GetUniqueMaterialName(const std::string& requested) const {
    return GetUniqueName(requested, m_Materials);
}

void SubNetwork::AddMaterial(Ruvex::MaterialElement* material) {
    if (material) m_Materials.push_back(material);
}

Ruvex::MaterialElement* SubNetwork::GetOrCreateMaterial(const Ruvex::MaterialElement* material) {
    if (!material) return nullptr;
    if (const size_t held = GetMaterialIndex(material); held != npos) return GetMaterial(held);
    for (size_t i = 0; i < m_Materials.size(); ++i)
        if (Ruvex::MaterialElement* existing = GetMaterial(i); existing && SameContent(*existing, *material))
            return existing;
    Ruvex::CountedPtr<Ruvex::Element> copy(CloneElement(*material));
    auto* made = dynamic_cast<Ruvex::MaterialElement*>(copy.Get());
    if (!made) return nullptr;
    made->SetName(GetUniqueMaterialName(material->GetName().empty() ? "Material" : material->GetName()));
    AddMaterial(made);
    return made;
}

bool SubNetwork::RemoveMaterial(size_t index) {
    if (!EraseAt(m_Materials, index)) return false;
    ResolveProfileReferences();
    return true;
}

bool SubNetwork::RemoveMaterial(Ruvex::MaterialElement* material) {
    return RemoveMaterial(GetMaterialIndex(material));
}

namespace {

void RenameMaterialUsers(SubNetwork& subNetwork, const std::string& oldName, const std::string& newName) {
    for (size_t i = 0; i < subNetwork.GetMarkingCount(); ++i)
        if (Marking* marking = subNetwork.GetMarking(i); marking && marking->GetMaterialName() == oldName)
            marking->SetMaterialName(newName);
    ForEachProfile(subNetwork, [&](Profile& profile) { profile.ChangeMaterialName(oldName, newName); });
    ForEachConnectorRecord(subNetwork, [&](Ruvex::TrackConnectorElement& connector) {
        if (connector.GetMaterialName() == oldName) connector.SetMaterialName(newName);
    });
}

void RenameGroundUsers(SubNetwork& subNetwork, const std::string& oldName, const std::string& newName) {
    ForEachProfile(subNetwork, [&](Profile& profile) { profile.ChangeGroundName(oldName, newName); });
    ForEachConnectorRecord(subNetwork, [&](Ruvex::TrackConnectorElement& connector) {
        if (connector.GetGroundName() == oldName) connector.SetGroundName(newName);
    });
    ForEachSurfaceModifier(subNetwork, [&](Ruvex::SurfaceModifierElement& modifier) {
        if (modifier.GetGroundName() == oldName) modifier.SetGroundName(newName);
    });
}

}  // namespace

bool SubNetwork::ChangeMaterialName(const std::string& oldName, const std::string& newName) {
    if (!RenameMember(m_Materials, oldName, newName)) return false;
    RenameMaterialUsers(*this, oldName, newName);
    ResolveProfileReferences();
    return true;
}

void SubNetwork::ReplaceMaterial(Ruvex::MaterialElement* oldMaterial, Ruvex::MaterialElement* newMaterial) {
    if (!oldMaterial || oldMaterial == newMaterial) return;
    RenameMaterialUsers(*this, oldMaterial->GetName(), newMaterial ? newMaterial->GetName() : std::string());
    ResolveProfileReferences();
}

Ground* SubNetwork::GetGround(size_t index) const {
    return At<Ground>(m_Grounds, index);
}

size_t SubNetwork::GetGroundIndex(const Ground* ground) const {
    return IndexIn(m_Grounds, static_cast<const Ruvex::GroundElement*>(ground));
}

Ground* SubNetwork::GetGroundByName(const std::string& name) const {
    return Named<Ground>(m_Grounds, name);
}

std::string SubNetwork::GetUniqueGroundName(const std::string& requested) const {
    return GetUniqueName(requested, m_Grounds);
}

void SubNetwork::AddGround(Ground* ground) {
    if (ground) m_Grounds.push_back(ground);
}

Ground* SubNetwork::GetOrCreateGround(const std::string& name) {
    if (Ground* ground = GetGroundByName(name)) return ground;
    Ruvex::CountedPtr<Ground> ground(new Ground);
    ground->SetName(name);
    AddGround(ground.Get());
    return ground.Get();
}

bool SubNetwork::RemoveGround(size_t index) {
    if (!EraseAt(m_Grounds, index)) return false;
    ResolveProfileReferences();
    return true;
}

bool SubNetwork::RemoveGround(Ground* ground) {
    return RemoveGround(GetGroundIndex(ground));
}

bool SubNetwork::ChangeGroundName(const std::string& oldName, const std::string& newName) {
    if (!RenameMember(m_Grounds, oldName, newName)) return false;
    RenameGroundUsers(*this, oldName, newName);
    ResolveProfileReferences();
    return true;
}

void SubNetwork::ReplaceGround(Ground* oldGround, Ground* newGround) {
    if (!oldGround || oldGround == newGround) return;
    RenameGroundUsers(*this, oldGround->GetName(), newGround ? newGround->GetName() : std::string());
    ResolveProfileReferences();
}

// ---- Trajectories

Trajectory* SubNetwork::GetTrajectory(size_t index) const {
    return At<Trajectory>(m_Trajectories, index);
}

size_t SubNetwork::GetTrajectoryIndex(const Trajectory* trajectory) const {
    return IndexIn(m_Trajectories, static_cast<const Ruvex::TrajectoryElement*>(trajectory));
}

Trajectory* SubNetwork::GetTrajectoryByName(const std::string& name) const {
    return Named<Trajectory>(m_Trajectories, name);
}

std::string SubNetwork::GetUniqueTrajectoryName(const std::string& requested) const {
    return GetUniqueName(requested, m_Trajectories);
}

Trajectory* SubNetwork::CreateTrajectory(const std::string& requested) {
    return Create<Trajectory>(m_Trajectories, requested);
}

bool SubNetwork::RemoveTrajectory(size_t index) {
    return EraseAt(m_Trajectories, index);
}

bool SubNetwork::RemoveTrajectory(Trajectory* trajectory) {
    return RemoveTrajectory(GetTrajectoryIndex(trajectory));
}

TrajectoryPart* SubNetwork::GetTrajectoryPart(size_t index) const {
    return At<TrajectoryPart>(m_TrajectoryParts, index);
}

size_t SubNetwork::GetTrajectoryPartIndex(const TrajectoryPart* part) const {
    return IndexIn(m_TrajectoryParts, static_cast<const Ruvex::TrajectoryPartElement*>(part));
}

TrajectoryPart* SubNetwork::GetTrajectoryPartByName(const std::string& name) const {
    return Named<TrajectoryPart>(m_TrajectoryParts, name);
}

std::string SubNetwork::GetUniqueTrajectoryPartName(const std::string& requested) const {
    return GetUniqueName(requested, m_TrajectoryParts);
}

TrajectoryPart* SubNetwork::CreateTrajectoryPart(const std::string& requested) {
    TrajectoryPart* part = Create<TrajectoryPart>(m_TrajectoryParts, requested);
    part->SetInSubNetwork(this);
    return part;
}

bool SubNetwork::RemoveTrajectoryPart(size_t index) {
    TrajectoryPart* part = GetTrajectoryPart(index);
    if (!part) return false;
    Ruvex::CountedPtr<TrajectoryPart> keep(part);
    part->SetInSubNetwork(nullptr);
    m_TrajectoryParts.erase(index);
    for (size_t i = 0; i < m_Trajectories.size(); ++i)
        if (Trajectory* trajectory = GetTrajectory(i)) trajectory->PostLoad(this);
    return true;
}

bool SubNetwork::RemoveTrajectoryPart(TrajectoryPart* part) {
    return RemoveTrajectoryPart(GetTrajectoryPartIndex(part));
}

// ---- Zones, parking spots, entity generations

Zone* SubNetwork::GetZoneByIndex(size_t index) const {
    return At<Zone>(m_Zones, index);
}

size_t SubNetwork::GetZoneIndex(const Zone* zone) const {
    return IndexIn(m_Zones, static_cast<const Ruvex::AreaElement*>(zone));
}

Zone* SubNetwork::GetZoneByName(const std::string& name) const {
    return Named<Zone>(m_Zones, name);
}

std::string SubNetwork::GetUniqueZoneName(const std::string& requested) const {
    return GetUniqueName(requested, m_Zones);
}

Zone* SubNetwork::CreateZone(const std::string& requested) {
    return Create<Zone>(m_Zones, requested);
}

bool SubNetwork::RemoveZone(size_t index) {
    return EraseAt(m_Zones, index);
}

bool SubNetwork::RemoveZone(Zone* zone) {
    return RemoveZone(GetZoneIndex(zone));
}

ParkingSpot* SubNetwork::GetParkingSpotByIndex(size_t index) const {
    return At<ParkingSpot>(m_ParkingSpots, index);
}

size_t SubNetwork::GetParkingSpotIndex(const ParkingSpot* spot) const {
    return IndexIn(m_ParkingSpots, static_cast<const Ruvex::ParkingSpotElement*>(spot));
}

ParkingSpot* SubNetwork::GetParkingSpotByName(const std::string& name) const {
    return Named<ParkingSpot>(m_ParkingSpots, name);
}

std::string SubNetwork::GetUniqueParkingSpotName(const std::string& requested) const {
    return GetUniqueName(requested, m_ParkingSpots);
}

ParkingSpot* SubNetwork::CreateParkingSpot(const std::string& requested) {
    return Create<ParkingSpot>(m_ParkingSpots, requested);
}

void SubNetwork::AddParkingSpot(ParkingSpot* spot) {
    if (spot) m_ParkingSpots.push_back(spot);
}

bool SubNetwork::RemoveParkingSpot(size_t index) {
    return EraseAt(m_ParkingSpots, index);
}

bool SubNetwork::RemoveParkingSpot(ParkingSpot* spot) {
    return RemoveParkingSpot(GetParkingSpotIndex(spot));
}

bool SubNetwork::ChangeParkingSpotName(const std::string& oldName, const std::string& newName) {
    return RenameMember(m_ParkingSpots, oldName, newName);
}

EntitiesGeneration* SubNetwork::GetEntitiesGenerationByIndex(size_t index) const {
    return At<EntitiesGeneration>(m_EntitiesGenerations, index);
}

size_t SubNetwork::GetEntitiesGenerationIndex(const EntitiesGeneration* generation) const {
    return IndexIn(m_EntitiesGenerations, static_cast<const Ruvex::EntitiesGenerationElement*>(generation));
}

EntitiesGeneration* SubNetwork::GetEntitiesGenerationByName(const std::string& name) const {
    return Named<EntitiesGeneration>(m_EntitiesGenerations, name);
}

std::string SubNetwork::GetUniqueEntitiesGeneration(const std::string& requested) const {
    return GetUniqueName(requested, m_EntitiesGenerations);
}

void SubNetwork::AddEntitiesGeneration(EntitiesGeneration* generation) {
    if (generation) m_EntitiesGenerations.push_back(generation);
}

bool SubNetwork::RemoveEntitiesGeneration(size_t index) {
    return EraseAt(m_EntitiesGenerations, index);
}

bool SubNetwork::RemoveEntitiesGeneration(EntitiesGeneration* generation) {
    return RemoveEntitiesGeneration(GetEntitiesGenerationIndex(generation));
}

bool SubNetwork::ChangeEntitiesGenerationName(const std::string& oldName, const std::string& newName) {
    return RenameMember(m_EntitiesGenerations, oldName, newName);
}

// ---- Clipped data

ClippedData* SubNetwork::GetClippedData(size_t index) const {
    return index < m_ClippedDatas.size() ? dynamic_cast<ClippedData*>(m_ClippedDatas[index].Get()) : nullptr;
}

size_t SubNetwork::GetClippedDataIndex(const ClippedData* data) const {
    for (size_t i = 0; data && i < m_ClippedDatas.size(); ++i)
        if (GetClippedData(i) == data) return i;
    return npos;
}

void SubNetwork::AddClippedData(ClippedData* data) {
    if (!data) return;
    data->SetInSubNetwork(this);
    if (auto* mark = dynamic_cast<MarkClippedData*>(data)) mark->SetParent(this);
    m_ClippedDatas.push_back(Ruvex::CountedPtr<Ruvex::ClippedDataElement>(&data->GetClippedDataElement()));
}

bool SubNetwork::RemoveClippedData(size_t first, size_t count) {
    if (first >= m_ClippedDatas.size()) return false;
    const size_t last = first + std::min(count, m_ClippedDatas.size() - first);
    for (size_t i = first; i < last; ++i)
        if (ClippedData* data = GetClippedData(i)) {
            data->ReleaseCarriedLinks();
            data->SetInSubNetwork(nullptr);
            if (auto* mark = dynamic_cast<MarkClippedData*>(data)) mark->SetParent(nullptr);
        }
    m_ClippedDatas.erase(m_ClippedDatas.begin() + static_cast<std::ptrdiff_t>(first),
                         m_ClippedDatas.begin() + static_cast<std::ptrdiff_t>(last));
    return true;
}

namespace {

// Even-odd rule; a point on an edge may fall either way.
bool Inside(const std::vector<vek::Vector2>& polygon, const vek::Vector3& p) {
    bool inside = false;
    for (size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const vek::Vector2& a = polygon[i];
        const vek::Vector2& b = polygon[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
            inside = !inside;
    }
    return inside;
}

}  // namespace

size_t SubNetwork::RemoveClippedDataInZone(const Zone* zone) {
    if (!zone || zone->GetPoints().size() < 3) return 0;
    size_t removed = 0;
    auto sweep = [&](auto& list) {
        for (size_t i = list.size(); i-- > 0;) {
            auto* mark = dynamic_cast<MarkClippedData*>(list[i].Get());
            if (!mark || !Inside(zone->GetPoints(), mark->GetPosition())) continue;
            mark->ReleaseCarriedLinks();
            mark->SetInSubNetwork(nullptr);
            mark->SetParent(nullptr);
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
            ++removed;
        }
    };
    sweep(m_ClippedDatas);
    sweep(m_MarkClippedData);
    return removed;
}

void SubNetwork::GetClippedDataArray(std::vector<ClippedData*>& out) const {
    out.clear();
    auto add = [&out](Ruvex::Element* item) {
        if (auto* data = dynamic_cast<ClippedData*>(item)) out.push_back(data);
    };
    for (const auto& item : m_ClippedDatas)
        add(item.Get());
    for (const auto& item : m_MarkClippedData)
        add(item.Get());
    ForEachTrack(*this, [&](Track& track) {
        for (const auto& item : track.GetClippedData())
            add(item.Get());
    });
    for (const auto& intersection : m_Intersections)
        if (intersection)
            for (const auto& item : intersection->GetClippedData())
                add(item.Get());
}

std::string SubNetwork::GetUniqueClippedDataName(const std::string& requested) const {
    std::vector<ClippedData*> all;
    GetClippedDataArray(all);
    std::vector<const std::string*> names;
    names.reserve(all.size());
    for (const ClippedData* data : all)
        names.push_back(&data->GetName());
    return GetUniqueName(requested, names);
}

// ---- Optional parts

Rail::RailNetwork* SubNetwork::GetRailNetwork() const {
    return dynamic_cast<Rail::RailNetwork*>(m_RailNetwork.Get());
}

Ruvex::MaterialElement* SubNetwork::GetGeneratedTerrainMaterial() const {
    return m_GeneratedTerrainMaterialElement ? m_GeneratedTerrainMaterialElement->GetMaterial() : nullptr;
}

void SubNetwork::SetGeneratedTerrainMaterial(Ruvex::MaterialElement* material) {
    if (!m_GeneratedTerrainMaterialElement) {
        Ruvex::CountedPtr<Ruvex::Element> created(Ruvex::CreateElement("GeneratedTerrainMaterial"));
        auto* holder = dynamic_cast<Ruvex::GeneratedTerrainMaterialElement*>(created.Get());
        m_GeneratedTerrainMaterialElement = holder ? holder : new Ruvex::GeneratedTerrainMaterialElement;
    }
    m_GeneratedTerrainMaterialElement->SetMaterial(material);
}

}  // namespace Orvia

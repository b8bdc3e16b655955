#include <orvia/topology/sub_network.h>

#include <orvia/core/external_element.h>
#include <orvia/core/network.h>
#include <orvia/core/unique_name.h>
#include <orvia/geometry/profile.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/linear_object.h>
#include <orvia/topology/road.h>
#include <orvia/topology/track.h>
#include <orvia/topology/trajectory.h>
#include <orvia/topology/zone.h>

#include <utility>

#include <algorithm>
#include <typeinfo>

namespace Orvia {

namespace {

// Renames each member of `incoming` whose name is taken in `list`, then appends it there.
template <class List>
void AppendRenamed(List& list, List& incoming) {
    if (incoming.empty()) return;
    UniqueNames names(list);
    for (const auto& item : incoming) {
        if (!item) continue;
        if (names.Contains(item->GetName())) item->SetName(names.GetUnique(item->GetName()));
        names.Add(item->GetName());
        list.push_back(item);
    }
    incoming.clear();
}

// The exact type needs no search of the hierarchy; node code asks for every track of the list.
template <class T, class Record>
T* As(Record* record) {
    if (!record) return nullptr;
    return typeid(*record) == typeid(T) ? static_cast<T*>(record) : dynamic_cast<T*>(record);
}

template <class T, class List>
T* At(const List& list, size_t index) {
    return index < list.size() ? As<T>(list[index].Get()) : nullptr;
}

template <class T, class List>
T* Named(const List& list, const std::string& name) {
    size_t index = list.find(name);
    return index == List::npos ? nullptr : As<T>(list[index].Get());
}

}  // namespace

SubNetwork::SubNetwork() = default;

SubNetwork::SubNetwork(Network* network) : m_network(network) {}

SubNetwork::~SubNetwork() = default;

size_t SubNetwork::GetIndexInNetwork() const {
    return m_network ? m_network->GetSubNetworkIndex(this) : npos;
}

void SubNetwork::SetPositionAndHeading(const vek::Vector3& position, double heading) {
    m_Position = position;
    m_Heading = heading;
}

vek::Transform SubNetwork::GetTransform() const {
    return vek::Transform::fromPositionHeading(m_Position, m_Heading);
}

vek::Transform SubNetwork::GetInverseTransform() const {
    return GetTransform().inverse();
}

// ---- Tracks

Track* SubNetwork::GetTrack(size_t index) const {
    return At<Track>(m_Tracks, index);
}

size_t SubNetwork::GetTrackIndex(const Track* track) const {
    return m_Tracks.indexOf(static_cast<const Ruvex::TrackElement*>(track));
}

Track* SubNetwork::GetTrackByName(const std::string& name) const {
    return Named<Track>(m_Tracks, name);
}

std::string SubNetwork::GetUniqueTrackName(const std::string& requested) const {
    return GetUniqueName(requested, m_Tracks);
}

Track* SubNetwork::CreateTrack(const std::string& requested) {
    Ruvex::CountedPtr<Track> track(new Track(this));
    track->SetName(GetUniqueTrackName(requested));
    m_Tracks.push_back(track);
    return track.Get();
}

Track* SubNetwork::CreateTrackInJunction(const std::string& requested) {
    const bool taken = m_Tracks.contains(requested);
    Ruvex::CountedPtr<Track> track(new Track(this));
    // New and in no indexed list: nothing names it yet (no road, no node) and no index goes stale.
    track->NameUnlisted(taken ? GetUniqueTrackName(requested) : requested);
    m_junctionTracks.push_back(track);
    return track.Get();
}

Track* SubNetwork::GetDerivedJunctionTrack(size_t index) const {
    return index < m_junctionTracks.size() ? m_junctionTracks[index].Get() : nullptr;
}

void SubNetwork::AddJunctionProfile(Profile* profile) {
    if (!profile) return;
    profile->SetParentSubNetwork(this);
    m_junctionProfiles.emplace_back(profile);
}

void SubNetwork::ClearJunctionSpace() {
    m_junctionTracks.clear();
    m_junctionProfiles.clear();
}

// ---- Intersections

Intersection* SubNetwork::GetIntersectionByIndex(size_t index) const {
    return At<Intersection>(m_Intersections, index);
}

size_t SubNetwork::GetIntersectionIndex(const Intersection* intersection) const {
    return m_Intersections.indexOf(static_cast<const Ruvex::IntersectionElement*>(intersection));
}

Intersection* SubNetwork::GetIntersectionByName(const std::string& name) const {
    return Named<Intersection>(m_Intersections, name);
}

std::string SubNetwork::GetUniqueIntersectionName(const std::string& requested) const {
    return GetUniqueName(requested, m_Intersections);
}

Intersection* SubNetwork::CreateIntersection(const vek::Vector3& position, const std::string& requested) {
    Ruvex::CountedPtr<Intersection> intersection(new Intersection(this));
    intersection->SetPosition(position);
    intersection->SetName(GetUniqueIntersectionName(requested));
    m_Intersections.push_back(intersection);
    return intersection.Get();
}

// ---- Files

ExternalElement* SubNetwork::GetProxyFile() const {
    return dynamic_cast<ExternalElement*>(m_ProxyFileElement.Get());
}

ExternalElement* SubNetwork::GetTerrain() const {
    return dynamic_cast<ExternalElement*>(m_TerrainElement.Get());
}

ExternalElement* SubNetwork::GetRollingSurface() const {
    return dynamic_cast<ExternalElement*>(m_RollingSurfaceElement.Get());
}

ExternalElement* SubNetwork::GetPhysicalSurface() const {
    return dynamic_cast<ExternalElement*>(m_PhysicalSurfaceElement.Get());
}

namespace {

std::string ReadText(const Ruvex::IDOMElement* element, std::string_view attribute) {
    std::string value;
    element->ReadAttribute(attribute, value);
    return value;
}

// Post-load attaches a portion naming an unknown profile to the first profile and leaves a border modifier
// of a border the profile lacks out of the geometry, silently: said here, where the file's places are known.
void WarnAboutPortions(const SubNetwork& subNetwork, Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    auto children = [](Ruvex::IDOMElement* parent, std::string_view tag, auto&& visit) {
        for (Ruvex::IDOMElement* child = parent->GetFirstChild(); child; child = child->GetNextSibling())
            if (child->GetTagName() == tag) visit(child);
    };
    // A document without profiles describes the axes alone: its portions have nothing to name.
    const Profile* first = subNetwork.GetProfile(0);
    if (!first) return;
    auto resolve = [&](Ruvex::IDOMElement* portion, std::string_view attribute) -> const Profile* {
        const std::string name = ReadText(portion, attribute);
        if (const Profile* profile = subNetwork.GetProfileByName(name)) return profile;
        parser->ReportWarning(portion, "<Portion> names the profile \"" + name +
                                           "\", which the sub-network does not hold: its first profile \"" +
                                           first->GetName() + "\" stands in");
        return first;
    };
    children(element, "Tracks", [&](Ruvex::IDOMElement* tracks) {
        children(tracks, "Track", [&](Ruvex::IDOMElement* track) {
            children(track, "Portion", [&](Ruvex::IDOMElement* portion) {
                const Profile* start = resolve(portion, "startProfileName");
                resolve(portion, "endProfileName");
                const size_t borders = start ? start->GetLaneBorderCount() : 0;
                children(portion, "ProfileModifier", [&](Ruvex::IDOMElement* modifier) {
                    children(modifier, "BorderModifier", [&](Ruvex::IDOMElement* border) {
                        uint64_t id = 0;
                        if (border->ReadAttribute("id", id) != Ruvex::AttributeStatus::Ok || id < borders)
                            return;
                        parser->ReportWarning(border,
                                              "<BorderModifier> moves border " + std::to_string(id) +
                                                  ", which the portion's start profile lacks (it has " +
                                                  std::to_string(borders) + "): it bends nothing");
                    });
                });
            });
        });
    });
}

}  // namespace

bool SubNetwork::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!SubNetworkElement::LoadFromXMLElement(element, parser)) return false;
    WarnAboutPortions(*this, element, parser);
    ExternalElement::Adopt(m_ProxyFileElement);
    ExternalElement::Adopt(m_TerrainElement);
    ExternalElement::Adopt(m_RollingSurfaceElement);
    ExternalElement::Adopt(m_PhysicalSurfaceElement);
    return true;
}

// ---- Whole object

void SubNetwork::MakeNamesUnique() {
    MakeRepeatedNamesUnique(m_Tracks);
    MakeRepeatedNamesUnique(m_JunctionTracks);
    if (HasRepeatedName(m_Intersections)) {
        MakeRepeatedNamesUnique(m_Intersections);
        // A renamed intersection renames every end that bore its old name, its namesake's too: a linked end
        // names the intersection it is linked to.
        for (const auto* list : {&m_Tracks, &m_JunctionTracks})
            for (const auto& item : *list) {
                auto* track = dynamic_cast<Track*>(item.Get());
                if (!track) continue;
                if (const Intersection* start = track->GetStartIntersection())
                    track->SetStartIntersectionName(start->GetName());
                if (const Intersection* end = track->GetEndIntersection())
                    track->SetEndIntersectionName(end->GetName());
            }
    }
    MakeRepeatedNamesUnique(m_Profiles);
    MakeRepeatedNamesUnique(m_Markings);
    MakeRepeatedNamesUnique(m_Materials);
    MakeRepeatedNamesUnique(m_Grounds);
    MakeRepeatedNamesUnique(m_TrafficLightGroups);
    MakeRepeatedNamesUnique(m_TrajectoryParts);
    MakeRepeatedNamesUnique(m_Trajectories);
    MakeRepeatedNamesUnique(m_ParkingSpots);
    MakeRepeatedNamesUnique(m_Zones);
    MakeRepeatedNamesUnique(m_EntitiesGenerations);
}

namespace {

// Calls rename(old, new) for each member of `incoming` whose name `mine` holds, with a name that neither list
// holds, while both lists are still apart: the rename rewrites the users inside `incoming`'s sub-network.
template <class List, class Rename>
void RenameIncoming(const List& mine, const List& incoming, Rename rename) {
    if (incoming.empty()) return;
    UniqueNames names(mine);
    std::vector<std::string> taken;
    for (const auto& item : incoming)
        if (item) {
            names.Add(item->GetName());
            if (mine.contains(item->GetName())) taken.push_back(item->GetName());
        }
    for (const std::string& old : taken) {
        const std::string renamed = names.GetUnique(old);
        names.Add(renamed);
        rename(old, renamed);
    }
}

}  // namespace

void SubNetwork::MergeWith(SubNetwork* other) {
    if (!other || other == this) return;
    // Members that profiles, markings, connectors, trajectories and entity generations name: renamed with
    // their users before anything moves.
    RenameIncoming(m_Materials, other->m_Materials,
                   [other](const std::string& o, const std::string& n) { other->ChangeMaterialName(o, n); });
    RenameIncoming(m_Grounds, other->m_Grounds,
                   [other](const std::string& o, const std::string& n) { other->ChangeGroundName(o, n); });
    RenameIncoming(m_Markings, other->m_Markings,
                   [other](const std::string& o, const std::string& n) { other->ChangeMarkingName(o, n); });
    RenameIncoming(m_TrajectoryParts, other->m_TrajectoryParts,
                   [other](const std::string& o, const std::string& n) {
                       other->GetTrajectoryPartByName(o)->SetName(n);
                       for (const auto& trajectory : other->m_Trajectories)
                           for (const auto& piece : trajectory->GetPieces())
                               if (piece && piece->GetTrajectoryPartName() == o)
                                   piece->SetTrajectoryPartName(n);
                   });
    RenameIncoming(m_Zones, other->m_Zones, [other](const std::string& o, const std::string& n) {
        other->GetZoneByName(o)->SetName(n);
        for (const auto& generation : other->m_EntitiesGenerations)
            if (generation && generation->GetAreaName() == o) generation->SetAreaName(n);
    });
    // Intersections first: renaming one rewrites the track ends that name it, which must still be found in
    // `other`.
    for (const auto& item : other->m_Intersections)
        if (auto* intersection = dynamic_cast<Intersection*>(item.Get()))
            intersection->SetInSubNetwork(other);
    for (const auto& item : other->m_Tracks)
        if (auto* track = dynamic_cast<Track*>(item.Get())) track->SetSubNetwork(other);
    AppendRenamed(m_Intersections, other->m_Intersections);

    // Portions name their profiles: a renamed incoming profile is renamed in the incoming portions too.
    for (const auto& profile : other->m_Profiles) {
        if (!profile || !m_Profiles.contains(profile->GetName())) continue;
        const std::string old = profile->GetName();
        profile->SetName(GetUniqueName(old, m_Profiles));
        for (const auto* list : {&other->m_Tracks, &other->m_JunctionTracks})
            for (const auto& track : *list)
                for (const auto& portion : track->GetPortions()) {
                    if (portion->GetStartProfileName() == old)
                        portion->SetStartProfileName(profile->GetName());
                    if (portion->GetEndProfileName() == old) portion->SetEndProfileName(profile->GetName());
                }
    }
    AppendRenamed(m_Profiles, other->m_Profiles);

    // Road pieces over an incoming track follow it to this sub-network, under its new name if it gets one.
    std::vector<std::pair<Ruvex::RoadPieceElement*, const Track*>> followers;
    if (const Network* network = m_network ? m_network : other->m_network)
        for (size_t r = 0; r < network->GetRoadCount(); ++r)
            if (const Road* road = network->GetRoad(r))
                for (const auto& piece : road->GetPieces())
                    if (piece && piece->GetSubNetworkName() == other->GetName())
                        if (const Track* track = other->GetTrackByName(piece->GetTrackName()))
                            followers.emplace_back(piece.Get(), track);
    AppendRenamed(m_Tracks, other->m_Tracks);
    for (const auto& [piece, track] : followers) {
        piece->SetSubNetworkName(GetName());
        piece->SetTrackName(track->GetName());
    }
    AppendRenamed(m_JunctionTracks, other->m_JunctionTracks);
    AppendRenamed(m_Markings, other->m_Markings);
    AppendRenamed(m_Materials, other->m_Materials);
    AppendRenamed(m_Grounds, other->m_Grounds);
    AppendRenamed(m_TrafficLightGroups, other->m_TrafficLightGroups);
    AppendRenamed(m_TrajectoryParts, other->m_TrajectoryParts);
    AppendRenamed(m_Trajectories, other->m_Trajectories);
    AppendRenamed(m_ParkingSpots, other->m_ParkingSpots);
    AppendRenamed(m_Zones, other->m_Zones);
    AppendRenamed(m_EntitiesGenerations, other->m_EntitiesGenerations);
    for (const auto& item : other->m_ClippedDatas)
        m_ClippedDatas.push_back(item);
    other->m_ClippedDatas.clear();
    for (const auto& item : other->m_MarkClippedData)
        m_MarkClippedData.push_back(item);
    other->m_MarkClippedData.clear();
    // Parts this sub-network has one of already stay with `other`.
    if (!m_RailNetwork) std::swap(m_RailNetwork, other->m_RailNetwork);
    if (!m_PedestrianNetwork) std::swap(m_PedestrianNetwork, other->m_PedestrianNetwork);
    if (!m_GeneratedTerrainMaterialElement)
        std::swap(m_GeneratedTerrainMaterialElement, other->m_GeneratedTerrainMaterialElement);

    for (const auto& item : m_Intersections)
        if (auto* intersection = dynamic_cast<Intersection*>(item.Get())) intersection->SetInSubNetwork(this);
    for (const auto* list : {&m_Tracks, &m_JunctionTracks})
        for (const auto& item : *list)
            if (auto* track = dynamic_cast<Track*>(item.Get())) track->SetSubNetwork(this);
    std::vector<ClippedData*> clipped;
    GetClippedDataArray(clipped);
    for (ClippedData* data : clipped) {
        data->SetInSubNetwork(this);
        if (auto* mark = dynamic_cast<MarkClippedData*>(data); mark && mark->GetParent() == other)
            mark->SetParent(this);
    }
    ResolveProfileReferences();
}

void SubNetwork::PostLoad(Network* network, [[maybe_unused]] const std::vector<std::string>& searchPaths) {
    m_network = network;
    for (const auto& item : m_Markings)
        if (auto* marking = dynamic_cast<Marking*>(item.Get())) marking->PostLoad(m_Materials);
    for (const auto& item : m_Intersections)
        if (auto* intersection = dynamic_cast<Intersection*>(item.Get())) intersection->SetInSubNetwork(this);
    for (const auto& item : m_Profiles)
        if (auto* profile = dynamic_cast<Profile*>(item.Get())) {
            profile->SetParentSubNetwork(this);
            profile->PostLoad(m_Markings, m_Grounds, m_Materials);
        }
    for (const auto* list : {&m_Tracks, &m_JunctionTracks})
        for (const auto& item : *list)
            if (auto* track = dynamic_cast<Track*>(item.Get())) track->PostLoad(this);
    for (const auto& item : m_TrajectoryParts)
        if (auto* part = dynamic_cast<TrajectoryPart*>(item.Get())) part->SetInSubNetwork(this);
    for (const auto& item : m_Trajectories)
        if (auto* trajectory = dynamic_cast<Trajectory*>(item.Get())) trajectory->PostLoad(this);
    PostLoadTrafficLightGroups();
    auto attach = [this](Ruvex::Element* item) {
        auto* data = dynamic_cast<ClippedData*>(item);
        if (!data) return;
        data->SetInSubNetwork(this);
        if (auto* mark = dynamic_cast<MarkClippedData*>(data)) mark->SetParent(this);
        if (LinearObject* linear = data->GetLinearObject()) linear->SetClippedData(data);
    };
    for (const auto& item : m_ClippedDatas)
        attach(item.Get());
    for (const auto& item : m_MarkClippedData)
        attach(item.Get());
    for (const auto& item : m_Intersections) {
        auto* intersection = dynamic_cast<Intersection*>(item.Get());
        if (!intersection) continue;
        intersection->Validate();
        for (size_t i = 0; i < intersection->GetClippedDataCount(); ++i)
            if (MarkClippedData* mark = intersection->GetClippedData(i)) {
                mark->SetInSubNetwork(this);
                mark->SetParent(intersection);
                if (LinearObject* linear = mark->GetLinearObject()) linear->SetClippedData(mark);
            }
    }
}

void SubNetwork::SetName(const std::string& name) {
    if (name == GetName()) return;
    SubNetworkElement::SetName(name);
    std::vector<ClippedData*> all;
    GetClippedDataArray(all);
    for (ClippedData* data : all)
        if (data->GetInSubNetwork() == this) data->UpdateQualifiedName();
}

bool SubNetwork::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    if (!SubNetworkElement::LoadChild(child, parser)) return false;
    if (child->GetTagName() == "ClippedDatas")
        for (Ruvex::IDOMElement* item = child->GetFirstChild(); item; item = item->GetNextSibling())
            if (std::string name; item->GetTagName() == "TrackClippedData") {
                item->GetAttribute("name", name);
                parser->ReportWarning(
                    item, "track clipped data \"" + name + "\" lies on no track; kept as written");
            }
    return true;
}

vek::Box3 SubNetwork::BuildBoundingBox() const {
    vek::Box3 box;
    for (const auto& item : m_Tracks)
        if (auto* track = dynamic_cast<const Track*>(item.Get())) box.add(track->GetBoundingBox());
    for (const auto& intersection : m_Intersections)
        if (intersection) box.add(intersection->GetPosition());
    return box;
}

void SubNetwork::SymmetrizeRespectYAxis() {
    for (const auto& intersection : m_Intersections) {
        if (!intersection) continue;
        vek::Vector3 position = intersection->GetPosition();
        position.x = -position.x;
        intersection->SetPosition(position);
        std::vector<vek::Vector2> contour = intersection->GetContourPoints();
        for (vek::Vector2& point : contour)
            point.x = -point.x;
        intersection->SetContourPoints(contour);
    }
    if (m_TerrainElement) m_TerrainElement->SetFlipped(!m_TerrainElement->GetFlipped());
    if (m_PhysicalSurfaceElement)
        m_PhysicalSurfaceElement->SetFlipped(!m_PhysicalSurfaceElement->GetFlipped());
}

// ---- Profiles

Profile* SubNetwork::GetProfile(size_t index) const {
    return At<Profile>(m_Profiles, index);
}

Profile* SubNetwork::GetProfileByName(const std::string& name) const {
    return Named<Profile>(m_Profiles, name);
}

void SubNetwork::AddProfile(Profile* profile) {
    if (!profile) return;
    profile->SetParentSubNetwork(this);
    m_Profiles.push_back(profile);
}

namespace {

// Removes the last occurrence of `suffix`, or appends it when there is none.
std::string ToggleSuffix(std::string name, const std::string& suffix) {
    const size_t at = name.rfind(suffix);
    if (at == std::string::npos) return name + suffix;
    return name.erase(at, suffix.size());
}

}  // namespace

Profile* SubNetwork::GetOrCreateInverse(Profile* profile, bool keepWay) {
    if (!profile) return nullptr;
    Ruvex::CountedPtr<Profile> copy(profile->Clone());
    copy->Invert(keepWay);
    for (size_t i = 0; i < m_Profiles.size(); ++i)
        if (Profile* existing = GetProfile(i); existing && existing->IsEqual(copy.Get())) return existing;
    const std::string inverted = ToggleSuffix(profile->GetName(), " Invert");
    copy->SetName(keepWay ? inverted : ToggleSuffix(inverted, " ch way"));
    AddProfile(copy.Get());
    return copy.Get();
}

}  // namespace Orvia

#include <orvia/core/legacy_converter.h>
#include <orvia/core/network.h>

#include <orvia/core/background_image.h>
#include <orvia/core/external_element.h>
#include <orvia/core/geolocalisation.h>
#include <orvia/core/library.h>
#include <orvia/core/unique_name.h>
#include <orvia/core/visitors.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/vek/math.h>
#include <orvia/vek/path.h>

#include <cmath>
#include <cstdlib>

namespace Orvia {

namespace {

// Files of version 2.2.2 and older go through the legacy converter.
constexpr uint32_t kLastOldLayoutVersion = Ruvex::MakeVersionID(2, 2, 2);

const std::string kBackgroundImageTag = "BackgroundImage";
const std::string kGeneratedTerrainMaterialTag = "GeneratedTerrainMaterial";
const std::string kTerrainTag = "ExternalTerrain";
const std::string kRollingSurfaceTag = "ExternalSurface";
const std::string kPhysicalSurfaceTag = "ExternalPhysicSurface";
const std::string kDefaultSubNetworkName = "Sub Network";
const std::string kDefaultJunctionName = "SubNetworkJunction";
const std::string kDefaultRoadName = "Road";
const std::string kBufferName = "buffer";

void SetFile(Ruvex::CountedPtr<Ruvex::ExternalFileElement>& slot, const std::string& tag,
             const std::string& path) {
    if (path.empty())
        slot.Reset();
    else
        slot = new ExternalElement(tag, path);
}

std::string FilePath(const Ruvex::CountedPtr<Ruvex::ExternalFileElement>& slot) {
    return slot ? slot->GetFilePath() : std::string();
}

void Flip(const Ruvex::CountedPtr<Ruvex::ExternalFileElement>& slot) {
    if (slot) slot->SetFlipped(!slot->GetFlipped());
}

template <class T, class List>
T* At(const List& list, size_t index) {
    return index < list.size() ? dynamic_cast<T*>(list[index].Get()) : nullptr;
}

template <class T, class List>
T* Named(const List& list, const char* name) {
    if (!name) return nullptr;
    size_t index = list.find(name);
    return index == List::npos ? nullptr : dynamic_cast<T*>(list[index].Get());
}

// Which end of the track a piece leaves by, and which it enters by.
TrackConnector* LeavingNode(const Track& track, bool inverted) {
    return inverted ? track.FindStartNode() : track.FindEndNode();
}
TrackConnector* EnteringNode(const Track& track, bool inverted) {
    return inverted ? track.FindEndNode() : track.FindStartNode();
}

// The name of what holds a connector: its sub-network for an intersection, nothing for a junction.
const std::string& HolderName(const TrackConnector& connector) {
    static const std::string none;
    const SubNetwork* holder = connector.GetInSubNetwork();
    return holder ? holder->GetName() : none;
}

}  // namespace

// ---- Traffic hand

const std::string& Network::ToText(const ETrafficHandType& type) {
    static const std::string texts[] = {"not defined", "right-hand", "left-hand"};
    switch (type) {
        case eRightHand:
            return texts[1];
        case eLeftHand:
            return texts[2];
        default:
            return texts[0];
    }
}

Network::ETrafficHandType Network::ToETrafficHandType(const std::string& text) {
    for (ETrafficHandType type : {eNotDefined, eRightHand, eLeftHand})
        if (ToText(type) == text) return type;
    return eNotDefined;
}

// ---- Life cycle

Network::Network() {
    m_TrafficHand = ToText(eRightHand);
    m_Geolocalisation = new Geolocalisation;
}

Network::~Network() = default;

Network* Network::Finish(Ruvex::Element* root, const char* fileName,
                         const std::vector<std::string>& searchPaths) {
    if (!root) return nullptr;
    auto* network = dynamic_cast<Network*>(root);
    if (!network) {
        // Not ours to keep: the caller asked for a network.
        root->Release();
        return nullptr;
    }
    network->setFileName(fileName);
    network->PostLoad(searchPaths);
    return network;
}

Network* Network::Load(const char* path, const std::vector<std::string>& searchPaths) {
    Init(Ruvex::Encoding::GetMode());
    return Finish(Ruvex::Load(path, false), path ? path : "", searchPaths);
}

Network* Network::Load(const char* text, size_t, const std::vector<std::string>& searchPaths) {
    Init(Ruvex::Encoding::GetMode());
    return Finish(Ruvex::Load(text, true), kBufferName.c_str(), searchPaths);
}

Network* Network::LoadAndMakeAbsolutePaths(const char* path, const std::vector<std::string>& searchPaths) {
    Network* network = Load(path, searchPaths);
    if (network) {
        network->Validate();
        network->MakeAbsolutePaths(searchPaths);
    }
    return network;
}

Network* Network::LoadAndMakeAbsolutePaths(const char* text, size_t length,
                                           const std::vector<std::string>& searchPaths) {
    Network* network = Load(text, length, searchPaths);
    if (network) {
        network->Validate();
        network->MakeAbsolutePaths(searchPaths);
    }
    return network;
}

bool Network::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    m_formatVersion = parser->GetVersion();
    const bool loaded = parser->GetVersion() <= kLastOldLayoutVersion
                            ? QorOldData::DataConverter::LoadNetwork_v_2_2_2(this, element, parser)
                            : NetworkElement::LoadFromXMLElement(element, parser);
    if (!loaded) return false;
    ExternalElement::Adopt(m_GlobalTerrainElement);
    ExternalElement::Adopt(m_RollingSurfaceElement);
    ExternalElement::Adopt(m_PhysicalSurfaceElement);
    return true;
}

bool Network::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    if (child && parser && child->GetTagName() == kBackgroundImageTag) {
        Ruvex::CountedPtr<BackGroundImage> image(new BackGroundImage);
        image->LoadFromXMLElement(child, parser);
        m_backgroundImages[image->GetCameraIndex()] = image;
        return true;
    }
    if (!NetworkElement::LoadChild(child, parser)) return false;
    // A junction joins at least two track ends; one with fewer is kept as written, with a warning at its
    // place.
    if (child && parser && child->GetTagName() == "SubNetworkJunctions")
        for (Ruvex::IDOMElement* junction = child->GetFirstChild(); junction;
             junction = junction->GetNextSibling()) {
            if (junction->GetTagName() != "SubNetworkJunction") continue;
            size_t exits = 0;
            for (Ruvex::IDOMElement* exit = junction->GetFirstChild(); exit; exit = exit->GetNextSibling())
                exits += exit->GetTagName() == "SubNetworkExit" ? 1 : 0;
            if (exits >= 2) continue;
            std::string name;
            junction->GetAttribute("name", name);
            parser->ReportWarning(junction, "sub-network junction \"" + name + "\" has fewer than two exits");
        }
    return true;
}

Ruvex::IDOMElement* Network::BuildXMLElement(Ruvex::IDOMParser* parser) {
    MakeNamesUnique();
    Ruvex::IDOMElement* element = NetworkElement::BuildXMLElement(parser);
    if (!element) return element;
    for (const auto& [index, image] : m_backgroundImages) {
        if (!image) continue;
        image->SetCameraIndex(index);
        if (Ruvex::IDOMElement* built = image->BuildXMLElement(parser)) element->AppendChild(built);
    }
    return element;
}

bool Network::Save(const char* path) {
    setFileName(path ? path : "");
    return Ruvex::Save(this, path);
}

bool Network::MakeRelativePathsAndSave(const char* path, const std::vector<std::string>* searchPaths) {
    std::vector<std::string> directories =
        searchPaths ? *searchPaths : std::vector<std::string>{vek::JustDirName(path ? path : "")};
    PathModeVisitor(PathModeVisitor::eRelative, directories).Apply(this);
    setFileName(path ? path : "");
    return Ruvex::Save(this, path);
}

void Network::MakeAbsolutePaths(const std::vector<std::string>& searchPaths) {
    std::vector<std::string> directories =
        searchPaths.empty() ? std::vector<std::string>{vek::JustDirName(m_fileName)} : searchPaths;
    PathModeVisitor(PathModeVisitor::eAbsolute, directories).Apply(this);
}

// ---- Post-load

void Network::PostLoad(const std::vector<std::string>& searchPaths) {
    MakeNamesUnique();
    if (Geolocalisation* geolocalisation = GetGeolocalisation()) geolocalisation->PostLoad(this);
    for (size_t i = 0; i < m_SubNetworks.size(); ++i)
        if (SubNetwork* subNetwork = GetSubNetwork(i)) subNetwork->PostLoad(this, searchPaths);
    PostLoadSubNetworkJunctions();
    for (size_t i = 0; i < m_Roads.size(); ++i)
        if (Road* road = GetRoad(i)) road->InitTracksData(i, this);
}

void Network::PostLoadSubNetworkJunctions() {
    std::vector<size_t> failed;
    for (size_t i = 0; i < m_SubNetworkJunctions.size(); ++i) {
        SubNetworkJunction* junction = GetSubNetworkJunction(i);
        if (!junction || !junction->PostLoad(this)) failed.push_back(i);
    }
    for (auto it = failed.rbegin(); it != failed.rend(); ++it)
        m_SubNetworkJunctions.erase(*it);
}

// ---- Unique names

std::string Network::GetUniqueSubNetworkName(const std::string& requested) const {
    return GetUniqueName(requested, m_SubNetworks);
}

std::string Network::GetUniqueRoadName(const std::string& requested) const {
    return GetUniqueName(requested, m_Roads);
}

std::string Network::GetUniqueJunctionName(const std::string& requested) const {
    return GetUniqueName(requested, m_SubNetworkJunctions);
}

void Network::MakeNamesUnique() {
    NameBlankAndRepeated(m_SubNetworks, kDefaultSubNetworkName);
    for (size_t i = 0; i < m_SubNetworks.size(); ++i)
        if (SubNetwork* subNetwork = GetSubNetwork(i)) subNetwork->MakeNamesUnique();
    // As many passes as there are junctions; a pass that renames nothing leaves the next ones nothing to do.
    for (size_t pass = 0, passes = m_SubNetworkJunctions.size(); pass < passes; ++pass)
        if (!NameBlankAndRepeated(m_SubNetworkJunctions, kDefaultJunctionName)) break;
}

// ---- Sub-networks

SubNetwork* Network::AddSubNetwork() {
    Ruvex::CountedPtr<SubNetwork> subNetwork(new SubNetwork(this));
    m_SubNetworks.push_back(subNetwork);
    return subNetwork.Get();
}

void Network::AddSubNetwork(SubNetwork* subNetwork) {
    if (!subNetwork) return;
    Ruvex::CountedPtr<SubNetwork> keep(subNetwork);
    subNetwork->SetNetwork(this);
    subNetwork->PostLoad(this, {});
    m_SubNetworks.push_back(keep);
}

bool Network::RemoveSubNetwork(size_t index) {
    if (index >= m_SubNetworks.size()) return false;
    Ruvex::CountedPtr<SubNetwork> removed(GetSubNetwork(index));
    const std::string name = m_SubNetworks[index]->GetName();

    for (size_t r = m_Roads.size(); r-- > 0;) {
        Road* road = GetRoad(r);
        if (!road) continue;
        for (size_t p = road->GetRoadPieceCount(); p-- > 0;) {
            Ruvex::RoadPieceElement* piece = road->GetPieces()[p].Get();
            if (piece && piece->GetSubNetworkName() == name) road->RemoveRoadPiece(p);
        }
        if (road->GetRoadPieceCount() == 0) DeleteRoad(r);
    }
    for (size_t j = m_SubNetworkJunctions.size(); j-- > 0;) {
        SubNetworkJunction* junction = GetSubNetworkJunction(j);
        if (junction && removed && junction->ConnectsSubNetwork(removed.Get()))
            m_SubNetworkJunctions.erase(j);
    }
    m_SubNetworks.erase(index);
    if (removed && removed->GetNetwork() == this) removed->SetNetwork(nullptr);
    return true;
}

void Network::MergeSubNetworks(size_t a, size_t b) {
    if (a == b || a >= m_SubNetworks.size() || b >= m_SubNetworks.size()) return;
    const size_t low = std::min(a, b);
    const size_t high = std::max(a, b);
    const std::string highName = m_SubNetworks[high]->GetName();
    SubNetwork* target = GetSubNetwork(low);
    SubNetwork* source = GetSubNetwork(high);
    if (target) target->MergeWith(source);
    RemoveSubNetwork(high);
    const std::string& lowName = m_SubNetworks[low]->GetName();
    for (const auto& road : m_Roads) {
        if (!road) continue;
        for (const auto& piece : road->GetPieces())
            if (piece && piece->GetSubNetworkName() == highName) piece->SetSubNetworkName(lowName);
    }
}

SubNetwork* Network::GetSubNetwork(size_t index) const {
    return At<SubNetwork>(m_SubNetworks, index);
}

SubNetwork* Network::GetSubNetworkByName(const char* name) const {
    return Named<SubNetwork>(m_SubNetworks, name);
}

size_t Network::GetSubNetworkIndex(const SubNetwork* subNetwork) const {
    return m_SubNetworks.indexOf(static_cast<const Ruvex::SubNetworkElement*>(subNetwork));
}

// ---- Junctions

SubNetworkJunction* Network::AddSubNetworkJunction() {
    Ruvex::CountedPtr<SubNetworkJunction> junction(new SubNetworkJunction(this));
    m_SubNetworkJunctions.push_back(junction);
    return junction.Get();
}

SubNetworkJunction* Network::CreateSubNetworkJunction(const std::string& name) {
    Ruvex::CountedPtr<SubNetworkJunction> junction(new SubNetworkJunction(this));
    junction->SetName(name);
    m_SubNetworkJunctions.push_back(junction);
    return junction.Get();
}

bool Network::RemoveSubNetworkJunction(size_t index) {
    return m_SubNetworkJunctions.erase(index);
}

bool Network::RemoveSubNetworkJunction(const SubNetworkJunction* junction) {
    return RemoveSubNetworkJunction(GetSubNetworkJunctionIndex(junction));
}

SubNetworkJunction* Network::GetSubNetworkJunction(size_t index) const {
    return At<SubNetworkJunction>(m_SubNetworkJunctions, index);
}

SubNetworkJunction* Network::GetSubNetworkJunctionByName(const char* name) const {
    return Named<SubNetworkJunction>(m_SubNetworkJunctions, name);
}

SubNetworkJunction* Network::GetSubNetworkJunction(const Track* track, bool atStart) const {
    if (!track) return nullptr;
    for (size_t i = 0; i < m_SubNetworkJunctions.size(); ++i) {
        SubNetworkJunction* junction = GetSubNetworkJunction(i);
        if (junction && junction->GetSubNetworkExit(track, atStart)) return junction;
    }
    return nullptr;
}

size_t Network::GetSubNetworkJunctionIndex(const SubNetworkJunction* junction) const {
    return m_SubNetworkJunctions.indexOf(static_cast<const Ruvex::SubNetworkJunctionElement*>(junction));
}

// ---- Roads

Road* Network::AddRoad() {
    Ruvex::CountedPtr<Road> road(new Road);
    road->SetName(GetUniqueRoadName(kDefaultRoadName));
    m_Roads.push_back(road);
    return road.Get();
}

bool Network::DeleteRoad(size_t index) {
    if (index >= m_Roads.size()) return false;
    if (Road* road = GetRoad(index))
        for (size_t p = 0; p < road->GetRoadPieceCount(); ++p)
            if (Track* track = road->GetTrack(p, this)) track->RemoveRoad(index);
    const size_t last = m_Roads.size() - 1;
    if (index != last) {
        Ruvex::CountedPtr<Ruvex::RoadElement> moved = m_Roads[last];
        if (Road* lastRoad = GetRoad(last))
            for (size_t p = 0; p < lastRoad->GetRoadPieceCount(); ++p)
                if (Track* track = lastRoad->GetTrack(p, this)) track->ReplaceRoad(last, index);
        m_Roads.set(index, moved);
    }
    m_Roads.pop_back();
    return true;
}

bool Network::DeleteRoad(const std::string& name) {
    return DeleteRoad(GetRoadIndexByName(name));
}

Road* Network::GetRoad(size_t index) const {
    return At<Road>(m_Roads, index);
}

size_t Network::GetRoadIndexByName(const std::string& name) const {
    return m_Roads.find(name);
}

bool Network::AddTrackToRoad(const std::string& subNetworkName, const std::string& trackName,
                             size_t roadIndex) {
    Road* road = GetRoad(roadIndex);
    SubNetwork* subNetwork = GetSubNetworkByName(subNetworkName.c_str());
    Track* track = subNetwork ? subNetwork->GetTrackByName(trackName) : nullptr;
    if (!road || !track) return false;
    road->AddRoadPiece(new RoadPiece(subNetworkName, trackName));
    track->AddRoad(roadIndex);
    return true;
}

bool Network::RemoveTrackFromRoad(const std::string& subNetworkName, const std::string& trackName,
                                  size_t roadIndex) {
    Road* road = GetRoad(roadIndex);
    if (!road) return false;
    bool removed = false;
    for (size_t p = road->FindRoadPiece(subNetworkName, trackName); p != Road::npos;
         p = road->FindRoadPiece(subNetworkName, trackName)) {
        road->RemoveRoadPiece(p);
        removed = true;
    }
    if (!removed) return false;
    if (SubNetwork* subNetwork = GetSubNetworkByName(subNetworkName.c_str()))
        if (Track* track = subNetwork->GetTrackByName(trackName)) track->RemoveRoad(roadIndex);
    return true;
}

bool Network::RemoveTrackFromRoad(SubNetwork* subNetwork, size_t trackIndex, size_t roadIndex) {
    Track* track = subNetwork ? subNetwork->GetTrack(trackIndex) : nullptr;
    if (!track) return false;
    return RemoveTrackFromRoad(subNetwork->GetName(), track->GetName(), roadIndex);
}

// ---- Whole model

void Network::Clear() {
    m_SubNetworks.clear();
    m_SubNetworkJunctions.clear();
    m_Roads.clear();
}

void Network::MergeWith(Network* other) {
    if (!other || other == this) return;
    for (const auto& subNetwork : other->m_SubNetworks)
        m_SubNetworks.push_back(subNetwork);
    for (const auto& junction : other->m_SubNetworkJunctions)
        m_SubNetworkJunctions.push_back(junction);
    for (const auto& road : other->m_Roads)
        m_Roads.push_back(road);
    MakeNamesUnique();
    for (size_t i = 0; i < m_SubNetworkJunctions.size(); ++i)
        if (SubNetworkJunction* junction = GetSubNetworkJunction(i)) junction->UpdateNames();
    PostLoad({});
}

void Network::Validate() {
    for (size_t r = 0; r < m_Roads.size(); ++r) {
        Road* road = GetRoad(r);
        if (!road || road->GetRoadPieceCount() < 2) continue;
        for (size_t p = 0; p + 1 < road->GetRoadPieceCount(); ++p) {
            const RoadPiece* first = road->GetRoadPiece(p);
            const RoadPiece* second = road->GetRoadPiece(p + 1);
            const Track* from = first ? first->GetTrack(this) : nullptr;
            const Track* to = second ? second->GetTrack(this) : nullptr;
            const TrackConnector* leaving = from ? LeavingNode(*from, first->GetInverted()) : nullptr;
            const TrackConnector* entering = to ? EnteringNode(*to, second->GetInverted()) : nullptr;
            if (leaving && entering && leaving->GetConnectorName() == entering->GetConnectorName() &&
                HolderName(*leaving) == HolderName(*entering))
                continue;
            // Cut after the first piece of the broken pair; tracks no longer on the road forget it.
            std::vector<Track*> cut;
            while (road->GetRoadPieceCount() > p + 1) {
                if (Track* track = road->GetTrack(p + 1, this)) cut.push_back(track);
                road->RemoveRoadPiece(p + 1);
            }
            for (Track* track : cut) {
                bool stillOnRoad = false;
                for (size_t q = 0; q <= p && !stillOnRoad; ++q)
                    stillOnRoad = road->GetTrack(q, this) == track;
                if (!stillOnRoad) track->RemoveRoad(r);
            }
            break;
        }
    }
}

void Network::SymmetrizeRespectYAxis() {
    for (size_t j = 0; j < m_SubNetworkJunctions.size(); ++j) {
        SubNetworkJunction* junction = GetSubNetworkJunction(j);
        if (!junction) continue;
        vek::Vector3 position = junction->GetPosition();
        position.x = -position.x;
        junction->SetPosition(position);
    }
    for (size_t i = 0; i < m_SubNetworks.size(); ++i) {
        SubNetwork* subNetwork = GetSubNetwork(i);
        if (!subNetwork) continue;
        subNetwork->SymmetrizeRespectYAxis();
        vek::Vector3 position = subNetwork->GetPosition();
        position.x = -position.x;
        double heading = vek::kTwoPi - subNetwork->GetHeading();
        heading -= vek::kTwoPi * std::floor(heading / vek::kTwoPi);
        subNetwork->SetPositionAndHeading(position, heading);
        if (ExternalElement* proxy = subNetwork->GetProxyFile()) proxy->SetFlipped(!proxy->GetFlipped());
    }
    Flip(m_GlobalTerrainElement);
    Flip(m_PhysicalSurfaceElement);
}

bool Network::ApplyProjectionSystem(const std::string& system, const vek::Vector2& latLon, bool center,
                                    bool isEpsgCode) {
    Ruvex::CountedPtr<Geolocalisation> geolocalisation(new Geolocalisation);
    const bool ok = isEpsgCode ? geolocalisation->SetTransformationParameters(std::atoi(system.c_str()))
                               : geolocalisation->SetTransformationParameters(system);
    if (!ok) return false;
    m_Geolocalisation = geolocalisation.Get();
    if (center) geolocalisation->CenterToLatLonPoint(latLon.x, latLon.y);
    return true;
}

vek::Box3 Network::BuildBoundingBox() const {
    vek::Box3 box;
    for (size_t i = 0; i < m_SubNetworks.size(); ++i) {
        const SubNetwork* subNetwork = GetSubNetwork(i);
        if (!subNetwork) continue;
        vek::Box3 local = subNetwork->BuildBoundingBox();
        if (!local.isEmpty()) box.add(subNetwork->GetTransform().apply(local));
    }
    return box;
}

bool Network::GetBoundingBox(vek::Box3& box) const {
    box = BuildBoundingBox();
    return !box.isEmpty();
}

// ---- Attachments

Geolocalisation* Network::GetGeolocalisation() {
    return dynamic_cast<Geolocalisation*>(m_Geolocalisation.Get());
}

const Geolocalisation* Network::GetGeolocalisation() const {
    return dynamic_cast<const Geolocalisation*>(m_Geolocalisation.Get());
}

ExternalElement* Network::GetGlobalTerrain() const {
    return dynamic_cast<ExternalElement*>(m_GlobalTerrainElement.Get());
}
void Network::SetGlobalTerrain(ExternalElement* element) {
    m_GlobalTerrainElement = element;
}
std::string Network::GetGlobalTerrainFilePath() const {
    return FilePath(m_GlobalTerrainElement);
}
void Network::SetGlobalTerrainFilePath(const std::string& path) {
    SetFile(m_GlobalTerrainElement, kTerrainTag, path);
}

ExternalElement* Network::GetRollingSurface() const {
    return dynamic_cast<ExternalElement*>(m_RollingSurfaceElement.Get());
}
void Network::SetRollingSurface(ExternalElement* element) {
    m_RollingSurfaceElement = element;
}
std::string Network::GetRollingSurfaceFilePath() const {
    return FilePath(m_RollingSurfaceElement);
}
void Network::SetRollingSurfaceFilePath(const std::string& path) {
    SetFile(m_RollingSurfaceElement, kRollingSurfaceTag, path);
}

ExternalElement* Network::GetPhysicalSurface() const {
    return dynamic_cast<ExternalElement*>(m_PhysicalSurfaceElement.Get());
}
void Network::SetPhysicalSurface(ExternalElement* element) {
    m_PhysicalSurfaceElement = element;
}
std::string Network::GetPhysicalSurfaceFilePath() const {
    return FilePath(m_PhysicalSurfaceElement);
}
void Network::SetPhysicalSurfaceFilePath(const std::string& path) {
    SetFile(m_PhysicalSurfaceElement, kPhysicalSurfaceTag, path);
}

BackGroundImage* Network::GetBackGroundImage(size_t index) const {
    auto it = m_backgroundImages.find(index);
    return it == m_backgroundImages.end() ? nullptr : it->second.Get();
}

BackGroundImage* Network::GetOrCreateBackGroundImage(size_t index) {
    Ruvex::CountedPtr<BackGroundImage>& image = m_backgroundImages[index];
    if (!image) {
        image = new BackGroundImage;
        image->SetCameraIndex(index);
    }
    return image.Get();
}

void Network::ClearBackGroundImage(size_t index) {
    m_backgroundImages.erase(index);
}

void Network::SetGeneratedTerrainMaterial(Ruvex::MaterialElement* material) {
    if (!m_GeneratedTerrainMaterialElement) {
        Ruvex::CountedPtr<Ruvex::Element> created(Ruvex::CreateElement(kGeneratedTerrainMaterialTag));
        auto* holder = dynamic_cast<Ruvex::GeneratedTerrainMaterialElement*>(created.Get());
        m_GeneratedTerrainMaterialElement = holder ? holder : new Ruvex::GeneratedTerrainMaterialElement;
    }
    m_GeneratedTerrainMaterialElement->SetMaterial(material);
}

}  // namespace Orvia

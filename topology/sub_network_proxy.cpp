// Sub-networks whose content lives in a file of their own.

#include <orvia/core/external_element.h>
#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/core/visitors.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace Orvia {

namespace {

// The first existing file among: the path as given, each search directory joined with it, the network file's
// directory joined with it. Empty when none exists.
std::string FindFile(const std::string& path, const std::vector<std::string>& searchPaths,
                     const Network* network) {
    namespace fs = std::filesystem;
    std::error_code error;
    auto exists = [&error](const fs::path& candidate) { return fs::is_regular_file(candidate, error); };
    if (exists(path)) return path;
    if (fs::path(path).is_absolute()) return {};
    for (const std::string& directory : searchPaths)
        if (const fs::path candidate = fs::path(directory) / path; exists(candidate))
            return candidate.string();
    if (network && !network->getFileName().empty())
        if (const fs::path candidate = fs::path(network->getFileName()).parent_path() / path;
            exists(candidate))
            return candidate.string();
    return {};
}

}  // namespace

void SubNetwork::SwapContent(SubNetwork& other) {
    std::swap(m_TerrainElement, other.m_TerrainElement);
    std::swap(m_RollingSurfaceElement, other.m_RollingSurfaceElement);
    std::swap(m_PhysicalSurfaceElement, other.m_PhysicalSurfaceElement);
    std::swap(m_Materials, other.m_Materials);
    std::swap(m_Grounds, other.m_Grounds);
    std::swap(m_Markings, other.m_Markings);
    std::swap(m_Profiles, other.m_Profiles);
    std::swap(m_Intersections, other.m_Intersections);
    std::swap(m_Tracks, other.m_Tracks);
    std::swap(m_JunctionTracks, other.m_JunctionTracks);
    std::swap(m_junctionTracks, other.m_junctionTracks);
    std::swap(m_TrafficLightGroups, other.m_TrafficLightGroups);
    std::swap(m_TrajectoryParts, other.m_TrajectoryParts);
    std::swap(m_Trajectories, other.m_Trajectories);
    std::swap(m_ParkingSpots, other.m_ParkingSpots);
    std::swap(m_Zones, other.m_Zones);
    std::swap(m_EntitiesGenerations, other.m_EntitiesGenerations);
    std::swap(m_ClippedDatas, other.m_ClippedDatas);
    std::swap(m_MarkClippedData, other.m_MarkClippedData);
    std::swap(m_RailNetwork, other.m_RailNetwork);
    std::swap(m_PedestrianNetwork, other.m_PedestrianNetwork);
    std::swap(m_GeneratedTerrainMaterialElement, other.m_GeneratedTerrainMaterialElement);
}

bool SubNetwork::IsProxy() const {
    return m_ProxyFileElement && !m_ProxyFileElement->GetFilePath().empty();
}

void SubNetwork::SetProxyFile(ExternalElement* file) {
    m_ProxyFileElement = file;
}

std::string SubNetwork::GetProxyFilePath() const {
    return m_ProxyFileElement ? m_ProxyFileElement->GetFilePath() : std::string();
}

void SubNetwork::SetProxyFilePath(const std::string& path) {
    m_ProxyFileElement = path.empty() ? nullptr : new ExternalElement("ProxyFile", path);
}

bool SubNetwork::LoadProxy(const std::vector<std::string>& searchPaths) {
    if (!IsProxy()) return false;
    const std::string path = FindFile(GetProxyFilePath(), searchPaths, m_network);
    if (path.empty()) return false;
    Init(Ruvex::Encoding::GetMode());
    Ruvex::CountedPtr<Ruvex::Element> root(Ruvex::Load(path.c_str(), false));
    auto* file = dynamic_cast<SubNetwork*>(root.Get());
    if (!file) return false;
    if (m_proxyLoaded) UnloadProxy();
    SwapContent(*file);
    MakeNamesUnique();
    PostLoad(m_network, searchPaths);
    m_proxyLoaded = true;
    m_proxyLoadedFrom = path;
    return true;
}

bool SubNetwork::LoadProxyAndMakeAbsolutPaths(const std::vector<std::string>& searchPaths) {
    if (!LoadProxy(searchPaths)) return false;
    std::vector<std::string> directories = searchPaths;
    // The file was found: its own directory resolves the proxy path whatever the search list holds.
    directories.insert(directories.begin(), std::filesystem::path(m_proxyLoadedFrom).parent_path().string());
    PathModeVisitor(PathModeVisitor::eAbsolute, directories).Apply(this);
    return true;
}

void SubNetwork::UnloadProxy() {
    if (m_network)
        for (size_t j = 0; j < m_network->GetSubNetworkJunctionCount(); ++j)
            if (SubNetworkJunction* junction = m_network->GetSubNetworkJunction(j))
                for (size_t e = 0; e < junction->GetSubNetworkExitCount(); ++e)
                    if (SubNetworkExit* exit = junction->GetSubNetworkExit(e);
                        exit && exit->GetTrack() && exit->GetTrack()->GetSubNetwork() == this)
                        exit->SetTrack(nullptr);
    SubNetwork dropped;
    SwapContent(dropped);
    m_proxyLoaded = false;
    m_proxyLoadedFrom.clear();
}

bool SubNetwork::SaveProxy() {
    if (!IsProxy()) return false;
    const std::string path = m_proxyLoadedFrom.empty() ? GetProxyFilePath() : m_proxyLoadedFrom;
    Ruvex::CountedPtr<SubNetwork> file(new SubNetwork);
    file->SetName(GetName());
    SwapContent(*file);
    const bool saved = Ruvex::Save(file.Get(), path.c_str());
    SwapContent(*file);
    return saved;
}

Ruvex::IDOMElement* SubNetwork::BuildXMLElement(Ruvex::IDOMParser* parser) {
    if (!m_proxyLoaded) return SubNetworkElement::BuildXMLElement(parser);
    SubNetwork content;
    SwapContent(content);
    Ruvex::IDOMElement* element = SubNetworkElement::BuildXMLElement(parser);
    SwapContent(content);
    return element;
}

}  // namespace Orvia

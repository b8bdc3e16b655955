#include <orvia/topology/track.h>

#include <orvia/core/network.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>

#include <algorithm>

namespace Orvia {

Track::Track() = default;

Track::Track(SubNetwork* subNetwork) : m_subNetwork(subNetwork) {}

Track::~Track() = default;

Network* Track::GetNetwork() const {
    return m_subNetwork ? m_subNetwork->GetNetwork() : nullptr;
}

void Track::SetName(const std::string& name) {
    if (name == m_name) return;
    if (Network* network = GetNetwork()) {
        const std::string& subNetworkName = m_subNetwork->GetName();
        for (uint64_t roadIndex : m_inRoad) {
            Road* road = network->GetRoad(roadIndex);
            if (!road) continue;
            for (size_t i = 0; i < road->GetRoadPieceCount(); ++i) {
                RoadPiece* piece = road->GetRoadPiece(i);
                if (piece && piece->GetSubNetworkName() == subNetworkName && piece->GetTrackName() == m_name)
                    piece->SetTrackName(name);
            }
        }
    }
    TrackElement::SetName(name);
}

void Track::SetStartIntersection(Intersection* intersection) {
    m_startIntersection = intersection;
    m_StartIntersectionName = intersection ? intersection->GetName() : std::string();
}

void Track::SetEndIntersection(Intersection* intersection) {
    m_endIntersection = intersection;
    m_EndIntersectionName = intersection ? intersection->GetName() : std::string();
}

SubNetworkJunction* Track::GetStartSubNetworkJunction() const {
    Network* network = GetNetwork();
    return network ? network->GetSubNetworkJunction(this, true) : nullptr;
}

SubNetworkJunction* Track::GetEndSubNetworkJunction() const {
    Network* network = GetNetwork();
    return network ? network->GetSubNetworkJunction(this, false) : nullptr;
}

TrackConnector* Track::FindStartNode() const {
    if (m_startIntersection) return m_startIntersection;
    return GetStartSubNetworkJunction();
}

TrackConnector* Track::FindEndNode() const {
    if (m_endIntersection) return m_endIntersection;
    return GetEndSubNetworkJunction();
}

void Track::AddRoad(uint64_t roadIndex) {
    if (std::find(m_inRoad.begin(), m_inRoad.end(), roadIndex) == m_inRoad.end())
        m_inRoad.push_back(roadIndex);
}

void Track::RemoveRoad(uint64_t roadIndex) {
    std::erase(m_inRoad, roadIndex);
}

void Track::ReplaceRoad(uint64_t oldIndex, uint64_t newIndex) {
    auto it = std::find(m_inRoad.begin(), m_inRoad.end(), oldIndex);
    if (it != m_inRoad.end()) *it = newIndex;
}

Road* Track::GetInRoad(size_t i) const {
    Network* network = GetNetwork();
    return network && i < m_inRoad.size() ? network->GetRoad(m_inRoad[i]) : nullptr;
}

vek::Box3 Track::GetBoundingBox() const {
    return vek::Box3();
}

void Track::PostLoad(SubNetwork* subNetwork) {
    m_subNetwork = subNetwork;
    m_inRoad.clear();
    m_startIntersection = nullptr;
    m_endIntersection = nullptr;
    if (!subNetwork) return;
    // An empty name is a free end, whatever an unnamed intersection may exist.
    if (!m_StartIntersectionName.empty())
        if (Intersection* start = subNetwork->GetIntersectionByName(m_StartIntersectionName))
            SetStartIntersection(start);
    if (!m_EndIntersectionName.empty())
        if (Intersection* end = subNetwork->GetIntersectionByName(m_EndIntersectionName))
            SetEndIntersection(end);
}

bool Track::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    if (TrackElement::LoadChild(child, parser)) return true;
    return TryToLoadElement(child, parser);
}

Ruvex::IDOMElement* Track::BuildXMLElement(Ruvex::IDOMParser* parser) {
    Ruvex::IDOMElement* element = TrackElement::BuildXMLElement(parser);
    if (element) ToElement(element, parser);
    return element;
}

}  // namespace Orvia

#include <orvia/topology/connector.h>

#include <orvia/core/network.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <algorithm>

namespace Orvia {

// ---- TrackConnector

Network* TrackConnector::GetNetwork() const {
    if (m_network) return m_network;
    return m_subNetwork ? m_subNetwork->GetNetwork() : nullptr;
}

const vek::Vector3& TrackConnector::GetPosition() const {
    return GetAsConnectionElement()->GetPosition();
}

void TrackConnector::SetPosition(const vek::Vector3& position) {
    GetAsConnectionElement()->SetPosition(position);
}

const std::string& TrackConnector::GetConnectorName() const {
    return GetAsConnectionElement()->GetName();
}

// ---- SubNetworkExit

const std::string SubNetworkExit::kStart = "start";
const std::string SubNetworkExit::kEnd = "end";

SubNetworkExit::SubNetworkExit() = default;

SubNetworkExit::SubNetworkExit(Track* track, bool atStart) : m_track(track), m_atStart(atStart) {
    if (track) m_subNetwork = track->GetSubNetwork();
    UpdateNames();
}

SubNetworkExit::~SubNetworkExit() = default;

Track* SubNetworkExit::GetTrack() const {
    return m_track.Get();
}

void SubNetworkExit::SetTrack(Track* track) {
    m_track = track;
}

void SubNetworkExit::UpdateNames() {
    if (m_subNetwork) m_SubNetworkName = m_subNetwork->GetName();
    if (m_track) m_TrackName = m_track->GetName();
    m_Extremity = m_atStart ? kStart : kEnd;
}

bool SubNetworkExit::PostLoad(Network* network) {
    SubNetwork* subNetwork = network ? network->GetSubNetworkByName(m_SubNetworkName.c_str()) : nullptr;
    if (!subNetwork) return false;
    m_subNetwork = subNetwork;
    Track* track = subNetwork->GetTrackByName(m_TrackName);
    if (!track) return false;
    m_track = track;
    m_atStart = m_Extremity == kStart;
    return true;
}

// ---- SubNetworkJunction

SubNetworkJunction::SubNetworkJunction() = default;

SubNetworkJunction::SubNetworkJunction(Network* network) {
    m_network = network;
}

SubNetworkJunction::~SubNetworkJunction() = default;

SubNetworkExit* SubNetworkJunction::GetSubNetworkExit(size_t index) const {
    return index < m_Exits.size() ? dynamic_cast<SubNetworkExit*>(m_Exits[index].Get()) : nullptr;
}

SubNetworkExit* SubNetworkJunction::GetSubNetworkExit(const Track* track, bool atStart) const {
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        SubNetworkExit* exit = GetSubNetworkExit(i);
        if (exit && exit->GetTrack() == track && exit->IsAtStart() == atStart) return exit;
    }
    return nullptr;
}

void SubNetworkJunction::AddExit(SubNetworkExit* exit) {
    if (exit) m_Exits.push_back(Ruvex::CountedPtr<Ruvex::SubNetworkExitElement>(exit));
}

void SubNetworkJunction::RemoveExit(const Track* track) {
    std::erase_if(m_Exits, [track](const Ruvex::CountedPtr<Ruvex::SubNetworkExitElement>& e) {
        auto* exit = dynamic_cast<const SubNetworkExit*>(e.Get());
        return exit && exit->GetTrack() == track;
    });
}

void SubNetworkJunction::ReplaceTrack(const Track* oldTrack, Track* newTrack) {
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        SubNetworkExit* exit = GetSubNetworkExit(i);
        if (!exit || exit->GetTrack() != oldTrack) continue;
        exit->SetTrack(newTrack);
        if (newTrack) exit->SetSubNetwork(newTrack->GetSubNetwork());
        exit->UpdateNames();
    }
}

bool SubNetworkJunction::ConnectsSubNetwork(const SubNetwork* subNetwork) const {
    if (!subNetwork) return false;
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        const SubNetworkExit* exit = GetSubNetworkExit(i);
        if (!exit) continue;
        if (exit->GetSubNetwork() == subNetwork) return true;
        if (!exit->GetSubNetwork() && exit->GetSubNetworkName() == subNetwork->GetName()) return true;
    }
    return false;
}

void SubNetworkJunction::UpdateNames() {
    for (size_t i = 0; i < m_Exits.size(); ++i)
        if (SubNetworkExit* exit = GetSubNetworkExit(i)) exit->UpdateNames();
}

bool SubNetworkJunction::PostLoad(Network* network) {
    SetInNetwork(network);
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        SubNetworkExit* exit = GetSubNetworkExit(i);
        if (!exit || !exit->PostLoad(network)) return false;
    }
    return true;
}

}  // namespace Orvia

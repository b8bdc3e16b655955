#include <orvia/topology/link.h>

namespace Orvia {

LinkTrajectory::LinkTrajectory(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to,
                               Track* way, bool degenerated)
    : m_from(from), m_to(to), m_way(way), m_degenerated(degenerated) {}

LinkTrajectory::~LinkTrajectory() = default;

Link::Link(bool isExplicit) : m_explicit(isExplicit) {}

Link::Link(const Link& other) = default;

Link::~Link() = default;

Ruvex::LanePairElement* Link::getLanePair(size_t index) const {
    return index < m_LanePairs.size() ? m_LanePairs[index].Get() : nullptr;
}

LanePair* Link::addLanePair(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to,
                            bool trajectory) {
    auto* pair = new LanePair(m_subNetwork);
    pair->SetFrom(from);
    pair->SetTo(to);
    m_LanePairs.emplace_back(pair);
    if (trajectory)
        setLinkTrajectory(m_LanePairs.size() - 1, new LinkTrajectory(from, to, m_way.Get(), m_degenerated));
    return pair;
}

void Link::SetInSubNetwork(SubNetwork* subNetwork) {
    m_subNetwork = subNetwork;
    for (const auto& pair : m_LanePairs)
        if (auto* runtime = dynamic_cast<LanePair*>(pair.Get())) runtime->SetInSubNetwork(subNetwork);
}

LinkTrajectory* Link::getLinkTrajectory(size_t index) const {
    return index < m_trajectories.size() ? m_trajectories[index].Get() : nullptr;
}

void Link::setLinkTrajectory(size_t index, LinkTrajectory* trajectory) {
    if (index >= m_LanePairs.size()) return;
    if (m_trajectories.size() <= index) m_trajectories.resize(index + 1);
    m_trajectories[index] = trajectory;
}

}  // namespace Orvia

#include <orvia/topology/link.h>

#include <cstddef>

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

LanePair* Link::addLanePair(const LanePair* pair, bool trajectory) {
    if (!pair) return nullptr;
    auto* copy = new LanePair(m_subNetwork);
    copy->CopyFrom(pair);
    copy->SetInSubNetwork(m_subNetwork);
    m_LanePairs.emplace_back(copy);
    if (trajectory) {
        LaneOnIntersectionData from;
        LaneOnIntersectionData to;
        copy->GetFrom(from);
        copy->GetTo(to);
        setLinkTrajectory(m_LanePairs.size() - 1, new LinkTrajectory(from, to, m_way.Get(), m_degenerated));
    }
    return copy;
}

void Link::addLanePairElement(Ruvex::LanePairElement* pair) {
    if (pair) m_LanePairs.emplace_back(pair);
}

bool Link::removeLanePair(size_t index) {
    if (index >= m_LanePairs.size()) return false;
    m_LanePairs.erase(m_LanePairs.begin() + static_cast<std::ptrdiff_t>(index));
    if (index < m_trajectories.size())
        m_trajectories.erase(m_trajectories.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

namespace {

// A side given by track name matches only with a lane name too; an empty track name matches any pair.
bool SideMatches(const std::string& pairTrack, const std::string& pairLane, bool pairAtEnd,
                 const std::string& track, const std::string& lane, uint64_t extremity) {
    if (extremity != Link::kAnyExtremity && extremity != (pairAtEnd ? Link::kTrackEnd : Link::kTrackStart))
        return false;
    if (track.empty()) return true;
    return !lane.empty() && track == pairTrack && lane == pairLane;
}

bool Matches(const Ruvex::LanePairElement& pair, const std::string& fromTrack, const std::string& fromLane,
             uint64_t fromExtremity, const std::string& toTrack, const std::string& toLane,
             uint64_t toExtremity) {
    return SideMatches(pair.GetFromTrack(), pair.GetFromLane(), pair.GetFromTrackBoundInfo() == "end",
                       fromTrack, fromLane, fromExtremity) &&
           SideMatches(pair.GetToTrack(), pair.GetToLane(), pair.GetToTrackBoundInfo() == "end", toTrack,
                       toLane, toExtremity);
}

}  // namespace

void Link::getLinkPairsIndexes(const std::string& fromTrack, const std::string& fromLane,
                               const std::string& toTrack, const std::string& toLane,
                               std::vector<size_t>& out, uint64_t fromExtremity, uint64_t toExtremity) const {
    out.clear();
    for (size_t i = 0; i < m_LanePairs.size(); ++i)
        if (m_LanePairs[i] &&
            Matches(*m_LanePairs[i], fromTrack, fromLane, fromExtremity, toTrack, toLane, toExtremity))
            out.push_back(i);
}

void Link::getLinkTrajectories(const std::string& fromTrack, const std::string& fromLane,
                               const std::string& toTrack, const std::string& toLane,
                               std::vector<LinkTrajectory*>& out) const {
    getLinkTrajectories(fromTrack, fromLane, kAnyExtremity, toTrack, toLane, kAnyExtremity, out);
}

void Link::getLinkTrajectories(const std::string& fromTrack, const std::string& fromLane,
                               uint64_t fromExtremity, const std::string& toTrack, const std::string& toLane,
                               uint64_t toExtremity, std::vector<LinkTrajectory*>& out) const {
    out.clear();
    for (size_t i = 0; i < m_LanePairs.size() && i < m_trajectories.size(); ++i)
        if (m_trajectories[i] && m_LanePairs[i] &&
            Matches(*m_LanePairs[i], fromTrack, fromLane, fromExtremity, toTrack, toLane, toExtremity))
            out.push_back(m_trajectories[i].Get());
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

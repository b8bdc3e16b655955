#include <orvia/topology/lane_pair.h>

#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <charconv>
#include <cstring>

namespace Orvia {

const std::string LanePair::kStart = "start";
const std::string LanePair::kEnd = "end";

Lane* LaneOnIntersectionData::GetLane(Network* network) const {
    if (!network || subNetworkIndex >= network->GetSubNetworkCount()) return nullptr;
    SubNetwork* subNetwork = network->GetSubNetwork(static_cast<size_t>(subNetworkIndex));
    Track* track = subNetwork ? subNetwork->GetTrackByName(trackName) : nullptr;
    if (!track) return nullptr;
    Portion* portion = atTrackEnd ? track->GetLastPortion() : track->GetFirstPortion();
    if (!portion) return nullptr;
    Profile* profile = atTrackEnd ? portion->GetEndProfile() : portion->GetStartProfile();
    return profile ? profile->GetLaneByName(laneName.c_str()) : nullptr;
}

std::string_view LaneOnIntersectionData::WriteKey(char* buffer, size_t size) const {
    char index[24];
    const auto [end, error] = std::to_chars(index, index + sizeof index, subNetworkIndex);
    const size_t indexSize = static_cast<size_t>(end - index);
    const size_t total = indexSize + 1 + trackName.size() + 3 + laneName.size();
    if (error != std::errc() || total > size) return {};
    char* out = buffer;
    auto put = [&out](const char* text, size_t n) {
        std::memcpy(out, text, n);
        out += n;
    };
    put(index, indexSize);
    *out++ = '#';
    put(trackName.data(), trackName.size());
    *out++ = '#';
    *out++ = atTrackEnd ? '1' : '0';
    *out++ = '#';
    put(laneName.data(), laneName.size());
    return {buffer, total};
}

std::string LaneOnIntersectionData::GetKey() const {
    std::string key(24 + trackName.size() + laneName.size(), '\0');
    key.resize(WriteKey(key.data(), key.size()).size());
    return key;
}

LanePair::LanePair(SubNetwork* subNetwork) : m_subNetwork(subNetwork) {}

LanePair::~LanePair() = default;

void LanePair::SetFrom(const LaneOnIntersectionData& from) {
    m_FromTrack = from.trackName;
    SetFromTrackEnd(from.atTrackEnd);
    m_FromLane = from.laneName;
}

void LanePair::SetTo(const LaneOnIntersectionData& to) {
    m_ToTrack = to.trackName;
    SetToTrackEnd(to.atTrackEnd);
    m_ToLane = to.laneName;
}

void LanePair::GetFrom(LaneOnIntersectionData& from) const {
    LaneOnIntersectionData to;
    ReadRecords(*this, m_subNetwork, from, to);
}

void LanePair::GetTo(LaneOnIntersectionData& to) const {
    LaneOnIntersectionData from;
    ReadRecords(*this, m_subNetwork, from, to);
}

void LanePair::CopyFrom(const LanePair* other) {
    if (!other || other == this) return;
    static_cast<Ruvex::LanePairElement&>(*this) = *other;
    m_subNetwork = other->m_subNetwork;
}

void LanePair::ReadRecords(const Ruvex::LanePairElement& pair, const SubNetwork* subNetwork,
                           LaneOnIntersectionData& from, LaneOnIntersectionData& to) {
    const size_t index = subNetwork ? subNetwork->GetIndexInNetwork() : SubNetwork::npos;
    from.trackName = pair.GetFromTrack();
    from.atTrackEnd = pair.GetFromTrackBoundInfo() == kEnd;
    from.laneName = pair.GetFromLane();
    from.subNetworkIndex = index;
    to.trackName = pair.GetToTrack();
    to.atTrackEnd = pair.GetToTrackBoundInfo() == kEnd;
    to.laneName = pair.GetToLane();
    to.subNetworkIndex = index;
}

}  // namespace Orvia

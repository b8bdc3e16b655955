#include <orvia/topology/lane_key.h>

#include <orvia/topology/sub_network.h>

#include <charconv>
#include <cstring>

namespace Orvia {

std::string_view WriteLaneKey(const LaneOnIntersectionData& lane, char* buffer, size_t size) {
    char index[24];
    const auto [end, error] = std::to_chars(index, index + sizeof index, lane.subNetworkIndex);
    const size_t indexSize = static_cast<size_t>(end - index);
    const size_t total = indexSize + 1 + lane.trackName.size() + 3 + lane.laneName.size();
    if (error != std::errc() || total > size) return {};
    char* out = buffer;
    auto put = [&out](const char* text, size_t n) {
        if (n) std::memcpy(out, text, n);
        out += n;
    };
    put(index, indexSize);
    *out++ = '#';
    put(lane.trackName.data(), lane.trackName.size());
    *out++ = '#';
    *out++ = lane.atTrackEnd ? '1' : '0';
    *out++ = '#';
    put(lane.laneName.data(), lane.laneName.size());
    return {buffer, total};
}

std::string GetLaneKey(const LaneOnIntersectionData& lane) {
    std::string key(24 + lane.trackName.size() + lane.laneName.size(), '\0');
    key.resize(WriteLaneKey(lane, key.data(), key.size()).size());
    return key;
}

void ReadLanePairRecords(const Ruvex::LanePairElement& pair, const SubNetwork* subNetwork,
                         LaneOnIntersectionData& from, LaneOnIntersectionData& to) {
    const size_t index = subNetwork ? subNetwork->GetIndexInNetwork() : SubNetwork::npos;
    const uint64_t record = index == SubNetwork::npos ? LaneOnIntersectionData::kNoSubNetwork : index;
    from = LaneOnIntersectionData(pair.GetFromTrack(), pair.GetFromTrackBoundInfo() == "end",
                                  pair.GetFromLane(), record);
    to = LaneOnIntersectionData(pair.GetToTrack(), pair.GetToTrackBoundInfo() == "end", pair.GetToLane(),
                                record);
}

}  // namespace Orvia

#pragma once

// Lane ends at an intersection, and the stored from-lane -> to-lane connection between two of them.

#include <orvia/ruvex/elements/traffic.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace Orvia {

class Lane;
class Network;
class SubNetwork;

// One end of one lane at an intersection: the lane of that name in the profile at the track extremity that
// touches the intersection (the last portion's end profile at the track's end, the first portion's start
// profile at its start).
struct LaneOnIntersectionData {
    static constexpr uint64_t kNoSubNetwork = static_cast<uint64_t>(-1);

    std::string trackName;
    bool atTrackEnd = false;
    std::string laneName;
    // Position of the track's sub-network in the network's list; kNoSubNetwork when not listed.
    uint64_t subNetworkIndex = kNoSubNetwork;

    bool operator==(const LaneOnIntersectionData&) const = default;

    // Null when any step is missing: sub-network index, track, portion, profile, lane.
    Lane* GetLane(Network* network) const;
    // "<sub-network index>#<track>#<1 at end, 0 at start>#<lane>": the text lane ends are ordered by.
    std::string GetKey() const;
    // The same text written into `buffer`; the view is empty when it does not fit. No allocation.
    std::string_view WriteKey(char* buffer, size_t size) const;
};

// A from-lane -> to-lane connection as the file stores it: track names, extremity words ("start" / "end")
// and lane names. The sub-network index of both ends is that of the pair's sub-network.
class LanePair : public Ruvex::LanePairElement {
public:
    static const std::string kStart;  // "start"
    static const std::string kEnd;    // "end"

    explicit LanePair(SubNetwork* subNetwork = nullptr);
    ~LanePair() override;

    SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    void SetInSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }

    void SetFrom(const LaneOnIntersectionData& from);
    void GetFrom(LaneOnIntersectionData& from) const;
    void SetTo(const LaneOnIntersectionData& to);
    void GetTo(LaneOnIntersectionData& to) const;
    // Exactly "end"; any other word ("End" included) is the start.
    bool IsFromTrackEnd() const { return m_FromTrackBoundInfo == kEnd; }
    bool IsToTrackEnd() const { return m_ToTrackBoundInfo == kEnd; }
    void SetFromTrackEnd(bool atEnd) { m_FromTrackBoundInfo = atEnd ? kEnd : kStart; }
    void SetToTrackEnd(bool atEnd) { m_ToTrackBoundInfo = atEnd ? kEnd : kStart; }
    // Every field of the record and the sub-network; nothing for null.
    void CopyFrom(const LanePair* other);

    // The records of any stored pair (a plain record included), with the index of `subNetwork`.
    static void ReadRecords(const Ruvex::LanePairElement& pair, const SubNetwork* subNetwork,
                            LaneOnIntersectionData& from, LaneOnIntersectionData& to);

private:
    SubNetwork* m_subNetwork = nullptr;
};

}  // namespace Orvia

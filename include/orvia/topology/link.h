#pragma once

// Links: the lane pairs of an intersection that share one drivable way, and the way each pair follows.

#include <orvia/ruvex/elements/traffic.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/track.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace Orvia {

class SubNetwork;

// The drivable way of one lane pair: a small track from the centre of the from-lane's end to the centre of
// the to-lane's end, run in the direction of travel. Its abscissa starts at the from-lane.
class LinkTrajectory : public Ruvex::CountedObject {
public:
    LinkTrajectory(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to, Track* way,
                   bool degenerated);
    ~LinkTrajectory() override;

    const LaneOnIntersectionData& GetFrom() const { return m_from; }
    const LaneOnIntersectionData& GetTo() const { return m_to; }
    // The way as a track (null when none could be laid); its axis answers GetMark.
    Track* GetWay() const { return m_way.Get(); }
    const Axis* GetAxis() const { return m_way.Get(); }
    // Planar length of the way (m), 0 without one.
    double GetLength() const { return m_way ? m_way->GetXYLength() : 0.0; }
    // The lanes did not meet in a proper corner (straight on, parallel, too close): the way is a plain
    // S or U shape between the two ends.
    bool IsDegenerated() const { return m_degenerated; }

private:
    LaneOnIntersectionData m_from;
    LaneOnIntersectionData m_to;
    Ruvex::CountedPtr<Track> m_way;
    bool m_degenerated = false;
};

// The element record holds the name and the lane pairs; the runtime part the way, one trajectory per pair,
// whether the link was read from the file (explicit) or derived, and the sub-network.
class Link : public Ruvex::LinkElement {
public:
    // Extremity filter of getLinkTrajectories: a lane end at the track's start, at its end, or either.
    static constexpr uint64_t kTrackStart = 0;
    static constexpr uint64_t kTrackEnd = 1;
    static constexpr uint64_t kAnyExtremity = std::numeric_limits<uint64_t>::max();

    explicit Link(bool isExplicit = true);
    Link(const Link& other);
    ~Link() override;

    bool IsExplicit() const { return m_explicit; }

    size_t getLanePairCount() const { return m_LanePairs.size(); }
    // Null out of range.
    Ruvex::LanePairElement* getLanePair(size_t index) const;
    // Appends the pair from -> to (of this link's sub-network); with `trajectory`, the pair follows the
    // link's current way. Returns the new pair.
    LanePair* addLanePair(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to,
                          bool trajectory);
    // Appends a copy of `pair` (nothing for null); with `trajectory`, the copy follows the link's current
    // way.
    LanePair* addLanePair(const LanePair* pair, bool trajectory);
    // Appends the record itself, taking a reference, without a trajectory (nothing for null).
    void addLanePairElement(Ruvex::LanePairElement* pair);
    // Drops pair `index` and its trajectory; later pairs keep theirs. False out of range.
    bool removeLanePair(size_t index);
    // Indexes of the pairs that match, in pair order, into `out` (cleared first). An empty track name
    // matches every pair on its side; a named track needs a named lane, and both must equal the pair's.
    // An extremity other than kAnyExtremity must equal the pair's (kTrackStart, kTrackEnd).
    void getLinkPairsIndexes(const std::string& fromTrack, const std::string& fromLane,
                             const std::string& toTrack, const std::string& toLane, std::vector<size_t>& out,
                             uint64_t fromExtremity = kAnyExtremity,
                             uint64_t toExtremity = kAnyExtremity) const;
    // The trajectories of the matching pairs, in pair order, into `out` (cleared first); pairs without a
    // trajectory add nothing. `out` is the caller's so repeated queries reuse its storage.
    void getLinkTrajectories(const std::string& fromTrack, const std::string& fromLane,
                             const std::string& toTrack, const std::string& toLane,
                             std::vector<LinkTrajectory*>& out) const;
    void getLinkTrajectories(const std::string& fromTrack, const std::string& fromLane,
                             uint64_t fromExtremity, const std::string& toTrack, const std::string& toLane,
                             uint64_t toExtremity, std::vector<LinkTrajectory*>& out) const;
    // The trajectory of pair `index`; null when the pair has none or the index is out of range.
    LinkTrajectory* getLinkTrajectory(size_t index) const;
    // Gives pair `index` its trajectory (nothing out of range).
    void setLinkTrajectory(size_t index, LinkTrajectory* trajectory);

    // The link takes a reference to the way and drops the previous one.
    void setWay(Track* way) { m_way = way; }
    Track* getWay() const { return m_way.Get(); }
    void setIsDegenerated(bool degenerated) { m_degenerated = degenerated; }
    bool IsDegenerated() const { return m_degenerated; }
    void setName(const std::string& name) { SetName(name); }
    SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    // Its lane pairs follow (a pair read from a file knows no sub-network until then).
    void SetInSubNetwork(SubNetwork* subNetwork);

private:
    bool m_explicit = true;
    bool m_degenerated = false;
    SubNetwork* m_subNetwork = nullptr;
    Ruvex::CountedPtr<Track> m_way;
    std::vector<Ruvex::CountedPtr<LinkTrajectory>> m_trajectories;  // by pair index, may be shorter
};

}  // namespace Orvia

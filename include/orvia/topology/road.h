#pragma once

// Roads: named chains of tracks across sub-networks.

#include <orvia/core/user_data.h>
#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/elements/network.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvia {

class Network;
class Track;

// One track of a road, named by sub-network and track; `inverted` when the road runs against the track.
class RoadPiece : public Ruvex::RoadPieceElement, public UserDataContainer {
public:
    RoadPiece();
    RoadPiece(const std::string& subNetworkName, const std::string& trackName, bool inverted = false);
    ~RoadPiece() override;

    // The track of the stored names in `network`, or null when the sub-network or the track is missing.
    Track* GetTrack(const Network* network) const;
    // Fills the names of a piece read from an old file, which named its sub-network and track by their
    // positions in a "Legacy" child; the child is then dropped. Positions out of range leave the names as
    // they are. Nothing happens when the piece names a sub-network but no track.
    void Init(const Network* network);
    bool HasLegacyIndices() const { return static_cast<bool>(m_legacy); }

    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;

private:
    Ruvex::CountedPtr<Ruvex::LegacyElement> m_legacy;
};

// A named, ordered chain of road pieces with a priority level (the maximum value unless set).
class Road : public Ruvex::RoadElement {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    Road();
    ~Road() override;

    // False for files older than 1.4.2, whose roads had another layout (reported to the parser).
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    // Appends `piece` (taking a reference); null is ignored.
    void AddRoadPiece(RoadPiece* piece);
    // False when out of range; the order of the others is kept.
    bool RemoveRoadPiece(size_t index);
    size_t GetRoadPieceCount() const { return m_Pieces.size(); }
    // Null when out of range.
    RoadPiece* GetRoadPiece(size_t index) const;
    // Track of piece `index` in `network`; null for an index out of range or an unresolved piece.
    Track* GetTrack(size_t index, const Network* network) const;
    // Index of the first piece naming both the sub-network and the track, or npos.
    size_t FindRoadPiece(const std::string& subNetworkName, const std::string& trackName) const;

    uint64_t GetPriorityLevel() const { return m_PriorityLevel; }
    void SetPriorityLevel(uint64_t level) { m_PriorityLevel = level; }

    // Initialises each piece (RoadPiece::Init) and registers `roadIndex` with each track the road passes
    // over, once per track; unresolved pieces are skipped.
    void InitTracksData(size_t roadIndex, const Network* network);

    // The pieces, of any road of `network`, a vehicle can drive onto after leaving this road's last piece
    // (Next) or before entering its first (Prev), into `out` (cleared first, each piece once, in road then
    // piece order). The road's extremity is the track's end, or its start when the piece is inverted. A
    // piece continues there when its own opposite extremity lies on the same node (intersection or
    // junction) as the track's other extremity: a next piece must start at the node, a previous one end
    // there. Turning back onto the very same track extremity is not a continuation. Only track topology
    // counts, not lanes or banned links. Nothing for an empty road, an unresolved piece or a free end.
    void PossibleNextRoadPieces(const Network* network, std::vector<RoadPiece*>& out) const;
    void PossiblePrevRoadPieces(const Network* network, std::vector<RoadPiece*>& out) const;
    static void PossibleRoadPieces(const RoadPiece* piece, bool atEnd, const Network* network,
                                   std::vector<RoadPiece*>& out);
};

}  // namespace Orvia

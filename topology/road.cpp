#include <orvia/core/legacy_converter.h>
#include <orvia/topology/road.h>

#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <algorithm>

namespace Orvia {

namespace {

// Roads of older files are laid out differently; their reader is not part of this library.
constexpr uint32_t kFirstRoadLayoutVersion = Ruvex::MakeVersionID(1, 4, 2);
const std::string kLegacyTag = "Legacy";

}  // namespace

// ---- RoadPiece

RoadPiece::RoadPiece() = default;

RoadPiece::RoadPiece(const std::string& subNetworkName, const std::string& trackName, bool inverted) {
    m_SubNetworkName = subNetworkName;
    m_TrackName = trackName;
    m_Inverted = inverted;
}

RoadPiece::~RoadPiece() = default;

Track* RoadPiece::GetTrack(const Network* network) const {
    if (!network) return nullptr;
    SubNetwork* subNetwork = network->GetSubNetworkByName(m_SubNetworkName.c_str());
    return subNetwork ? subNetwork->GetTrackByName(m_TrackName) : nullptr;
}

void RoadPiece::Init(const Network* network) {
    if (!m_SubNetworkName.empty() && m_TrackName.empty()) return;
    if (!m_legacy || !network) return;
    const int64_t subNetworkIndex = m_legacy->GetFirstIndex();
    const int64_t trackIndex = m_legacy->GetSecondIndex();
    if (subNetworkIndex >= 0)
        if (SubNetwork* subNetwork = network->GetSubNetwork(static_cast<size_t>(subNetworkIndex))) {
            m_SubNetworkName = subNetwork->GetName();
            if (trackIndex >= 0)
                if (Track* track = subNetwork->GetTrack(static_cast<size_t>(trackIndex)))
                    m_TrackName = track->GetName();
        }
    m_legacy.Reset();
}

bool RoadPiece::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    if (RoadPieceElement::LoadChild(child, parser)) return true;
    if (child && parser && child->GetTagName() == kLegacyTag) {
        Ruvex::CountedPtr<Ruvex::Element> legacy(Ruvex::CreateElement(kLegacyTag));
        auto* indices = dynamic_cast<Ruvex::LegacyElement*>(legacy.Get());
        if (indices && indices->LoadFromXMLElement(child, parser)) {
            m_legacy = indices;
            return true;
        }
    }
    return TryToLoadElement(child, parser);
}

Ruvex::IDOMElement* RoadPiece::BuildXMLElement(Ruvex::IDOMParser* parser) {
    Ruvex::IDOMElement* element = RoadPieceElement::BuildXMLElement(parser);
    if (!element) return element;
    // Indices that were never resolved are written back for a later reader.
    if (m_legacy)
        if (Ruvex::IDOMElement* legacy = m_legacy->BuildXMLElement(parser)) element->AppendChild(legacy);
    ToElement(element, parser);
    return element;
}

// ---- Road

Road::Road() = default;

Road::~Road() = default;

bool Road::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    if (parser->GetVersion() < kFirstRoadLayoutVersion)
        return QorOldData::DataConverter::LoadRoad(this, element, parser);
    return RoadElement::LoadFromXMLElement(element, parser);
}

void Road::AddRoadPiece(RoadPiece* piece) {
    if (piece) m_Pieces.push_back(Ruvex::CountedPtr<Ruvex::RoadPieceElement>(piece));
}

bool Road::RemoveRoadPiece(size_t index) {
    if (index >= m_Pieces.size()) return false;
    m_Pieces.erase(m_Pieces.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

RoadPiece* Road::GetRoadPiece(size_t index) const {
    return index < m_Pieces.size() ? dynamic_cast<RoadPiece*>(m_Pieces[index].Get()) : nullptr;
}

Track* Road::GetTrack(size_t index, const Network* network) const {
    RoadPiece* piece = GetRoadPiece(index);
    return piece ? piece->GetTrack(network) : nullptr;
}

size_t Road::FindRoadPiece(const std::string& subNetworkName, const std::string& trackName) const {
    for (size_t i = 0; i < m_Pieces.size(); ++i) {
        const Ruvex::RoadPieceElement* piece = m_Pieces[i].Get();
        if (piece && piece->GetSubNetworkName() == subNetworkName && piece->GetTrackName() == trackName)
            return i;
    }
    return npos;
}

void Road::InitTracksData(size_t roadIndex, const Network* network) {
    for (size_t i = 0; i < m_Pieces.size(); ++i) {
        RoadPiece* piece = GetRoadPiece(i);
        if (!piece) continue;
        piece->Init(network);
        if (Track* track = piece->GetTrack(network)) track->AddRoad(roadIndex);
    }
}

void Road::PossibleNextRoadPieces(const Network* network, std::vector<RoadPiece*>& out) const {
    out.clear();
    if (!m_Pieces.empty()) PossibleRoadPieces(GetRoadPiece(m_Pieces.size() - 1), true, network, out);
}

void Road::PossiblePrevRoadPieces(const Network* network, std::vector<RoadPiece*>& out) const {
    out.clear();
    if (!m_Pieces.empty()) PossibleRoadPieces(GetRoadPiece(0), false, network, out);
}

void Road::PossibleRoadPieces(const RoadPiece* piece, bool atEnd, const Network* network,
                              std::vector<RoadPiece*>& out) {
    out.clear();
    Track* track = piece ? piece->GetTrack(network) : nullptr;
    if (!track) return;
    const bool trackEnd = atEnd != piece->GetInverted();
    const TrackConnector* node = trackEnd ? track->FindEndNode() : track->FindStartNode();
    if (!node) return;
    // Scanning the roads rather than the node's arms needs no scratch list.
    for (size_t r = 0; r < network->GetRoadCount(); ++r) {
        const Road* road = network->GetRoad(r);
        if (!road) continue;
        for (size_t i = 0; i < road->GetRoadPieceCount(); ++i) {
            RoadPiece* other = road->GetRoadPiece(i);
            Track* otherTrack = other ? other->GetTrack(network) : nullptr;
            if (!otherTrack) continue;
            // The candidate meets the node at its start side when going on, at its end side when coming in.
            const bool otherTrackEnd = atEnd == other->GetInverted();
            if (otherTrack == track && otherTrackEnd == trackEnd) continue;
            if ((otherTrackEnd ? otherTrack->FindEndNode() : otherTrack->FindStartNode()) != node) continue;
            if (std::find(out.begin(), out.end(), other) == out.end()) out.push_back(other);
        }
    }
}

}  // namespace Orvia

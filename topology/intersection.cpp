#include <orvia/topology/intersection.h>

#include <orvia/core/element_copy.h>
#include <orvia/core/legacy_converter.h>
#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/linear_object.h>
#include <orvia/topology/link.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace Orvia {

namespace {

const std::string kStartWord = "start";
const std::string kEndWord = "end";

const std::string& Word(bool atEnd) {
    return atEnd ? kEndWord : kStartWord;
}

// Field by field, so that checking a candidate against the list allocates nothing.
bool Names(const Ruvex::LanePairElement& pair, const LaneOnIntersectionData& from,
           const LaneOnIntersectionData& to) {
    return pair.GetFromTrack() == from.trackName &&
           (pair.GetFromTrackBoundInfo() == kEndWord) == from.atTrackEnd &&
           pair.GetFromLane() == from.laneName && pair.GetToTrack() == to.trackName &&
           (pair.GetToTrackBoundInfo() == kEndWord) == to.atTrackEnd && pair.GetToLane() == to.laneName;
}

uint64_t IndexOf(const SubNetwork* subNetwork) {
    const Network* network = subNetwork ? subNetwork->GetNetwork() : nullptr;
    if (!network) return LaneOnIntersectionData::kNoSubNetwork;
    const size_t index = network->GetSubNetworkIndex(subNetwork);
    return index == Network::npos ? LaneOnIntersectionData::kNoSubNetwork : index;
}

}  // namespace

// ---- LaneOnIntersectionData

Lane* LaneOnIntersectionData::GetLane(Network* network) const {
    if (!network || subNetworkIndex >= network->GetSubNetworkCount()) return nullptr;
    SubNetwork* subNetwork = network->GetSubNetwork(static_cast<size_t>(subNetworkIndex));
    Track* track = subNetwork ? subNetwork->GetTrackByName(trackName) : nullptr;
    Profile* profile = track ? TrackExtremity(track, atTrackEnd).GetProfile() : nullptr;
    return profile ? profile->GetLaneByName(laneName.c_str()) : nullptr;
}

// ---- LanePair

LanePair::~LanePair() = default;

void LanePair::SetFrom(const LaneOnIntersectionData& from) {
    m_FromTrack = from.trackName;
    m_FromTrackBoundInfo = Word(from.atTrackEnd);
    m_FromLane = from.laneName;
}

void LanePair::GetFrom(LaneOnIntersectionData& from) const {
    from = LaneOnIntersectionData(m_FromTrack, IsFromTrackEnd(), m_FromLane, IndexOf(m_subNetwork));
}

void LanePair::SetTo(const LaneOnIntersectionData& to) {
    m_ToTrack = to.trackName;
    m_ToTrackBoundInfo = Word(to.atTrackEnd);
    m_ToLane = to.laneName;
}

void LanePair::GetTo(LaneOnIntersectionData& to) const {
    to = LaneOnIntersectionData(m_ToTrack, IsToTrackEnd(), m_ToLane, IndexOf(m_subNetwork));
}

void LanePair::SetFromTrackEnd(bool atEnd) {
    m_FromTrackBoundInfo = Word(atEnd);
}

void LanePair::SetToTrackEnd(bool atEnd) {
    m_ToTrackBoundInfo = Word(atEnd);
}

bool LanePair::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    m_line = element->GetLine();
    m_column = element->GetColumn();
    return LanePairElement::LoadFromXMLElement(element, parser);
}

void LanePair::CopyFrom(const LanePair* other) {
    if (!other) return;
    m_FromTrack = other->m_FromTrack;
    m_FromTrackBoundInfo = other->m_FromTrackBoundInfo;
    m_FromLane = other->m_FromLane;
    m_ToTrack = other->m_ToTrack;
    m_ToTrackBoundInfo = other->m_ToTrackBoundInfo;
    m_ToLane = other->m_ToLane;
    m_subNetwork = other->m_subNetwork;
}

// ---- Intersection

Intersection::Intersection() = default;

Intersection::Intersection(SubNetwork* subNetwork) {
    m_subNetwork = subNetwork;
}

Intersection::~Intersection() = default;

void Intersection::GetTracksArroundConnector(std::vector<TrackExtremity>& out, bool sorted) const {
    out.clear();
    if (m_subNetwork) m_subNetwork->GetTracksArroundIntersection(this, out, sorted);
}

void Intersection::SetMaterial(const vek::Material& material) {
    TrackConnector::SetMaterial(material);
}

void Intersection::SetMaterial(Ruvex::MaterialElement* material) {
    TrackConnector::SetMaterial(material);
}

bool Intersection::Validate() {
    if (IsValid()) return true;
    TrackConnector::Validate();
    for (size_t i = 0; i < m_ClippedData.size(); ++i) {
        MarkClippedData* data = GetClippedData(i);
        if (!data) continue;
        // Setting the same sub-network again would not refresh a name changed since.
        if (data->GetInSubNetwork() != m_subNetwork)
            data->SetInSubNetwork(m_subNetwork);
        else
            data->UpdateQualifiedName();
        if (LinearObject* linear = data->GetLinearObject()) linear->SetClippedData(data);
        data->SetParent(this);
    }
    return true;
}

void Intersection::SetInSubNetwork(SubNetwork* subNetwork) {
    TrackConnector::SetInSubNetwork(subNetwork);
    for (size_t i = 0; i < m_BannedLinks.size(); ++i)
        if (LanePair* pair = GetBannedLink(i)) pair->SetInSubNetwork(subNetwork);
}

void Intersection::BuildTrackArrayAroundIntersection(const std::vector<Track*>& tracks,
                                                     std::vector<TrackExtremity>& out) const {
    out.clear();
    if (m_name.empty()) return;
    for (Track* track : tracks) {
        if (!track) continue;
        if (track->GetStartIntersectionName() == m_name) out.emplace_back(track, false);
        if (track->GetEndIntersectionName() == m_name) out.emplace_back(track, true);
    }
}

void Intersection::BuildTrackArrayAroundIntersection(std::vector<TrackExtremity>& out) const {
    out.clear();
    if (!m_subNetwork || m_name.empty()) return;
    for (size_t i = 0; i < m_subNetwork->GetTrackCount(); ++i) {
        Track* track = m_subNetwork->GetTrack(i);
        if (!track) continue;
        if (track->GetStartIntersectionName() == m_name) out.emplace_back(track, false);
        if (track->GetEndIntersectionName() == m_name) out.emplace_back(track, true);
    }
}

void Intersection::BuildOrganizedTrackArrayAroundIntersection(const std::vector<Track*>& tracks,
                                                              std::vector<TrackExtremity>& out,
                                                              std::vector<double>& angles) const {
    BuildTrackArrayAroundIntersection(tracks, out);
    SortTracks(out, angles);
}

size_t Intersection::GetNumberOfDriveableLanes(const TrackExtremity& extremity) const {
    const Profile* profile = extremity.GetProfile();
    if (!profile) return 0;
    size_t count = 0;
    for (size_t i = 0; i < profile->GetLaneCount(); ++i)
        if (IsDriveableLane(profile->GetLane(i))) ++count;
    return count;
}

bool Intersection::IsDriveableLane(const Lane* lane) {
    if (!lane) return false;
    const LaneType type = lane->GetLaneType();
    const bool driveableType = (type <= eLanePavedRoundabout) || type == eLaneEmergency ||
                               type == eLaneParking || type == eLaneZebra || type == eLanePavedMajor;
    // A lane with no way, or open both ways (or an unknown way, all bits set), carries no directed traffic.
    const uint32_t way = lane->GetCirculationWay();
    const bool directed = way != eWayNone && (way & eWayBoth) != eWayBoth;
    return driveableType && directed && lane->GetHorWidth() > kMinDriveableWidth;
}

void Intersection::ComputeAllConnections(std::vector<LaneConnection>& out) const {
    out.clear();
    std::vector<TrackExtremity> extremities;
    BuildTrackArrayAroundIntersection(extremities);
    const uint64_t subNetworkIndex = IndexOf(m_subNetwork);
    // Every lane end once, with the lane its record finds: each pair then tests without a lookup.
    struct LaneEnd {
        LaneOnIntersectionData data;
        Lane* found;
    };
    std::vector<LaneEnd> ends;
    for (const TrackExtremity& a : extremities) {
        const Profile* profile = a.GetProfile();
        if (!profile) continue;
        for (size_t i = 0; i < profile->GetLaneCount(); ++i) {
            const Lane* lane = profile->GetLane(i);
            if (!lane) continue;
            LaneOnIntersectionData data(a.GetTrack()->GetName(), a.IsEnd(), lane->GetName(), subNetworkIndex);
            Lane* found = GetLaneFromLaneData(data);
            ends.push_back({std::move(data), found});
        }
    }
    // The arms a sidewalk goes round are these, in turning order.
    std::optional<std::vector<TrackExtremity>> sortedArms(extremities);
    std::vector<double> angles;
    SortTracks(*sortedArms, angles);
    for (const LaneEnd& from : ends)
        for (const LaneEnd& to : ends)
            if (AreCompatibleLanes(from.data, from.found, to.data, to.found, sortedArms))
                out.emplace_back(from.data, to.data);
}

void Intersection::GetNonlinkedLanesPairs(std::vector<LaneConnection>& out) const {
    ComputeAllConnections(out);
    std::erase_if(out, [this](const LaneConnection& pair) {
        if (IsBannedLink(pair.first, pair.second)) return true;
        for (const auto& link : m_Links) {
            if (!link) continue;
            for (const auto& explicitPair : link->GetLanePairs())
                if (explicitPair && Names(*explicitPair, pair.first, pair.second)) return true;
        }
        return false;
    });
}

void Intersection::ComputeAllPassagewaysConnections(std::vector<LaneConnection>& out) const {
    ComputeAllConnections(out);
    std::erase_if(out, [this](const LaneConnection& pair) {
        return !IsDriveableLane(GetLaneFromLaneData(pair.first)) ||
               !IsDriveableLane(GetLaneFromLaneData(pair.second));
    });
}

bool Intersection::ResolveLaneEnd(const LaneOnIntersectionData& lane, TrackExtremity& extremity,
                                  Profile*& profile, size_t& laneIndex) const {
    if (!m_subNetwork || m_name.empty() || lane.subNetworkIndex != IndexOf(m_subNetwork)) return false;
    Track* track = m_subNetwork->GetTrackByName(lane.trackName);
    if (!track) return false;
    const std::string& node =
        lane.atTrackEnd ? track->GetEndIntersectionName() : track->GetStartIntersectionName();
    if (node != m_name) return false;
    extremity = TrackExtremity(track, lane.atTrackEnd);
    profile = extremity.GetProfile();
    if (!profile) return false;
    laneIndex = profile->GetLaneIndex(profile->GetLaneByName(lane.laneName.c_str()));
    return laneIndex != Profile::npos;
}

bool Intersection::IsLaneExtremity(const LaneOnIntersectionData& lane) const {
    TrackExtremity extremity;
    Profile* profile = nullptr;
    size_t index = 0;
    return ResolveLaneEnd(lane, extremity, profile, index);
}

bool Intersection::GetLaneBorder(const LaneOnIntersectionData& lane, bool left, vek::Vector3& point) const {
    TrackExtremity extremity;
    Profile* profile = nullptr;
    size_t index = 0;
    if (!ResolveLaneEnd(lane, extremity, profile, index)) return false;
    Track* track = extremity.GetTrack();
    if (!track->Validate()) return false;
    const Lane* found = profile->GetLane(index);
    const double t = left ? found->GetLeftPositionX() : found->GetRightPositionX();
    return track->GetPosition(point, extremity.IsEnd() ? track->GetXYLength() : 0.0, t);
}

bool Intersection::ComputePositionBankingDirection(const LaneOnIntersectionData& lane, double distance,
                                                   vek::Vector3& position, vek::Vector3& direction,
                                                   double& banking) const {
    TrackExtremity extremity;
    Profile* profile = nullptr;
    size_t index = 0;
    if (!ResolveLaneEnd(lane, extremity, profile, index)) return false;
    Track* track = extremity.GetTrack();
    if (!track->Validate()) return false;
    const double length = track->GetXYLength();
    const double into = std::clamp(distance, 0.0, length);
    const double s = extremity.IsEnd() ? length - into : into;
    if (!track->GetPosition(position, s, profile->GetLane(index)->GetCenterOffset().first) ||
        !track->GetTangent(direction, s))
        return false;
    banking = track->GetBanking(s);
    if (!extremity.IsEnd()) {
        direction = direction * -1.0;
        banking = -banking;
    }
    return true;
}

bool Intersection::GetFollowingDriveableLane(const LaneOnIntersectionData& lane, bool toRight,
                                             LaneOnIntersectionData& following) const {
    TrackExtremity extremity;
    Profile* profile = nullptr;
    size_t index = 0;
    if (!ResolveLaneEnd(lane, extremity, profile, index)) return false;
    const Lane* current = profile->GetLane(index);
    if (!IsDriveableLane(current)) return false;
    // Lanes are listed left to right along the axis; a lane running against it sees them mirrored.
    const bool alongAxis = (current->GetCirculationWay() & eWayDirect) != 0;
    const bool up = alongAxis == toRight;
    if (!up && index == 0) return false;
    const size_t next = up ? index + 1 : index - 1;
    const Lane* neighbour = next < profile->GetLaneCount() ? profile->GetLane(next) : nullptr;
    if (!IsDriveableLane(neighbour)) return false;
    following =
        LaneOnIntersectionData(lane.trackName, lane.atTrackEnd, neighbour->GetName(), lane.subNetworkIndex);
    return true;
}

void Intersection::CreateFollowingLanesPairsFromInitialPair(const LaneConnection& initial,
                                                            std::vector<LaneConnection>& out) const {
    out.clear();
    if (!AreCompatibleLanes(initial.first, initial.second) ||
        !IsDriveableLane(GetLaneFromLaneData(initial.first)) ||
        !IsDriveableLane(GetLaneFromLaneData(initial.second)))
        return;
    for (const bool toRight : {true, false}) {
        LaneConnection pair = initial;
        while (GetFollowingDriveableLane(pair.first, toRight, pair.first) &&
               GetFollowingDriveableLane(pair.second, toRight, pair.second) &&
               AreCompatibleLanes(pair.first, pair.second))
            out.push_back(pair);
    }
}

void Intersection::SortExtremitiesByMainRoad(std::vector<TrackExtremity>& extremities) const {
    std::stable_sort(extremities.begin(), extremities.end(),
                     [this](const TrackExtremity& a, const TrackExtremity& b) {
                         return GetNumberOfDriveableLanes(a) > GetNumberOfDriveableLanes(b);
                     });
}

LanePair* Intersection::GetBannedLink(size_t index) const {
    return index < m_BannedLinks.size() ? dynamic_cast<LanePair*>(m_BannedLinks[index].Get()) : nullptr;
}

LanePair* Intersection::AddBannedLink() {
    auto* pair = new LanePair(m_subNetwork);
    m_BannedLinks.push_back(Ruvex::CountedPtr<Ruvex::LanePairElement>(pair));
    return pair;
}

bool Intersection::IsBannedLink(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to) const {
    const uint64_t subNetworkIndex = IndexOf(m_subNetwork);
    if (from.subNetworkIndex != subNetworkIndex || to.subNetworkIndex != subNetworkIndex) return false;
    for (const auto& pair : m_BannedLinks)
        if (pair && Names(*pair, from, to)) return true;
    return false;
}

bool Intersection::BanLink(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to) {
    if (IsBannedLink(from, to)) return false;
    LanePair* pair = AddBannedLink();
    pair->SetFrom(from);
    pair->SetTo(to);
    return true;
}

bool Intersection::AllowLink(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to) {
    return std::erase_if(m_BannedLinks, [&](const Ruvex::CountedPtr<Ruvex::LanePairElement>& pair) {
               return pair && Names(*pair, from, to);
           }) > 0;
}

void Intersection::BanAllLinks() {
    std::vector<LaneConnection> all;
    ComputeAllConnections(all);
    for (const auto& [from, to] : all)
        BanLink(from, to);
}

void Intersection::UpdateBannedTrackSelfLinks(Track* track, bool atEnd, bool remove) {
    if (!track) return;
    const std::string& name = track->GetName();
    if (remove) {
        std::erase_if(m_BannedLinks, [&](const Ruvex::CountedPtr<Ruvex::LanePairElement>& pair) {
            return pair && pair->GetFromTrack() == name && pair->GetToTrack() == name &&
                   (pair->GetFromTrackBoundInfo() == kEndWord) == atEnd &&
                   (pair->GetToTrackBoundInfo() == kEndWord) == atEnd;
        });
        return;
    }
    const Profile* profile = TrackExtremity(track, atEnd).GetProfile();
    if (!profile) return;
    const uint64_t subNetworkIndex = IndexOf(track->GetSubNetwork());
    for (size_t i = 0; i < profile->GetLaneCount(); ++i) {
        Lane* from = profile->GetLane(i);
        if (!from || !from->IsSuitableForVehicleType()) continue;
        for (size_t j = 0; j < profile->GetLaneCount(); ++j) {
            Lane* to = profile->GetLane(j);
            if (i == j || !to || !from->IsCompatibleWith(to)) continue;
            const LaneOnIntersectionData fromData(name, atEnd, from->GetName(), subNetworkIndex);
            const LaneOnIntersectionData toData(name, atEnd, to->GetName(), subNetworkIndex);
            // Field comparison, not BanLink: the records may name another sub-network than ours.
            bool present = false;
            for (const auto& pair : m_BannedLinks)
                if (pair && Names(*pair, fromData, toData)) present = true;
            if (present) continue;
            LanePair* pair = AddBannedLink();
            pair->SetFrom(fromData);
            pair->SetTo(toData);
        }
    }
}

void Intersection::GetRemovedLinksFromTrackRemoval(const Track* track,
                                                   std::vector<LaneConnection>& out) const {
    out.clear();
    if (!track) return;
    const uint64_t subNetworkIndex = IndexOf(m_subNetwork);
    for (const auto& pair : m_BannedLinks) {
        if (!pair || (pair->GetFromTrack() != track->GetName() && pair->GetToTrack() != track->GetName()))
            continue;
        out.emplace_back(
            LaneOnIntersectionData(pair->GetFromTrack(), pair->GetFromTrackBoundInfo() == kEndWord,
                                   pair->GetFromLane(), subNetworkIndex),
            LaneOnIntersectionData(pair->GetToTrack(), pair->GetToTrackBoundInfo() == kEndWord,
                                   pair->GetToLane(), subNetworkIndex));
    }
}

void Intersection::RemoveLinks(const std::vector<LaneConnection>& pairs) {
    for (const auto& [from, to] : pairs)
        AllowLink(from, to);
}

Lane* Intersection::FindLane(size_t trackIndex, size_t laneIndex) const {
    std::vector<TrackExtremity> extremities;
    BuildTrackArrayAroundIntersection(extremities);
    const Profile* profile = trackIndex < extremities.size() ? extremities[trackIndex].GetProfile() : nullptr;
    return profile ? profile->GetLane(laneIndex) : nullptr;
}

bool Intersection::FindTrackAndLaneIndex(const Lane* lane, size_t& trackIndex, size_t& laneIndex) const {
    if (!lane) return false;
    std::vector<TrackExtremity> extremities;
    BuildTrackArrayAroundIntersection(extremities);
    for (size_t i = 0; i < extremities.size(); ++i) {
        const Profile* profile = extremities[i].GetProfile();
        const size_t index = profile ? profile->GetLaneIndex(lane) : Profile::npos;
        if (index == Profile::npos) continue;
        trackIndex = i;
        laneIndex = index;
        return true;
    }
    return false;
}

Link* Intersection::createLink() {
    auto* link = new Link;
    m_Links.push_back(Ruvex::CountedPtr<Ruvex::LinkElement>(link));
    return link;
}

Link* Intersection::getLink(size_t index) const {
    return index < m_Links.size() ? dynamic_cast<Link*>(m_Links[index].Get()) : nullptr;
}

MarkClippedData* Intersection::GetClippedData(size_t index) const {
    return index < m_ClippedData.size() ? dynamic_cast<MarkClippedData*>(m_ClippedData[index].Get())
                                        : nullptr;
}

void Intersection::AddClippedData(MarkClippedData* data) {
    if (data) m_ClippedData.push_back(Ruvex::CountedPtr<Ruvex::MarkClippedDataElement>(data));
}

bool Intersection::RemoveClippedData(size_t first, size_t count) {
    if (first >= m_ClippedData.size()) return false;
    const size_t last = first + std::min(count, m_ClippedData.size() - first);
    m_ClippedData.erase(m_ClippedData.begin() + static_cast<std::ptrdiff_t>(first),
                        m_ClippedData.begin() + static_cast<std::ptrdiff_t>(last));
    return true;
}

size_t Intersection::GetClippedDataIndex(const MarkClippedData* data) const {
    for (size_t i = 0; i < m_ClippedData.size(); ++i)
        if (data && m_ClippedData[i].Get() == static_cast<const Ruvex::MarkClippedDataElement*>(data))
            return i;
    return npos;
}

Intersection* Intersection::Clone() const {
    auto* copy = new Intersection;
    copy->CopyFrom(this);
    return copy;
}

void Intersection::CopyFrom(const Intersection* other) {
    if (!other || other == this) return;
    m_ContourPieces.clear();
    m_BannedLinks.clear();
    m_Links.clear();
    m_ClippedData.clear();
    CopyElementContent(*other, *this);
    // The copied pairs are ours.
    SetInSubNetwork(m_subNetwork);
    Invalidate();
}

void Intersection::SetName(const std::string& name) {
    if (name == m_name) return;
    // Tracks refer to the intersection by name: gather their ends under the old name before it changes.
    std::vector<TrackExtremity> ends;
    BuildTrackArrayAroundIntersection(ends);
    IntersectionElement::SetName(name);
    for (const TrackExtremity& end : ends) {
        if (end.IsEnd())
            end.GetTrack()->SetEndIntersectionName(name);
        else
            end.GetTrack()->SetStartIntersectionName(name);
    }
}

void Intersection::ReplaceTrackName(const std::string& oldName, const std::string& newName) {
    for (const auto& pair : m_BannedLinks) {
        if (!pair) continue;
        if (pair->GetFromTrack() == oldName) pair->SetFromTrack(newName);
        if (pair->GetToTrack() == oldName) pair->SetToTrack(newName);
    }
    for (const auto& piece : m_ContourPieces) {
        if (!piece) continue;
        if (piece->GetStartAnchorTrack() == oldName) piece->SetStartAnchorTrack(newName);
        if (piece->GetEndAnchorTrack() == oldName) piece->SetEndAnchorTrack(newName);
    }
}

std::vector<IntersectionProblem> Intersection::CheckReferences() const {
    std::vector<IntersectionProblem> problems;
    if (!m_subNetwork) return problems;
    const std::string who = "intersection \"" + m_name + "\": ";
    const auto add = [&](std::string message, const Ruvex::Element* at) {
        const auto* pair = dynamic_cast<const LanePair*>(at);
        const bool placed = pair && pair->GetSourceLine() != 0;
        problems.push_back({who + message, placed ? pair->GetSourceLine() : m_line,
                            placed ? pair->GetSourceColumn() : m_column});
    };
    const auto side = [&](const std::string& what, const Ruvex::LanePairElement& pair,
                          const std::string& trackName, const std::string& word,
                          const std::string& laneName) {
        Track* track = m_subNetwork->GetTrackByName(trackName);
        if (!track)
            return add(what + " names the track \"" + trackName + "\", which the sub-network does not have",
                       &pair);
        const bool atEnd = word == kEndWord;
        const std::string& node = atEnd ? track->GetEndIntersectionName() : track->GetStartIntersectionName();
        const std::string extremity =
            std::string(atEnd ? "end" : "start") + " of track \"" + trackName + "\"";
        if (node != m_name) return add(what + " names the " + extremity + ", which does not meet it", &pair);
        const Profile* profile = TrackExtremity(track, atEnd).GetProfile();
        if (!profile || !profile->GetLaneByName(laneName.c_str()))
            add(what + " names the lane \"" + laneName + "\" at the " + extremity +
                    ", which its profile does not have",
                &pair);
    };
    const auto check = [&](const std::string& what, const Ruvex::LanePairElement& pair) {
        side(what, pair, pair.GetFromTrack(), pair.GetFromTrackBoundInfo(), pair.GetFromLane());
        side(what, pair, pair.GetToTrack(), pair.GetToTrackBoundInfo(), pair.GetToLane());
    };
    for (const auto& pair : m_BannedLinks)
        if (pair) check("banned link", *pair);
    for (const auto& link : m_Links) {
        if (!link) continue;
        for (const auto& pair : link->GetLanePairs())
            if (pair) check("link \"" + link->GetName() + "\"", *pair);
    }
    for (size_t k = 0; k < m_ContourPieces.size(); ++k) {
        const Ruvex::ContourPieceElement* piece = m_ContourPieces[k].Get();
        if (!piece) continue;
        for (const std::string* anchor : {&piece->GetStartAnchorTrack(), &piece->GetEndAnchorTrack()})
            if (!m_subNetwork->GetTrackByName(*anchor))
                add("contour piece " + std::to_string(k + 1) + " names the track \"" + *anchor +
                        "\", which the sub-network does not have",
                    nullptr);
    }

    std::vector<TrackExtremity> arms;
    BuildTrackArrayAroundIntersection(arms);
    std::vector<vek::Vector3> points(arms.size());
    std::vector<vek::Vector3> headings(arms.size());
    for (size_t i = 0; i < arms.size(); ++i) {
        Track* track = arms[i].GetTrack();
        track->Validate();
        if (!(track->GetXYLength() > kZeroLength))
            add("track \"" + track->GetName() + "\" meets it with no length", nullptr);
        arms[i].GetPosition(points[i]);
        arms[i].GetDirection(headings[i]);
    }
    for (size_t i = 0; i < arms.size(); ++i)
        for (size_t j = i + 1; j < arms.size(); ++j) {
            if ((points[i] - points[j]).norm() > kSamePoint) continue;
            const double ni = headings[i].norm();
            const double nj = headings[j].norm();
            if (!(ni > 0 && nj > 0) ||
                (headings[i] * (1 / ni) - headings[j] * (1 / nj)).norm() > kSameHeading)
                continue;
            add("tracks \"" + arms[i].GetTrack()->GetName() + "\" and \"" + arms[j].GetTrack()->GetName() +
                    "\" meet it at one point with one heading",
                nullptr);
        }
    return problems;
}

bool Intersection::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    Invalidate();
    m_line = element->GetLine();
    m_column = element->GetColumn();
    if (parser->GetVersion() <= kLegacyVersion)
        return QorOldData::DataConverter::LoadIntersection(this, element, parser);
    return IntersectionElement::LoadFromXMLElement(element, parser);
}

}  // namespace Orvia

#include <orvia/topology/intersection_links.h>

#include <orvia/core/network.h>
#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/polynomial_function.h>
#include <orvia/geometry/profile.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/lane_key.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/vek/transform2d.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Orvia {

namespace {

// How the way runs against the source track at a lane end: +1 along it, -1 against it. The from-lane is
// left in the track's direction at its end; the to-lane is entered in the track's direction at its start.
double WaySign(const LaneOnIntersectionData& lane, bool isFrom) {
    return lane.atTrackEnd == isFrom ? 1.0 : -1.0;
}

bool Finite(const vek::Vector2& v) {
    return std::isfinite(v.x) && std::isfinite(v.y);
}

// The centre of `lane` at the track extremity, and the direction of travel of the way there.
struct LaneEndGeometry {
    vek::Vector2 point;
    vek::Vector2 direction;
    double abscissa = 0;  // on the source track, m
    double offset = 0;    // of the lane centre, m, positive to the right
};

bool ReadLaneEnd(const Track& track, const Lane& lane, const LaneOnIntersectionData& data, bool isFrom,
                 LaneEndGeometry& out) {
    const Curve2D* curve = track.GetXYCurve();
    if (!curve) return false;
    out.abscissa = data.atTrackEnd ? track.GetXYLength() : 0.0;
    out.offset = lane.GetCenterOffset().first;
    PointData sample;
    if (!curve->GetPointData(out.abscissa, out.offset, sample)) return false;
    const double sign = WaySign(data, isFrom);
    out.point = sample.position;
    out.direction = vek::Vector2(sign * std::cos(sample.heading), sign * std::sin(sample.heading));
    return Finite(out.point) && Finite(out.direction) && std::isfinite(out.offset);
}

// Value and slope (per metre along the way) of a longitudinal curve at a lane end.
void ReadLongitudinal(const CartesianCurve* curve, double s, double& value, double& slope) {
    value = 0;
    slope = 0;
    const PolynomialFunction* piece = curve ? curve->GetFunctionAt(s) : nullptr;
    if (!piece) return;
    value = piece->GetValue(s);
    slope = piece->GetDerivative(s);
}

std::string PairText(const LaneOnIntersectionData& from, const LaneOnIntersectionData& to) {
    std::string text;
    text.reserve(16 + from.trackName.size() + from.laneName.size() + to.trackName.size() +
                 to.laneName.size());
    text += std::to_string(from.subNetworkIndex);
    text += '-';
    text += from.trackName;
    text += '-';
    text += from.laneName;
    text += '_';
    text += std::to_string(to.subNetworkIndex);
    text += '-';
    text += to.trackName;
    text += '-';
    text += to.laneName;
    return text;
}

}  // namespace

IntersectionLinksManager::~IntersectionLinksManager() = default;

void IntersectionLinksManager::FillFromIntersection(Intersection* intersection, bool trajectoryFlag) {
    m_trajectoryFlag = trajectoryFlag;
    FillMapWithExplicits(intersection);
    FillMapWithImplicits(intersection);
}

void IntersectionLinksManager::GetExplicitLinks(Intersection* intersection, std::vector<Link*>& out) {
    if (!intersection) return;
    for (const auto& link : intersection->GetLinks())
        if (auto* runtime = dynamic_cast<Link*>(link.Get())) out.push_back(runtime);
}

void IntersectionLinksManager::Enter(Link* link, LinkTrajectory* trajectory,
                                     const LaneOnIntersectionData& from, const LaneOnIntersectionData& to) {
    ToLaneMap& targets = m_map[GetLaneKey(from)];
    // Of two explicit pairs with the same ends, the first is kept.
    targets.try_emplace(GetLaneKey(to), Entry{link, trajectory, to});
}

void IntersectionLinksManager::FillMapWithExplicits(Intersection* intersection) {
    if (!intersection) return;
    std::vector<Link*> links;
    GetExplicitLinks(intersection, links);
    SubNetwork* subNetwork = intersection->GetInSubNetwork();
    Network* network = intersection->GetNetwork();
    // Every name lookup comes before the ways are laid.
    struct Pending {
        Link* link;
        size_t index;
        LaneOnIntersectionData from, to;
        Track* fromTrack;
        Track* toTrack;
        const Lane* fromLane;
        const Lane* toLane;
    };
    std::vector<Pending> pending;
    for (Link* link : links) {
        m_links.emplace_back(link);
        link->SetInSubNetwork(subNetwork);
        for (size_t i = 0; i < link->getLanePairCount(); ++i) {
            const Ruvex::LanePairElement* pair = link->getLanePair(i);
            if (!pair) continue;
            const auto* runtime = dynamic_cast<const LanePair*>(pair);
            Pending item{link, i, {}, {}, nullptr, nullptr, nullptr, nullptr};
            ReadLanePairRecords(*pair, runtime ? runtime->GetInSubNetwork() : subNetwork, item.from, item.to);
            if (m_trajectoryFlag && !link->getLinkTrajectory(i) && subNetwork) {
                item.fromTrack = subNetwork->GetTrackByName(item.from.trackName);
                item.toTrack = subNetwork->GetTrackByName(item.to.trackName);
                item.fromLane = item.from.GetLane(network);
                item.toLane = item.to.GetLane(network);
            }
            pending.push_back(std::move(item));
        }
    }
    for (const Pending& item : pending) {
        if (m_trajectoryFlag && !item.link->getLinkTrajectory(item.index)) {
            m_fromLane = item.fromLane;
            m_toLane = item.toLane;
            item.link->setLinkTrajectory(
                item.index,
                BuildExplicitTrajectory(intersection, item.fromTrack, item.toTrack, item.from, item.to));
        }
        Enter(item.link, item.link->getLinkTrajectory(item.index), item.from, item.to);
    }
    RebuildFollowing();
}

void IntersectionLinksManager::FillMapWithImplicits(Intersection* intersection) {
    if (!intersection) return;
    std::vector<Ruvex::CountedPtr<Link>> links;
    GetImplicitLinks(intersection, links);
    for (const auto& link : links) {
        m_links.emplace_back(link);
        const Ruvex::LanePairElement* pair = link->getLanePair(0);
        if (!pair) continue;
        LaneOnIntersectionData from, to;
        ReadLanePairRecords(*pair, link->GetInSubNetwork(), from, to);
        Enter(link.Get(), link->getLinkTrajectory(0), from, to);
    }
    RebuildFollowing();
}

void IntersectionLinksManager::GetImplicitLinks(Intersection* intersection,
                                                std::vector<Ruvex::CountedPtr<Link>>& out) {
    if (!intersection) return;
    SubNetwork* subNetwork = intersection->GetInSubNetwork();
    Network* network = subNetwork ? subNetwork->GetNetwork() : nullptr;
    std::vector<LaneConnection> pairs;
    intersection->GetNonlinkedLanesPairs(pairs);
    // Every name lookup comes first, before anything is made.
    struct Candidate {
        const LaneConnection* pair;
        Track* fromTrack;
        Track* toTrack;
        const Lane* fromLane;
        const Lane* toLane;
    };
    std::vector<Candidate> candidates;
    for (const LaneConnection& pair : pairs) {
        const auto& [from, to] = pair;
        if (from.trackName == to.trackName && from.atTrackEnd == to.atTrackEnd &&
            from.subNetworkIndex == to.subNetworkIndex)
            continue;
        // The lane-type test is the cheapest, and the tests do not depend on one another: it goes first.
        const Lane* fromLane = from.GetLane(network);
        const Lane* toLane = to.GetLane(network);
        if (!fromLane || !toLane || !fromLane->IsSuitableForVehicleType() ||
            !toLane->IsSuitableForVehicleType())
            continue;
        if (!intersection->AreCompatibleLanes(from, to)) continue;
        if (intersection->IsBannedLink(from, to)) continue;
        candidates.push_back({&pair, subNetwork->GetTrackByName(from.trackName),
                              subNetwork->GetTrackByName(to.trackName), fromLane, toLane});
    }
    const std::string counter = std::to_string(m_links.size());
    m_profiles.clear();
    for (const Candidate& candidate : candidates) {
        const auto& [from, to] = *candidate.pair;
        Track* fromTrack = candidate.fromTrack;
        Track* toTrack = candidate.toTrack;
        m_fromLane = candidate.fromLane;
        m_toLane = candidate.toLane;
        const std::string pairText = PairText(from, to);

        Ruvex::CountedPtr<Link> link(new Link(false));
        link->SetInSubNetwork(subNetwork);
        link->NameUnlisted("link implicit link " + counter + " " + pairText);
        Track* way = subNetwork->CreateTrackInJunction("implicit track " + counter + " " + pairText);
        bool degenerated = true;
        const bool built = BuildTrack(way, intersection, fromTrack, toTrack, from, to, degenerated);
        link->setWay(built ? way : nullptr);
        link->setIsDegenerated(degenerated);
        link->addLanePair(from, to, m_trajectoryFlag);
        out.push_back(link);
    }
    m_profiles.clear();
}

Link* IntersectionLinksManager::GetLink(const LaneOnIntersectionData* from,
                                        const LaneOnIntersectionData* to) const {
    if (!from || !to) return nullptr;
    const ToLaneMap* targets = GetLinksFrom(*from);
    if (!targets) return nullptr;
    const auto it = targets->find(GetLaneKey(*to));
    return it == targets->end() ? nullptr : it->second.link;
}

LinkTrajectory* IntersectionLinksManager::GetLinkTrajectory(const LaneOnIntersectionData* from,
                                                            const LaneOnIntersectionData* to) const {
    if (!from || !to) return nullptr;
    const ToLaneMap* targets = GetLinksFrom(*from);
    if (!targets) return nullptr;
    const auto it = targets->find(GetLaneKey(*to));
    return it == targets->end() ? nullptr : it->second.trajectory;
}

const IntersectionLinksManager::ToLaneMap* IntersectionLinksManager::GetLinksFrom(
    const LaneOnIntersectionData& from) const {
    char buffer[kKeyBuffer];
    std::string_view key = WriteLaneKey(from, buffer, sizeof buffer);
    std::string longKey;
    if (key.empty()) {
        longKey = GetLaneKey(from);
        key = longKey;
    }
    const auto it = m_map.find(key);
    return it == m_map.end() ? nullptr : &it->second;
}

void IntersectionLinksManager::Clear() {
    m_links.clear();
    m_map.clear();
    RebuildFollowing();
}

uint64_t IntersectionLinksManager::HashLaneEnd(const LaneOnIntersectionData& lane) {
    // FNV-1a over the fields.
    uint64_t hash = 14695981039346656037ull;
    auto add = [&hash](const void* data, size_t size) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (size_t i = 0; i < size; ++i)
            hash = (hash ^ bytes[i]) * 1099511628211ull;
    };
    add(&lane.subNetworkIndex, sizeof lane.subNetworkIndex);
    add(lane.trackName.data(), lane.trackName.size());
    const unsigned char end = lane.atTrackEnd ? 1 : 2;
    add(&end, 1);
    add(lane.laneName.data(), lane.laneName.size());
    return hash;
}

void IntersectionLinksManager::RebuildFollowing() {
    m_fromLanes.clear();
    m_fromRecords.clear();
    m_following.clear();
    for (const auto& [key, targets] : m_map) {
        if (targets.empty()) continue;
        const Entry& any = targets.begin()->second;
        // The from-lane end as the entries were made from it.
        LaneOnIntersectionData from;
        if (any.trajectory) {
            from = any.trajectory->GetFrom();
        } else {
            bool found = false;
            for (size_t k = 0; any.link && k < any.link->getLanePairCount() && !found; ++k) {
                const Ruvex::LanePairElement* pair = any.link->getLanePair(k);
                LaneOnIntersectionData to;
                if (pair) ReadLanePairRecords(*pair, any.link->GetInSubNetwork(), from, to);
                found = pair && GetLaneKey(from) == key;
            }
            if (!found) continue;
        }
        m_fromLanes.push_back({HashLaneEnd(from), static_cast<uint32_t>(m_fromRecords.size()),
                               static_cast<uint32_t>(m_following.size()),
                               static_cast<uint32_t>(targets.size())});
        m_fromRecords.push_back(std::move(from));
        for (const auto& [toKey, entry] : targets)
            m_following.push_back(entry);
    }
    std::sort(m_fromLanes.begin(), m_fromLanes.end(),
              [](const FromLane& a, const FromLane& b) { return a.hash < b.hash; });
}

std::span<const IntersectionLinksManager::Entry> IntersectionLinksManager::GetFollowing(
    const LaneOnIntersectionData& from) const {
    const uint64_t hash = HashLaneEnd(from);
    auto it = std::lower_bound(m_fromLanes.begin(), m_fromLanes.end(), hash,
                               [](const FromLane& lane, uint64_t h) { return lane.hash < h; });
    for (; it != m_fromLanes.end() && it->hash == hash; ++it)
        if (m_fromRecords[it->record] == from) return {m_following.data() + it->first, it->count};
    return {};
}

LinkTrajectory* IntersectionLinksManager::BuildExplicitTrajectory(Intersection* intersection,
                                                                  Track* fromTrack, Track* toTrack,
                                                                  const LaneOnIntersectionData& from,
                                                                  const LaneOnIntersectionData& to) {
    SubNetwork* subNetwork = intersection->GetInSubNetwork();
    if (!subNetwork) return nullptr;
    if (!fromTrack || !toTrack || !m_fromLane || !m_toLane)
        return new LinkTrajectory(from, to, nullptr, true);
    Track* way = subNetwork->CreateTrackInJunction("explicit track " + PairText(from, to));
    bool degenerated = true;
    const bool built = BuildTrack(way, intersection, fromTrack, toTrack, from, to, degenerated);
    return new LinkTrajectory(from, to, built ? way : nullptr, degenerated);
}

bool IntersectionLinksManager::BuildTrack(Track* newTrack, Intersection* intersection, Track* fromTrack,
                                          Track* toTrack, const LaneOnIntersectionData& from,
                                          const LaneOnIntersectionData& to, bool& degenerated) {
    degenerated = true;
    if (!newTrack || !fromTrack || !toTrack) return false;
    double fromAbscissa = 0, toAbscissa = 0;
    PolyLineCommonData* plan = BuildXYTrajectoryBetweenLanes(intersection, fromTrack, toTrack, from, to,
                                                             fromAbscissa, toAbscissa, degenerated);
    if (!plan) return false;
    auto* curve = new Curve2D;
    newTrack->SetXYCurve(curve);
    const vek::Vector2 origin = plan->GetStartPosition();
    const double heading = plan->GetStartOrientation();
    curve->AddFunction(plan);
    curve->SetOrigin(origin, heading);
    newTrack->Invalidate();
    if (!newTrack->ValidateAxis()) return false;
    const double length = newTrack->GetXYLength();
    if (!(length > 0) || !std::isfinite(length)) return false;

    // Elevation and banking: cubics joining both lane ends with their values and slopes along the way. The
    // banking is signed by side, so a lane end run against its track reads it negated (its rate of change
    // along the way keeps its sign).
    const Lane* fromLane = m_fromLane;
    const Lane* toLane = m_toLane;
    const double fromSign = WaySign(from, true);
    const double toSign = WaySign(to, false);
    vek::Mark fromMark, toMark;
    const double fromOffset = fromLane ? fromLane->GetCenterOffset().first : 0.0;
    const double toOffset = toLane ? toLane->GetCenterOffset().first : 0.0;
    if (!fromTrack->GetMark(fromMark, fromAbscissa, fromOffset) ||
        !toTrack->GetMark(toMark, toAbscissa, toOffset))
        return false;
    double z0, dz0, z1, dz1, b0, db0, b1, db1;
    ReadLongitudinal(fromTrack->GetSZCurve(), fromAbscissa, z0, dz0);
    ReadLongitudinal(toTrack->GetSZCurve(), toAbscissa, z1, dz1);
    ReadLongitudinal(fromTrack->GetBankingCurve(), fromAbscissa, b0, db0);
    ReadLongitudinal(toTrack->GetBankingCurve(), toAbscissa, b1, db1);
    z0 = fromMark.position.z;
    z1 = toMark.position.z;
    auto* elevation = new CartesianCurve("SZCurve");
    elevation->AddFunction(
        new PolynomialFunction(vek::Vector2(0, z0), fromSign * dz0, vek::Vector2(length, z1), toSign * dz1));
    newTrack->SetSZCurve(elevation);
    auto* banking = new CartesianCurve("BankingCurve");
    banking->AddFunction(
        new PolynomialFunction(vek::Vector2(0, fromSign * b0), db0, vek::Vector2(length, toSign * b1), db1));
    newTrack->SetBankingCurve(banking);

    BuildPortionsAndProfilesToTrack(newTrack, from, to, intersection->GetInSubNetwork());
    // The axis is all a way's queries need; its box is built on the first query that asks for it (sampling
    // the curve for it would cost more than laying the way).
    newTrack->Invalidate();
    return newTrack->ValidateAxis();
}

PolyLineCommonData* IntersectionLinksManager::BuildXYTrajectoryBetweenLanes(
    Intersection* intersection, Track* fromTrack, Track* toTrack, const LaneOnIntersectionData& from,
    const LaneOnIntersectionData& to, double& fromAbscissa, double& toAbscissa, bool& degenerated) {
    degenerated = true;
    (void)intersection;
    const Lane* fromLane = m_fromLane;
    const Lane* toLane = m_toLane;
    LaneEndGeometry a, b;
    if (!fromLane || !toLane || !fromTrack || !toTrack ||
        !ReadLaneEnd(*fromTrack, *fromLane, from, true, a) || !ReadLaneEnd(*toTrack, *toLane, to, false, b))
        return nullptr;
    fromAbscissa = a.abscissa;
    toAbscissa = b.abscissa;

    // The reference length of the corner tests is the chord between the two lane ends.
    const vek::Vector2 chordVector = b.point - a.point;
    const double chord = chordVector.norm();
    if (!(chord >= kMinChord) || !std::isfinite(chord)) return nullptr;

    vek::Vector2 meeting;
    const double det = a.direction.cross(b.direction);
    bool meet = std::fabs(det) > kParallelSine;
    if (meet) {
        meeting = a.point + (chordVector.cross(b.direction) / det) * a.direction;
        meet = Finite(meeting);
    }
    if (meet) {
        const vek::Vector2 in = meeting - a.point;
        const vek::Vector2 out = b.point - meeting;
        const double inLength = in.norm();
        const double outLength = out.norm();
        const bool farEnough = inLength > kMinCornerShare * chord && outLength > kMinCornerShare * chord;
        bool aligned = true;
        if (inLength > 0 && outLength > 0) {
            const double cosine = std::clamp(in.dot(out) / (inLength * outLength), -1.0, 1.0);
            aligned = std::acos(cosine) * 180.0 / std::numbers::pi < kAlignedAngleDeg;
        }
        const bool ahead = in.dot(a.direction) > kAheadTolerance && out.dot(b.direction) > kAheadTolerance;
        degenerated = aligned || !ahead || !farEnough;
    }

    vek::Vector2 handleIn, handleOut;
    if (!degenerated) {
        handleIn = a.point + kCornerHandleShare * (meeting - a.point);
        handleOut = b.point + kCornerHandleShare * (meeting - b.point);
    } else {
        const double handle = chord / kDegeneratedHandleDivisor;
        handleIn = a.point + handle * a.direction;
        handleOut = b.point - handle * b.direction;
    }
    // The control points live in the frame of the from-lane's end; the curve places them back.
    const vek::Transform2D frame(a.point, std::atan2(a.direction.y, a.direction.x));
    const vek::Transform2D toLocal = frame.globalToLocal();
    // Placed before it has points: every change of a piece with points rebuilds its curve.
    auto* polyline = new PolyLine(PolyLine::EType::BezierChain, false);
    polyline->SetStartPosition(a.point);
    polyline->SetStartOrientation(frame.orientation());
    polyline->SetControlPoints(
        {vek::Vector2(0, 0), toLocal.apply(handleIn), toLocal.apply(handleOut), toLocal.apply(b.point)});
    polyline->ComputeNaturalEndTangent();
    return polyline;
}

void IntersectionLinksManager::BuildPortionsAndProfilesToTrack(Track* track,
                                                               const LaneOnIntersectionData& from,
                                                               const LaneOnIntersectionData& to,
                                                               SubNetwork* subNetwork) {
    Portion* portion = track->GetFirstPortion();
    if (!portion) portion = track->AddToPortionList();
    portion->SetEndDistance(track->GetXYLength());
    Profile* start = insertProfile(portion, from, true, subNetwork, nullptr);
    const LaneBorder* startLeft =
        start && start->GetLane(0) ? start->GetLeftLaneBorder(start->GetLane(0)) : nullptr;
    Profile* end =
        insertProfile(portion, to, false, subNetwork, startLeft ? startLeft->GetMarking() : nullptr);
    portion->SetStartProfile(start);
    portion->SetEndProfile(end);
}

Profile* IntersectionLinksManager::insertProfile(Portion* portion, const LaneOnIntersectionData& laneData,
                                                 bool atStart, SubNetwork* subNetwork, Marking* leftMarking) {
    (void)portion;
    const Lane* source = atStart ? m_fromLane : m_toLane;
    if (!source || !subNetwork) return nullptr;
    std::string name = "Profile_" + laneData.laneName + "_" + laneData.trackName;
    // One profile per lane end and role; the end of a way takes the marking of its start, so the key of an
    // end profile also names that marking.
    std::string key = GetLaneKey(laneData);
    key += atStart ? "#in" : "#out#" + std::to_string(reinterpret_cast<uintptr_t>(leftMarking));
    auto found = m_profiles.find(key);
    if (found != m_profiles.end()) return found->second;
    Ruvex::CountedPtr<Profile> profile(new Profile);
    profile->NameUnlisted(name);
    insertLane(profile.Get(), source, laneData.atTrackEnd);
    if (!atStart) {
        if (LaneBorder* left = profile->GetLeftLaneBorder(profile->GetLane(0))) left->SetMarking(leftMarking);
    }
    subNetwork->AddJunctionProfile(profile.Get());
    m_profiles.emplace(std::move(key), profile.Get());
    return profile.Get();
}

void IntersectionLinksManager::insertLane(Profile* profile, const Lane* source, bool atTrackEnd) {
    Lane* lane = profile->AddLane();
    lane->CopyFrom(source);
    // The new profile's single lane is searched without an index.
    lane->NameUnlisted(source->GetName());
    lane->SetCirculationWay(eWayDirect);
    const double halfWidth = -0.5 * (source->GetLeftPositionX() - source->GetRightPositionX());
    lane->SetRightHorDistance(halfWidth, false);
    lane->SetLeftHorDistance(-halfWidth, false);
    // The driver's left is the other border on a lane run against its track.
    const Profile* sourceProfile = source->GetProfile();
    const LaneBorder* left = sourceProfile ? (atTrackEnd ? sourceProfile->GetLeftLaneBorder(source)
                                                         : sourceProfile->GetRightLaneBorder(source))
                                           : nullptr;
    if (LaneBorder* border = profile->GetLeftLaneBorder(lane); border && left)
        border->SetMarking(left->GetMarking());
}

}  // namespace Orvia

#include <orvia/topology/connector.h>

#include <orvia/core/element_copy.h>
#include <orvia/core/network.h>
#include <orvia/core/unique_name.h>
#include <orvia/geometry/point_data.h>
#include <orvia/geometry/profile.h>
#include <orvia/ground/ground.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/vek/math.h>

#include <algorithm>
#include <cmath>

namespace Orvia {

namespace {

Ruvex::MaterialChanelElement* Chanel(const char* tag, const vek::Color& color) {
    auto* chanel = new Ruvex::MaterialChanelElement(tag);
    chanel->SetRed(color.r);
    chanel->SetGreen(color.g);
    chanel->SetBlue(color.b);
    chanel->SetAlpha(color.a);
    return chanel;
}

Ruvex::MaterialElement* ToMaterialElement(const vek::Material& material) {
    auto* element = new Ruvex::MaterialElement;
    element->SetName(material.name);
    element->SetFilePath(material.textureFile);
    element->SetShininess(material.shininess);
    element->SetTransparency(material.transparency);
    element->SetDiffuse(Chanel("Diffuse", material.diffuse));
    element->SetAmbient(Chanel("Ambient", material.ambient));
    element->SetSpecular(Chanel("Specular", material.specular));
    element->SetEmissive(Chanel("Emissive", material.emissive));
    return element;
}

// Same appearance: everything but the name.
bool SameAppearance(const Ruvex::MaterialElement& a, const Ruvex::MaterialElement& b) {
    Ruvex::CountedPtr<Ruvex::MaterialElement> renamed(static_cast<Ruvex::MaterialElement*>(CloneElement(b)));
    if (!renamed) return false;
    renamed->SetName(a.GetName());
    return ElementContentEquals(a, *renamed);
}

// Catmull-Rom point at u in [0, 1] between p1 and p2.
vek::Vector2 CatmullRom(const vek::Vector2& p0, const vek::Vector2& p1, const vek::Vector2& p2,
                        const vek::Vector2& p3, double u) {
    const double u2 = u * u;
    const double u3 = u2 * u;
    return (p1 * 2.0 + (p2 - p0) * u + (p0 * 2.0 - p1 * 5.0 + p2 * 4.0 - p3) * u2 +
            (p1 * 3.0 - p0 - p2 * 3.0 + p3) * u3) *
           0.5;
}

double TurnAngle(const vek::Vector2& from, const vek::Vector2& to) {
    double angle = vek::angleBetweenNormalizedVectors(from, to);
    if (angle < 0) angle += vek::kTwoPi;
    return angle;
}

}  // namespace

// ---- TrackConnector

TrackConnector::~TrackConnector() = default;

Network* TrackConnector::GetNetwork() const {
    if (m_network) return m_network;
    return m_subNetwork ? m_subNetwork->GetNetwork() : nullptr;
}

const vek::Vector3& TrackConnector::GetPosition() const {
    return GetAsConnectionElement()->GetPosition();
}

void TrackConnector::SetPosition(const vek::Vector3& position) {
    GetAsConnectionElement()->SetPosition(position);
}

const std::string& TrackConnector::GetConnectorName() const {
    return GetAsConnectionElement()->GetName();
}

Ruvex::MaterialElement* TrackConnector::GetMaterial() const {
    const std::string& name = GetAsConnectionElement()->GetMaterialName();
    if (name.empty()) return nullptr;
    if (m_ownMaterial && m_ownMaterial->GetName() == name) return m_ownMaterial.Get();
    if (!m_subNetwork) return nullptr;
    const auto& materials = m_subNetwork->GetMaterials();
    const size_t index = materials.find(name);
    return index == materials.npos ? nullptr : materials[index].Get();
}

void TrackConnector::SetMaterial(const vek::Material& material) {
    Ruvex::CountedPtr<Ruvex::MaterialElement> made(ToMaterialElement(material));
    if (m_subNetwork) {
        auto& materials = m_subNetwork->EditMaterials();
        for (const auto& existing : materials)
            if (existing && SameAppearance(*made, *existing)) return SetMaterial(existing.Get());
        made->SetName(
            GetUniqueName(material.name.empty() ? std::string("Material") : material.name, materials));
        materials.push_back(made);
    }
    SetMaterial(made.Get());
}

void TrackConnector::SetMaterial(Ruvex::MaterialElement* material) {
    Ruvex::TrackConnectorElement* record = GetAsConnectionElement();
    m_ownMaterial = nullptr;
    record->SetMaterialName(material ? material->GetName() : std::string());
    if (!material) return;
    if (!m_subNetwork || m_subNetwork->GetMaterials().indexOf(material) == npos) m_ownMaterial = material;
}

Ground* TrackConnector::GetGround() const {
    const std::string& name = GetAsConnectionElement()->GetGroundName();
    if (name.empty()) return nullptr;
    if (m_ownGround && m_ownGround->GetName() == name) return dynamic_cast<Ground*>(m_ownGround.Get());
    if (!m_subNetwork) return nullptr;
    const auto& grounds = m_subNetwork->GetGrounds();
    const size_t index = grounds.find(name);
    return index == grounds.npos ? nullptr : dynamic_cast<Ground*>(grounds[index].Get());
}

void TrackConnector::SetGround(Ground* ground) {
    m_ownGround = nullptr;
    GetAsConnectionElement()->SetGroundName(ground ? ground->GetName() : std::string());
    if (!ground) return;
    if (!m_subNetwork || m_subNetwork->GetGrounds().indexOf(ground) == npos) m_ownGround = ground;
}

bool TrackConnector::IsInterpolationSpline(size_t index) const {
    const Ruvex::TrackConnectorElement* record = GetAsConnectionElement();
    const auto& flags = record->GetContourInterpolations();
    return index < record->GetContourPoints().size() && index < flags.size() && flags[index] != 0.0;
}

bool TrackConnector::SetInterpolation(size_t index, bool spline) {
    Ruvex::TrackConnectorElement* record = GetAsConnectionElement();
    const size_t count = record->GetContourPoints().size();
    if (index >= count) return false;
    std::vector<double> flags = record->GetContourInterpolations();
    flags.resize(std::max(flags.size(), count), 0.0);
    flags[index] = spline ? 1.0 : 0.0;
    record->SetContourInterpolations(flags);
    Invalidate();
    return true;
}

size_t TrackConnector::FindContourPointInd(const vek::Vector2& point, double tolerance) const {
    const auto& points = GetAsConnectionElement()->GetContourPoints();
    for (size_t i = 0; i < points.size(); ++i)
        if ((points[i] - point).norm() <= tolerance) return i;
    return npos;
}

bool TrackConnector::MoveContourPoint(size_t index, const vek::Vector2& to) {
    Ruvex::TrackConnectorElement* record = GetAsConnectionElement();
    std::vector<vek::Vector2> points = record->GetContourPoints();
    if (index >= points.size()) return false;
    points[index] = to;
    record->SetContourPoints(points);
    Invalidate();
    return true;
}

bool TrackConnector::MoveContourPoint(const vek::Vector2& from, const vek::Vector2& to, double tolerance) {
    return MoveContourPoint(FindContourPointInd(from, tolerance), to);
}

size_t TrackConnector::AddContourPoint(const vek::Vector2& point, size_t index) {
    Ruvex::TrackConnectorElement* record = GetAsConnectionElement();
    std::vector<vek::Vector2> points = record->GetContourPoints();
    std::vector<double> flags = record->GetContourInterpolations();
    flags.resize(points.size(), 0.0);
    index = std::min(index, points.size());
    points.insert(points.begin() + static_cast<std::ptrdiff_t>(index), point);
    flags.insert(flags.begin() + static_cast<std::ptrdiff_t>(index), 0.0);
    record->SetContourPoints(points);
    record->SetContourInterpolations(flags);
    Invalidate();
    return index;
}

bool TrackConnector::RemoveContourPoint(size_t index) {
    Ruvex::TrackConnectorElement* record = GetAsConnectionElement();
    std::vector<vek::Vector2> points = record->GetContourPoints();
    if (index >= points.size()) return false;
    std::vector<double> flags = record->GetContourInterpolations();
    flags.resize(points.size(), 0.0);
    points.erase(points.begin() + static_cast<std::ptrdiff_t>(index));
    flags.erase(flags.begin() + static_cast<std::ptrdiff_t>(index));
    record->SetContourPoints(points);
    record->SetContourInterpolations(flags);
    Invalidate();
    return true;
}

void TrackConnector::SetContourPoints(const std::vector<vek::Vector2>& points,
                                      const std::vector<bool>& splines) {
    Ruvex::TrackConnectorElement* record = GetAsConnectionElement();
    std::vector<double> flags(points.size(), 0.0);
    for (size_t i = 0; i < flags.size() && i < splines.size(); ++i)
        flags[i] = splines[i] ? 1.0 : 0.0;
    record->SetContourPoints(points);
    record->SetContourInterpolations(flags);
    Invalidate();
}

bool TrackConnector::AreCompatibleLanes(const LaneOnIntersectionData& from,
                                        const LaneOnIntersectionData& to) const {
    std::optional<std::vector<TrackExtremity>> sortedArms;
    return AreCompatibleLanes(from, GetLaneFromLaneData(from), to, GetLaneFromLaneData(to), sortedArms);
}

bool TrackConnector::AreCompatibleLanes(const LaneOnIntersectionData& from, Lane* fromLane,
                                        const LaneOnIntersectionData& to, Lane* toLane,
                                        std::optional<std::vector<TrackExtremity>>& sortedArms) const {
    if (!fromLane || !toLane || !fromLane->IsCompatibleWith(toLane)) return false;
    // Bit 1: traffic runs along the track; bit 2: against it. The from-lane must run into the node, the
    // to-lane out of it.
    const uint32_t fromWay = fromLane->GetCirculationWay();
    const uint32_t toWay = toLane->GetCirculationWay();
    if (!(fromWay & (from.atTrackEnd ? 1u : 2u))) return false;
    if (!(toWay & (to.atTrackEnd ? 2u : 1u))) return false;
    if (fromLane->GetLaneType() != eLaneSidewalk) return true;

    // A sidewalk goes round the node: only to the neighbouring extremity on its own side.
    if (!sortedArms) GetTracksArroundConnector(sortedArms.emplace(), true);
    const std::vector<TrackExtremity>& around = *sortedArms;
    const auto position = [&around](const LaneOnIntersectionData& data) {
        for (size_t k = 0; k < around.size(); ++k)
            if (around[k].GetTrack() && around[k].IsEnd() == data.atTrackEnd &&
                around[k].GetTrack()->GetName() == data.trackName)
                return k;
        return npos;
    };
    const size_t i = position(from);
    const size_t j = position(to);
    const size_t n = around.size();
    if (i == npos || j == npos) return false;
    const bool next = j == (i + 1) % n;
    const bool previous = j == (i + n - 1) % n;
    // On the row's side the to-lane is the sidewalk that `sameSide` names at a track end, the other one at a
    // track start.
    const auto row = [&](bool neighbour, bool leftAtEnd) {
        if (!neighbour) return false;
        const bool wantLeft = to.atTrackEnd ? leftAtEnd : !leftAtEnd;
        return wantLeft ? toLane->IsLeftSidewalk() : toLane->IsRightSidewalk();
    };
    if (fromLane->IsLeftSidewalk()) {
        if (!from.atTrackEnd ? row(next, true) : row(previous, false)) return true;
    }
    if (fromLane->IsRightSidewalk()) {
        if (!from.atTrackEnd ? row(previous, false) : row(next, true)) return true;
    }
    return false;
}

bool TrackConnector::Validate() {
    if (m_valid) return true;
    RefreshDrawableContours();
    m_valid = true;
    return true;
}

void TrackConnector::GetUserPointsFromRuvexData() {
    const auto& points = GetAsConnectionElement()->GetContourPoints();
    m_userPoints.resize(points.size());
    for (size_t i = 0; i < points.size(); ++i)
        m_userPoints[i] = {points[i], IsInterpolationSpline(i)};
}

void TrackConnector::RefreshDrawableContours() {
    GetUserPointsFromRuvexData();
    m_drawable.clear();
    const auto& points = GetAsConnectionElement()->GetContourPoints();
    const size_t n = points.size();
    if (n < 3) return;
    for (size_t i = 0; i < n; ++i) {
        m_drawable.push_back(points[i]);
        if (!IsInterpolationSpline(i)) continue;
        const vek::Vector2& p0 = points[(i + n - 1) % n];
        const vek::Vector2& p2 = points[(i + 1) % n];
        const vek::Vector2& p3 = points[(i + 2) % n];
        for (size_t k = 1; k < kSplineSegments; ++k)
            m_drawable.push_back(CatmullRom(p0, points[i], p2, p3,
                                            static_cast<double>(k) / static_cast<double>(kSplineSegments)));
    }
}

const std::vector<vek::Vector2>& TrackConnector::GetTrajContour(size_t index) const {
    static const std::vector<vek::Vector2> none;
    return index == 0 ? m_drawable : none;
}

bool TrackConnector::GetAnchorPos(const TrackExtremity& extremity, bool leftSide,
                                  vek::Vector3& position) const {
    position = vek::Vector3();
    Track* track = extremity.GetTrack();
    const Profile* profile = extremity.GetProfile();
    if (!track || !profile || !track->Validate()) return false;
    const double s = extremity.IsEnd() ? track->GetXYLength() : 0.0;
    const double t = leftSide ? profile->GetLeftPosX() : profile->GetRightPosX();
    if (!track->GetPosition(position, s, t)) return false;
    if (!m_subNetwork && track->GetSubNetwork())
        position = track->GetSubNetwork()->GetTransform().apply(position);
    return true;
}

vek::Box3 TrackConnector::GetBoundingBox() const {
    vek::Box3 box;
    const vek::Vector3& position = GetPosition();
    box.add(position);
    for (const vek::Vector2& p : m_drawable)
        box.add(vek::Vector3(p.x, p.y, position.z));
    return box;
}

bool TrackConnector::GetDirection(vek::Vector2& direction, const TrackExtremity& extremity) const {
    direction = vek::Vector2();
    Track* track = extremity.GetTrack();
    if (!track) return false;
    const double s = extremity.IsEnd() ? track->GetXYLength() : 0.0;
    // The crossed profile: stored angles of existing networks were computed with it.
    const Portion* portion = extremity.IsEnd() ? track->GetFirstPortion() : track->GetLastPortion();
    const Profile* profile =
        portion ? (extremity.IsEnd() ? portion->GetStartProfile() : portion->GetEndProfile()) : nullptr;
    const double t = profile ? 0.5 * (profile->GetLeftPosX() + profile->GetRightPosX()) : 0.0;
    PointData point;
    if (!track->GetXYPointData(point, s, t)) return false;
    vek::Vector3 p(point.position.x, point.position.y, 0.0);
    // A junction stands in the network's frame, the track in its sub-network's.
    if (!m_subNetwork && track->GetSubNetwork()) p = track->GetSubNetwork()->GetTransform().apply(p);
    const vek::Vector3& origin = GetPosition();
    direction = vek::Vector2(p.x - origin.x, p.y - origin.y);
    return true;
}

double TrackConnector::GetTrackAngle(const TrackExtremity& a, const TrackExtremity& b) const {
    vek::Vector2 da;
    vek::Vector2 db;
    GetDirection(da, a);
    GetDirection(db, b);
    return TurnAngle(da, db);
}

void TrackConnector::SortTracks(std::vector<TrackExtremity>& extremities, std::vector<double>& angles) const {
    const size_t n = extremities.size();
    angles.resize(n);
    if (n == 0) return;
    if (n == 1) {
        angles[0] = 0.0;
        return;
    }
    for (const TrackExtremity& extremity : extremities)
        if (extremity.GetTrack()) extremity.GetTrack()->Validate();

    std::vector<TrackExtremity> remaining = extremities;
    std::vector<vek::Vector2> directions(n);
    for (size_t k = 0; k < n; ++k)
        GetDirection(directions[k], remaining[k]);

    size_t best = 0;
    double bestAngle = TurnAngle(directions[0], vek::Vector2(1.0, 0.0));
    for (size_t k = 1; k < n; ++k) {
        const double angle = TurnAngle(directions[k], vek::Vector2(1.0, 0.0));
        if (angle < bestAngle) {
            bestAngle = angle;
            best = k;
        }
    }
    extremities[0] = remaining[best];
    vek::Vector2 last = directions[best];
    remaining.erase(remaining.begin() + static_cast<std::ptrdiff_t>(best));
    directions.erase(directions.begin() + static_cast<std::ptrdiff_t>(best));

    for (size_t placed = 1; placed < n; ++placed) {
        // Above any angle in [0, 2 pi).
        bestAngle = 7.0;
        best = 0;
        for (size_t k = 0; k < remaining.size(); ++k) {
            const double angle = TurnAngle(last, directions[k]);
            if (angle < bestAngle) {
                bestAngle = angle;
                best = k;
            }
        }
        extremities[placed] = remaining[best];
        angles[placed] = bestAngle;
        last = directions[best];
        remaining.erase(remaining.begin() + static_cast<std::ptrdiff_t>(best));
        directions.erase(directions.begin() + static_cast<std::ptrdiff_t>(best));
    }
}

Lane* TrackConnector::GetLaneFromLaneData(const LaneOnIntersectionData& data) const {
    if (Network* network = GetNetwork()) return data.GetLane(network);
    // A connector not yet in a network finds the lanes of its own sub-network.
    if (!m_subNetwork || data.subNetworkIndex != LaneOnIntersectionData::kNoSubNetwork) return nullptr;
    Track* track = m_subNetwork->GetTrackByName(data.trackName);
    Profile* profile = track ? TrackExtremity(track, data.atTrackEnd).GetProfile() : nullptr;
    return profile ? profile->GetLaneByName(data.laneName.c_str()) : nullptr;
}

// ---- SubNetworkExit

const std::string SubNetworkExit::kStart = "start";
const std::string SubNetworkExit::kEnd = "end";

SubNetworkExit::SubNetworkExit() = default;

SubNetworkExit::SubNetworkExit(Track* track, bool atStart) : m_track(track), m_atStart(atStart) {
    if (track) m_subNetwork = track->GetSubNetwork();
    UpdateNames();
}

SubNetworkExit::~SubNetworkExit() = default;

Track* SubNetworkExit::GetTrack() const {
    return m_track.Get();
}

void SubNetworkExit::SetTrack(Track* track) {
    m_track = track;
}

void SubNetworkExit::UpdateNames() {
    if (m_subNetwork) m_SubNetworkName = m_subNetwork->GetName();
    if (m_track) m_TrackName = m_track->GetName();
    m_Extremity = m_atStart ? kStart : kEnd;
}

bool SubNetworkExit::PostLoad(Network* network) {
    SubNetwork* subNetwork = network ? network->GetSubNetworkByName(m_SubNetworkName.c_str()) : nullptr;
    if (!subNetwork) return false;
    m_subNetwork = subNetwork;
    Track* track = subNetwork->GetTrackByName(m_TrackName);
    if (!track) return false;
    m_track = track;
    m_atStart = m_Extremity == kStart;
    return true;
}

// ---- SubNetworkJunction

SubNetworkJunction::SubNetworkJunction() = default;

SubNetworkJunction::SubNetworkJunction(Network* network) {
    m_network = network;
}

SubNetworkJunction::~SubNetworkJunction() = default;

SubNetworkExit* SubNetworkJunction::GetSubNetworkExit(size_t index) const {
    return index < m_Exits.size() ? dynamic_cast<SubNetworkExit*>(m_Exits[index].Get()) : nullptr;
}

SubNetworkExit* SubNetworkJunction::GetSubNetworkExit(const Track* track, bool atStart) const {
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        SubNetworkExit* exit = GetSubNetworkExit(i);
        if (exit && exit->GetTrack() == track && exit->IsAtStart() == atStart) return exit;
    }
    return nullptr;
}

void SubNetworkJunction::GetTracksArroundConnector(std::vector<TrackExtremity>& out, bool sorted) const {
    out.clear();
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        const SubNetworkExit* exit = GetSubNetworkExit(i);
        if (exit && exit->GetTrack()) out.emplace_back(exit->GetTrack(), !exit->IsAtStart());
    }
    if (!sorted) return;
    std::vector<double> angles;
    SortTracks(out, angles);
}

void SubNetworkJunction::AddExit(SubNetworkExit* exit) {
    if (!exit) return;
    m_Exits.push_back(Ruvex::CountedPtr<Ruvex::SubNetworkExitElement>(exit));
    UpdatePosition();
}

void SubNetworkJunction::UpdatePosition() {
    vek::Vector3 sum;
    size_t count = 0;
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        const SubNetworkExit* exit = GetSubNetworkExit(i);
        Track* track = exit ? exit->GetTrack() : nullptr;
        if (!track) continue;
        track->Validate();
        vek::Vector3 p = TrackExtremity(track, !exit->IsAtStart()).GetPosition();
        if (const SubNetwork* subNetwork = track->GetSubNetwork()) p = subNetwork->GetTransform().apply(p);
        sum = sum + p;
        ++count;
    }
    if (count) SetPosition(sum * (1.0 / static_cast<double>(count)));
}

SubNetworkJunction* SubNetworkJunction::Clone() const {
    auto* copy = new SubNetworkJunction;
    copy->CopyFrom(this);
    return copy;
}

void SubNetworkJunction::CopyFrom(const SubNetworkJunction* other) {
    if (!other || other == this) return;
    m_Exits.clear();
    CopyElementContent(*other, *this);
    // The copied exits name the same tracks; link them as the originals are.
    for (size_t i = 0; i < m_Exits.size() && i < other->m_Exits.size(); ++i) {
        SubNetworkExit* exit = GetSubNetworkExit(i);
        const SubNetworkExit* source = other->GetSubNetworkExit(i);
        if (!exit || !source) continue;
        exit->SetTrack(source->GetTrack());
        exit->SetSubNetwork(source->GetSubNetwork());
        exit->SetIsAtStart(source->IsAtStart());
    }
    Invalidate();
}

void SubNetworkJunction::RemoveExit(const Track* track) {
    std::erase_if(m_Exits, [track](const Ruvex::CountedPtr<Ruvex::SubNetworkExitElement>& e) {
        auto* exit = dynamic_cast<const SubNetworkExit*>(e.Get());
        return exit && exit->GetTrack() == track;
    });
    UpdatePosition();
}

void SubNetworkJunction::ReplaceTrack(const Track* oldTrack, Track* newTrack) {
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        SubNetworkExit* exit = GetSubNetworkExit(i);
        if (!exit || exit->GetTrack() != oldTrack) continue;
        exit->SetTrack(newTrack);
        if (newTrack) exit->SetSubNetwork(newTrack->GetSubNetwork());
        exit->UpdateNames();
    }
}

bool SubNetworkJunction::ConnectsSubNetwork(const SubNetwork* subNetwork) const {
    if (!subNetwork) return false;
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        const SubNetworkExit* exit = GetSubNetworkExit(i);
        if (!exit) continue;
        if (exit->GetSubNetwork() == subNetwork) return true;
        if (!exit->GetSubNetwork() && exit->GetSubNetworkName() == subNetwork->GetName()) return true;
    }
    return false;
}

void SubNetworkJunction::UpdateNames() {
    for (size_t i = 0; i < m_Exits.size(); ++i)
        if (SubNetworkExit* exit = GetSubNetworkExit(i)) exit->UpdateNames();
}

bool SubNetworkJunction::PostLoad(Network* network) {
    SetInNetwork(network);
    for (size_t i = 0; i < m_Exits.size(); ++i) {
        SubNetworkExit* exit = GetSubNetworkExit(i);
        if (!exit || !exit->PostLoad(network)) return false;
    }
    return true;
}

}  // namespace Orvia

#include <orvia/topology/clipped_data.h>

#include <orvia/core/external_element.h>
#include <orvia/core/network.h>
#include <orvia/core/surface.h>
#include <orvia/topology/linear_object.h>
#include <orvia/topology/parking.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/traffic/road_sign.h>

#include <cmath>
#include <tuple>

namespace Orvia {

// ---- ClippedData

ClippedData::~ClippedData() = default;

void ClippedData::SetInSubNetwork(SubNetwork* subNetwork) {
    m_subNetwork = subNetwork;
    UpdateQualifiedName();
}

void ClippedData::UpdateQualifiedName() {
    const std::string& name = GetClippedDataElement().GetName();
    if (m_subNetwork)
        m_qualifiedName = m_subNetwork->GetName() + "//" + name;
    else
        m_qualifiedName = name;
}

const std::string& ClippedData::GetNameQualifiedIfNeeded() const {
    const Network* network = m_subNetwork ? m_subNetwork->GetNetwork() : nullptr;
    return network && network->GetSubNetworkCount() > 1 ? m_qualifiedName : GetClippedDataElement().GetName();
}

ExternalElement* ClippedData::Get3DObject() const {
    return dynamic_cast<ExternalElement*>(GetClippedDataElement().GetObject3D());
}

void ClippedData::Set3DObject(ExternalElement* object) {
    GetClippedDataElement().SetObject3D(object);
}

RoadSign* ClippedData::GetRoadSign() const {
    return dynamic_cast<RoadSign*>(GetClippedDataElement().GetRoadSign());
}

void ClippedData::SetRoadSign(RoadSign* sign) {
    GetClippedDataElement().SetRoadSign(sign);
}

Obstacle* ClippedData::GetObstacle() const {
    return dynamic_cast<Obstacle*>(GetClippedDataElement().GetObstacle());
}

void ClippedData::SetObstacle(Obstacle* obstacle) {
    GetClippedDataElement().SetObstacle(obstacle);
}

SurfaceModifier* ClippedData::GetSurfaceModifier() const {
    return dynamic_cast<SurfaceModifier*>(GetClippedDataElement().GetSurfaceModifier());
}

void ClippedData::SetSurfaceModifier(SurfaceModifier* modifier) {
    GetClippedDataElement().SetSurfaceModifier(modifier);
}

void ClippedData::SetSequence(Ruvex::SequenceElement* sequence, int axis) {
    Ruvex::ClippedDataElement& record = GetClippedDataElement();
    if (axis == 0) record.SetSequenceX(sequence);
    if (axis == 1) record.SetSequenceY(sequence);
    if (axis == 2) record.SetSequenceZ(sequence);
}

LinearObject* ClippedData::GetLinearObject() const {
    return dynamic_cast<LinearObject*>(GetClippedDataElement().GetLinearObject());
}

void ClippedData::SetLinearObject(LinearObject* object) {
    if (LinearObject* old = GetLinearObject(); old && old != object && old->GetClippedData() == this)
        old->SetClippedData(nullptr);
    GetClippedDataElement().SetLinearObject(object);
    if (object) object->SetClippedData(this);
}

void ClippedData::ReleaseCarriedLinks() {
    if (LinearObject* linear = GetLinearObject(); linear && linear->GetClippedData() == this)
        linear->SetClippedData(nullptr);
}

bool ClippedData::LoadUserDataChild(const Ruvex::Element& record, Ruvex::IDOMElement* child,
                                    Ruvex::IDOMParser* parser) {
    if (!child || !parser) return false;
    // A declared child never goes through the factory twice.
    const Ruvex::Schema& schema = record.GetSchema();
    const std::string_view tag = child->GetTagName();
    if (schema.FindItem(tag) || schema.FindContainer(tag)) return false;
    return TryToLoadElement(child, parser);
}

// ---- TrackClip and TrackScope

TrackClip::~TrackClip() = default;

TrackClip* TrackClip::Clone() const {
    auto* clip = new TrackClip;
    clip->CopyFrom(this);
    return clip;
}

void TrackClip::CopyFrom(const Ruvex::TrackClipElement* other) {
    if (!other || other == this) return;
    m_Abscissa = other->GetAbscissa();
    m_LateralOffset = other->GetLateralOffset();
    m_VerticalOffset = other->GetVerticalOffset();
}

TrackScope::~TrackScope() = default;

ECirculationWay TrackScope::GetCirculationWay() const {
    const ECirculationWay way = ToECirculationWay(m_CirculationWayText.c_str());
    return way == kUnknownCirculationWay ? eWayBoth : way;
}

void TrackScope::SetCirculationWay(ECirculationWay way) {
    m_CirculationWayText = ToText(way);
}

namespace {

// A lane index as the file writes it; negative, fractional or huge values name no lane.
bool AsLaneIndex(double value, uint64_t& lane) {
    if (!(value >= 0) || value >= 18446744073709551616.0 || std::floor(value) != value) return false;
    lane = static_cast<uint64_t>(value);
    return true;
}

}  // namespace

bool TrackScope::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!TrackScopeElement::LoadFromXMLElement(element, parser)) return false;
    m_laneScope.clear();
    for (double value : m_LaneScope)
        if (uint64_t lane = 0; AsLaneIndex(value, lane))
            m_laneScope.insert(lane);
        else
            parser->ReportWarning(element, "lane scope value " + std::to_string(value) + " names no lane");
    return true;
}

Ruvex::IDOMElement* TrackScope::BuildXMLElement(Ruvex::IDOMParser* parser) {
    // The record keeps the file's order and repeats unless the set was edited.
    std::set<uint64_t> recorded;
    for (double value : m_LaneScope)
        if (uint64_t lane = 0; AsLaneIndex(value, lane)) recorded.insert(lane);
    if (recorded != m_laneScope) {
        m_LaneScope.clear();
        for (uint64_t lane : m_laneScope)
            m_LaneScope.push_back(static_cast<double>(lane));
    }
    return TrackScopeElement::BuildXMLElement(parser);
}

// ---- TrackClippedData

TrackClippedData::~TrackClippedData() = default;

void TrackClippedData::SetName(const std::string& name) {
    TrackClippedDataElement::SetName(name);
    UpdateQualifiedName();
}

void TrackClippedData::SetParent(Track* track) {
    m_track = track;
    m_valid = false;
}

TrackScope* TrackClippedData::GetTrackScope() const {
    return dynamic_cast<TrackScope*>(m_Scope.Get());
}

ParkingLot* TrackClippedData::GetParkingLotObject() const {
    return dynamic_cast<ParkingLot*>(m_ParkingLot.Get());
}

void TrackClippedData::Validate() {
    if (m_valid || !m_track) return;
    const double length = m_track->GetValidXYLength();
    double s = 0, t = 0, z = 0;
    if (Ruvex::TrackClipElement* clip = m_TrackClip.Get()) {
        s = clip->GetAbscissa();
        t = clip->GetLateralOffset();
        z = clip->GetVerticalOffset();
        if (!(s > 0))
            clip->SetAbscissa(0);
        else if (s > length)
            clip->SetAbscissa(length);
    }
    const Ruvex::TrackScopeElement* scope = m_Scope.Get();
    const double from = scope ? scope->GetFrom() : -kNoBound;
    const double to = scope ? scope->GetTo() : kNoBound;
    const double left = scope ? scope->GetLeftLimit() : -kNoBound;
    const double right = scope ? scope->GetRightLimit() : kNoBound;
    const double bottom = scope ? scope->GetBottomLimit() : -kNoBound;
    const double top = scope ? scope->GetTopLimit() : kNoBound;
    m_start = from > -kScopeLimitThreshold ? from + s : 0;
    m_end = to < kScopeLimitThreshold ? to + s : length;
    m_left = left > -kScopeLimitThreshold ? left + t : -kNoBound;
    m_right = right < kScopeLimitThreshold ? right + t : kNoBound;
    m_bottom = bottom > -kScopeLimitThreshold ? bottom + z : -kNoBound;
    m_top = top < kScopeLimitThreshold ? top + z : kNoBound;
    if (SurfaceModifier* modifier = GetSurfaceModifier()) {
        vek::Box2 box;
        box.min = {m_start, m_left};
        box.max = {m_end, m_right};
        modifier->SetClipBox(box);
    }
    if (LinearObject* linear = GetLinearObject()) {
        vek::Box3 box;
        box.min = {m_start, m_left, m_bottom};
        box.max = {m_end, m_right, m_top};
        linear->SetClipBox(box);
    }
    m_valid = true;
}

bool TrackClippedData::IsInScope(double s, double t, double z) {
    Validate();
    return m_start <= s && s <= m_end && m_left <= t && t <= m_right && m_bottom <= z && z <= m_top;
}

bool TrackClippedData::IsInLaneScope(uint64_t lane) const {
    if (const TrackScope* scope = GetTrackScope())
        return scope->LaneScope().empty() || scope->LaneScope().count(lane) != 0;
    // A plain record: its values as read.
    const Ruvex::TrackScopeElement* record = m_Scope.Get();
    if (!record || record->GetLaneScope().empty()) return true;
    for (double value : record->GetLaneScope())
        if (uint64_t index = 0; AsLaneIndex(value, index) && index == lane) return true;
    return false;
}

bool TrackClippedData::operator<(const TrackClippedData& other) const {
    return std::tie(m_start, m_end, GetName()) < std::tie(other.m_start, other.m_end, other.GetName());
}

void TrackClippedData::ReleaseCarriedLinks() {
    ClippedData::ReleaseCarriedLinks();
    if (ParkingLot* lot = GetParkingLotObject(); lot && lot->GetClippedData() == this)
        lot->SetCarrier(nullptr, nullptr);
}

Ruvex::IDOMElement* TrackClippedData::BuildXMLElement(Ruvex::IDOMParser* parser) {
    Ruvex::IDOMElement* element = Ruvex::TrackClippedDataElement::BuildXMLElement(parser);
    if (element) ToElement(element, parser);
    return element;
}

bool TrackClippedData::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    return LoadUserDataChild(*this, child, parser) ||
           Ruvex::TrackClippedDataElement::LoadChild(child, parser);
}

// ---- MarkClippedData

MarkClippedData::~MarkClippedData() = default;

void MarkClippedData::SetName(const std::string& name) {
    MarkClippedDataElement::SetName(name);
    UpdateQualifiedName();
}

vek::Mark MarkClippedData::GetMark() const {
    vek::Mark mark;
    mark.position = m_Position;
    mark.roll = m_Roll;
    mark.pitch = m_Pitch;
    mark.yaw = m_Yaw;
    return mark;
}

void MarkClippedData::SetMark(const vek::Mark& mark) {
    m_Position = mark.position;
    m_Roll = mark.roll;
    m_Pitch = mark.pitch;
    m_Yaw = mark.yaw;
}

void MarkClippedData::ApplyTransform(const vek::Transform& transform) {
    SetMark(vek::Mark::fromTransform(transform * GetMark().transform()));
}

Ruvex::IDOMElement* MarkClippedData::BuildXMLElement(Ruvex::IDOMParser* parser) {
    Ruvex::IDOMElement* element = Ruvex::MarkClippedDataElement::BuildXMLElement(parser);
    if (element) ToElement(element, parser);
    return element;
}

bool MarkClippedData::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    return LoadUserDataChild(*this, child, parser) || Ruvex::MarkClippedDataElement::LoadChild(child, parser);
}

}  // namespace Orvia

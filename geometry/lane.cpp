// Lanes and lane borders of a cross-section, and the text tables of lane types, ways and road types.

#include <orvia/core/element_copy.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/profile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string_view>

namespace Orvia {

namespace {

constexpr std::array<const char*, 20> kLaneTypeTexts = {
    "paved",   "paved entry", "paved exit", "paved express", "paved roundabout", "sidewalk", "emergency",
    "parking", "zebra",       "median",     "shoulder",      "embankment",       "ditch",    "barrier",
    "land",    "runway",      "taxiway",    "paved major",   "hard shoulder",    "curb"};
constexpr std::array<const char*, 4> kWayTexts = {"none", "direct", "inverse", "both"};
constexpr std::array<const char*, 4> kRoadTypeTexts = {"none", "tunnel", "bridge", "unknown"};
constexpr const char* kUnknownText = "unknown";

// The index of an exact text in the table, or the table's size.
template <size_t N>
size_t FindText(const std::array<const char*, N>& table, const char* text) {
    if (!text) return N;
    for (size_t i = 0; i < N; ++i)
        if (std::strcmp(table[i], text) == 0) return i;
    return N;
}

// Bit masks over the lane types 0..17 (the types above 17 belong to none of these classes).
constexpr uint32_t kDriveableMask = 0x2005F;
constexpr uint32_t kSuitableForVehicleMask = 0x201DF;
constexpr uint32_t kMaskedTypes = 18;

bool InMask(LaneType type, uint32_t mask) {
    return static_cast<uint32_t>(type) < kMaskedTypes && (mask >> static_cast<uint32_t>(type) & 1u) != 0;
}

void Warn(Ruvex::IDOMParser* parser, Ruvex::IDOMElement* element, const char* attribute,
          const std::string& text, const char* fallback) {
    parser->ReportWarning(element,
                          std::string("unknown ") + attribute + " \"" + text + "\", read as " + fallback);
}

}  // namespace

const char* ToText(ECirculationWay way) {
    return static_cast<size_t>(way) < kWayTexts.size() ? kWayTexts[way] : kUnknownText;
}

ECirculationWay ToECirculationWay(const char* text) {
    const size_t i = FindText(kWayTexts, text);
    return i < kWayTexts.size() ? static_cast<ECirculationWay>(i) : kUnknownCirculationWay;
}

const char* ToText(ERoadType type) {
    return static_cast<size_t>(type) < kRoadTypeTexts.size() ? kRoadTypeTexts[type] : kUnknownText;
}

ERoadType ToERoadType(const char* text) {
    const size_t i = FindText(kRoadTypeTexts, text);
    return i < kRoadTypeTexts.size() ? static_cast<ERoadType>(i) : eRoadUnknown;
}

// ---------------------------------------------------------------------------------------------------------------
// Lane

Lane::~Lane() = default;

const char* Lane::ToText(LaneType type) {
    return static_cast<size_t>(type) < kLaneTypeTexts.size() ? kLaneTypeTexts[type] : kUnknownText;
}

LaneType Lane::ToELaneType(const char* text) {
    const size_t i = FindText(kLaneTypeTexts, text);
    return i < kLaneTypeTexts.size() ? static_cast<LaneType>(i) : kUnknownLaneType;
}

bool Lane::PavedType(LaneType type) {
    return static_cast<uint32_t>(type) < 5 || type == eLanePavedMajor;
}

bool Lane::Driveable(LaneType type) {
    return InMask(type, kDriveableMask);
}

bool Lane::SuitableForVehicleType(LaneType type) {
    return InMask(type, kSuitableForVehicleMask);
}

bool Lane::ForAircraftType(LaneType type) {
    return type == eLaneRunway || type == eLaneTaxiway;
}

bool Lane::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    const bool loaded = Ruvex::LaneElement::LoadFromXMLElement(element, parser);
    RefreshFromText();
    if (m_laneType == kUnknownLaneType) Warn(parser, element, "lane type", m_LaneTypeText, "no lane type");
    if (m_way == kUnknownCirculationWay)
        Warn(parser, element, "circulation way", m_CirculationWayText, "no circulation way");
    return loaded;
}

void Lane::RefreshFromText() {
    m_laneType = ToELaneType(m_LaneTypeText.c_str());
    m_way = ToECirculationWay(m_CirculationWayText.c_str());
}

void Lane::SetLaneType(LaneType type) {
    m_laneType = type;
    m_LaneTypeText = ToText(type);
}

void Lane::SetCirculationWay(ECirculationWay way) {
    m_way = way;
    m_CirculationWayText = Orvia::ToText(way);
}

LaneBorder* Lane::GetLeftKey() const {
    return m_profile ? m_profile->GetLeftLaneBorder(this) : nullptr;
}

LaneBorder* Lane::GetRightKey() const {
    return m_profile ? m_profile->GetRightLaneBorder(this) : nullptr;
}

size_t Lane::GetLeftKeyIndex() const {
    return m_profile ? m_profile->GetLaneBorderIndex(GetLeftKey()) : npos;
}

size_t Lane::GetRightKeyIndex() const {
    return m_profile ? m_profile->GetLaneBorderIndex(GetRightKey()) : npos;
}

double Lane::GetHorWidth() const {
    const LaneBorder* left = GetLeftKey();
    const LaneBorder* right = GetRightKey();
    return left && right ? right->GetHorizDistToAxis() - left->GetHorizDistToAxis() : 0.0;
}

std::pair<double, double> Lane::GetLeftPosition() const {
    const LaneBorder* border = GetLeftKey();
    return border ? std::pair(border->GetHorizDistToAxis(), border->GetVertDistToAxis())
                  : std::pair(0.0, 0.0);
}

std::pair<double, double> Lane::GetRightPosition() const {
    const LaneBorder* border = GetRightKey();
    return border ? std::pair(border->GetHorizDistToAxis(), border->GetVertDistToAxis())
                  : std::pair(0.0, 0.0);
}

std::pair<double, double> Lane::GetCenterOffset() const {
    const auto [lx, ly] = GetLeftPosition();
    const auto [rx, ry] = GetRightPosition();
    return {0.5 * (lx + rx), 0.5 * (ly + ry)};
}

void Lane::SetHorWidth(double width) {
    SetHorWidth(width, GetCenterOffset().first >= 0.0);
}

void Lane::SetHorWidth(double width, bool toRight) {
    if (!m_profile) return;
    const size_t left = GetLeftKeyIndex();
    const size_t right = GetRightKeyIndex();
    if (left == npos || right == npos) return;
    const double delta = width - GetHorWidth();
    if (toRight) {
        for (size_t i = right; i < m_profile->GetLaneBorderCount(); ++i)
            if (LaneBorder* border = m_profile->GetLaneBorder(i))
                border->SetHorizDistToAxis(border->GetHorizDistToAxis() + delta);
    } else {
        for (size_t i = 0; i <= left; ++i)
            if (LaneBorder* border = m_profile->GetLaneBorder(i))
                border->SetHorizDistToAxis(border->GetHorizDistToAxis() - delta);
    }
}

bool Lane::SetLeftHorDistance(double x, bool clamp) {
    LaneBorder* border = GetLeftKey();
    if (!border) return false;
    if (!clamp) {
        border->SetHorizDistToAxis(x);
        return false;
    }
    double limited = x;
    if (const LaneBorder* right = GetRightKey()) limited = std::min(limited, right->GetHorizDistToAxis());
    const size_t index = m_profile->GetLaneIndex(this);
    if (index != npos && index > 0)
        if (const LaneBorder* before = m_profile->GetLeftLaneBorder(m_profile->GetLane(index - 1)))
            limited = std::max(limited, before->GetHorizDistToAxis());
    border->SetHorizDistToAxis(limited);
    return limited != x;
}

bool Lane::SetRightHorDistance(double x, bool clamp) {
    LaneBorder* border = GetRightKey();
    if (!border) return false;
    if (!clamp) {
        border->SetHorizDistToAxis(x);
        return false;
    }
    double limited = x;
    if (const LaneBorder* left = GetLeftKey()) limited = std::max(limited, left->GetHorizDistToAxis());
    const size_t index = m_profile->GetLaneIndex(this);
    if (index != npos && index + 1 < m_profile->GetLaneCount())
        if (const LaneBorder* after = m_profile->GetRightLaneBorder(m_profile->GetLane(index + 1)))
            limited = std::min(limited, after->GetHorizDistToAxis());
    border->SetHorizDistToAxis(limited);
    return limited != x;
}

bool Lane::IsTooFast(double speed) const {
    constexpr double kNoLimit = Ruvex::VehicleTypeElement::gNoLimit;
    if (m_SpeedLimit == kNoLimit || speed == kNoLimit) return true;
    return speed <= m_SpeedLimit;
}

bool Lane::IsLeftSidewalk() const {
    if (m_laneType != eLaneSidewalk || !m_profile) return false;
    const size_t index = m_profile->GetLaneIndex(this);
    for (size_t i = 0; i < index && index != npos; ++i)
        if (const Lane* lane = m_profile->GetLane(i); lane && lane->IsPavedType()) return false;
    return true;
}

bool Lane::IsRightSidewalk() const {
    if (m_laneType != eLaneSidewalk || !m_profile) return false;
    const size_t index = m_profile->GetLaneIndex(this);
    if (index == npos) return true;
    for (size_t i = index + 1; i < m_profile->GetLaneCount(); ++i)
        if (const Lane* lane = m_profile->GetLane(i); lane && lane->IsPavedType()) return false;
    return true;
}

void Lane::SetMaterial(Ruvex::MaterialElement* material) {
    m_material = material;
    m_MaterialName = material ? material->GetName() : std::string();
}

bool Lane::IsEqual(const Lane* other) const {
    if (!other) return false;
    if (m_laneType != other->m_laneType || m_LaneTypeText != other->m_LaneTypeText || m_way != other->m_way ||
        m_CirculationWayText != other->m_CirculationWayText || m_SpeedLimit != other->m_SpeedLimit ||
        m_GroundName != other->m_GroundName || m_MaterialName != other->m_MaterialName)
        return false;
    const Ruvex::VehicleTypeElement* a = m_VehicleAuth.Get();
    const Ruvex::VehicleTypeElement* b = other->m_VehicleAuth.Get();
    if (!a || !b) return a == b;
    return a->GetVehicleCategories() == b->GetVehicleCategories() &&
           a->GetWeightLimit() == b->GetWeightLimit() &&
           a->GetWeightPerAxleLimit() == b->GetWeightPerAxleLimit() &&
           a->GetTrailedWeightLimit() == b->GetTrailedWeightLimit() &&
           a->GetHeightLimit() == b->GetHeightLimit() && a->GetWidthLimit() == b->GetWidthLimit() &&
           a->GetLengthLimit() == b->GetLengthLimit();
}

void Lane::CopyFrom(const Lane* other) {
    if (!other || other == this) return;
    const std::string name = m_name;
    Lane fresh;
    CopyElementContent(*other, fresh);
    m_LaneTypeText = fresh.m_LaneTypeText;
    m_CirculationWayText = fresh.m_CirculationWayText;
    m_SpeedLimit = fresh.m_SpeedLimit;
    m_GroundName = fresh.m_GroundName;
    m_MaterialName = fresh.m_MaterialName;
    m_UVMapping = fresh.m_UVMapping;
    m_VehicleAuth = fresh.m_VehicleAuth;
    m_name = name;
    m_laneType = other->m_laneType;
    m_way = other->m_way;
    m_ground = other->m_ground;
    m_material = other->m_material;
}

Lane* Lane::Clone() const {
    auto* copy = new Lane;
    CopyElementContent(*this, *copy);
    copy->m_laneType = m_laneType;
    copy->m_way = m_way;
    copy->m_ground = m_ground;
    copy->m_material = m_material;
    return copy;
}

// ---------------------------------------------------------------------------------------------------------------
// LaneBorder

LaneBorder::~LaneBorder() = default;

bool LaneBorder::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    // The place is the profile's to record (only when it loads unsound).
    m_line = 0;
    m_column = 0;
    return Ruvex::LaneBorderElement::LoadFromXMLElement(element, parser);
}

void LaneBorder::SetMarking(Marking* marking) {
    m_marking = marking;
    m_MarkingName = marking ? marking->GetName() : std::string();
}

Decoration* LaneBorder::GetDecoration() const {
    return dynamic_cast<Decoration*>(m_Decoration.Get());
}

Decoration* LaneBorder::GetOrCreateDecoration() {
    if (Decoration* decoration = GetDecoration()) return decoration;
    auto* decoration = new Decoration;
    m_Decoration = decoration;
    return decoration;
}

bool LaneBorder::IsEqual(const LaneBorder* other, double tolerance) const {
    if (!other) return false;
    if (std::fabs(m_HorizDistToAxis - other->m_HorizDistToAxis) > tolerance ||
        std::fabs(m_VertDistToAxis - other->m_VertDistToAxis) > tolerance ||
        std::fabs(m_MarkingOffset - other->m_MarkingOffset) > tolerance ||
        m_MarkingName != other->m_MarkingName)
        return false;
    const Ruvex::DecorationElement* a = m_Decoration.Get();
    const Ruvex::DecorationElement* b = other->m_Decoration.Get();
    if (!a || !b) return a == b;
    if (a->GetMaterialName() != b->GetMaterialName()) return false;
    const Ruvex::PolyLineElement* pa = a->GetPolyLine();
    const Ruvex::PolyLineElement* pb = b->GetPolyLine();
    if (!pa || !pb) return pa == pb;
    const auto* ra = dynamic_cast<const ::PolyLine*>(pa);
    const auto* rb = dynamic_cast<const ::PolyLine*>(pb);
    const std::vector<vek::Vector2>& points = ra ? ra->GetControlPoints() : pa->GetPoints();
    const std::vector<vek::Vector2>& otherPoints = rb ? rb->GetControlPoints() : pb->GetPoints();
    if (points.size() != otherPoints.size()) return false;
    for (size_t i = 0; i < points.size(); ++i)
        if (std::fabs(points[i].x - otherPoints[i].x) > tolerance ||
            std::fabs(points[i].y - otherPoints[i].y) > tolerance)
            return false;
    return true;
}

LaneBorder* LaneBorder::Clone() const {
    auto* copy = new LaneBorder;
    CopyElementContent(*this, *copy);
    if (const Decoration* decoration = GetDecoration()) copy->m_Decoration = decoration->Clone();
    copy->m_marking = m_marking;
    copy->m_line = m_line;
    copy->m_column = m_column;
    return copy;
}

}  // namespace Orvia

// Vehicle categories, directions and limits; and the lane's side of them, which the cross-section leaves to
// this module so that it does not depend on it.

#include <orvia/core/element_copy.h>
#include <orvia/geometry/profile.h>
#include <orvia/traffic/vehicle_authorisation.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace Orvia {

namespace {

struct CategoryRow {
    uint32_t bit;
    const char* text;
};

// Every conversion walks this table, in this order; the "none" row ends it.
constexpr std::array<CategoryRow, 25> kCategories = {{
    {0x1, "pedestrian"},
    {0x2, "bicycle"},
    {0x4, "moped"},
    {0x8, "motorcycle"},
    {0x10, "car"},
    {0x20, "trail"},
    {0x40, "caravan"},
    {0x80, "bus"},
    {0x100, "agricultural vehicle"},
    {0x200, "goods transport"},
    {0x400, "poluting transport"},
    {0x800, "dangerous transport"},
    {0x1000, "nailed tires"},
    {0x2000, "truck"},
    {0x4000, "tramway"},
    {0x8000, "train"},
    {0x10000, "police"},
    {0x20000, "firefighter"},
    {0x40000, "ambulance"},
    {0x80000, "slow vehicle"},
    {0x100000, "taxi"},
    {0x200000, "hov"},
    {0x400000, "airplane"},
    {0x800000, "helicopter"},
    {0, "none"},
}};

constexpr std::array<CategoryRow, 3> kDirections = {{{1, "straight"}, {2, "left"}, {4, "right"}}};

// Calls visit(part) for each ","-separated part of text.
template <class Visit>
void ForEachPart(std::string_view text, Visit visit) {
    while (true) {
        const size_t comma = text.find(',');
        visit(text.substr(0, comma));
        if (comma == std::string_view::npos) return;
        text.remove_prefix(comma + 1);
    }
}

// The row of an exact text, or null.
template <size_t N>
const CategoryRow* FindRow(const std::array<CategoryRow, N>& table, std::string_view text) {
    for (const CategoryRow& row : table)
        if (text == row.text) return &row;
    return nullptr;
}

template <size_t N>
std::string JoinBits(const std::array<CategoryRow, N>& table, uint32_t bits) {
    std::string out;
    for (const CategoryRow& row : table) {
        if (row.bit == 0 || (bits & row.bit) == 0) continue;
        if (!out.empty()) out += ',';
        out += row.text;
    }
    return out.empty() ? std::string("none") : out;
}

template <size_t N>
uint32_t SplitBits(const std::array<CategoryRow, N>& table, const char* text) {
    if (!text) return 0;
    uint32_t bits = 0;
    ForEachPart(text, [&](std::string_view part) {
        if (const CategoryRow* row = FindRow(table, part)) bits |= row->bit;
    });
    return bits;
}

double Looser(double a, double b) {
    constexpr double kNoLimit = VehicleAuthorisation::gNoLimit;
    return a == kNoLimit || b == kNoLimit ? kNoLimit : std::max(a, b);
}

}  // namespace

std::string DirectionToString(uint32_t directions) {
    return JoinBits(kDirections, directions);
}

uint32_t StringToDirection(const char* text) {
    return SplitBits(kDirections, text);
}

// ---------------------------------------------------------------------------------------------------------------
// VehicleAuthorisation

VehicleAuthorisation::VehicleAuthorisation(const VehicleAuthorisation& other) = default;
VehicleAuthorisation::~VehicleAuthorisation() = default;

bool VehicleAuthorisation::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    const bool loaded = Ruvex::VehicleTypeElement::LoadFromXMLElement(element, parser);
    ForEachPart(m_VehicleCategories, [&](std::string_view part) {
        if (!part.empty() && !FindRow(kCategories, part))
            parser->ReportWarning(element, "unknown vehicle category \"" + std::string(part) + "\", ignored");
    });
    return loaded;
}

void VehicleAuthorisation::SetVehicleCategories(uint32_t categories) {
    m_VehicleCategories = VehicleCategoriesToString(categories);
}

uint32_t VehicleAuthorisation::GetVehicleCategories() const {
    return StringToVehicleCategories(m_VehicleCategories.c_str());
}

void VehicleAuthorisation::AllowedVehicle(uint32_t categories) {
    SetVehicleCategories(GetVehicleCategories() | categories);
}

void VehicleAuthorisation::ForbidVehicle(uint32_t categories) {
    SetVehicleCategories(GetVehicleCategories() & ~categories);
}

VehicleAuthorisation* VehicleAuthorisation::operator|(const VehicleAuthorisation& other) const {
    auto* combined = new VehicleAuthorisation;
    combined->SetVehicleCategories(GetVehicleCategories() | other.GetVehicleCategories());
    combined->m_WeightLimit = Looser(m_WeightLimit, other.m_WeightLimit);
    combined->m_WeightPerAxleLimit = Looser(m_WeightPerAxleLimit, other.m_WeightPerAxleLimit);
    combined->m_TrailedWeightLimit = Looser(m_TrailedWeightLimit, other.m_TrailedWeightLimit);
    combined->m_HeightLimit = Looser(m_HeightLimit, other.m_HeightLimit);
    combined->m_WidthLimit = Looser(m_WidthLimit, other.m_WidthLimit);
    combined->m_LengthLimit = Looser(m_LengthLimit, other.m_LengthLimit);
    return combined;
}

VehicleAuthorisation* VehicleAuthorisation::Clone() const {
    auto* copy = new VehicleAuthorisation;
    CopyElementContent(*this, *copy);
    return copy;
}

void VehicleAuthorisation::CopyFrom(const VehicleAuthorisation* other) {
    if (!other || other == this) return;
    CopyElementContent(*other, *this);
}

const char* VehicleAuthorisation::ToString(uint32_t category) {
    if (category == 0) return nullptr;
    for (const CategoryRow& row : kCategories)
        if (row.bit == category) return row.text;
    return nullptr;
}

std::string VehicleAuthorisation::VehicleCategoriesToString(uint32_t categories) {
    return JoinBits(kCategories, categories);
}

uint32_t VehicleAuthorisation::StringToVehicleCategories(const char* text) {
    return SplitBits(kCategories, text);
}

VehicleAuthorisation::EVehicleCategory VehicleAuthorisation::VehicleCategoryFromString(const char* text) {
    const CategoryRow* row = text ? FindRow(kCategories, text) : nullptr;
    return row ? static_cast<EVehicleCategory>(row->bit) : eNone;
}

// ---------------------------------------------------------------------------------------------------------------
// The lane's vehicle rules

VehicleAuthorisation* Lane::GetVehicleAuth() const {
    return dynamic_cast<VehicleAuthorisation*>(m_VehicleAuth.Get());
}

void Lane::SetVehicleAuth(VehicleAuthorisation* authorisation) {
    m_VehicleAuth = authorisation;
}

bool Lane::IsCompatibleWith(Lane* other) const {
    if (!other) return false;
    const Ruvex::VehicleTypeElement* mine = m_VehicleAuth.Get();
    const Ruvex::VehicleTypeElement* theirs = other->m_VehicleAuth.Get();
    if (mine && theirs &&
        (VehicleAuthorisation::StringToVehicleCategories(mine->GetVehicleCategories().c_str()) &
         VehicleAuthorisation::StringToVehicleCategories(theirs->GetVehicleCategories().c_str())) == 0)
        return false;
    return (IsPavedType() && other->IsPavedType()) || (IsForAircraftType() && other->IsForAircraftType()) ||
           m_laneType == other->m_laneType;
}

}  // namespace Orvia

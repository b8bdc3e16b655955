// The rail objects that add little to their records: enumerated texts, property definitions and values,
// equipment.

#include <orvia/rail/rail_network.h>
#include <orvia/ruvex/schema.h>

#include <array>
#include <string>

namespace Rail {

namespace {

// Exact comparison in value order; a text that is none of them reads as value 0.
template <size_t N>
int ToValue(const std::array<std::string, N>& texts, const std::string& text) {
    for (size_t i = 0; i < N; ++i)
        if (texts[i] == text) return static_cast<int>(i);
    return 0;
}

template <size_t N>
const std::string& ToTextOr(const std::array<std::string, N>& texts, int value, const std::string& other) {
    return value >= 0 && static_cast<size_t>(value) < N ? texts[static_cast<size_t>(value)] : other;
}

const std::array<std::string, 4>& SwitchTexts() {
    static const std::array<std::string, 4> texts = {"ordinary", "curved", "outsideCurved", "threeWay"};
    return texts;
}
const std::array<std::string, 3>& CrossingTexts() {
    static const std::array<std::string, 3> texts = {"simple", "simpleSwitch", "doubleSwitch"};
    return texts;
}
const std::array<std::string, 2>& UsageTexts() {
    static const std::array<std::string, 2> texts = {"noInterpolation", "linearInterpolation"};
    return texts;
}
const std::array<std::string, 4>& DirectionTexts() {
    static const std::array<std::string, 4> texts = {"none", "direct", "inverse", "both"};
    return texts;
}

}  // namespace

// ---- Connections

const std::string& Switch::ToText(EType type) {
    return ToTextOr(SwitchTexts(), type, SwitchTexts()[0]);
}

Switch::EType Switch::ToSwitchType(const std::string& text) {
    return static_cast<EType>(ToValue(SwitchTexts(), text));
}

Switch::~Switch() = default;

const std::string& Crossing::ToText(EType type) {
    return ToTextOr(CrossingTexts(), type, CrossingTexts()[0]);
}

Crossing::EType Crossing::ToCrossingType(const std::string& text) {
    return static_cast<EType>(ToValue(CrossingTexts(), text));
}

Crossing::~Crossing() = default;

ConnectionReference::ConnectionReference() : Orvia::ReferenceElement("ConnectionReference") {}
ConnectionReference::~ConnectionReference() = default;

// ---- Mileage

const std::string& MileageSystem::ToText(EUsage usage) {
    return ToTextOr(UsageTexts(), usage, UsageTexts()[0]);
}

MileageSystem::EUsage MileageSystem::ToUsage(const std::string& text) {
    return static_cast<EUsage>(ToValue(UsageTexts(), text));
}

MileageSystem::~MileageSystem() = default;

// ---- Properties

DoubleProperty::~DoubleProperty() = default;
EnumProperty::~EnumProperty() = default;

void EnumProperty::AddEnum(const std::string& name) {
    Ruvex::CountedPtr<EnumElement> entry(new EnumElement);
    entry->SetValue(name);
    m_Enums.push_back(entry);
}

bool EnumProperty::RemoveEnum(size_t index) {
    if (index >= m_Enums.size()) return false;
    m_Enums.erase(m_Enums.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

bool EnumProperty::RemoveEnum(const std::string& name) {
    const int index = GetEnumIndex(name);
    return index >= 0 && RemoveEnum(static_cast<size_t>(index));
}

const std::string& EnumProperty::GetEnumName(size_t index) const {
    static const std::string none;
    return index < m_Enums.size() && m_Enums[index] ? m_Enums[index]->GetValue() : none;
}

int EnumProperty::GetEnumIndex(const std::string& name) const {
    for (size_t i = 0; i < m_Enums.size(); ++i)
        if (m_Enums[i] && m_Enums[i]->GetValue() == name) return static_cast<int>(i);
    return -1;
}

DoublePropertyValue::DoublePropertyValue() : PropertyValueElement(std::string("DoublePropertyValue")) {}
DoublePropertyValue::~DoublePropertyValue() = default;

double DoublePropertyValue::GetValue() const {
    double value = 0;
    return Ruvex::detail::ParseDouble(m_Value, value) == Ruvex::AttributeStatus::Ok ? value : 0.0;
}

void DoublePropertyValue::SetValue(double value) {
    Ruvex::FormatBuffer buffer;
    m_Value = std::string(Ruvex::detail::FormatDouble(value, buffer));
}

EnumPropertyValue::EnumPropertyValue() : PropertyValueElement(std::string("EnumPropertyValue")) {}
EnumPropertyValue::~EnumPropertyValue() = default;

void EnumPropertyValue::SetEnumName(const std::string& name) {
    m_Value = name;
    m_index = m_property ? m_property->GetEnumIndex(name) : -1;
}

void EnumPropertyValue::SetEnumIndex(int index) {
    m_index = index;
    if (m_property && index >= 0 && static_cast<size_t>(index) < m_property->GetEnumCount())
        m_Value = m_property->GetEnumName(static_cast<size_t>(index));
}

void EnumPropertyValue::PostLoad(EnumProperty* property) {
    m_property = property;
    m_index = property ? property->GetEnumIndex(m_Value) : -1;
}

const std::string& PropertyChange::ToText(EDirection direction) {
    static const std::string unknown = "unknown";
    return ToTextOr(DirectionTexts(), direction, unknown);
}

PropertyChange::EDirection PropertyChange::ToDirection(const std::string& text) {
    return static_cast<EDirection>(ToValue(DirectionTexts(), text));
}

PropertyChange::~PropertyChange() = default;
PropertySpan::~PropertySpan() = default;

// ---- Equipment

Signal::~Signal() = default;
Balise::~Balise() = default;
TelegramCalculator::~TelegramCalculator() = default;
TrainDetection::~TrainDetection() = default;

}  // namespace Rail

// Lamps, their countdown timers and the states of a programme.

#include <orvia/core/element_copy.h>
#include <orvia/core/legacy_converter.h>
#include <orvia/traffic/traffic_light.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace Orvia {

namespace {

// Older documents write states in the layout the legacy converter reads.
constexpr uint32_t kStateLegacyVersion = Ruvex::MakeVersionID(1, 4, 9);

// A timer shows at most two digits.
constexpr int kTimerCap = 99;

constexpr std::array<const char*, 4> kColorTexts = {"nocolor", "red", "orange", "green"};
constexpr std::array<const char*, 3> kIlluminationTexts = {"off", "on", "blinking"};

template <size_t N>
uint32_t IndexOf(const std::array<const char*, N>& texts, std::string_view text, bool& found) {
    for (size_t i = 0; i < N; ++i)
        if (text == texts[i]) {
            found = true;
            return static_cast<uint32_t>(i);
        }
    found = false;
    return 0;
}

bool IsSeparator(char c) {
    return c == ',' || c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Calls visit(word) for each word of text separated by commas or blanks.
template <class Visit>
void ForEachWord(std::string_view text, Visit visit) {
    size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && IsSeparator(text[i]))
            ++i;
        size_t end = i;
        while (end < text.size() && !IsSeparator(text[end]))
            ++end;
        if (end > i) visit(text.substr(i, end - i));
        i = end;
    }
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------
// Timer

Timer::~Timer() = default;

void Timer::SetTimeValue(double v) {
    m_TimeValue = v;
    const double shown = std::trunc(v + 0.5);
    // Not finite or far below any real countdown: keep the conversion to int defined.
    int whole = kTimerCap;
    if (shown < kTimerCap) whole = shown > -1e9 ? static_cast<int>(shown) : -1000000000;
    if (whole >= 0) {  // the usual countdown: two digits without the cost of formatting
        const char digits[2] = {static_cast<char>('0' + whole / 10), static_cast<char>('0' + whole % 10)};
        m_TextValue.assign(digits, 2);
        return;
    }
    std::array<char, 16> text{};
    const int n = std::snprintf(text.data(), text.size(), "%02d", whole);
    m_TextValue.assign(text.data(), static_cast<size_t>(n > 0 ? n : 0));
}

Timer* Timer::Clone() const {
    auto* copy = new Timer;
    CopyElementContent(*this, *copy);
    return copy;
}

void Timer::CopyFrom(const Timer* other) {
    if (!other || other == this) return;
    CopyElementContent(*other, *this);
}

// ---------------------------------------------------------------------------------------------------------------
// Light

Light::~Light() = default;

const char* Light::ToText(EColor color) {
    return color < kColorTexts.size() ? kColorTexts[color] : kColorTexts[0];
}

const char* Light::ToText(EIllumination illumination) {
    return illumination < kIlluminationTexts.size() ? kIlluminationTexts[illumination]
                                                    : kIlluminationTexts[0];
}

Light::EColor Light::ToEColor(const char* text) {
    bool found = false;
    return text ? static_cast<EColor>(IndexOf(kColorTexts, text, found)) : eNoColor;
}

Light::EIllumination Light::ToEIllumination(const char* text) {
    bool found = false;
    return text ? static_cast<EIllumination>(IndexOf(kIlluminationTexts, text, found)) : eOff;
}

bool Light::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    const bool loaded = Ruvex::LightElement::LoadFromXMLElement(element, parser);
    bool found = false;
    IndexOf(kColorTexts, m_Color, found);
    if (!found) parser->ReportWarning(element, "unknown light colour \"" + m_Color + "\", read as nocolor");
    IndexOf(kIlluminationTexts, m_Illumination, found);
    if (!found)
        parser->ReportWarning(element, "unknown illumination \"" + m_Illumination + "\", read as off");
    ReadTexts();
    return loaded;
}

void Light::ReadTexts() {
    m_color = ToEColor(m_Color.c_str());
    m_direction = StringToDirection(m_Direction.c_str());
    m_illumination = ToEIllumination(m_Illumination.c_str());
    m_vehicle = VehicleAuthorisation::StringToVehicleCategories(m_Vehicle.c_str());
}

void Light::SetColor(EColor color) {
    m_color = color < kColorTexts.size() ? color : eNoColor;
    m_Color = ToText(m_color);
}

void Light::SetDirection(uint32_t directions) {
    m_direction = directions & eDirectionAll;
    m_Direction = DirectionToString(m_direction);
}

void Light::SetIllumination(EIllumination illumination) {
    m_illumination = illumination < kIlluminationTexts.size() ? illumination : eOff;
    m_Illumination = ToText(m_illumination);
}

void Light::SetVehicle(uint32_t categories) {
    m_Vehicle = VehicleAuthorisation::VehicleCategoriesToString(categories);
    m_vehicle = VehicleAuthorisation::StringToVehicleCategories(m_Vehicle.c_str());
}

Timer* Light::GetTimer() const {
    return dynamic_cast<Timer*>(m_Timer.Get());
}

bool Light::operator==(const Light& other) const {
    return m_Color == other.m_Color && m_Direction == other.m_Direction &&
           m_Illumination == other.m_Illumination && m_Vehicle == other.m_Vehicle;
}

Light* Light::Clone() const {
    auto* copy = new Light;
    copy->CopyFrom(this);
    return copy;
}

void Light::CopyFrom(const Light* other) {
    if (!other || other == this) return;
    m_Timer = nullptr;
    CopyElementContent(*other, *this);
    ReadTexts();
}

// ---------------------------------------------------------------------------------------------------------------
// TrafficLightState

TrafficLightState::~TrafficLightState() = default;

bool TrafficLightState::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    m_line = element->GetLine();
    m_column = element->GetColumn();
    const bool loaded = parser->GetVersion() <= kStateLegacyVersion
                            ? QorOldData::DataConverter::LoadTrafficLightState(this, element, parser)
                            : Ruvex::TrafficLightStateElement::LoadFromXMLElement(element, parser);
    if (!(m_TimeLength >= 0.0) || !std::isfinite(m_TimeLength)) {
        std::array<char, 32> length{};
        std::snprintf(length.data(), length.size(), "%g", m_TimeLength);
        parser->ReportWarning(element, "traffic light state of time length " + std::string(length.data()) +
                                           ", read as 0 (never active)");
        m_TimeLength = 0.0;
    } else if (m_TimeLength == 0.0) {
        parser->ReportWarning(element, "traffic light state of time length 0 is never active");
    }
    ForEachWord(m_Illuminations, [&](std::string_view word) {
        bool found = false;
        IndexOf(kIlluminationTexts, word, found);
        if (!found)
            parser->ReportWarning(element, "unknown illumination \"" + std::string(word) + "\", read as off");
    });
    ReadIlluminations();
    return loaded;
}

void TrafficLightState::ReadIlluminations() {
    m_illuminations.clear();
    ForEachWord(m_Illuminations, [&](std::string_view word) {
        bool found = false;
        m_illuminations.push_back(
            static_cast<Light::EIllumination>(IndexOf(kIlluminationTexts, word, found)));
    });
}

void TrafficLightState::WriteIlluminations() {
    m_Illuminations.clear();
    for (Light::EIllumination illumination : m_illuminations) {
        if (!m_Illuminations.empty()) m_Illuminations += ',';
        m_Illuminations += Light::ToText(illumination);
    }
}

void TrafficLightState::AddIllumination(Light::EIllumination illumination) {
    m_illuminations.push_back(illumination);
    WriteIlluminations();
}

void TrafficLightState::InsertIllumination(size_t index, Light::EIllumination illumination) {
    if (index > m_illuminations.size()) index = m_illuminations.size();
    m_illuminations.insert(m_illuminations.begin() + static_cast<std::ptrdiff_t>(index), illumination);
    WriteIlluminations();
}

bool TrafficLightState::RemoveIllumination(size_t index) {
    if (index >= m_illuminations.size()) return false;
    m_illuminations.erase(m_illuminations.begin() + static_cast<std::ptrdiff_t>(index));
    WriteIlluminations();
    return true;
}

void TrafficLightState::Clear() {
    m_illuminations.clear();
    m_Illuminations.clear();
}

TrafficLightState* TrafficLightState::Clone() const {
    auto* copy = new TrafficLightState;
    copy->CopyFrom(this);
    return copy;
}

void TrafficLightState::CopyFrom(const TrafficLightState* other) {
    if (!other || other == this) return;
    CopyElementContent(*other, *this);
    m_illuminations = other->m_illuminations;
    m_endTime = other->m_endTime;
    m_timeToRedChange = other->m_timeToRedChange;
}

}  // namespace Orvia

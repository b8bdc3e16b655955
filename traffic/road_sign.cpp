// Road signs with their lamps and observers, and obstacles.

#include <orvia/core/element_copy.h>
#include <orvia/traffic/road_sign.h>

#include <array>
#include <string_view>

namespace Orvia {

namespace {

// Indexed by ESignType.
constexpr std::array<const char*, 96> kSignTypeTexts = {
    "unknown",
    "danger",
    "danger right turn",
    "danger left turn",
    "danger speed bump",
    "danger right priority",
    "danger traffic light ahead",
    "danger round about ahead",
    "danger crosswind",
    "danger right double curve",
    "danger left double curve",
    "danger children",
    "danger falling rocks",
    "danger domestic animals",
    "danger roadworks ahead",
    "yield",
    "stop",
    "traffic light",
    "wrong way",
    "no left turn",
    "no right turn",
    "no U turn",
    "no overtaking",
    "barrier",
    "no parking",
    "no stop or parking",
    "straight obligatory",
    "left turn obligatory",
    "right turn obligatory",
    "left or right obligatory",
    "proceed straight or turn left",
    "proceed straight or turn right",
    "left direction obligatory",
    "right direction obligatory",
    "pass on right side",
    "pass on left side",
    "message board",
    "distance board",
    "parking",
    "dead end",
    "toll gate",
    "start highway",
    "end highway",
    "start prioritary road",
    "end prioritary road",
    "direction",
    "exit",
    "one way",
    "pedestrian area",
    "pedestrian crossing",
    "railroad crossing",
    "tramway crossing",
    "pedestrian crossing ahead",
    "tram crossing ahead",
    "speed limit",
    "end speed limit",
    "minimum speed",
    "speed limit zone",
    "end speed limit zone",
    "entering built-up area",
    "leaving built-up area",
    "cycle lane",
    "end cycle lane",
    "reserved bicycle",
    "end reserved bicycle",
    "reserved pedestrian",
    "end reserved pedestrian",
    "reserved public transport",
    "end reserved public transport",
    "reserved tram",
    "end reserved tram",
    "reserved equestrian",
    "end reserved equestrian",
    "danger two way traffic",
    "overtake segment",
    "double overtake segment",
    "end no overtaking",
    "switch on headlamps",
    "switch off headlamps",
    "tunnel",
    "beacon",
    "beacon turn right",
    "beacon turn left",
    "maximum height",
    "bus stop",
    "end of obligation",
    "minimum distance",
    "snow chains obligatory",
    "left straight arrow",
    "left arrow",
    "straight arrow",
    "right arrow",
    "right straight arrow",
    "yield line",
    "stop line",
    "traffic light line",
};

constexpr std::array<const char*, 4> kDodgeWayTexts = {"left", "right", "both sides", "cannot"};

template <size_t N>
bool FindText(const std::array<const char*, N>& texts, std::string_view text, uint32_t& index) {
    for (size_t i = 0; i < N; ++i)
        if (text == texts[i]) {
            index = static_cast<uint32_t>(i);
            return true;
        }
    return false;
}

// Whom a new sign addresses, and the lamps of a new traffic light.
constexpr uint32_t kAllCategories = 0xFFFFFFFFu;
constexpr uint32_t kRoadVehiclesAndPedestrians =
    VehicleAuthorisation::kRoadVehicles | VehicleAuthorisation::ePedestrian;

}  // namespace

// ---------------------------------------------------------------------------------------------------------------
// RoadSign

RoadSign::RoadSign(ESignType type) {
    SetSignType(type);
    auto* authorisation = new VehicleAuthorisation;
    m_VehicleType = authorisation;
    if (type == eTrafficLight) {
        struct Lamp {
            const char* name;
            Light::EColor color;
            Light::EIllumination illumination;
        };
        for (const Lamp& lamp :
             {Lamp{"LAMP03", Light::eRed, Light::eOff}, Lamp{"LAMP02", Light::eOrange, Light::eOff},
              Lamp{"LAMP01", Light::eGreen, Light::eOn}}) {
            auto* light = new Light;
            light->SetName(lamp.name);
            light->SetColor(lamp.color);
            light->SetIllumination(lamp.illumination);
            light->SetDirection(eDirectionAll);
            light->SetVehicle(VehicleAuthorisation::kRoadVehicles);
            AddLight(light);
        }
        // Every category: the set is kept as its words, so the bits beyond the table do not survive.
        authorisation->SetVehicleCategories(kAllCategories);
    } else if (type == ePedestrianCrossing) {
        authorisation->SetVehicleCategories(kRoadVehiclesAndPedestrians);
    } else {
        authorisation->SetVehicleCategories(VehicleAuthorisation::kRoadVehicles);
    }
}

RoadSign::~RoadSign() = default;

const char* RoadSign::ToText(ESignType type) {
    return type < kSignTypeTexts.size() ? kSignTypeTexts[type] : kSignTypeTexts[eUnknown];
}

RoadSign::ESignType RoadSign::ToESignType(const char* text) {
    uint32_t index = eUnknown;
    return text && FindText(kSignTypeTexts, text, index) ? static_cast<ESignType>(index) : eUnknown;
}

bool RoadSign::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    m_Lights.clear();
    const bool loaded = Ruvex::RoadSignElement::LoadFromXMLElement(element, parser);
    uint32_t index = eUnknown;
    if (!FindText(kSignTypeTexts, m_SignType, index))
        parser->ReportWarning(element, "unknown sign type \"" + m_SignType + "\", read as unknown");
    m_signType = static_cast<ESignType>(index);
    m_direction = StringToDirection(m_Direction.c_str());
    RefreshLights();
    return loaded;
}

void RoadSign::RefreshLights() {
    m_lights.clear();
    m_lights.reserve(m_Lights.size());
    for (size_t i = 0; i < m_Lights.size();) {
        if (!m_Lights[i]) {
            m_Lights.erase(m_Lights.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        auto* light = dynamic_cast<Light*>(m_Lights[i].Get());
        if (!light) {
            // A plain record (made without the library's factory) becomes a lamp with the same content.
            Ruvex::CountedPtr<Light> converted(new Light);
            CopyElementContent(*m_Lights[i], *converted);
            converted->ReadTexts();
            light = converted.Get();
            m_Lights[i] = light;
        }
        m_lights.push_back(light);
        ++i;
    }
}

void RoadSign::SetSignType(ESignType type) {
    m_signType = type < kSignTypeTexts.size() ? type : eUnknown;
    m_SignType = ToText(m_signType);
}

void RoadSign::SetDirection(uint32_t directions) {
    m_direction = directions & eDirectionAll;
    m_Direction = DirectionToString(m_direction);
}

VehicleAuthorisation* RoadSign::GetVehicleAuthorisation() const {
    return dynamic_cast<VehicleAuthorisation*>(m_VehicleType.Get());
}

void RoadSign::AddLight(Light* light) {
    InsertLight(m_lights.size(), light);
}

void RoadSign::InsertLight(size_t index, Light* light) {
    if (!light) return;
    if (index > m_lights.size()) index = m_lights.size();
    m_Lights.insert(m_Lights.begin() + static_cast<std::ptrdiff_t>(index),
                    Ruvex::CountedPtr<Ruvex::LightElement>(light));
    m_lights.insert(m_lights.begin() + static_cast<std::ptrdiff_t>(index), light);
}

bool RoadSign::RemoveLight(size_t index) {
    if (index >= m_lights.size()) return false;
    m_Lights.erase(m_Lights.begin() + static_cast<std::ptrdiff_t>(index));
    m_lights.erase(m_lights.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

void RoadSign::Clear() {
    m_Lights.clear();
    m_lights.clear();
}

size_t RoadSign::GetLightId(Light::EColor colour, uint32_t direction, uint32_t category) const {
    for (size_t i = 0; i < m_lights.size(); ++i) {
        const Light& light = *m_lights[i];
        if ((light.Vehicle() & category) != 0 && light.Color() == colour &&
            (light.Direction() & direction) != 0)
            return i;
    }
    return npos;
}

bool RoadSign::GetLightState(uint32_t category, Light::EColor colour, Light::EIllumination& out) const {
    for (const Light* light : m_lights)
        if ((light->Vehicle() & category) != 0 && light->Color() == colour) {
            out = light->Illumination();
            return true;
        }
    return false;
}

void RoadSign::RegisterObserver(RoadSignObserver* observer) {
    if (observer) m_observers.push_back(observer);
}

void RoadSign::NotifyObservers() {
    for (RoadSignObserver* observer : m_observers)
        observer->OnRoadSignChanged(this);
}

void RoadSign::OnLightsChanged() {
    NotifyObservers();
}

RoadSign* RoadSign::Clone() const {
    auto* copy = new RoadSign;
    copy->CopyFrom(this);
    return copy;
}

void RoadSign::CopyFrom(const RoadSign* other) {
    if (!other || other == this) return;
    m_Lights.clear();
    m_VehicleType = nullptr;
    CopyElementContent(*other, *this);
    m_signType = other->m_signType;
    m_direction = other->m_direction;
    RefreshLights();
}

// ---------------------------------------------------------------------------------------------------------------
// Obstacle

Obstacle::~Obstacle() = default;

const char* Obstacle::ToText(EDodgeWay way) {
    return way < kDodgeWayTexts.size() ? kDodgeWayTexts[way] : "unknown";
}

Obstacle::EDodgeWay Obstacle::FromText(const char* text) {
    uint32_t index = eLeft;
    return text && FindText(kDodgeWayTexts, text, index) ? static_cast<EDodgeWay>(index) : eLeft;
}

bool Obstacle::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    const bool loaded = Ruvex::ObstacleElement::LoadFromXMLElement(element, parser);
    uint32_t index = eLeft;
    if (!FindText(kDodgeWayTexts, m_DodgeWay, index))
        parser->ReportWarning(element, "unknown dodge way \"" + m_DodgeWay + "\", read as left");
    m_dodgeWay = static_cast<EDodgeWay>(index);
    return loaded;
}

bool Obstacle::Collides(double x, double y, double z) const {
    return GetDimensions().contains(vek::Vector3{x, y, z});
}

void Obstacle::SetDimensions(const vek::Box3& box) {
    m_Min = box.min;
    m_Max = box.max;
}

vek::Box3 Obstacle::GetDimensions() const {
    vek::Box3 box;
    box.min = m_Min;
    box.max = m_Max;
    return box;
}

void Obstacle::SetDodgeWay(EDodgeWay way) {
    m_dodgeWay = way < kDodgeWayTexts.size() ? way : eLeft;
    m_DodgeWay = ToText(m_dodgeWay);
}

Obstacle* Obstacle::Clone() const {
    auto* copy = new Obstacle;
    copy->CopyFrom(this);
    return copy;
}

void Obstacle::CopyFrom(const Obstacle* other) {
    if (!other || other == this) return;
    CopyElementContent(*other, *this);
    m_dodgeWay = other->m_dodgeWay;
}

}  // namespace Orvia

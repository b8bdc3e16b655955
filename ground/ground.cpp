#include <orvia/core/element_copy.h>
#include <orvia/geometry/profile.h>
#include <orvia/ground/ground.h>
#include <orvia/ruvex/factory.h>

#include <array>
#include <cstring>

namespace Orvia {

namespace {

constexpr std::array<const char*, 4> kGroundTypeTexts = {"asphalt", "concrete", "grass", "cobblestone"};

}  // namespace

// ---------------------------------------------------------------------------------------------------------------
// Ground

Ground::Ground(const Ground& other) : Ruvex::GroundElement() {
    CopyFrom(&other);
}

Ground& Ground::operator=(const Ground& other) {
    CopyFrom(&other);
    return *this;
}

Ground::~Ground() = default;

const char* Ground::ToText(GroundType type) {
    return static_cast<size_t>(type) < kGroundTypeTexts.size() ? kGroundTypeTexts[type] : kGroundTypeTexts[0];
}

GroundType Ground::ToEType(const char* text) {
    if (!text) return eGroundAsphalt;
    for (size_t i = 0; i < kGroundTypeTexts.size(); ++i)
        if (std::strcmp(kGroundTypeTexts[i], text) == 0) return static_cast<GroundType>(i);
    return eGroundAsphalt;
}

bool Ground::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    const bool loaded = Ruvex::GroundElement::LoadFromXMLElement(element, parser);
    m_type = ToEType(m_Type.c_str());
    if (m_Type != ToText(m_type))
        parser->ReportWarning(element, "unknown ground type \"" + m_Type + "\", read as asphalt");
    return loaded;
}

void Ground::SetTypeId(GroundType type) {
    m_type = static_cast<size_t>(type) < kGroundTypeTexts.size() ? type : eGroundAsphalt;
    m_Type = ToText(m_type);
}

void Ground::SetIsSoftGround(bool soft) {
    m_IsSoftGround = soft;
    if (soft && !m_SoftGroundProperties) m_SoftGroundProperties = new SoftGroundPropertiesElement;
}

SoftGroundPropertiesElement* Ground::GetSoftGround() const {
    return dynamic_cast<SoftGroundPropertiesElement*>(m_SoftGroundProperties.Get());
}

void Ground::SetIsTerramecanicsSoftGroundModel() {
    if (!GetSoftGround()) m_SoftGroundProperties = new SoftGroundPropertiesElement;
    GetSoftGround()->SetIsTerramecanicsSoftGroundModel();
}

void Ground::SetIsFunctionnalSoftGroundModel() {
    if (!GetSoftGround()) m_SoftGroundProperties = new SoftGroundPropertiesElement;
    GetSoftGround()->SetIsFunctionnalSoftGroundModel();
}

bool Ground::IsEqual(const Ground* other) const {
    return other && ElementContentEquals(*this, *other);
}

void Ground::CopyFrom(const Ground* other) {
    if (!other || other == this) return;
    Ruvex::CountedPtr<Ground> copy(new Ground);
    CopyElementContent(*other, *copy);
    m_name = copy->m_name;
    m_Type = copy->m_Type;
    m_IsSoftGround = copy->m_IsSoftGround;
    m_Roughness = copy->m_Roughness;
    m_SoftGroundProperties = copy->m_SoftGroundProperties;
    ClearPreserved();
    if (const Ruvex::PreservedContent* kept = copy->GetPreserved()) EditPreserved() = *kept;
    m_type = other->m_type;
}

Ground* Ground::Clone() const {
    auto* copy = new Ground;
    copy->CopyFrom(this);
    return copy;
}

Ground* Ground::Load(const char* path) {
    if (!path) return nullptr;
    Ruvex::Element* root = Ruvex::Load(path, false);
    auto* ground = dynamic_cast<Ground*>(root);
    if (!ground && root) root->Release();  // never referenced: destroyed
    return ground;
}

bool Ground::Save(const char* path) {
    return path && Ruvex::Save(this, path);
}

// ---------------------------------------------------------------------------------------------------------------
// Roughness records

Roughness::~Roughness() = default;

bool Roughness::IsEqual(const Roughness* other) const {
    return other && ElementContentEquals(*this, *other);
}

void Roughness::CopyFrom(const Roughness* other) {
    if (!other || other == this) return;
    m_Points.clear();
    m_Scale = nullptr;
    m_Offset = nullptr;
    m_Analytic = nullptr;
    ClearPreserved();
    CopyElementContent(*other, *this);
}

Analytic::~Analytic() = default;

bool Analytic::IsEqual(const Analytic* other) const {
    return other && ElementContentEquals(*this, *other);
}

void Analytic::CopyFrom(const Analytic* other) {
    if (!other || other == this) return;
    ClearPreserved();
    CopyElementContent(*other, *this);
}

Point2x2D::Point2x2D(double value0, double value1, double value2, double value3, double value4,
                     const std::string& tag)
    : Ruvex::Point2x2DElement(tag) {
    m_Value0 = value0;
    m_Value1 = value1;
    m_Value2 = value2;
    m_Value3 = value3;
    m_Value4 = value4;
}
Point2x2D::~Point2x2D() = default;

bool Point2x2D::IsEqual(const Point2x2D* other) const {
    return other && ElementContentEquals(*this, *other);
}

void Point2x2D::CopyFrom(const Point2x2D* other) {
    if (!other || other == this) return;
    m_Value0 = other->m_Value0;
    m_Value1 = other->m_Value1;
    m_Value2 = other->m_Value2;
    m_Value3 = other->m_Value3;
    m_Value4 = other->m_Value4;
}

// ---------------------------------------------------------------------------------------------------------------
// Soft ground

SoftGroundPropertiesElement::SoftGroundPropertiesElement() {
    m_TerraMecanicsModel = new TerramecanicsGroundElement;
    m_FunctionalModel = new FunctionalGroundElement;
    SetIsFunctionnalSoftGroundModel();
}

SoftGroundPropertiesElement::~SoftGroundPropertiesElement() = default;

bool SoftGroundPropertiesElement::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    // The file decides which models exist.
    m_TerraMecanicsModel = nullptr;
    m_FunctionalModel = nullptr;
    return Ruvex::SoftGroundPropertiesElement::LoadFromXMLElement(element, parser);
}

TerramecanicsGroundElement* SoftGroundPropertiesElement::GetTerramecanicsModel() const {
    return dynamic_cast<TerramecanicsGroundElement*>(m_TerraMecanicsModel.Get());
}

FunctionalGroundElement* SoftGroundPropertiesElement::GetFunctionalModel() const {
    return dynamic_cast<FunctionalGroundElement*>(m_FunctionalModel.Get());
}

void SoftGroundPropertiesElement::SetIsTerramecanicsSoftGroundModel() {
    if (!m_TerraMecanicsModel) m_TerraMecanicsModel = new TerramecanicsGroundElement;
    if (!m_FunctionalModel) m_FunctionalModel = new FunctionalGroundElement;
    m_TerraMecanicsModel->SetIsActive(true);
    m_FunctionalModel->SetIsActive(false);
}

void SoftGroundPropertiesElement::SetIsFunctionnalSoftGroundModel() {
    if (!m_TerraMecanicsModel) m_TerraMecanicsModel = new TerramecanicsGroundElement;
    if (!m_FunctionalModel) m_FunctionalModel = new FunctionalGroundElement;
    m_TerraMecanicsModel->SetIsActive(false);
    m_FunctionalModel->SetIsActive(true);
}

bool SoftGroundPropertiesElement::IsEqual(const SoftGroundPropertiesElement* other) const {
    return other && ElementContentEquals(*this, *other);
}

FunctionalGroundElement::~FunctionalGroundElement() = default;

bool FunctionalGroundElement::IsEqual(const FunctionalGroundElement* other) const {
    return other && ElementContentEquals(*this, *other);
}

TerramecanicsGroundElement::~TerramecanicsGroundElement() = default;

bool TerramecanicsGroundElement::IsEqual(const TerramecanicsGroundElement* other) const {
    return other && ElementContentEquals(*this, *other);
}

// ---------------------------------------------------------------------------------------------------------------
// The lane's ground and the profile library's grounds, which the cross-section leaves to this module so that
// it does not depend on it.

Ground* Lane::GetGround() const {
    return dynamic_cast<Ground*>(m_ground.Get());
}

void Lane::SetGround(Ground* ground) {
    m_ground = ground;
    m_GroundName = ground ? ground->GetName() : std::string();
}

Ground* ProfileStandalone::FindGround(const std::string& name) const {
    const size_t index = m_Grounds.find(name);
    return index == m_Grounds.npos ? nullptr : dynamic_cast<Ground*>(m_Grounds[index].Get());
}

}  // namespace Orvia

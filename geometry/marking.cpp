// Markings and decorations of lane borders, and the marking library file.

#include <orvia/core/element_copy.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/factory.h>

#include <array>
#include <cstring>

namespace Orvia {

namespace {

constexpr std::array<const char*, 4> kLogicTexts = {"unknown", "can", "warning", "cannot"};

Ruvex::MaterialElement* FindMaterial(
    const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MaterialElement>>& materials, const std::string& name) {
    if (name.empty()) return nullptr;
    const size_t index = materials.find(name);
    return index == materials.npos ? nullptr : materials[index].Get();
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------
// Marking

Marking::Marking(const Marking& other) = default;
Marking::~Marking() = default;

Marking::EMarkingLogic Marking::ToEMarkingLogic(const char* text) {
    if (!text) return eUnknown;
    for (size_t i = 0; i < kLogicTexts.size(); ++i)
        if (std::strcmp(kLogicTexts[i], text) == 0) return static_cast<EMarkingLogic>(i);
    return eUnknown;
}

const char* Marking::ToText(EMarkingLogic logic) {
    return static_cast<size_t>(logic) < kLogicTexts.size() ? kLogicTexts[logic] : kLogicTexts[0];
}

bool Marking::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    const bool loaded = Ruvex::MarkingElement::LoadFromXMLElement(element, parser);
    m_leftToRight = ToEMarkingLogic(m_LeftToRight.c_str());
    m_rightToLeft = ToEMarkingLogic(m_RightToLeft.c_str());
    for (const std::string* text : {&m_LeftToRight, &m_RightToLeft})
        if (ToEMarkingLogic(text->c_str()) == eUnknown && *text != kLogicTexts[0])
            parser->ReportWarning(element, "unknown marking logic \"" + *text + "\", read as unknown");
    return loaded;
}

void Marking::SetLeftToRightId(EMarkingLogic logic) {
    m_leftToRight = static_cast<size_t>(logic) < kLogicTexts.size() ? logic : eUnknown;
    m_LeftToRight = ToText(m_leftToRight);
}

void Marking::SetRightToLeftId(EMarkingLogic logic) {
    m_rightToLeft = static_cast<size_t>(logic) < kLogicTexts.size() ? logic : eUnknown;
    m_RightToLeft = ToText(m_rightToLeft);
}

void Marking::SetMaterial(Ruvex::MaterialElement* material) {
    m_material = material;
    m_MaterialName = material ? material->GetName() : std::string();
}

void Marking::PostLoad(const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MaterialElement>>& materials) {
    m_material = FindMaterial(materials, m_MaterialName);
}

bool Marking::IsEqual(const Marking* other) const {
    return other && m_Width == other->m_Width && m_LineLength == other->m_LineLength &&
           m_TotLength == other->m_TotLength && m_DoubleMarking == other->m_DoubleMarking &&
           m_Category == other->m_Category && m_MarkingQuality == other->m_MarkingQuality &&
           LogicIsEqual(other) && m_MaterialName == other->m_MaterialName;
}

bool Marking::LogicIsEqual(const Marking* other) const {
    return other && m_leftToRight == other->m_leftToRight && m_rightToLeft == other->m_rightToLeft;
}

Marking* Marking::Clone() const {
    auto* copy = new Marking;
    CopyElementContent(*this, *copy);
    copy->m_leftToRight = m_leftToRight;
    copy->m_rightToLeft = m_rightToLeft;
    copy->m_material = m_material;
    return copy;
}

bool Marking::Save(const char* path) const {
    if (!path) return false;
    Ruvex::CountedPtr<MarkingStandalone> library(new MarkingStandalone);
    library->EditMarkings().push_back(Ruvex::CountedPtr<Ruvex::MarkingElement>(Clone()));
    if (m_material)
        if (Ruvex::Element* material = CloneElement(*m_material))
            library->EditMaterials().push_back(
                Ruvex::CountedPtr<Ruvex::MaterialElement>(static_cast<Ruvex::MaterialElement*>(material)));
    return library->Save(path);
}

Marking* Marking::Load(const char* path) {
    Ruvex::CountedPtr<MarkingStandalone> library(MarkingStandalone::Load(path));
    const Marking* marking = library ? library->GetMarking() : nullptr;
    return marking ? marking->Clone() : nullptr;
}

// ---------------------------------------------------------------------------------------------------------------
// Decoration

Decoration::~Decoration() = default;

::PolyLine* Decoration::GetPolyLine() const {
    return dynamic_cast<::PolyLine*>(m_PolyLine.Get());
}

void Decoration::SetMaterial(Ruvex::MaterialElement* material) {
    m_material = material;
    m_MaterialName = material ? material->GetName() : std::string();
}

bool Decoration::HasDecoration() const {
    if (const ::PolyLine* shape = GetPolyLine()) return shape->GetControlPointsCount() >= 2;
    return m_PolyLine && m_PolyLine->GetPoints().size() >= 2;
}

double Decoration::GetApproximatePolylineLength() const {
    const ::PolyLine* shape = GetPolyLine();
    return shape ? shape->GetPolylineLength() : 0.0;
}

void Decoration::PostLoad(const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MaterialElement>>& materials) {
    m_material = FindMaterial(materials, m_MaterialName);
}

void Decoration::CopyFrom(const Decoration* other) {
    if (!other || other == this) return;
    Ruvex::CountedPtr<Decoration> copy(other->Clone());
    m_MaterialName = copy->m_MaterialName;
    m_PolyLine = copy->m_PolyLine;
    m_UVMapping = copy->m_UVMapping;
    m_material = copy->m_material;
    if (const Ruvex::PreservedContent* kept = copy->GetPreserved())
        EditPreserved() = *kept;
    else
        ClearPreserved();
}

Decoration* Decoration::Clone() const {
    auto* copy = new Decoration;
    CopyElementContent(*this, *copy);
    // The shape's runtime points may be ahead of its record.
    if (const ::PolyLine* shape = GetPolyLine()) copy->m_PolyLine = shape->Clone();
    copy->m_material = m_material;
    return copy;
}

// ---------------------------------------------------------------------------------------------------------------
// MarkingStandalone

MarkingStandalone::~MarkingStandalone() = default;

Marking* MarkingStandalone::GetMarking() const {
    return m_Markings.empty() ? nullptr : dynamic_cast<Marking*>(m_Markings[0].Get());
}

bool MarkingStandalone::Save(const char* path) {
    return path && Ruvex::Save(this, path);
}

MarkingStandalone* MarkingStandalone::Load(const char* path) {
    if (!path) return nullptr;
    Ruvex::Element* root = Ruvex::Load(path, false);
    auto* library = dynamic_cast<MarkingStandalone*>(root);
    if (!library) {
        if (root) root->Release();  // never referenced: destroyed
        return nullptr;
    }
    library->PostLoad();
    return library;
}

void MarkingStandalone::PostLoad() {
    for (const auto& item : m_Markings)
        if (auto* marking = dynamic_cast<Marking*>(item.Get())) marking->PostLoad(m_Materials);
}

}  // namespace Orvia

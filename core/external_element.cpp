#include <orvia/core/external_element.h>

namespace Orvia {

namespace {
const std::string kExternalElementTag = "ExternalElement";
}  // namespace

ExternalElement::ExternalElement() : ExternalElement(kExternalElementTag) {}

ExternalElement::ExternalElement(const std::string& tag) : Ruvex::ExternalFileElement(tag) {}

ExternalElement::ExternalElement(const std::string& tag, const std::string& filePath) : ExternalElement(tag) {
    SetFilePath(filePath);
}

ExternalElement::ExternalElement(const Ruvex::Schema* schema) : Ruvex::ExternalFileElement(schema) {}

ExternalElement::~ExternalElement() = default;

const std::string& ExternalElement::GetTagName() const {
    return m_tag.empty() ? GetSchema().tag : m_tag;
}

void ExternalElement::CopyFrom(const ExternalElement* other) {
    if (other == nullptr || other == this) return;
    SetFilePath(other->GetFilePath());
    SetFlipped(other->GetFlipped());
}

void ExternalElement::Adopt(Ruvex::CountedPtr<Ruvex::ExternalFileElement>& slot) {
    if (!slot || dynamic_cast<ExternalElement*>(slot.Get())) return;
    Ruvex::CountedPtr<ExternalElement> adopted(new ExternalElement(slot->GetTagName(), slot->GetFilePath()));
    adopted->SetFlipped(slot->GetFlipped());
    static_cast<Ruvex::Element&>(*adopted) = *slot;
    slot = adopted.Get();
}

}  // namespace Orvia

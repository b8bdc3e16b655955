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

}  // namespace Orvia

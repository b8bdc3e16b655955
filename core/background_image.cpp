#include <orvia/core/background_image.h>

namespace Orvia {

RUVEX_SCHEMA(BackGroundImage, ExternalElement, "BackgroundImage", ORVIA_BACKGROUND_IMAGE_TABLE)

const std::string& BackGroundImage::GetTagName() const {
    static const std::string tag = "BackgroundImage";
    return tag;
}

bool BackGroundImage::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (element == nullptr || parser == nullptr) return false;
    // The schema covers the six fields as well as the file reference: one pass reads them all. An image
    // is kept whatever the file reference said.
    Ruvex::ExternalFileElement::LoadFromXMLElement(element, parser);
    return true;
}

Ruvex::IDOMElement* BackGroundImage::BuildXMLElement(Ruvex::IDOMParser* parser) {
    return Ruvex::ExternalFileElement::BuildXMLElement(parser);
}

void BackGroundImage::CopyFrom(const BackGroundImage* other) {
    if (other == nullptr || other == this) return;
    ExternalElement::CopyFrom(other);
    SetCameraIndex(other->GetCameraIndex());
    SetDimension(other->GetDimension());
    SetOffset(other->GetOffset());
    SetRotation(other->GetRotation());
}

}  // namespace Orvia

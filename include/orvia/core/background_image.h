// A map or photograph laid under the network, one per camera index.
#pragma once

#include <orvia/core/external_element.h>
#include <orvia/ruvex/schema.h>
#include <orvia/vek/vector.h>

#include <cstddef>
#include <string>

// Fields of an image beside its file reference. Dimension and offset are in the network's local frame
// (metres), the rotation in radians; the camera index is the key under which the network keeps the image.
#define ORVIA_BACKGROUND_IMAGE_TABLE(F)                    \
    F(ATTR, size_t, CameraIndex, "cameraIndex", 0u)        \
    F(XY, Dimension, "dimensionX", "dimensionY", 0.0, 0.0) \
    F(XY, Offset, "offsetX", "offsetY", 0.0, 0.0)          \
    F(ATTR, double, Rotation, "rotation", 0.0)

namespace Orvia {

// Saved as "BackgroundImage" with the file reference (path, flipped) followed by the six fields above, all of
// them always written. Reading leaves a field whose attribute is absent as it was.
class BackGroundImage : public ExternalElement {
    RUVEX_FIELDS(BackGroundImage, ExternalElement, ORVIA_BACKGROUND_IMAGE_TABLE)

public:
    const std::string& GetTagName() const override;  // "BackgroundImage"

    // Reads the file reference and the six fields. True whenever both arguments are given, even if the
    // file reference did not read; a malformed number is reported to the parser, which fails the document.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    // The file reference, then the six fields; null without a parser.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

    using ExternalElement::CopyFrom;
    // Copies path, flipped flag, camera index, dimension, offset and rotation; a null source changes nothing.
    void CopyFrom(const BackGroundImage* other);
};

}  // namespace Orvia

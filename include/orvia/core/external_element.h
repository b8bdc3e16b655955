// A reference to a file outside the document (terrain, surfaces, proxy files, images).
#pragma once

#include <orvia/ruvex/elements/network.h>

#include <string>

namespace Orvia {

// Saved under the tag it was constructed with, so that an element is written back under the tag it was read
// from. The path is kept as given; making it absolute or relative is the path visitors' business.
class ExternalElement : public Ruvex::ExternalFileElement {
public:
    ExternalElement();  // tag "ExternalElement", empty path
    explicit ExternalElement(const std::string& tag);
    ExternalElement(const std::string& tag, const std::string& filePath);
    ~ExternalElement() override;

    // The tag given at construction ("ExternalElement" by default).
    const std::string& GetTagName() const override;

    const std::string& GetFilePath() const { return Ruvex::ExternalFileElement::GetFilePath(); }
    void SetFilePath(const std::string& filePath) { Ruvex::ExternalFileElement::SetFilePath(filePath); }

    // Copies the path and the flipped flag, not the tag; a null source changes nothing.
    void CopyFrom(const ExternalElement* other);

    // Gives a file slot filled with a plain record (a tag the factory leaves to the element layer) the
    // runtime class, keeping everything the record holds; an empty slot or one already of this class is left
    // alone.
    static void Adopt(Ruvex::CountedPtr<Ruvex::ExternalFileElement>& slot);

protected:
    // For classes that declare fields of their own; the tag is then the one of their schema.
    explicit ExternalElement(const Ruvex::Schema* schema);
};

}  // namespace Orvia

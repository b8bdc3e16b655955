#include <orvia/topology/clipped_data.h>

namespace Orvia {

ClippedData::~ClippedData() = default;

bool ClippedData::LoadUserDataChild(const Ruvex::Element& record, Ruvex::IDOMElement* child,
                                    Ruvex::IDOMParser* parser) {
    if (!child || !parser) return false;
    // A declared child never goes through the factory twice.
    const Ruvex::Schema& schema = record.GetSchema();
    const std::string_view tag = child->GetTagName();
    if (schema.FindItem(tag) || schema.FindContainer(tag)) return false;
    return TryToLoadElement(child, parser);
}

TrackScope::~TrackScope() = default;

TrackClippedData::~TrackClippedData() = default;

Ruvex::IDOMElement* TrackClippedData::BuildXMLElement(Ruvex::IDOMParser* parser) {
    Ruvex::IDOMElement* element = Ruvex::TrackClippedDataElement::BuildXMLElement(parser);
    if (element) ToElement(element, parser);
    return element;
}

bool TrackClippedData::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    return LoadUserDataChild(*this, child, parser) ||
           Ruvex::TrackClippedDataElement::LoadChild(child, parser);
}

MarkClippedData::~MarkClippedData() = default;

Ruvex::IDOMElement* MarkClippedData::BuildXMLElement(Ruvex::IDOMParser* parser) {
    Ruvex::IDOMElement* element = Ruvex::MarkClippedDataElement::BuildXMLElement(parser);
    if (element) ToElement(element, parser);
    return element;
}

bool MarkClippedData::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    return LoadUserDataChild(*this, child, parser) || Ruvex::MarkClippedDataElement::LoadChild(child, parser);
}

}  // namespace Orvia

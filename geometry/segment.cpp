#include <orvia/geometry/segment.h>

Segment::Segment() {
    DataChanged();
}

Segment::Segment(double length) {
    m_Length = ConstructedLength(length);
    DataChanged();
}

Segment::Segment(const Segment& other) = default;
Segment::~Segment() = default;

void Segment::SetLength(double length) {
    if (length == m_Length || !IsValidLength(length)) return;
    m_Length = length;
    DataChanged();
}

bool Segment::SetRawLength(double length) {
    SetLength(length);
    return true;
}

Segment* Segment::Clone() const {
    return new Segment(*this);
}

bool Segment::IsEqual(const ParametricFunction* other) const {
    const auto* segment = dynamic_cast<const Segment*>(other);
    return segment && segment->m_Length == m_Length;
}

Ruvex::Element* Segment::GetElement() const {
    return const_cast<Segment*>(this);
}

uint64_t Segment::AddRef() {
    return Ruvex::SegmentElement::AddRef();
}

uint64_t Segment::Release() {
    return Ruvex::SegmentElement::Release();
}

bool Segment::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    Ruvex::SegmentElement::LoadFromXMLElement(element, parser);
    m_Length = ClampLoaded(m_Length, 0, kMaxLength, "length", element, parser);
    DataChanged();
    return true;
}

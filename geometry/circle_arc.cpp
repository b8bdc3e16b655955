#include <orvia/geometry/circle_arc.h>

#include <cmath>

CircleArc::CircleArc() {
    DataChanged();
}

CircleArc::CircleArc(double length, double curvature) {
    m_Length = ConstructedLength(length);
    m_Curvature = std::isfinite(curvature) ? curvature : 0;
    DataChanged();
}

CircleArc::CircleArc(const CircleArc& other) = default;
CircleArc::~CircleArc() = default;

void CircleArc::SetLength(double length) {
    if (length == m_Length || !IsValidLength(length)) return;
    m_Length = length;
    DataChanged();
}

bool CircleArc::SetRawLength(double length) {
    SetLength(length);
    return true;
}

bool CircleArc::SetCurvature(double curvature) {
    if (!(std::fabs(curvature) >= kMinCurvature) || !std::isfinite(curvature)) return false;
    if (curvature != m_Curvature) {
        m_Curvature = curvature;
        DataChanged();
    }
    return true;
}

CircleArc* CircleArc::Clone() const {
    return new CircleArc(*this);
}

bool CircleArc::IsEqual(const ParametricFunction* other) const {
    const auto* arc = dynamic_cast<const CircleArc*>(other);
    return arc && arc->m_Length == m_Length && arc->m_Curvature == m_Curvature;
}

Ruvex::Element* CircleArc::GetElement() const {
    return const_cast<CircleArc*>(this);
}

uint64_t CircleArc::AddRef() {
    return Ruvex::CircleArcElement::AddRef();
}

uint64_t CircleArc::Release() {
    return Ruvex::CircleArcElement::Release();
}

void CircleArc::Flip() {
    m_Curvature = -m_Curvature;
    DataChanged();
}

bool CircleArc::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    Ruvex::CircleArcElement::LoadFromXMLElement(element, parser);
    m_Length = ClampLoaded(m_Length, 0, kMaxLength, "length", element, parser);
    m_Curvature = ClampLoaded(m_Curvature, -kMaxCurvature, kMaxCurvature, "curvature", element, parser);
    DataChanged();
    return true;
}

void CircleArc::DataChanged() {
    m_radius = std::fabs(m_Curvature) < kMinCurvature ? kZeroCurvatureRadius : 1 / m_Curvature;
    ParametricFunction::DataChanged();
}

void CircleArc::InvertLocalData() {
    // The transforms were rebuilt when Invert() moved the start; only the radius and the box follow.
    m_Curvature = -m_Curvature;
    m_radius = std::fabs(m_Curvature) < kMinCurvature ? kZeroCurvatureRadius : 1 / m_Curvature;
    InvalidateBoundingBox();
}

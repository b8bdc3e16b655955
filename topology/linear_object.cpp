#include <orvia/topology/linear_object.h>

#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/curve2d.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <typeinfo>

namespace Orvia {

namespace {

// The exact type needs no search of the hierarchy; queries ask for the curves at every call.
template <class T, class Record>
T* As(Record* record) {
    if (!record) return nullptr;
    return typeid(*record) == typeid(T) ? static_cast<T*>(record) : dynamic_cast<T*>(record);
}

}  // namespace

LinearObject::LinearObject() = default;

LinearObject::~LinearObject() = default;

bool LinearObject::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    if (!child || !parser) return false;
    const std::string_view tag = child->GetTagName();
    // A second curve of one kind would replace the first: it is kept as read instead.
    if (tag == "XYCurve") {
        if (m_XYCurve) return false;
        Ruvex::CountedPtr<Curve2D> curve(new Curve2D);
        if (!curve->LoadFromXMLElement(child, parser)) return false;
        m_XYCurve = curve.Get();
        Invalidate();
        return true;
    }
    if (tag == "SZCurve" || tag == "BankingCurve") {
        Ruvex::CountedPtr<Ruvex::CartesianCurveElement>& slot = tag == "SZCurve" ? m_SZCurve : m_BankingCurve;
        if (slot) return false;
        Ruvex::CountedPtr<CartesianCurve> curve(new CartesianCurve(std::string(tag)));
        if (!curve->LoadFromXMLElement(child, parser)) return false;
        slot = curve.Get();
        Invalidate();
        return true;
    }
    return LinearElement::LoadChild(child, parser);
}

Curve2D* LinearObject::GetXYCurve() const {
    return As<Curve2D>(m_XYCurve.Get());
}

CartesianCurve* LinearObject::GetSZCurve() const {
    return As<CartesianCurve>(m_SZCurve.Get());
}

CartesianCurve* LinearObject::GetBankingCurve() const {
    return As<CartesianCurve>(m_BankingCurve.Get());
}

void LinearObject::UpdateCacheData() {
    const Curve2D* xy = GetXYCurve();
    const double length = xy ? xy->GetLength() : 0.0;
    const double usable = std::isfinite(length) && length > 0 ? length : 0.0;
    SetCachedXYLength(usable);
    SetCachedTotalLength(usable);
}

bool LinearObject::Validate() {
    return ValidateWithCachedLengths();
}

bool LinearObject::ValidateAxis() {
    return ValidateAlongXYCurve();
}

void LinearObject::InvertAxis() {
    InvertCurves();
    std::reverse(m_ControlPoints.begin(), m_ControlPoints.end());
}

bool LinearObject::GetControlPoint(size_t index, vek::Vector2& point) const {
    if (index >= m_ControlPoints.size()) return false;
    point = m_ControlPoints[index];
    return true;
}

size_t LinearObject::AddControlPoint(const vek::Vector2& point, size_t index) {
    index = std::min(index, m_ControlPoints.size());
    m_ControlPoints.insert(m_ControlPoints.begin() + static_cast<std::ptrdiff_t>(index), point);
    return index;
}

bool LinearObject::RemoveControlPoint(size_t index) {
    if (index >= m_ControlPoints.size()) return false;
    m_ControlPoints.erase(m_ControlPoints.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

SubPart::~SubPart() = default;

}  // namespace Orvia

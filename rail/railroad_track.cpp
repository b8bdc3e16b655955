// A rail track as an axis over its own curves.

#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/rail/rail_network.h>

#include "exact_cast.h"

#include <string_view>
#include <typeinfo>
#include <utility>

namespace Rail {

namespace {

using detail::As;

}  // namespace

RailroadTrack::RailroadTrack() = default;
RailroadTrack::~RailroadTrack() = default;

bool RailroadTrack::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    if (!child || !parser) return false;
    const std::string_view tag = child->GetTagName();
    // A second curve of one kind would replace the first: it is kept as read instead.
    if (tag == "XYCurve") {
        if (m_XYCurve) return false;
        Ruvex::CountedPtr<Orvia::Curve2D> curve(new Orvia::Curve2D);
        if (!curve->LoadFromXMLElement(child, parser)) return false;
        m_XYCurve = curve.Get();
        Invalidate();
        return true;
    }
    if (tag == "SZCurve" || tag == "BankingCurve") {
        Ruvex::CountedPtr<Ruvex::CartesianCurveElement>& slot = tag == "SZCurve" ? m_SZCurve : m_BankingCurve;
        if (slot) return false;
        Ruvex::CountedPtr<Orvia::CartesianCurve> curve(new Orvia::CartesianCurve(std::string(tag)));
        if (!curve->LoadFromXMLElement(child, parser)) return false;
        slot = curve.Get();
        Invalidate();
        return true;
    }
    return RailroadTrackElement::LoadChild(child, parser);
}

Orvia::Curve2D* RailroadTrack::GetXYCurve() const {
    return As<Orvia::Curve2D>(m_XYCurve.Get());
}

Orvia::CartesianCurve* RailroadTrack::GetSZCurve() const {
    return As<Orvia::CartesianCurve>(m_SZCurve.Get());
}

Orvia::CartesianCurve* RailroadTrack::GetBankingCurve() const {
    return As<Orvia::CartesianCurve>(m_BankingCurve.Get());
}

void RailroadTrack::UpdateCacheData() {
    const Orvia::Curve2D* xy = GetXYCurve();
    const double length = xy ? xy->GetLength() : 0.0;
    SetCachedXYLength(length);
    SetCachedTotalLength(length);
}

bool RailroadTrack::Validate() {
    return ValidateWithCachedLengths();
}

bool RailroadTrack::ValidateAxis() {
    return ValidateAlongXYCurve();
}

void RailroadTrack::InvertAxis() {
    InvertCurves();
    std::swap(m_StartEnd, m_EndEnd);
    std::swap(m_startSwitch, m_endSwitch);
    std::swap(m_startLink, m_endLink);
    if (!GetXYCurve()) return;
    const double length = GetXYLength();
    for (const Ruvex::CountedPtr<MileageAnchorElement>& anchor : m_MileageAnchors)
        if (anchor) anchor->SetCurvilinearAbscissa(length - anchor->GetCurvilinearAbscissa());
}

}  // namespace Rail

#include <orvia/geometry/parametric_function.h>

#include <cmath>
#include <cstdio>

#include <orvia/ruvex/dom.h>
#include <orvia/ruvex/element.h>
#include <orvia/vek/math.h>

namespace {

// Samples of the bounding box along the piece, and how far the box is grown (fraction of the length) to cover
// what bulges between two samples.
constexpr int kBoundingBoxIntervals = 100;
constexpr double kBoundingBoxMargin = 0.5 / kBoundingBoxIntervals;

}  // namespace

ParametricFunction::ParametricFunction() = default;
ParametricFunction::~ParametricFunction() = default;

PointData ParametricFunction::GetPointData(double s) const {
    const PointData local = GetLocalPointData(s);
    return PointData(LocalToGlobal(local.position), PlacedHeading(s, local.heading), local.curvature);
}

vek::Vector2 ParametricFunction::GetStartPosition() const {
    return m_startPosition;
}

void ParametricFunction::SetStartPosition(const vek::Vector2& position) {
    if (position == m_startPosition || !std::isfinite(position.x) || !std::isfinite(position.y)) return;
    m_startPosition = position;
    DataChanged();
}

double ParametricFunction::GetStartOrientation() const {
    return m_startOrientation;
}

void ParametricFunction::SetStartOrientation(double orientation) {
    if (!std::isfinite(orientation)) return;
    // remainder is exact, so a far-off angle (1e18 rad) lands in range and an angle in range stays untouched.
    double normalized = std::remainder(orientation, vek::kTwoPi);
    if (normalized <= -vek::kPi) normalized += vek::kTwoPi;
    if (normalized == m_startOrientation) return;
    m_startOrientation = normalized;
    DataChanged();
}

void ParametricFunction::Invert() {
    const PointData end = GetPointData(GetLength());
    SetStartPosition(end.position);
    SetStartOrientation(end.heading - vek::kPi);
    InvertLocalData();
}

ParametricFunction* ParametricFunction::Split(double ratio) {
    if (!(ratio > 0 && ratio < 1)) return nullptr;
    const double length = GetLength();
    const double first = length * ratio;
    ParametricFunction* second = Clone();
    second->Invert();
    second->SetLength(length - first);
    second->Invert();
    SetLength(first);
    return second;
}

const vek::Box2& ParametricFunction::GetBoundingBox() const {
    if (!m_boundingBoxDirty) return m_boundingBox;
    const double length = GetLength();
    vek::Box2 box;
    box.add(m_startPosition);
    for (int i = 0; i <= kBoundingBoxIntervals; ++i)
        box.add(GetPointData(i * length / kBoundingBoxIntervals).position);
    box.grow(length * kBoundingBoxMargin);
    m_boundingBox = box;
    m_boundingBoxDirty = false;
    return m_boundingBox;
}

uint64_t ParametricFunction::AddRef() {
    return GetElement()->AddRef();
}

uint64_t ParametricFunction::Release() {
    return GetElement()->Release();
}

void ParametricFunction::Flip() {}

void ParametricFunction::SetForcedStartOrientation(double orientation) {
    m_forcedStartOrientation = orientation;
}

void ParametricFunction::DataChanged() {
    m_boundingBoxDirty = true;
    m_localToGlobal = vek::Transform2D(m_startPosition, m_startOrientation);
    m_globalToLocal = m_localToGlobal.globalToLocal();
}

vek::Vector2 ParametricFunction::LocalToGlobal(const vek::Vector2& local) const {
    return m_localToGlobal.apply(local);
}

vek::Vector2 ParametricFunction::GlobalToLocal(const vek::Vector2& global) const {
    return m_globalToLocal.apply(global);
}

double ParametricFunction::ClampLoaded(double value, double lo, double hi, const char* attribute,
                                       Ruvex::IDOMElement* where, Ruvex::IDOMParser* parser) const {
    if (value >= lo && value <= hi) return value;
    const double clamped = value < lo ? lo : hi;
    if (parser) {
        char text[160];
        std::snprintf(text, sizeof text, "attribute \"%s\" of <%s> is %.17g, outside [%g, %g]: read as %g",
                      attribute, GetElement()->GetTagName().c_str(), value, lo, hi, clamped);
        parser->ReportWarning(where, text);
    }
    return clamped;
}

void ParametricFunction::ClampLoadedPoints(std::vector<vek::Vector2>& points, const char* attribute,
                                           Ruvex::IDOMElement* where, Ruvex::IDOMParser* parser) const {
    size_t changed = 0;
    auto clamp = [&](double& v) {
        if (v >= -kMaxLength && v <= kMaxLength) return;
        v = std::isnan(v) ? 0.0 : (v < 0 ? -kMaxLength : kMaxLength);
        ++changed;
    };
    for (vek::Vector2& p : points) {
        clamp(p.x);
        clamp(p.y);
    }
    if (!changed || !parser) return;
    char text[160];
    std::snprintf(text, sizeof text,
                  "attribute \"%s\" of <%s>: %zu coordinates outside [%g, %g] brought into it", attribute,
                  GetElement()->GetTagName().c_str(), changed, -kMaxLength, kMaxLength);
    parser->ReportWarning(where, text);
}

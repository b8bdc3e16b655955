#include <orvia/geometry/polyline.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "golden_section.h"

#include <orvia/ruvex/dom.h>
#include <orvia/vek/math.h>

namespace {

// Below this length (m) a smoothing curve is not sampled: the polygon stands for it.
constexpr double kMinCurveLength = 1e-5;

// Nearest-point search: coarse samples per control point (at least kMinNearestSamples in all), then golden
// section steps around the best one, each shrinking the bracket by 0.618 (60 steps: 3e-13 of the bracket).
constexpr size_t kNearestSamplesPerPoint = 16;
constexpr size_t kMinNearestSamples = 64;
constexpr int kNearestRefinements = 60;
constexpr int kNearestProjections = 3;

using EType = Ruvex::PolyLineElement::EType;

vek::Vector2 UnitOr(const vek::Vector2& v, const vek::Vector2& fallback) {
    const vek::Vector2 u = v.normalized();
    return u == vek::Vector2() ? fallback : u;
}

}  // namespace

PolyLine::PolyLine(EType type, bool constrainOrigin) {
    m_Type = type;
    SetOriginConstraints(constrainOrigin, constrainOrigin);
    DataChanged();
}

PolyLine::PolyLine(const PolyLine& other) : PolyLineCommonData(other), Ruvex::PolyLineElement(other) {
    if (other.m_curve) m_curve = other.m_curve->clone();
    m_beziers.reserve(other.m_beziers.size());
    for (const BezierPiece& piece : other.m_beziers)
        m_beziers.push_back(
            {piece.curve ? piece.curve->clone() : nullptr, piece.start, piece.end, piece.pointCount});
}

PolyLine::~PolyLine() = default;

double PolyLine::GetLength() const {
    if (m_curve) return m_curve->length();
    if (!m_beziers.empty()) return m_beziers.back().end;
    return GetPolylineLength();
}

void PolyLine::SetType(EType type) {
    if (type == m_Type) return;
    m_Type = type;
    DataChanged();
}

void PolyLine::SetEndTangent(double angle) {
    if (angle == m_EndTangent) return;
    m_EndTangent = angle;
    DataChanged();
}

void PolyLine::CopyFrom(const PolyLine* other) {
    if (!other || other == this) return;
    m_controlPoints = other->m_controlPoints;
    m_Type = other->m_Type;
    m_EndTangent = other->m_EndTangent;
    SetOriginConstraints(other->GetPositionConstraint(), other->GetOrientationConstraint());
    SetForcedStartOrientation(other->GetForcedStartOrientation());
    SetStartPosition(other->GetStartPosition());
    SetStartOrientation(other->GetStartOrientation());
    DataChanged();
}

vek::Vector2 PolyLine::SplineStartTangent() const {
    if (!m_constrainOrientation || m_controlPoints.size() < 2) return {1, 0};
    return UnitOr(m_controlPoints[1] - m_controlPoints[0], {1, 0});
}

vek::Vector2 PolyLine::SplineEndTangent() const {
    const size_t n = m_controlPoints.size();
    if (!m_constrainOrientation || n < 2) return {std::cos(m_EndTangent), std::sin(m_EndTangent)};
    return UnitOr(m_controlPoints[n - 1] - m_controlPoints[n - 2], {1, 0});
}

bool PolyLine::IsBuiltFromCurrent() const {
    const BuiltFrom& b = m_builtFrom;
    // The tangent bit for bit: a NaN that stays a NaN is no change.
    return b.valid && b.pointCount == m_controlPoints.size() && b.type == m_Type &&
           std::memcmp(&b.endTangent, &m_EndTangent, sizeof(double)) == 0 &&
           b.constrainPosition == m_constrainPosition && b.constrainOrientation == m_constrainOrientation;
}

void PolyLine::SetStartPosition(const vek::Vector2& position) {
    m_moving = IsBuiltFromCurrent();
    ParametricFunction::SetStartPosition(position);
    m_moving = false;
}

void PolyLine::SetStartOrientation(double orientation) {
    m_moving = IsBuiltFromCurrent();
    ParametricFunction::SetStartOrientation(orientation);
    m_moving = false;
}

void PolyLine::DataChanged() {
    if (m_moving) {
        ParametricFunction::DataChanged();
        return;
    }
    PolyLineCommonData::DataChanged();
    m_builtFrom = {m_controlPoints.size(), m_Type,        m_EndTangent, m_constrainPosition,
                   m_constrainOrientation, /*valid=*/true};
    m_curve.reset();
    m_beziers.clear();
    if (m_controlPoints.size() < 3) return;
    switch (m_Type) {
        case EType::ClampedSpline:
            m_curve = vek::NewClampedCubicSpline(m_controlPoints, SplineStartTangent(), SplineEndTangent());
            break;
        case EType::BezierThroughPoints:
            m_curve = vek::NewBezierTS(false, m_controlPoints);
            break;
        case EType::BezierChain:
            addBezier(0);
            break;
        default:
            break;
    }
}

void PolyLine::addBezier(size_t first) {
    const std::vector<vek::Vector2>& q = m_controlPoints;
    const size_t n = q.size();
    if (first + 3 > n) return;
    std::vector<vek::Vector2> control;
    size_t used;
    if (first + 4 <= n) {
        control = {q[first], q[first + 1], q[first + 2], q[first + 3]};
        // A following piece starts at q[first + 3] along q[first + 4]: the handle before the junction is its
        // mirror, so that the chain is tangent-continuous whatever the stored handle says.
        if (n - (first + 3) > 3) control[2] = q[first + 3] * 2.0 - q[first + 4];
        used = 4;
    } else {
        // Three points: the quadratic Bezier they define, raised to a cubic.
        control = {q[first], q[first] + (q[first + 1] - q[first]) * (2.0 / 3.0),
                   q[first + 2] + (q[first + 1] - q[first + 2]) * (2.0 / 3.0), q[first + 2]};
        used = 3;
    }
    std::unique_ptr<vek::Trajectory> curve = vek::NewBezier(false, control);
    if (!curve) return;
    const double start = m_beziers.empty() ? 0 : m_beziers.back().end;
    const double end = start + curve->length();
    m_beziers.push_back({std::move(curve), start, end, used});
    const size_t next = first + used - 1;
    if (n - next > 3) addBezier(next);
}

size_t PolyLine::GetBezierFunctionIndexAt(double s) const {
    size_t lo = 0, hi = m_beziers.size();
    while (hi - lo > 1) {
        const size_t mid = lo + (hi - lo) / 2;
        if (m_beziers[mid].start > s)
            hi = mid;
        else
            lo = mid;
    }
    return lo;
}

PointData PolyLine::SampleTrajectory(const vek::Trajectory& curve, double s) {
    const double length = curve.length();
    const double clamped = std::clamp(s, 0.0, length);
    const double u = curve.parameterAtLength(clamped);
    const vek::Vector2 tangent = curve.tangent(u);
    PointData pd(curve.position(u), std::atan2(tangent.y, tangent.x), curve.curvature(u));
    if (s != clamped) pd.position += tangent * (s - clamped);
    return pd;
}

PointData PolyLine::GetLocalPointData(double s) const {
    if (m_curve) {
        if (m_curve->length() < kMinCurveLength) return GetPolygonPointData(s);
        return SampleTrajectory(*m_curve, s);
    }
    if (!m_beziers.empty()) {
        const BezierPiece& piece = m_beziers[GetBezierFunctionIndexAt(s)];
        return SampleTrajectory(*piece.curve, s - piece.start);
    }
    PointData pd = GetPolygonPointData(s);
    if (s >= GetPolylineLength() && !m_constrainOrientation) pd.heading = m_EndTangent;
    return pd;
}

void PolyLine::InvertLocalData() {
    // The reversed piece ends along the old start axis, turned back: expressed in the new frame that is
    // minus the old end heading, which makes a second Invert() restore the old end tangent.
    const double endHeading = GetLocalPointData(GetLength()).heading;
    m_EndTangent = vek::normalizeAngle(-endHeading);
    PolyLineCommonData::InvertLocalData();
}

void PolyLine::ComputeNaturalEndTangent() {
    // Asked again of a curve that has not changed (every validation of a track asks), it finds the same
    // tangent: nothing to rebuild.
    const bool current = IsBuiltFromCurrent();
    const double before = m_EndTangent;
    const size_t n = m_controlPoints.size();
    if (n >= 2) {
        std::unique_ptr<vek::Trajectory> curve;
        if (n >= 3 && m_Type == EType::ClampedSpline)
            curve = vek::NewClampedCubicSpline(m_controlPoints, SplineStartTangent(), vek::Vector2());
        else if (n >= 3 && m_Type == EType::BezierThroughPoints)
            curve = vek::NewBezierTS(false, m_controlPoints);
        vek::Vector2 tangent;
        if (curve)
            tangent = curve->tangent(1);
        else if (!m_beziers.empty() && m_Type == EType::BezierChain)
            tangent = m_beziers.back().curve->tangent(1);
        if (tangent != vek::Vector2())
            m_EndTangent = std::atan2(tangent.y, tangent.x);
        else
            m_EndTangent = m_orientations.empty() ? 0 : m_orientations.back();
    }
    if (current && std::memcmp(&before, &m_EndTangent, sizeof(double)) == 0) return;
    DataChanged();
}

double PolyLine::GetAbscissaOfControlPoint(size_t index) const {
    const size_t n = m_controlPoints.size();
    if (index >= n) return GetLength();
    if (index == 0) return 0;
    if (m_curve) {
        const double chord = GetPolylineLength();
        return chord > 0 ? m_curve->lengthAtParameter(m_endAbscissas[index - 1] / chord) : 0;
    }
    if (!m_beziers.empty()) {
        size_t first = 0;
        for (const BezierPiece& piece : m_beziers) {
            const size_t last = first + piece.pointCount - 1;
            if (index <= last) {
                const double u = static_cast<double>(index - first) / static_cast<double>(last - first);
                return piece.start + piece.curve->lengthAtParameter(u);
            }
            first = last;
        }
        return GetLength();  // a point that no piece uses
    }
    return m_endAbscissas[index - 1];
}

double PolyLine::GetPointDataFromGlobalPoint(const vek::Vector2& global, PointData& sample) const {
    const double length = GetLength();
    const size_t count = std::max(kMinNearestSamples, kNearestSamplesPerPoint * m_controlPoints.size());
    auto distance = [&](double s) { return (GetPointData(s).position - global).squaredNorm(); };
    size_t best = 0;
    double bestDistance = distance(0);
    for (size_t i = 1; i <= count; ++i) {
        const double d = distance(length * static_cast<double>(i) / static_cast<double>(count));
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    const double step = length / static_cast<double>(count);
    const double lo = std::max(0.0, (static_cast<double>(best) - 1) * step);
    const double hi = std::min(length, (static_cast<double>(best) + 1) * step);
    const Orvia::detail::Bracket bracket =
        Orvia::detail::GoldenSectionMinimum(distance, lo, hi, kNearestRefinements);
    double s = 0.5 * (bracket.lo + bracket.hi);
    // A bracket on a squared distance only narrows to sqrt(epsilon); projecting onto the local tangent gives
    // the rest.
    for (int i = 0; i < kNearestProjections; ++i) {
        const PointData at = GetPointData(s);
        const double next = std::clamp(s + (global - at.position).dot(at.GetTangent()), 0.0, length);
        if (distance(next) > distance(s)) break;
        s = next;
    }
    // The coarse best may sit on an end that the refinement bracket does not improve on.
    if (distance(static_cast<double>(best) * step) < distance(s)) s = static_cast<double>(best) * step;
    sample = GetPointData(s);
    return s;
}

void PolyLine::cutBezier() {
    const size_t n = m_controlPoints.size();
    if (m_Type != EType::BezierChain || m_beziers.empty() || n < 5) return;
    const size_t r = (n + 1 + (n - 5) / 3) % 4;
    if (r == 0) return;
    const size_t first = n - r + 1;
    m_controlPoints.erase(m_controlPoints.begin() + static_cast<std::ptrdiff_t>(first),
                          m_controlPoints.begin() + static_cast<std::ptrdiff_t>(first + r - 1));
    DataChanged();
}

void PolyLine::updateBezierTangent(int index) {
    const size_t n = m_controlPoints.size();
    if (m_Type != EType::BezierChain || index < 0 || static_cast<size_t>(index) >= n) return;
    const size_t i = static_cast<size_t>(index);
    std::vector<vek::Vector2>& q = m_controlPoints;
    // Junctions sit at multiples of 3, between a handle before (i - 1) and one after (i + 1); the curve keeps
    // the handle after and mirrors it, and the stored points are made to say the same.
    if (i % 3 == 0) {
        if (i == 0 || i + 1 >= n) return;
        q[i - 1] = q[i] * 2.0 - q[i + 1];
    } else if (i % 3 == 1) {
        if (i < 2) return;
        q[i - 2] = q[i - 1] * 2.0 - q[i];
    } else {
        if (i + 2 >= n) return;
        q[i + 2] = q[i + 1] * 2.0 - q[i];
    }
    DataChanged();
}

double PolyLine::GetControlPointParam(size_t index) const {
    const size_t n = m_controlPoints.size();
    return n < 2 ? 0 : static_cast<double>(index) / static_cast<double>(n - 1);
}

size_t PolyLine::GetControlPointBeforeIndex(double u) const {
    const size_t n = m_controlPoints.size();
    if (n < 2) return 0;
    for (size_t i = 1; i < n; ++i)
        if (static_cast<double>(i) / static_cast<double>(n - 1) > u) return i - 1;
    return 0;
}

PolyLine* PolyLine::Clone() const {
    return new PolyLine(*this);
}

bool PolyLine::IsEqual(const ParametricFunction* other) const {
    const auto* line = dynamic_cast<const PolyLine*>(other);
    return line && line->m_Type == m_Type && line->m_EndTangent == m_EndTangent &&
           line->m_controlPoints == m_controlPoints;
}

Ruvex::Element* PolyLine::GetElement() const {
    return const_cast<PolyLine*>(this);
}

uint64_t PolyLine::AddRef() {
    return Ruvex::PolyLineElement::AddRef();
}

uint64_t PolyLine::Release() {
    return Ruvex::PolyLineElement::Release();
}

void PolyLine::Flip() {
    m_EndTangent = -m_EndTangent;
    PolyLineCommonData::Flip();
}

bool PolyLine::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    // Layouts before 2.3.0 hold the same attributes: the record's table reads them all.
    Ruvex::PolyLineElement::LoadFromXMLElement(element, parser);
    ClampLoadedPoints(m_Points, "points", element, parser);
    m_controlPoints = m_Points;
    DataChanged();
    return true;
}

Ruvex::IDOMElement* PolyLine::BuildXMLElement(Ruvex::IDOMParser* parser) {
    m_Points = m_controlPoints;
    return Ruvex::PolyLineElement::BuildXMLElement(parser);
}

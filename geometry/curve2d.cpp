#include <orvia/geometry/curve2d.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include <typeinfo>

#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/clotho_arc.h>
#include <orvia/geometry/clothoid_spline.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/segment.h>
#include <orvia/vek/math.h>

#include "golden_section.h"

namespace Orvia {

namespace {

using ElementList = std::vector<Ruvex::CountedPtr<Ruvex::Element>>;

// Deep copy of an element list: planar pieces are cloned, anything else is shared.
ElementList CloneList(const ElementList& list) {
    ElementList copy;
    copy.reserve(list.size());
    for (const Ruvex::CountedPtr<Ruvex::Element>& element : list) {
        const auto* function = dynamic_cast<const ParametricFunction*>(element.Get());
        copy.push_back(function ? Ruvex::CountedPtr<Ruvex::Element>(function->Clone()->GetElement())
                                : element);
    }
    return copy;
}

// The planar piece behind an element of the list, or null. The piece classes are told by their exact type,
// without a search of the hierarchy: a load meets every piece several times.
ParametricFunction* AsPiece(Ruvex::Element* element) {
    if (!element) return nullptr;
    const std::type_info& type = typeid(*element);
    if (type == typeid(Segment)) return static_cast<Segment*>(element);
    if (type == typeid(CircleArc)) return static_cast<CircleArc*>(element);
    if (type == typeid(ClothoArc)) return static_cast<ClothoArc*>(element);
    if (type == typeid(PolyLine)) return static_cast<PolyLine*>(element);
    if (type == typeid(ClothoidSpline)) return static_cast<ClothoidSpline*>(element);
    return dynamic_cast<ParametricFunction*>(element);
}

// Pieces read from a file carry no placement of their own: their first control point is the curve's
// current point, and a clothoid spline leaves it along the curve's heading.
void ConstrainLoadedPiece(Ruvex::Element* element) {
    if (!element) return;
    const std::type_info& type = typeid(*element);
    if (type == typeid(Segment) || type == typeid(CircleArc) || type == typeid(ClothoArc)) return;
    auto* spline = type == typeid(ClothoidSpline) ? static_cast<ClothoidSpline*>(element)
                   : type == typeid(PolyLine)     ? nullptr
                                                  : dynamic_cast<ClothoidSpline*>(element);
    if (spline) {
        spline->SetOriginConstraints(true, true);
        spline->SetControlPoints(spline->GetControlPoints());
    } else if (auto* polyline = type == typeid(PolyLine) ? static_cast<PolyLine*>(element)
                                                         : dynamic_cast<PolyLine*>(element)) {
        polyline->SetOriginConstraints(true, false);
        polyline->SetControlPoints(polyline->GetControlPoints());
    }
}

// Moves pd by t to the right; see Curve2D::OffsetPointData. unit is the unit tangent (cos, sin) of
// pd.heading.
inline void OffsetSample(double t, const vek::Vector2& unit, PointData& pd) {
    pd.position -= vek::Vector2(-unit.y, unit.x) * t;  // the left normal
    const double k = pd.curvature;
    if (std::fabs(k) < Curve2D::kStraightCurvature) {
        const double denominator = k * t + 1;
        pd.curvature = std::fabs(denominator) < Curve2D::kStraightCurvature ? 0 : k / denominator;
    }
}

// Whether record i holds s strictly before its end and is the first to reach s: then, in an indexed table
// (ends ascending, each start the end before), it is the only record holding s, which the bisection finds
// too. See Curve2D::m_buckets.
template <class Record>
bool HoldsAlone(const std::vector<Record>& records, size_t i, double s) {
    return s < records[i].end && (i == 0 || records[i - 1].end < s);
}

// The record HoldsAlone s found through the buckets; npos for anything else (no index, a boundary, a rounding
// at a bucket's edge), which the bisection decides.
template <class Record>
size_t FindInBuckets(const std::vector<Record>& records, const std::vector<uint32_t>& buckets, double scale,
                     double s) {
    if (buckets.empty()) return Curve2D::npos;
    const size_t b = std::min(static_cast<size_t>(s * scale), buckets.size() - 2);
    size_t i = buckets[b];
    // A bucket meets one or two pieces on a road's alignment: step over the first without a branch.
    i += static_cast<size_t>(records[i].end < s && i + 1 < records.size());
    if (HoldsAlone(records, i, s)) return i;
    const auto first = records.begin() + buckets[b];
    const auto last = records.begin() + buckets[b + 1] + 1;
    i = static_cast<size_t>(std::partition_point(first, last, [s](const Record& r) { return r.end < s; }) -
                            records.begin());
    return i < records.size() && HoldsAlone(records, i, s) ? i : Curve2D::npos;
}

// -ln(0.618): what one golden-section step shrinks the bracket by, as a logarithm.
constexpr double kGoldenShrink = 0.48121182505960347;

// s - start clamped to the record's span, by hand: a piece of negative length (a reversed segment) has its
// bounds the wrong way round.
template <class Record>
double LocalAbscissa(const Record& record, double s) {
    const double local = s - record.start, span = record.end - record.start;
    return local < 0 ? 0 : (local > span ? span : local);
}

}  // namespace

Curve2D::Curve2D() = default;

Curve2D::Curve2D(const Curve2D& other) : Ruvex::XYCurveElement(other) {
    m_Functions = CloneList(other.m_Functions);
    UpdateParametricFunctionVector();
}

Curve2D& Curve2D::operator=(const Curve2D& other) {
    if (this == &other) return *this;
    Ruvex::XYCurveElement::operator=(other);
    m_Functions = CloneList(other.m_Functions);
    UpdateParametricFunctionVector();
    return *this;
}

Curve2D::~Curve2D() = default;

// ---------------------------------------------------------------------------------------------------------------
// Pieces

void Curve2D::UpdateParametricFunctionVector() {
    m_records.clear();
    double start = 0;
    for (const Ruvex::CountedPtr<Ruvex::Element>& element : m_Functions) {
        ParametricFunction* function = AsPiece(element.Get());
        if (!function) continue;
        // A piece of another class may report any length: one that is not finite owns no abscissa.
        const double pieceLength = function->GetLength();
        const double end = start + (std::isfinite(pieceLength) ? pieceLength : 0);
        const std::type_info& type = typeid(*function);
        const Kind kind = type == typeid(Segment)     ? Kind::Segment
                          : type == typeid(CircleArc) ? Kind::CircleArc
                          : type == typeid(ClothoArc) ? Kind::ClothoArc
                                                      : Kind::Other;
        m_records.push_back({function, start, end, kind});
        start = end;
    }
    IndexRecords();
}

void Curve2D::IndexRecords() {
    m_buckets.clear();
    m_bucketScale = 0;
    const size_t n = m_records.size();
    if (n == 0 || n >= std::numeric_limits<uint32_t>::max()) return;
    for (const Record& record : m_records)
        if (!(record.end >= record.start)) return;
    const double length = m_records.back().end;
    if (!(length > 0 && std::isfinite(length))) return;
    // One bucket per piece: a bucket then meets one or two pieces on a road's alignment.
    const size_t count = n;
    m_bucketScale = static_cast<double>(count) / length;
    m_buckets.resize(count + 1);
    size_t j = 0;
    for (size_t b = 0; b <= count; ++b) {
        const double x = static_cast<double>(b) * length / static_cast<double>(count);
        while (j + 1 < n && m_records[j].end < x)
            ++j;
        m_buckets[b] = static_cast<uint32_t>(j);
    }
}

size_t Curve2D::ElementPosition(size_t index) const {
    if (index >= m_records.size()) return m_Functions.size();
    const Ruvex::Element* element = m_records[index].function->GetElement();
    for (size_t i = 0; i < m_Functions.size(); ++i)
        if (m_Functions[i].Get() == element) return i;
    return m_Functions.size();
}

bool Curve2D::AddFunction(ParametricFunction* function) {
    return InsertFunction(function, npos);
}

bool Curve2D::InsertFunction(ParametricFunction* function, size_t index) {
    if (!function) return false;
    const size_t position = ElementPosition(index);
    m_Functions.insert(m_Functions.begin() + static_cast<std::ptrdiff_t>(position),
                       Ruvex::CountedPtr<Ruvex::Element>(function->GetElement()));
    UpdateParametricFunctionVector();
    return true;
}

bool Curve2D::RemoveFunction(size_t first, size_t count) {
    if (first >= m_records.size()) return false;
    const size_t last = first + std::min(count, m_records.size() - first);
    // Held until the list no longer names them, so that no piece dies while the list is being compacted.
    ElementList removed;
    for (size_t i = first; i < last; ++i)
        removed.emplace_back(m_records[i].function->GetElement());
    std::erase_if(m_Functions, [&removed](const Ruvex::CountedPtr<Ruvex::Element>& element) {
        return std::find(removed.begin(), removed.end(), element) != removed.end();
    });
    UpdateParametricFunctionVector();
    return true;
}

bool Curve2D::SplitFunction(size_t index, double ratio) {
    if (index >= m_records.size()) return false;
    ParametricFunction* second = m_records[index].function->Split(ratio);
    if (!second) return false;
    return InsertFunction(second, index + 1);
}

ParametricFunction* Curve2D::GetFunction(size_t index) const {
    return index < m_records.size() ? m_records[index].function : nullptr;
}

size_t Curve2D::GetFunctionIndex(const ParametricFunction* function) const {
    for (size_t i = 0; i < m_records.size(); ++i)
        if (m_records[i].function == function) return i;
    return npos;
}

size_t Curve2D::GetFunctionIndexAt(double s, size_t lo, size_t hi) const {
    hi = std::min(hi, m_records.size());
    if (lo >= hi) return npos;
    for (;;) {
        const size_t mid = lo + (hi - lo) / 2;
        if (m_records[mid].start > s) {
            if (mid == lo) return lo;
            hi = mid;
        } else if (s > m_records[mid].end) {
            if (mid == hi - 1) return hi - 1;
            lo = mid;
        } else {
            return mid;
        }
    }
}

size_t Curve2D::GetFunctionIndex(double s, double& startAbscissa) const {
    const size_t i = GetFunctionIndexAt(s, 0, m_records.size());
    if (i == npos) return npos;
    if (m_records[i].end < s - kLengthTolerance) {
        startAbscissa = m_records[i].end;
        return npos;
    }
    startAbscissa = m_records[i].start;
    return i;
}

double Curve2D::GetFunctionStartLength(size_t index) const {
    return index < m_records.size() ? m_records[index].start : GetLength();
}

// ---------------------------------------------------------------------------------------------------------------
// Geometry

void Curve2D::SetLength(double length) {
    if (!std::isfinite(length)) return;
    length = std::max(length, kMinLength);
    if (m_records.empty()) return;
    const double current = GetLength();
    if (std::fabs(current - length) < kLengthTolerance) return;
    if (length <= current) {
        double start = 0;
        const size_t i = GetFunctionIndex(length, start);
        if (i == npos) return;
        m_records[i].function->SetLength(length - start);
        if (i + 1 < m_records.size())
            RemoveFunction(i + 1, m_records.size() - i - 1);
        else
            UpdateParametricFunctionVector();
    } else {
        Record& last = m_records.back();
        last.function->SetLength(last.function->GetLength() + length - current);
        last.end = last.start + last.function->GetLength();
        IndexRecords();
    }
}

size_t Curve2D::RecordAt(double s, size_t hint) const {
    if (!m_buckets.empty()) {
        if (hint < m_records.size() && HoldsAlone(m_records, hint, s)) return hint;
        const size_t i = FindInBuckets(m_records, m_buckets, m_bucketScale, s);
        if (i != npos) return i;
    }
    return GetFunctionIndexAt(s, 0, m_records.size());
}

bool Curve2D::GetPointData(double s, double t, PointData& out) const {
    return Sample(s, t, out, nullptr, nullptr);
}

bool Curve2D::GetPointDataAndTangent(double s, double t, PointData& out, vek::Vector2& tangent) const {
    return Sample(s, t, out, &tangent, nullptr);
}

bool Curve2D::Sample(double s, double t, PointData& out, vek::Vector2* tangent, size_t* hint) const {
    if (m_records.empty()) return false;
    const double length = m_records.back().end;
    if (!(s >= 0 && s <= length)) {
        ComputePointDataOutside(s < 0 ? 0 : length, s, t, out);
        if (tangent) *tangent = out.GetTangent();
        return true;
    }
    SampleWithin(s, t, out, tangent, hint);
    return true;
}

void Curve2D::SampleWithin(double s, double t, PointData& out, vek::Vector2* tangent, size_t* hint) const {
    const size_t i = RecordAt(s, hint ? *hint : npos);
    if (hint) *hint = i;
    const Record& record = m_records[i];
    const double local = LocalAbscissa(record, s);
    // The offset needs the tangent too: computed once, by the piece when it knows it already.
    vek::Vector2 unit;
    vek::Vector2* wanted = tangent || t != 0 ? &unit : nullptr;
    switch (record.kind) {
        case Kind::Segment:
            out = static_cast<const Segment*>(record.function)->GetPointDataDirect(local, wanted);
            break;
        case Kind::CircleArc:
            out = static_cast<const CircleArc*>(record.function)->GetPointDataDirect(local, wanted);
            break;
        case Kind::ClothoArc:
            out = static_cast<const ClothoArc*>(record.function)->GetPointDataDirect(local, wanted);
            break;
        case Kind::Other:
            out = record.function->GetPointData(local);
            if (wanted) unit = out.GetTangent();
            break;
    }
    if (t != 0) OffsetSample(t, unit, out);
    if (tangent) *tangent = unit;
}

void Curve2D::OffsetPointData(double t, PointData& pd) {
    if (t != 0) OffsetSample(t, pd.GetTangent(), pd);
}

bool Curve2D::ComputePointDataOutside(double sRef, double s, double t, PointData& out) const {
    if (m_records.empty()) return false;
    // Sampled within the table whatever its length says (a negative one puts 0 outside [0, length]): the
    // end sample never comes back here.
    PointData end;
    SampleWithin(sRef, 0, end, nullptr, nullptr);
    const vek::Vector2 tangent = end.GetTangent();
    const vek::Vector2 left(-tangent.y, tangent.x);
    out.position = end.position + tangent * (s - sRef) - left * t;
    out.heading = std::atan2(tangent.y, tangent.x);
    out.curvature = 0;
    return true;
}

double Curve2D::SearchNearestAbscissa(const vek::Vector2& p, double s0, double tolerance,
                                      int maxIterations) const {
    if (m_records.empty()) return s0;
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::numeric_limits<double>::quiet_NaN();
    const double length = GetLength();
    const double ratio = length > 0 ? s0 / length : 0;
    if (!vek::contains(ratio, kStartRatioMin, kStartRatioMax)) s0 = 0;
    // Steps mostly stay on one piece: each sample tries the piece of the one before first.
    size_t hint = npos;
    PointData sample;
    vek::Vector2 tangent;
    Sample(s0, 0, sample, &tangent, &hint);
    const bool singleStep = maxIterations < 1;
    for (;;) {
        vek::Vector2 previous = sample.position;
        double s1 = s0 + kNewtonDamping * (p - sample.position).dot(tangent);
        if (!vek::contains(s1, -length, 2 * length)) {
            // The step left the neighbourhood of the curve: start again from its start. The convergence test
            // then compares with the end sample, the last place the restart scan of the curve looks at.
            PointData end;
            GetPointData(length, 0, end);
            previous = end.position;
            s1 = 0;
        }
        Sample(s1, 0, sample, &tangent, &hint);
        if (singleStep) return s1;
        if ((previous - sample.position).norm() < tolerance)
            return IsFoot(p, sample, tangent, tolerance) ? s1 : SearchNearestSafely(p, s1, tolerance);
        if (maxIterations < 1) return SearchNearestSafely(p, s1, tolerance);
        s0 = s1;
        --maxIterations;
    }
}

bool Curve2D::IsFoot(const vek::Vector2& p, const PointData& sample, const vek::Vector2& tangent,
                     double tolerance) {
    // The full Newton step from there, residual / (1 - k n): the distance to the foot along the curve. A
    // small damped step alone proves nothing near the centre of curvature, where the residual is small
    // everywhere; beyond the centre (1 - k n <= 0) the sample is a farthest point.
    const vek::Vector2 offset = p - sample.position;
    const double along = offset.dot(tangent), normal = tangent.cross(offset);
    const double stiffness = 1 - sample.curvature * normal;
    return stiffness > 0 && std::fabs(along) <= kFootStepTolerance * tolerance * stiffness;
}

double Curve2D::SearchNearestSafely(const vek::Vector2& p, double sIteration, double tolerance) const {
    size_t hint = npos;
    PointData sample;
    auto squared = [&](double s) {
        Sample(s, 0, sample, nullptr, &hint);
        return (sample.position - p).squaredNorm();
    };
    double best = sIteration, bestDistance = squared(sIteration);
    auto consider = [&](double s, double squaredDistance) {
        if (squaredDistance < bestDistance) best = s, bestDistance = squaredDistance;
    };
    // The straight extensions: their feet in closed form.
    double s = 0, d = 0;
    if (ComputeAbscissaDistBefore(p, s, d)) consider(s, d * d);
    if (ComputeAbscissaDistAfter(p, s, d)) consider(s, d * d);

    // The curve itself: the nearest of samples spaced by at most kBracketTurn of turning on each piece,
    // bracketed by its neighbours.
    double before = 0, sampleBest = 0, after = 0, sampleDistance = std::numeric_limits<double>::infinity();
    double last = 0;
    bool takeNext = false;
    for (const Record& record : m_records) {
        const double span = record.end - record.start;
        if (!(span > 0)) continue;
        const int intervals = BracketIntervals(record);
        for (int i = record.start == 0 ? 0 : 1; i <= intervals; ++i) {
            const double at = record.start + span * i / intervals;
            const double squaredDistance = squared(at);
            if (takeNext) after = at, takeNext = false;
            if (squaredDistance < sampleDistance) {
                sampleDistance = squaredDistance;
                before = last;
                sampleBest = at;
                after = at;
                takeNext = true;
            }
            last = at;
        }
    }
    if (sampleDistance < std::numeric_limits<double>::infinity()) {
        consider(sampleBest, sampleDistance);
        const double refined = RefineNearest(p, std::min(before, sampleBest), after, tolerance);
        consider(refined, squared(refined));
    }
    return best;
}

int Curve2D::BracketIntervals(const Record& record) {
    const double span = record.end - record.start;
    double turn = 0;
    switch (record.kind) {
        case Kind::Segment:
            return 1;
        case Kind::CircleArc:
            turn = std::fabs(static_cast<const CircleArc*>(record.function)->GetCurvature()) * span;
            break;
        case Kind::ClothoArc: {
            const auto* arc = static_cast<const ClothoArc*>(record.function);
            turn = std::max(std::fabs(arc->GetStartCurvature()), std::fabs(arc->GetEndCurvature())) * span;
            break;
        }
        case Kind::Other:
            return kOtherBracketIntervals;
    }
    return static_cast<int>(std::clamp(std::ceil(turn / kBracketTurn), 1.0, double(kMaxBracketIntervals)));
}

double Curve2D::RefineNearest(const vek::Vector2& p, double lo, double hi, double tolerance) const {
    size_t hint = npos;
    PointData sample;
    vek::Vector2 tangent;
    auto residual = [&](double s) {
        Sample(s, 0, sample, &tangent, &hint);
        return (p - sample.position).dot(tangent);
    };
    const double resolution = std::max(tolerance, kMinBracketWidth * std::max(1.0, std::fabs(hi)));
    // The residual falls through zero at the foot: bisection on it keeps full precision, where the squared
    // distance is flat.
    if (residual(lo) > 0 && residual(hi) < 0) {
        for (int i = 0; i < kMaxRefinements && hi - lo > resolution; ++i) {
            const double mid = 0.5 * (lo + hi);
            (residual(mid) > 0 ? lo : hi) = mid;
        }
        return 0.5 * (lo + hi);
    }
    // A corner between pieces or an end: the squared distance, by golden section.
    const int steps = static_cast<int>(std::clamp(std::ceil(std::log((hi - lo) / resolution) / kGoldenShrink),
                                                  0.0, double(kMaxRefinements)));
    const detail::Bracket bracket = detail::GoldenSectionMinimum(
        [&](double s) {
            Sample(s, 0, sample, nullptr, &hint);
            return (sample.position - p).squaredNorm();
        },
        lo, hi, steps);
    return 0.5 * (bracket.lo + bracket.hi);
}

bool Curve2D::ComputeAbscissaDistOutside(const vek::Vector2& p, double sRef, double& s, double& d) const {
    PointData end;
    if (!GetPointData(sRef, 0, end)) return false;
    const vek::Vector2 travel = end.GetTangent();
    const vek::Vector2 outward = sRef == 0 ? -travel : travel;
    const double along = outward.dot(p - end.position);
    if (along < 0) return false;
    const vek::Vector2 foot = end.position + outward * along;
    const double beyond = (foot - end.position).norm();
    s = sRef == 0 ? -beyond : sRef + beyond;
    const double distance = (p - foot).norm();
    d = travel.cross(p - foot) < 0 ? distance : -distance;
    return true;
}

bool Curve2D::ComputeAbscissaDistBefore(const vek::Vector2& p, double& s, double& d) const {
    return ComputeAbscissaDistOutside(p, 0, s, d);
}

bool Curve2D::ComputeAbscissaDistAfter(const vek::Vector2& p, double& s, double& d) const {
    return ComputeAbscissaDistOutside(p, GetLength(), s, d);
}

// ---------------------------------------------------------------------------------------------------------------
// Placement and whole-curve edits

void Curve2D::SetOrigin(const vek::Vector2& position, double orientation) {
    if (m_records.empty()) return;
    ParametricFunction* first = m_records.front().function;
    if (first->GetStartPosition() == position && first->GetStartOrientation() == orientation) return;
    first->SetStartPosition(position);
    first->SetStartOrientation(orientation);
    UpdateFunctionsFromStart();
}

vek::Vector2 Curve2D::GetOriginPosition() const {
    return m_records.empty() ? vek::Vector2() : m_records.front().function->GetStartPosition();
}

double Curve2D::GetOriginOrientation() const {
    return m_records.empty() ? 0 : m_records.front().function->GetStartOrientation();
}

void Curve2D::UpdateFunctionsFromStart() {
    for (size_t i = 1; i < m_records.size(); ++i) {
        const ParametricFunction* before = m_records[i - 1].function;
        const PointData end = before->GetPointData(before->GetLength());
        m_records[i].function->SetStartPosition(end.position);
        m_records[i].function->SetStartOrientation(end.heading);
    }
    if (!m_records.empty() && m_records.back().kind == Kind::Other)
        if (auto* polyline = dynamic_cast<PolyLine*>(m_records.back().function))
            polyline->ComputeNaturalEndTangent();
    UpdateParametricFunctionVector();
}

void Curve2D::Invert() {
    std::reverse(m_Functions.begin(), m_Functions.end());
    UpdateParametricFunctionVector();
    for (const Record& record : m_records)
        record.function->Invert();
    UpdateParametricFunctionVector();
}

vek::Box2 Curve2D::GetBoundingBox() const {
    vek::Box2 box;
    for (const Record& record : m_records)
        box.add(record.function->GetBoundingBox());
    return box;
}

bool Curve2D::IsEqual(const Curve2D* other) const {
    if (!other || other->m_records.size() != m_records.size()) return false;
    for (size_t i = 0; i < m_records.size(); ++i)
        if (!m_records[i].function->IsEqual(other->m_records[i].function)) return false;
    return true;
}

void Curve2D::CopyFrom(const Curve2D* other) {
    if (!other || other == this) return;
    m_Functions = CloneList(other->m_Functions);
    m_Origin = other->m_Origin;
    m_Orientation = other->m_Orientation;
    UpdateParametricFunctionVector();
}

void Curve2D::Clear() {
    m_Functions.clear();
    m_records.clear();
    IndexRecords();
}

// ---------------------------------------------------------------------------------------------------------------
// Persistence

bool Curve2D::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    Clear();
    const bool loaded = Ruvex::XYCurveElement::LoadFromXMLElement(element, parser);
    for (const Ruvex::CountedPtr<Ruvex::Element>& piece : m_Functions)
        ConstrainLoadedPiece(piece.Get());
    UpdateParametricFunctionVector();
    if (!loaded) return false;
    // The pieces all start at the local origin; SetOrigin chains them only when it moves the first one.
    if (GetOriginPosition() == m_Origin && GetOriginOrientation() == m_Orientation)
        UpdateFunctionsFromStart();
    else
        SetOrigin(m_Origin, m_Orientation);
    return true;
}

Ruvex::IDOMElement* Curve2D::BuildXMLElement(Ruvex::IDOMParser* parser) {
    m_Origin = GetOriginPosition();
    m_Orientation = GetOriginOrientation();
    return Ruvex::XYCurveElement::BuildXMLElement(parser);
}

}  // namespace Orvia

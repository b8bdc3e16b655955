#include <orvia/geometry/polyline.h>

#include <algorithm>
#include <cmath>

#include <orvia/vek/math.h>

namespace {

// Linear extrapolation to x of the values ya at xa and yb at xb; their mean when the support abscissas
// coincide.
double Extrapolate(double xa, double ya, double xb, double yb, double x) {
    if (xa == xb) return 0.5 * (ya + yb);
    return ya + (yb - ya) * (x - xa) / (xb - xa);
}

}  // namespace

PolyLineCommonData::PolyLineCommonData() = default;
PolyLineCommonData::PolyLineCommonData(const PolyLineCommonData&) = default;
PolyLineCommonData& PolyLineCommonData::operator=(const PolyLineCommonData&) = default;
PolyLineCommonData::~PolyLineCommonData() = default;

void PolyLineCommonData::SetLength(double length) {
    SetPolylineLength(length);
}

void PolyLineCommonData::Flip() {
    for (vek::Vector2& p : m_controlPoints)
        p.y = -p.y;
    DataChanged();
}

void PolyLineCommonData::SetControlPoints(const std::vector<vek::Vector2>& points) {
    m_controlPoints = points;
    DataChanged();
}

void PolyLineCommonData::ClearControlPoints() {
    m_controlPoints.clear();
    DataChanged();
}

bool PolyLineCommonData::SetControlPoint(size_t index, const vek::Vector2& point) {
    if (index >= m_controlPoints.size()) return false;
    m_controlPoints[index] = point;
    DataChanged();
    return true;
}

void PolyLineCommonData::AddControlPointAtEnd(const vek::Vector2& point) {
    m_controlPoints.push_back(point);
    DataChanged();
}

bool PolyLineCommonData::InsertControlPoint(size_t index, const vek::Vector2& point, bool update) {
    if (index == npos) index = m_controlPoints.size();
    if (index > m_controlPoints.size()) return false;
    m_controlPoints.insert(m_controlPoints.begin() + static_cast<std::ptrdiff_t>(index), point);
    if (update) DataChanged();
    return true;
}

bool PolyLineCommonData::RemoveControlPoint(size_t first, size_t count) {
    if (first >= m_controlPoints.size()) return false;
    const size_t last = std::min(m_controlPoints.size(), first + std::min(count, m_controlPoints.size()));
    m_controlPoints.erase(m_controlPoints.begin() + static_cast<std::ptrdiff_t>(first),
                          m_controlPoints.begin() + static_cast<std::ptrdiff_t>(last));
    DataChanged();
    return true;
}

void PolyLineCommonData::SetOriginConstraints(bool position, bool orientation) {
    m_constrainPosition = position;
    m_constrainOrientation = orientation;
}

std::vector<vek::Vector2> PolyLineCommonData::GetUniqueControlPoints(double tolerance) const {
    std::vector<vek::Vector2> unique;
    unique.reserve(m_controlPoints.size());
    for (size_t i = 0; i < m_controlPoints.size(); ++i)
        if (i == 0 || !vek::isEqual(m_controlPoints[i], m_controlPoints[i - 1], tolerance))
            unique.push_back(m_controlPoints[i]);
    return unique;
}

size_t PolyLineCommonData::GetSegmentIndex(double s) const {
    if (m_endAbscissas.empty()) return 0;
    const auto it = std::lower_bound(m_endAbscissas.begin(), m_endAbscissas.end(), s);
    if (it == m_endAbscissas.end()) return m_endAbscissas.size() - 1;
    return static_cast<size_t>(it - m_endAbscissas.begin());
}

double PolyLineCommonData::GetPolylineLength() const {
    return m_controlPoints.size() < 2 || m_endAbscissas.empty() ? 0 : m_endAbscissas.back();
}

void PolyLineCommonData::SetPolylineLength(double length) {
    if (!IsValidLength(length)) return;
    if (length == 0) {
        ClearControlPoints();
        return;
    }
    if (m_controlPoints.empty()) {
        m_controlPoints = {{0, 0}, {length, 0}};
        DataChanged();
        return;
    }
    if (m_controlPoints.size() == 1) {
        m_controlPoints.push_back({length, 0});
        DataChanged();
        return;
    }
    if (GetPolylineLength() > length) {
        const size_t edge = GetSegmentIndex(length);
        if (edge + 2 < m_controlPoints.size()) {
            m_controlPoints.resize(edge + 2);
            DataChanged();
        }
    }
    const size_t n = m_controlPoints.size();
    const double lastStart = n >= 3 ? m_endAbscissas[n - 3] : 0;
    const vek::Vector2& from = m_controlPoints[n - 2];
    vek::Vector2 direction = (m_controlPoints[n - 1] - from).normalized();
    if (direction == vek::Vector2()) {
        const double angle = m_orientations[n - 2];
        direction = {std::cos(angle), std::sin(angle)};
    }
    m_controlPoints[n - 1] = from + direction * (length - lastStart);
    DataChanged();
}

double PolyLineCommonData::computeCurvature(const vek::Vector2& a, const vek::Vector2& b,
                                            const vek::Vector2& c) {
    const double chord = (c - a).norm();
    if (chord < kCoincidentPointDistance) return 0;
    const double angle = vek::angleBetweenVectors(-(c - b), b - a);
    return 2 * std::sin(angle) / chord;
}

void PolyLineCommonData::Validate() {
    const size_t n = m_controlPoints.size();
    if (n < 2) {
        m_endAbscissas.clear();
        m_orientations.clear();
        m_curvatures.clear();
        return;
    }
    const std::vector<vek::Vector2>& p = m_controlPoints;
    m_endAbscissas.assign(n - 1, 0);
    m_orientations.assign(n - 1, 0);
    m_curvatures.assign(n, 0);
    std::vector<double> lengths(n - 1);
    double total = 0;
    for (size_t i = 0; i + 1 < n; ++i) {
        const vek::Vector2 edge = p[i + 1] - p[i];
        lengths[i] = edge.norm();
        total += lengths[i];
        m_endAbscissas[i] = total;
        if (lengths[i] > 0)
            m_orientations[i] = vek::angleBetweenNormalizedVectors({1, 0}, edge / lengths[i]);
        else
            m_orientations[i] = i > 0 ? m_orientations[i - 1] : 0;
    }
    for (size_t i = 1; i + 1 < n; ++i)
        m_curvatures[i] = computeCurvature(p[i - 1], p[i], p[i + 1]);
    if (n > 2) {
        const std::vector<double>& e = m_endAbscissas;
        std::vector<double>& k = m_curvatures;
        // With three points the last curvature is still 0 here: the first end uses it as it stands.
        k[0] = 2 * lengths[1] > lengths[0] ? Extrapolate(e[0], k[1], e[1], k[2], 0) : 0;
        // Point n - 3 is placed at abscissa 0 whenever n - 4 <= 0, also for four points where it is really at
        // e[0]; files written so far carry curvatures computed that way.
        const double xa = n <= 4 ? 0 : e[n - 4];
        k[n - 1] =
            2 * lengths[n - 2] > lengths[n - 3] ? Extrapolate(xa, k[n - 3], e[n - 3], k[n - 2], e[n - 2]) : 0;
    }
}

void PolyLineCommonData::ApplyConvolution(const vek::Convolution1D& kernel) {
    m_controlPoints = kernel.apply(m_controlPoints);
    DataChanged();
}

void PolyLineCommonData::DataChanged() {
    if (m_constrainPosition) {
        if (m_controlPoints.empty())
            m_controlPoints.push_back({0, 0});
        else
            m_controlPoints.front() = {0, 0};
    }
    if (m_constrainOrientation && m_controlPoints.size() >= 2) m_controlPoints[1].y = 0;
    Validate();
    ParametricFunction::DataChanged();
}

PointData PolyLineCommonData::GetPolygonPointData(double s) const {
    const size_t n = m_controlPoints.size();
    if (n < 2 || m_endAbscissas.size() + 1 != n) return PointData();
    const size_t i = GetSegmentIndex(s);
    const double start = i > 0 ? m_endAbscissas[i - 1] : 0;
    const double length = m_endAbscissas[i] - start;
    const double f = length > 0 ? (s - start) / length : 0.5;
    const vek::Vector2& a = m_controlPoints[i];
    const vek::Vector2& b = m_controlPoints[i + 1];
    return PointData(a + (b - a) * f, m_orientations[i],
                     m_curvatures[i] + (m_curvatures[i + 1] - m_curvatures[i]) * f);
}

PointData PolyLineCommonData::GetLocalPointData(double s) const {
    return GetPolygonPointData(s);
}

void PolyLineCommonData::InvertLocalData() {
    // Invert() has moved the frame to the old end, turned back; the local data still describe the old frame,
    // in which the new one sits at the old end sample.
    const PointData end = GetLocalPointData(GetLength());
    const vek::Transform2D toNew = vek::Transform2D(end.position, end.heading - vek::kPi).globalToLocal();
    std::vector<vek::Vector2> points(m_controlPoints.rbegin(), m_controlPoints.rend());
    for (vek::Vector2& p : points)
        p = toNew.apply(p);
    m_controlPoints = std::move(points);
    DataChanged();
}

#include <orvia/geometry/clothoid_spline.h>

#include <cmath>
#include <limits>

#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/clotho_arc.h>
#include <orvia/geometry/segment.h>
#include <orvia/vek/math.h>
#include <orvia/vek/transform2d.h>

namespace {

// When shortening, an edge counts as crossed by the tangent line at the cut only when the sine-like cross
// product of their directions (unit tangent, edge vector in m) reaches this.
constexpr double kMinCrossing = 1e-5;

}  // namespace

ClothoidSpline::ClothoidSpline() {
    DataChanged();
}

ClothoidSpline::ClothoidSpline(const ClothoidSpline& other) = default;
ClothoidSpline::~ClothoidSpline() = default;

void ClothoidSpline::SetThreshold(double threshold) {
    if (threshold == m_Threshold) return;
    m_Threshold = threshold;
    DataChanged();
}

void ClothoidSpline::SetSymmetric(bool symmetric) {
    if (symmetric == m_Symmetric) return;
    m_Symmetric = symmetric;
    DataChanged();
}

void ClothoidSpline::CopyFrom(const ClothoidSpline* other) {
    if (!other || other == this) return;
    m_controlPoints = other->m_controlPoints;
    m_Threshold = other->m_Threshold;
    m_Symmetric = other->m_Symmetric;
    SetOriginConstraints(other->GetPositionConstraint(), other->GetOrientationConstraint());
    SetForcedStartOrientation(other->GetForcedStartOrientation());
    SetStartPosition(other->GetStartPosition());
    SetStartOrientation(other->GetStartOrientation());
    DataChanged();
}

double ClothoidSpline::GetCurveAbscissaFromLineAbscissa(double lineAbscissa) const {
    return m_curveLength * lineAbscissa / GetPolylineLength();
}

void ClothoidSpline::Validate() {
    PolyLineCommonData::Validate();
    m_localCurve.Clear();
    m_globalCurve.Clear();
    m_fitComplete = true;
    SetLimitBlender(m_Threshold);
    SetSymmetricBlending(m_Symmetric);

    const std::vector<vek::Vector2> u = GetUniqueControlPoints(kUniquePointTolerance);
    const size_t m = u.size();
    if (m == 2) DeclareLine((u[1] - u[0]).norm());
    for (size_t i = 1; m > 2 && i + 1 < m; ++i) {
        const vek::Vector2 a = i == 1 ? u[0] : (u[i - 1] + u[i]) * 0.5;
        const vek::Vector2 b = i + 2 == m ? u[m - 1] : (u[i] + u[i + 1]) * 0.5;
        const size_t mark = m_localCurve.GetFunctionCount();
        bool fitted = false;
        try {
            fitted = Create(a.x, a.y, u[i].x, u[i].y, b.x, b.y);
        } catch (const CornerFittingError&) {
            fitted = false;
        }
        if (!fitted) {
            m_localCurve.RemoveFunction(mark, m_localCurve.GetFunctionCount() - mark);
            m_fitComplete = false;
        }
    }
    if (m >= 2) {
        const vek::Vector2 first = u[1] - u[0];
        m_localCurve.SetOrigin(u[0], std::atan2(first.y, first.x));
        // SetOrigin does nothing when the first piece already starts there, as new pieces do at the origin.
        m_localCurve.UpdateFunctionsFromStart();
    }
    m_globalCurve = m_localCurve;
    PlaceGlobalCurve();
    m_curveLength = m_localCurve.GetLength();
}

void ClothoidSpline::PlaceGlobalCurve() {
    if (m_localCurve.GetFunctionCount() == 0) return;
    // From the stored start rather than the transforms: during a recomputation these are rebuilt after the
    // fit.
    const vek::Transform2D place(GetStartPosition(), GetStartOrientation());
    m_globalCurve.SetOrigin(place.apply(m_localCurve.GetOriginPosition()),
                            GetStartOrientation() + m_localCurve.GetOriginOrientation());
}

void ClothoidSpline::DeclareLine(double length) {
    m_localCurve.AddFunction(new Segment(length));
}

void ClothoidSpline::DeclareCircle(double length, double curvature) {
    m_localCurve.AddFunction(new CircleArc(length, curvature));
}

void ClothoidSpline::DeclareClothoide(double length, double startCurvature, double endCurvature) {
    m_localCurve.AddFunction(new ClothoArc(length, startCurvature, endCurvature));
}

PointData ClothoidSpline::GetLocalPointData(double s) const {
    PointData pd;
    m_localCurve.GetPointData(s, 0, pd);
    return pd;
}

void ClothoidSpline::SetLength(double length) {
    if (!IsValidLength(length)) return;
    const size_t n = m_controlPoints.size();
    bool cut = false;
    if (length < m_curveLength && n >= 2) {
        const PointData end = GetLocalPointData(length);
        const vek::Vector2 p = end.position;
        const vek::Vector2 tangent = end.GetTangent();
        // The edge that the tangent line at the cut meets behind the cut point (where the curve came from),
        // nearest first; failing that, the nearest edge onto which the cut point projects.
        size_t edge = npos;
        double nearest = std::numeric_limits<double>::infinity();
        vek::Vector2 crossing;
        for (size_t i = 0; i + 1 < n; ++i) {
            const vek::Vector2 a = m_controlPoints[i], e = m_controlPoints[i + 1] - a;
            const double denominator = tangent.cross(e);
            if (std::fabs(denominator) < kMinCrossing) continue;
            const vek::Vector2 w = a - p;
            const double back = -w.cross(e) / denominator;  // p - back * tangent lies on the edge's line
            const double along = w.cross(tangent) / denominator;
            if (along < 0 || along > 1 || back < 0 || back >= nearest) continue;
            nearest = back;
            edge = i;
            crossing = a + e * along;
        }
        const bool crossed = edge != npos;
        if (!crossed) {
            for (size_t i = 0; i + 1 < n; ++i) {
                const vek::Vector2 a = m_controlPoints[i], e = m_controlPoints[i + 1] - a;
                const double squared = e.squaredNorm();
                if (squared <= 0) continue;
                const double along = (p - a).dot(e) / squared;
                if (along < 0 || along > 1) continue;
                const double distance = (a + e * along - p).norm();
                if (distance < nearest) {
                    nearest = distance;
                    edge = i;
                }
            }
        }
        if (edge != npos) {
            m_controlPoints.resize(edge + 1);
            DataChanged();
            if (crossed) AddControlPointAtEnd(crossing);
            AddControlPointAtEnd(p);
            cut = true;
        }
    }
    if (!cut) {
        const double polygon = GetPolylineLength();
        SetPolylineLength(m_curveLength > 0 ? length * polygon / m_curveLength : length);
    }
    DataChanged();
}

ClothoidSpline* ClothoidSpline::Clone() const {
    return new ClothoidSpline(*this);
}

bool ClothoidSpline::IsEqual(const ParametricFunction* other) const {
    const auto* spline = dynamic_cast<const ClothoidSpline*>(other);
    return spline && spline->m_Threshold == m_Threshold && spline->m_Symmetric == m_Symmetric &&
           spline->m_controlPoints == m_controlPoints;
}

Ruvex::Element* ClothoidSpline::GetElement() const {
    return const_cast<ClothoidSpline*>(this);
}

uint64_t ClothoidSpline::AddRef() {
    return Ruvex::ClothoidSplineElement::AddRef();
}

uint64_t ClothoidSpline::Release() {
    return Ruvex::ClothoidSplineElement::Release();
}

bool ClothoidSpline::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    Ruvex::ClothoidSplineElement::LoadFromXMLElement(element, parser);
    ClampLoadedPoints(m_Points, "points", element, parser);
    m_controlPoints = m_Points;
    DataChanged();
    return true;
}

Ruvex::IDOMElement* ClothoidSpline::BuildXMLElement(Ruvex::IDOMParser* parser) {
    m_Points = m_controlPoints;
    return Ruvex::ClothoidSplineElement::BuildXMLElement(parser);
}

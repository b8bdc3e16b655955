#include <orvia/geometry/clotho_arc.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include <orvia/geometry/circle_arc.h>
#include <orvia/ruvex/dom.h>
#include <orvia/vek/math.h>

namespace {

// Nodes of the heading integration, at most: a longer or sharper clothoid is integrated with wider steps
// (ClothoidChord holds for any step), and a change of data stays cheap.
constexpr double kMaxNodes = 1 << 14;
// Heading brought into (-pi, pi] the way atan2 of the tangent would give it, without the cost when it already
// is.
double WrapHeading(double heading) {
    return (heading > vek::kPi || heading <= -vek::kPi) ? vek::normalizeAngle(heading) : heading;
}

}  // namespace

ClothoArc::ClothoArc() {
    DataChanged();
}

ClothoArc::ClothoArc(double length, double startCurvature, double endCurvature) {
    m_Length = ConstructedLength(length);
    m_StartCurvature = std::isfinite(startCurvature) ? startCurvature : 0;
    m_EndCurvature = std::isfinite(endCurvature) ? endCurvature : 0;
    DataChanged();
}

ClothoArc::ClothoArc(const ClothoArc& other) = default;
ClothoArc::~ClothoArc() = default;

void ClothoArc::SetLength(double length) {
    // Refused before the rescale: its end curvature would not be finite.
    if (!(std::fabs(length) <= kMaxLength)) return;
    const double old = m_Length;
    bool changed = false;
    if (old > kDegenerateTolerance) {
        const double rescaled = m_StartCurvature + (m_EndCurvature - m_StartCurvature) * length / old;
        changed = rescaled != m_EndCurvature;
        m_EndCurvature = rescaled;
    }
    if (IsValidLength(length) && length != old) {
        m_Length = length;
        changed = true;
    }
    // Also after a refused length whose end curvature was rescaled: the Cornu state must follow it.
    if (changed) DataChanged();
}

bool ClothoArc::SetRawLength(double length) {
    if (IsValidLength(length) && length != m_Length) {
        m_Length = length;
        DataChanged();
    }
    return true;
}

bool ClothoArc::SetStartCurvature(double curvature) {
    if (!std::isfinite(curvature)) return false;
    if (curvature != m_StartCurvature) {
        m_StartCurvature = curvature;
        DataChanged();
    }
    return true;
}

bool ClothoArc::SetEndCurvature(double curvature) {
    if (!std::isfinite(curvature)) return false;
    if (curvature != m_EndCurvature) {
        m_EndCurvature = curvature;
        DataChanged();
    }
    return true;
}

ClothoArc* ClothoArc::Clone() const {
    return new ClothoArc(*this);
}

bool ClothoArc::IsEqual(const ParametricFunction* other) const {
    const auto* arc = dynamic_cast<const ClothoArc*>(other);
    return arc && arc->m_Length == m_Length && arc->m_StartCurvature == m_StartCurvature &&
           arc->m_EndCurvature == m_EndCurvature;
}

Ruvex::Element* ClothoArc::GetElement() const {
    return const_cast<ClothoArc*>(this);
}

uint64_t ClothoArc::AddRef() {
    return Ruvex::ClothoidArcElement::AddRef();
}

uint64_t ClothoArc::Release() {
    return Ruvex::ClothoidArcElement::Release();
}

void ClothoArc::Flip() {
    m_StartCurvature = -m_StartCurvature;
    m_EndCurvature = -m_EndCurvature;
    DataChanged();
}

bool ClothoArc::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    // Layouts before 2.3.0 hold the same attributes: the record's table reads them all.
    Ruvex::ClothoidArcElement::LoadFromXMLElement(element, parser);
    m_Length = ClampLoaded(m_Length, 0, kMaxLength, "length", element, parser);
    m_StartCurvature =
        ClampLoaded(m_StartCurvature, -kMaxCurvature, kMaxCurvature, "startCurvature", element, parser);
    m_EndCurvature =
        ClampLoaded(m_EndCurvature, -kMaxCurvature, kMaxCurvature, "endCurvature", element, parser);
    DataChanged();
    return true;
}

void ClothoArc::DataChanged() {
    Init();
    const double k0 = m_StartCurvature, k1 = m_EndCurvature;
    const double eps = kDegenerateTolerance;
    if (std::fabs(m_Length) < eps || (std::fabs(k0) < eps && std::fabs(k1) < eps))
        m_shape = Shape::Line;
    else if (std::fabs(k0 - k1) >= eps)
        m_shape = Shape::Clothoid;
    else
        m_shape = Shape::Circle;
    m_circleRadius = std::fabs(k0) < CircleArc::kMinCurvature ? CircleArc::kZeroCurvatureRadius : 1 / k0;
    m_useSeries =
        m_shape != Shape::Clothoid || std::max(std::fabs(m_t0), std::fabs(EvalT(m_Length))) <= kSeriesRange;
    if (m_useSeries)
        m_nodes.clear();
    else
        BuildNodes();
    if (m_shape == Shape::Clothoid) {
        double endHeading = 0;
        LocalPositionHeading(m_Length, m_endPosition, endHeading);
        m_endCos = std::cos(LocalHeading(m_Length));
        m_endSin = std::sin(LocalHeading(m_Length));
    }
    ParametricFunction::DataChanged();
}

double ClothoArc::LocalHeading(double s) const {
    // The Cornu tangent turns by t^2 - t0^2 from the start tangent (mirrored when decreasing); written as
    // u (u + 2 t0) with u = s / a it is exact where the difference of squares would cancel.
    const double u = s / m_a;
    const double turn = u * (u + 2 * m_t0);
    return m_decreasing ? -turn : turn;
}

void ClothoArc::BuildNodes() {
    const double k0 = m_StartCurvature, k1 = m_EndCurvature;
    const double rate = (k1 - k0) / m_Length;
    const double spacing =
        std::min(kNodeTurn / std::max(std::fabs(k0), std::fabs(k1)), std::sqrt(kNodeTurn / std::fabs(rate)));
    const double count = std::min(kMaxNodes, std::max(1.0, std::ceil(m_Length / spacing)));
    const size_t n = static_cast<size_t>(count);
    m_nodeSpacing = m_Length / count;
    m_nodes.assign(n + 1, Node());
    m_nodes[0].curvature = k0;
    for (size_t i = 1; i <= n; ++i) {
        const Node& before = m_nodes[i - 1];
        const vek::Vector2 chord = ClothoidChord(before.curvature, rate, m_nodeSpacing);
        Node& node = m_nodes[i];
        node.position =
            before.position + vek::Vector2(before.cosHeading * chord.x - before.sinHeading * chord.y,
                                           before.sinHeading * chord.x + before.cosHeading * chord.y);
        const double s = m_nodeSpacing * static_cast<double>(i);
        const double heading = LocalHeading(s);
        node.cosHeading = std::cos(heading);
        node.sinHeading = std::sin(heading);
        node.curvature = k0 + rate * s;
    }
}

vek::Vector2 ClothoArc::NodePosition(double s) const {
    const size_t last = m_nodes.size() - 1;
    const double index = std::floor(s / m_nodeSpacing);
    const size_t i = index <= 0 ? 0 : std::min(last, static_cast<size_t>(index));
    const Node& node = m_nodes[i];
    const double rate = (m_EndCurvature - m_StartCurvature) / m_Length;
    const vek::Vector2 chord =
        ClothoidChord(node.curvature, rate, s - m_nodeSpacing * static_cast<double>(i));
    return node.position + vek::Vector2(node.cosHeading * chord.x - node.sinHeading * chord.y,
                                        node.sinHeading * chord.x + node.cosHeading * chord.y);
}

void ClothoArc::Init() {
    const double k0 = m_StartCurvature, k1 = m_EndCurvature;
    if (!(m_Length > 0 && std::fabs(k1 - k0) > 0)) return;
    m_decreasing = k0 > k1;
    m_a = std::sqrt(2 * m_Length / std::fabs(k1 - k0));
    if (m_decreasing) {
        m_t0 = -0.5 * m_a * k0;
        m_cornu.Setup(m_a, -m_a);
    } else {
        m_t0 = 0.5 * m_a * k0;
        m_cornu.Setup(m_a, m_a);
    }
    m_tStart = EvalT(0);
    m_cornu.Eval(m_tStart, m_X0, m_Y0);
    m_rawStartTangent = {m_cornu.EvalDX(m_tStart), m_cornu.EvalDY(m_tStart)};
    const vek::Vector2 unit = m_rawStartTangent.normalized();
    m_c = unit.x;
    m_d = unit.y;
}

double ClothoArc::GetLocalCurvature(double s) const {
    const double k = (s / m_a + m_t0) * 2 / m_a;
    return m_decreasing ? -k : k;
}

void ClothoArc::Func(double s, double& x, double& y, double& heading) const {
    const double t = EvalT(s);
    double cx, cy;
    m_cornu.Eval(t, cx, cy);
    const double dX = cx - m_X0;
    const double dY = cy - m_Y0;
    x = m_c * dX + m_d * dY;
    y = m_c * dY - m_d * dX;
    heading = WrapHeading(LocalHeading(s));
}

void ClothoArc::LocalPositionHeading(double s, vek::Vector2& position, double& heading) const {
    switch (m_shape) {
        case Shape::Line:
            position = {s, 0};
            heading = 0;
            return;
        case Shape::Clothoid:
            if (!(s >= 0 && s <= m_Length)) {
                ExtrapolatedPositionHeading(s, position, heading);
            } else if (m_useSeries) {
                Func(s, position.x, position.y, heading);
            } else {
                position = NodePosition(s);
                heading = WrapHeading(LocalHeading(s));
            }
            return;
        case Shape::Circle:
            break;
    }
    const double k0 = m_StartCurvature;
    // The tangent is the radius direction turned a quarter towards the travel side; with the stand-in radius
    // of a negative curvature too small to invert it points backwards.
    double turn = k0 * s;
    if (k0 < 0 && m_circleRadius > 0) turn += vek::kPi;
    position = CircleArcLocalPosition(k0, m_circleRadius, s);
    heading = WrapHeading(turn);
}

void ClothoArc::ExtrapolatedPositionHeading(double s, vek::Vector2& position, double& heading) const {
    const double rate = (m_EndCurvature - m_StartCurvature) / m_Length;
    heading = WrapHeading(LocalHeading(s));
    if (!(s > m_Length)) {
        position = ClothoidChord(m_StartCurvature, rate, s);
        return;
    }
    // From the end, so that the continuation meets the piece exactly.
    const vek::Vector2 chord = ClothoidChord(m_EndCurvature, rate, s - m_Length);
    position = m_endPosition +
               vek::Vector2(m_endCos * chord.x - m_endSin * chord.y, m_endSin * chord.x + m_endCos * chord.y);
}

PointData ClothoArc::GetLocalPointData(double s) const {
    PointData pd;
    LocalPositionHeading(s, pd.position, pd.heading);
    if (m_shape == Shape::Clothoid)
        pd.curvature = GetLocalCurvature(s);
    else if (m_shape == Shape::Circle)
        pd.curvature = m_StartCurvature;
    return pd;
}

PointData ClothoArc::GetPointDataDirect(double s, vek::Vector2* tangent) const {
    const PointData pd = PlaceLocalSample(s, ClothoArc::GetLocalPointData(s));
    // A straight piece's heading is the start orientation, whose cosine and sine are known.
    if (tangent) *tangent = m_shape == Shape::Line ? PlacedTangent(s, {1, 0}) : pd.GetTangent();
    return pd;
}

void ClothoArc::InvertLocalData() {
    const double k0 = m_StartCurvature;
    m_StartCurvature = -m_EndCurvature;
    m_EndCurvature = -k0;
    DataChanged();
}

#include <orvia/geometry/polynomial_function.h>

#include <cmath>
#include <limits>

#include <orvia/vek/math.h>

namespace {

// Chord tolerance and largest step (m) of the arc length.
constexpr double kLengthTolerance = 0.5;
constexpr double kLengthStep = 1.0;

// Below this largest curvature (1/m) the graph counts as straight.
constexpr double kStraightCurvature = 1e-12;

// Turns within this of a full turn (radians) are rounding of no turn at all.
constexpr double kFullTurnTolerance = 1e-9;

double PositiveTurn(double angle) {
    double a = std::fmod(angle, vek::kTwoPi);
    if (a < 0) a += vek::kTwoPi;
    return a > vek::kTwoPi - kFullTurnTolerance ? 0 : a;
}

vek::Vector2 LeftNormal(double heading) {
    return {-std::sin(heading), std::cos(heading)};
}

}  // namespace

PolynomialFunction::PolynomialFunction() = default;

PolynomialFunction::PolynomialFunction(const vek::Vector2& in, double derivativeIn, const vek::Vector2& out,
                                       double derivativeOut) {
    Set(in, derivativeIn, out, derivativeOut);
}

PolynomialFunction::PolynomialFunction(const PolynomialFunction& other) = default;
PolynomialFunction::~PolynomialFunction() = default;

void PolynomialFunction::Set(const vek::Vector2& in, double derivativeIn, const vek::Vector2& out,
                             double derivativeOut) {
    m_In = in;
    m_DerivativeIn = derivativeIn;
    m_Out = out;
    m_DerivativeOut = derivativeOut;
    m_xm = in.x + (out.x - in.x) * 0.5;
    m_function.Estimate((out.x - in.x) / 2, in.y, out.y, derivativeIn, derivativeOut);
}

void PolynomialFunction::SetLinear(const vek::Vector2& in, const vek::Vector2& out) {
    const double slope = out.x > in.x ? (out.y - in.y) / (out.x - in.x) : 0;
    Set(in, slope, out, slope);
}

double PolynomialFunction::GetSlope(double x) const {
    return std::atan(GetDerivative(x));
}

double PolynomialFunction::GetCurveLength(double x0, double x1) const {
    return m_function.CurveLen(x0 - m_xm, x1 - m_xm, kLengthTolerance, kLengthStep);
}

vek::Box2 PolynomialFunction::GetBoundingBox() const {
    double lo = 0, hi = 0;
    m_function.ComputeIntervalImage(lo, hi, m_In.x - m_xm, m_Out.x - m_xm);
    vek::Box2 box;
    box.add({std::min(m_In.x, m_Out.x), lo});
    box.add({std::max(m_In.x, m_Out.x), hi});
    return box;
}

void PolynomialFunction::getCoefficients(double& a, double& b, double& c, double& d) const {
    double c0, c1, c2, c3;
    m_function.getCoefficients(c0, c1, c2, c3);
    const double h = (m_Out.x - m_In.x) / 2;
    a = c0 - h * c1 + h * h * c2 - h * h * h * c3;
    b = c1 - 2 * h * c2 + 3 * h * h * c3;
    c = c2 - 3 * h * c3;
    d = c3;
}

bool PolynomialFunction::DecomposeToCircleSegmentCircle(CircleSegmentCircle& result) const {
    if (!(m_Out.x > m_In.x)) return false;
    const vek::Vector2 a(m_In.x, GetValue(m_In.x)), b(m_Out.x, GetValue(m_Out.x));
    const double alpha = std::atan(GetDerivative(m_In.x)), beta = std::atan(GetDerivative(m_Out.x));
    double where = 0;
    const double kMax = m_function.MaxCurvature(m_In.x - m_xm, m_Out.x - m_xm, where);
    if (kMax < kStraightCurvature) {
        result = {0, 0, (b - a).norm(), 0, 0};
        return true;
    }
    const double radius = 1 / kMax;
    double bestLength = std::numeric_limits<double>::infinity();
    // Each word: the turning side of each circle (+1 left, -1 right).
    for (const auto& [side1, side2] :
         {std::pair{1, 1}, std::pair{-1, -1}, std::pair{1, -1}, std::pair{-1, 1}}) {
        const vek::Vector2 c1 = a + LeftNormal(alpha) * (radius * side1);
        const vek::Vector2 c2 = b + LeftNormal(beta) * (radius * side2);
        const vek::Vector2 between = c2 - c1;
        const double distance = between.norm();
        const double psi = std::atan2(between.y, between.x);
        double heading = psi, segment = distance;
        if (side1 != side2) {
            // Inner tangent: the segment crosses between the circles.
            if (distance < 2 * radius) continue;
            heading = psi + side1 * std::asin(2 * radius / distance);
            segment = std::sqrt(distance * distance - 4 * radius * radius);
        }
        const double turn1 = PositiveTurn(side1 * (heading - alpha));
        const double turn2 = PositiveTurn(side2 * (beta - heading));
        const double total = radius * (turn1 + turn2) + segment;
        if (total < bestLength) {
            bestLength = total;
            result = {side1 * kMax, radius * turn1, segment, side2 * kMax, radius * turn2};
        }
    }
    return bestLength < std::numeric_limits<double>::infinity();
}

PolynomialFunction* PolynomialFunction::Clone() const {
    return new PolynomialFunction(*this);
}

bool PolynomialFunction::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!Ruvex::PolynomialFunctionElement::LoadFromXMLElement(element, parser)) return false;
    Set(m_In, m_DerivativeIn, m_Out, m_DerivativeOut);
    return true;
}

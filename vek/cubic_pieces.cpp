#include "cubic_pieces.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace vek {

namespace {

// Arc-length quadrature: each interval estimate is refined until halving it changes the result by less than
// this fraction of itself (unitless); the true error is far smaller, since the halves are the better
// estimate.
constexpr double kQuadratureRelTolerance = 1e-12;
// Floor of the above for intervals of (almost) zero length, metres.
constexpr double kQuadratureAbsTolerance = 1e-14;
// A cusp makes the speed non-smooth and convergence slow; past this many halvings the estimate is kept.
constexpr int kMaxQuadratureDepth = 40;
// parameterAtLength() stops when the quadrature length at the found parameter is this close to s, metres.
constexpr double kArcLengthTolerance = 1e-10;
constexpr int kMaxNewtonIterations = 60;
// Below this fraction of the piece's derivative size the speed is zero and gives no direction (unitless).
constexpr double kStallRatio = 1e-12;

// 10-point Gauss-Legendre nodes (positive half) and weights on [-1, 1].
constexpr std::array<std::array<double, 2>, 5> kGauss10{{
    {0.97390652851717172008, 0.06667134430868813759},
    {0.86506336668898451073, 0.14945134915058059315},
    {0.67940956829902440623, 0.21908636251598204400},
    {0.43339539412924719080, 0.26926671930999635509},
    {0.14887433898163121088, 0.29552422471475287017},
}};

double gaussSpeed(const CubicPiece& p, double a, double b) {
    const double half = 0.5 * (b - a), mid = 0.5 * (a + b);
    double sum = 0;
    for (const auto& [x, w] : kGauss10)
        sum += w * (p.derivative(mid - half * x).norm() + p.derivative(mid + half * x).norm());
    return sum * half;
}

// Refinement budget of one arcLength call, in halvings: with a tolerance near roundoff every interval could
// fail the test and the recursion would visit all 2^depth of them.
constexpr int kMaxQuadratureSplits = 1 << 12;

struct Quadrature {
    const CubicPiece& piece;
    double floor;  // no interval is asked for less than this, metres: below it only roundoff is compared
    int splits = 0;
};

double adaptiveSpeed(Quadrature& q, double a, double b, double whole, double tol, int depth) {
    const double m = 0.5 * (a + b);
    const double left = gaussSpeed(q.piece, a, m), right = gaussSpeed(q.piece, m, b);
    if (depth >= kMaxQuadratureDepth || q.splits >= kMaxQuadratureSplits ||
        std::fabs(left + right - whole) <= std::max(tol, q.floor))
        return left + right;
    ++q.splits;
    return adaptiveSpeed(q, a, m, left, 0.5 * tol, depth + 1) +
           adaptiveSpeed(q, m, b, right, 0.5 * tol, depth + 1);
}

// Signed arc length of piece p from local a to local b.
double arcLength(const CubicPiece& p, double a, double b) {
    if (a == b) return 0;
    if (b < a) return -arcLength(p, b, a);
    const double whole = gaussSpeed(p, a, b);
    Quadrature q{p, 64 * std::numeric_limits<double>::epsilon() * std::fabs(whole)};
    return adaptiveSpeed(q, a, b, whole, std::max(kQuadratureRelTolerance * whole, kQuadratureAbsTolerance),
                         0);
}

}  // namespace

CubicPiece CubicPiece::hermite(const Vector2& p0, const Vector2& m0, const Vector2& p1, const Vector2& m1) {
    return {p0, m0, (p1 - p0) * 3.0 - m0 * 2.0 - m1, (p0 - p1) * 2.0 + m0 + m1};
}

CubicPiece CubicPiece::bezier(const Vector2& p0, const Vector2& p1, const Vector2& p2, const Vector2& p3) {
    return {p0, (p1 - p0) * 3.0, (p0 - p1 * 2.0 + p2) * 3.0, p3 - p0 + (p1 - p2) * 3.0};
}

CubicPiecesTrajectory::CubicPiecesTrajectory(std::vector<CubicPiece> pieces, std::vector<double> knots)
    : pieces_(std::move(pieces)), knots_(std::move(knots)) {
    cumulative_.reserve(pieces_.size() + 1);
    scale_.reserve(pieces_.size());
    cumulative_.push_back(0);
    for (const CubicPiece& p : pieces_) {
        cumulative_.push_back(cumulative_.back() + arcLength(p, 0, 1));
        scale_.push_back(Scale(p));
    }
}

std::unique_ptr<Trajectory> CubicPiecesTrajectory::clone() const {
    return std::make_unique<CubicPiecesTrajectory>(*this);
}

CubicPiecesTrajectory::Location CubicPiecesTrajectory::Locate(const std::vector<double>& knots, double u) {
    u = std::clamp(u, 0.0, 1.0);
    const std::size_t last = knots.size() - 2;
    const auto above = std::upper_bound(knots.begin(), knots.end(), u);
    const std::size_t i =
        std::min(static_cast<std::size_t>(std::max(above - knots.begin() - 1, std::ptrdiff_t{0})), last);
    const double t = (u - knots[i]) / (knots[i + 1] - knots[i]);
    return {i, std::clamp(t, 0.0, 1.0)};
}

bool CubicPiecesTrajectory::stalls(std::size_t i, const Vector2& d1) const {
    return d1.norm() <= kStallRatio * scale_[i];
}

Vector2 CubicPiecesTrajectory::TangentOf(const std::vector<CubicPiece>& pieces,
                                         const std::vector<double>& knots, double u) {
    const auto [i, t] = Locate(knots, u);
    return Tangent(pieces[i], t, Scale(pieces[i]));
}

double CubicPiecesTrajectory::lengthAtParameter(double u) const {
    const auto [i, t] = locate(u);
    return cumulative_[i] + arcLength(pieces_[i], 0, t);
}

double CubicPiecesTrajectory::parameterAtLength(double s) const {
    if (!(s > 0)) return 0;
    if (s >= length()) return 1;
    const auto above = std::upper_bound(cumulative_.begin(), cumulative_.end(), s);
    const std::size_t i =
        std::min(static_cast<std::size_t>(above - cumulative_.begin() - 1), pieces_.size() - 1);
    const double pieceLength = cumulative_[i + 1] - cumulative_[i];
    if (pieceLength <= 0) return knots_[i];
    const CubicPiece& p = pieces_[i];
    const double target = s - cumulative_[i];

    // Newton on F(t) = length to t, kept inside a bracket [lo, hi] with F(lo) <= target <= F(hi); a step that
    // leaves the bracket (or meets zero speed) is replaced by bisection. F is advanced by the length of each
    // step rather than integrated again from 0.
    double lo = 0, hi = 1;
    double t = target / pieceLength;
    double length = arcLength(p, 0, t);
    for (int iter = 0; iter < kMaxNewtonIterations; ++iter) {
        const double f = length - target;
        if (std::fabs(f) <= kArcLengthTolerance) break;
        (f < 0 ? lo : hi) = t;
        const double speed = p.derivative(t).norm();
        double next = speed > 0 ? t - f / speed : lo;
        if (!(next > lo && next < hi)) next = 0.5 * (lo + hi);
        if (next == t) break;  // bracket exhausted at double precision
        length += arcLength(p, t, next);
        t = next;
    }
    return knots_[i] + t * (knots_[i + 1] - knots_[i]);
}

Vector2 CubicPiecesTrajectory::position(double u) const {
    const auto [i, t] = locate(u);
    return pieces_[i].position(t);
}

Vector2 CubicPiecesTrajectory::derivative(double u) const {
    const auto [i, t] = locate(u);
    return pieces_[i].derivative(t) / (knots_[i + 1] - knots_[i]);
}

Vector2 CubicPiecesTrajectory::secondDerivative(double u) const {
    const auto [i, t] = locate(u);
    const double du = knots_[i + 1] - knots_[i];
    return pieces_[i].secondDerivative(t) / (du * du);
}

Vector2 CubicPiecesTrajectory::tangent(double u) const {
    const auto [i, t] = locate(u);
    return Tangent(pieces_[i], t, scale_[i]);
}

Vector2 CubicPiecesTrajectory::Tangent(const CubicPiece& p, double t, double scale) {
    const auto stalls = [scale](const Vector2& d) { return d.norm() <= kStallRatio * scale; };
    const Vector2 d1 = p.derivative(t);
    if (!stalls(d1)) return d1.normalized();
    // Zero speed: near t0 the curve moves along P''(t0) (t - t0) + P'''(t - t0)^2 / 2, so it leaves along P''
    // and arrives along -P''; piece ends decide which one is meant, and P''' serves when P'' vanishes too.
    const Vector2 d2 = p.secondDerivative(t);
    if (!stalls(d2)) return (t > 0.5 ? -d2 : d2).normalized();
    return p.thirdDerivative().normalized();
}

double CubicPiecesTrajectory::curvature(double u) const {
    const auto [i, t] = locate(u);
    const CubicPiece& p = pieces_[i];
    const Vector2 d1 = p.derivative(t);
    if (stalls(i, d1)) return 0;
    const double speed = d1.norm();
    return d1.cross(p.secondDerivative(t)) / (speed * speed * speed);
}

std::vector<Vector2> withoutCoincidentPoints(const std::vector<Vector2>& points) {
    std::vector<Vector2> out;
    out.reserve(points.size());
    for (const Vector2& p : points)
        if (out.empty() || (p - out.back()).norm() >= kCoincidentPointDistance) out.push_back(p);
    return out;
}

std::vector<double> chordKnots(const std::vector<Vector2>& points) {
    std::vector<double> knots(points.size(), 0.0);
    for (std::size_t i = 1; i < points.size(); ++i)
        knots[i] = knots[i - 1] + (points[i] - points[i - 1]).norm();
    const double total = knots.back();
    for (double& k : knots)
        k /= total;
    knots.back() = 1;  // exactly, whatever the rounding
    return knots;
}

}  // namespace vek

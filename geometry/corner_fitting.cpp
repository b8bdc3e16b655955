#include <orvia/geometry/corner_fitting.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include <orvia/vek/math.h>
#include <orvia/vek/vector.h>

namespace {

// The root of the fitting equation is bisected down to this bracket (radians), a few ulps of pi: the end of
// the fitted pair then misses B by about |PB| * 1e-15.
constexpr double kRootBracket = 1e-15;
constexpr int kMaxBisections = 200;

// Three-point fits that one two-point fit may try before giving up (its recursion branches).
constexpr int kTwoPointFitBudget = 4096;

const double kSqrtTwoPi = std::sqrt(2 * vek::kPi);

}  // namespace

CTriPointControlledAnalytic::CTriPointControlledAnalytic() = default;
CTriPointControlledAnalytic::~CTriPointControlledAnalytic() = default;

void CTriPointControlledAnalytic::DeclareClothoide(double, double, double) {}
void CTriPointControlledAnalytic::DeclareLine(double) {}
void CTriPointControlledAnalytic::DeclareCircle(double, double) {}

void CTriPointControlledAnalytic::SetLimitBlender(double blender) {
    m_limitBlender = blender <= 0 ? 0 : (blender >= 1 ? 1 : blender);
}

bool CTriPointControlledAnalytic::Create(double Ax, double Ay, double Px, double Py, double Bx, double By) {
    return _Create(Ax, Ay, Px, Py, Bx, By, false);
}

double CTriPointControlledAnalytic::_F(double x, double theta, double r, CFresnelIntegralsFunc& fresnel) {
    if (!(x >= 0 && x <= theta)) throw CornerFittingError(kOutOfRange);
    const double y = theta - x;
    const double sine = std::sin(theta), cosine = std::cos(theta);
    return std::sqrt(y) * ((r * cosine + 1) * fresnel.S(y) - r * sine * fresnel.C(y)) +
           std::sqrt(x) * (sine * fresnel.C(x) - (cosine + r) * fresnel.S(x));
}

double CTriPointControlledAnalytic::SolveFirstTurn(double theta, double r, CFresnelIntegralsFunc& fresnel) {
    const double f0 = _F(0, theta, r, fresnel);
    const double f1 = _F(theta, theta, r, fresnel);
    if (f1 < f0) throw CornerFittingError(kUnexpectedBounds);
    if (f0 >= 0) throw CornerFittingError(kUnexpectedLowerBound);
    if (f1 <= 0) return theta;
    double lo = 0, hi = theta;
    for (int i = 0; i < kMaxBisections && hi - lo > kRootBracket; ++i) {
        const double mid = 0.5 * (lo + hi);
        if (mid <= lo || mid >= hi) break;
        (_F(mid, theta, r, fresnel) < 0 ? lo : hi) = mid;
    }
    return 0.5 * (lo + hi);
}

bool CTriPointControlledAnalytic::_Create(double Ax, double Ay, double Px, double Py, double Bx, double By,
                                          bool reversed) {
    const vek::Vector2 a(Ax, Ay), p(Px, Py), b(Bx, By);
    const double d1 = (p - a).norm();
    const double d2 = (p - b).norm();
    // Written so that NaN and infinite coordinates are refused too.
    if (!(d1 >= kMinLegLength && d2 >= kMinLegLength) || !std::isfinite(d1) || !std::isfinite(d2))
        return false;
    if (d2 > d1) return _Create(Bx, By, Px, Py, Ax, Ay, !reversed);
    const double r = d1 / d2;

    const vek::Vector2 u = p - a, v = b - p;
    const double dot = u.dot(v);
    const double cross = u.cross(v);
    const double theta = std::atan2(std::fabs(cross), dot);
    if (std::fabs(cross) / (d1 * d2) < kCollinearSine) {
        if (dot < 0) return false;
        DeclareLine(d1 + d2);
        return true;
    }

    CFresnelIntegralsFunc fresnel;
    const double sine = std::sin(theta), cosine = std::cos(theta);
    // Leg ratio at which a single clothoid from A turns the whole corner and ends on B.
    const double k = fresnel.C(theta) / fresnel.S(theta) * sine - cosine;

    const bool cut = m_symmetricBlending ? r >= kSymmetricRatio : k <= r;
    const double kept = m_symmetricBlending ? d2 : ((k - 1) * m_limitBlender + 1) * d2;
    // Once cut to k, the leg stays at k: going on would only declare empty lines.
    if (cut && d1 - kept > kMinLegLength) {
        const vek::Vector2 start = p + (a - p) * (kept / d1);
        if (!reversed) DeclareLine(d1 - kept);
        const bool done = _Create(start.x, start.y, Px, Py, Bx, By, reversed);
        if (reversed) DeclareLine(d1 - kept);
        return done;
    }

    const double theta1 = SolveFirstTurn(theta, r, fresnel);
    const double theta2 = theta - theta1;

    // A clothoid turning by phi from zero curvature up to kappa ends at (C(phi), S(phi)) * sqrt(2 pi phi) /
    // kappa from its start, in the frame of its start tangent, and is 2 phi / kappa long. The first runs from
    // A along AP, the second, seen backwards from B against PB, is the same figure mirrored; their sum must
    // be B - A = (d1 + d2 cos theta, d2 sin theta). _F() = 0 is that condition with kappa eliminated; the
    // normal component gives kappa.
    const double rootTheta1 = std::sqrt(theta1), rootTheta2 = std::sqrt(theta2);
    const double normal = rootTheta1 * fresnel.S(theta1) + sine * rootTheta2 * fresnel.C(theta2) -
                          cosine * rootTheta2 * fresnel.S(theta2);
    const double kappa = kSqrtTwoPi * normal / (d2 * sine);
    const double length1 = 2 * theta1 / kappa;
    const double length2 = 2 * theta2 / kappa;
    const double peak = cross > 0 ? kappa : -kappa;
    if (!reversed) {
        DeclareClothoide(length1, 0, peak);
        DeclareClothoide(length2, peak, 0);
    } else {
        DeclareClothoide(length2, 0, -peak);
        DeclareClothoide(length1, -peak, 0);
    }
    return true;
}

namespace {

struct Piece {
    enum class Kind { Line, Circle, Clothoid } kind;
    double length, k0, k1;
};

// A three-point fitter that keeps what it declares, so that a two-point fit can drop a failed attempt.
class Recorder : public CTriPointControlledAnalytic {
public:
    void DeclareClothoide(double length, double k0, double k1) override {
        pieces.push_back({Piece::Kind::Clothoid, length, k0, k1});
    }
    void DeclareLine(double length) override { pieces.push_back({Piece::Kind::Line, length, 0, 0}); }
    void DeclareCircle(double length, double k) override {
        pieces.push_back({Piece::Kind::Circle, length, k, k});
    }

    std::vector<Piece> pieces;
    int budget = kTwoPointFitBudget;
};

bool FitTwoPoint(Recorder& fit, const vek::Vector2& a, const vek::Vector2& directionA, const vek::Vector2& b,
                 const vek::Vector2& directionB, int depth) {
    if (depth + 1 > CBiPointControlledAnalytic::kMaxDepth || --fit.budget < 0) return false;
    const vek::Vector2 ta = directionA.normalized(), tb = directionB.normalized();
    if (ta == vek::Vector2() || tb == vek::Vector2()) return false;
    const vek::Vector2 chord = b - a;
    const double distance = chord.norm();
    if (distance < CTriPointControlledAnalytic::kMinLegLength) return false;
    const vek::Vector2 c = chord / distance;
    const double straight = CTriPointControlledAnalytic::kCollinearSine;
    if (std::fabs(ta.cross(c)) < straight && std::fabs(tb.cross(c)) < straight && ta.dot(c) > 0 &&
        tb.dot(c) > 0) {
        fit.DeclareLine(distance);
        return true;
    }

    const size_t mark = fit.pieces.size();
    double alongA = 0, alongB = 0;
    if (vek::intersectLines(a, ta, b, tb, alongA, alongB) &&
        alongA > CTriPointControlledAnalytic::kMinLegLength &&
        -alongB > CTriPointControlledAnalytic::kMinLegLength) {
        const vek::Vector2 p = a + ta * alongA;
        if (fit.Create(a.x, a.y, p.x, p.y, b.x, b.y)) return true;
        fit.pieces.resize(mark);
    }

    // Split the Bezier-like control polygon at the middle of its middle edge.
    const double h = distance / 3;
    const vek::Vector2 q1 = a + ta * h, q2 = b - tb * h;
    vek::Vector2 directionM = q2 - q1;
    if (directionM.norm() < CTriPointControlledAnalytic::kMinLegLength) directionM = chord;
    const vek::Vector2 m = (q1 + q2) * 0.5;
    if (FitTwoPoint(fit, a, ta, m, directionM, depth + 1) &&
        FitTwoPoint(fit, m, directionM, b, tb, depth + 1))
        return true;
    fit.pieces.resize(mark);
    return false;
}

}  // namespace

bool CBiPointControlledAnalytic::Create(double Ax, double Ay, double Adx, double Ady, double Bx, double By,
                                        double Bdx, double Bdy, int depth) {
    Recorder fit;
    fit.SetLimitBlender(GetLimitBlender());
    fit.SetSymmetricBlending(GetSymmetricBlending());
    if (!FitTwoPoint(fit, {Ax, Ay}, {Adx, Ady}, {Bx, By}, {Bdx, Bdy}, depth)) return false;
    for (const Piece& piece : fit.pieces) {
        switch (piece.kind) {
            case Piece::Kind::Line:
                DeclareLine(piece.length);
                break;
            case Piece::Kind::Circle:
                DeclareCircle(piece.length, piece.k0);
                break;
            case Piece::Kind::Clothoid:
                DeclareClothoide(piece.length, piece.k0, piece.k1);
                break;
        }
    }
    return true;
}

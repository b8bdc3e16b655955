#include <orvia/vek/trajectory.h>

#include <cstddef>

#include "cubic_pieces.h"

namespace vek {

namespace {

// The pieces of the clamped spline through p (at least 2 distinct points).
std::vector<CubicPiece> ClampedSplinePieces(const std::vector<Vector2>& p, const Vector2& startTangent,
                                            const Vector2& endTangent) {
    const std::size_t n = p.size() - 1;  // pieces
    std::vector<double> h(n);
    std::vector<Vector2> delta(n);  // unit chords
    for (std::size_t i = 0; i < n; ++i) {
        h[i] = (p[i + 1] - p[i]).norm();
        delta[i] = (p[i + 1] - p[i]) / h[i];
    }

    // Derivatives m[i] with respect to chord length: the tridiagonal system of C2 continuity at the inner
    // points, closed by the clamped (or natural) end rows.
    std::vector<double> sub(n + 1, 0.0), diag(n + 1, 0.0), sup(n + 1, 0.0);
    std::vector<Vector2> m(n + 1);
    const Vector2 t0 = startTangent.normalized(), t1 = endTangent.normalized();
    if (t0 == Vector2()) {
        diag[0] = 2, sup[0] = 1, m[0] = delta[0] * 3.0;
    } else {
        diag[0] = 1, m[0] = t0;
    }
    for (std::size_t i = 1; i < n; ++i) {
        sub[i] = h[i];
        diag[i] = 2 * (h[i - 1] + h[i]);
        sup[i] = h[i - 1];
        m[i] = (delta[i - 1] * h[i] + delta[i] * h[i - 1]) * 3.0;
    }
    if (t1 == Vector2()) {
        sub[n] = 1, diag[n] = 2, m[n] = delta[n - 1] * 3.0;
    } else {
        diag[n] = 1, m[n] = t1;
    }
    // Thomas algorithm; the system is diagonally dominant, no pivoting needed.
    for (std::size_t i = 1; i <= n; ++i) {
        const double w = sub[i] / diag[i - 1];
        diag[i] -= w * sup[i - 1];
        m[i] -= m[i - 1] * w;
    }
    m[n] /= diag[n];
    for (std::size_t i = n; i-- > 0;)
        m[i] = (m[i] - m[i + 1] * sup[i]) / diag[i];

    std::vector<CubicPiece> pieces;
    pieces.reserve(n);
    for (std::size_t i = 0; i < n; ++i)
        pieces.push_back(CubicPiece::hermite(p[i], m[i] * h[i], p[i + 1], m[i + 1] * h[i]));
    return pieces;
}

}  // namespace

std::unique_ptr<Trajectory> NewClampedCubicSpline(const std::vector<Vector2>& points,
                                                  const Vector2& startTangent, const Vector2& endTangent) {
    const std::vector<Vector2> p = withoutCoincidentPoints(points);
    if (p.size() < 2) return nullptr;
    return std::make_unique<CubicPiecesTrajectory>(ClampedSplinePieces(p, startTangent, endTangent),
                                                   chordKnots(p));
}

std::optional<Vector2> ClampedCubicSplineEndTangent(const std::vector<Vector2>& points,
                                                    const Vector2& startTangent, const Vector2& endTangent) {
    const std::vector<Vector2> p = withoutCoincidentPoints(points);
    if (p.size() < 2) return std::nullopt;
    return CubicPiecesTrajectory::TangentOf(ClampedSplinePieces(p, startTangent, endTangent), chordKnots(p),
                                            1);
}

}  // namespace vek

#include <orvia/vek/trajectory.h>

#include <cstddef>

#include "cubic_pieces.h"

namespace vek {

std::unique_ptr<Trajectory> NewBezier(bool /*closed*/, const std::vector<Vector2>& controlPoints) {
    if (controlPoints.size() != 4) return nullptr;
    const auto& c = controlPoints;
    return std::make_unique<CubicPiecesTrajectory>(
        std::vector<CubicPiece>{CubicPiece::bezier(c[0], c[1], c[2], c[3])}, std::vector<double>{0.0, 1.0});
}

std::unique_ptr<Trajectory> NewBezierTS(bool closed, const std::vector<Vector2>& points) {
    std::vector<Vector2> p = withoutCoincidentPoints(points);
    if (closed && p.size() >= 2 && (p.back() - p.front()).norm() < kCoincidentPointDistance) p.pop_back();
    if (p.size() < (closed ? 3u : 2u)) return nullptr;
    if (closed) p.push_back(p.front());
    const std::size_t n = p.size() - 1;  // pieces

    std::vector<double> h(n);
    std::vector<Vector2> delta(n);  // unit chords
    for (std::size_t i = 0; i < n; ++i) {
        h[i] = (p[i + 1] - p[i]).norm();
        delta[i] = (p[i + 1] - p[i]) / h[i];
    }
    // Bessel tangent at a point between chords a (before) and b (after): derivative, with respect to chord
    // length, of the parabola through the point and its two neighbours.
    auto bessel = [&](std::size_t a, std::size_t b) {
        return (delta[a] * h[b] + delta[b] * h[a]) / (h[a] + h[b]);
    };

    std::vector<Vector2> m(n + 1);
    for (std::size_t i = 1; i < n; ++i)
        m[i] = bessel(i - 1, i);
    if (closed) {
        m[0] = m[n] = bessel(n - 1, 0);
    } else if (n == 1) {
        m[0] = m[1] = delta[0];
    } else {
        // End derivative of the same parabolas: its mean over the end chord is the chord's direction.
        m[0] = delta[0] * 2.0 - m[1];
        m[n] = delta[n - 1] * 2.0 - m[n - 1];
    }

    std::vector<CubicPiece> pieces;
    pieces.reserve(n);
    for (std::size_t i = 0; i < n; ++i)
        pieces.push_back(CubicPiece::hermite(p[i], m[i] * h[i], p[i + 1], m[i + 1] * h[i]));
    return std::make_unique<CubicPiecesTrajectory>(std::move(pieces), chordKnots(p));
}

}  // namespace vek

// The one implementation behind every trajectory factory: a chain of cubic polynomial pieces.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <orvia/vek/trajectory.h>
#include <orvia/vek/vector.h>

namespace vek {

// P(t) = a + b t + c t^2 + d t^3 for a local parameter t in [0, 1].
struct CubicPiece {
    Vector2 a, b, c, d;

    Vector2 position(double t) const { return a + (b + (c + d * t) * t) * t; }
    Vector2 derivative(double t) const { return b + (c * 2.0 + d * (3.0 * t)) * t; }
    Vector2 secondDerivative(double t) const { return c * 2.0 + d * (6.0 * t); }
    Vector2 thirdDerivative() const { return d * 6.0; }

    // Hermite piece from p0 to p1 with end derivatives m0, m1 (per unit of t).
    static CubicPiece hermite(const Vector2& p0, const Vector2& m0, const Vector2& p1, const Vector2& m1);
    // Bezier piece of control points p0..p3.
    static CubicPiece bezier(const Vector2& p0, const Vector2& p1, const Vector2& p2, const Vector2& p3);
};

class CubicPiecesTrajectory final : public Trajectory {
public:
    // Piece i covers u in [knots[i], knots[i + 1]]; knots rise strictly from 0 to 1 and
    // knots.size() == pieces.size() + 1 >= 2.
    CubicPiecesTrajectory(std::vector<CubicPiece> pieces, std::vector<double> knots);

    std::unique_ptr<Trajectory> clone() const override;
    double length() const override { return cumulative_.back(); }
    double lengthAtParameter(double u) const override;
    double parameterAtLength(double s) const override;
    Vector2 position(double u) const override;
    Vector2 tangent(double u) const override;
    double curvature(double u) const override;
    Vector2 derivative(double u) const override;
    Vector2 secondDerivative(double u) const override;

    const std::vector<CubicPiece>& pieces() const { return pieces_; }
    const std::vector<double>& knots() const { return knots_; }

    // tangent(u) of the trajectory these pieces and knots would make, without its arc-length tables.
    static Vector2 TangentOf(const std::vector<CubicPiece>& pieces, const std::vector<double>& knots,
                             double u);

private:
    struct Location {
        std::size_t piece;
        double t;
    };
    Location locate(double u) const { return Locate(knots_, u); }
    static Location Locate(const std::vector<double>& knots, double u);
    // Whether the speed at local t of piece i is too small to give a direction.
    bool stalls(std::size_t i, const Vector2& d1) const;
    // Unit tangent at local t of a piece whose coefficients sum to `scale` in length.
    static Vector2 Tangent(const CubicPiece& p, double t, double scale);
    static double Scale(const CubicPiece& p) { return p.b.norm() + p.c.norm() + p.d.norm(); }

    std::vector<CubicPiece> pieces_;
    std::vector<double> knots_;
    std::vector<double> cumulative_;  // arc length at the start of each piece, then the total
    std::vector<double> scale_;       // size of each piece's derivative, metres per unit of t
};

// Consecutive points closer than kCoincidentPointDistance dropped (the first of a run is kept).
std::vector<Vector2> withoutCoincidentPoints(const std::vector<Vector2>& points);
// Cumulative chord lengths normalised to [0, 1]; points must be distinct consecutively.
std::vector<double> chordKnots(const std::vector<Vector2>& points);

// Two consecutive points closer than this (metres) are one point: no chord-length parameter can separate
// them.
inline constexpr double kCoincidentPointDistance = 1e-9;

}  // namespace vek

// Smooth planar curves with a parameter u in [0, 1] and exact arc-length queries.
//
// Every query clamps u to [0, 1] and s to [0, length()]. Arc lengths come from adaptive Gauss-Legendre
// quadrature (relative error below 1e-11, far under the 1e-9 the callers need); parameterAtLength() inverts
// it to within 1e-10 m of that quadrature. Queries allocate nothing and keep no mutable state, so a
// trajectory may be read from several threads.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <orvia/vek/vector.h>

namespace vek {

class Trajectory {
public:
    virtual ~Trajectory() = default;

    virtual std::unique_ptr<Trajectory> clone() const = 0;

    // Arc length of the whole curve, metres.
    virtual double length() const = 0;
    // Arc length from u = 0 to u, metres.
    virtual double lengthAtParameter(double u) const = 0;
    // Parameter u at arc length s from the start (s clamped to [0, length()]): the inverse of
    // lengthAtParameter(). Where the curve stalls (zero speed over an interval) any u of that interval.
    virtual double parameterAtLength(double s) const = 0;

    virtual Vector2 position(double u) const = 0;
    // Unit direction of travel. Where the speed vanishes (a cusp, or coincident Bezier control points) the
    // direction the curve leaves or arrives along; (0, 0) only for a curve reduced to a point.
    virtual Vector2 tangent(double u) const = 0;
    // Signed curvature, 1/m, positive when turning left (counter-clockwise); 0 where the speed vanishes.
    virtual double curvature(double u) const = 0;
    // dP/du and d2P/du2 (metres per unit of u). Pieced curves are continuous in dP/du at their knots
    // (and in d2P/du2 for the clamped spline); at a knot the piece starting there is used.
    virtual Vector2 derivative(double u) const = 0;
    virtual Vector2 secondDerivative(double u) const = 0;

protected:
    Trajectory() = default;
    Trajectory(const Trajectory&) = default;
    Trajectory& operator=(const Trajectory&) = default;
};

// C2 cubic spline through all points, parameterised by cumulative chord length (u = chord length so far /
// total chord length). Its derivative with respect to chord length at the ends is the unit vector along
// startTangent / endTangent; a zero end tangent gives a natural end (zero second derivative) instead.
// Consecutive points closer than 1e-9 m are merged. Null with fewer than 2 distinct points.
std::unique_ptr<Trajectory> NewClampedCubicSpline(const std::vector<Vector2>& points,
                                                  const Vector2& startTangent, const Vector2& endTangent);
// tangent(1) of that spline, without building its arc-length tables; none where the spline would be null.
std::optional<Vector2> ClampedCubicSplineEndTangent(const std::vector<Vector2>& points,
                                                    const Vector2& startTangent, const Vector2& endTangent);

// C1 curve through all points made of one cubic Bezier piece per pair of consecutive points, parameterised by
// cumulative chord length. The tangent at an inner point is that of the parabola through it and its two
// neighbours (Bessel tangents, which follow uneven spacing better than Catmull-Rom); at an open end it is
// that of the parabola through the first (last) three points, with 2 points the curve is the segment. closed
// adds a piece from the last point back to the first (when they differ) and uses the cyclic neighbours at
// both ends, so that the closed curve is C1 everywhere. Consecutive points closer than 1e-9 m are merged.
// Null with fewer than 2 distinct points (3 when closed).
std::unique_ptr<Trajectory> NewBezierTS(bool closed, const std::vector<Vector2>& points);

// The cubic Bezier curve of exactly four control points (null for any other count), u being the Bezier
// parameter. closed is ignored: a single piece is closed only when its first and last points coincide.
std::unique_ptr<Trajectory> NewBezier(bool closed, const std::vector<Vector2>& controlPoints);

}  // namespace vek

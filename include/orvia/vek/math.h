// Scalar and planar helpers: tolerant comparison, ranges, weighted means, signed angles, line intersection.
#pragma once

#include <cmath>
#include <numbers>

#include <orvia/vek/vector.h>

namespace vek {

inline constexpr double kPi = std::numbers::pi;
inline constexpr double kTwoPi = 2 * std::numbers::pi;
inline constexpr double kHalfPi = std::numbers::pi / 2;

// Two directions count as parallel in intersectLines() when the sine of the angle between them is at most
// this (unitless). 1e-12 keeps intersections that lie up to ~1e12 direction lengths away.
inline constexpr double kParallelSineTolerance = 1e-12;

// |a - b| <= tol. False when either value is NaN.
constexpr bool isEqual(double a, double b, double tol) {
    return a - b <= tol && b - a <= tol;
}
// Each component within tol.
constexpr bool isEqual(const Vector2& a, const Vector2& b, double tol) {
    return a.isEqual(b, tol);
}
constexpr bool isEqual(const Vector3& a, const Vector3& b, double tol) {
    return a.isEqual(b, tol);
}

// lo <= x <= hi, bounds included. Always false when lo > hi.
constexpr bool contains(double x, double lo, double hi) {
    return lo <= x && x <= hi;
}

// Weighted mean (w1*a + w2*b) / (w1 + w2). When the weights sum to exactly 0 there is no mean and a is
// returned, so a caller weighting by two zero lengths keeps its first value.
constexpr double barycenter(double w1, double a, double w2, double b) {
    const double w = w1 + w2;
    return w == 0 ? a : (w1 * a + w2 * b) / w;
}

// Angle in radians brought into (-pi, pi]. NaN or infinite input gives NaN.
inline double normalizeAngle(double angle) {
    double a = std::remainder(angle, kTwoPi);  // [-pi, pi]
    if (a <= -kPi) a += kTwoPi;
    return a;
}

// Signed angle in radians turning a onto b, counter-clockwise positive, in (-pi, pi]. Opposite vectors give
// +pi; a zero vector gives 0. Lengths do not matter.
inline double angleBetweenVectors(const Vector2& a, const Vector2& b) {
    const double angle = std::atan2(a.cross(b), a.dot(b));
    return angle <= -kPi ? kPi : angle;
}

// Same result as angleBetweenVectors(); the name records that callers pass unit vectors.
inline double angleBetweenNormalizedVectors(const Vector2& a, const Vector2& b) {
    return angleBetweenVectors(a, b);
}

// Intersection of the lines p0 + t0*d0 and p1 + t1*d1 (directions need not be unit). Returns false, leaving
// t0 and t1 untouched, when a direction is zero or the lines are parallel (kParallelSineTolerance).
inline bool intersectLines(const Vector2& p0, const Vector2& d0, const Vector2& p1, const Vector2& d1,
                           double& t0, double& t1) {
    const double denom = d0.cross(d1);
    if (!(std::fabs(denom) > kParallelSineTolerance * std::sqrt(d0.squaredNorm() * d1.squaredNorm())))
        return false;
    const Vector2 w = p1 - p0;
    t0 = w.cross(d1) / denom;
    t1 = w.cross(d0) / denom;
    return true;
}

// Intersection of the segments [a0, a1] and [b0, b1]: true when the supporting lines cross (see
// intersectLines) at ta, tb both in [0, 1]; ta and tb are the parameters along each segment, written whenever
// the lines are not parallel. Overlapping collinear segments return false.
inline bool intersectSegments(const Vector2& a0, const Vector2& a1, const Vector2& b0, const Vector2& b1,
                              double& ta, double& tb) {
    if (!intersectLines(a0, a1 - a0, b0, b1 - b0, ta, tb)) return false;
    return contains(ta, 0, 1) && contains(tb, 0, 1);
}

constexpr double degToRad(double degrees) {
    return degrees * (kPi / 180);
}
constexpr double radToDeg(double radians) {
    return radians * (180 / kPi);
}

}  // namespace vek

// The Cornu spiral (clothoid) and the Fresnel integrals it is made of.
#pragma once

#include <cmath>

#include <orvia/vek/vector.h>

// (xScale * X(t), yScale * Y(t)) with X(t) = integral_0^t cos(u^2) du and Y(t) = integral_0^t sin(u^2) du,
// summed from their Maclaurin series two terms at a time. Each series stops after the first pair whose
// magnitude is below kPairTolerance (that pair included), and after kMaxPairs pairs at most. Against the
// exact integrals the sums are within 4e-9 for |t| <= 3 (before scaling), 1e-7 for |t| <= 4.5; they degrade
// quickly beyond ValidityRange(), which is not checked.
class CCornuFunc {
public:
    static constexpr double kPairTolerance = 1e-6;
    static constexpr int kMaxPairs = 16;

    // Both scales 0 until Setup().
    CCornuFunc() = default;
    void Setup(double xScale, double yScale) {
        m_xScale = xScale;
        m_yScale = yScale;
    }
    double GetXScale() const { return m_xScale; }
    double GetYScale() const { return m_yScale; }

    double EvalX(double t) const;
    double EvalY(double t) const;
    // Both at once (what EvalX and EvalY return), sharing the powers of t.
    void Eval(double t, double& x, double& y) const;
    // Derivatives: xScale cos(t^2), yScale sin(t^2).
    double EvalDX(double t) const { return m_xScale * std::cos(t * t); }
    double EvalDY(double t) const { return m_yScale * std::sin(t * t); }

    // Largest |t| at which callers may rely on the series.
    static constexpr double ValidityRange() { return 4.875; }

private:
    double m_xScale = 0;
    double m_yScale = 0;
};

// Fresnel integrals in the angle form used by clothoid fitting: for a unit clothoid that turns by x radians
// from zero curvature, (C(x), S(x)) * sqrt(2 pi) / curvature is its end point.
// C(x) = sqrt(2/pi) X(sqrt(x)), S(x) = sqrt(2/pi) Y(sqrt(x)) for x > 0, and 0 for x <= 0.
class CFresnelIntegralsFunc {
public:
    CFresnelIntegralsFunc();

    double C(double x) const;
    double S(double x) const;

    // Largest x at which callers may rely on C and S: the square of CCornuFunc's range.
    static constexpr double ValidityRange() { return 23.765625; }

private:
    CCornuFunc m_cornu;
    double m_factor;  // sqrt(2 / pi)
};

// (X(u), Y(u)) = integral_0^u exp(i v^2) dv for any u, within about 1e-15 (absolute): the power series near
// 0, the continued fraction of the tail beyond. Unlike CCornuFunc it holds far along the spiral.
vek::Vector2 CornuIntegral(double u);

// End point, in the frame of its start tangent, of a clothoid that starts with curvature k (1/m) and whose
// curvature changes by rate (1/m^2) per metre, after d metres (either sign):
// integral_0^d exp(i (k v + rate v^2 / 2)) dv. Finite for any finite arguments; within about 1e-15 of the
// radius (or of d, on gentle pieces) wherever the piece lies, as far out as it goes.
vek::Vector2 ClothoidChord(double k, double rate, double d);

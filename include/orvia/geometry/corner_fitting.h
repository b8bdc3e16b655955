// Rounding of polygon corners with pairs of clothoids.
#pragma once

#include <stdexcept>
#include <string>

#include <orvia/geometry/cornu.h>

// Thrown by the corner fitter when its root bracket is not what the geometry guarantees; what() is one of
// the fixed texts below.
class CornerFittingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Given a start point A, a corner P and an end point B, declares the pieces of a curve that leaves A along
// AP and arrives at B along PB: straight lines and a pair of clothoids (0 -> peak curvature -> 0). A derived
// class collects the pieces through the three callbacks, in the order they are run.
class CTriPointControlledAnalytic {
public:
    static constexpr const char* kOutOfRange = "out of range";
    static constexpr const char* kUnexpectedBounds = "unexpected bounds for solving function";
    static constexpr const char* kUnexpectedLowerBound =
        "unexpected lower bound for solving function [_F()==0] => [k==kLimit]";

    // Legs shorter than this (m) cannot be fitted.
    static constexpr double kMinLegLength = 1e-6;
    // Below this sine of the deflection the corner counts as straight (or as a U-turn).
    static constexpr double kCollinearSine = 1e-6;
    // Symmetric blending shortens the long leg only when it exceeds the short one by this ratio.
    static constexpr double kSymmetricRatio = 1.000001;

    CTriPointControlledAnalytic();
    virtual ~CTriPointControlledAnalytic();

    // A clothoid of this length (m) whose curvature goes linearly from start to end (1/m, positive left).
    virtual void DeclareClothoide(double length, double startCurvature, double endCurvature);
    // A straight line of this length (m).
    virtual void DeclareLine(double length);
    // A circle arc (m, 1/m). The fitter itself never declares one.
    virtual void DeclareCircle(double length, double curvature);

    // Fits the corner P between A and B (metres). True when pieces were declared; false, with nothing
    // declared, for a leg shorter than kMinLegLength or a U-turn. Throws CornerFittingError when the root of
    // the fitting equation cannot be bracketed.
    bool Create(double Ax, double Ay, double Px, double Py, double Bx, double By);

    // Share (in [0, 1]) of the straight part that a long first leg keeps before the clothoids: 0 cuts it to
    // a symmetric pair, 1 to a single clothoid ending at B.
    double GetLimitBlender() const { return m_limitBlender; }
    // Clamped to [0, 1].
    void SetLimitBlender(double blender);
    // With symmetric blending the longer leg is always cut to the shorter one: the clothoids are symmetric.
    bool GetSymmetricBlending() const { return m_symmetricBlending; }
    void SetSymmetricBlending(bool symmetric) { m_symmetricBlending = symmetric; }

protected:
    // reversed: A and B were swapped by the caller, so the pieces are declared in reverse order, each run
    // backwards.
    bool _Create(double Ax, double Ay, double Px, double Py, double Bx, double By, bool reversed);
    // The fitting equation in the turn x of the first clothoid, for a corner deflecting by theta between legs
    // of ratio r = long / short; 0 where the pair ends on the far leg. Throws kOutOfRange unless
    // 0 <= x <= theta.
    static double _F(double x, double theta, double r, CFresnelIntegralsFunc& fresnel);
    // The root of _F in [0, theta] (theta when _F(theta) <= 0), bisected to a few ulps. Throws
    // kUnexpectedBounds when _F(theta) < _F(0) and kUnexpectedLowerBound when _F(0) >= 0: neither happens for
    // a corner with 0 < theta < pi and r >= 1.
    static double SolveFirstTurn(double theta, double r, CFresnelIntegralsFunc& fresnel);

private:
    double m_limitBlender = 0.75;
    bool m_symmetricBlending = false;
};

// From A heading along a direction to B arriving along another direction (G1 two-point fit). When the two
// tangent lines meet ahead of A and behind B at a corner P, this is the three-point fit of A, P, B.
// Otherwise (parallel, S-shaped or diverging tangents) the control polygon A, A + h tA, B - h tB, B with
// h = |AB| / 3 is split at the midpoint M of its middle edge, with the direction of that edge, and each half
// is fitted the same way, one recursion level deeper. Pieces are declared only when the whole fit succeeds.
class CBiPointControlledAnalytic : public CTriPointControlledAnalytic {
public:
    static constexpr int kMaxDepth = 20;

    using CTriPointControlledAnalytic::Create;
    // Directions need not be unit. False, with nothing declared, when depth + 1 exceeds kMaxDepth, a
    // direction is zero, A and B coincide, or the fit needs a loop (B behind A on the same line, same
    // heading). Throws like the three-point fit.
    bool Create(double Ax, double Ay, double Adx, double Ady, double Bx, double By, double Bdx, double Bdy,
                int depth = 0);
};

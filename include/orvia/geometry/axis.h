// The reference line of everything that runs along a road: a horizontal curve, an elevation profile and a
// banking profile over one abscissa.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include <orvia/geometry/point_data.h>
#include <orvia/vek/box.h>
#include <orvia/vek/mark.h>
#include <orvia/vek/vector.h>

class ParametricFunction;

namespace Orvia {

class CartesianCurve;
class Curve2D;
class Network;
class SubNetwork;

// Which longitudinal curve of an axis: a bit set.
enum class LongitudinalCurveType : uint32_t { Elevation = 1, Banking = 2 };

constexpr LongitudinalCurveType operator|(LongitudinalCurveType a, LongitudinalCurveType b) {
    return static_cast<LongitudinalCurveType>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}
constexpr bool HasBit(LongitudinalCurveType set, LongitudinalCurveType bit) {
    return (static_cast<uint32_t>(set) & static_cast<uint32_t>(bit)) != 0;
}

// One end of an axis.
struct PointControl {
    double x = 0, y = 0;           // m
    double z = 0;                  // altitude, m
    double heading = 0;            // radians from +x, counter-clockwise
    double slope = 0;              // elevation angle, radians (positive climbing)
    double curvature = 0;          // horizontal, 1/m, positive turning left
    double verticalCurvature = 0;  // of the elevation profile, 1/m
};

// The derived class owns the three curves and hands them out; the base keeps the cached lengths, the box and
// two validity flags. Abscissa s in metres along the horizontal curve; lateral offset t in metres, positive
// to the right of the direction of travel (of an offset vector only the first component, t, is used).
// Non-const queries call Validate() first so that the derived class can rebuild stale data; const queries
// read the curves as they are. Queries allocate nothing and take no locks.
class Axis {
public:
    // The banking angle is clamped to +-81 degrees (radians): steeper is a wall, and tan() explodes near 90.
    static constexpr double kMaxBanking = 1.413716694115407;
    // Below this |banking| (radians) the altitude is not adjusted.
    static constexpr double kNoBanking = 1e-12;
    // Start altitudes closer than this (m) need no vertical shift of the elevation profile.
    static constexpr double kAltitudeTolerance = 1e-12;

    explicit Axis(SubNetwork* subNetwork = nullptr);
    Axis(const Axis&) = default;
    Axis& operator=(const Axis&) = default;

    // --- Virtual operations (their order is part of the design) -------------------------------------------
    virtual ~Axis();
    virtual Curve2D* GetXYCurve() const = 0;
    virtual CartesianCurve* GetSZCurve() const = 0;
    // May be null: an axis without banking.
    virtual CartesianCurve* GetBankingCurve() const = 0;
    // The elevation curve when the Elevation bit is set (tested first), else the banking curve when the
    // Banking bit is set, else null.
    virtual CartesianCurve* GetLongitudinalCurve(LongitudinalCurveType type) const;
    // Recomputes the derived class's caches from the curves.
    virtual void UpdateCacheData() = 0;
    // The network the axis belongs to; the base knows none (null).
    virtual Network* GetNetwork() const;
    // Rebuilds stale data; true when the axis is usable. The base has nothing to rebuild: false.
    virtual bool Validate();
    // Clears both validity flags (and the box's): the next Validate() rebuilds.
    virtual void Invalidate();
    // Rebuilds the axis data (lengths, default curves); the base: false.
    virtual bool ValidateAxis();
    // Runs the three curves backwards: horizontal Invert, elevation Invert, banking InvertYX (read
    // backwards and negated, left and right swap); then revalidates and rebuilds the box.
    virtual void InvertCurves();
    virtual void InvertAxis() = 0;
    // A copy of the axis with its curves; the base: null.
    virtual Axis* CloneAxis() const;
    // Horizontal piece edits (see Curve2D::InsertFunction); end in Invalidate(). False without a horizontal
    // curve, for null, or (removal) for an index beyond the count.
    virtual bool AddXYFunction(ParametricFunction* function, size_t index);
    virtual bool RemoveXYFunction(size_t index);
    virtual size_t GetXYFunctionCount() const;
    // Null beyond the count.
    virtual ParametricFunction* GetXYFunction(size_t index) const;
    // The axis at s = 0 (at the XY length): horizontal sample, and z, slope angle and vertical curvature
    // of the elevation piece there (0 without one). False (pc untouched) when the horizontal curve is empty.
    virtual bool GetStartPoint(PointControl& pc);
    virtual bool GetEndPoint(PointControl& pc);
    // Moves the horizontal origin to (pc.x, pc.y) heading pc.heading and shifts the elevation profile so that
    // it starts at pc.z; ends in Invalidate(). False without a horizontal curve.
    virtual bool SetStartPoint(const PointControl& pc);
    // The part after s as a new axis; the base: null.
    virtual Axis* Split(double s);

    // --- Lengths ------------------------------------------------------------------------------------------
    // Cached values (m), as of the last validation.
    double GetXYLength() const { return m_xyLength; }
    double GetTotalLength() const { return m_totalLength; }
    // The same after ValidateAxis().
    double GetValidXYLength();
    double GetValidTotalLength();

    // --- Queries ------------------------------------------------------------------------------------------
    // The horizontal curve's sample at (s, t) (Curve2D::GetPointData). False when it has no piece.
    bool GetXYPointData(PointData& pd, double s, double t);
    // Position at (s, t); (0, 0) when the horizontal curve is empty.
    vek::Vector2 GetXYPosition(double s, double t);
    // Unit horizontal tangent (cos h, sin h) at s; (1, 0) when the horizontal curve is empty.
    vek::Vector2 GetXYTangent(double s);
    // Elevation at s (0 without an elevation piece), adjusted for banking when t != 0
    // (ApplyBankingOnAltitude).
    double GetAltitude(double s, double t) const;
    double GetValidAltitude(double s, double t);
    // Elevation angle at s (atan dz/ds, radians), 0 without an elevation piece.
    double GetSlope(double s);
    // (x, y) at (s, t) ((0, 0) when the horizontal query fails) and GetAltitude(s, t). Always true.
    bool GetPosition(vek::Vector3& p, double s, double t);
    // Unit 3D tangent at s: the horizontal tangent tilted by the elevation angle. False when the horizontal
    // curve is empty (v is then (1, 0, 0) tilted).
    bool GetTangent(vek::Vector3& v, double s);
    // The up axis of the centre-line frame at s (GetMark at t = 0, so unrolled). False when the mark fails.
    bool GetNormal(vek::Vector3& n, double s);
    // Frame at (s, offset.x): position (x, y, z), yaw = heading, pitch = -elevation angle, roll = banking
    // b(s) off the centre line and 0 on it (t = 0), even on a banked axis; z banking-adjusted off the centre
    // line. False (mark untouched) when the horizontal query fails.
    bool GetMark(vek::Mark& mark, double s, const vek::Vector2& offset) const;
    bool GetMark(vek::Mark& mark, double s, double t) const { return GetMark(mark, s, vek::Vector2(t, 0)); }
    // Position (z banking-adjusted off the centre line), unit 3D tangent and horizontal curvature at
    // (s, offset.x); null outputs are skipped; the curvature is written even when the horizontal query fails.
    // Returns the horizontal query's result.
    bool GetPositionTangentCurvature(double s, const vek::Vector2& offset, vek::Vector3* position,
                                     vek::Vector3* tangent, double* curvature) const;
    // Everything at once; null outputs are skipped. Beyond [0, XY length] the altitude continues linearly
    // with the end slope angle used as the rate (z(L) + theta (s - L)), a first-order stand-in for
    // tan(theta) that the rest of the system reads. False when a horizontal output is wanted and the
    // horizontal query fails.
    bool GetGeometricData(double s, const vek::Vector2& offset, vek::Vector2* position, double* altitude,
                          vek::Vector2* tangent, double* slope, double* curvature, double* verticalCurvature,
                          double* banking) const;

    // --- Edits --------------------------------------------------------------------------------------------
    // Curve2D::SetLength on the horizontal curve; the XY length is then stale.
    void SetXYLength(double length);
    // Revalidates the axis; false when ValidateAxis() fails, otherwise the box is rebuilt.
    bool UpdateAxis();
    // The horizontal curve's box grown by the bounding margin on x and y, with the elevation range as z (0
    // when the elevation curve has no piece).
    void BuildBoundingBox();
    // Validate(), then the box (rebuilt when stale). True.
    bool GetBoundingBox(vek::Box3& box);

    SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    void SetInSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }

    // --- Banking ------------------------------------------------------------------------------------------
    // b clamped to [-kMaxBanking, kMaxBanking].
    static double ValidateBanking(double b) {
        return b < -kMaxBanking ? -kMaxBanking : (b > kMaxBanking ? kMaxBanking : b);
    }
    // Altitude at lateral offset t (m) on a cross-section banked by b (radians): z + t tan(-clamp(b)); a
    // positive banking lowers the right side. z when |b| < kNoBanking.
    static double ApplyBankingOnAltitude(double z, double t, double b) {
        return std::fabs(b) < kNoBanking ? z : z + t * std::tan(-ValidateBanking(b));
    }

protected:
    // For an axis that is its horizontal curve alone: places the pieces from the start and caches the
    // lengths; false without a piece or with a length that is not finite and non-negative.
    bool ValidateAlongXYCurve();
    // Validate for such an axis: ValidateAxis, then the cached lengths when they are stale.
    bool ValidateWithCachedLengths();
    bool IsAxisValid() const { return m_axisValid; }
    void SetAxisValid(bool valid) { m_axisValid = valid; }
    bool IsXYLengthValid() const { return m_xyLengthValid; }
    void SetXYLengthValid(bool valid) { m_xyLengthValid = valid; }
    bool IsBoundingBoxValid() const { return m_boundingBoxValid; }
    // The box is stale: GetBoundingBox rebuilds it.
    void InvalidateBoundingBox() { m_boundingBoxValid = false; }
    // Cached lengths (m), written by the derived class when it validates.
    void SetCachedXYLength(double length) { m_xyLength = length; }
    void SetCachedTotalLength(double length) { m_totalLength = length; }
    // How far (m) the horizontal box is grown on every side (e.g. the half-width of a cross-section).
    void SetBoundingMargin(double margin) { m_boundingMargin = margin; }
    double GetBoundingMargin() const { return m_boundingMargin; }

private:
    double m_xyLength = 0;
    double m_totalLength = 0;
    vek::Box3 m_boundingBox;
    bool m_boundingBoxValid = false;
    bool m_axisValid = false;
    bool m_xyLengthValid = false;
    double m_boundingMargin = 0;
    SubNetwork* m_subNetwork = nullptr;
};

}  // namespace Orvia

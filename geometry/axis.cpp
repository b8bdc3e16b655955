#include <orvia/geometry/axis.h>

#include <algorithm>
#include <cmath>

#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/curve2d.h>

namespace Orvia {

namespace {

// Elevation z, slope angle and vertical curvature of the elevation piece at s (0 without one).
inline void ElevationAt(const CartesianCurve* sz, double s, double& z, double& slope,
                        double* verticalCurvature) {
    const PolynomialFunction* f = sz ? sz->GetFunctionAt(s) : nullptr;
    if (!f) {
        z = 0;
        slope = 0;
        if (verticalCurvature) *verticalCurvature = 0;
        return;
    }
    z = f->GetValue(s);
    slope = std::atan(f->GetDerivative(s));  // PolynomialFunction::GetSlope, without the call
    if (verticalCurvature) *verticalCurvature = f->GetCurvature(s);
}

// Banking at s (0 without a banking piece).
inline double BankingAt(const CartesianCurve* banking, double s) {
    const PolynomialFunction* f = banking ? banking->GetFunctionAt(s) : nullptr;
    return f ? f->GetValue(s) : 0;
}

}  // namespace

Axis::Axis(SubNetwork* subNetwork) : m_subNetwork(subNetwork) {}
Axis::~Axis() = default;

// ---------------------------------------------------------------------------------------------------------------
// Virtual operations

CartesianCurve* Axis::GetLongitudinalCurve(LongitudinalCurveType type) const {
    if (HasBit(type, LongitudinalCurveType::Elevation)) return GetSZCurve();
    if (HasBit(type, LongitudinalCurveType::Banking)) return GetBankingCurve();
    return nullptr;
}

Network* Axis::GetNetwork() const {
    return nullptr;
}

bool Axis::Validate() {
    return false;
}

void Axis::Invalidate() {
    m_axisValid = false;
    m_xyLengthValid = false;
    m_boundingBoxValid = false;
}

bool Axis::ValidateAxis() {
    return false;
}

bool Axis::ValidateAlongXYCurve() {
    if (m_axisValid) return true;
    Curve2D* xy = GetXYCurve();
    if (!xy || xy->GetFunctionCount() == 0) return false;
    // Edits through the axis leave the pieces where they were.
    xy->UpdateFunctionsFromStart();
    UpdateCacheData();
    const double length = xy->GetLength();
    if (!std::isfinite(length) || length < 0) return false;
    m_axisValid = true;
    m_xyLengthValid = true;
    return true;
}

bool Axis::ValidateWithCachedLengths() {
    if (!ValidateAxis()) return false;
    if (!m_xyLengthValid) UpdateCacheData();
    m_xyLengthValid = true;
    return true;
}

void Axis::InvertCurves() {
    Validate();
    if (Curve2D* xy = GetXYCurve()) xy->Invert();
    if (CartesianCurve* sz = GetSZCurve()) sz->Invert();
    if (CartesianCurve* banking = GetBankingCurve()) banking->InvertYX();
    m_axisValid = false;
    if (ValidateAxis()) BuildBoundingBox();
}

Axis* Axis::CloneAxis() const {
    return nullptr;
}

bool Axis::AddXYFunction(ParametricFunction* function, size_t index) {
    Curve2D* xy = GetXYCurve();
    if (!xy || !xy->InsertFunction(function, index)) return false;
    Invalidate();
    return true;
}

bool Axis::RemoveXYFunction(size_t index) {
    Curve2D* xy = GetXYCurve();
    if (!xy || !xy->RemoveFunction(index)) return false;
    Invalidate();
    return true;
}

size_t Axis::GetXYFunctionCount() const {
    const Curve2D* xy = GetXYCurve();
    return xy ? xy->GetFunctionCount() : 0;
}

ParametricFunction* Axis::GetXYFunction(size_t index) const {
    const Curve2D* xy = GetXYCurve();
    return xy ? xy->GetFunction(index) : nullptr;
}

bool Axis::GetStartPoint(PointControl& pc) {
    Validate();
    const Curve2D* xy = GetXYCurve();
    PointData pd;
    if (!xy || !xy->GetPointData(0, 0, pd)) return false;
    pc.x = pd.position.x;
    pc.y = pd.position.y;
    pc.heading = pd.heading;
    pc.curvature = pd.curvature;
    ElevationAt(GetSZCurve(), 0, pc.z, pc.slope, &pc.verticalCurvature);
    return true;
}

bool Axis::GetEndPoint(PointControl& pc) {
    Validate();
    const Curve2D* xy = GetXYCurve();
    PointData pd;
    if (!xy) return false;
    const double end = xy->GetLength();
    if (!xy->GetPointData(end, 0, pd)) return false;
    pc.x = pd.position.x;
    pc.y = pd.position.y;
    pc.heading = pd.heading;
    pc.curvature = pd.curvature;
    ElevationAt(GetSZCurve(), end, pc.z, pc.slope, &pc.verticalCurvature);
    return true;
}

bool Axis::SetStartPoint(const PointControl& pc) {
    Validate();
    Curve2D* xy = GetXYCurve();
    if (!xy) return false;
    xy->SetOrigin({pc.x, pc.y}, pc.heading);
    CartesianCurve* sz = GetSZCurve();
    if (sz && sz->GetFunctionCount() > 0) {
        const double shift = pc.z - sz->GetFunction(0)->GetValue(0);
        if (std::fabs(shift) >= kAltitudeTolerance) sz->Offset({0, shift});
    }
    Invalidate();
    return true;
}

Axis* Axis::Split(double) {
    return nullptr;
}

// ---------------------------------------------------------------------------------------------------------------
// Lengths

double Axis::GetValidXYLength() {
    ValidateAxis();
    return m_xyLength;
}

double Axis::GetValidTotalLength() {
    ValidateAxis();
    return m_totalLength;
}

// ---------------------------------------------------------------------------------------------------------------
// Queries

bool Axis::GetXYPointData(PointData& pd, double s, double t) {
    Validate();
    const Curve2D* xy = GetXYCurve();
    return xy && xy->GetPointData(s, t, pd);
}

vek::Vector2 Axis::GetXYPosition(double s, double t) {
    PointData pd;
    return GetXYPointData(pd, s, t) ? pd.position : vek::Vector2();
}

vek::Vector2 Axis::GetXYTangent(double s) {
    PointData pd;
    GetXYPointData(pd, s, 0);
    return pd.GetTangent();
}

double Axis::GetAltitude(double s, double t) const {
    const CartesianCurve* sz = GetSZCurve();
    const PolynomialFunction* f = sz ? sz->GetFunctionAt(s) : nullptr;
    double z = f ? f->GetValue(s) : 0;
    if (t != 0 && GetBankingCurve()) z = ApplyBankingOnAltitude(z, t, BankingAt(GetBankingCurve(), s));
    return z;
}

double Axis::GetValidAltitude(double s, double t) {
    Validate();
    return GetAltitude(s, t);
}

double Axis::GetSlope(double s) {
    Validate();
    const CartesianCurve* sz = GetSZCurve();
    const PolynomialFunction* f = sz ? sz->GetFunctionAt(s) : nullptr;
    return f ? f->GetSlope(s) : 0;
}

bool Axis::GetPosition(vek::Vector3& p, double s, double t) {
    const vek::Vector2 xy = GetXYPosition(s, t);
    p = {xy.x, xy.y, GetAltitude(s, t)};
    return true;
}

bool Axis::GetTangent(vek::Vector3& v, double s) {
    PointData pd;
    const bool found = GetXYPointData(pd, s, 0);
    const double theta = GetSlope(s);
    const double c = std::cos(theta);
    const vek::Vector2 tangent = pd.GetTangent();
    v = {tangent.x * c, tangent.y * c, std::sin(theta)};
    return found;
}

bool Axis::GetNormal(vek::Vector3& n, double s) {
    Validate();
    vek::Mark mark;
    if (!GetMark(mark, s, vek::Vector2())) return false;
    n = mark.rotation() * vek::Vector3(0, 0, 1);
    return true;
}

bool Axis::GetMark(vek::Mark& mark, double s, const vek::Vector2& offset) const {
    const double t = offset.x;
    const Curve2D* xy = GetXYCurve();
    PointData pd;
    if (!xy || !xy->GetPointData(s, t, pd)) return false;
    double z = 0, theta = 0;
    ElevationAt(GetSZCurve(), s, z, theta, nullptr);
    double roll = 0;
    if (t != 0) {
        // Off the centre line the frame leans with the cross-section; on it the frame stays level.
        roll = BankingAt(GetBankingCurve(), s);
        z = ApplyBankingOnAltitude(z, t, roll);
    }
    mark.position = {pd.position.x, pd.position.y, z};
    mark.roll = roll;
    mark.pitch = -theta;
    mark.yaw = pd.heading;
    return true;
}

bool Axis::GetPositionTangentCurvature(double s, const vek::Vector2& offset, vek::Vector3* position,
                                       vek::Vector3* tangent, double* curvature) const {
    const double t = offset.x;
    const Curve2D* xy = GetXYCurve();
    PointData pd;
    vek::Vector2 unit;
    const bool found = xy && xy->GetPointDataAndTangent(s, t, pd, unit);
    if (position || tangent) {
        double z = 0, theta = 0;
        ElevationAt(GetSZCurve(), s, z, theta, nullptr);
        if (position) {
            if (t != 0) z = ApplyBankingOnAltitude(z, t, BankingAt(GetBankingCurve(), s));
            *position = {pd.position.x, pd.position.y, z};
        }
        if (tangent) {
            const double c = std::cos(theta);
            *tangent = {unit.x * c, unit.y * c, std::sin(theta)};
        }
    }
    if (curvature) *curvature = pd.curvature;
    return found;
}

bool Axis::GetGeometricData(double s, const vek::Vector2& offset, vek::Vector2* position, double* altitude,
                            vek::Vector2* tangent, double* slope, double* curvature,
                            double* verticalCurvature, double* banking) const {
    const double t = offset.x;
    double b = 0;
    if (banking) {
        b = BankingAt(GetBankingCurve(), s);
        *banking = b;
    }
    if (altitude || slope || verticalCurvature) {
        const double length = std::max(m_xyLength, 0.0);
        double z = 0, theta = 0, vertical = 0;
        ElevationAt(GetSZCurve(), std::clamp(s, 0.0, length), z, theta,
                    verticalCurvature ? &vertical : nullptr);
        if (s < 0)
            z += theta * s;
        else if (s > length)
            z += theta * (s - length);
        if (altitude) {
            if (t != 0) z = ApplyBankingOnAltitude(z, t, banking ? b : BankingAt(GetBankingCurve(), s));
            *altitude = z;
        }
        if (slope) *slope = theta;
        if (verticalCurvature) *verticalCurvature = vertical;
    }
    if (position || tangent || curvature) {
        const Curve2D* xy = GetXYCurve();
        PointData pd;
        vek::Vector2 unit;
        if (!xy || !xy->GetPointDataAndTangent(s, t, pd, unit)) return false;
        if (position) *position = pd.position;
        if (tangent) *tangent = unit;
        if (curvature) *curvature = pd.curvature;
    }
    return true;
}

// ---------------------------------------------------------------------------------------------------------------
// Edits

void Axis::SetXYLength(double length) {
    if (Curve2D* xy = GetXYCurve()) xy->SetLength(length);
    m_xyLengthValid = false;
}

bool Axis::UpdateAxis() {
    m_axisValid = false;
    if (!ValidateAxis()) return false;
    BuildBoundingBox();
    return true;
}

void Axis::BuildBoundingBox() {
    m_boundingBoxValid = true;
    m_boundingBox.clear();
    const Curve2D* xy = GetXYCurve();
    const vek::Box2 horizontal = xy ? xy->GetBoundingBox() : vek::Box2();
    if (horizontal.isEmpty()) return;
    const double margin = m_boundingMargin;
    m_boundingBox.add(vek::Vector3(horizontal.min.x - margin, horizontal.min.y - margin, 0));
    m_boundingBox.add(vek::Vector3(horizontal.max.x + margin, horizontal.max.y + margin, 0));
    const CartesianCurve* sz = GetSZCurve();
    const vek::Box2 elevation = sz ? sz->GetBoundingBox() : vek::Box2();
    if (!elevation.isEmpty()) {
        m_boundingBox.min.z = elevation.min.y;
        m_boundingBox.max.z = elevation.max.y;
    }
}

bool Axis::GetBoundingBox(vek::Box3& box) {
    Validate();
    if (!m_boundingBoxValid) BuildBoundingBox();
    box = m_boundingBox;
    return true;
}

}  // namespace Orvia

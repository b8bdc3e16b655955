// 3D rigid placement: p -> rotation * p + translation.
#pragma once

#include <cmath>

#include <orvia/vek/box.h>
#include <orvia/vek/matrix.h>
#include <orvia/vek/vector.h>

namespace vek {

class Transform {
public:
    // Identity.
    Transform() = default;
    // rotation must be orthonormal with determinant +1 for inverse() to be exact.
    Transform(const Matrix3& rotation, const Vector3& translation)
        : rotation_(rotation), translation_(translation) {}

    // Placement of a frame at position whose x axis points at heading (radians, counter-clockwise from +x,
    // rotation about +z): p -> Rz(heading) * p + position.
    static Transform fromPositionHeading(const Vector3& position, double heading) {
        return {Matrix3::rotationZ(heading), position};
    }

    Vector3 apply(const Vector3& p) const { return rotation_ * p + translation_; }
    // Direction: rotation only.
    Vector3 applyVector(const Vector3& v) const { return rotation_ * v; }
    // Smallest axis-aligned box around the eight transformed corners of b; empty stays empty.
    Box3 apply(const Box3& b) const {
        Box3 r;
        if (b.isEmpty()) return r;
        for (const Vector3& c : b.corners())
            r.add(apply(c));
        return r;
    }

    // Inverse of a rigid transform: (R^T, -R^T t). Wrong if the rotation is not orthonormal.
    Transform inverse() const {
        const Matrix3 rt = rotation_.transposed();
        return {rt, -(rt * translation_)};
    }
    // The transform applying rhs first, then this one.
    Transform operator*(const Transform& rhs) const {
        return {rotation_ * rhs.rotation_, rotation_ * rhs.translation_ + translation_};
    }

    const Matrix3& rotation() const { return rotation_; }
    const Vector3& translation() const { return translation_; }
    // Alias of translation(): the origin of the placed frame.
    const Vector3& position() const { return translation_; }

    bool operator==(const Transform&) const = default;
    bool isEqual(const Transform& o, double tol) const {
        return rotation_.isEqual(o.rotation_, tol) && translation_.isEqual(o.translation_, tol);
    }

private:
    Matrix3 rotation_;
    Vector3 translation_;
};

}  // namespace vek

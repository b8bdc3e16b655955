// Planar rigid transform: rotation by an orientation then translation. Cosine and sine are computed once at
// construction so that apply() costs four multiplications and four additions.
#pragma once

#include <cmath>

#include <orvia/vek/vector.h>

namespace vek {

class Transform2D {
public:
    // Identity.
    Transform2D() = default;
    // Maps a local point p to position + R(orientation) * p; orientation in radians, counter-clockwise.
    Transform2D(const Vector2& position, double orientation)
        : position_(position),
          orientation_(orientation),
          cos_(std::cos(orientation)),
          sin_(std::sin(orientation)) {}

    // Local point to the outer frame: rotate, then translate.
    Vector2 apply(const Vector2& local) const {
        return {cos_ * local.x - sin_ * local.y + position_.x, sin_ * local.x + cos_ * local.y + position_.y};
    }
    // Direction to the outer frame: rotation only.
    Vector2 applyVector(const Vector2& v) const { return {cos_ * v.x - sin_ * v.y, sin_ * v.x + cos_ * v.y}; }

    // The inverse transform (outer frame to local frame); its orientation is -orientation().
    Transform2D globalToLocal() const {
        // -R^T * position
        const Vector2 p(-(cos_ * position_.x + sin_ * position_.y), sin_ * position_.x - cos_ * position_.y);
        return Transform2D(p, -orientation_, cos_, -sin_);
    }

    // The transform applying rhs first, then this one.
    Transform2D operator*(const Transform2D& rhs) const {
        return Transform2D(apply(rhs.position_), orientation_ + rhs.orientation_,
                           cos_ * rhs.cos_ - sin_ * rhs.sin_, sin_ * rhs.cos_ + cos_ * rhs.sin_);
    }

    const Vector2& position() const { return position_; }
    // As given at construction (not normalised), radians.
    double orientation() const { return orientation_; }
    double cosOrientation() const { return cos_; }
    double sinOrientation() const { return sin_; }

private:
    Transform2D(const Vector2& position, double orientation, double c, double s)
        : position_(position), orientation_(orientation), cos_(c), sin_(s) {}

    Vector2 position_;
    double orientation_ = 0;
    double cos_ = 1;
    double sin_ = 0;
};

}  // namespace vek

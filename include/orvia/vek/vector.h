// Plain 2D and 3D vectors of doubles (metres, or unitless directions).
#pragma once

#include <cassert>
#include <cmath>

namespace vek {

struct Vector2 {
    double x = 0, y = 0;

    constexpr Vector2() = default;
    constexpr Vector2(double x_, double y_) : x(x_), y(y_) {}

    // Component 0 is x, 1 is y; any other index is a programming error (asserted in debug builds).
    constexpr double& operator[](int i) {
        assert(i == 0 || i == 1);
        return i == 0 ? x : y;
    }
    constexpr const double& operator[](int i) const {
        assert(i == 0 || i == 1);
        return i == 0 ? x : y;
    }

    constexpr Vector2 operator+(const Vector2& o) const { return {x + o.x, y + o.y}; }
    constexpr Vector2 operator-(const Vector2& o) const { return {x - o.x, y - o.y}; }
    constexpr Vector2 operator-() const { return {-x, -y}; }
    constexpr Vector2 operator*(double k) const { return {x * k, y * k}; }
    constexpr Vector2 operator/(double k) const { return {x / k, y / k}; }
    constexpr Vector2& operator+=(const Vector2& o) {
        x += o.x;
        y += o.y;
        return *this;
    }
    constexpr Vector2& operator-=(const Vector2& o) {
        x -= o.x;
        y -= o.y;
        return *this;
    }
    constexpr Vector2& operator*=(double k) {
        x *= k;
        y *= k;
        return *this;
    }
    constexpr Vector2& operator/=(double k) {
        x /= k;
        y /= k;
        return *this;
    }

    // Exact component-wise comparison; use isEqual() for a tolerance.
    constexpr bool operator==(const Vector2& o) const = default;

    constexpr double dot(const Vector2& o) const { return x * o.x + y * o.y; }
    // z of the 3D cross product: positive when o is counter-clockwise from *this (less than half a turn).
    constexpr double cross(const Vector2& o) const { return x * o.y - y * o.x; }
    constexpr double squaredNorm() const { return x * x + y * y; }
    double norm() const { return std::sqrt(squaredNorm()); }
    // Unit vector in the same direction; (0, 0) for a zero vector.
    Vector2 normalized() const {
        const double n = norm();
        return n > 0 ? Vector2(x / n, y / n) : Vector2();
    }
    // True when each component differs by at most tol (same unit as the components).
    constexpr bool isEqual(const Vector2& o, double tol) const {
        return (x - o.x <= tol && o.x - x <= tol) && (y - o.y <= tol && o.y - y <= tol);
    }
};

constexpr Vector2 operator*(double k, const Vector2& v) {
    return v * k;
}

struct Vector3 {
    double x = 0, y = 0, z = 0;

    constexpr Vector3() = default;
    constexpr Vector3(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}

    // Component 0 is x, 1 is y, 2 is z; any other index is a programming error (asserted in debug builds).
    constexpr double& operator[](int i) {
        assert(i >= 0 && i <= 2);
        return i == 0 ? x : (i == 1 ? y : z);
    }
    constexpr const double& operator[](int i) const {
        assert(i >= 0 && i <= 2);
        return i == 0 ? x : (i == 1 ? y : z);
    }

    constexpr Vector3 operator+(const Vector3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    constexpr Vector3 operator-(const Vector3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    constexpr Vector3 operator-() const { return {-x, -y, -z}; }
    constexpr Vector3 operator*(double k) const { return {x * k, y * k, z * k}; }
    constexpr Vector3 operator/(double k) const { return {x / k, y / k, z / k}; }
    constexpr Vector3& operator+=(const Vector3& o) {
        x += o.x;
        y += o.y;
        z += o.z;
        return *this;
    }
    constexpr Vector3& operator-=(const Vector3& o) {
        x -= o.x;
        y -= o.y;
        z -= o.z;
        return *this;
    }
    constexpr Vector3& operator*=(double k) {
        x *= k;
        y *= k;
        z *= k;
        return *this;
    }
    constexpr Vector3& operator/=(double k) {
        x /= k;
        y /= k;
        z /= k;
        return *this;
    }

    // Exact component-wise comparison; use isEqual() for a tolerance.
    constexpr bool operator==(const Vector3& o) const = default;

    constexpr double dot(const Vector3& o) const { return x * o.x + y * o.y + z * o.z; }
    // Right-handed cross product.
    constexpr Vector3 cross(const Vector3& o) const {
        return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
    }
    constexpr double squaredNorm() const { return x * x + y * y + z * z; }
    double norm() const { return std::sqrt(squaredNorm()); }
    // Unit vector in the same direction; (0, 0, 0) for a zero vector.
    Vector3 normalized() const {
        const double n = norm();
        return n > 0 ? Vector3(x / n, y / n, z / n) : Vector3();
    }
    // True when each component differs by at most tol (same unit as the components).
    constexpr bool isEqual(const Vector3& o, double tol) const {
        return (x - o.x <= tol && o.x - x <= tol) && (y - o.y <= tol && o.y - y <= tol) &&
               (z - o.z <= tol && o.z - z <= tol);
    }
};

constexpr Vector3 operator*(double k, const Vector3& v) {
    return v * k;
}

}  // namespace vek

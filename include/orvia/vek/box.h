// Axis-aligned bounding boxes. A default box is empty (min = +inf, max = -inf) so that adding the first point
// makes it that point.
#pragma once

#include <algorithm>
#include <array>
#include <limits>

#include <orvia/vek/vector.h>

namespace vek {

struct Box2 {
    static constexpr double kInf = std::numeric_limits<double>::infinity();

    Vector2 min{kInf, kInf};
    Vector2 max{-kInf, -kInf};

    // Empty when min exceeds max on any axis (a single point is not empty).
    constexpr bool isEmpty() const { return !(min.x <= max.x && min.y <= max.y); }
    constexpr void clear() { *this = Box2(); }

    constexpr void add(const Vector2& p) {
        min = {std::min(min.x, p.x), std::min(min.y, p.y)};
        max = {std::max(max.x, p.x), std::max(max.y, p.y)};
    }
    // Union; adding an empty box changes nothing.
    constexpr void add(const Box2& b) {
        if (b.isEmpty()) return;
        add(b.min);
        add(b.max);
    }

    // Bounds included; an empty box contains nothing.
    constexpr bool contains(const Vector2& p) const {
        return min.x <= p.x && p.x <= max.x && min.y <= p.y && p.y <= max.y;
    }

    // Moves every side outwards by d (inwards when d < 0, which may empty the box). No-op on an empty box.
    constexpr void grow(double d) {
        if (isEmpty()) return;
        min -= Vector2(d, d);
        max += Vector2(d, d);
    }

    // (0, 0) for an empty box.
    constexpr Vector2 size() const { return isEmpty() ? Vector2() : max - min; }
    // Meaningless on an empty box.
    constexpr Vector2 center() const { return (min + max) * 0.5; }

    // Counter-clockwise from min: (min.x, min.y), (max.x, min.y), (max.x, max.y), (min.x, max.y).
    constexpr std::array<Vector2, 4> corners() const {
        return {min, Vector2(max.x, min.y), max, Vector2(min.x, max.y)};
    }

    constexpr bool operator==(const Box2&) const = default;
};

struct Box3 {
    static constexpr double kInf = std::numeric_limits<double>::infinity();

    Vector3 min{kInf, kInf, kInf};
    Vector3 max{-kInf, -kInf, -kInf};

    // Empty when min exceeds max on any axis (a single point is not empty).
    constexpr bool isEmpty() const { return !(min.x <= max.x && min.y <= max.y && min.z <= max.z); }
    constexpr void clear() { *this = Box3(); }

    constexpr void add(const Vector3& p) {
        min = {std::min(min.x, p.x), std::min(min.y, p.y), std::min(min.z, p.z)};
        max = {std::max(max.x, p.x), std::max(max.y, p.y), std::max(max.z, p.z)};
    }
    // Union; adding an empty box changes nothing.
    constexpr void add(const Box3& b) {
        if (b.isEmpty()) return;
        add(b.min);
        add(b.max);
    }

    // Bounds included; an empty box contains nothing.
    constexpr bool contains(const Vector3& p) const {
        return min.x <= p.x && p.x <= max.x && min.y <= p.y && p.y <= max.y && min.z <= p.z && p.z <= max.z;
    }

    // Moves every face outwards by d (inwards when d < 0, which may empty the box). No-op on an empty box.
    constexpr void grow(double d) {
        if (isEmpty()) return;
        min -= Vector3(d, d, d);
        max += Vector3(d, d, d);
    }

    // (0, 0, 0) for an empty box.
    constexpr Vector3 size() const { return isEmpty() ? Vector3() : max - min; }
    // Meaningless on an empty box.
    constexpr Vector3 center() const { return (min + max) * 0.5; }

    // Corner i takes max.x when bit 0 of i is set, max.y for bit 1, max.z for bit 2; min otherwise.
    constexpr std::array<Vector3, 8> corners() const {
        std::array<Vector3, 8> c;
        for (int i = 0; i < 8; ++i)
            c[i] = {(i & 1) ? max.x : min.x, (i & 2) ? max.y : min.y, (i & 4) ? max.z : min.z};
        return c;
    }

    constexpr bool operator==(const Box3&) const = default;
};

}  // namespace vek

// RGBA colour, each channel in [0, 1] by convention (not enforced); alpha 1 is opaque.
#pragma once

namespace vek {

struct Color {
    float r = 1, g = 1, b = 1, a = 1;

    // Opaque white.
    constexpr Color() = default;
    constexpr Color(float r_, float g_, float b_, float a_ = 1) : r(r_), g(g_), b(b_), a(a_) {}

    // Exact channel comparison.
    constexpr bool operator==(const Color&) const = default;
};

}  // namespace vek

// Golden-section search, shared by the geometry's nearest-point and extremum searches.
#pragma once

namespace Orvia::detail {

struct Bracket {
    double lo, hi;
};

// Narrows [lo, hi] around a minimum of f, which is taken to be unimodal there, by `steps` steps of 0.618 each
// (60 steps: 3e-13 of the bracket). On equal values the lower half is kept. The final bracket.
template <class F>
Bracket GoldenSectionMinimum(F&& f, double lo, double hi, int steps) {
    constexpr double kGolden = 0.6180339887498949;
    double a = hi - kGolden * (hi - lo), b = lo + kGolden * (hi - lo);
    double fa = f(a), fb = f(b);
    for (int i = 0; i < steps; ++i) {
        if (fa <= fb) {
            hi = b;
            b = a;
            fb = fa;
            a = hi - kGolden * (hi - lo);
            fa = f(a);
        } else {
            lo = a;
            a = b;
            fa = fb;
            b = lo + kGolden * (hi - lo);
            fb = f(b);
        }
    }
    return {lo, hi};
}

}  // namespace Orvia::detail

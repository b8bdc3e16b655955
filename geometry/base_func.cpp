#include <orvia/geometry/base_func.h>

#include <algorithm>
#include <cmath>

#include "golden_section.h"

namespace {

// Real roots of a u^2 + b u + c (degree dropping when a, then b, vanish), ascending; returns how many.
int SolveQuadratic(double a, double b, double c, std::array<double, 2>& roots) {
    if (a == 0) {
        if (b == 0) return 0;
        roots[0] = -c / b;
        return 1;
    }
    const double discriminant = b * b - 4 * a * c;
    if (discriminant < 0) return 0;
    // The root that does not cancel first, the other from the product of the roots.
    const double q = -0.5 * (b + std::copysign(std::sqrt(discriminant), b));
    if (q == 0) {
        roots[0] = 0;
        return 1;
    }
    roots[0] = q / a;
    roots[1] = c / q;
    if (roots[0] > roots[1]) std::swap(roots[0], roots[1]);
    return roots[0] == roots[1] ? 1 : 2;
}

// Root of f in [a, b] where f(a) and f(b) have opposite signs, bisected down to adjacent doubles.
template <class F>
double Bisect(const F& f, double a, double b) {
    double fa = f(a);
    for (int i = 0; i < 200; ++i) {
        const double mid = 0.5 * (a + b);
        if (mid <= a || mid >= b) break;
        const double fm = f(mid);
        if (fm == 0) return mid;
        if ((fm < 0) == (fa < 0)) {
            a = mid;
            fa = fm;
        } else {
            b = mid;
        }
    }
    return 0.5 * (a + b);
}

// Coarse samples of MaxCurvature before the golden-section refinement around the best one.
constexpr int kCurvatureSamples = 256;
constexpr int kCurvatureRefinements = 80;

}  // namespace

void BaseFunc::Estimate(double h, double y0, double y1, double d0, double d1) {
    if (std::fabs(h) < kMinHalfWidth) {
        m_c = {0, 0, 0, 0};
        return;
    }
    m_c[3] = ((d0 + d1) * h - (y1 - y0)) / (4 * h * h * h);
    m_c[2] = (d1 - d0) / (4 * h);
    m_c[1] = (3 * (y1 - y0) - (d0 + d1) * h) / (4 * h);
    m_c[0] = (2 * (y0 + y1) - (d1 - d0) * h) * 0.25;
}

void BaseFunc::SetAsLine(double c0, double c1) {
    m_c = {c0, c1, 0, 0};
}

void BaseFunc::SetAsDf(const BaseFunc& f) {
    m_c = {f.m_c[1], 2 * f.m_c[2], 3 * f.m_c[3], 0};
}

void BaseFunc::SetAsLinearCombi(double a, const BaseFunc& f, double b, const BaseFunc& g) {
    for (int i = 0; i < 4; ++i)
        m_c[i] = a * f.m_c[i] + b * g.m_c[i];
}

double BaseFunc::EvalCurvature(double u) const {
    const double slope = std::hypot(1.0, EvalDf(u));
    return EvalDf2(u) / (slope * slope * slope);
}

double BaseFunc::ChordError(double u0, double u1) const {
    if (u1 == u0) return 0;
    const double y0 = Eval(u0);
    const double slope = (Eval(u1) - y0) / (u1 - u0);
    // The difference to the chord vanishes at both ends; its extrema are where y' equals the chord's slope.
    std::array<double, 2> roots{};
    const int count = SolveQuadratic(3 * m_c[3], 2 * m_c[2], m_c[1] - slope, roots);
    double error = 0;
    for (int i = 0; i < count; ++i)
        if (roots[i] > std::min(u0, u1) && roots[i] < std::max(u0, u1))
            error = std::max(error, std::fabs(Eval(roots[i]) - (y0 + slope * (roots[i] - u0))));
    return error;
}

namespace {

// Stops adding points once out holds kMaxPoints: a hostile range (1e90 wide) would otherwise ask for
// billions.
void Subdivide(const BaseFunc& f, double u0, double u1, double tolerance, int depth,
               std::vector<double>& out) {
    if (depth >= BaseFunc::kMaxSubdivisionDepth || out.size() >= BaseFunc::kMaxPoints ||
        f.ChordError(u0, u1) <= tolerance)
        return;
    const double mid = 0.5 * (u0 + u1);
    Subdivide(f, u0, mid, tolerance, depth + 1, out);
    if (out.size() >= BaseFunc::kMaxPoints) return;
    out.push_back(mid);
    Subdivide(f, mid, u1, tolerance, depth + 1, out);
}

}  // namespace

void BaseFunc::LinearApproxRaw(double u0, double u1, double tolerance, std::vector<double>& out) const {
    if (!(u1 > u0) || !(tolerance > 0)) return;
    Subdivide(*this, u0, u1, tolerance, 0, out);
}

void BaseFunc::LinearApprox(double u0, double u1, double tolerance, double step,
                            std::vector<double>& out) const {
    out.clear();
    if (!(u1 > u0) || !(tolerance > 0) || !(step > 0)) return;
    const double pieces = std::min(std::ceil((u1 - u0) / step), static_cast<double>(kMaxIntervals));
    const int n = std::max(1, static_cast<int>(pieces));
    double a = u0;
    for (int i = 1; i <= n && out.size() < kMaxPoints; ++i) {
        const double b = i == n ? u1 : u0 + (u1 - u0) * i / n;
        LinearApproxRaw(a, b, tolerance, out);
        if (i < n && out.size() < kMaxPoints) out.push_back(b);
        a = b;
    }
}

void BaseFunc::UniformLinearApprox(double u0, double u1, double tolerance, std::vector<double>& out) const {
    out.clear();
    if (!(u1 > u0) || !(tolerance > 0)) return;
    // y'' is linear: its largest magnitude is at an end.
    const double bend = std::max(std::fabs(EvalDf2(u0)), std::fabs(EvalDf2(u1)));
    const double needed = std::ceil((u1 - u0) * std::sqrt(bend / (8 * tolerance)));
    const int n = std::max(1, static_cast<int>(std::min(needed, static_cast<double>(kMaxIntervals))));
    for (int i = 1; i < n; ++i)
        out.push_back(u0 + (u1 - u0) * i / n);
}

double BaseFunc::CurveLen(double u0, double u1, double tolerance, double step) const {
    if (u1 < u0) return -CurveLen(u1, u0, tolerance, step);
    std::vector<double> inner;
    LinearApprox(u0, u1, tolerance, step, inner);
    double length = 0;
    double u = u0, y = Eval(u0);
    auto add = [&](double next) {
        const double yNext = Eval(next);
        length += std::hypot(next - u, yNext - y);
        u = next;
        y = yNext;
    };
    for (double next : inner)
        add(next);
    add(u1);
    return length > 0 ? length : 0;
}

int BaseFunc::Extrema(double u0, double u1, std::array<double, 2>& out) const {
    if (m_c[2] == 0 && m_c[3] == 0) return 0;
    std::array<double, 2> roots{};
    const int count = SolveQuadratic(3 * m_c[3], 2 * m_c[2], m_c[1], roots);
    const double lo = std::min(u0, u1), hi = std::max(u0, u1);
    int found = 0;
    for (int i = 0; i < count; ++i)
        if (roots[i] > lo && roots[i] < hi) out[found++] = roots[i];
    return found;
}

int BaseFunc::Zeros(double u0, double u1, std::array<double, 3>& out) const {
    if (m_c == std::array<double, 4>{}) return 0;
    const double lo = std::min(u0, u1), hi = std::max(u0, u1);
    // Between consecutive extrema the cubic is monotone: at most one root each.
    std::array<double, 2> extrema{};
    const int count = Extrema(lo, hi, extrema);
    std::array<double, 4> bounds{lo, 0, 0, 0};
    int nb = 1;
    for (int i = 0; i < count; ++i)
        bounds[nb++] = extrema[i];
    bounds[nb++] = hi;
    int found = 0;
    auto add = [&](double u) {
        if (found > 0 && out[found - 1] == u) return;
        if (found < 3) out[found++] = u;
    };
    auto f = [this](double u) { return Eval(u); };
    for (int i = 0; i + 1 < nb; ++i) {
        const double a = bounds[i], b = bounds[i + 1];
        const double fa = Eval(a), fb = Eval(b);
        if (fa == 0) add(a);
        if (fa != 0 && fb != 0 && (fa < 0) != (fb < 0)) add(Bisect(f, a, b));
        if (i + 2 == nb && fb == 0) add(b);
    }
    return found;
}

int BaseFunc::Crosses(const BaseFunc& f, const BaseFunc& g, double u0, double u1,
                      std::array<double, 3>& out) {
    BaseFunc difference;
    difference.SetAsLinearCombi(1, f, -1, g);
    return difference.Zeros(u0, u1, out);
}

bool BaseFunc::GetCurvatureInflexionAbscissia(double& u) const {
    if (m_c[3] == 0) return false;
    u = -m_c[2] / (3 * m_c[3]);
    return true;
}

double BaseFunc::MaxCurvature(double u0, double u1, double& where) const {
    const double lo = std::min(u0, u1), hi = std::max(u0, u1);
    auto magnitude = [this](double u) { return std::fabs(EvalCurvature(u)); };
    int best = 0;
    double bestValue = magnitude(lo);
    for (int i = 1; i <= kCurvatureSamples; ++i) {
        const double value = magnitude(lo + (hi - lo) * i / kCurvatureSamples);
        if (value > bestValue) {
            bestValue = value;
            best = i;
        }
    }
    where = lo + (hi - lo) * best / kCurvatureSamples;
    // Golden section for the maximum around the best sample.
    const double a = lo + (hi - lo) * std::max(0, best - 1) / kCurvatureSamples;
    const double b = lo + (hi - lo) * std::min(kCurvatureSamples, best + 1) / kCurvatureSamples;
    const Orvia::detail::Bracket bracket = Orvia::detail::GoldenSectionMinimum(
        [&magnitude](double u) { return -magnitude(u); }, a, b, kCurvatureRefinements);
    const double refined = 0.5 * (bracket.lo + bracket.hi);
    if (magnitude(refined) > bestValue) {
        where = refined;
        bestValue = magnitude(refined);
    }
    return bestValue;
}

void BaseFunc::ComputeIntervalImage(double& min, double& max, double u0, double u1) const {
    min = std::min(Eval(u0), Eval(u1));
    max = std::max(Eval(u0), Eval(u1));
    std::array<double, 2> extrema{};
    const int count = Extrema(u0, u1, extrema);
    for (int i = 0; i < count; ++i) {
        const double y = Eval(extrema[i]);
        min = std::min(min, y);
        max = std::max(max, y);
    }
}

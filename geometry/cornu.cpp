#include <orvia/geometry/cornu.h>

#include <array>
#include <complex>
#include <cstddef>

namespace {

// The pair m of each series covers terms j = 2m and j + 1. The divisions of the series are taken from these
// tables of reciprocals so that a sample costs multiplications only.
struct SeriesTables {
    // X: p * (a[m] - t^4 b[m]) with p = t^(8m+1) / (4m)!, then p *= t^8 next[m].
    std::array<double, CCornuFunc::kMaxPairs> xa{}, xb{}, xNext{};
    // Y: p * (a[m] - t^4 b[m]) with p = t^(8m+3) / (4m+1)!, then p *= t^8 next[m].
    std::array<double, CCornuFunc::kMaxPairs> ya{}, yb{}, yNext{};
};

constexpr SeriesTables MakeTables() {
    SeriesTables t;
    for (int m = 0; m < CCornuFunc::kMaxPairs; ++m) {
        const double j = 2.0 * m;
        t.xa[m] = 1 / (4 * j + 1);
        t.xb[m] = 1 / ((4 * j + 5) * (2 * j + 2) * (2 * j + 1));
        t.xNext[m] = 1 / ((2 * j + 4) * (2 * j + 3) * (2 * j + 2) * (2 * j + 1));
        t.ya[m] = 1 / (4 * j + 3);
        t.yb[m] = 1 / ((4 * j + 7) * (2 * j + 3) * (2 * j + 2));
        t.yNext[m] = 1 / ((2 * j + 5) * (2 * j + 4) * (2 * j + 3) * (2 * j + 2));
    }
    return t;
}

constexpr SeriesTables kTables = MakeTables();

double SumX(double t, double t4, double t8) {
    double sum = 0;
    double p = t;
    for (int m = 0; m < CCornuFunc::kMaxPairs; ++m) {
        const double pair = p * (kTables.xa[m] - t4 * kTables.xb[m]);
        sum += pair;
        if (std::fabs(pair) < CCornuFunc::kPairTolerance) break;
        p *= t8 * kTables.xNext[m];
    }
    return sum;
}

double SumY(double t, double t4, double t8) {
    double sum = 0;
    double p = t * t * t;
    for (int m = 0; m < CCornuFunc::kMaxPairs; ++m) {
        const double pair = p * (kTables.ya[m] - t4 * kTables.yb[m]);
        sum += pair;
        if (std::fabs(pair) < CCornuFunc::kPairTolerance) break;
        p *= t8 * kTables.yNext[m];
    }
    return sum;
}

// The local expansion of a clothoid's chord ends once two consecutive terms fall below this (relative to the
// first, 1); within kChordSeriesReach the terms shrink at least like 2^m / m!, so about 30 are needed.
constexpr double kExpansionTolerance = 1e-17;
constexpr int kMaxExpansionTerms = 48;

// 1 / n for n < kMaxExpansionTerms + 2: the expansion multiplies instead of dividing.
struct Reciprocals {
    std::array<double, kMaxExpansionTerms + 2> value{};
    constexpr Reciprocals() {
        for (int n = 1; n < kMaxExpansionTerms + 2; ++n)
            value[n] = 1.0 / n;
    }
};
constexpr Reciprocals kReciprocals;

// integral_0^d exp(i (k v + c v^2 / 2)) dv: the chord, in the frame of the start tangent, of a clothoid of
// start curvature k and curvature rate c after d metres. From the power series of the integrand, whose
// coefficients follow from y' = i (k + c v) y; b[m] = a[m] d^m keeps the terms dimensionless.
vek::Vector2 LocalChord(double k, double c, double d) {
    const double alpha = k * d, beta = c * d * d;
    double re0 = 1, im0 = 0;                // b[m - 1]
    double re1 = 0, im1 = alpha;            // b[m], from m = 1
    double sumRe = 1, sumIm = 0.5 * alpha;  // sum of b[m] / (m + 1)
    for (int m = 1; m < kMaxExpansionTerms; ++m) {
        // b[m + 1] = i (alpha b[m] + beta b[m - 1]) / (m + 1)
        const double wRe = alpha * re1 + beta * re0, wIm = alpha * im1 + beta * im0;
        const double re2 = -wIm * kReciprocals.value[m + 1], im2 = wRe * kReciprocals.value[m + 1];
        sumRe += re2 * kReciprocals.value[m + 2];
        sumIm += im2 * kReciprocals.value[m + 2];
        re0 = re1;
        im0 = im1;
        re1 = re2;
        im1 = im2;
        if (std::fabs(re0) + std::fabs(im0) + std::fabs(re1) + std::fabs(im1) < kExpansionTolerance) break;
    }
    return {sumRe * d, sumIm * d};
}

// Where the chord's expansion stays accurate: |k d| + |rate| d^2 at most this (radians, about the turn).
constexpr double kChordSeriesReach = 2;

using Complex = std::complex<double>;

constexpr double kSqrtHalfPi = 1.2533141373155002512;  // sqrt(pi / 2)
constexpr double kSqrtTwoOverPi = 0.79788456080286535588;
// Below this |u| the Cornu integral is summed from its power series (terms grow to about 10 there, so a digit
// is lost); beyond it the continued fraction of the tail converges in at most about 60 steps.
constexpr double kCornuSeriesLimit = 1.88;
constexpr int kMaxCornuTerms = 80;
constexpr double kCornuTolerance = 1e-17;
// The value at infinity, sqrt(pi / 2) (1 + i) / 2.
const Complex kCornuLimit(0.5 * kSqrtHalfPi, 0.5 * kSqrtHalfPi);

// integral_0^u exp(i v^2) dv = sum_n i^n u^(2n+1) / (n! (2n + 1)), for |u| < kCornuSeriesLimit.
Complex CornuSeries(double u) {
    const double u2 = u * u;
    Complex term(u, 0);  // i^n u^(2n+1) / n!
    Complex sum = term;
    for (int n = 1; n < kMaxCornuTerms; ++n) {
        term *= Complex(0, u2 / n);
        const Complex add = term / (2.0 * n + 1);
        sum += add;
        if (std::abs(add) < kCornuTolerance * std::abs(sum)) break;
    }
    return sum;
}

// exp(-i u^2) integral_u^inf exp(i v^2) dv for u >= kCornuSeriesLimit, a slowly varying function (about
// i / (2u) far out) free of the fast phase, from the continued fraction of the complementary error function
// (modified Lentz).
Complex CornuTail(double u) {
    constexpr double kTiny = 1e-300;
    Complex b(1, -2 * u * u);
    Complex c(1 / kTiny, 0);
    Complex d = 1.0 / b;
    Complex h = d;
    for (int k = 1; k < kMaxCornuTerms; ++k) {
        const double n = 2.0 * k - 1;
        const double a = -n * (n + 1);
        b += 4.0;
        d = 1.0 / (a * d + b);
        c = b + a / c;
        const Complex step = c * d;
        h *= step;
        if (std::fabs(step.real() - 1) + std::fabs(step.imag()) < kCornuTolerance) break;
    }
    const double z = u * kSqrtTwoOverPi;
    return kCornuLimit * (h * Complex(z, -z));
}

Complex Cornu(double u) {
    const double magnitude = std::fabs(u);
    if (magnitude < kCornuSeriesLimit) return CornuSeries(u);
    const double phase = u * u;
    const Complex value = kCornuLimit - Complex(std::cos(phase), std::sin(phase)) * CornuTail(magnitude);
    return u < 0 ? -value : value;
}

// ClothoidChord for rate > 0, beyond the expansion's reach. With w = sqrt(rate / 2) (v + k / rate) the phase
// is w^2 - u0^2, so the chord is exp(-i u0^2) (E(u1) - E(u0)) / sqrt(rate / 2), E the Cornu integral. Far
// out on one side both values are written through the tail, whose fast phases then cancel exactly into the
// clothoid's own turn: no large angle is ever reduced.
Complex ChordFromCornu(double k, double rate, double d) {
    const double scale = std::sqrt(0.5 * rate);
    const double u0 = k / (2 * scale), u1 = u0 + d * scale;
    const double turn = k * d + 0.5 * rate * d * d;  // u1^2 - u0^2
    const Complex rotation(std::cos(turn), std::sin(turn));
    Complex chord;
    if (u0 >= kCornuSeriesLimit && u1 >= kCornuSeriesLimit)
        chord = CornuTail(u0) - rotation * CornuTail(u1);
    else if (u0 <= -kCornuSeriesLimit && u1 <= -kCornuSeriesLimit)
        chord = rotation * CornuTail(-u1) - CornuTail(-u0);
    else
        chord = Complex(std::cos(u0 * u0), -std::sin(u0 * u0)) * (Cornu(u1) - Cornu(u0));
    return chord / scale;
}

}  // namespace

double CCornuFunc::EvalX(double t) const {
    const double t2 = t * t;
    const double t4 = t2 * t2;
    return m_xScale * SumX(t, t4, t4 * t4);
}

double CCornuFunc::EvalY(double t) const {
    const double t2 = t * t;
    const double t4 = t2 * t2;
    return m_yScale * SumY(t, t4, t4 * t4);
}

void CCornuFunc::Eval(double t, double& x, double& y) const {
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double t8 = t4 * t4;
    // Both series advance together so that their independent multiplications overlap.
    double sumX = 0, sumY = 0;
    double px = t, py = t2 * t;
    bool doneX = false, doneY = false;
    for (int m = 0; m < kMaxPairs && !(doneX && doneY); ++m) {
        if (!doneX) {
            const double pair = px * (kTables.xa[m] - t4 * kTables.xb[m]);
            sumX += pair;
            doneX = std::fabs(pair) < kPairTolerance;
            px *= t8 * kTables.xNext[m];
        }
        if (!doneY) {
            const double pair = py * (kTables.ya[m] - t4 * kTables.yb[m]);
            sumY += pair;
            doneY = std::fabs(pair) < kPairTolerance;
            py *= t8 * kTables.yNext[m];
        }
    }
    x = m_xScale * sumX;
    y = m_yScale * sumY;
}

CFresnelIntegralsFunc::CFresnelIntegralsFunc() : m_factor(std::sqrt(0.6366197723675814)) {
    m_cornu.Setup(1, 1);
}

double CFresnelIntegralsFunc::C(double x) const {
    return x > 0 ? m_factor * m_cornu.EvalX(std::sqrt(x)) : 0;
}

double CFresnelIntegralsFunc::S(double x) const {
    return x > 0 ? m_factor * m_cornu.EvalY(std::sqrt(x)) : 0;
}

vek::Vector2 CornuIntegral(double u) {
    const Complex value = Cornu(u);
    return {value.real(), value.imag()};
}

vek::Vector2 ClothoidChord(double k, double rate, double d) {
    if (std::fabs(k * d) + std::fabs(rate) * d * d <= kChordSeriesReach) return LocalChord(k, rate, d);
    if (rate == 0) {
        // A circle: (sin kd, 1 - cos kd) / k, the versine without cancellation.
        const double angle = k * d, sine = std::sin(angle), cosine = std::cos(angle);
        const double versine = cosine > 0 ? sine * sine / (1 + cosine) : 1 - cosine;
        return {sine / k, versine / k};
    }
    // A decreasing clothoid is the mirror image of the increasing one with negated curvatures.
    if (rate < 0) {
        const Complex mirrored = ChordFromCornu(-k, -rate, d);
        return {mirrored.real(), -mirrored.imag()};
    }
    const Complex chord = ChordFromCornu(k, rate, d);
    return {chord.real(), chord.imag()};
}

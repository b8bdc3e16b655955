#include <orvia/geometry/cornu.h>

#include <array>
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

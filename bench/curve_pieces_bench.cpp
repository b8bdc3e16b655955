// Sampling throughput of the curve pieces, single thread, against a floor: a loop of the same length that
// only calls std::sin and std::cos. Each piece reports samples per second (items_per_second) and
// cost_vs_floor, the time of one sample in units of one floor step (sin + cos).

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <vector>

#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/clotho_arc.h>
#include <orvia/geometry/clothoid_spline.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/polynomial_function.h>
#include <orvia/geometry/segment.h>
#include <orvia/ruvex/counted.h>

namespace {

constexpr int kSamples = 4096;  // samples per benchmark iteration

// kSamples values evenly spread over [0, length], visited in a scrambled order so that consecutive samples do
// not share a cache line of any lookup table.
std::vector<double> Abscissas(double length) {
    std::vector<double> s(kSamples);
    for (int i = 0; i < kSamples; ++i)
        s[i] = length * static_cast<double>((i * 2749) % kSamples) / (kSamples - 1);
    return s;
}

double FloorLoop(const std::vector<double>& s) {
    double sum = 0;
    for (double x : s)
        sum += std::sin(x) + std::cos(x);
    return sum;
}

// Seconds per floor step, measured once over at least 0.2 s.
double FloorSecondsPerSample() {
    static const double seconds = [] {
        const std::vector<double> s = Abscissas(100);
        using Clock = std::chrono::steady_clock;
        long long loops = 0;
        const Clock::time_point start = Clock::now();
        Clock::duration elapsed{};
        do {
            benchmark::DoNotOptimize(FloorLoop(s));
            ++loops;
            elapsed = Clock::now() - start;
        } while (elapsed < std::chrono::milliseconds(200));
        return std::chrono::duration<double>(elapsed).count() / (static_cast<double>(loops) * kSamples);
    }();
    return seconds;
}

template <class Sample>
void Run(benchmark::State& state, const std::vector<double>& s, Sample sample) {
    FloorSecondsPerSample();
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        for (double x : s)
            sample(x);
        benchmark::ClobberMemory();
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const double samples = static_cast<double>(state.iterations()) * kSamples;
    state.SetItemsProcessed(static_cast<int64_t>(samples));
    state.counters["cost_vs_floor"] = seconds / samples / FloorSecondsPerSample();
}

void SamplePiece(benchmark::State& state, const ParametricFunction& piece) {
    const std::vector<double> s = Abscissas(piece.GetLength());
    Run(state, s, [&](double x) {
        const PointData pd = piece.GetPointData(x);
        benchmark::DoNotOptimize(pd);
    });
}

void BM_Floor_SinCos(benchmark::State& state) {
    const std::vector<double> s = Abscissas(100);
    Run(state, s, [](double x) { benchmark::DoNotOptimize(std::sin(x) + std::cos(x)); });
}

void BM_Segment(benchmark::State& state) {
    Ruvex::CountedPtr<Segment> piece(new Segment(100));
    piece->SetStartPosition({1000, 2000});
    piece->SetStartOrientation(0.7);
    SamplePiece(state, *piece);
}

void BM_CircleArc(benchmark::State& state) {
    Ruvex::CountedPtr<CircleArc> piece(new CircleArc(100, 0.01));
    piece->SetStartPosition({1000, 2000});
    piece->SetStartOrientation(0.7);
    SamplePiece(state, *piece);
}

// Arg: 0 a transition from a straight line (Cornu parameter 0 to 2.2), 1 one between two curves further along
// the spiral (Cornu parameter 2.8 to 3.0: the longest series), 2 one between two tight curves beyond the
// series' reach (Cornu parameter 6.3 to 6.7: integrated from nodes).
void BM_ClothoArc(benchmark::State& state) {
    const double shapes[3][3] = {{200, 0, 0.05}, {20, 0.056, 0.060}, {20, 0.28, 0.30}};
    const double* shape = shapes[state.range(0)];
    Ruvex::CountedPtr<ClothoArc> piece(new ClothoArc(shape[0], shape[1], shape[2]));
    piece->SetStartPosition({1000, 2000});
    piece->SetStartOrientation(0.7);
    SamplePiece(state, *piece);
}

void BM_PolyLine(benchmark::State& state) {
    const auto type = static_cast<PolyLine::EType>(state.range(0));
    Ruvex::CountedPtr<PolyLine> piece(new PolyLine(type, false));
    piece->SetControlPoints({{0, 0}, {30, 0}, {60, 10}, {80, 40}, {90, 80}, {120, 100}, {160, 100}});
    SamplePiece(state, *piece);
}

void BM_ClothoidSpline(benchmark::State& state) {
    Ruvex::CountedPtr<ClothoidSpline> piece(new ClothoidSpline);
    piece->SetControlPoints({{0, 0}, {50, 0}, {80, 40}, {140, 40}, {150, 100}, {200, 130}});
    SamplePiece(state, *piece);
}

void BM_PolynomialFunction_GetValue(benchmark::State& state) {
    const PolynomialFunction cubic({0, 10}, 0.02, {100, 12}, -0.01);
    Run(state, Abscissas(100), [&](double x) { benchmark::DoNotOptimize(cubic.GetValue(x)); });
}

}  // namespace

BENCHMARK(BM_Floor_SinCos);
BENCHMARK(BM_Segment);
BENCHMARK(BM_CircleArc);
BENCHMARK(BM_ClothoArc)->Arg(0)->Arg(1)->Arg(2);
BENCHMARK(BM_PolyLine)->Arg(0)->Arg(1)->Arg(2)->Arg(4);
BENCHMARK(BM_ClothoidSpline);
BENCHMARK(BM_PolynomialFunction_GetValue);

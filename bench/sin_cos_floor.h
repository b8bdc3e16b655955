// The floor the geometry benchmarks measure against, in the same run: a loop of the same length that only
// calls std::sin and std::cos. RunAgainstFloor reports items per second and cost_vs_floor, the time of one
// item in units of one floor step (sin + cos).

#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <vector>

namespace bench {

constexpr int kBatch = 4096;  // items per benchmark iteration

// kBatch values evenly spread over [0, length], in a scrambled order so that consecutive items land on
// unrelated pieces (no help from the branch predictor or the cache).
inline std::vector<double> ScrambledAbscissas(double length) {
    std::vector<double> s(kBatch);
    for (int i = 0; i < kBatch; ++i)
        s[i] = length * static_cast<double>((i * 2749) % kBatch) / (kBatch - 1);
    return s;
}

// Seconds per floor step, measured once over at least 0.2 s.
inline double FloorSecondsPerStep() {
    static const double seconds = [] {
        const std::vector<double> s = ScrambledAbscissas(100);
        using Clock = std::chrono::steady_clock;
        long long loops = 0;
        const Clock::time_point start = Clock::now();
        Clock::duration elapsed{};
        do {
            double sum = 0;
            for (double x : s)
                sum += std::sin(x) + std::cos(x);
            benchmark::DoNotOptimize(sum);
            ++loops;
            elapsed = Clock::now() - start;
        } while (elapsed < std::chrono::milliseconds(200));
        return std::chrono::duration<double>(elapsed).count() / (static_cast<double>(loops) * kBatch);
    }();
    return seconds;
}

// Calls item(i) for i in [0, kBatch) per iteration.
template <class Item>
void RunAgainstFloor(benchmark::State& state, Item item) {
    FloorSecondsPerStep();
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        for (int i = 0; i < kBatch; ++i)
            item(i);
        benchmark::ClobberMemory();
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const double items = static_cast<double>(state.iterations()) * kBatch;
    state.SetItemsProcessed(static_cast<int64_t>(items));
    state.counters["cost_vs_floor"] = seconds / items / FloorSecondsPerStep();
}

}  // namespace bench

// Track::GetMark off the centre line and Track::GetWidthAt on the tracks of a generated city (mixed pieces,
// elevation, banking, several portions per track, profile modifiers), at abscissas spread over each track,
// single thread.

#include <benchmark/benchmark.h>

#include "network_generator.h"
#include "sin_cos_floor.h"

#include <orvia/core/network.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <vector>

namespace {

struct Query {
    const Orvia::Track* track;
    double s, t;
};

using Clock = std::chrono::steady_clock;

// Items per second, and cost_vs_floor: one query's time in floor steps (sin + cos, see sin_cos_floor.h)
// measured in the same run, which holds on a loaded machine where the rate does not.
void ReportAgainstFloor(benchmark::State& state, Clock::time_point start) {
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const double items = static_cast<double>(state.iterations());
    state.SetItemsProcessed(state.iterations());
    state.counters["cost_vs_floor"] = seconds / items / bench::FloorSecondsPerStep();
}

// A smaller city than the load benchmarks': the queries need variety, not volume.
const std::vector<Query>& Queries() {
    static Ruvex::CountedPtr<Orvia::Network> network;
    static const std::vector<Query> queries = [] {
        const std::string path =
            (std::filesystem::temp_directory_path() / "orvia_bench_track_city.xml").string();
        OrviaBench::CityShape shape;
        shape.subNetworks = 4;
        shape.grid = 10;
        OrviaBench::GenerateCityNetwork(path, shape);
        network = Orvia::Network::Load(path.c_str(), {});
        std::vector<Query> result;
        std::mt19937 rng(7);
        std::uniform_real_distribution<double> unit(0.0, 1.0);
        for (size_t i = 0; network && i < network->GetSubNetworkCount(); ++i) {
            const Orvia::SubNetwork* subNetwork = network->GetSubNetwork(i);
            for (size_t k = 0; k < subNetwork->GetTrackCount(); ++k) {
                const Orvia::Track* track = subNetwork->GetTrack(k);
                if (!track || track->GetPortionCount() == 0) continue;
                for (int q = 0; q < 8; ++q)
                    result.push_back({track, unit(rng) * track->GetXYLength(), -6 + 12 * unit(rng) + 1e-3});
            }
        }
        std::shuffle(result.begin(), result.end(), rng);
        result.resize(result.size() & ~size_t(4095));
        return result;
    }();
    return queries;
}

void BM_TrackGetMark(benchmark::State& state) {
    const std::vector<Query>& queries = Queries();
    if (queries.empty()) {
        state.SkipWithError("no track to query");
        return;
    }
    const size_t mask = 4095;
    size_t i = 0;
    vek::Mark mark;
    bench::FloorSecondsPerStep();
    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        const Query& q = queries[i];
        benchmark::DoNotOptimize(q.track->GetMark(mark, q.s, q.t));
        benchmark::DoNotOptimize(mark);
        i = (i + 1) & mask;
    }
    ReportAgainstFloor(state, start);
}
BENCHMARK(BM_TrackGetMark);

void BM_TrackGetWidthAt(benchmark::State& state) {
    const std::vector<Query>& queries = Queries();
    if (queries.empty()) {
        state.SkipWithError("no track to query");
        return;
    }
    const size_t mask = 4095;
    size_t i = 0;
    double left = 0, right = 0;
    bench::FloorSecondsPerStep();
    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        const Query& q = queries[i];
        benchmark::DoNotOptimize(q.track->GetWidthAt(q.s, left, right));
        benchmark::DoNotOptimize(left);
        benchmark::DoNotOptimize(right);
        i = (i + 1) & mask;
    }
    ReportAgainstFloor(state, start);
}
BENCHMARK(BM_TrackGetWidthAt);

}  // namespace

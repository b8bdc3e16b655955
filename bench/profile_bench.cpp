// Lateral look-up throughput of a cross-section: which lane of a 6-lane profile holds an offset, for offsets
// spread over the profile and a little beyond it, single thread.

#include <benchmark/benchmark.h>

#include <orvia/geometry/profile.h>
#include <orvia/ruvex/counted.h>

#include <random>
#include <vector>

namespace {

// Sidewalk, three lanes, shoulder, sidewalk: [-8, 8] m.
Ruvex::CountedPtr<Orvia::Profile> SixLanes() {
    Ruvex::CountedPtr<Orvia::Profile> profile(new Orvia::Profile);
    const double borders[] = {-8.0, -6.0, -3.0, 0.0, 3.0, 6.0, 8.0};
    for (int i = 0; i < 6; ++i)
        profile->AddLane();
    for (size_t i = 0; i < 7; ++i)
        profile->GetLaneBorder(i)->SetHorizDistToAxis(borders[i]);
    return profile;
}

void BM_GetLaneWithDistance(benchmark::State& state) {
    Ruvex::CountedPtr<Orvia::Profile> profile = SixLanes();
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> offset(-9.0, 9.0);
    std::vector<double> offsets(4096);
    for (double& t : offsets)
        t = offset(rng);
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(profile->GetLaneWithDistance(offsets[i]));
        i = (i + 1) & (offsets.size() - 1);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GetLaneWithDistance);

}  // namespace

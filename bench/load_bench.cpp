// Loading a large network (parse, object tree, post-load) against a floor: pugixml parsing the same file into
// its own DOM. Each reports the time of one load; NetworkLoad also reports ratio_vs_pugixml, its time in
// units of the floor's. The file is the synthetic city of network_generator.h (at least 50 MB), written on
// first use to $ORVIA_BENCH_NETWORK or to the temporary directory.

#include "network_generator.h"

#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/sub_network.h>

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

namespace {

// CPU time of this thread.
struct Clock {
    using time_point = double;
    static double now() {
        timespec t{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
    }
};

const std::string& NetworkPath() {
    return OrviaBench::BenchCityPath();
}

double FileBytes() {
    std::error_code error;
    return static_cast<double>(std::filesystem::file_size(NetworkPath(), error));
}

double SecondsSince(Clock::time_point start) {
    return Clock::now() - start;
}

double PugixmlLoadSeconds() {
    pugi::xml_document document;
    const Clock::time_point start = Clock::now();
    pugi::xml_parse_result result = document.load_file(NetworkPath().c_str());
    const double seconds = SecondsSince(start);
    benchmark::DoNotOptimize(result.status);
    return seconds;
}

// The best of three parses: the floor should not carry a cold cache or a descheduled run.
double FloorSeconds() {
    static const double seconds = [] {
        double best = PugixmlLoadSeconds();
        for (int i = 0; i < 2; ++i)
            best = std::min(best, PugixmlLoadSeconds());
        return best;
    }();
    return seconds;
}

void PugixmlParse(benchmark::State& state) {
    for (auto _ : state)
        state.SetIterationTime(PugixmlLoadSeconds());
    state.SetBytesProcessed(static_cast<int64_t>(FileBytes() * static_cast<double>(state.iterations())));
}

void NetworkLoad(benchmark::State& state) {
    const double floor = FloorSeconds();
    // One untimed load first, as the floor is the best of warm parses: the first load of a process also pays
    // for growing the heap (page faults), about half as much again on this file.
    Ruvex::CountedPtr<Orvia::Network>(Orvia::Network::Load(NetworkPath().c_str(), {}));
    double total = 0;
    size_t tracks = 0;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        Ruvex::CountedPtr<Orvia::Network> network(Orvia::Network::Load(NetworkPath().c_str(), {}));
        const double seconds = SecondsSince(start);
        state.SetIterationTime(seconds);
        total += seconds;
        if (!network) {
            state.SkipWithError("the network did not load");
            return;
        }
        tracks = 0;
        for (size_t i = 0; i < network->GetSubNetworkCount(); ++i)
            tracks += network->GetSubNetwork(i)->GetTrackCount();
        state.PauseTiming();
        network.Reset();  // not part of a load
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(FileBytes() * static_cast<double>(state.iterations())));
    state.counters["tracks"] = static_cast<double>(tracks);
    state.counters["ratio_vs_pugixml"] = total / static_cast<double>(state.iterations()) / floor;
}

}  // namespace

BENCHMARK(PugixmlParse)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(NetworkLoad)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

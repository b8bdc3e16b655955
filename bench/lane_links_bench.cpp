// Lane links through intersections on a generated city of 10,000 intersections, single thread: deriving the
// links (explicit and implicit, every way laid) of every intersection, then the follow-on question "which
// links leave this lane end", against the sin + cos floor (see sin_cos_floor.h).

#include <benchmark/benchmark.h>

#include "network_generator.h"
#include "sin_cos_floor.h"

#include <orvia/core/network.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/intersection_links.h>
#include <orvia/topology/sub_network.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <random>
#include <vector>

namespace {

struct City {
    Ruvex::CountedPtr<Orvia::Network> network;
    std::vector<Orvia::Intersection*> intersections;
    std::vector<Orvia::IntersectionLinksManager> managers;  // one per intersection
};

City& TheCity() {
    static City city = [] {
        City result;
        const std::string path =
            (std::filesystem::temp_directory_path() / "orvia_bench_links_city.xml").string();
        OrviaBench::CityShape shape;
        shape.subNetworks = 25;
        shape.grid = 20;
        OrviaBench::GenerateCityNetwork(path, shape);
        result.network = Orvia::Network::Load(path.c_str(), {});
        for (size_t i = 0; result.network && i < result.network->GetSubNetworkCount(); ++i) {
            const Orvia::SubNetwork* sub = result.network->GetSubNetwork(i);
            for (size_t k = 0; k < sub->GetIntersectionCount(); ++k)
                result.intersections.push_back(sub->GetIntersectionByIndex(k));
        }
        result.managers.resize(result.intersections.size());
        return result;
    }();
    return city;
}

// One pass over the city: every intersection's links derived again (the previous set and the ways laid for
// it released first).
void DeriveAll(City& city) {
    for (size_t i = 0; i < city.network->GetSubNetworkCount(); ++i)
        city.network->GetSubNetwork(i)->ClearJunctionSpace();
    for (size_t i = 0; i < city.intersections.size(); ++i) {
        city.managers[i].Clear();
        city.managers[i].FillFromIntersection(city.intersections[i], true);
    }
}

void BM_Floor_SinCos(benchmark::State& state) {
    const std::vector<double> s = bench::ScrambledAbscissas(100);
    bench::RunAgainstFloor(state, [&](int i) { benchmark::DoNotOptimize(std::sin(s[i]) + std::cos(s[i])); });
}
BENCHMARK(BM_Floor_SinCos);

void BM_DeriveLinksOfEveryIntersection(benchmark::State& state) {
    City& city = TheCity();
    if (city.intersections.size() < 10000) {
        state.SkipWithError("the city has fewer than 10,000 intersections");
        return;
    }
    bench::FloorSecondsPerStep();
    size_t links = 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        DeriveAll(city);
        links = 0;
        for (const auto& manager : city.managers)
            links += manager.GetLinksCount();
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double items =
        static_cast<double>(state.iterations()) * static_cast<double>(city.intersections.size());
    state.SetItemsProcessed(static_cast<int64_t>(items));
    state.counters["links_per_intersection"] = static_cast<double>(links) / city.intersections.size();
    state.counters["cost_vs_floor"] = seconds / items / bench::FloorSecondsPerStep();
}
BENCHMARK(BM_DeriveLinksOfEveryIntersection)->Unit(benchmark::kMillisecond)->MinTime(3.0);

// Lane ends that links leave, drawn over the whole city, asked in a scrambled order.
struct Question {
    const Orvia::IntersectionLinksManager* manager;
    Orvia::LaneOnIntersectionData from;
};

void BM_LinksLeavingALaneEnd(benchmark::State& state) {
    City& city = TheCity();
    if (city.managers.empty() || city.managers[0].GetMap().empty()) DeriveAll(city);
    std::vector<Question> questions;
    std::mt19937 rng(11);
    for (int q = 0; q < bench::kBatch; ++q) {
        const size_t i = rng() % city.managers.size();
        const auto& map = city.managers[i].GetMap();
        if (map.empty()) {
            --q;
            continue;
        }
        auto it = map.begin();
        std::advance(it, rng() % map.size());
        questions.push_back({&city.managers[i], it->second.begin()->second.trajectory->GetFrom()});
    }
    bench::RunAgainstFloor(state, [&](int i) {
        const Question& q = questions[i];
        // The answer: each link leaving the lane end with its target lane end and its way.
        for (const auto& entry : q.manager->GetFollowing(q.from)) {
            benchmark::DoNotOptimize(&entry.to);
            benchmark::DoNotOptimize(entry.trajectory->GetAxis());
        }
    });
}
BENCHMARK(BM_LinksLeavingALaneEnd);

}  // namespace

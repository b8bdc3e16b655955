// Animating every traffic-light group of a generated city at one clock value: how long it takes, and that it
// allocates nothing.

#include <orvia/topology/clipped_data.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/sub_network.h>
#include <orvia/traffic/road_sign.h>
#include <orvia/traffic/traffic_light.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

// ---------------------------------------------------------------------------------------------------------------
// Every operator new of the process comes here, so that allocations made while animating can be counted.

namespace {
std::atomic<bool> g_counting{false};
std::atomic<int64_t> g_allocations{0};

void* Allocate(std::size_t size) {
    void* p = std::malloc(size ? size : 1);
    if (!p) throw std::bad_alloc();
    if (g_counting.load(std::memory_order_relaxed)) g_allocations.fetch_add(1, std::memory_order_relaxed);
    return p;
}
}  // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete[](void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}

namespace {

using namespace Orvia;

// A city of `junctions` signalised crossings on a grid: four three-lamp signals per crossing (one with a
// countdown), one group per crossing with a day and a night cycle. Day: the two axes alternate green 27 s,
// orange 3 s, red 30 s; night: orange blinking.
Ruvex::CountedPtr<SubNetwork> MakeCity(size_t junctions) {
    Ruvex::CountedPtr<SubNetwork> city(new SubNetwork);
    city->SetName("City");
    auto state = [](double length, Light::EIllumination red, Light::EIllumination orange,
                    Light::EIllumination green) {
        auto* s = new TrafficLightState;
        s->SetTimeLength(length);
        s->AddIllumination(red);
        s->AddIllumination(orange);
        s->AddIllumination(green);
        return s;
    };
    const size_t side = 64;
    for (size_t j = 0; j < junctions; ++j) {
        const std::string name = "X" + std::to_string(j);
        Intersection* crossing = city->CreateIntersection(
            {static_cast<double>(j % side) * 200.0, static_cast<double>(j / side) * 200.0, 0.0}, name);
        TrafficLightGroup* group = city->CreateTrafficLightGroup(name);
        group->SetCurrentCycle("Day");
        for (int arm = 0; arm < 4; ++arm) {
            auto* signal = new MarkClippedData;
            signal->SetName(name + "/" + std::to_string(arm));
            auto* sign = new RoadSign(RoadSign::eTrafficLight);
            if (arm == 0) sign->GetLight(2)->SetTimer(new Timer);
            signal->SetRoadSign(sign);
            crossing->EditClippedData().emplace_back(signal);
            group->AddTrafficLight(signal);
        }
        group->AddCycle("Night");
        for (size_t a = 0; a < group->GetAnimationCount(); ++a) {
            TrafficLightAnimation* animation = group->GetAnimation(a);
            const size_t npos = TrafficLightAnimation::npos;
            if (animation->GetCycleName() == "Night") {
                animation->InsertState(state(1, Light::eOff, Light::eBlinking, Light::eOff), npos, true);
                continue;
            }
            const bool mainAxis = a % 2 == 0;
            if (!mainAxis)
                animation->InsertState(state(30, Light::eOn, Light::eOff, Light::eOff), npos, false);
            animation->InsertState(state(27, Light::eOff, Light::eOff, Light::eOn), npos, false);
            animation->InsertState(state(3, Light::eOff, Light::eOn, Light::eOff), npos, false);
            if (mainAxis)
                animation->InsertState(state(30, Light::eOn, Light::eOff, Light::eOff), npos, false);
            animation->UpdateTimeValues();
        }
        group->SetOffset(static_cast<double>(j % 60));
    }
    return city;
}

void AnimateCity(benchmark::State& state) {
    const auto junctions = static_cast<size_t>(state.range(0));
    Ruvex::CountedPtr<SubNetwork> city = MakeCity(junctions);
    const size_t groups = city->GetTrafficLightGroupCount();
    std::vector<TrafficLightGroup*> all(groups);
    for (size_t g = 0; g < groups; ++g)
        all[g] = city->GetTrafficLightGroup(g);

    double clock = 0.0;
    int64_t changes = 0;
    g_allocations = 0;
    g_counting = true;
    for (auto _ : state) {
        clock += 0.1;
        for (TrafficLightGroup* group : all)
            changes += group->Animate(clock) ? 1 : 0;
    }
    g_counting = false;
    benchmark::DoNotOptimize(changes);
    state.counters["groups"] = static_cast<double>(groups);
    state.counters["allocations"] = static_cast<double>(g_allocations.load());
    if (g_allocations.load() != 0) state.SkipWithError("animating allocated");
}

}  // namespace

BENCHMARK(AnimateCity)->Arg(250)->Arg(2500)->Unit(benchmark::kMicrosecond);

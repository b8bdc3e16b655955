// The element layer against pugixml on the synthetic city of network_generator.h (at least 50 MB and 500,000
// elements): loading against pugixml parsing the same file with the loader's options, saving against pugixml
// writing the same document, and the heap that a loaded tree keeps once the DOM is gone. Times are CPU time
// of this thread, after one untimed run; ratios are median over median of five runs each.
//
// Two regimes. As load_bench measures, each side runs in a loop of its own and pays for the memory it takes
// from the system (page faults), as a fresh process would: ratio_vs_pugixml. The *NoPageFaults benchmarks,
// registered last, keep freed memory in the heap (mallopt) so that neither side faults, and let the floor's
// runs take turns with the layer's: ratio_no_page_faults, the cost of the work alone.

#include "network_generator.h"

#include <orvia/core/library.h>
#include <orvia/ruvex/factory.h>

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <pugixml.hpp>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <new>
#include <string>
#include <vector>

// ---------------------------------------------------------------------------------------------------------------
// Every operator new of the process (the library's included) comes here, so that the bytes a loaded tree
// holds can be counted; counting is off except around the heap measurement, and costs a predicted branch
// otherwise.

namespace {
std::atomic<bool> g_counting{false};
std::atomic<int64_t> g_liveBytes{0};

void* Allocate(std::size_t size) {
    void* p = std::malloc(size ? size : 1);
    if (!p) throw std::bad_alloc();
    if (g_counting.load(std::memory_order_relaxed))
        g_liveBytes.fetch_add(static_cast<int64_t>(malloc_usable_size(p)), std::memory_order_relaxed);
    return p;
}

void Free(void* p) noexcept {
    if (!p) return;
    if (g_counting.load(std::memory_order_relaxed))
        g_liveBytes.fetch_sub(static_cast<int64_t>(malloc_usable_size(p)), std::memory_order_relaxed);
    std::free(p);
}
}  // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Allocate(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Allocate(size);
    } catch (...) {
        return nullptr;
    }
}
void operator delete(void* p) noexcept {
    Free(p);
}
void operator delete[](void* p) noexcept {
    Free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    Free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    Free(p);
}

namespace {

double CpuNow() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : 0.5 * (values[n / 2 - 1] + values[n / 2]);
}

constexpr int kRuns = 5;

const std::string& CityPath() {
    return OrviaBench::BenchCityPath();
}

struct CityFile {
    double bytes = 0;
    double elements = 0;  // start tags
};

const CityFile& City() {
    static const CityFile file = [] {
        std::ifstream in(CityPath(), std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        CityFile f;
        f.bytes = static_cast<double>(text.size());
        for (size_t i = 0; i + 1 < text.size(); ++i)
            if (text[i] == '<' && std::isalpha(static_cast<unsigned char>(text[i + 1]))) f.elements += 1;
        return f;
    }();
    return file;
}

void ReportFile(benchmark::State& state) {
    state.counters["file_mb"] = City().bytes / (1 << 20);
    state.counters["elements"] = City().elements;
}

// What the loader asks of pugixml: everything kept (declaration, comments, processing instructions).
constexpr unsigned kParseOptions = pugi::parse_full;

double PugixmlParseSeconds() {
    pugi::xml_document document;
    const double start = CpuNow();
    pugi::xml_parse_result result =
        document.load_file(CityPath().c_str(), kParseOptions, pugi::encoding_auto);
    const double seconds = CpuNow() - start;
    benchmark::DoNotOptimize(result.status);
    return seconds;
}

struct StringWriter : pugi::xml_writer {
    std::string text;
    void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
};

// The document as the layer writes it: two-space indentation, default format, UTF-8.
double PugixmlSaveSeconds(const pugi::xml_document& document) {
    StringWriter writer;
    const double start = CpuNow();
    document.save(writer, "  ", pugi::format_default, pugi::encoding_utf8);
    const double seconds = CpuNow() - start;
    benchmark::DoNotOptimize(writer.text.data());
    return seconds;
}

const pugi::xml_document& PugixmlDocument() {
    static pugi::xml_document document;
    static const bool loaded = static_cast<bool>(document.load_file(CityPath().c_str(), kParseOptions));
    (void)loaded;
    return document;
}

Ruvex::Element* LoadCity() {
    return Ruvex::Load(CityPath().c_str(), false);
}

// Medians of five runs of the floors in loops of their own (after one untimed run), measured once.
double ParseFloor() {
    static const double seconds = [] {
        PugixmlParseSeconds();
        std::vector<double> runs;
        for (int i = 0; i < kRuns; ++i)
            runs.push_back(PugixmlParseSeconds());
        return Median(runs);
    }();
    return seconds;
}

double SaveFloor() {
    static const double seconds = [] {
        PugixmlSaveSeconds(PugixmlDocument());
        std::vector<double> runs;
        for (int i = 0; i < kRuns; ++i)
            runs.push_back(PugixmlSaveSeconds(PugixmlDocument()));
        return Median(runs);
    }();
    return seconds;
}

// From here on, freed memory stays in the heap and large blocks come from it too: no run faults pages in
// after the first.
void KeepMemory() {
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
}

// A block that makes malloc merge the small blocks a destroyed tree left, outside the timed part.
void SettleHeap() {
    benchmark::DoNotOptimize(std::malloc(1 << 12));
}

void PugixmlParse(benchmark::State& state) {
    std::vector<double> runs;
    for (auto _ : state) {
        runs.push_back(PugixmlParseSeconds());
        state.SetIterationTime(runs.back());
    }
    state.SetBytesProcessed(static_cast<int64_t>(City().bytes * static_cast<double>(state.iterations())));
    state.counters["median_ms"] = 1e3 * Median(runs);
    ReportFile(state);
}

// The run's median against the floor's; `turns` names the variant where the two took turns without page
// faults.
void ReportRatio(benchmark::State& state, const std::vector<double>& runs, double floor, bool turns) {
    state.SetBytesProcessed(static_cast<int64_t>(City().bytes * static_cast<double>(state.iterations())));
    state.counters["median_ms"] = 1e3 * Median(runs);
    state.counters["floor_ms"] = 1e3 * floor;
    state.counters[turns ? "ratio_no_page_faults" : "ratio_vs_pugixml"] = Median(runs) / floor;
}

// One load per iteration; the tree's destruction is not part of it. With `turns`, a parse of the floor before
// each, so that both see the same heap; else the floor's own loop.
void TimeLoads(benchmark::State& state, bool turns) {
    const double floor = turns ? 0.0 : ParseFloor();
    PugixmlParseSeconds();
    Ruvex::CountedPtr<Ruvex::Element> warm(LoadCity());  // the first load also grows the heap
    warm.Reset();
    std::vector<double> runs;
    std::vector<double> floors;
    for (auto _ : state) {
        state.PauseTiming();
        SettleHeap();
        if (turns) {
            floors.push_back(PugixmlParseSeconds());
            SettleHeap();
        }
        state.ResumeTiming();
        const double start = CpuNow();
        Ruvex::CountedPtr<Ruvex::Element> root(LoadCity());
        runs.push_back(CpuNow() - start);
        state.SetIterationTime(runs.back());
        if (!root) {
            state.SkipWithError("the city did not load");
            return;
        }
        state.PauseTiming();
        root.Reset();
        state.ResumeTiming();
    }
    ReportRatio(state, runs, turns ? Median(floors) : floor, turns);
}

// The bytes a loaded tree keeps once the DOM and the text are freed: heap in use (malloc's own count, chunk
// overhead included) and the usable size of what operator new handed out, each over the file size.
void ReportHeap(benchmark::State& state) {
    Ruvex::CountedPtr<Ruvex::Element> warm(LoadCity());  // first-use tables and caches are not the tree's
    warm.Reset();
    const struct mallinfo2 before = mallinfo2();
    g_liveBytes = 0;
    g_counting = true;
    Ruvex::CountedPtr<Ruvex::Element> root(LoadCity());
    g_counting = false;
    const struct mallinfo2 after = mallinfo2();
    const double heap = static_cast<double>(after.uordblks + after.hblkhd) -
                        static_cast<double>(before.uordblks + before.hblkhd);
    state.counters["heap_mb"] = heap / (1 << 20);
    state.counters["heap_vs_file"] = heap / City().bytes;
    state.counters["new_bytes_vs_file"] = static_cast<double>(g_liveBytes.load()) / City().bytes;
    root.Reset();
}

// With no factory installed: the element layer's data classes.
void ElementLoad(benchmark::State& state) {
    Orvia::Close();
    TimeLoads(state, false);
    ReportFile(state);
}

// With the library's factory: its runtime classes (for information; post-load work is not included).
void ElementLoadLibraryFactory(benchmark::State& state) {
    Orvia::Init(Ruvex::Encoding::UTF8);
    TimeLoads(state, false);
    Orvia::Close();
}

void ElementHeap(benchmark::State& state) {
    Orvia::Close();
    for (auto _ : state)
        ReportHeap(state);
    ReportFile(state);
}

void ElementHeapLibraryFactory(benchmark::State& state) {
    Orvia::Init(Ruvex::Encoding::UTF8);
    for (auto _ : state)
        ReportHeap(state);
    Orvia::Close();
}

void PugixmlSave(benchmark::State& state) {
    std::vector<double> runs;
    for (auto _ : state) {
        runs.push_back(PugixmlSaveSeconds(PugixmlDocument()));
        state.SetIterationTime(runs.back());
    }
    state.SetBytesProcessed(static_cast<int64_t>(City().bytes * static_cast<double>(state.iterations())));
    state.counters["median_ms"] = 1e3 * Median(runs);
}

// As for loads: the floor in its own loop, or with `turns` a save of the floor before each.
void TimeSaves(benchmark::State& state, bool turns) {
    Orvia::Close();
    const double floor = turns ? 0.0 : SaveFloor();
    Ruvex::CountedPtr<Ruvex::Element> root(LoadCity());
    if (!root) {
        state.SkipWithError("the city did not load");
        return;
    }
    PugixmlSaveSeconds(PugixmlDocument());
    benchmark::DoNotOptimize(Ruvex::SaveToString(root.Get()).size());  // warm
    std::vector<double> runs;
    std::vector<double> floors;
    for (auto _ : state) {
        if (turns) {
            state.PauseTiming();
            floors.push_back(PugixmlSaveSeconds(PugixmlDocument()));
            state.ResumeTiming();
        }
        const double start = CpuNow();
        std::string text = Ruvex::SaveToString(root.Get());
        runs.push_back(CpuNow() - start);
        state.SetIterationTime(runs.back());
        if (text.empty()) {
            state.SkipWithError("the city did not save");
            return;
        }
        state.PauseTiming();
        text = std::string();
        state.ResumeTiming();
    }
    ReportRatio(state, runs, turns ? Median(floors) : floor, turns);
}

void ElementSave(benchmark::State& state) {
    TimeSaves(state, false);
}

void ElementLoadNoPageFaults(benchmark::State& state) {
    KeepMemory();
    Orvia::Close();
    TimeLoads(state, true);
}

void ElementSaveNoPageFaults(benchmark::State& state) {
    KeepMemory();
    TimeSaves(state, true);
}

}  // namespace

BENCHMARK(PugixmlParse)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);
BENCHMARK(ElementLoad)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);
BENCHMARK(ElementLoadLibraryFactory)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);
BENCHMARK(PugixmlSave)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);
BENCHMARK(ElementSave)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);
BENCHMARK(ElementHeap)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(ElementHeapLibraryFactory)->Unit(benchmark::kMillisecond)->Iterations(1);
// Last: they change how malloc keeps memory for the rest of the process.
BENCHMARK(ElementLoadNoPageFaults)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);
BENCHMARK(ElementSaveNoPageFaults)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

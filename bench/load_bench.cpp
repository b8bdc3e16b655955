// Loading whole networks (parse, object tree, post-load) against a floor: pugixml parsing the same file into
// its own DOM with the options the loader asks for, measured in the same run and the same regime.
//
// Shapes: "city", the synthetic city of network_generator.h (a few large sub-networks over few dictionaries);
// "districts", the sub-networks of examples/city_centre.xml repeated under new names (many small
// sub-networks, each with its own materials, grounds, markings, profiles and lanes); and two naming shapes,
// 8,000 sub-networks without a name and 8,000 tracks all named "T".
//
// Regimes: "fresh" runs each load in a process of its own (this program run again with --measure), so that
// the first use of everything and the page faults of a heap that grows are paid on both sides; "warm" runs
// both sides taking turns in this process. Times are CPU time of the process around the load (kernel time of
// page faults included), median of the runs. "heap" is what the heap holds after the load, the loaded object
// kept, against the file's size.

#include "network_generator.h"

#include <orvia/core/network.h>
#include <orvia/topology/sub_network.h>

#include <malloc.h>
#include <unistd.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kRuns = 5;
constexpr size_t kMinimumBytes = 50u << 20;
constexpr size_t kNamingCount = 8000;

double CpuNow() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

size_t HeapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : 0.5 * (values[n / 2 - 1] + values[n / 2]);
}

struct Sample {
    double seconds = -1;  // negative: the load failed
    double heapBytes = 0;
};

// One load by `side` ("pugixml" or "orvia"); the loaded object is kept until the heap is read.
Sample MeasureOnce(const std::string& side, const std::string& path) {
    Sample sample;
    const size_t heapBefore = HeapInUse();
    if (side == "pugixml") {
        auto document = std::make_unique<pugi::xml_document>();
        const double start = CpuNow();
        const pugi::xml_parse_result result = document->load_file(path.c_str(), pugi::parse_full);
        const double seconds = CpuNow() - start;
        if (result) sample.seconds = seconds;
        sample.heapBytes = static_cast<double>(HeapInUse() - heapBefore);
    } else {
        const double start = CpuNow();
        Ruvex::CountedPtr<Orvia::Network> network(Orvia::Network::Load(path.c_str(), {}));
        const double seconds = CpuNow() - start;
        if (network) sample.seconds = seconds;
        sample.heapBytes = static_cast<double>(HeapInUse() - heapBefore);
    }
    return sample;
}

std::string SelfPath() {
    std::vector<char> buffer(4096);
    const ssize_t n = readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
    return n > 0 ? std::string(buffer.data(), static_cast<size_t>(n)) : std::string("load_bench");
}

// The same load in a process of its own.
Sample MeasureFresh(const std::string& side, const std::string& path) {
    const std::string command = "'" + SelfPath() + "' --measure " + side + " '" + path + "'";
    Sample sample;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return sample;
    if (std::fscanf(pipe, "%lf %lf", &sample.seconds, &sample.heapBytes) != 2) sample.seconds = -1;
    if (pclose(pipe) != 0) sample.seconds = -1;
    return sample;
}

struct Result {
    double pugixml = 0;
    double orvia = 0;
    double orviaHeap = 0;
    bool ok = true;
};

// Median times of `runs` loads on each side, taking turns; `fresh` runs each in a new process.
Result Measure(const std::string& path, int runs, bool fresh) {
    std::vector<double> floor, load, heap;
    Result result;
    if (!fresh) {
        // One untimed load of each first: the warm regime leaves first-use costs out on both sides.
        MeasureOnce("pugixml", path);
        MeasureOnce("orvia", path);
    }
    for (int i = 0; i < runs; ++i) {
        const Sample f = fresh ? MeasureFresh("pugixml", path) : MeasureOnce("pugixml", path);
        const Sample l = fresh ? MeasureFresh("orvia", path) : MeasureOnce("orvia", path);
        result.ok = result.ok && f.seconds >= 0 && l.seconds >= 0;
        floor.push_back(f.seconds);
        load.push_back(l.seconds);
        heap.push_back(l.heapBytes);
    }
    result.pugixml = Median(floor);
    result.orvia = Median(load);
    result.orviaHeap = Median(heap);
    return result;
}

std::string TempPath(const std::string& name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

// The district city, written on first use (the name carries the generator's revision).
std::string DistrictsPath() {
    const std::string path = TempPath("orvia_bench_districts_1.xml");
    std::error_code error;
    if (std::filesystem::file_size(path, error) < kMinimumBytes || error)
        OrviaBench::GenerateDistrictNetwork(path, std::string(ORVIA_EXAMPLES_DIR) + "/city_centre.xml",
                                            kMinimumBytes);
    return path;
}

std::string WriteText(const std::string& name, const std::string& text) {
    const std::string path = TempPath(name);
    FILE* file = std::fopen(path.c_str(), "wb");
    if (file) {
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
    }
    return path;
}

void Report(const char* shape, const std::string& path, int runs, bool warmToo) {
    std::error_code error;
    const double bytes = static_cast<double>(std::filesystem::file_size(path, error));
    const Result fresh = Measure(path, runs, true);
    std::printf("%-10s %8.1f  fresh %8.1f %8.1f %6.2f", shape, bytes / (1 << 20), 1e3 * fresh.pugixml,
                1e3 * fresh.orvia, fresh.orvia / fresh.pugixml);
    if (warmToo) {
        const Result warm = Measure(path, runs, false);
        std::printf("  warm %8.1f %8.1f %6.2f", 1e3 * warm.pugixml, 1e3 * warm.orvia,
                    warm.orvia / warm.pugixml);
        if (!warm.ok) std::printf("  LOAD FAILED");
    }
    std::printf("  heap %7.1f %5.2f%s\n", fresh.orviaHeap / (1 << 20), fresh.orviaHeap / bytes,
                fresh.ok ? "" : "  LOAD FAILED");
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--measure") == 0) {
        const Sample sample = MeasureOnce(argv[2], argv[3]);
        std::printf("%.9f %.0f\n", sample.seconds, sample.heapBytes);
        return sample.seconds < 0 ? 1 : 0;
    }
    std::printf(
        "Network::Load against pugixml on the same file: CPU ms, median of %d runs; targets: ratio <= 2 "
        "fresh, <= 4 warm, heap <= 2x the file\n",
        kRuns);
    std::printf("%-10s %8s  %5s %8s %8s %6s  %4s %8s %8s %6s  %4s %7s %5s\n", "shape", "file MB", "",
                "pugixml", "Load", "ratio", "", "pugixml", "Load", "ratio", "", "MB", "/file");
    Report("city", OrviaBench::BenchCityPath(), kRuns, true);
    Report("districts", DistrictsPath(), kRuns, true);
    // Naming: the names to make unique are all the work there is; warm adds nothing.
    Report("unnamed", WriteText("orvia_bench_unnamed.xml", OrviaBench::UnnamedSubNetworksText(kNamingCount)),
           3, false);
    Report("same-name", WriteText("orvia_bench_same_name.xml", OrviaBench::SameNameTracksText(kNamingCount)),
           3, false);
    return 0;
}

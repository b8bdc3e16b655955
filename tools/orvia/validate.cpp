#include "commands.h"

#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/sub_network.h>
#include <orvia/traffic/traffic_light.h>

#include <algorithm>
#include <cstdio>

namespace OrviaTool {

namespace {

// What a check looks at: a network, or the root of a document that holds something else (a profile
// library, a rail network). Exactly one of the two is set.
struct Document {
    const Orvia::Network* network = nullptr;
    const Ruvex::Element* root = nullptr;
};

using Problems = std::vector<Ruvex::Problem>;
using Check = void (*)(const Document&, Problems&);

template <class Problem>
void Add(const Problem& problem, Problems& problems) {
    problems.push_back({std::string(), problem.line, problem.column, problem.message, false});
}

void CheckProfileList(const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::ProfileElement>>& profiles,
                      Problems& problems) {
    for (const auto& item : profiles)
        if (const auto* profile = dynamic_cast<const Orvia::Profile*>(item.Get()))
            for (const Orvia::ProfileProblem& problem : profile->CheckStructure())
                Add(problem, problems);
}

void ProfileStructure(const Document& document, Problems& problems) {
    if (const auto* library = dynamic_cast<const Orvia::ProfileStandalone*>(document.root))
        CheckProfileList(library->GetProfiles(), problems);
    if (!document.network) return;
    for (size_t i = 0; i < document.network->GetSubNetworkCount(); ++i)
        if (const Orvia::SubNetwork* subNetwork = document.network->GetSubNetwork(i))
            CheckProfileList(subNetwork->GetProfiles(), problems);
}

void TrafficLightGroups(const Document& document, Problems& problems) {
    if (!document.network) return;
    for (size_t i = 0; i < document.network->GetSubNetworkCount(); ++i) {
        const Orvia::SubNetwork* subNetwork = document.network->GetSubNetwork(i);
        if (!subNetwork) continue;
        for (size_t g = 0; g < subNetwork->GetTrafficLightGroupCount(); ++g)
            if (const Orvia::TrafficLightGroup* group = subNetwork->GetTrafficLightGroup(g))
                for (const Orvia::TrafficLightProblem& problem : group->GetProblems())
                    Add(problem, problems);
    }
}

void Intersections(const Document& document, Problems& problems) {
    if (!document.network) return;
    for (size_t i = 0; i < document.network->GetSubNetworkCount(); ++i) {
        const Orvia::SubNetwork* subNetwork = document.network->GetSubNetwork(i);
        if (!subNetwork) continue;
        for (size_t k = 0; k < subNetwork->GetIntersectionCount(); ++k)
            if (const Orvia::Intersection* intersection = subNetwork->GetIntersectionByIndex(k))
                for (const Orvia::IntersectionProblem& problem : intersection->CheckReferences())
                    Add(problem, problems);
    }
}

// Every check of a loaded document; a subsystem that learns to find problems adds its check here. What the
// load itself reports (values that do not parse, rail names that resolve to nothing) needs no check: it is
// collected before these run.
constexpr Check kChecks[] = {ProfileStructure, TrafficLightGroups, Intersections};

// The document's root with its runtime classes resolved: a network is post-loaded, a profile library has
// its profiles built. False (after printing why) when the file holds nothing that loads.
bool LoadDocument(const std::string& file, Ruvex::CountedPtr<Ruvex::Element>& root, Problems& problems) {
    Orvia::Init(Ruvex::Encoding::GetMode());
    if (Orvia::Network* network = Orvia::Network::Load(file.c_str(), {})) {
        root = network;
        problems = Ruvex::GetLastProblems();
        return true;
    }
    for (const Ruvex::Problem& problem : Ruvex::GetLastProblems())
        if (!problem.warning) return Fail(file, "the file cannot be read") == 0;
    root = Ruvex::Load(file.c_str(), false);
    if (!root) return Fail(file, "the file cannot be read") == 0;
    problems = Ruvex::GetLastProblems();
    if (dynamic_cast<Ruvex::ProfileStandaloneElement*>(root.Get())) {
        // Its profiles are built by the library's own load, which reports the same load problems again.
        root = Orvia::ProfileStandalone::Load(file.c_str());
        if (!root) return Fail(file, "the profile library cannot be read") == 0;
    }
    return true;
}

void PrintJson(const std::string& file, const Problems& problems) {
    std::string out = "{\"file\": " + JsonQuoted(file) + ", \"problems\": [";
    for (size_t i = 0; i < problems.size(); ++i)
        out += (i ? ", " : "") + std::string("{\"line\": ") + std::to_string(problems[i].line) +
               ", \"column\": " + std::to_string(problems[i].column) +
               ", \"message\": " + JsonQuoted(problems[i].message) + "}";
    std::printf("%s]}\n", out.c_str());
}

}  // namespace

int RunValidate(const ValidateOptions& options) {
    Ruvex::CountedPtr<Ruvex::Element> root;
    Problems problems;
    if (!LoadDocument(options.file, root, problems)) return 1;
    Document document;
    document.network = dynamic_cast<const Orvia::Network*>(root.Get());
    if (!document.network) document.root = root.Get();
    for (Check check : kChecks)
        check(document, problems);

    // In document order, whichever check found them.
    for (Ruvex::Problem& problem : problems) {
        problem.file = options.file;
        problem.warning = false;  // a problem of the description, not of this run
    }
    std::stable_sort(problems.begin(), problems.end(), [](const Ruvex::Problem& a, const Ruvex::Problem& b) {
        return a.line != b.line ? a.line < b.line : a.column < b.column;
    });
    if (options.json) {
        PrintJson(options.file, problems);
    } else {
        for (const Ruvex::Problem& problem : problems)
            std::printf("%s\n", Printable(Ruvex::ToString(problem)).c_str());
    }
    return problems.empty() ? 0 : 1;
}

}  // namespace OrviaTool

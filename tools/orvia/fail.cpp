#include "commands.h"

#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>

#include <cstdio>

namespace OrviaTool {

int Fail(const std::string& file, const std::string& fallback) {
    // The first error says what stopped the load; warnings before it only say what was overlooked.
    std::string line = file + ": " + fallback;
    for (const Ruvex::Problem& problem : Ruvex::GetLastProblems()) {
        if (problem.warning) continue;
        line = Ruvex::ToString(problem);
        break;
    }
    std::fprintf(stderr, "%s\n", line.c_str());
    return 1;
}

int LoadNetwork(const std::string& file, Ruvex::CountedPtr<Orvia::Network>& network) {
    network = Orvia::Network::Load(file.c_str(), {});
    if (!network) return Fail(file, "the file holds no network");
    const std::vector<Ruvex::Problem>& problems = Ruvex::GetLastProblems();
    if (problems.empty()) return 0;
    for (const Ruvex::Problem& problem : problems)
        std::fprintf(stderr, "%s\n", Ruvex::ToString(problem).c_str());
    network = nullptr;
    return 1;
}

}  // namespace OrviaTool

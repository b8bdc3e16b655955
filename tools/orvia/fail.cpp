#include "commands.h"

#include <orvia/ruvex/factory.h>

#include <cstdio>

namespace OrviaTool {

int Fail(const std::string& file, const std::string& fallback) {
    const std::vector<Ruvex::Problem>& problems = Ruvex::GetLastProblems();
    const std::string line = problems.empty() ? file + ": " + fallback : Ruvex::ToString(problems.front());
    std::fprintf(stderr, "%s\n", line.c_str());
    return 1;
}

}  // namespace OrviaTool

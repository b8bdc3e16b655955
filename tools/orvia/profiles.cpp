#include "commands.h"

#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/sub_network.h>

#include <charconv>
#include <cstdio>

namespace OrviaTool {

namespace {

struct Group {
    std::string name;  // the sub-network's; empty for a profile library
    std::vector<const Orvia::Profile*> profiles;
};

std::string Number(double value) {
    char buffer[32];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return error == std::errc() ? std::string(buffer, end) : std::string("0");
}

std::string MarkingOf(const Orvia::LaneBorder* border) {
    return border ? border->GetMarkingName() : std::string();
}

std::string Text(const std::string& name) {
    return name.empty() ? "-" : name;
}

// A border the lane lacks reads as "-" in text and null in JSON.
std::string Distance(const Orvia::LaneBorder* border, bool json) {
    if (!border) return json ? "null" : "-";
    return Number(border->GetHorizDistToAxis());
}

void PrintText(const std::vector<Group>& groups) {
    for (const Group& group : groups) {
        if (group.name.empty())
            std::printf("profile library\n");
        else
            std::printf("sub-network %s\n", Printable(group.name).c_str());
        for (const Orvia::Profile* profile : group.profiles) {
            std::printf("  profile %s (road type %s, %zu lanes, %zu borders)\n",
                        Printable(profile->GetName()).c_str(), Printable(profile->GetRoadTypeText()).c_str(),
                        profile->GetLaneCount(), profile->GetLaneBorderCount());
            for (size_t i = 0; i < profile->GetLaneCount(); ++i) {
                const Orvia::Lane* lane = profile->GetLane(i);
                if (!lane) continue;
                const Orvia::LaneBorder* left = lane->GetLeftKey();
                const Orvia::LaneBorder* right = lane->GetRightKey();
                std::printf("    %zu %s: type %s, way %s, left %s, right %s, markings %s | %s\n", i,
                            Printable(lane->GetName()).c_str(), Printable(lane->GetLaneTypeText()).c_str(),
                            Printable(lane->GetCirculationWayText()).c_str(), Distance(left, false).c_str(),
                            Distance(right, false).c_str(), Printable(Text(MarkingOf(left))).c_str(),
                            Printable(Text(MarkingOf(right))).c_str());
            }
        }
    }
}

void PrintJson(const std::string& file, const std::vector<Group>& groups,
               const std::vector<Ruvex::Problem>& problems) {
    std::string out = "{\"file\": " + JsonQuoted(file) + ", \"subNetworks\": [";
    for (size_t g = 0; g < groups.size(); ++g) {
        out +=
            (g ? ", " : "") + std::string("{\"name\": ") + JsonQuoted(groups[g].name) + ", \"profiles\": [";
        for (size_t p = 0; p < groups[g].profiles.size(); ++p) {
            const Orvia::Profile* profile = groups[g].profiles[p];
            out += (p ? ", " : "") + std::string("{\"name\": ") + JsonQuoted(profile->GetName()) +
                   ", \"roadType\": " + JsonQuoted(profile->GetRoadTypeText()) +
                   ", \"borders\": " + std::to_string(profile->GetLaneBorderCount()) + ", \"lanes\": [";
            bool first = true;
            for (size_t i = 0; i < profile->GetLaneCount(); ++i) {
                const Orvia::Lane* lane = profile->GetLane(i);
                if (!lane) continue;
                const Orvia::LaneBorder* left = lane->GetLeftKey();
                const Orvia::LaneBorder* right = lane->GetRightKey();
                out += (first ? "" : ", ") + std::string("{\"name\": ") + JsonQuoted(lane->GetName()) +
                       ", \"type\": " + JsonQuoted(lane->GetLaneTypeText()) +
                       ", \"way\": " + JsonQuoted(lane->GetCirculationWayText()) +
                       ", \"left\": " + Distance(left, true) + ", \"right\": " + Distance(right, true) +
                       ", \"leftMarking\": " + JsonQuoted(MarkingOf(left)) +
                       ", \"rightMarking\": " + JsonQuoted(MarkingOf(right)) + "}";
                first = false;
            }
            out += "]}";
        }
        out += "]}";
    }
    out += "], \"problems\": [";
    for (size_t i = 0; i < problems.size(); ++i)
        out += (i ? ", " : "") + std::string("{\"line\": ") + std::to_string(problems[i].line) +
               ", \"column\": " + std::to_string(problems[i].column) +
               ", \"message\": " + JsonQuoted(problems[i].message) + "}";
    std::printf("%s]}\n", out.c_str());
}

void AddProfiles(const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::ProfileElement>>& list, Group& group) {
    for (const auto& item : list)
        if (const auto* profile = dynamic_cast<const Orvia::Profile*>(item.Get()))
            group.profiles.push_back(profile);
}

}  // namespace

int RunProfiles(const ProfilesOptions& options) {
    Orvia::Init(Ruvex::Encoding::GetMode());
    Ruvex::CountedPtr<Orvia::Network> network(Orvia::Network::Load(options.file.c_str(), {}));
    Ruvex::CountedPtr<Orvia::ProfileStandalone> library;
    if (!network) {
        for (const Ruvex::Problem& problem : Ruvex::GetLastProblems())
            if (!problem.warning) return Fail(options.file, "the file holds no network");
        library = Orvia::ProfileStandalone::Load(options.file.c_str());
        if (!library) return Fail(options.file, "the file holds no network and no profile library");
    }
    // What the load overlooked (texts outside their tables) comes first, then the structure of each profile.
    std::vector<Ruvex::Problem> problems = Ruvex::GetLastProblems();
    std::vector<Group> groups;
    if (network) {
        for (size_t i = 0; i < network->GetSubNetworkCount(); ++i)
            if (const Orvia::SubNetwork* subNetwork = network->GetSubNetwork(i)) {
                groups.push_back({subNetwork->GetName(), {}});
                AddProfiles(subNetwork->GetProfiles(), groups.back());
            }
    } else {
        groups.push_back({std::string(), {}});
        AddProfiles(library->GetProfiles(), groups.back());
    }
    for (const Group& group : groups)
        for (const Orvia::Profile* profile : group.profiles)
            for (const Orvia::ProfileProblem& problem : profile->CheckStructure())
                problems.push_back({options.file, problem.line, problem.column, problem.message, true});

    if (options.json)
        PrintJson(options.file, groups, problems);
    else
        PrintText(groups);
    return ReportProblems(options.file, problems);
}

}  // namespace OrviaTool

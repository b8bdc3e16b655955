#include "commands.h"

#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/sub_network.h>
#include <orvia/traffic/road_sign.h>
#include <orvia/traffic/traffic_light.h>

#include <charconv>
#include <cmath>
#include <cstdio>

namespace OrviaTool {

namespace {

// More samples than anyone plots: a step far too small for the range is a mistake, not a request.
constexpr double kMaxSamples = 1e6;

std::string Number(double value) {
    if (!std::isfinite(value)) return "null";
    char buffer[32];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return error == std::errc() ? std::string(buffer, end) : std::string("0");
}

struct Selected {
    const Orvia::SubNetwork* subNetwork;
    Orvia::TrafficLightGroup* group;
};

// Time from the animation time until the light's red status next changes; NaN without a state.
double TimeToRedChange(const Orvia::TrafficLightAnimation& animation, double animationTime) {
    const size_t index = animation.GetStateIndexForTime(animationTime);
    const Orvia::TrafficLightState* state = animation.GetState(index);
    if (!state || !std::isfinite(animationTime)) return std::nan("");
    return state->GetEndTime() - animationTime + state->GetTimeToRedChange();
}

// One light group at the time it was last animated, as JSON.
std::string GroupJson(const Selected& selected) {
    const Orvia::TrafficLightGroup& group = *selected.group;
    const double t = group.GetAnimationTime();
    std::string out = "{\"subNetwork\": " + JsonQuoted(selected.subNetwork->GetName()) +
                      ", \"group\": " + JsonQuoted(group.GetName()) +
                      ", \"cycle\": " + JsonQuoted(group.GetCurrentCycle()) +
                      ", \"period\": " + Number(group.GetCurrentCyclePeriod()) +
                      ", \"time\": " + Number(group.GetTime()) + ", \"animationTime\": " + Number(t) +
                      ", \"signs\": [";
    bool firstSign = true;
    for (size_t a = 0; a < group.GetAnimationCount(); ++a) {
        const Orvia::TrafficLightAnimation* animation = group.GetAnimation(a);
        if (animation->GetCycleName() != group.GetCurrentCycle()) continue;
        const size_t state = animation->GetStateIndexForTime(t);
        out +=
            (firstSign ? "" : ", ") + std::string("{\"sign\": ") + JsonQuoted(animation->GetRoadSignName()) +
            ", \"state\": " + (state == Orvia::TrafficLightAnimation::npos ? "null" : std::to_string(state)) +
            ", \"timeToRedChange\": " + Number(TimeToRedChange(*animation, t)) + ", \"lights\": [";
        firstSign = false;
        for (size_t k = 0; k < animation->GetLightCount(); ++k) {
            const Orvia::Light* light = animation->GetLight(k);
            const Orvia::Timer* timer = light->GetTimer();
            out += (k ? ", " : "") + std::string("{\"name\": ") + JsonQuoted(light->GetName()) +
                   ", \"color\": " + JsonQuoted(Orvia::Light::ToText(light->Color())) +
                   ", \"illumination\": " + JsonQuoted(Orvia::Light::ToText(light->Illumination())) +
                   ", \"timer\": " + (timer ? JsonQuoted(timer->GetTextValue()) : "null") + "}";
        }
        out += "]}";
    }
    return out + "]}";
}

void PrintGroupText(const Selected& selected) {
    const Orvia::TrafficLightGroup& group = *selected.group;
    const double t = group.GetAnimationTime();
    std::printf("%s / %s: cycle %s, period %s, time %s, animation time %s\n",
                Printable(selected.subNetwork->GetName()).c_str(), Printable(group.GetName()).c_str(),
                Printable(group.GetCurrentCycle()).c_str(), Number(group.GetCurrentCyclePeriod()).c_str(),
                Number(group.GetTime()).c_str(), Number(t).c_str());
    for (size_t a = 0; a < group.GetAnimationCount(); ++a) {
        const Orvia::TrafficLightAnimation* animation = group.GetAnimation(a);
        if (animation->GetCycleName() != group.GetCurrentCycle()) continue;
        const size_t state = animation->GetStateIndexForTime(t);
        std::printf("  %s: state %s of %zu, time to red change %s\n",
                    Printable(animation->GetRoadSignName()).c_str(),
                    state == Orvia::TrafficLightAnimation::npos ? "-" : std::to_string(state).c_str(),
                    animation->GetStateCount(), Number(TimeToRedChange(*animation, t)).c_str());
        for (size_t k = 0; k < animation->GetLightCount(); ++k) {
            const Orvia::Light* light = animation->GetLight(k);
            const Orvia::Timer* timer = light->GetTimer();
            std::printf("    %s %s %s timer %s\n", Printable(light->GetName()).c_str(),
                        Orvia::Light::ToText(light->Color()), Orvia::Light::ToText(light->Illumination()),
                        timer ? Printable(timer->GetTextValue()).c_str() : "-");
        }
    }
}

// One line per (time, sign): what a plot needs, with a header naming the columns.
void PrintTimelineRow(double time, const Selected& selected) {
    const Orvia::TrafficLightGroup& group = *selected.group;
    const double t = group.GetAnimationTime();
    for (size_t a = 0; a < group.GetAnimationCount(); ++a) {
        const Orvia::TrafficLightAnimation* animation = group.GetAnimation(a);
        if (animation->GetCycleName() != group.GetCurrentCycle()) continue;
        const size_t state = animation->GetStateIndexForTime(t);
        std::printf("%s\t%s\t%s\t%s\t%s\t", Number(time).c_str(), Printable(group.GetName()).c_str(),
                    Printable(animation->GetRoadSignName()).c_str(),
                    state == Orvia::TrafficLightAnimation::npos ? "-" : std::to_string(state).c_str(),
                    Number(TimeToRedChange(*animation, t)).c_str());
        for (size_t k = 0; k < animation->GetLightCount(); ++k) {
            const Orvia::Light* light = animation->GetLight(k);
            std::printf("%s%s=%s", k ? "," : "", Orvia::Light::ToText(light->Color()),
                        Orvia::Light::ToText(light->Illumination()));
        }
        std::printf("\n");
    }
}

}  // namespace

int RunLights(const LightsOptions& options) {
    const bool timeline = options.from.has_value();
    if (timeline && !(options.step > 0.0 && std::isfinite(options.step) && options.to >= *options.from &&
                      (options.to - *options.from) / options.step < kMaxSamples)) {
        std::fprintf(stderr, "%s: --step must be positive and --to not before --from (at most %g samples)\n",
                     Printable(options.file).c_str(), kMaxSamples);
        return 1;
    }
    Orvia::Init(Ruvex::Encoding::GetMode());
    Ruvex::CountedPtr<Orvia::Network> network(Orvia::Network::Load(options.file.c_str(), {}));
    if (!network) return Fail(options.file, "the file holds no network");
    std::vector<Ruvex::Problem> problems = Ruvex::GetLastProblems();

    std::vector<Selected> selected;
    for (size_t i = 0; i < network->GetSubNetworkCount(); ++i) {
        const Orvia::SubNetwork* subNetwork = network->GetSubNetwork(i);
        if (!subNetwork) continue;
        for (size_t g = 0; g < subNetwork->GetTrafficLightGroupCount(); ++g) {
            Orvia::TrafficLightGroup* group = subNetwork->GetTrafficLightGroup(g);
            if (!group) continue;
            for (const Orvia::TrafficLightProblem& problem : group->GetProblems())
                problems.push_back({options.file, problem.line, problem.column, problem.message, true});
            if (options.group.empty() || group->GetName() == options.group)
                selected.push_back({subNetwork, group});
        }
    }
    if (!options.group.empty() && selected.empty())
        return Fail(options.file, "no traffic light group named \"" + options.group + "\"");

    if (!timeline) {
        std::string json =
            "{\"file\": " + JsonQuoted(options.file) + ", \"at\": " + Number(options.at) + ", \"groups\": [";
        for (size_t i = 0; i < selected.size(); ++i) {
            selected[i].group->Animate(options.at);
            if (options.json)
                json += (i ? ", " : "") + GroupJson(selected[i]);
            else
                PrintGroupText(selected[i]);
        }
        if (options.json) std::printf("%s]}\n", json.c_str());
    } else {
        const double from = *options.from;
        const auto steps = static_cast<long long>(std::floor((options.to - from) / options.step + 1e-9));
        if (options.json)
            std::printf("{\"file\": %s, \"samples\": [", JsonQuoted(options.file).c_str());
        else
            std::printf("time\tgroup\tsign\tstate\ttimeToRedChange\tlights\n");
        bool first = true;
        for (long long i = 0; i <= steps; ++i) {
            const double time = from + static_cast<double>(i) * options.step;
            for (const Selected& item : selected) {
                item.group->Animate(time);
                if (options.json) {
                    std::printf("%s%s", first ? "" : ", ", GroupJson(item).c_str());
                    first = false;
                } else {
                    PrintTimelineRow(time, item);
                }
            }
        }
        if (options.json) std::printf("]}\n");
    }
    return ReportProblems(options.file, problems);
}

}  // namespace OrviaTool

// orvia query: the 3D frame of a track at (s, t), or sampled along the whole track.

#include "commands.h"

#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/counted.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace OrviaTool {

namespace {

// Names this close (edits) to the asked one are offered; more than this many are not.
constexpr size_t kMaxSuggestions = 5;

size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

struct Sample {
    double s = 0;
    vek::Mark mark;
    std::string lane;
    size_t portion = Orvia::Track::npos;
};

Sample Query(const Orvia::Track& track, double s, double t, bool& ok) {
    Sample sample;
    sample.s = s;
    ok = track.GetMark(sample.mark, s, t);
    sample.portion = track.GetPortionIndexAt(s);
    if (const Orvia::Portion* portion = track.GetPortion(sample.portion)) {
        const double r = portion->ConvertToZeroOneCoeff(s);
        // The lane of the profile the point is nearer to.
        const Orvia::Profile* profile = r < 0.5 ? portion->GetStartProfile() : portion->GetEndProfile();
        if (const Orvia::Lane* lane = profile ? profile->GetLaneWithDistance(t) : nullptr)
            sample.lane = lane->GetName();
    }
    return sample;
}

void Print(const Sample& sample, double t, bool json, bool first) {
    const vek::Mark& m = sample.mark;
    if (json) {
        std::printf(
            "%s{\"s\": %.17g, \"t\": %.17g, \"x\": %.17g, \"y\": %.17g, \"z\": %.17g, \"heading\": %.17g, "
            "\"pitch\": %.17g, \"roll\": %.17g, \"lane\": %s, \"portion\": ",
            first ? "" : ", ", sample.s, t, m.position.x, m.position.y, m.position.z, m.yaw, m.pitch, m.roll,
            sample.lane.empty() ? "null" : JsonQuoted(sample.lane).c_str());
        if (sample.portion == Orvia::Track::npos)
            std::printf("null}");
        else
            std::printf("%zu}", sample.portion);
        return;
    }
    std::printf(
        "s %.6f  t %.6f  x %.6f  y %.6f  z %.6f  heading %.9f  pitch %.9f  roll %.9f  lane %s  portion ",
        sample.s, t, m.position.x, m.position.y, m.position.z, m.yaw, m.pitch, m.roll,
        sample.lane.empty() ? "-" : Printable(sample.lane).c_str());
    if (sample.portion == Orvia::Track::npos)
        std::printf("-\n");
    else
        std::printf("%zu\n", sample.portion);
}

}  // namespace

int RunQuery(const QueryOptions& options) {
    Ruvex::CountedPtr<Orvia::Network> network;
    if (int code = LoadNetwork(options.file, network)) return code;
    const Orvia::Track* track = nullptr;
    std::vector<std::pair<size_t, std::string>> known;
    for (size_t i = 0; network && i < network->GetSubNetworkCount() && !track; ++i) {
        const Orvia::SubNetwork* subNetwork = network->GetSubNetwork(i);
        if (!subNetwork) continue;
        track = subNetwork->GetTrackByName(options.track);
        for (size_t k = 0; !track && k < subNetwork->GetTrackCount(); ++k)
            if (const Orvia::Track* other = subNetwork->GetTrack(k))
                known.emplace_back(EditDistance(options.track, other->GetName()), other->GetName());
    }
    if (!track) {
        std::fprintf(stderr, "%s: no track named %s", Printable(options.file).c_str(),
                     Printable(options.track).c_str());
        std::stable_sort(known.begin(), known.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        if (!known.empty()) std::fprintf(stderr, "; closest:");
        for (size_t i = 0; i < known.size() && i < kMaxSuggestions; ++i)
            std::fprintf(stderr, "%s %s", i ? "," : "", Printable(known[i].second).c_str());
        std::fprintf(stderr, "\n");
        return 1;
    }
    if (!std::isfinite(options.s) || !std::isfinite(options.t) || !(options.step >= 0) ||
        !std::isfinite(options.step)) {
        std::fprintf(stderr, "%s: s, t and step must be finite numbers, step not negative\n",
                     Printable(options.file).c_str());
        return 1;
    }
    std::vector<double> abscissas;
    if (options.step > 0) {
        const double length = track->GetXYLength();
        const auto count = static_cast<size_t>(std::floor(length / options.step));
        for (size_t i = 0; i <= count; ++i)
            abscissas.push_back(static_cast<double>(i) * options.step);
        if (abscissas.back() < length) abscissas.push_back(length);
    } else {
        abscissas.push_back(options.s);
    }
    if (options.json) std::printf("{\"track\": %s, \"samples\": [", JsonQuoted(track->GetName()).c_str());
    bool first = true;
    for (double s : abscissas) {
        bool ok = false;
        const Sample sample = Query(*track, s, options.t, ok);
        if (!ok) {
            if (options.json) std::printf("]}\n");
            std::fprintf(stderr, "%s: track %s has no horizontal curve to query\n",
                         Printable(options.file).c_str(), Printable(track->GetName()).c_str());
            return 1;
        }
        Print(sample, options.t, options.json, first);
        first = false;
    }
    if (options.json) std::printf("]}\n");
    return 0;
}

}  // namespace OrviaTool

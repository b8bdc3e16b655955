#include "commands.h"

#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/intersection_links.h>
#include <orvia/topology/lane_key.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <charconv>
#include <cmath>
#include <cstdio>

namespace OrviaTool {

namespace {

std::string Number(double value) {
    if (!std::isfinite(value)) return "null";
    char buffer[32];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return error == std::errc() ? std::string(buffer, end) : std::string("0");
}

const char* Extremity(bool atEnd) {
    return atEnd ? "end" : "start";
}

std::string LaneText(const Orvia::LaneOnIntersectionData& lane) {
    return Printable(lane.trackName) + " " + Extremity(lane.atTrackEnd) + " " + Printable(lane.laneName);
}

std::string LaneJson(const Orvia::LaneOnIntersectionData& lane) {
    return "{\"track\": " + JsonQuoted(lane.trackName) + ", \"extremity\": \"" + Extremity(lane.atTrackEnd) +
           "\", \"lane\": " + JsonQuoted(lane.laneName) + "}";
}

// One lane pair of a link: kind, ends, the length of its way (null without one) and the link's name.
struct Row {
    const Orvia::Link* link;
    Orvia::LaneOnIntersectionData from, to;
    const Orvia::LinkTrajectory* trajectory;
};

std::string RowJson(const Row& row) {
    const bool way = row.trajectory && row.trajectory->GetAxis();
    return "{\"kind\": \"" + std::string(row.link->IsExplicit() ? "explicit" : "implicit") +
           "\", \"name\": " + JsonQuoted(row.link->GetName()) + ", \"from\": " + LaneJson(row.from) +
           ", \"to\": " + LaneJson(row.to) +
           ", \"length\": " + (way ? Number(row.trajectory->GetLength()) : std::string("null")) +
           ", \"degenerated\": " + (row.link->IsDegenerated() ? "true" : "false") + "}";
}

void PrintRow(const Row& row) {
    const bool way = row.trajectory && row.trajectory->GetAxis();
    std::printf("%s\t%s\t%s\t%s\t%s\n", row.link->IsExplicit() ? "explicit" : "implicit",
                LaneText(row.from).c_str(), LaneText(row.to).c_str(),
                way ? Number(row.trajectory->GetLength()).c_str() : "-",
                Printable(row.link->GetName()).c_str());
}

int NotFound(const std::string& file, const std::string& what) {
    std::fprintf(stderr, "%s: %s\n", Printable(file).c_str(), Printable(what).c_str());
    return 1;
}

}  // namespace

int RunLinks(const LinksOptions& options) {
    Ruvex::CountedPtr<Orvia::Network> network;
    if (int code = LoadNetwork(options.file, network)) return code;

    Orvia::Intersection* intersection = nullptr;
    Orvia::LaneOnIntersectionData from;
    for (size_t i = 0; network && i < network->GetSubNetworkCount() && !intersection; ++i) {
        Orvia::SubNetwork* subNetwork = network->GetSubNetwork(i);
        if (!subNetwork) continue;
        if (options.track.empty()) {
            intersection = subNetwork->GetIntersectionByName(options.intersection);
        } else if (const Orvia::Track* track = subNetwork->GetTrackByName(options.track)) {
            intersection = options.atEnd ? track->GetEndIntersection() : track->GetStartIntersection();
            if (!intersection)
                return NotFound(options.file, "track " + options.track + " meets no intersection at its " +
                                                  Extremity(options.atEnd));
            from = {options.track, options.atEnd, options.lane, i};
            if (!from.GetLane(network.Get()))
                return NotFound(options.file, "track " + options.track + " has no lane " + options.lane +
                                                  " at its " + Extremity(options.atEnd));
        }
    }
    if (!intersection)
        return NotFound(options.file, options.track.empty() ? "no intersection named " + options.intersection
                                                            : "no track named " + options.track);

    Orvia::IntersectionLinksManager manager;
    manager.FillFromIntersection(intersection, true);
    std::vector<Row> rows;
    if (options.track.empty()) {
        for (size_t i = 0; i < manager.GetLinksCount(); ++i) {
            const Orvia::Link* link = manager.GetLink(i);
            for (size_t k = 0; k < link->getLanePairCount(); ++k) {
                const Ruvex::LanePairElement* pair = link->getLanePair(k);
                if (!pair) continue;
                Row row{link, {}, {}, link->getLinkTrajectory(k)};
                Orvia::ReadLanePairRecords(*pair, link->GetInSubNetwork(), row.from, row.to);
                rows.push_back(row);
            }
        }
    } else if (const auto* targets = manager.GetLinksFrom(from)) {
        for (const auto& [key, entry] : *targets)
            rows.push_back({entry.link, from, entry.to, entry.trajectory});
    }
    std::vector<std::pair<Orvia::LaneOnIntersectionData, Orvia::LaneOnIntersectionData>> banned;
    for (const auto& pair : intersection->GetBannedLinks()) {
        if (!pair) continue;
        banned.emplace_back();
        Orvia::ReadLanePairRecords(*pair, intersection->GetInSubNetwork(), banned.back().first,
                                   banned.back().second);
    }

    if (options.json) {
        std::string out = "{\"file\": " + JsonQuoted(options.file) +
                          ", \"intersection\": " + JsonQuoted(intersection->GetName());
        if (!options.track.empty()) out += ", \"from\": " + LaneJson(from);
        out += ", \"links\": [";
        for (size_t i = 0; i < rows.size(); ++i)
            out += (i ? ", " : "") + RowJson(rows[i]);
        out += "]";
        if (options.track.empty()) {
            out += ", \"banned\": [";
            for (size_t i = 0; i < banned.size(); ++i)
                out += (i ? ", " : "") + std::string("{\"from\": ") + LaneJson(banned[i].first) +
                       ", \"to\": " + LaneJson(banned[i].second) + "}";
            out += "]";
        }
        std::printf("%s}\n", out.c_str());
        return 0;
    }
    std::printf("kind\tfrom\tto\tlength\tname\n");
    for (const Row& row : rows)
        PrintRow(row);
    if (options.track.empty())
        for (const auto& [bannedFrom, bannedTo] : banned)
            std::printf("banned\t%s\t%s\t-\t-\n", LaneText(bannedFrom).c_str(), LaneText(bannedTo).c_str());
    return 0;
}

}  // namespace OrviaTool

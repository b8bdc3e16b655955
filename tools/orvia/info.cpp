#include "commands.h"

#include <orvia/core/geolocalisation.h>
#include <orvia/core/network.h>
#include <orvia/topology/sub_network.h>

#include <charconv>
#include <cstdio>

namespace OrviaTool {

namespace {

struct Summary {
    std::string version;
    std::string name;
    std::string trafficHand;
    std::string projection;
    size_t subNetworks = 0;
    size_t junctions = 0;
    size_t roads = 0;
    size_t tracks = 0;
    size_t intersections = 0;
    bool hasBox = false;
    vek::Box3 box;
};

std::string Number(double value) {
    char buffer[32];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return error == std::errc() ? std::string(buffer, end) : std::string("0");
}

std::string Point(const vek::Vector3& p) {
    return Number(p.x) + ", " + Number(p.y) + ", " + Number(p.z);
}

std::string JsonText(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20 || c == 0x7F) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

void PrintText(const std::string& file, const Summary& s) {
    std::printf("file:           %s\n", Printable(file).c_str());
    std::printf("format version: %s\n", s.version.c_str());
    std::printf("name:           %s\n", Printable(s.name).c_str());
    std::printf("traffic hand:   %s\n", Printable(s.trafficHand).c_str());
    std::printf("projection:     %s\n", s.projection.empty() ? "(none)" : Printable(s.projection).c_str());
    std::printf("sub-networks:   %zu\n", s.subNetworks);
    std::printf("junctions:      %zu\n", s.junctions);
    std::printf("roads:          %zu\n", s.roads);
    std::printf("tracks:         %zu\n", s.tracks);
    std::printf("intersections:  %zu\n", s.intersections);
    if (s.hasBox)
        std::printf("bounding box:   (%s) .. (%s)\n", Point(s.box.min).c_str(), Point(s.box.max).c_str());
    else
        std::printf("bounding box:   (empty)\n");
}

void PrintJson(const std::string& file, const Summary& s) {
    std::string box = "null";
    if (s.hasBox) box = "{\"min\": [" + Point(s.box.min) + "], \"max\": [" + Point(s.box.max) + "]}";
    std::printf(
        "{\"file\": %s, \"formatVersion\": %s, \"name\": %s, \"trafficHand\": %s, \"projection\": %s, "
        "\"subNetworks\": %zu, \"junctions\": %zu, \"roads\": %zu, \"tracks\": %zu, \"intersections\": %zu, "
        "\"boundingBox\": %s}\n",
        JsonText(file).c_str(), JsonText(s.version).c_str(), JsonText(s.name).c_str(),
        JsonText(s.trafficHand).c_str(), JsonText(s.projection).c_str(), s.subNetworks, s.junctions, s.roads,
        s.tracks, s.intersections, box.c_str());
}

}  // namespace

int RunInfo(const InfoOptions& options) {
    Ruvex::CountedPtr<Orvia::Network> network;
    if (int status = LoadNetwork(options.file, network)) return status;

    Summary s;
    const uint32_t v = network->GetFormatVersion();
    s.version =
        std::to_string(v >> 16) + "." + std::to_string((v >> 8) & 0xff) + "." + std::to_string(v & 0xff);
    s.name = network->GetName();
    s.trafficHand = network->GetTrafficHand();
    if (const Orvia::Geolocalisation* geolocalisation = network->GetGeolocalisation())
        s.projection = geolocalisation->GetDocumentProjectionName();
    s.subNetworks = network->GetSubNetworkCount();
    s.junctions = network->GetSubNetworkJunctionCount();
    s.roads = network->GetRoadCount();
    for (size_t i = 0; i < s.subNetworks; ++i)
        if (const Orvia::SubNetwork* subNetwork = network->GetSubNetwork(i)) {
            s.tracks += subNetwork->GetTrackCount();
            s.intersections += subNetwork->GetIntersectionCount();
        }
    s.hasBox = network->GetBoundingBox(s.box);

    if (options.json)
        PrintJson(options.file, s);
    else
        PrintText(options.file, s);
    return 0;
}

}  // namespace OrviaTool

#include "commands.h"

#include <orvia/core/library.h>
#include <orvia/rail/rail_network.h>
#include <orvia/ruvex/factory.h>

#include <charconv>
#include <cstdio>
#include <string>
#include <vector>

namespace OrviaTool {

namespace {

std::string Number(double value) {
    char buffer[32];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return error == std::errc() ? std::string(buffer, end) : std::string("0");
}

std::string Escaped(const std::string& text) {
    return Printable(text);
}

std::string Quoted(const std::string& text) {
    return JsonQuoted(text);
}

struct Track {
    std::string name;
    double length = 0;
    std::string start;  // tag of the end element, empty when none
    std::string end;
    size_t connectionPoints = 0;
    size_t propertySpans = 0;
    size_t propertyChanges = 0;
};

struct Property {
    std::string name;
    std::string kind;   // "double" or "enum"
    std::string where;  // "spanned" or "changed"
    std::string defaultValue;
    std::vector<std::string> entries;
};

// A named object and one word about it: a switch's or crossing's type, a signal's track (empty when it has
// none), a mileage system's usage.
struct Item {
    std::string name;
    std::string detail;
};

struct Summary {
    std::vector<Track> tracks;
    std::vector<Item> switches, crossings, signals, mileageSystems;
    std::vector<Property> properties;
    size_t stations = 0, balises = 0, trainDetections = 0, unresolved = 0;
};

template <class List>
void AddProperties(const List& list, const char* where, Summary& s) {
    for (const auto& item : list) {
        if (!item) continue;
        Property p;
        p.name = item->GetName();
        p.where = where;
        if (const auto* number = dynamic_cast<const Rail::DoublePropertyElement*>(item.Get())) {
            p.kind = "double";
            p.defaultValue = Number(number->GetDefaultValue());
        } else if (const auto* enumerated = dynamic_cast<const Rail::EnumPropertyElement*>(item.Get())) {
            p.kind = "enum";
            p.defaultValue = enumerated->GetDefaultValue();
            for (const auto& entry : enumerated->GetEnums())
                if (entry) p.entries.push_back(entry->GetValue());
        }
        s.properties.push_back(std::move(p));
    }
}

Summary Summarise(const Rail::RailNetwork& network) {
    Summary s;
    for (size_t i = 0; i < network.GetTrackCount(); ++i) {
        const Rail::RailroadTrack* track = network.GetTrack(i);
        if (!track) continue;
        Track t;
        t.name = track->GetName();
        t.length = track->GetXYLength();
        if (track->GetStartEnd()) t.start = track->GetStartEnd()->GetTagName();
        if (track->GetEndEnd()) t.end = track->GetEndEnd()->GetTagName();
        t.connectionPoints = track->GetConnectionPoints().size();
        t.propertySpans = track->GetPropertySpans().size();
        t.propertyChanges = track->GetPropertyChanges().size();
        s.tracks.push_back(std::move(t));
    }
    for (const auto& item : network.GetSwitches())
        if (const auto* sw = dynamic_cast<const Rail::Switch*>(item.Get()))
            s.switches.push_back({sw->GetName(), Rail::Switch::ToText(sw->GetType())});
    for (const auto& item : network.GetCrossings())
        if (const auto* crossing = dynamic_cast<const Rail::Crossing*>(item.Get()))
            s.crossings.push_back({crossing->GetName(), Rail::Crossing::ToText(crossing->GetType())});
    for (const auto& item : network.GetSignals()) {
        const auto* signal = dynamic_cast<const Rail::Signal*>(item.Get());
        if (!signal) continue;
        const Rail::RailroadTrack* on = signal->GetTrack();
        s.signals.push_back({signal->GetName(), on ? on->GetName() : std::string()});
    }
    for (const auto& item : network.GetMileageSystems())
        if (const auto* system = dynamic_cast<const Rail::MileageSystem*>(item.Get()))
            s.mileageSystems.push_back({system->GetName(), Rail::MileageSystem::ToText(system->GetUsage())});
    AddProperties(network.GetSpannedProperties(), "spanned", s);
    AddProperties(network.GetChangedProperties(), "changed", s);
    s.stations = network.GetStations().size();
    s.balises = network.GetBalises().size();
    s.trainDetections = network.GetTrainDetections().size();
    s.unresolved = network.GetUnresolvedReferenceCount();
    return s;
}

std::string JoinQuoted(const std::vector<std::string>& items) {
    std::string out = "[";
    for (size_t i = 0; i < items.size(); ++i)
        out += (i ? ", " : "") + Quoted(items[i]);
    return out + "]";
}

// "  name (label detail)", or "  name (none)" when the detail is empty.
void PrintList(const char* title, const char* label, const std::vector<Item>& items) {
    std::printf("%-18s%zu\n", title, items.size());
    for (const Item& item : items) {
        const std::string detail = item.detail.empty() ? std::string("none") : label + Escaped(item.detail);
        std::printf("  %s (%s)\n", Escaped(item.name).c_str(), detail.c_str());
    }
}

// [{"name": ..., "<key>": ...}, ...], the detail null when it is empty.
std::string JsonItems(const std::vector<Item>& items, const char* key) {
    std::string out = "[";
    for (size_t i = 0; i < items.size(); ++i)
        out += std::string(i ? ", " : "") + "{\"name\": " + Quoted(items[i].name) + ", \"" + key +
               "\": " + (items[i].detail.empty() ? std::string("null") : Quoted(items[i].detail)) + "}";
    return out + "]";
}

void PrintText(const std::string& file, const Summary& s) {
    std::printf("file:             %s\n", Escaped(file).c_str());
    std::printf("tracks:           %zu\n", s.tracks.size());
    for (const Track& t : s.tracks)
        std::printf("  %s: %s m, %s .. %s, %zu connection points, %zu property spans, %zu property changes\n",
                    Escaped(t.name).c_str(), Number(t.length).c_str(),
                    t.start.empty() ? "-" : t.start.c_str(), t.end.empty() ? "-" : t.end.c_str(),
                    t.connectionPoints, t.propertySpans, t.propertyChanges);
    PrintList("switches:", "", s.switches);
    PrintList("crossings:", "", s.crossings);
    PrintList("signals:", "track ", s.signals);
    PrintList("mileage systems:", "", s.mileageSystems);
    std::printf("properties:       %zu\n", s.properties.size());
    for (const Property& p : s.properties) {
        std::printf("  %s (%s, %s), default %s", Escaped(p.name).c_str(), p.kind.c_str(), p.where.c_str(),
                    Escaped(p.defaultValue).c_str());
        if (p.kind == "enum") {
            std::printf(", entries:");
            for (const std::string& entry : p.entries)
                std::printf(" %s", Quoted(entry).c_str());
        }
        std::printf("\n");
    }
    std::printf("stations:         %zu\n", s.stations);
    std::printf("balises:          %zu\n", s.balises);
    std::printf("train detections: %zu\n", s.trainDetections);
    std::printf("unresolved:       %zu\n", s.unresolved);
}

void PrintJson(const std::string& file, const Summary& s) {
    std::string tracks = "[";
    for (size_t i = 0; i < s.tracks.size(); ++i) {
        const Track& t = s.tracks[i];
        tracks += std::string(i ? ", " : "") + "{\"name\": " + Quoted(t.name) +
                  ", \"length\": " + Number(t.length) + ", \"start\": " + Quoted(t.start) +
                  ", \"end\": " + Quoted(t.end) +
                  ", \"connectionPoints\": " + std::to_string(t.connectionPoints) +
                  ", \"propertySpans\": " + std::to_string(t.propertySpans) +
                  ", \"propertyChanges\": " + std::to_string(t.propertyChanges) + "}";
    }
    tracks += "]";
    std::string properties = "[";
    for (size_t i = 0; i < s.properties.size(); ++i) {
        const Property& p = s.properties[i];
        properties += std::string(i ? ", " : "") + "{\"name\": " + Quoted(p.name) +
                      ", \"kind\": " + Quoted(p.kind) + ", \"list\": " + Quoted(p.where) +
                      ", \"default\": " + Quoted(p.defaultValue) + ", \"entries\": " + JoinQuoted(p.entries) +
                      "}";
    }
    properties += "]";
    std::printf(
        "{\"file\": %s, \"tracks\": %s, \"switches\": %s, \"crossings\": %s, \"signals\": %s, "
        "\"mileageSystems\": %s, \"properties\": %s, \"stations\": %zu, \"balises\": %zu, "
        "\"trainDetections\": %zu, \"unresolved\": %zu}\n",
        Quoted(file).c_str(), tracks.c_str(), JsonItems(s.switches, "type").c_str(),
        JsonItems(s.crossings, "type").c_str(), JsonItems(s.signals, "track").c_str(),
        JsonItems(s.mileageSystems, "usage").c_str(), properties.c_str(), s.stations, s.balises,
        s.trainDetections, s.unresolved);
}

}  // namespace

int RunRail(const RailOptions& options) {
    Orvia::Init(Ruvex::Encoding::GetMode());
    Ruvex::CountedPtr<Ruvex::Element> root(Ruvex::Load(options.file.c_str(), false));
    if (!root) return Fail(options.file, "the file cannot be read");
    auto* network = dynamic_cast<Rail::RailNetwork*>(root.Get());
    if (!network) return Fail(options.file, "the file holds no rail network");

    // Names that resolve to nothing are reported, but the summary is still worth having.
    const std::vector<Ruvex::Problem>& problems = Ruvex::GetLastProblems();
    for (const Ruvex::Problem& problem : problems)
        std::fprintf(stderr, "%s\n", Escaped(Ruvex::ToString(problem)).c_str());
    const Summary summary = Summarise(*network);
    if (options.json)
        PrintJson(options.file, summary);
    else
        PrintText(options.file, summary);
    return problems.empty() ? 0 : 1;
}

}  // namespace OrviaTool

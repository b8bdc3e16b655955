// The rail network: look-ups by name, and the resolution of the names its objects refer to.

#include <orvia/rail/rail_network.h>

#include "exact_cast.h"

#include <string>
#include <string_view>
#include <typeinfo>

namespace Rail {

namespace {

using detail::As;

template <class T, class List>
T* Named(const List& list, std::string_view name) {
    const size_t index = list.find(name);
    return index == List::npos ? nullptr : As<T>(list[index].Get());
}

int EntryIndex(const EnumPropertyElement& property, const std::string& name) {
    const auto& entries = property.GetEnums();
    for (size_t i = 0; i < entries.size(); ++i)
        if (entries[i] && entries[i]->GetValue() == name) return static_cast<int>(i);
    return -1;
}

// The list a property value is looked up in: spans hold spanned properties, changes changed ones.
const Ruvex::HashVector<Ruvex::CountedPtr<PropertyElement>>& PropertiesFor(const RailNetworkElement& network,
                                                                           std::string_view holderTag) {
    return holderTag == "PropertySpan" ? network.GetSpannedProperties() : network.GetChangedProperties();
}

// Why a property value does not resolve; empty when it does.
std::string CheckPropertyValue(const RailNetworkElement& network, std::string_view holderTag,
                               std::string_view valueTag, const std::string& propertyName,
                               const std::string& value) {
    const PropertyElement* property = Named<PropertyElement>(PropertiesFor(network, holderTag), propertyName);
    const char* list = holderTag == "PropertySpan" ? "spanned" : "changed";
    if (valueTag == "EnumPropertyValue") {
        const auto* enumerated = As<const EnumPropertyElement>(property);
        if (!enumerated)
            return "names the enumerated property \"" + propertyName + "\", which the " + list +
                   " properties do not hold";
        if (EntryIndex(*enumerated, value) < 0)
            return "names the entry \"" + value + "\", which the property \"" + propertyName + "\" lacks";
        return {};
    }
    if (!As<const DoublePropertyElement>(property))
        return "names the property \"" + propertyName + "\", which the " + list + " properties do not hold";
    return {};
}

// Reports, at its place, each reference below `node` that names nothing: the same rules as PostLoad, read
// from the document so that the warning can say where.
class ReferenceChecker {
public:
    ReferenceChecker(const RailNetwork& network, Ruvex::IDOMParser* parser)
        : m_network(network), m_parser(parser) {}

    void Walk(Ruvex::IDOMElement* node) {
        for (Ruvex::IDOMElement* child = node->GetFirstChild(); child; child = child->GetNextSibling()) {
            const std::string_view tag = child->GetTagName();
            if (tag == "XYCurve" || tag == "SZCurve" || tag == "BankingCurve") continue;  // no names there
            Check(child, node->GetTagName(), tag);
            Walk(child);
        }
    }

private:
    std::string Read(Ruvex::IDOMElement* node, std::string_view attribute) const {
        std::string value;
        node->ReadAttribute(attribute, value);
        return value;
    }

    void Warn(Ruvex::IDOMElement* node, std::string_view tag, const std::string& why) {
        m_parser->ReportWarning(node, "<" + std::string(tag) + "> " + why + "; left unresolved");
    }

    void Check(Ruvex::IDOMElement* node, std::string_view parentTag, std::string_view tag) {
        if (parentTag == "RailroadTrack" && tag == "SwitchEnd") {
            const std::string name = Read(node, "name");
            if (!m_network.GetSwitchByName(name))
                Warn(node, tag, "names the switch \"" + name + "\", which the rail network does not hold");
        } else if (parentTag == "RailroadTrack" && tag == "LinkedEnd") {
            const std::string name = Read(node, "name");
            if (!m_network.GetTrackLinkedEndByName(name))
                Warn(node, tag,
                     "names the linked end \"" + name + "\", which the rail network does not hold");
        } else if (parentTag == "ConnectionPoint" && tag == "ConnectionReference") {
            const std::string name = Read(node, "name");
            if (!m_network.GetSwitchByName(name) && !m_network.GetCrossingByName(name))
                Warn(node, tag,
                     "names the connection \"" + name +
                         "\", which no switch or crossing of the network bears");
        } else if (tag == "Quote" || tag == "MileageAnchor") {
            const std::string name = Read(node, "mileageSystemName");
            if (!m_network.GetMileageSystemByName(name))
                Warn(node, tag,
                     "names the mileage system \"" + name + "\", which the rail network does not hold");
        } else if (tag == "TrackQuote" || tag == "TrackSpan") {
            const std::string name = Read(node, "trackName");
            if (!m_network.GetTrackByName(name))
                Warn(node, tag, "names the track \"" + name + "\", which the rail network does not hold");
        } else if ((parentTag == "PropertySpan" || parentTag == "PropertyChange") &&
                   (tag == "DoublePropertyValue" || tag == "EnumPropertyValue")) {
            const std::string why = CheckPropertyValue(m_network, parentTag, tag, Read(node, "propertyName"),
                                                       Read(node, "value"));
            if (!why.empty()) Warn(node, tag, why);
        }
    }

    const RailNetwork& m_network;
    Ruvex::IDOMParser* m_parser;
};

// Resolves the object-side references; counts what resolves to nothing.
class Resolver {
public:
    explicit Resolver(const RailNetwork& network) : m_network(network) {}

    size_t unresolved = 0;

    void Quote(const QuoteElement* quote) {
        if (quote && !m_network.GetMileageSystemByName(quote->GetMileageSystemName())) ++unresolved;
    }

    void TrackSpans(const std::vector<Ruvex::CountedPtr<TrackSpanElement>>& spans) {
        for (const auto& span : spans) {
            if (!span) continue;
            if (!m_network.GetTrackByName(span->GetTrackName())) ++unresolved;
            Quote(span->GetStartQuote());
            Quote(span->GetEndQuote());
        }
    }

    void Objects(const std::vector<Ruvex::CountedPtr<ObjectOnTrackSpanElement>>& objects) {
        for (const auto& object : objects)
            if (object) TrackSpans(object->GetTrackSpans());
    }

    // The track a piece of equipment's quote names; null when it has no quote or the name is unknown.
    RailroadTrack* Equipment(const TrackEquipmentElement& item) {
        const TrackQuoteElement* where = item.GetTrackQuote();
        if (!where) return nullptr;
        Quote(where->GetQuote());
        RailroadTrack* track = m_network.GetTrackByName(where->GetTrackName());
        unresolved += !track;
        return track;
    }

    void End(const ReferenceElement* end, SwitchElement*& toSwitch, TrackLinkedEndElement*& toLink) {
        toSwitch = nullptr;
        toLink = nullptr;
        if (!end) return;
        const std::string& tag = end->GetTagName();
        if (tag == "SwitchEnd") {
            toSwitch = m_network.GetSwitchByName(end->GetName());
            unresolved += !toSwitch;
        } else if (tag == "LinkedEnd") {
            toLink = m_network.GetTrackLinkedEndByName(end->GetName());
            unresolved += !toLink;
        }
    }

    void Value(PropertyValueElement* value, std::string_view holderTag) {
        if (!value) return;
        const bool resolves = CheckPropertyValue(m_network, holderTag, value->GetTagName(),
                                                 value->GetPropertyName(), value->GetValue())
                                  .empty();
        unresolved += !resolves;
        PropertyElement* property =
            Named<PropertyElement>(PropertiesFor(m_network, holderTag), value->GetPropertyName());
        if (auto* number = As<DoublePropertyValue>(value)) number->PostLoad(As<DoubleProperty>(property));
        if (auto* entry = As<EnumPropertyValue>(value)) entry->PostLoad(As<EnumProperty>(property));
    }

private:
    const RailNetwork& m_network;
};

}  // namespace

RailNetwork::~RailNetwork() = default;

bool RailNetwork::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!RailNetworkElement::LoadFromXMLElement(element, parser)) return false;
    ReferenceChecker(*this, parser).Walk(element);
    PostLoad();
    return true;
}

RailroadTrack* RailNetwork::GetTrack(size_t index) const {
    return index < m_RailroadTracks.size() ? As<RailroadTrack>(m_RailroadTracks[index].Get()) : nullptr;
}

RailroadTrack* RailNetwork::GetTrackByName(const std::string& name) const {
    return Named<RailroadTrack>(m_RailroadTracks, name);
}

Switch* RailNetwork::GetSwitchByName(const std::string& name) const {
    return Named<Switch>(m_Switches, name);
}

Crossing* RailNetwork::GetCrossingByName(const std::string& name) const {
    return Named<Crossing>(m_Crossings, name);
}

MileageSystem* RailNetwork::GetMileageSystemByName(const std::string& name) const {
    return Named<MileageSystem>(m_MileageSystems, name);
}

TrackLinkedEndElement* RailNetwork::GetTrackLinkedEndByName(const std::string& name) const {
    return Named<TrackLinkedEndElement>(m_TrackLinkedEnds, name);
}

PropertyElement* RailNetwork::GetSpannedPropertyByName(const std::string& name) const {
    return Named<PropertyElement>(m_SpannedProperties, name);
}

PropertyElement* RailNetwork::GetChangedPropertyByName(const std::string& name) const {
    return Named<PropertyElement>(m_ChangedProperties, name);
}

void RailNetwork::PostLoad() {
    Resolver resolve(*this);
    for (size_t i = 0; i < GetTrackCount(); ++i) {
        RailroadTrack* track = GetTrack(i);
        if (!track) continue;
        track->UpdateCacheData();
        resolve.End(track->GetStartEnd(), track->m_startSwitch, track->m_startLink);
        resolve.End(track->GetEndEnd(), track->m_endSwitch, track->m_endLink);
        for (const auto& anchor : track->GetMileageAnchors())
            if (anchor && !GetMileageSystemByName(anchor->GetMileageSystemName())) ++resolve.unresolved;
        for (const auto& point : track->GetConnectionPoints()) {
            if (!point) continue;
            resolve.Quote(point->GetQuote());
            ReferenceElement* reference = point->GetConnectionReference();
            if (!reference) continue;
            ConnectionElement* connection = GetSwitchByName(reference->GetName());
            if (!connection) connection = GetCrossingByName(reference->GetName());
            resolve.unresolved += !connection;
            if (auto* typed = As<ConnectionReference>(reference)) typed->m_connection = connection;
        }
        for (const auto& span : track->GetPropertySpans()) {
            if (!span) continue;
            resolve.Value(span->GetPropertyValue(), "PropertySpan");
            resolve.Quote(span->GetStartQuote());
            resolve.Quote(span->GetEndQuote());
        }
        for (const auto& change : track->GetPropertyChanges()) {
            if (!change) continue;
            resolve.Value(change->GetPropertyValue(), "PropertyChange");
            resolve.Quote(change->GetQuote());
        }
    }
    for (const auto* objects : {&m_Tunnels, &m_Bridges, &m_Gantries, &m_LevelCrossings, &m_RoadAreas})
        resolve.Objects(*objects);
    for (const auto& station : m_Stations)
        if (station) resolve.Objects(station->GetPlatforms());
    auto equipment = [&resolve](const auto& items) {
        for (const auto& item : items) {
            if (!item) continue;
            RailroadTrack* track = resolve.Equipment(*item);
            if (auto* typed = dynamic_cast<TrackEquipment*>(item.Get())) typed->m_track = track;
        }
    };
    equipment(m_Signals);
    equipment(m_Balises);
    equipment(m_TelegramCalculators);
    equipment(m_TrainDetections);
    m_unresolved = resolve.unresolved;
}

}  // namespace Rail

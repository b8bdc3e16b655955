// The sample rail network, for demonstrations and as a document that uses every rail tag.

#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/geometry/polynomial_function.h>
#include <orvia/geometry/segment.h>
#include <orvia/rail/rail_network.h>

#include <initializer_list>
#include <string>
#include <utility>

namespace Rail {

namespace {

// Abscissas of the sample line (m): the track runs 1,500 m, read from kilometre post 10 in the civil system.
constexpr double kCivilStart = 10000;
constexpr double kLength = 1500;

QuoteElement* MakeQuote(const std::string& system, double abscissa) {
    auto* quote = new QuoteElement;
    quote->SetMileageSystemName(system);
    quote->SetAbscissaInSystem(abscissa);
    return quote;
}

template <class T>
T* Named(T* object, const std::string& name) {
    object->SetName(name);
    return object;
}

EnumProperty* MakeEnumProperty(const std::string& name, std::initializer_list<const char*> entries) {
    auto* property = Named(new EnumProperty, name);
    for (const char* entry : entries)
        property->AddEnum(entry);
    property->SetDefaultEnumName(*entries.begin());
    return property;
}

DoubleProperty* MakeDoubleProperty(const std::string& name, double value) {
    auto* property = Named(new DoubleProperty, name);
    property->SetDefaultValue(value);
    return property;
}

ObjectOnTrackSpanElement* MakeSpanned(const char* tag, const std::string& name, double start, double end) {
    auto* object = Named(new ObjectOnTrackSpanElement(tag), name);
    object->EditTrackSpans().push_back(
        RailNetwork::BuildFakeTrackSpanElement("myTrack1", "Civil", kCivilStart + start, kCivilStart + end));
    return object;
}

template <class T>
T* MakeEquipment(const std::string& name, double at) {
    auto* item = Named(new T, name);
    auto* where = new TrackQuoteElement;
    where->SetTrackName("myTrack1");
    where->SetQuote(MakeQuote("Civil", kCivilStart + at));
    item->SetTrackQuote(where);
    return item;
}

RailroadTrack* MakeTrack() {
    auto* track = Named(new RailroadTrack, "myTrack1");
    auto* xy = new Orvia::Curve2D;
    xy->AddFunction(new Segment(600));
    xy->AddFunction(new CircleArc(900, 0.001));
    xy->UpdateFunctionsFromStart();
    track->SetXYCurve(xy);
    auto* sz = new Orvia::CartesianCurve("SZCurve");
    // A steady 4 per mille climb.
    sz->AddFunction(new PolynomialFunction({0, 100}, 0.004, {kLength, 106}, 0.004));
    track->SetSZCurve(sz);

    track->SetStartEnd(Named(new Orvia::ReferenceElement("LinkedEnd"), "myLink1"));
    track->SetEndEnd(Named(new Orvia::ReferenceElement("SwitchEnd"), "mySwitch1"));
    for (auto [system, origin] : {std::pair<const char*, double>{"Civil", kCivilStart}, {"Exploitant", 0.0}})
        for (double c : {0.0, kLength}) {
            auto* anchor = new MileageAnchorElement;
            anchor->SetMileageSystemName(system);
            anchor->SetCurvilinearAbscissa(c);
            anchor->SetSystemAbscissa(origin + c);
            track->EditMileageAnchors().push_back(anchor);
        }

    auto* point = new ConnectionPointElement;
    point->SetConnectionReference(Named(new ConnectionReference, "mySwitch1"));
    point->SetQuote(MakeQuote("Civil", kCivilStart + kLength));
    track->EditConnectionPoints().push_back(point);

    auto* span = new PropertySpan;
    auto* speed = new DoublePropertyValue;
    speed->SetPropertyName("Local Train Speed");
    speed->SetValue(22.2);
    span->SetPropertyValue(speed);
    span->SetStartQuote(MakeQuote("Civil", kCivilStart));
    span->SetEndQuote(MakeQuote("Civil", kCivilStart + 600));
    track->EditPropertySpans().push_back(span);

    auto* change = new PropertyChange;
    change->SetDirection(PropertyChange::eBoth);
    auto* tension = new EnumPropertyValue;
    tension->SetPropertyName("Electrification Tension");
    tension->SetEnumName("25000 V");
    change->SetPropertyValue(tension);
    change->SetQuote(MakeQuote("Civil", kCivilStart + 300));
    track->EditPropertyChanges().push_back(change);
    return track;
}

}  // namespace

TrackSpanElement* RailNetwork::BuildFakeTrackSpanElement(const std::string& trackName,
                                                         const std::string& systemName, double start,
                                                         double end) {
    auto* span = new TrackSpanElement;
    span->SetTrackName(trackName);
    span->SetStartQuote(MakeQuote(systemName, start));
    span->SetEndQuote(MakeQuote(systemName, end));
    return span;
}

void RailNetwork::BuildFake() {
    for (auto* list : {&m_Tunnels, &m_Bridges, &m_Gantries, &m_LevelCrossings, &m_RoadAreas})
        list->clear();
    for (auto* list : {&m_RadioAntenas, &m_AreaTelegramCalculators})
        list->clear();
    for (auto* list : {&m_SpannedProperties, &m_ChangedProperties})
        list->clear();
    m_RailroadTracks.clear();
    m_TrackLinkedEnds.clear();
    m_Crossings.clear();
    m_Switches.clear();
    m_MileageSystems.clear();
    m_Stations.clear();
    m_Signals.clear();
    m_Balises.clear();
    m_TelegramCalculators.clear();
    m_TrainDetections.clear();
    ClearPreserved();

    m_RailroadTracks.push_back(MakeTrack());
    auto* civil = Named(new MileageSystem, "Civil");
    civil->SetUsage(MileageSystem::eLinearInterpolation);
    m_MileageSystems.push_back(civil);
    m_MileageSystems.push_back(Named(new MileageSystem, "Exploitant"));
    m_ChangedProperties.push_back(MakeEnumProperty("Electrification Aspect", {"Basic", "Complexe"}));
    m_ChangedProperties.push_back(
        MakeEnumProperty("Electrification Tension", {"750 V", "5000 V", "25000 V"}));
    m_SpannedProperties.push_back(MakeDoubleProperty("Local Train Speed", 22.2));
    m_SpannedProperties.push_back(MakeDoubleProperty("Express Train Speed", 44.4));
    m_SpannedProperties.push_back(MakeDoubleProperty("Freight Train Speed", 27.7));

    auto* junction = Named(new Switch, "mySwitch1");
    junction->SetType(Switch::eOrdinary);
    junction->SetNormalPosition("left");
    m_Switches.push_back(junction);
    m_TrackLinkedEnds.push_back(Named(new TrackLinkedEndElement, "myLink1"));
    m_TrackLinkedEnds.push_back(Named(new TrackLinkedEndElement, "myLink2"));

    m_Tunnels.push_back(MakeSpanned("Tunnel", "myTunnel1", 100, 250));
    m_Bridges.push_back(MakeSpanned("Bridge", "myBridge1", 400, 450));
    m_Bridges.push_back(MakeSpanned("Bridge", "myBridge2", 800, 820));
    m_Gantries.push_back(MakeSpanned("Gantry", "myGantry1", 500, 501));
    m_Gantries.push_back(MakeSpanned("Gantry", "myGantry2", 1000, 1001));
    m_LevelCrossings.push_back(MakeSpanned("LevelCrossing", "myLV1", 300, 310));
    m_LevelCrossings.push_back(MakeSpanned("LevelCrossing", "myLV2", 1200, 1210));
    m_RoadAreas.push_back(MakeSpanned("RoadArea", "myRoadZone1", 290, 320));
    m_RoadAreas.push_back(MakeSpanned("RoadArea", "myRoadZone2", 1190, 1220));

    auto* first = Named(new StationElement, "station1");
    first->EditPlatforms().push_back(MakeSpanned("Platform", "Platform A", 650, 800));
    m_Stations.push_back(first);
    m_Stations.push_back(Named(new StationElement, "station2"));

    m_Signals.push_back(MakeEquipment<Signal>("Signal1", 50));
    m_Signals.push_back(MakeEquipment<Signal>("Signal2", 1450));
    m_Balises.push_back(MakeEquipment<Balise>("Balise1", 40));
    m_Balises.push_back(MakeEquipment<Balise>("Balise2", 1440));
    m_TelegramCalculators.push_back(MakeEquipment<TelegramCalculator>("TelegramCalculator1", 40));
    m_TelegramCalculators.push_back(MakeEquipment<TelegramCalculator>("TelegramCalculator2", 1440));
    m_TrainDetections.push_back(MakeEquipment<TrainDetection>("TrainDetection1", 20));
    m_TrainDetections.push_back(MakeEquipment<TrainDetection>("TrainDetection2", 1480));

    PostLoad();
}

}  // namespace Rail

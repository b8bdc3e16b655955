// The tag-to-class table: which runtime object stands for each tag of a file.

#include <orvia/core/export_settings.h>
#include <orvia/core/external_element.h>
#include <orvia/core/geolocalisation.h>
#include <orvia/core/legacy.h>
#include <orvia/core/network.h>
#include <orvia/core/orvia_factory.h>
#include <orvia/core/reference.h>
#include <orvia/core/surface.h>
#include <orvia/core/user_data.h>
#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/clotho_arc.h>
#include <orvia/geometry/clothoid_spline.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/polynomial_function.h>
#include <orvia/geometry/profile.h>
#include <orvia/geometry/profile_modifier.h>
#include <orvia/geometry/segment.h>
#include <orvia/geometry/sequence.h>
#include <orvia/ground/ground.h>
#include <orvia/rail/rail_network.h>
#include <orvia/ruvex/elements/clipped.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/profile.h>
#include <orvia/ruvex/elements/traffic.h>
#include <orvia/ruvex/tags.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/composite_object.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/entities_generation.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/linear_object.h>
#include <orvia/topology/link.h>
#include <orvia/topology/parking.h>
#include <orvia/topology/pedestrian_network.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/topology/trajectory.h>
#include <orvia/topology/zone.h>
#include <orvia/traffic/road_sign.h>
#include <orvia/traffic/traffic_light.h>

#include <string_view>
#include <typeinfo>
#include <unordered_map>

namespace Orvia {

namespace {

using Creator = Ruvex::Element* (*)();

struct Entry {
    std::string_view tag;
    Creator create;
};

template <class T>
Entry Make(std::string_view tag) {
    return Entry{tag, [] { return static_cast<Ruvex::Element*>(new T); }};
}

// For classes that keep the tag they were made for; the tag is fixed at compile time.
template <class T, const char* Tag>
Entry Tagged() {
    return Entry{Tag, [] { return static_cast<Ruvex::Element*>(new T(Tag)); }};
}

// In the order of the rule: when a tag appears twice, the first entry wins. Tags whose object is the data
// class the element layer registers for them (axis curves among them: the classes that own an axis build
// their runtime curves) are left to the element layer's factory.
const std::vector<Entry>& Table() {
    static const std::vector<Entry> table = {
        // Tags whose runtime class bears the same name.
        Make<Network>("Network"),
        Make<Road>("Road"),
        Make<Intersection>("Intersection"),
        Make<Track>("Track"),
        Make<SubNetworkJunction>("SubNetworkJunction"),
        Make<SubNetworkExit>("SubNetworkExit"),
        Make<SubNetwork>("SubNetwork"),
        Make<Geolocalisation>("Geolocalisation"),
        Make<RollingSurfaceProps>("RollingSurfaceProps"),
        Make<Export3DLayers>("Export3DLayers"),
        Make<Generate3DRoads>("Generate3DRoads"),
        Make<SolExportOptions>("SolExportOptions"),
        Make<Light>("Light"),
        Make<RoadSign>("RoadSign"),
        Make<Timer>("Timer"),
        Make<TrafficLightGroup>("TrafficLightGroup"),
        Make<TrafficLightAnimation>("TrafficLightAnimation"),
        Make<TrafficLightState>("TrafficLightState"),
        Make<Portion>("Portion"),
        Make<ProfileStandalone>("ProfileStandalone"),
        Make<MarkingStandalone>("MarkingStandalone"),
        Make<Profile>("Profile"),
        Make<Lane>("Lane"),
        Make<LaneBorder>("LaneBorder"),
        Make<Decoration>("Decoration"),
        Make<Marking>("Marking"),
        Make<Ground>("Ground"),
        Make<Roughness>("Roughness"),
        Make<Point2x2D>("Point2x2D"),
        Make<Trajectory>("Trajectory"),
        Make<TrajectoryPart>("TrajectoryPart"),
        Make<ProfileModifier>("ProfileModifier"),
        Make<BorderModifier>("BorderModifier"),
        Make<BorderOffset>("BorderOffset"),
        Make<ConcentricZone>("ConcentricZone"),
        Make<EntitiesGeneration>("EntitiesGeneration"),
        Make<ExternalEntity>("ExternalEntity"),
        Make<Link>("Link"),
        Make<LanePair>("LanePair"),
        Make<ParkingLot>("ParkingLot"),
        Make<ParkingSpot>("ParkingSpot"),
        Make<CompositeObject>("CompositeObject"),
        Make<Scale>("Scale"),
        Make<Obstacle>("Obstacle"),
        Make<SurfaceModifier>("SurfaceModifier"),
        Make<TrackScope>("TrackScope"),
        Make<TrackClippedData>("TrackClippedData"),
        Make<MarkClippedData>("MarkClippedData"),
        Make<PedestrianNetwork>("PedestrianNetwork"),

        // The exceptions.
        Make<RoadPiece>("RoadElement"),
        Tagged<ExternalElement, Ruvex::Tags::kExternalElement>(),
        Tagged<ExternalElement, Ruvex::Tags::kExternalSurface>(),
        Tagged<ExternalElement, Ruvex::Tags::kExternalTerrain>(),
        Tagged<ExternalElement, Ruvex::Tags::kProxyFile>(),
        Tagged<Sequence, Ruvex::Tags::kSequence>(),
        Tagged<Sequence, Ruvex::Tags::kSequenceY>(),
        Tagged<Sequence, Ruvex::Tags::kSequenceZ>(),
        Tagged<TrackClippedData, Ruvex::Tags::kClippedData>(),
        Make<LinearObject>("Linear"),
        Make<SubPart>("SubParts"),
        Make<Zone>("Area"),
        Make<VehicleAuthorisation>("VehicleType"),
        Make<SoftGroundPropertiesElement>("SoftGroundProperties"),
        Make<FunctionalGroundElement>("FunctionalModel"),
        Make<TerramecanicsGroundElement>("TerraMecanicsModel"),
        Make<Analytic>("RoughnessAnalytic"),
        Entry{"Scale2x2DPoints",
              [] {
                  return static_cast<Ruvex::Element*>(
                      new Point2x2D(1.0, 1.0, 1.0, 1.0, 1.0, "Scale2x2DPoints"));
              }},
        Tagged<Point2x2D, Ruvex::Tags::kOffset2x2DPoints>(),
        Make<TrajectoryPiece>("TrajectoryElement"),
        Tagged<MaterialChanel, Ruvex::Tags::kDiffuse>(),
        Tagged<MaterialChanel, Ruvex::Tags::kAmbient>(),
        Tagged<MaterialChanel, Ruvex::Tags::kSpecular>(),
        Tagged<MaterialChanel, Ruvex::Tags::kEmissive>(),
        Make<QuenbelDataElement>("QuenbelData"),
        Make<QorOldData::LegacyElement>("Legacy"),
        Make<QorOldData::LegacySZCurveElement>("LegacySZCurve"),
        Tagged<QorOldData::VersionElement, Ruvex::Tags::kVersion>(),
        Tagged<QorOldData::VersionElement, Ruvex::Tags::kQorVersion>(),
        Make<::PolynomialFunction>("Polynomial"),
        Make<::Segment>("Segment"),
        Make<::CircleArc>("CircleArc"),
        Make<::ClothoArc>("ClothoArc"),
        Make<::ClothoidSpline>("ClothoidSpline"),
        Entry{"PolyLine", [] { return static_cast<Ruvex::Element*>(new ::PolyLine(1, 0)); }},
        Make<Rail::RailNetwork>("RailNetwork"),
        Make<Rail::Signal>("Signal"),
        Make<Rail::Balise>("Balise"),
        Make<Rail::TelegramCalculator>("TelegramCalculator"),
        Make<Rail::TrainDetection>("TrainDetection"),
        Make<Rail::RailroadTrack>("RailroadTrack"),
        Make<Rail::Switch>("Switch"),
        Make<Rail::Crossing>("Crossing"),
        Make<Rail::EnumProperty>("EnumProperty"),
        Make<Rail::DoubleProperty>("DoubleProperty"),
        Make<Rail::ConnectionReference>("ConnectionReference"),
        // The runtime classes of these records: the rail network resolves their references.
        Make<Rail::EnumPropertyValue>("EnumPropertyValue"),
        Make<Rail::DoublePropertyValue>("DoublePropertyValue"),
        Make<Rail::MileageSystem>("MileageSystem"),
        Make<Rail::PropertySpan>("PropertySpan"),
        Make<Rail::PropertyChange>("PropertyChange"),
        Tagged<ReferenceElement, Ruvex::Tags::kOpenEnd>(),
        Tagged<ReferenceElement, Ruvex::Tags::kBufferEnd>(),
        Tagged<ReferenceElement, Ruvex::Tags::kLinkedEnd>(),
        Tagged<ReferenceElement, Ruvex::Tags::kSwitchEnd>(),
    };
    return table;
}

}  // namespace

namespace {

const std::unordered_map<std::string_view, Creator>& Index() {
    static const std::unordered_map<std::string_view, Creator> index = [] {
        std::unordered_map<std::string_view, Creator> map;
        for (const Entry& entry : Table())
            map.emplace(entry.tag, entry.create);
        return map;
    }();
    return index;
}

}  // namespace

Ruvex::Element* OrviaFactory::Create(const std::string& tag) {
    auto it = Index().find(tag);
    if (it != Index().end()) return it->second();
    return Ruvex::Factory::Create(tag);
}

Ruvex::Element* (*OrviaFactory::FindCreator(std::string_view tag) const)() {
    if (typeid(*this) != typeid(OrviaFactory)) return nullptr;
    auto it = Index().find(tag);
    if (it != Index().end()) return it->second;
    // What the base factory creates for a tag with a data class.
    for (const Ruvex::DataClassInfo& info : Ruvex::DataClasses())
        if (info.tag == tag) return info.create;
    return nullptr;
}

}  // namespace Orvia

// Every data class, by tag: what the base factory creates and what the format reference lists.

#include <orvia/ruvex/elements/clipped.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/ground.h>
#include <orvia/ruvex/elements/intersection.h>
#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/portion.h>
#include <orvia/ruvex/elements/profile.h>
#include <orvia/ruvex/elements/rail.h>
#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/ruvex/elements/track.h>
#include <orvia/ruvex/elements/traffic.h>
#include <orvia/ruvex/schema.h>
#include <orvia/ruvex/tags.h>

namespace Ruvex {

namespace {

template <class T>
DataClassInfo Plain(std::string_view tag) {
    return DataClassInfo{tag, &T::StaticSchema, [] { return static_cast<Element*>(new T); }};
}

// Classes whose objects keep the tag they were created for; the creator is chosen by tag at compile time.
template <class T, const char* Tag>
DataClassInfo Tagged() {
    return DataClassInfo{Tag, &T::StaticSchema, [] { return static_cast<Element*>(new T(Tag)); }};
}

}  // namespace

const std::vector<DataClassInfo>& DataClasses() {
    static const std::vector<DataClassInfo> classes = {
        Plain<SegmentElement>("Segment"),
        Plain<CircleArcElement>("CircleArc"),
        Plain<ClothoidArcElement>("ClothoArc"),
        Plain<PolyLineElement>("PolyLine"),
        Plain<ClothoidSplineElement>("ClothoidSpline"),
        Plain<PolynomialFunctionElement>("Polynomial"),
        Plain<XYCurveElement>("XYCurve"),
        Tagged<CartesianCurveElement, Tags::kSZCurve>(),
        Tagged<CartesianCurveElement, Tags::kBankingCurve>(),
        Tagged<CartesianCurveElement, Tags::kTrajectoryCurve>(),
        Tagged<CartesianCurveElement, Tags::kSZCurvatureCurve>(),
        Tagged<ExternalFileElement, Tags::kExternalElement>(),
        Tagged<ExternalFileElement, Tags::kExternalSurface>(),
        Tagged<ExternalFileElement, Tags::kExternalTerrain>(),
        Tagged<ExternalFileElement, Tags::kExternalPhysicSurface>(),
        Tagged<ExternalFileElement, Tags::kProxyFile>(),
        Plain<GeolocalisationElement>("Geolocalisation"),
        Plain<MaterialElement>("Material"),
        Plain<GeneratedTerrainMaterialElement>("GeneratedTerrainMaterial"),
        Plain<SubNetworkExitElement>("SubNetworkExit"),
        Plain<SubNetworkJunctionElement>("SubNetworkJunction"),
        Plain<RoadPieceElement>("RoadElement"),
        Plain<RoadElement>("Road"),
        Plain<SubNetworkElement>("SubNetwork"),
        Plain<NetworkElement>("Network"),
        Plain<UVMappingElement>("UVMapping"),
        Plain<MarkingElement>("Marking"),
        Plain<DecorationElement>("Decoration"),
        Plain<LaneBorderElement>("LaneBorder"),
        Plain<LaneElement>("Lane"),
        Plain<ProfileElement>("Profile"),
        Plain<ProfileStandaloneElement>("ProfileStandalone"),
        Plain<MarkingStandaloneElement>("MarkingStandalone"),
        Plain<BorderOffsetElement>("BorderOffset"),
        Plain<BorderModifierElement>("BorderModifier"),
        Plain<ProfileModifierElement>("ProfileModifier"),
        Plain<PortionElement>("Portion"),
        Plain<TrackElement>("Track"),
        Plain<TrackClipElement>("TrackClip"),
        Plain<TrackScopeElement>("TrackScope"),
        Tagged<SequenceElement, Tags::kSequence>(),
        Tagged<SequenceElement, Tags::kSequenceY>(),
        Tagged<SequenceElement, Tags::kSequenceZ>(),
        Tagged<TrackClippedDataElement, Tags::kTrackClippedData>(),
        Tagged<TrackClippedDataElement, Tags::kClippedData>(),
        Plain<MarkClippedDataElement>("MarkClippedData"),
        Plain<ContourPieceElement>("ContourPiece"),
        Plain<IntersectionElement>("Intersection"),
        Plain<LanePairElement>("LanePair"),
        Plain<LinkElement>("Link"),
        Plain<TimerElement>("Timer"),
        Plain<LightElement>("Light"),
        Plain<TrafficLightStateElement>("TrafficLightState"),
        Plain<TrafficLightAnimationElement>("TrafficLightAnimation"),
        Plain<TrafficLightGroupElement>("TrafficLightGroup"),
        Plain<VehicleTypeElement>("VehicleType"),
        Plain<RoadSignElement>("RoadSign"),
        Plain<ObstacleElement>("Obstacle"),
        Tagged<Point2x2DElement, Tags::kPoint2x2D>(),
        Tagged<Point2x2DElement, Tags::kScale2x2DPoints>(),
        Tagged<Point2x2DElement, Tags::kOffset2x2DPoints>(),
        Plain<RoughnessAnalyticElement>("RoughnessAnalytic"),
        Plain<RoughnessElement>("Roughness"),
        Plain<TerraMecanicsModelElement>("TerraMecanicsModel"),
        Plain<FunctionalModelElement>("FunctionalModel"),
        Plain<SoftGroundPropertiesElement>("SoftGroundProperties"),
        Plain<GroundElement>("Ground"),
        Tagged<MaterialChanelElement, Tags::kDiffuse>(),
        Tagged<MaterialChanelElement, Tags::kAmbient>(),
        Tagged<MaterialChanelElement, Tags::kSpecular>(),
        Tagged<MaterialChanelElement, Tags::kEmissive>(),
        Tagged<MaterialChanelElement, Tags::kBump>(),
        Tagged<MaterialChanelElement, Tags::kOpacity>(),
        Tagged<MaterialChanelElement, Tags::kReflection>(),
        Tagged<MaterialChanelElement, Tags::kShininess>(),
        Plain<AreaElement>("Area"),
        Plain<ConcentricZoneElement>("ConcentricZone"),
        Plain<ParkingLotElement>("ParkingLot"),
        Plain<ParkingSpotSkinElement>("ParkingSpotSkin"),
        Plain<ParkingSpotElement>("ParkingSpot"),
        Plain<ExternalEntityElement>("ExternalEntity"),
        Plain<EntitiesGenerationElement>("EntitiesGeneration"),
        Plain<TrajectoryPartElement>("TrajectoryPart"),
        Plain<TrajectoryPieceElement>("TrajectoryElement"),
        Plain<TrajectoryElement>("Trajectory"),
        Plain<SubPartsElement>("SubParts"),
        Plain<LinearElement>("Linear"),
        Plain<ScaleElement>("Scale"),
        Plain<CompositeObjectElement>("CompositeObject"),
        Plain<SurfaceModifierElement>("SurfaceModifier"),
        Plain<RollingSurfacePropsElement>("RollingSurfaceProps"),
        Plain<Export3DLayersElement>("Export3DLayers"),
        Plain<Generate3DRoadsElement>("Generate3DRoads"),
        Plain<SolExportOptionsElement>("SolExportOptions"),
        Plain<PedestrianNetworkElement>("PedestrianNetwork"),
        Plain<LegacyElement>("Legacy"),
        Plain<LegacySZCurveElement>("LegacySZCurve"),
        Tagged<VersionElement, Tags::kVersion>(),
        Tagged<VersionElement, Tags::kQorVersion>(),
        Plain<Rail::QuoteElement>("Quote"),
        Plain<Rail::MileageSystemElement>("MileageSystem"),
        Plain<Rail::MileageAnchorElement>("MileageAnchor"),
        Plain<Rail::TrackLinkedEndElement>("TrackLinkedEnd"),
        Tagged<Rail::ReferenceElement, Tags::kOpenEnd>(),
        Tagged<Rail::ReferenceElement, Tags::kBufferEnd>(),
        Tagged<Rail::ReferenceElement, Tags::kLinkedEnd>(),
        Tagged<Rail::ReferenceElement, Tags::kSwitchEnd>(),
        Plain<Rail::ConnectionReferenceElement>("ConnectionReference"),
        Plain<Rail::SwitchElement>("Switch"),
        Plain<Rail::CrossingElement>("Crossing"),
        Plain<Rail::ConnectionPointElement>("ConnectionPoint"),
        Plain<Rail::DoublePropertyElement>("DoubleProperty"),
        Plain<Rail::EnumElement>("Enum"),
        Plain<Rail::EnumPropertyElement>("EnumProperty"),
        Tagged<Rail::PropertyValueElement, Tags::kDoublePropertyValue>(),
        Tagged<Rail::PropertyValueElement, Tags::kEnumPropertyValue>(),
        Plain<Rail::PropertyChangeElement>("PropertyChange"),
        Plain<Rail::PropertySpanElement>("PropertySpan"),
        Plain<Rail::TrackSpanElement>("TrackSpan"),
        Plain<Rail::TrackQuoteElement>("TrackQuote"),
        Tagged<Rail::ObjectOnTrackSpanElement, Tags::kTunnel>(),
        Tagged<Rail::ObjectOnTrackSpanElement, Tags::kBridge>(),
        Tagged<Rail::ObjectOnTrackSpanElement, Tags::kGantry>(),
        Tagged<Rail::ObjectOnTrackSpanElement, Tags::kPlatform>(),
        Tagged<Rail::ObjectOnTrackSpanElement, Tags::kLevelCrossing>(),
        Tagged<Rail::ObjectOnTrackSpanElement, Tags::kRoadArea>(),
        Plain<Rail::SignalElement>("Signal"),
        Plain<Rail::BaliseElement>("Balise"),
        Plain<Rail::TelegramCalculatorElement>("TelegramCalculator"),
        Plain<Rail::TrainDetectionElement>("TrainDetection"),
        Plain<Rail::FrameElement>("Frame"),
        Tagged<Rail::WorldEquipmentElement, Tags::kRadioAntena>(),
        Tagged<Rail::WorldEquipmentElement, Tags::kAreaTelegramCalculator>(),
        Plain<Rail::StationElement>("Station"),
        Plain<Rail::RailroadTrackElement>("RailroadTrack"),
        Plain<Rail::RailNetworkElement>("RailNetwork"),
    };
    return classes;
}

namespace detail {

std::vector<Element* (*)()> DataClassCreators(const std::vector<std::string_view>& tags) {
    std::vector<Element* (*)()> creators;
    for (std::string_view tag : tags) {
        Element* (*create)() = nullptr;
        for (const DataClassInfo& info : DataClasses())
            if (info.tag == tag) {
                create = info.create;
                break;
            }
        creators.push_back(create);
    }
    return creators;
}

}  // namespace detail

}  // namespace Ruvex

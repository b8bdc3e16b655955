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

constexpr char kSZCurve[] = "SZCurve";
constexpr char kBankingCurve[] = "BankingCurve";
constexpr char kTrajectoryCurve[] = "TrajectoryCurve";
constexpr char kSZCurvatureCurve[] = "SZCurvatureCurve";
constexpr char kExternalElement[] = "ExternalElement";
constexpr char kExternalSurface[] = "ExternalSurface";
constexpr char kExternalTerrain[] = "ExternalTerrain";
constexpr char kExternalPhysicSurface[] = "ExternalPhysicSurface";
constexpr char kProxyFile[] = "ProxyFile";
constexpr char kSequence[] = "Sequence";
constexpr char kSequenceY[] = "SequenceY";
constexpr char kSequenceZ[] = "SequenceZ";
constexpr char kTrackClippedData[] = "TrackClippedData";
constexpr char kClippedData[] = "ClippedData";
constexpr char kPoint2x2D[] = "Point2x2D";
constexpr char kScale2x2DPoints[] = "Scale2x2DPoints";
constexpr char kOffset2x2DPoints[] = "Offset2x2DPoints";
constexpr char kDiffuse[] = "Diffuse";
constexpr char kAmbient[] = "Ambient";
constexpr char kSpecular[] = "Specular";
constexpr char kEmissive[] = "Emissive";
constexpr char kBump[] = "Bump";
constexpr char kOpacity[] = "Opacity";
constexpr char kReflection[] = "Reflection";
constexpr char kShininess[] = "Shininess";
constexpr char kVersion[] = "Version";
constexpr char kQorVersion[] = "QorVersion";
constexpr char kOpenEnd[] = "OpenEnd";
constexpr char kBufferEnd[] = "BufferEnd";
constexpr char kLinkedEnd[] = "LinkedEnd";
constexpr char kSwitchEnd[] = "SwitchEnd";
constexpr char kDoublePropertyValue[] = "DoublePropertyValue";
constexpr char kEnumPropertyValue[] = "EnumPropertyValue";
constexpr char kTunnel[] = "Tunnel";
constexpr char kBridge[] = "Bridge";
constexpr char kGantry[] = "Gantry";
constexpr char kPlatform[] = "Platform";
constexpr char kLevelCrossing[] = "LevelCrossing";
constexpr char kRoadArea[] = "RoadArea";
constexpr char kRadioAntena[] = "RadioAntena";
constexpr char kAreaTelegramCalculator[] = "AreaTelegramCalculator";

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
        Tagged<CartesianCurveElement, kSZCurve>(),
        Tagged<CartesianCurveElement, kBankingCurve>(),
        Tagged<CartesianCurveElement, kTrajectoryCurve>(),
        Tagged<CartesianCurveElement, kSZCurvatureCurve>(),
        Tagged<ExternalFileElement, kExternalElement>(),
        Tagged<ExternalFileElement, kExternalSurface>(),
        Tagged<ExternalFileElement, kExternalTerrain>(),
        Tagged<ExternalFileElement, kExternalPhysicSurface>(),
        Tagged<ExternalFileElement, kProxyFile>(),
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
        Tagged<SequenceElement, kSequence>(),
        Tagged<SequenceElement, kSequenceY>(),
        Tagged<SequenceElement, kSequenceZ>(),
        Tagged<TrackClippedDataElement, kTrackClippedData>(),
        Tagged<TrackClippedDataElement, kClippedData>(),
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
        Tagged<Point2x2DElement, kPoint2x2D>(),
        Tagged<Point2x2DElement, kScale2x2DPoints>(),
        Tagged<Point2x2DElement, kOffset2x2DPoints>(),
        Plain<RoughnessAnalyticElement>("RoughnessAnalytic"),
        Plain<RoughnessElement>("Roughness"),
        Plain<TerraMecanicsModelElement>("TerraMecanicsModel"),
        Plain<FunctionalModelElement>("FunctionalModel"),
        Plain<SoftGroundPropertiesElement>("SoftGroundProperties"),
        Plain<GroundElement>("Ground"),
        Tagged<MaterialChanelElement, kDiffuse>(),
        Tagged<MaterialChanelElement, kAmbient>(),
        Tagged<MaterialChanelElement, kSpecular>(),
        Tagged<MaterialChanelElement, kEmissive>(),
        Tagged<MaterialChanelElement, kBump>(),
        Tagged<MaterialChanelElement, kOpacity>(),
        Tagged<MaterialChanelElement, kReflection>(),
        Tagged<MaterialChanelElement, kShininess>(),
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
        Tagged<VersionElement, kVersion>(),
        Tagged<VersionElement, kQorVersion>(),
        Plain<Rail::QuoteElement>("Quote"),
        Plain<Rail::MileageSystemElement>("MileageSystem"),
        Plain<Rail::MileageAnchorElement>("MileageAnchor"),
        Plain<Rail::TrackLinkedEndElement>("TrackLinkedEnd"),
        Tagged<Rail::ReferenceElement, kOpenEnd>(),
        Tagged<Rail::ReferenceElement, kBufferEnd>(),
        Tagged<Rail::ReferenceElement, kLinkedEnd>(),
        Tagged<Rail::ReferenceElement, kSwitchEnd>(),
        Plain<Rail::ConnectionReferenceElement>("ConnectionReference"),
        Plain<Rail::SwitchElement>("Switch"),
        Plain<Rail::CrossingElement>("Crossing"),
        Plain<Rail::ConnectionPointElement>("ConnectionPoint"),
        Plain<Rail::DoublePropertyElement>("DoubleProperty"),
        Plain<Rail::EnumElement>("Enum"),
        Plain<Rail::EnumPropertyElement>("EnumProperty"),
        Tagged<Rail::PropertyValueElement, kDoublePropertyValue>(),
        Tagged<Rail::PropertyValueElement, kEnumPropertyValue>(),
        Plain<Rail::PropertyChangeElement>("PropertyChange"),
        Plain<Rail::PropertySpanElement>("PropertySpan"),
        Plain<Rail::TrackSpanElement>("TrackSpan"),
        Plain<Rail::TrackQuoteElement>("TrackQuote"),
        Tagged<Rail::ObjectOnTrackSpanElement, kTunnel>(),
        Tagged<Rail::ObjectOnTrackSpanElement, kBridge>(),
        Tagged<Rail::ObjectOnTrackSpanElement, kGantry>(),
        Tagged<Rail::ObjectOnTrackSpanElement, kPlatform>(),
        Tagged<Rail::ObjectOnTrackSpanElement, kLevelCrossing>(),
        Tagged<Rail::ObjectOnTrackSpanElement, kRoadArea>(),
        Plain<Rail::SignalElement>("Signal"),
        Plain<Rail::BaliseElement>("Balise"),
        Plain<Rail::TelegramCalculatorElement>("TelegramCalculator"),
        Plain<Rail::TrainDetectionElement>("TrainDetection"),
        Plain<Rail::FrameElement>("Frame"),
        Tagged<Rail::WorldEquipmentElement, kRadioAntena>(),
        Tagged<Rail::WorldEquipmentElement, kAreaTelegramCalculator>(),
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

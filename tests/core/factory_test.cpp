#include <orvia/core/export_settings.h>
#include <orvia/core/external_element.h>
#include <orvia/core/geolocalisation.h>
#include <orvia/core/legacy.h>
#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/core/orvia_factory.h>
#include <orvia/core/reference.h>
#include <orvia/core/surface.h>
#include <orvia/core/user_data.h>
#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/circle_arc.h>
#include <orvia/geometry/clotho_arc.h>
#include <orvia/geometry/clothoid_spline.h>
#include <orvia/geometry/curve2d.h>
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
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/profile.h>
#include <orvia/ruvex/elements/traffic.h>
#include <orvia/ruvex/factory.h>
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

#include <gtest/gtest.h>

#include <string>
#include <typeindex>
#include <typeinfo>
#include <vector>

using Ruvex::CountedPtr;

namespace {

// One line of the tag table: the tag, the exact class it must create, and the tag the object saves under.
struct Row {
    const char* tag;
    std::type_index type;
    const char* savedTag;
};

template <class T>
Row R(const char* tag, const char* savedTag = nullptr) {
    return Row{tag, std::type_index(typeid(T)), savedTag ? savedTag : tag};
}

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = {
        R<Orvia::Network>("Network"),
        R<Orvia::Road>("Road"),
        R<Orvia::Intersection>("Intersection"),
        R<Orvia::Track>("Track"),
        R<Orvia::SubNetworkJunction>("SubNetworkJunction"),
        R<Orvia::SubNetworkExit>("SubNetworkExit"),
        R<Orvia::SubNetwork>("SubNetwork"),
        R<Orvia::Geolocalisation>("Geolocalisation"),
        R<Orvia::RollingSurfaceProps>("RollingSurfaceProps"),
        R<Orvia::Export3DLayers>("Export3DLayers"),
        R<Orvia::Generate3DRoads>("Generate3DRoads"),
        R<Orvia::SolExportOptions>("SolExportOptions"),
        R<Orvia::Light>("Light"),
        R<Orvia::RoadSign>("RoadSign"),
        R<Orvia::Timer>("Timer"),
        R<Orvia::TrafficLightGroup>("TrafficLightGroup"),
        R<Orvia::TrafficLightAnimation>("TrafficLightAnimation"),
        R<Orvia::TrafficLightState>("TrafficLightState"),
        R<Orvia::Portion>("Portion"),
        R<Orvia::ProfileStandalone>("ProfileStandalone"),
        R<Orvia::MarkingStandalone>("MarkingStandalone"),
        R<Orvia::Profile>("Profile"),
        R<Orvia::Lane>("Lane"),
        R<Orvia::LaneBorder>("LaneBorder"),
        R<Orvia::Decoration>("Decoration"),
        R<Orvia::Marking>("Marking"),
        R<Orvia::Ground>("Ground"),
        R<Orvia::Roughness>("Roughness"),
        R<Orvia::Point2x2D>("Point2x2D"),
        R<Orvia::Trajectory>("Trajectory"),
        R<Orvia::TrajectoryPart>("TrajectoryPart"),
        R<Orvia::ProfileModifier>("ProfileModifier"),
        R<Orvia::BorderModifier>("BorderModifier"),
        R<Orvia::BorderOffset>("BorderOffset"),
        R<Orvia::ConcentricZone>("ConcentricZone"),
        R<Orvia::EntitiesGeneration>("EntitiesGeneration"),
        R<Orvia::ExternalEntity>("ExternalEntity"),
        R<Orvia::Link>("Link"),
        R<Orvia::ParkingLot>("ParkingLot"),
        R<Orvia::ParkingSpot>("ParkingSpot"),
        R<Orvia::CompositeObject>("CompositeObject"),
        R<Orvia::Scale>("Scale"),
        R<Orvia::Obstacle>("Obstacle"),
        R<Orvia::SurfaceModifier>("SurfaceModifier"),
        R<Orvia::TrackScope>("TrackScope"),
        R<Orvia::TrackClippedData>("TrackClippedData"),
        R<Orvia::MarkClippedData>("MarkClippedData"),
        R<Orvia::PedestrianNetwork>("PedestrianNetwork"),

        R<Orvia::RoadPiece>("RoadElement"),
        R<Ruvex::LanePairElement>("LanePair"),
        R<Orvia::ExternalElement>("ExternalElement"),
        R<Orvia::ExternalElement>("ExternalSurface"),
        R<Orvia::ExternalElement>("ExternalTerrain"),
        R<Orvia::ExternalElement>("ProxyFile"),
        R<Orvia::Sequence>("Sequence"),
        R<Orvia::Sequence>("SequenceY"),
        R<Orvia::Sequence>("SequenceZ"),
        R<Ruvex::TrackClipElement>("TrackClip"),
        R<Orvia::TrackClippedData>("ClippedData"),
        R<Orvia::LinearObject>("Linear"),
        R<Orvia::SubPart>("SubParts"),
        R<Orvia::Zone>("Area"),
        R<Orvia::VehicleAuthorisation>("VehicleType"),
        R<Orvia::SoftGroundPropertiesElement>("SoftGroundProperties"),
        R<Orvia::FunctionalGroundElement>("FunctionalModel"),
        R<Orvia::TerramecanicsGroundElement>("TerraMecanicsModel"),
        R<Orvia::Analytic>("RoughnessAnalytic"),
        R<Orvia::Point2x2D>("Scale2x2DPoints"),
        R<Orvia::Point2x2D>("Offset2x2DPoints"),
        R<Orvia::TrajectoryPiece>("TrajectoryElement"),
        R<Ruvex::UVMappingElement>("UVMapping"),
        R<Orvia::MaterialChanel>("Diffuse"),
        R<Orvia::MaterialChanel>("Ambient"),
        R<Orvia::MaterialChanel>("Specular"),
        R<Orvia::MaterialChanel>("Emissive"),
        R<Orvia::QuenbelDataElement>("QuenbelData"),
        R<QorOldData::LegacyElement>("Legacy"),
        R<QorOldData::LegacySZCurveElement>("LegacySZCurve"),
        R<QorOldData::VersionElement>("Version"),
        R<QorOldData::VersionElement>("QorVersion"),
        R<Ruvex::CartesianCurveElement>("TrajectoryCurve"),
        R<Ruvex::CartesianCurveElement>("SZCurve"),
        R<Ruvex::CartesianCurveElement>("BankingCurve"),
        R<Ruvex::XYCurveElement>("XYCurve"),
        R<PolynomialFunction>("Polynomial"),
        R<Segment>("Segment"),
        R<CircleArc>("CircleArc"),
        R<ClothoArc>("ClothoArc"),
        R<ClothoidSpline>("ClothoidSpline"),
        R<PolyLine>("PolyLine"),
        R<Rail::RailNetwork>("RailNetwork"),
        R<Rail::ObjectOnTrackSpanElement>("Tunnel"),
        R<Rail::ObjectOnTrackSpanElement>("Bridge"),
        R<Rail::ObjectOnTrackSpanElement>("Gantry"),
        R<Rail::ObjectOnTrackSpanElement>("Platform"),
        R<Rail::ObjectOnTrackSpanElement>("LevelCrossing"),
        R<Rail::ObjectOnTrackSpanElement>("RoadArea"),
        R<Rail::WorldEquipmentElement>("RadioAntena"),
        R<Rail::WorldEquipmentElement>("AreaTelegramCalculator"),
        R<Rail::Signal>("Signal"),
        R<Rail::Balise>("Balise"),
        R<Rail::TelegramCalculator>("TelegramCalculator"),
        R<Rail::TrainDetection>("TrainDetection"),
        R<Rail::RailroadTrack>("RailroadTrack"),
        R<Rail::Switch>("Switch"),
        R<Rail::Crossing>("Crossing"),
        R<Rail::EnumProperty>("EnumProperty"),
        R<Rail::DoubleProperty>("DoubleProperty"),
        R<Rail::ConnectionReference>("ConnectionReference"),
        R<Rail::PropertyValueElement>("EnumPropertyValue"),
        R<Rail::PropertyValueElement>("DoublePropertyValue"),
        R<Rail::QuoteElement>("Quote"),
        R<Rail::MileageSystemElement>("MileageSystem"),
        R<Rail::MileageAnchorElement>("MileageAnchor"),
        R<Rail::TrackLinkedEndElement>("TrackLinkedEnd"),
        R<Rail::ConnectionPointElement>("ConnectionPoint"),
        R<Rail::PropertySpanElement>("PropertySpan"),
        R<Rail::PropertyChangeElement>("PropertyChange"),
        R<Orvia::ReferenceElement>("OpenEnd"),
        R<Orvia::ReferenceElement>("BufferEnd"),
        R<Orvia::ReferenceElement>("LinkedEnd"),
        R<Orvia::ReferenceElement>("SwitchEnd"),
        R<Rail::StationElement>("Station"),
        R<Rail::TrackQuoteElement>("TrackQuote"),
        R<Rail::TrackSpanElement>("TrackSpan"),
    };
    return rows;
}

std::string TypeName(const Ruvex::Element* element) {
    return element ? typeid(*element).name() : "null";
}

class FactoryTest : public testing::Test {
protected:
    void SetUp() override {
        m_mode = Ruvex::Encoding::GetMode();
        Orvia::Init(m_mode);
    }
    // Leaves the process with the library started in the mode it had.
    void TearDown() override {
        Orvia::Close();
        Ruvex::Encoding::SetMode(m_mode);
        Orvia::Init(m_mode);
    }

    Ruvex::Encoding::Mode m_mode = Ruvex::Encoding::UTF8;
};

}  // namespace

TEST_F(FactoryTest, EveryTagOfTheTableMakesItsClass) {
    Orvia::OrviaFactory factory;
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.tag);
        CountedPtr<Ruvex::Element> created(factory.Create(row.tag));
        ASSERT_TRUE(created);
        EXPECT_EQ(std::type_index(typeid(*created)), row.type) << TypeName(created.Get());
        EXPECT_EQ(created->GetTagName(), row.savedTag);
        EXPECT_EQ(created->GetRefCount(), 1u);  // new objects come unowned

        // Through a whole document: the loader asks the installed factory, and the object saves under its
        // tag.
        const std::string text =
            std::string("<Ruvex version=\"2.5\" versionRevision=\"0\"><") + row.tag + "/></Ruvex>";
        CountedPtr<Ruvex::Element> loaded(Ruvex::Load(text.c_str(), true));
        ASSERT_TRUE(loaded) << (Ruvex::GetLastProblems().empty()
                                    ? ""
                                    : Ruvex::ToString(Ruvex::GetLastProblems()[0]));
        EXPECT_EQ(std::type_index(typeid(*loaded)), row.type) << TypeName(loaded.Get());
        const std::string saved = Ruvex::SaveToString(loaded.Get());
        EXPECT_NE(saved.find(std::string("<") + row.savedTag + " "), std::string::npos) << saved;
    }
}

TEST_F(FactoryTest, OtherTagsGoToTheElementLayer) {
    Orvia::OrviaFactory factory;
    // Tags are compared exactly: another case is another tag.
    for (const char* tag : {"network", "NETWORK", "Network ", "quenbelData", ""}) {
        SCOPED_TRACE(tag);
        CountedPtr<Ruvex::Element> created(factory.Create(tag));
        EXPECT_EQ(std::type_index(typeid(*created)), std::type_index(typeid(Ruvex::GenericElement)));
        EXPECT_EQ(created->GetTagName(), tag);
    }
    // A data class the table does not name comes plain from the element layer.
    CountedPtr<Ruvex::Element> material(factory.Create("Material"));
    EXPECT_EQ(std::type_index(typeid(*material)), std::type_index(typeid(Ruvex::MaterialElement)));
    CountedPtr<Ruvex::Element> bump(factory.Create("Bump"));
    EXPECT_EQ(std::type_index(typeid(*bump)), std::type_index(typeid(Ruvex::MaterialChanelElement)));
    EXPECT_EQ(bump->GetTagName(), "Bump");
}

TEST_F(FactoryTest, RoughnessPointsStartWithTheirOwnValues) {
    Orvia::OrviaFactory factory;
    auto values = [](const Ruvex::Element* element) {
        auto* p = dynamic_cast<const Orvia::Point2x2D*>(element);
        return p ? std::vector<double>{p->GetValue0(), p->GetValue1(), p->GetValue2(), p->GetValue3(),
                                       p->GetValue4()}
                 : std::vector<double>{};
    };
    CountedPtr<Ruvex::Element> scale(factory.Create("Scale2x2DPoints"));
    CountedPtr<Ruvex::Element> offset(factory.Create("Offset2x2DPoints"));
    CountedPtr<Ruvex::Element> point(factory.Create("Point2x2D"));
    EXPECT_EQ(values(scale.Get()), std::vector<double>(5, 1.0));
    EXPECT_EQ(values(offset.Get()), std::vector<double>(5, 0.0));
    EXPECT_EQ(values(point.Get()), std::vector<double>(5, 0.0));

    // A scale read from a file keeps 1 where the file says nothing.
    CountedPtr<Ruvex::Element> loaded(Ruvex::Load(
        "<Ruvex version=\"2.5\" versionRevision=\"0\"><Scale2x2DPoints value2=\"0.5\"/></Ruvex>", true));
    EXPECT_EQ(values(loaded.Get()), (std::vector<double>{1.0, 1.0, 0.5, 1.0, 1.0}));
}

TEST_F(FactoryTest, PolyLineIsAnUnconstrainedClampedSpline) {
    Orvia::OrviaFactory factory;
    CountedPtr<Ruvex::Element> created(factory.Create("PolyLine"));
    auto* polyline = dynamic_cast<PolyLine*>(created.Get());
    ASSERT_NE(polyline, nullptr);
    EXPECT_EQ(polyline->GetType(), Ruvex::PolyLineElement::EType::ClampedSpline);
    EXPECT_FALSE(polyline->GetPositionConstraint());
    EXPECT_FALSE(polyline->GetOrientationConstraint());
}

TEST_F(FactoryTest, InitInstallsOnceAndRefusesAnotherEncoding) {
    Orvia::Close();
    Ruvex::Encoding::SetMode(Ruvex::Encoding::UTF8);
    Orvia::Init(Ruvex::Encoding::UTF8);
    Ruvex::Factory* installed = Ruvex::GetFactory();
    ASSERT_NE(dynamic_cast<Orvia::OrviaFactory*>(installed), nullptr);
    EXPECT_EQ(installed->GetRefCount(), 1u);

    Orvia::Init(Ruvex::Encoding::UTF8);  // same mode: nothing changes
    EXPECT_EQ(Ruvex::GetFactory(), installed);

    try {
        Orvia::Init(Ruvex::Encoding::Latin1);
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "Error, trying to initialize Orvia library with different encoding.");
    }
    EXPECT_EQ(Ruvex::GetFactory(), installed);
    EXPECT_EQ(Ruvex::Encoding::GetMode(), Ruvex::Encoding::UTF8);

    // Another host's factory is replaced, and the mode is then taken as given.
    Ruvex::SetFactory(new Ruvex::Factory);
    Orvia::Init(Ruvex::Encoding::Latin1);
    EXPECT_NE(dynamic_cast<Orvia::OrviaFactory*>(Ruvex::GetFactory()), nullptr);
    EXPECT_EQ(Ruvex::Encoding::GetMode(), Ruvex::Encoding::Latin1);
}

TEST_F(FactoryTest, CloseUninstalls) {
    Orvia::Close();
    EXPECT_EQ(Ruvex::GetFactory(), nullptr);
    CountedPtr<Ruvex::Element> network(Ruvex::CreateElement("Network"));
    EXPECT_EQ(std::type_index(typeid(*network)), std::type_index(typeid(Ruvex::NetworkElement)));
    CountedPtr<Ruvex::Element> quenbel(Ruvex::CreateElement("QuenbelData"));
    EXPECT_EQ(dynamic_cast<Orvia::UserData*>(quenbel.Get()), nullptr);

    Orvia::Init(m_mode);
    CountedPtr<Ruvex::Element> again(Ruvex::CreateElement("Network"));
    EXPECT_EQ(std::type_index(typeid(*again)), std::type_index(typeid(Orvia::Network)));
}

// The rail network loaded through the library's factory: documents round-trip byte for byte with their
// references resolved, tracks answer as axes, dangling names warn at their place, and the sample network is
// a document like any other.

#include <orvia/core/library.h>
#include <orvia/rail/rail_network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/vek/mark.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using Ruvex::CountedPtr;

namespace {

const std::filesystem::path kData = std::filesystem::path(ORVIA_SOURCE_DIR) / "tests" / "data";

std::string ReadAll(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class Rail : public testing::Test {
protected:
    void SetUp() override { Orvia::Init(Ruvex::Encoding::GetMode()); }
    void TearDown() override { Orvia::Close(); }

    static CountedPtr<::Rail::RailNetwork> Load(const std::string& text) {
        CountedPtr<Ruvex::Element> root(Ruvex::Load(text.c_str(), true));
        return CountedPtr<::Rail::RailNetwork>(dynamic_cast<::Rail::RailNetwork*>(root.Get()));
    }
    static std::string Document(const std::string& body) {
        return "<Ruvex version=\"2.5\" versionRevision=\"0\">\n<RailNetwork>\n" + body +
               "</RailNetwork>\n</Ruvex>\n";
    }
};

void ExpectMark(const vek::Mark& mark, double x, double y, double z, double yaw, double pitch) {
    constexpr double kTolerance = 1e-9;
    EXPECT_NEAR(mark.position.x, x, kTolerance);
    EXPECT_NEAR(mark.position.y, y, kTolerance);
    EXPECT_NEAR(mark.position.z, z, kTolerance);
    EXPECT_NEAR(mark.yaw, yaw, kTolerance);
    EXPECT_NEAR(mark.pitch, pitch, kTolerance);
    EXPECT_EQ(mark.roll, 0.0);
}

}  // namespace

TEST_F(Rail, DataDocumentsRoundTripWithEveryReferenceResolved) {
    // The sample is stored as written, so it must come back byte for byte; the hand-written one once saved.
    for (const char* file : {"rail.xml", "rail_sample.xml"}) {
        SCOPED_TRACE(file);
        const std::string text = ReadAll(kData / file);
        CountedPtr<::Rail::RailNetwork> network = Load(text);
        ASSERT_TRUE(network);
        EXPECT_TRUE(Ruvex::GetLastProblems().empty()) << Ruvex::ToString(Ruvex::GetLastProblems()[0]);
        EXPECT_EQ(network->GetUnresolvedReferenceCount(), 0u);
        const std::string saved = Ruvex::SaveToString(network.Get());
        if (std::string(file) == "rail_sample.xml") {
            EXPECT_EQ(saved, text);
        }
        CountedPtr<::Rail::RailNetwork> again = Load(saved);
        ASSERT_TRUE(again);
        EXPECT_EQ(again->GetUnresolvedReferenceCount(), 0u);
        EXPECT_EQ(Ruvex::SaveToString(again.Get()), saved);
    }

    CountedPtr<::Rail::RailNetwork> network = Load(ReadAll(kData / "rail.xml"));
    ASSERT_TRUE(network);

    ASSERT_EQ(network->GetTrackCount(), 2u);
    EXPECT_EQ(network->GetTrack(2), nullptr);
    ::Rail::RailroadTrack* a = network->GetTrack(0);
    ::Rail::RailroadTrack* b = network->GetTrackByName("B");
    ASSERT_TRUE(a && b);
    ::Rail::Switch* w1 = network->GetSwitchByName("W1");
    ASSERT_TRUE(w1);
    // A buffer end names nothing to resolve; a switch end and a linked end do.
    EXPECT_EQ(a->GetStartSwitch(), nullptr);
    EXPECT_EQ(a->GetStartLink(), nullptr);
    EXPECT_EQ(a->GetEndSwitch(), w1);
    EXPECT_EQ(b->GetStartLink(), network->GetTrackLinkedEndByName("A-B"));
    EXPECT_NE(b->GetStartLink(), nullptr);

    auto* reference =
        dynamic_cast<::Rail::ConnectionReference*>(a->GetConnectionPoints()[0]->GetConnectionReference());
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->GetConnection(), w1);

    auto* speed = dynamic_cast<::Rail::DoublePropertyValue*>(a->GetPropertySpans()[0]->GetPropertyValue());
    ASSERT_TRUE(speed);
    EXPECT_EQ(speed->GetValue(), 44.4);
    EXPECT_EQ(speed->GetProperty(), network->GetSpannedPropertyByName("Speed"));
    auto* change = dynamic_cast<::Rail::PropertyChange*>(a->GetPropertyChanges()[0].Get());
    ASSERT_TRUE(change);
    EXPECT_EQ(change->GetDirection(), ::Rail::PropertyChange::eBoth);
    auto* electrification = dynamic_cast<::Rail::EnumPropertyValue*>(change->GetPropertyValue());
    ASSERT_TRUE(electrification);
    EXPECT_EQ(electrification->GetEnumIndex(), 1);
    ASSERT_TRUE(electrification->GetProperty());
    EXPECT_EQ(electrification->GetProperty()->GetDefaultEnumIndex(), 0);

    auto* signal = dynamic_cast<::Rail::Signal*>(network->GetSignals()[0].Get());
    auto* detection = dynamic_cast<::Rail::TrainDetection*>(network->GetTrainDetections()[0].Get());
    ASSERT_TRUE(signal && detection);
    EXPECT_EQ(signal->GetTrack(), a);
    EXPECT_EQ(detection->GetTrack(), b);

    // Texts that are no value of their enumeration read as value 0 and are written back as read.
    EXPECT_EQ(w1->GetType(), ::Rail::Switch::eOrdinary);
    EXPECT_EQ(w1->SwitchElement::GetType(), "simple");
    ::Rail::MileageSystem* line = network->GetMileageSystemByName("Line1");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->GetUsage(), ::Rail::MileageSystem::eNoInterpolation);
    EXPECT_EQ(line->MileageSystemElement::GetUsage(), "main");
}

TEST_F(Rail, TrackAnswersAsAnAxis) {
    CountedPtr<::Rail::RailNetwork> network = Load(ReadAll(kData / "rail.xml"));
    ASSERT_TRUE(network);
    ::Rail::RailroadTrack* a = network->GetTrackByName("A");
    ::Rail::RailroadTrack* b = network->GetTrackByName("B");
    ASSERT_TRUE(a && b);
    EXPECT_EQ(a->GetXYLength(), 1000.0);  // cached by the network's post-load
    EXPECT_EQ(b->GetValidXYLength(), 300.0);

    // A: straight along x, climbing from 100 m to 102 m on a cubic with level ends.
    vek::Mark mark;
    ASSERT_TRUE(a->GetMark(mark, 250, 0.0));
    const double u = 0.25;
    ExpectMark(mark, 250, 0, 100 + 2 * (3 * u * u - 2 * u * u * u), 0,
               -std::atan(2 * (6 * u - 6 * u * u) / 1000));

    // B: from (1000, 0) a left-hand arc of radius 500; a point 1.5 m to the right of it lies nearer the
    // centre's opposite side. No elevation curve: level at 0.
    const double k = 0.002, s = 150, t = 1.5, h = k * s;
    ASSERT_TRUE(b->GetMark(mark, s, t));
    ExpectMark(mark, 1000 + std::sin(h) / k + t * std::sin(h), (1 - std::cos(h)) / k - t * std::cos(h), 0, h,
               0);

    // Inverted, B runs back from its former end: the ends swap and anchors stay where they were on the line.
    ::Rail::RailroadTrack* inverted = a;
    const std::string startTag = inverted->GetStartEnd()->GetTagName();
    inverted->InvertAxis();
    EXPECT_EQ(inverted->GetEndEnd()->GetTagName(), startTag);
    EXPECT_EQ(inverted->GetStartSwitch(), network->GetSwitchByName("W1"));
    EXPECT_EQ(inverted->GetMileageAnchors()[0]->GetCurvilinearAbscissa(), 1000.0);
    EXPECT_EQ(inverted->GetMileageAnchors()[1]->GetCurvilinearAbscissa(), 0.0);
    ASSERT_TRUE(inverted->GetMark(mark, 750, 0.0));
    EXPECT_NEAR(mark.position.x, 250, 1e-9);
    EXPECT_NEAR(mark.position.z, 100 + 2 * (3 * u * u - 2 * u * u * u), 1e-9);

    // Without a plan curve a track answers nothing, and fails instead of crashing.
    CountedPtr<::Rail::RailroadTrack> bare(new ::Rail::RailroadTrack);
    EXPECT_FALSE(bare->GetMark(mark, 0, 0.0));
    EXPECT_FALSE(bare->Validate());
    bare->InvertAxis();
    EXPECT_EQ(bare->GetValidXYLength(), 0.0);
}

TEST_F(Rail, EnumerationTexts) {
    using ::Rail::Crossing;
    using ::Rail::MileageSystem;
    using ::Rail::PropertyChange;
    using ::Rail::Switch;
    for (int v = 0; v < 4; ++v)
        EXPECT_EQ(Switch::ToSwitchType(Switch::ToText(static_cast<Switch::EType>(v))), v);
    EXPECT_EQ(Switch::ToText(static_cast<Switch::EType>(-1)), "ordinary");
    EXPECT_EQ(Switch::ToSwitchType("ThreeWay"), Switch::eOrdinary);  // exact comparison
    EXPECT_EQ(Crossing::ToText(static_cast<Crossing::EType>(7)), "simple");
    EXPECT_EQ(Crossing::ToCrossingType("simpleSwitch"), Crossing::eSimpleSwitch);
    EXPECT_EQ(MileageSystem::ToUsage("linearInterpolation"), MileageSystem::eLinearInterpolation);
    EXPECT_EQ(MileageSystem::ToText(static_cast<MileageSystem::EUsage>(5)), "noInterpolation");
    EXPECT_EQ(PropertyChange::ToText(static_cast<PropertyChange::EDirection>(7)), "unknown");
    EXPECT_EQ(PropertyChange::ToDirection("unknown"), PropertyChange::eNone);

    // Setting a value keeps the saved text in step.
    CountedPtr<Crossing> crossing(new Crossing);
    crossing->SetType(Crossing::eDoubleSwitch);
    EXPECT_NE(Ruvex::SaveToString(crossing.Get()).find("type=\"doubleSwitch\""), std::string::npos);
    crossing->SetType(static_cast<Crossing::EType>(7));
    EXPECT_EQ(crossing->CrossingElement::GetType(), "simple");
    CountedPtr<PropertyChange> change(new PropertyChange);
    change->SetDirection(PropertyChange::eDirect);
    EXPECT_EQ(change->PropertyChangeElement::GetDirection(), "direct");
}

TEST_F(Rail, EnumeratedPropertiesAndTheirValues) {
    CountedPtr<::Rail::EnumProperty> property(new ::Rail::EnumProperty);
    EXPECT_EQ(property->GetEnumIndex(""), -1);
    EXPECT_EQ(property->GetDefaultEnumIndex(), -1);
    EXPECT_EQ(property->GetEnumName(0), "");
    for (const char* entry : {"750 V", "5000 V", "750 V", "25000 V"})
        property->AddEnum(entry);
    EXPECT_EQ(property->GetEnumIndex("750 V"), 0);  // the first of two
    EXPECT_EQ(property->GetEnumIndex("750"), -1);
    property->SetDefaultEnumName("25000 V");
    EXPECT_EQ(property->GetDefaultEnumIndex(), 3);
    EXPECT_TRUE(property->RemoveEnum(std::string("750 V")));
    EXPECT_EQ(property->GetEnumIndex("750 V"), 1);
    EXPECT_FALSE(property->RemoveEnum(std::string("1500 V")));
    EXPECT_FALSE(property->RemoveEnum(size_t(3)));
    EXPECT_TRUE(property->RemoveEnum(size_t(0)));
    EXPECT_EQ(property->GetEnumCount(), 2u);
    EXPECT_EQ(property->GetDefaultEnumIndex(), 1);

    CountedPtr<::Rail::EnumPropertyValue> value(new ::Rail::EnumPropertyValue);
    value->SetEnumName("25000 V");
    EXPECT_EQ(value->GetEnumIndex(), -1);  // not resolved yet
    value->PostLoad(property.Get());
    EXPECT_EQ(value->GetEnumIndex(), 1);
    value->SetEnumIndex(0);
    EXPECT_EQ(value->GetEnumName(), "750 V");
    value->SetEnumName("3000 V");
    EXPECT_EQ(value->GetEnumIndex(), -1);
    value->PostLoad(nullptr);
    EXPECT_EQ(value->GetEnumIndex(), -1);
    EXPECT_NE(Ruvex::SaveToString(value.Get()).find("value=\"3000 V\""), std::string::npos);

    CountedPtr<::Rail::DoublePropertyValue> number(new ::Rail::DoublePropertyValue);
    EXPECT_EQ(number->GetValue(), 0.0);
    number->SetValue(0.1);
    EXPECT_EQ(number->PropertyValueElement::GetValue(), "0.1");
    EXPECT_EQ(number->GetValue(), 0.1);
    number->PropertyValueElement::SetValue("fast");
    EXPECT_EQ(number->GetValue(), 0.0);
}

TEST_F(Rail, DanglingNamesWarnAtTheirPlaceAndStayUnresolved) {
    // Each reference below names something the network lacks; line numbers count from the document's start.
    const std::string text = Document(R"(<RailroadTracks>
<RailroadTrack name="A">
<XYCurve><Segment length="100"/></XYCurve>
<BufferEnd/>
<SwitchEnd name="W9"/>
<ConnectionPoints><ConnectionPoint>
<ConnectionReference name="X9"/>
<Quote mileageSystemName="Nowhere"/>
</ConnectionPoint></ConnectionPoints>
<PropertyChanges><PropertyChange>
<EnumPropertyValue propertyName="Tension" value="1500 V"/>
</PropertyChange><PropertyChange>
<DoublePropertyValue propertyName="Tension" value="3"/>
</PropertyChange></PropertyChanges>
</RailroadTrack>
</RailroadTracks>
<ChangedProperties><EnumProperty name="Tension"><Enum value="750 V"/></EnumProperty></ChangedProperties>
<Signals><Signal name="S"><TrackQuote trackName="Z"/></Signal></Signals>
)");
    CountedPtr<::Rail::RailNetwork> network = Load(text);
    ASSERT_TRUE(network);
    const std::vector<Ruvex::Problem> problems = Ruvex::GetLastProblems();
    const std::vector<size_t> lines = {7, 9, 10, 13, 15, 20};
    ASSERT_EQ(problems.size(), lines.size());
    for (size_t i = 0; i < problems.size(); ++i) {
        SCOPED_TRACE(Ruvex::ToString(problems[i]));
        EXPECT_TRUE(problems[i].warning);
        EXPECT_EQ(problems[i].line, lines[i]);
        EXPECT_GT(problems[i].column, 0u);
    }
    EXPECT_NE(problems[0].message.find("\"W9\""), std::string::npos);
    EXPECT_EQ(network->GetUnresolvedReferenceCount(), problems.size());

    // The fallbacks: null pointers and index -1; the document is written back as read.
    ::Rail::RailroadTrack* track = network->GetTrack(0);
    ASSERT_TRUE(track);
    EXPECT_EQ(track->GetEndSwitch(), nullptr);
    auto* reference =
        dynamic_cast<::Rail::ConnectionReference*>(track->GetConnectionPoints()[0]->GetConnectionReference());
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->GetConnection(), nullptr);
    auto* entry =
        dynamic_cast<::Rail::EnumPropertyValue*>(track->GetPropertyChanges()[0]->GetPropertyValue());
    ASSERT_TRUE(entry);
    EXPECT_NE(entry->GetProperty(), nullptr);
    EXPECT_EQ(entry->GetEnumIndex(), -1);
    auto* number =
        dynamic_cast<::Rail::DoublePropertyValue*>(track->GetPropertyChanges()[1]->GetPropertyValue());
    ASSERT_TRUE(number);
    EXPECT_EQ(number->GetProperty(), nullptr);  // an enumerated property is no double property
    EXPECT_EQ(dynamic_cast<::Rail::Signal*>(network->GetSignals()[0].Get())->GetTrack(), nullptr);
    const std::string saved = Ruvex::SaveToString(network.Get());
    for (const char* kept : {"<SwitchEnd name=\"W9\"", "<ConnectionReference name=\"X9\"", "value=\"1500 V\"",
                             "trackName=\"Z\""})
        EXPECT_NE(saved.find(kept), std::string::npos) << kept;

    // Adding what was missing and resolving again leaves nothing dangling but the entry and the number.
    auto* w9 = new ::Rail::Switch;
    w9->SetName("W9");
    network->EditSwitches().push_back(w9);
    network->PostLoad();
    EXPECT_EQ(track->GetEndSwitch(), w9);
    EXPECT_EQ(network->GetUnresolvedReferenceCount(), problems.size() - 1);
}

TEST_F(Rail, NetworkWithoutTracksPostLoadsWithoutEffect) {
    const std::string text = Document("");
    CountedPtr<::Rail::RailNetwork> network = Load(text);
    ASSERT_TRUE(network);
    const std::string saved = Ruvex::SaveToString(network.Get());
    network->PostLoad();
    EXPECT_EQ(network->GetTrackCount(), 0u);
    EXPECT_EQ(network->GetTrack(0), nullptr);
    EXPECT_EQ(network->GetUnresolvedReferenceCount(), 0u);
    EXPECT_EQ(Ruvex::SaveToString(network.Get()), saved);
}

TEST_F(Rail, SampleNetworkNamesItsObjectsAndReloadsResolved) {
    CountedPtr<::Rail::RailNetwork> network(new ::Rail::RailNetwork);
    network->BuildFake();
    network->BuildFake();  // replaces, does not append
    EXPECT_EQ(network->GetUnresolvedReferenceCount(), 0u);

    // Names in the order the sample makes them, list by list.
    std::string names;
    auto add = [&names](const auto& list) {
        for (const auto& item : list)
            names += item->GetName() + ",";
    };
    add(network->GetRailroadTracks());
    add(network->GetMileageSystems());
    for (const auto& property : network->GetChangedProperties()) {
        names += property->GetName() + ",";
        const auto* enumerated = dynamic_cast<const ::Rail::EnumProperty*>(property.Get());
        ASSERT_TRUE(enumerated);
        for (size_t i = 0; i < enumerated->GetEnumCount(); ++i)
            names += enumerated->GetEnumName(i) + ",";
    }
    add(network->GetSpannedProperties());
    add(network->GetSwitches());
    add(network->GetTrackLinkedEnds());
    add(network->GetTunnels());
    add(network->GetBridges());
    add(network->GetGantries());
    add(network->GetLevelCrossings());
    add(network->GetRoadAreas());
    for (const auto& station : network->GetStations()) {
        names += station->GetName() + ",";
        add(station->GetPlatforms());
    }
    add(network->GetSignals());
    add(network->GetBalises());
    add(network->GetTelegramCalculators());
    add(network->GetTrainDetections());
    EXPECT_EQ(
        names,
        "myTrack1,Civil,Exploitant,Electrification Aspect,Basic,Complexe,Electrification Tension,750 V,"
        "5000 V,25000 V,Local Train Speed,Express Train Speed,Freight Train Speed,mySwitch1,myLink1,myLink2,"
        "myTunnel1,myBridge1,myBridge2,myGantry1,myGantry2,myLV1,myLV2,myRoadZone1,myRoadZone2,station1,"
        "Platform A,station2,Signal1,Signal2,Balise1,Balise2,TelegramCalculator1,TelegramCalculator2,"
        "TrainDetection1,TrainDetection2,");

    // Saved and read back, the sample loads without a warning, resolves and saves to the same text.
    const std::string saved = Ruvex::SaveToString(network.Get());
    CountedPtr<::Rail::RailNetwork> again = Load(saved);
    ASSERT_TRUE(again);
    EXPECT_TRUE(Ruvex::GetLastProblems().empty()) << Ruvex::ToString(Ruvex::GetLastProblems()[0]);
    EXPECT_EQ(again->GetUnresolvedReferenceCount(), 0u);
    EXPECT_EQ(Ruvex::SaveToString(again.Get()), saved);

    // Its track is an axis like the loaded ones: 600 m straight, then a left-hand arc of radius 1000.
    ::Rail::RailroadTrack* track = again->GetTrack(0);
    ASSERT_TRUE(track);
    vek::Mark mark;
    ASSERT_TRUE(track->GetMark(mark, 600 + 500, 0.0));
    EXPECT_NEAR(mark.position.x, 600 + 1000 * std::sin(0.5), 1e-6);
    EXPECT_NEAR(mark.position.y, 1000 * (1 - std::cos(0.5)), 1e-6);
    EXPECT_NEAR(mark.yaw, 0.5, 1e-9);
    EXPECT_EQ(dynamic_cast<::Rail::Signal*>(again->GetSignals()[1].Get())->GetTrack(), track);
}

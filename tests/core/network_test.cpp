#include <orvia/core/background_image.h>
#include <orvia/core/external_element.h>
#include <orvia/core/geolocalisation.h>
#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/vek/math.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

using Orvia::Network;
using Ruvex::CountedPtr;

namespace {

// Positions and headings go through a negation and a subtraction from 2 pi: a few ulps of 2 pi at most.
constexpr double kAngleToleranceRad = 1e-12;
// Transformed box corners go through a rotation by a non-exact pi / 2.
constexpr double kLengthToleranceM = 1e-9;

CountedPtr<Network> LoadNetwork(const std::string& networkElement) {
    const std::string text = "<Ruvex version=\"2.5\" versionRevision=\"0\">" + networkElement + "</Ruvex>";
    CountedPtr<Network> network(Network::Load(text.c_str(), text.size(), {}));
    EXPECT_TRUE(network) << (Ruvex::GetLastProblems().empty() ? std::string()
                                                              : Ruvex::ToString(Ruvex::GetLastProblems()[0]));
    return network;
}

// Two sub-networks joined by junction J between West/DX (end) and East/XE (start). Both sub-networks have an
// intersection named A.
std::string TwoQuarters(const std::string& roads, const std::string& moreJunctions = "") {
    return R"(<Network name="Town"><SubNetworks>
  <SubNetwork name="West"><Intersections>
    <Intersection name="A" x="0"/><Intersection name="B" x="100"/>
    <Intersection name="C" x="200"/><Intersection name="D" x="300"/></Intersections><Tracks>
    <Track name="AB" startIntersectionName="A" endIntersectionName="B"/>
    <Track name="BC" startIntersectionName="B" endIntersectionName="C"/>
    <Track name="CD" startIntersectionName="C" endIntersectionName="D"/>
    <Track name="AD" startIntersectionName="A" endIntersectionName="D"/>
    <Track name="DX" startIntersectionName="D"/></Tracks></SubNetwork>
  <SubNetwork name="East" x="500">
    <Intersections><Intersection name="A"/><Intersection name="E" x="50"/></Intersections><Tracks>
    <Track name="XE" endIntersectionName="E"/><Track name="AE" startIntersectionName="A" endIntersectionName="E"/>
  </Tracks></SubNetwork></SubNetworks>
  <SubNetworkJunctions><SubNetworkJunction name="J" x="450">
    <SubNetworkExit subNetwork="West" track="DX" extremity="end"/>
    <SubNetworkExit subNetwork="East" track="XE" extremity="start"/></SubNetworkJunction>)" +
           moreJunctions + "</SubNetworkJunctions><Roads>" + roads + "</Roads></Network>";
}

std::string RoadOf(const std::string& name, std::initializer_list<const char*> pieces) {
    std::string text = "<Road name=\"" + name + "\">";
    for (const char* piece : pieces) {
        std::string p(piece);  // "Sub/Track" or "Sub/Track~" for a piece run against the track
        const bool inverted = !p.empty() && p.back() == '~';
        if (inverted) p.pop_back();
        const size_t slash = p.find('/');
        text += "<RoadElement subNetwork=\"" + p.substr(0, slash) + "\" track=\"" + p.substr(slash + 1) +
                "\" inverted=\"" + (inverted ? "true" : "false") + "\"/>";
    }
    return text + "</Road>";
}

std::vector<std::string> PieceNames(const Orvia::Road* road) {
    std::vector<std::string> names;
    for (size_t i = 0; road && i < road->GetRoadPieceCount(); ++i)
        names.push_back(road->GetRoadPiece(i)->GetSubNetworkName() + "/" +
                        road->GetRoadPiece(i)->GetTrackName());
    return names;
}

Orvia::Track* TrackOf(const Network& network, const char* subNetwork, const char* track) {
    Orvia::SubNetwork* s = network.GetSubNetworkByName(subNetwork);
    return s ? s->GetTrackByName(track) : nullptr;
}

std::string UniqueRoadName(std::initializer_list<const char*> existing, const std::string& requested) {
    CountedPtr<Network> network(new Network);
    for (const char* name : existing)
        network->AddRoad()->SetName(name);
    return network->GetUniqueRoadName(requested);
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

class TempDir {
public:
    TempDir() {
        path_ = std::filesystem::temp_directory_path() /
                ("orvia_network_test_" + std::to_string(reinterpret_cast<uintptr_t>(this)) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(path_);
    }
    ~TempDir() { std::filesystem::remove_all(path_); }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace

TEST(Network, UniqueNameRule) {
    EXPECT_EQ(UniqueRoadName({"Road", "Road 1", "Road 2"}, "Road"), "Road 3");
    EXPECT_EQ(UniqueRoadName({"Road", "Road 3"}, "Road"), "Road 4");
    EXPECT_EQ(UniqueRoadName({"Road"}, "Road"), "Road 1");
    EXPECT_EQ(UniqueRoadName({"Road7"}, "Road7"), "Road 8");
    // Free requests are kept as they are, whatever numbered names exist.
    EXPECT_EQ(UniqueRoadName({"Road 1"}, "Road"), "Road");
    EXPECT_EQ(UniqueRoadName({}, "Road"), "Road");
    // Gaps are filled from the smallest number in use upwards, never below it.
    EXPECT_EQ(UniqueRoadName({"Road", "Road 2", "Road 5"}, "Road"), "Road 3");
    EXPECT_EQ(UniqueRoadName({"Road", "Road 3", "Road 4"}, "Road"), "Road 5");
    // Any name that begins with the base counts.
    EXPECT_EQ(UniqueRoadName({"Road", "Roadster 9"}, "Road"), "Road 10");
    // Only one blank goes before the number is added back.
    EXPECT_EQ(UniqueRoadName({"Road  5"}, "Road  5"), "Road  6");
    EXPECT_EQ(UniqueRoadName({"Road 5"}, "Road 5"), "Road 6");
    // A name of digits only has no base to number.
    EXPECT_EQ(UniqueRoadName({"12"}, "12"), "12 1");
    // A number beyond 32 bits is not a number in use.
    EXPECT_EQ(UniqueRoadName({"Road", "Road 99999999999"}, "Road"), "Road 1");
    EXPECT_EQ(UniqueRoadName({"Road", "Road 2147483647"}, "Road"), "Road 2147483648");
}

TEST(Network, MakeNamesUniqueOnLoad) {
    CountedPtr<Network> network = LoadNetwork(R"(<Network>
  <SubNetworks>
    <SubNetwork name="A"/><SubNetwork name="A"/><SubNetwork/><SubNetwork name="Sub Network"/><SubNetwork/>
  </SubNetworks>
  <SubNetworkJunctions>
    <SubNetworkJunction/><SubNetworkJunction/><SubNetworkJunction name="X"/><SubNetworkJunction name="X"/>
  </SubNetworkJunctions>
  <Roads><Road name="R"/><Road name="R"/></Roads>
</Network>)");
    ASSERT_TRUE(network);
    std::vector<std::string> subNetworks;
    std::vector<std::string> junctions;
    for (size_t i = 0; i < network->GetSubNetworkCount(); ++i)
        subNetworks.push_back(network->GetSubNetwork(i)->GetName());
    for (size_t i = 0; i < network->GetSubNetworkJunctionCount(); ++i)
        junctions.push_back(network->GetSubNetworkJunction(i)->GetName());
    // An unnamed sub-network's default name is not remembered, so the later "Sub Network" keeps its name.
    EXPECT_EQ(subNetworks,
              (std::vector<std::string>{"A", "A 1", "Sub Network 1", "Sub Network", "Sub Network 2"}));
    EXPECT_EQ(junctions,
              (std::vector<std::string>{"SubNetworkJunction", "SubNetworkJunction 1", "X", "X 1"}));
    EXPECT_EQ(network->GetRoad(0)->GetName(), "R");
    EXPECT_EQ(network->GetRoad(1)->GetName(), "R");

    // Saving makes names unique again.
    network->GetSubNetwork(1)->SetName("A");
    EXPECT_NE(Ruvex::SaveToString(network.Get()).find("<SubNetwork name=\"A 1\""), std::string::npos);
    EXPECT_EQ(network->GetSubNetwork(1)->GetName(), "A 1");

    // Duplicates inside a sub-network are renamed too, and the track ends follow a renamed intersection.
    CountedPtr<Network> inner = LoadNetwork(R"(<Network><SubNetworks><SubNetwork name="S">
  <Intersections><Intersection name="I"/><Intersection name="I"/></Intersections>
  <Tracks><Track name="T"/><Track name="T" startIntersectionName="K"/></Tracks>
</SubNetwork></SubNetworks></Network>)");
    ASSERT_TRUE(inner);
    Orvia::SubNetwork* s = inner->GetSubNetwork(0);
    EXPECT_EQ(s->GetTrack(1)->GetName(), "T 1");
    EXPECT_EQ(s->GetIntersectionByIndex(1)->GetName(), "I 1");
}

TEST(Network, LoadFromMemoryAndFile) {
    const std::string text =
        R"(<Ruvex version="2.5" versionRevision="0"><Network name="Whole"><SubNetworks><SubNetwork name="S"/>)"
        R"(</SubNetworks></Network></Ruvex>)";
    // The length is ignored: the whole NUL-terminated text is read.
    CountedPtr<Network> network(Network::Load(text.c_str(), 5, {}));
    ASSERT_TRUE(network);
    EXPECT_EQ(network->getFileName(), "buffer");
    EXPECT_EQ(network->GetSubNetworkCount(), 1u);
    EXPECT_EQ(network->GetFormatVersion(), Ruvex::MakeVersionID(2, 5, 0));

    TempDir dir;
    const std::string path = (dir.path() / "whole.xml").string();
    std::ofstream(path) << text;
    CountedPtr<Network> fromFile(Network::Load(path.c_str(), {}));
    ASSERT_TRUE(fromFile);
    EXPECT_EQ(fromFile->getFileName(), path);
    EXPECT_EQ(fromFile->GetSubNetwork(0)->GetNetwork(), fromFile.Get());

    // A document whose root is not a network, a missing file and broken XML give null.
    const char* road = R"(<Ruvex version="2.5"><Road name="R"/></Ruvex>)";
    EXPECT_FALSE(CountedPtr<Network>(Network::Load(road, 0, {})));
    EXPECT_FALSE(CountedPtr<Network>(Network::Load((dir.path() / "missing.xml").string().c_str(), {})));
    EXPECT_FALSE(CountedPtr<Network>(Network::Load("<Ruvex><Network>", 0, {})));
    ASSERT_FALSE(Ruvex::GetLastProblems().empty());
    EXPECT_EQ(Ruvex::GetLastProblems()[0].file, "buffer");
}

TEST(Network, OldLayoutGoesThroughTheConverter) {
    // The converter reads the layout of 2.2.2 and older with the current reader: the same content comes out.
    const char* old = R"(<Ruvex version="2.2" versionRevision="2"><Network name="Old" trafficHand="left-hand">
        <SubNetworks><SubNetwork name="A"/></SubNetworks></Network></Ruvex>)";
    CountedPtr<Network> network(Network::Load(old, 0, {}));
    ASSERT_TRUE(network);
    EXPECT_EQ(network->GetFormatVersion(), Ruvex::MakeVersionID(2, 2, 2));
    EXPECT_EQ(network->GetHandType(), Network::eLeftHand);
    ASSERT_EQ(network->GetSubNetworkCount(), 1u);
    EXPECT_EQ(network->GetSubNetwork(0)->GetName(), "A");

    const char* broken = R"(<Ruvex version="2.2" versionRevision="2"><Network name="Old">
        <SubNetworks><SubNetwork name="A" heading="north"/></SubNetworks></Network></Ruvex>)";
    CountedPtr<Network> warned(Network::Load(broken, 0, {}));
    ASSERT_TRUE(warned);
    EXPECT_EQ(warned->GetSubNetwork(0)->GetHeading(), 0.0);
    ASSERT_EQ(Ruvex::GetLastProblems().size(), 1u);
    EXPECT_EQ(Ruvex::GetLastProblems()[0].line, 2u);
}

TEST(Network, PostLoadResolvesAndDropsJunctionsHighestFirst) {
    const std::string extra = R"(
    <SubNetworkJunction name="Broken track"><SubNetworkExit subNetwork="West" track="Nope"/></SubNetworkJunction>
    <SubNetworkJunction name="Kept"><SubNetworkExit subNetwork="East" track="AE" extremity="END"/></SubNetworkJunction>
    <SubNetworkJunction name="Broken sub-network"><SubNetworkExit subNetwork="North" track="AB"/></SubNetworkJunction>)";
    CountedPtr<Network> network = LoadNetwork(TwoQuarters("", extra));
    ASSERT_TRUE(network);
    ASSERT_EQ(network->GetSubNetworkJunctionCount(), 2u);
    EXPECT_EQ(network->GetSubNetworkJunction(0)->GetName(), "J");
    EXPECT_EQ(network->GetSubNetworkJunction(1)->GetName(), "Kept");
    EXPECT_EQ(network->GetSubNetworkJunctionIndex(network->GetSubNetworkJunctionByName("Kept")), 1u);

    // Exits, track ends and junction lookups are linked.
    Orvia::Track* dx = TrackOf(*network, "West", "DX");
    Orvia::Track* xe = TrackOf(*network, "East", "XE");
    Orvia::SubNetworkJunction* j = network->GetSubNetworkJunction(0);
    EXPECT_EQ(network->GetSubNetworkJunction(dx, false), j);
    EXPECT_EQ(network->GetSubNetworkJunction(dx, true), nullptr);
    EXPECT_EQ(dx->FindEndNode(), j);
    EXPECT_EQ(xe->FindStartNode(), j);
    EXPECT_EQ(dx->FindStartNode(), network->GetSubNetworkByName("West")->GetIntersectionByName("D"));
}

TEST(Network, RoadsRegisterWithTracksAndDeletingMovesTheLastRoad) {
    CountedPtr<Network> network =
        LoadNetwork(TwoQuarters(RoadOf("R0", {"West/AB"}) + RoadOf("R1", {"West/BC", "Nowhere/AB"}) +
                                RoadOf("R2", {"West/CD", "West/AB", "West/AB"})));
    ASSERT_TRUE(network);
    EXPECT_EQ(TrackOf(*network, "West", "AB")->GetInRoad(), (std::vector<uint64_t>{0, 2}));
    EXPECT_EQ(TrackOf(*network, "West", "BC")->GetInRoad(), (std::vector<uint64_t>{1}));
    EXPECT_EQ(TrackOf(*network, "West", "CD")->GetInRoad(), (std::vector<uint64_t>{2}));
    EXPECT_EQ(TrackOf(*network, "West", "AB")->GetInRoad(1), network->GetRoad(2));
    EXPECT_EQ(network->GetRoadIndexByName("R1"), 1u);
    EXPECT_EQ(network->GetRoadIndexByName("r1"), Network::npos);
    EXPECT_EQ(network->GetRoad(1)->GetTrack(0, network.Get()), TrackOf(*network, "West", "BC"));
    EXPECT_EQ(network->GetRoad(1)->GetTrack(1, network.Get()), nullptr);  // its sub-network is missing

    // Post-loading again does not register twice.
    network->PostLoad({});
    EXPECT_EQ(TrackOf(*network, "West", "AB")->GetInRoad(), (std::vector<uint64_t>{0, 2}));

    // Deleting a road moves the last one into its place.
    Orvia::Road* r2 = network->GetRoad(2);
    ASSERT_TRUE(network->DeleteRoad(0));
    ASSERT_EQ(network->GetRoadCount(), 2u);
    EXPECT_EQ(network->GetRoad(0), r2);
    EXPECT_EQ(network->GetRoad(1)->GetName(), "R1");
    EXPECT_EQ(TrackOf(*network, "West", "AB")->GetInRoad(), (std::vector<uint64_t>{0}));
    EXPECT_EQ(TrackOf(*network, "West", "BC")->GetInRoad(), (std::vector<uint64_t>{1}));
    EXPECT_EQ(TrackOf(*network, "West", "CD")->GetInRoad(), (std::vector<uint64_t>{0}));

    // The last road goes without moving anything; unknown roads are no-ops.
    EXPECT_TRUE(network->DeleteRoad("R1"));
    EXPECT_TRUE(TrackOf(*network, "West", "BC")->GetInRoad().empty());
    EXPECT_EQ(TrackOf(*network, "West", "CD")->GetInRoad(), (std::vector<uint64_t>{0}));
    EXPECT_FALSE(network->DeleteRoad("R1"));
    EXPECT_FALSE(network->DeleteRoad(5));
    EXPECT_EQ(network->GetRoadCount(), 1u);
}

TEST(Network, AddAndRemoveTracksOfRoads) {
    CountedPtr<Network> network = LoadNetwork(TwoQuarters(""));
    ASSERT_TRUE(network);
    EXPECT_EQ(network->AddRoad()->GetName(), "Road");
    Orvia::Road* second = network->AddRoad();
    EXPECT_EQ(second->GetName(), "Road 1");
    EXPECT_EQ(second->GetPriorityLevel(), std::numeric_limits<uint64_t>::max());

    EXPECT_TRUE(network->AddTrackToRoad("West", "AB", 1));
    EXPECT_TRUE(network->AddTrackToRoad("West", "BC", 1));
    EXPECT_FALSE(network->AddTrackToRoad("West", "ZZ", 1));
    EXPECT_FALSE(network->AddTrackToRoad("West", "AB", 2));
    EXPECT_EQ(PieceNames(second), (std::vector<std::string>{"West/AB", "West/BC"}));
    EXPECT_EQ(TrackOf(*network, "West", "AB")->GetInRoad(), (std::vector<uint64_t>{1}));

    EXPECT_TRUE(network->RemoveTrackFromRoad("West", "AB", 1));
    EXPECT_FALSE(network->RemoveTrackFromRoad("West", "AB", 1));
    EXPECT_TRUE(TrackOf(*network, "West", "AB")->GetInRoad().empty());
    Orvia::SubNetwork* west = network->GetSubNetworkByName("West");
    EXPECT_TRUE(network->RemoveTrackFromRoad(west, west->GetTrackIndex(TrackOf(*network, "West", "BC")), 1));
    EXPECT_EQ(second->GetRoadPieceCount(), 0u);
    EXPECT_FALSE(network->RemoveTrackFromRoad(west, 99, 1));
}

TEST(Network, ValidateCutsRoadsAfterTheFirstBrokenPair) {
    CountedPtr<Network> network = LoadNetwork(TwoQuarters(
        RoadOf("Cut", {"West/AB", "West/BC", "West/AD", "West/CD"}) +
        RoadOf("Reversed", {"West/BC~", "West/AB~"}) + RoadOf("Across", {"West/CD", "West/DX", "East/XE"}) +
        RoadOf("Homonyms", {"West/AD~", "East/AE"}) +
        RoadOf("Missing", {"West/AB", "Nowhere/ZZ", "West/BC"}) + RoadOf("Single", {"West/AD"})));
    ASSERT_TRUE(network);
    network->Validate();
    EXPECT_EQ(PieceNames(network->GetRoad(0)), (std::vector<std::string>{"West/AB", "West/BC"}));
    EXPECT_EQ(PieceNames(network->GetRoad(1)), (std::vector<std::string>{"West/BC", "West/AB"}));
    EXPECT_EQ(PieceNames(network->GetRoad(2)), (std::vector<std::string>{"West/CD", "West/DX", "East/XE"}));
    // Both ends meet a connector named A, but not the same one.
    EXPECT_EQ(PieceNames(network->GetRoad(3)), (std::vector<std::string>{"West/AD"}));
    EXPECT_EQ(PieceNames(network->GetRoad(4)), (std::vector<std::string>{"West/AB"}));
    EXPECT_EQ(PieceNames(network->GetRoad(5)), (std::vector<std::string>{"West/AD"}));
    // Tracks cut off a road forget it; tracks still on it keep it.
    EXPECT_EQ(TrackOf(*network, "West", "AD")->GetInRoad(), (std::vector<uint64_t>{3, 5}));
    EXPECT_EQ(TrackOf(*network, "East", "AE")->GetInRoad(), (std::vector<uint64_t>{}));
    EXPECT_EQ(TrackOf(*network, "West", "BC")->GetInRoad(), (std::vector<uint64_t>{0, 1}));
}

TEST(Network, RemoveSubNetworkCutsRoadsAndJunctions) {
    CountedPtr<Network> network = LoadNetwork(
        TwoQuarters(RoadOf("WestOnly", {"West/AB"}) + RoadOf("Across", {"West/DX", "East/XE", "East/AE"}) +
                    RoadOf("EastOnly", {"East/AE"})));
    ASSERT_TRUE(network);
    Orvia::SubNetwork* east = network->GetSubNetworkByName("East");
    EXPECT_FALSE(network->RemoveSubNetwork(2));
    ASSERT_TRUE(network->RemoveSubNetwork(0));
    ASSERT_EQ(network->GetSubNetworkCount(), 1u);
    EXPECT_EQ(network->GetSubNetwork(0), east);
    EXPECT_EQ(network->GetSubNetworkJunctionCount(), 0u);
    // WestOnly was deleted and EastOnly, the last road, took its place.
    ASSERT_EQ(network->GetRoadCount(), 2u);
    EXPECT_EQ(network->GetRoad(0)->GetName(), "EastOnly");
    EXPECT_EQ(PieceNames(network->GetRoad(1)), (std::vector<std::string>{"East/XE", "East/AE"}));
}

TEST(Network, MergeSubNetworksKeepsTheLowerOne) {
    CountedPtr<Network> network =
        LoadNetwork(TwoQuarters(RoadOf("Across", {"West/DX", "East/XE"}) + RoadOf("East", {"East/AE"})));
    ASSERT_TRUE(network);
    Orvia::SubNetwork* west = network->GetSubNetwork(0);
    network->MergeSubNetworks(1, 1);
    network->MergeSubNetworks(0, 2);
    EXPECT_EQ(network->GetSubNetworkCount(), 2u);

    network->MergeSubNetworks(1, 0);
    ASSERT_EQ(network->GetSubNetworkCount(), 1u);
    EXPECT_EQ(network->GetSubNetwork(0), west);
    EXPECT_EQ(west->GetName(), "West");
    EXPECT_EQ(west->GetTrackCount(), 7u);
    // East's intersection A collided with West's: renamed, and the track that met it follows.
    EXPECT_EQ(west->GetIntersectionCount(), 6u);
    Orvia::Track* ae = west->GetTrackByName("AE");
    ASSERT_NE(ae, nullptr);
    EXPECT_EQ(ae->GetStartIntersectionName(), "A 1");
    EXPECT_EQ(ae->GetSubNetwork(), west);
    EXPECT_EQ(network->GetSubNetworkJunctionCount(), 0u);
    EXPECT_EQ(PieceNames(network->GetRoad(0)), (std::vector<std::string>{"West/DX", "West/XE"}));
    EXPECT_EQ(PieceNames(network->GetRoad(1)), (std::vector<std::string>{"West/AE"}));
    EXPECT_EQ(network->GetRoad(1)->GetTrack(0, network.Get()), ae);
}

TEST(Network, MergeWithSharesAndRenames) {
    CountedPtr<Network> network = LoadNetwork(TwoQuarters(RoadOf("Main", {"West/AB"})));
    CountedPtr<Network> other = LoadNetwork(R"(<Network>
  <SubNetworks><SubNetwork name="West"><Tracks><Track name="Q"/></Tracks></SubNetwork><SubNetwork name="Far"/></SubNetworks>
  <SubNetworkJunctions><SubNetworkJunction name="J"><SubNetworkExit subNetwork="West" track="Q"/></SubNetworkJunction></SubNetworkJunctions>
  <Roads><Road name="Main"/></Roads>
</Network>)");
    ASSERT_TRUE(network && other);
    network->MergeWith(nullptr);
    EXPECT_EQ(network->GetSubNetworkCount(), 2u);

    Orvia::SubNetwork* incoming = other->GetSubNetwork(0);
    network->MergeWith(other.Get());
    ASSERT_EQ(network->GetSubNetworkCount(), 4u);
    EXPECT_EQ(network->GetSubNetwork(2), incoming);
    EXPECT_EQ(other->GetSubNetwork(0), incoming);
    EXPECT_EQ(incoming->GetName(), "West 1");
    EXPECT_EQ(incoming->GetNetwork(), network.Get());
    ASSERT_EQ(network->GetSubNetworkJunctionCount(), 2u);
    EXPECT_EQ(network->GetSubNetworkJunction(1)->GetName(), "J 1");
    // The junction follows its sub-network's new name.
    Orvia::SubNetworkExit* exit = network->GetSubNetworkJunction(1)->GetSubNetworkExit(0);
    EXPECT_EQ(exit->GetSubNetworkName(), "West 1");
    EXPECT_EQ(exit->GetTrack(), incoming->GetTrackByName("Q"));
    // Road names are left alone.
    EXPECT_EQ(network->GetRoadCount(), 2u);
    EXPECT_EQ(network->GetRoad(1)->GetName(), "Main");
}

TEST(Network, SymmetrizeRespectYAxisTwiceRestores) {
    CountedPtr<Network> network = LoadNetwork(R"(<Network>
  <ExternalTerrain filePath="t.obj"/><ExternalSurface filePath="r.srf"/>
  <ExternalPhysicSurface filePath="p.phy" flipped="true"/>
  <SubNetworks>
    <SubNetwork name="Zero" x="10" y="5" heading="0"><ProxyFile filePath="zero.xml"/>
      <Intersections><Intersection name="I" x="3" y="4" contourPoints="1 1 2 1"/></Intersections>
    </SubNetwork>
    <SubNetwork name="One" x="-7" y="3" heading="1">
      <Intersections><Intersection name="P" x="13" y="-6" z="2"/></Intersections></SubNetwork>
    <SubNetwork name="Big" heading="5.5"/>
  </SubNetworks>
  <SubNetworkJunctions><SubNetworkJunction name="J" x="12" y="3"/></SubNetworkJunctions>
</Network>)");
    ASSERT_TRUE(network);
    // A point placed by a turned sub-network lands on the mirror of where it was.
    const Orvia::SubNetwork* one = network->GetSubNetwork(1);
    const vek::Vector3 before = one->GetTransform().apply(one->GetIntersectionByIndex(0)->GetPosition());
    network->SymmetrizeRespectYAxis();
    const vek::Vector3 after = one->GetTransform().apply(one->GetIntersectionByIndex(0)->GetPosition());
    EXPECT_NEAR(after.x, -before.x, kLengthToleranceM);
    EXPECT_NEAR(after.y, before.y, kLengthToleranceM);
    EXPECT_NEAR(after.z, before.z, kLengthToleranceM);
    const Orvia::SubNetwork* zero = network->GetSubNetwork(0);
    EXPECT_EQ(zero->GetPosition(), vek::Vector3(-10, 5, 0));
    EXPECT_EQ(zero->GetHeading(), 0.0);
    EXPECT_NEAR(network->GetSubNetwork(1)->GetHeading(), 2 * std::numbers::pi - 1, kAngleToleranceRad);
    EXPECT_NEAR(network->GetSubNetwork(2)->GetHeading(), 2 * std::numbers::pi - 5.5, kAngleToleranceRad);
    EXPECT_EQ(network->GetSubNetworkJunction(0)->GetPosition().x, -12.0);
    EXPECT_EQ(zero->GetIntersectionByIndex(0)->GetPosition().x, -3.0);
    EXPECT_EQ(zero->GetIntersectionByIndex(0)->GetContourPoints()[1].x, -2.0);
    EXPECT_TRUE(zero->GetProxyFile()->GetFlipped());
    EXPECT_TRUE(network->GetGlobalTerrain()->GetFlipped());
    EXPECT_FALSE(network->GetPhysicalSurface()->GetFlipped());
    EXPECT_FALSE(network->GetRollingSurface()->GetFlipped());

    network->SymmetrizeRespectYAxis();
    EXPECT_EQ(zero->GetHeading(), 0.0);
    EXPECT_NEAR(network->GetSubNetwork(1)->GetHeading(), 1.0, kAngleToleranceRad);
    EXPECT_NEAR(network->GetSubNetwork(2)->GetHeading(), 5.5, kAngleToleranceRad);
    EXPECT_EQ(network->GetSubNetwork(1)->GetPosition().x, -7.0);
    EXPECT_EQ(network->GetSubNetworkJunction(0)->GetPosition().x, 12.0);
    EXPECT_EQ(zero->GetIntersectionByIndex(0)->GetPosition(), vek::Vector3(3, 4, 0));
    EXPECT_FALSE(zero->GetProxyFile()->GetFlipped());
    EXPECT_FALSE(network->GetGlobalTerrain()->GetFlipped());
    EXPECT_TRUE(network->GetPhysicalSurface()->GetFlipped());
}

TEST(Network, BoundingBoxOfPlacedSubNetworks) {
    CountedPtr<Network> empty(new Network);
    vek::Box3 box;
    EXPECT_FALSE(empty->GetBoundingBox(box));
    EXPECT_TRUE(box.isEmpty());

    CountedPtr<Network> network = LoadNetwork(R"(<Network><SubNetworks>
    <SubNetwork name="Turned" x="100" y="50" heading="1.5707963267948966">
      <Intersections><Intersection name="P" x="0" y="0" z="0"/><Intersection name="Q" x="10" y="0" z="2"/></Intersections>
    </SubNetwork>
    <SubNetwork name="Nothing" x="-1000"/>
    </SubNetworks></Network>)");
    ASSERT_TRUE(network);
    ASSERT_TRUE(network->GetBoundingBox(box));
    EXPECT_TRUE(vek::isEqual(box.min, {100, 50, 0}, kLengthToleranceM));
    EXPECT_TRUE(vek::isEqual(box.max, {100, 60, 2}, kLengthToleranceM));
}

TEST(Network, ExternalFiles) {
    CountedPtr<Network> network(new Network);
    network->SetGlobalTerrainFilePath("ground/terrain.obj");
    EXPECT_EQ(network->GetGlobalTerrain()->GetTagName(), "ExternalTerrain");
    network->GetGlobalTerrain()->SetFlipped(true);
    network->SetGlobalTerrainFilePath("ground/other.obj");  // a new file: a new element
    EXPECT_FALSE(network->GetGlobalTerrain()->GetFlipped());
    network->SetRollingSurfaceFilePath("r.srf");
    network->SetPhysicalSurfaceFilePath("p.phy");
    EXPECT_EQ(network->GetRollingSurface()->GetTagName(), "ExternalSurface");
    EXPECT_EQ(network->GetPhysicalSurface()->GetTagName(), "ExternalPhysicSurface");
    network->SetRollingSurfaceFilePath("");
    EXPECT_EQ(network->GetRollingSurface(), nullptr);

    // A physical surface read from a file is a runtime external element and keeps what it does not know.
    CountedPtr<Network> loaded = LoadNetwork(
        R"(<Network><ExternalPhysicSurface filePath="p.phy" flipped="true" vendor="x"/></Network>)");
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetPhysicalSurfaceFilePath(), "p.phy");
    EXPECT_NE(Ruvex::SaveToString(loaded.Get())
                  .find(R"(<ExternalPhysicSurface filePath="p.phy" flipped="true" vendor="x")"),
              std::string::npos);
}

TEST(Network, BackgroundImagesByCameraIndex) {
    CountedPtr<Network> network = LoadNetwork(R"(<Network>
  <BackgroundImage filePath="three.png" cameraIndex="3"/>
  <BackgroundImage filePath="one.png" cameraIndex="1" rotation="0.5"/>
  <BackgroundImage filePath="three again.png" cameraIndex="3"/>
  <BackgroundImage filePath="zero.png"/>
</Network>)");
    ASSERT_TRUE(network);
    EXPECT_EQ(network->GetBackGroundImages().size(), 3u);
    EXPECT_EQ(network->GetBackGroundImage(3)->GetFilePath(), "three again.png");
    EXPECT_EQ(network->GetBackGroundImage(0)->GetFilePath(), "zero.png");
    EXPECT_EQ(network->GetBackGroundImage(2), nullptr);

    Orvia::BackGroundImage* five = network->GetOrCreateBackGroundImage(5);
    EXPECT_EQ(network->GetOrCreateBackGroundImage(5), five);
    five->SetFilePath("five.png");
    five->SetCameraIndex(9);  // the key wins on save
    network->ClearBackGroundImage(0);
    const std::string saved = Ruvex::SaveToString(network.Get());
    const size_t one = saved.find("one.png");
    const size_t three = saved.find("three again.png");
    const size_t fiveAt = saved.find("five.png");
    ASSERT_NE(one, std::string::npos);
    EXPECT_LT(one, three);
    EXPECT_LT(three, fiveAt);
    EXPECT_EQ(saved.find("zero.png"), std::string::npos);
    EXPECT_NE(saved.find(R"(filePath="five.png" flipped="false" cameraIndex="5")"), std::string::npos);
    EXPECT_GT(saved.find("<BackgroundImage"), saved.find("<Geolocalisation"));
}

TEST(Network, GeneratedTerrainMaterialReplacedInItsHolder) {
    CountedPtr<Network> network(new Network);
    CountedPtr<Ruvex::MaterialElement> grass(new Ruvex::MaterialElement);
    network->SetGeneratedTerrainMaterial(grass.Get());
    Ruvex::GeneratedTerrainMaterialElement* holder = network->GetGeneratedTerrainMaterialElement();
    CountedPtr<Ruvex::MaterialElement> sand(new Ruvex::MaterialElement);
    network->SetGeneratedTerrainMaterial(sand.Get());
    EXPECT_EQ(network->GetGeneratedTerrainMaterialElement(), holder);
    EXPECT_EQ(network->GetGeneratedTerrainMaterial(), sand.Get());
    EXPECT_EQ(grass->GetRefCount(), 1u);  // the old one released
}

TEST(Network, ApplyProjectionSystem) {
    CountedPtr<Network> network(new Network);
    const Orvia::Geolocalisation* before = network->GetGeolocalisation();
    ASSERT_NE(before, nullptr);
    EXPECT_FALSE(network->ApplyProjectionSystem("neither WKT nor PROJ", vek::Vector2(45, 5), true, false));
    EXPECT_EQ(network->GetGeolocalisation(), before);

    ASSERT_TRUE(network->ApplyProjectionSystem("2154", vek::Vector2(45.5, 4.5), true, true));
    const Orvia::Geolocalisation* after = network->GetGeolocalisation();
    EXPECT_NE(after, before);
    EXPECT_EQ(after->GetDocumentESPG(), 2154u);
    EXPECT_NEAR(after->GetLatitude(), 45.5, 1e-9);
    EXPECT_NEAR(after->GetLongitude(), 4.5, 1e-9);

    ASSERT_TRUE(
        network->ApplyProjectionSystem("+proj=longlat +datum=WGS84 +no_defs", vek::Vector2(), false, false));
    EXPECT_EQ(network->GetGeolocalisation()->GetCenteringVector(), vek::Vector3());
}

TEST(Network, SubNetworksAndJunctionsByHand) {
    CountedPtr<Network> network(new Network);
    network->AddSubNetwork();
    CountedPtr<Orvia::SubNetwork> loose(new Orvia::SubNetwork);
    Orvia::Track* track = loose->CreateTrack("T");
    Orvia::Intersection* end = loose->CreateIntersection(vek::Vector3(1, 2, 3), "I");
    track->SetEndIntersectionName("I");
    network->AddSubNetwork(loose.Get());
    EXPECT_EQ(loose->GetNetwork(), network.Get());
    EXPECT_EQ(track->GetEndIntersection(), end);  // post-loaded when added
    EXPECT_EQ(network->GetSubNetworkByName(nullptr), nullptr);

    Orvia::SubNetworkJunction* unnamed = network->AddSubNetworkJunction();
    Orvia::SubNetworkJunction* named = network->CreateSubNetworkJunction("SubNetworkJunction");
    EXPECT_EQ(unnamed->GetName(), "");
    EXPECT_EQ(network->GetUniqueJunctionName("SubNetworkJunction"), "SubNetworkJunction 1");
    EXPECT_TRUE(network->RemoveSubNetworkJunction(unnamed));
    EXPECT_FALSE(network->RemoveSubNetworkJunction(unnamed));
    EXPECT_FALSE(network->RemoveSubNetworkJunction(3));
    EXPECT_EQ(network->GetSubNetworkJunction(0), named);

    network->Clear();  // the geolocalisation stays
    EXPECT_EQ(network->GetSubNetworkCount(), 0u);
    EXPECT_NE(network->GetGeolocalisation(), nullptr);
}

TEST(Network, ExampleSavesAndReloadsUnchanged) {
    const std::string example = std::string(ORVIA_SOURCE_DIR) + "/examples/city_centre.xml";
    CountedPtr<Network> network(Network::Load(example.c_str(), {}));
    ASSERT_TRUE(network);
    EXPECT_EQ(network->GetSubNetworkJunctionCount(), 1u);  // its junction resolves
    EXPECT_EQ(network->GetBackGroundImages().size(), 2u);
    EXPECT_EQ(network->GetGeolocalisation()->GetDocumentProjectionName(), "RGF93 v1 / Lambert-93");

    TempDir dir;
    const std::filesystem::path first = dir.path() / "first.xml";
    const std::filesystem::path second = dir.path() / "second.xml";
    ASSERT_TRUE(network->Save(first.string().c_str()));
    EXPECT_EQ(network->getFileName(), first.string());
    CountedPtr<Network> reloaded(Network::Load(first.string().c_str(), {}));
    ASSERT_TRUE(reloaded);
    EXPECT_EQ(Ruvex::SaveToString(reloaded.Get()), Ruvex::SaveToString(network.Get()));
    ASSERT_TRUE(reloaded->Save(second.string().c_str()));
    EXPECT_EQ(ReadFile(first), ReadFile(second));
    // What the classes take and what they keep verbatim both come back.
    EXPECT_NE(ReadFile(second).find("<Line value=\"bridge deck resurfaced\""), std::string::npos);
    EXPECT_NE(ReadFile(second).find("A small city centre"), std::string::npos);
}

TEST(Network, RelativePathsOnSaveAbsoluteOnLoad) {
    TempDir dir;
    const std::string root = std::filesystem::weakly_canonical(dir.path()).string();
    CountedPtr<Network> network(new Network);
    network->SetGlobalTerrainFilePath(root + "/ground/terrain.obj");
    network->GetOrCreateBackGroundImage(0)->SetFilePath(root + "/images/map.png");
    Orvia::SubNetwork* s = network->AddSubNetwork();
    s->SetName("S");
    s->SetTerrainElement(new Orvia::ExternalElement("ExternalTerrain", root + "/ground/s.obj"));

    const std::string path = root + "/out/network.xml";
    std::filesystem::create_directories(root + "/out");
    ASSERT_TRUE(network->MakeRelativePathsAndSave(path.c_str(), nullptr));
    EXPECT_EQ(network->GetGlobalTerrainFilePath(), "../ground/terrain.obj");
    EXPECT_EQ(network->GetBackGroundImage(0)->GetFilePath(), "../images/map.png");
    EXPECT_EQ(s->GetTerrain()->GetFilePath(), "../ground/s.obj");
    EXPECT_NE(ReadFile(path).find("filePath=\"../ground/terrain.obj\""), std::string::npos);

    const std::vector<std::string> searchPaths = {root};
    ASSERT_TRUE(network->MakeRelativePathsAndSave(path.c_str(), &searchPaths));
    EXPECT_EQ(network->GetGlobalTerrainFilePath(), "../ground/terrain.obj");  // already relative: kept

    CountedPtr<Network> loaded(Network::LoadAndMakeAbsolutePaths(path.c_str(), {}));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetGlobalTerrainFilePath(), root + "/ground/terrain.obj");
    EXPECT_EQ(loaded->GetBackGroundImage(0)->GetFilePath(), root + "/images/map.png");
    EXPECT_EQ(loaded->GetSubNetwork(0)->GetTerrain()->GetFilePath(), root + "/ground/s.obj");
}

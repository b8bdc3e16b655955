#include <orvia/core/external_element.h>
#include <orvia/core/network.h>
#include <orvia/core/user_data.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <gtest/gtest.h>

#include <numbers>
#include <string>

using Orvia::Network;
using Orvia::SubNetwork;
using Orvia::Track;
using Ruvex::CountedPtr;

namespace {

// A rotation by a non-exact pi / 2 and back.
constexpr double kLengthToleranceM = 1e-9;

CountedPtr<Network> LoadNetwork(const std::string& networkElement) {
    const std::string text = "<Ruvex version=\"2.5\">" + networkElement + "</Ruvex>";
    CountedPtr<Network> network(Network::Load(text.c_str(), 0, {}));
    EXPECT_TRUE(network) << (Ruvex::GetLastProblems().empty() ? ""
                                                              : Ruvex::ToString(Ruvex::GetLastProblems()[0]));
    return network;
}

}  // namespace

TEST(SubNetwork, UniqueTrackNames) {
    // The numbering rule itself is the network's, tested with road names.
    CountedPtr<SubNetwork> subNetwork(new SubNetwork);
    Track* first = subNetwork->CreateTrack("Track");
    Track* second = subNetwork->CreateTrack("Track");
    EXPECT_EQ(first->GetName(), "Track");
    EXPECT_EQ(second->GetName(), "Track 1");
    subNetwork->CreateIntersection(vek::Vector3(1, 2, 3), "X");
    EXPECT_EQ(subNetwork->CreateIntersection(vek::Vector3(), "X")->GetName(), "X 1");
}

TEST(SubNetwork, TrackEndsFollowTheirIntersections) {
    CountedPtr<Network> network = LoadNetwork(R"(<Network><SubNetworks><SubNetwork name="S">
  <Intersections><Intersection name="P"/><Intersection name="Q"/><Intersection/></Intersections>
  <Tracks>
    <Track name="PQ" startIntersectionName="P" endIntersectionName="Q"/>
    <Track name="Loop" startIntersectionName="Q" endIntersectionName="Q"/>
    <Track name="Lost" startIntersectionName="Nowhere" endIntersectionName=""/>
  </Tracks></SubNetwork></SubNetworks></Network>)");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Orvia::Intersection* p = s->GetIntersectionByName("P");
    Orvia::Intersection* q = s->GetIntersectionByName("Q");
    Track* pq = s->GetTrackByName("PQ");
    Track* loop = s->GetTrackByName("Loop");
    EXPECT_EQ(pq->GetStartIntersection(), p);
    EXPECT_EQ(pq->GetEndIntersection(), q);
    EXPECT_EQ(pq->FindStartNode(), p);
    EXPECT_EQ(loop->GetStartIntersection(), q);
    Track* lost = s->GetTrackByName("Lost");
    EXPECT_EQ(lost->GetStartIntersection(), nullptr);
    EXPECT_EQ(lost->GetStartIntersectionName(), "Nowhere");
    // An empty name is a free end even though an intersection bears no name.
    EXPECT_EQ(lost->GetEndIntersection(), nullptr);
    EXPECT_EQ(lost->FindEndNode(), nullptr);

    lost->SetStartIntersection(p);
    EXPECT_EQ(lost->GetStartIntersectionName(), "P");
    lost->SetStartIntersection(nullptr);
    EXPECT_EQ(lost->GetStartIntersectionName(), "");

    // A renamed intersection renames the track ends that named it.
    q->SetName("Square");
    EXPECT_EQ(pq->GetStartIntersectionName(), "P");
    EXPECT_EQ(pq->GetEndIntersectionName(), "Square");
    EXPECT_EQ(loop->GetStartIntersectionName(), "Square");
    EXPECT_EQ(loop->GetEndIntersectionName(), "Square");

    // Of two intersections with one name, the second is renamed on save and the tracks linked to the first
    // keep naming it.
    s->GetIntersectionByIndex(2)->SetName("P");
    EXPECT_EQ(pq->GetStartIntersectionName(), "P");
    EXPECT_NE(Ruvex::SaveToString(network.Get()).find(R"(<Intersection name="P 1")"), std::string::npos);
    EXPECT_EQ(pq->GetStartIntersectionName(), "P");
}

TEST(Track, SetNameRenamesItsRoadPieces) {
    CountedPtr<Network> network = LoadNetwork(R"(<Network><SubNetworks>
  <SubNetwork name="S"><Tracks><Track name="T"/></Tracks></SubNetwork>
  <SubNetwork name="O"><Tracks><Track name="T"/></Tracks></SubNetwork></SubNetworks>
  <Roads><Road name="R"><RoadElement subNetwork="S" track="T"/><RoadElement subNetwork="O" track="T"/>
  <RoadElement subNetwork="S" track="T" inverted="true"/></Road></Roads></Network>)");
    ASSERT_TRUE(network);
    Track* track = network->GetSubNetworkByName("S")->GetTrackByName("T");
    track->SetName("Renamed");
    Orvia::Road* road = network->GetRoad(0);
    EXPECT_EQ(road->GetRoadPiece(0)->GetTrackName(), "Renamed");
    EXPECT_EQ(road->GetRoadPiece(1)->GetTrackName(), "T");
    EXPECT_EQ(road->GetRoadPiece(2)->GetTrackName(), "Renamed");
    EXPECT_EQ(road->GetTrack(2, network.Get()), track);
    EXPECT_EQ(network->GetSubNetworkByName("S")->GetTrackByName("Renamed"), track);
}

TEST(Track, UserDataAreSavedAfterTheTrackOwnChildren) {
    CountedPtr<Network> network = LoadNetwork(R"(<Network><SubNetworks><SubNetwork name="S"><Tracks>
  <Track name="T"><QuenbelData><Line value="x"/></QuenbelData><XYCurve><Segment length="5"/></XYCurve></Track>
  </Tracks></SubNetwork></SubNetworks></Network>)");
    ASSERT_TRUE(network);
    Track* track = network->GetSubNetwork(0)->GetTrack(0);
    ASSERT_EQ(track->GetUserDataCount(), 1u);
    const std::string saved = Ruvex::SaveToString(track);
    ASSERT_NE(saved.find("<QuenbelData"), std::string::npos);
    EXPECT_LT(saved.find("<XYCurve"), saved.find("<QuenbelData"));
}

TEST(SubNetwork, MergeWithMovesAndRenamesIncomingMembers) {
    CountedPtr<Network> network = LoadNetwork(R"(<Network><SubNetworks>
  <SubNetwork name="Keep">
    <Profiles><Profile name="Lanes"/></Profiles><Tracks><Track name="T"/></Tracks>
  </SubNetwork>
  <SubNetwork name="Gone">
    <Materials><Material name="Asphalt"/></Materials>
    <Profiles><Profile name="Lanes"/><Profile name="Wide"/></Profiles>
    <Tracks><Track name="T"><Portion endDistance="5" startProfileName="Lanes" endProfileName="Wide"/></Track></Tracks>
  </SubNetwork></SubNetworks>
  <Roads><Road name="R"><RoadElement subNetwork="Gone" track="T"/><RoadElement subNetwork="Gone" track="Z"/></Road></Roads>
</Network>)");
    ASSERT_TRUE(network);
    SubNetwork* keep = network->GetSubNetwork(0);
    SubNetwork* gone = network->GetSubNetwork(1);
    Track* incoming = gone->GetTrack(0);
    keep->MergeWith(gone);
    // Intersections move as the network's merge test shows.
    EXPECT_EQ(gone->GetTrackCount() + gone->GetProfiles().size(), 0u);
    ASSERT_EQ(keep->GetTrackCount(), 2u);
    EXPECT_EQ(keep->GetTrack(1), incoming);
    EXPECT_EQ(incoming->GetName(), "T 1");
    EXPECT_EQ(incoming->GetPortions()[0]->GetStartProfileName(), "Lanes 1");
    EXPECT_EQ(incoming->GetPortions()[0]->GetEndProfileName(), "Wide");
    EXPECT_EQ(keep->GetMaterials().size(), 1u);
    // The road piece over the moved track follows it; the one naming no track of it stays.
    const Orvia::Road* road = network->GetRoad(0);
    EXPECT_EQ(road->GetRoadPiece(0)->GetSubNetworkName(), "Keep");
    EXPECT_EQ(road->GetRoadPiece(0)->GetTrackName(), "T 1");
    EXPECT_EQ(road->GetRoadPiece(1)->GetSubNetworkName(), "Gone");
}

TEST(SubNetwork, PlacementTransformAndInverse) {
    CountedPtr<Network> network = LoadNetwork(R"(<Network><SubNetworks>
  <SubNetwork name="S" x="100" y="20" z="3" heading="1.5707963267948966"/></SubNetworks></Network>)");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    const vek::Vector3 placed = s->GetTransform().apply(vek::Vector3(10, 0, 1));
    EXPECT_TRUE(placed.isEqual({100, 30, 4}, kLengthToleranceM));
    EXPECT_TRUE(s->GetInverseTransform().apply(placed).isEqual({10, 0, 1}, kLengthToleranceM));
}

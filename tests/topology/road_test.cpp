#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/core/user_data.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <gtest/gtest.h>

#include <string>

using Orvia::Network;
using Orvia::Road;
using Orvia::RoadPiece;
using Ruvex::CountedPtr;

namespace {

CountedPtr<Network> LoadNetwork(const std::string& roads) {
    const std::string text = R"(<Ruvex version="2.5"><Network><SubNetworks>
  <SubNetwork name="A"><Tracks><Track name="T"/><Track name="U"/></Tracks></SubNetwork>
  <SubNetwork name="B"><Tracks><Track name="T"/></Tracks></SubNetwork>
</SubNetworks><Roads>)" + roads +
                             "</Roads></Network></Ruvex>";
    CountedPtr<Network> network(Network::Load(text.c_str(), 0, {}));
    EXPECT_TRUE(network) << (Ruvex::GetLastProblems().empty() ? ""
                                                              : Ruvex::ToString(Ruvex::GetLastProblems()[0]));
    return network;
}

}  // namespace

TEST(Road, PiecesAndLookups) {
    CountedPtr<Road> road(new Road);
    road->AddRoadPiece(new RoadPiece("A", "T"));
    road->AddRoadPiece(new RoadPiece("B", "T", true));
    road->AddRoadPiece(new RoadPiece("A", "U"));
    road->AddRoadPiece(nullptr);
    ASSERT_EQ(road->GetRoadPieceCount(), 3u);
    EXPECT_EQ(road->FindRoadPiece("B", "T"), 1u);
    EXPECT_EQ(road->FindRoadPiece("A", "U"), 2u);
    EXPECT_EQ(road->FindRoadPiece("B", "U"), Road::npos);
    EXPECT_FALSE(road->RemoveRoadPiece(3));
    EXPECT_TRUE(road->RemoveRoadPiece(0));
    EXPECT_EQ(road->GetRoadPiece(0)->GetSubNetworkName(), "B");
    EXPECT_EQ(road->GetRoadPiece(1)->GetTrackName(), "U");
    EXPECT_EQ(road->GetRoadPiece(2), nullptr);
    road->SetPriorityLevel(2);
    EXPECT_NE(Ruvex::SaveToString(road.Get()).find(R"(<Road name="" priorityLevel="2">)"), std::string::npos);
}

TEST(RoadPiece, UserDataRideAlong) {
    CountedPtr<Network> network = LoadNetwork(R"(<Road name="R"><RoadElement subNetwork="A" track="T">
      <QuenbelData><Line value="one"/><Line value="two"/></QuenbelData><Unknown keep="1"/></RoadElement></Road>)");
    ASSERT_TRUE(network);
    RoadPiece* piece = network->GetRoad(0)->GetRoadPiece(0);
    ASSERT_EQ(piece->GetUserDataCount(), 1u);
    const std::string saved = Ruvex::SaveToString(piece);
    EXPECT_NE(saved.find("<Line value=\"two\""), std::string::npos);
    EXPECT_NE(saved.find("<Unknown keep=\"1\""), std::string::npos);
}

TEST(RoadPiece, LegacyIndicesBecomeNames) {
    CountedPtr<Network> network = LoadNetwork(R"(<Road name="R">
      <RoadElement><Legacy firstIndex="0" secondIndex="1"/></RoadElement>
      <RoadElement><Legacy firstIndex="1" secondIndex="5"/></RoadElement>
      <RoadElement subNetwork="B"><Legacy firstIndex="0" secondIndex="0"/></RoadElement>
      <RoadElement><Legacy firstIndex="9" secondIndex="0"/></RoadElement></Road>)");
    ASSERT_TRUE(network);
    Road* road = network->GetRoad(0);
    EXPECT_EQ(road->GetRoadPiece(0)->GetSubNetworkName(), "A");
    EXPECT_EQ(road->GetRoadPiece(0)->GetTrackName(), "U");
    EXPECT_FALSE(road->GetRoadPiece(0)->HasLegacyIndices());
    EXPECT_EQ(network->GetSubNetworkByName("A")->GetTrackByName("U")->GetInRoad(),
              (std::vector<uint64_t>{0}));
    // A track position out of range leaves the track name empty.
    EXPECT_EQ(road->GetRoadPiece(1)->GetSubNetworkName(), "B");
    EXPECT_EQ(road->GetRoadPiece(1)->GetTrackName(), "");
    // A piece that names its sub-network but no track is left as it is, indices included.
    EXPECT_EQ(road->GetRoadPiece(2)->GetSubNetworkName(), "B");
    EXPECT_TRUE(road->GetRoadPiece(2)->HasLegacyIndices());
    EXPECT_EQ(road->GetRoadPiece(3)->GetSubNetworkName(), "");
    EXPECT_FALSE(road->GetRoadPiece(3)->HasLegacyIndices());
    const std::string saved = Ruvex::SaveToString(network.Get());
    EXPECT_EQ(saved.find("<Legacy"), saved.rfind("<Legacy"));
    EXPECT_NE(saved.find(R"(<Legacy firstIndex="0" secondIndex="0")"), std::string::npos);
}

TEST(Road, OldLayoutGoesThroughTheConverter) {
    Orvia::Init(Ruvex::Encoding::GetMode());
    for (const char* revision : {"1", "2"}) {
        const std::string text =
            std::string(R"(<Ruvex version="1.4" versionRevision=")") + revision +
            R"("><Road name="R" priorityLevel="3"><RoadElement subNetwork="A" track="T"/></Road></Ruvex>)";
        CountedPtr<Ruvex::Element> loaded(Ruvex::Load(text.c_str(), true));
        auto* road = dynamic_cast<Road*>(loaded.Get());
        ASSERT_NE(road, nullptr) << revision;
        EXPECT_EQ(road->GetPriorityLevel(), 3u);
        ASSERT_EQ(road->GetRoadPieceCount(), 1u);
        EXPECT_EQ(road->GetRoadPiece(0)->GetTrackName(), "T");
    }
}

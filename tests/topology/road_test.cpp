#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/core/user_data.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST(Road, PossibleNextAndPrevPieces) {
    // T runs P -> Q, U leaves Q, V comes into Q, W is free.
    const std::string text = R"(<Ruvex version="2.5"><Network><SubNetworks><SubNetwork name="A">
<Intersections><Intersection name="P"/><Intersection name="Q"/></Intersections><Tracks>
<Track name="T" startIntersectionName="P" endIntersectionName="Q"/><Track name="U" startIntersectionName="Q"/>
<Track name="V" endIntersectionName="Q"/><Track name="W"/>
</Tracks></SubNetwork></SubNetworks><Roads>
<Road name="r0"><RoadElement subNetwork="A" track="T"/></Road>
<Road name="r1"><RoadElement subNetwork="A" track="U"/></Road>
<Road name="r2"><RoadElement subNetwork="A" track="V" inverted="true"/></Road>
<Road name="r3"><RoadElement subNetwork="A" track="W"/><RoadElement subNetwork="A" track="V"/></Road>
<Road name="r4"><RoadElement subNetwork="A" track="T" inverted="true"/></Road>
<Road name="r5"><RoadElement subNetwork="B" track="T"/></Road>
<Road name="r6"/>
</Roads></Network></Ruvex>)";
    CountedPtr<Network> network(Network::Load(text.c_str(), 0, {}));
    ASSERT_TRUE(network);
    auto piece = [&](size_t road, size_t index) { return network->GetRoad(road)->GetRoadPiece(index); };
    using Pieces = std::vector<RoadPiece*>;
    Pieces out{piece(0, 0)};

    // Leaving T at Q: U starts there, V run backwards starts there; V forward (r3) and T reversed (r4,
    // a U-turn) do not continue.
    network->GetRoad(0)->PossibleNextRoadPieces(network.Get(), out);
    EXPECT_EQ(out, (Pieces{piece(1, 0), piece(2, 0)}));
    // Entering U at Q: T and V forward end there, as does the middle of r3.
    network->GetRoad(1)->PossiblePrevRoadPieces(network.Get(), out);
    EXPECT_EQ(out, (Pieces{piece(0, 0), piece(3, 1)}));
    // r2 runs V backwards: its start is V's end at Q (V forward into it is a U-turn), its end V's free start.
    network->GetRoad(2)->PossiblePrevRoadPieces(network.Get(), out);
    EXPECT_EQ(out, (Pieces{piece(0, 0)}));
    network->GetRoad(2)->PossibleNextRoadPieces(network.Get(), out);
    EXPECT_TRUE(out.empty());
    // r4 leaves T reversed at P, where nothing else meets.
    network->GetRoad(4)->PossibleNextRoadPieces(network.Get(), out);
    EXPECT_TRUE(out.empty());
    network->GetRoad(4)->PossiblePrevRoadPieces(network.Get(), out);  // entering T's end at Q
    EXPECT_EQ(out, (Pieces{piece(3, 1)}));
    // Unresolved piece, empty road, no network.
    network->GetRoad(5)->PossibleNextRoadPieces(network.Get(), out);
    EXPECT_TRUE(out.empty());
    network->GetRoad(6)->PossiblePrevRoadPieces(network.Get(), out);
    EXPECT_TRUE(out.empty());
    network->GetRoad(0)->PossibleNextRoadPieces(nullptr, out);
    EXPECT_TRUE(out.empty());
}

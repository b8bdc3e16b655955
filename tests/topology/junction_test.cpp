#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <gtest/gtest.h>

#include <string>

using Orvia::Network;
using Orvia::SubNetworkExit;
using Orvia::SubNetworkJunction;
using Ruvex::CountedPtr;

namespace {

// Sub-networks L and R, two tracks each; junctions are added by the tests.
CountedPtr<Network> TwoSides() {
    const char* text = R"(<Ruvex version="2.5"><Network><SubNetworks>
  <SubNetwork name="L"><Tracks><Track name="L1"/><Track name="L2"/></Tracks></SubNetwork>
  <SubNetwork name="R"><Tracks><Track name="R1"/><Track name="R2"/></Tracks></SubNetwork>
</SubNetworks></Network></Ruvex>)";
    CountedPtr<Network> network(Network::Load(text, 0, {}));
    EXPECT_TRUE(network);
    return network;
}

CountedPtr<SubNetworkExit> Exit(const char* subNetwork, const char* track, const char* extremity) {
    CountedPtr<SubNetworkExit> exit(new SubNetworkExit);
    exit->SetSubNetworkName(subNetwork);
    exit->SetTrackName(track);
    exit->SetExtremity(extremity);
    return exit;
}

}  // namespace

TEST(SubNetworkJunction, PostLoadResolvesNamesAndExtremity) {
    CountedPtr<Network> network = TwoSides();
    ASSERT_TRUE(network);
    Orvia::SubNetwork* left = network->GetSubNetworkByName("L");

    CountedPtr<SubNetworkExit> start = Exit("L", "L2", "start");
    start->SetIsAtStart(false);
    ASSERT_TRUE(start->PostLoad(network.Get()));
    EXPECT_TRUE(start->IsAtStart());
    EXPECT_EQ(start->GetSubNetwork(), left);
    EXPECT_EQ(start->GetTrack(), left->GetTrackByName("L2"));

    // Only "start" exactly means the start.
    for (const char* word : {"end", "START", "Start", "", "middle"}) {
        CountedPtr<SubNetworkExit> exit = Exit("L", "L1", word);
        ASSERT_TRUE(exit->PostLoad(network.Get())) << word;
        EXPECT_FALSE(exit->IsAtStart()) << word;
    }

    // A track is looked for in the named sub-network only.
    CountedPtr<SubNetworkExit> noTrack = Exit("L", "R1", "start");
    EXPECT_FALSE(noTrack->PostLoad(network.Get()));
    EXPECT_EQ(noTrack->GetTrack(), nullptr);
    EXPECT_FALSE(Exit("L", "L1", "start")->PostLoad(nullptr));

    // A junction's post-load stops at the first exit that fails.
    SubNetworkJunction* junction = network->CreateSubNetworkJunction("J");
    junction->SetInNetwork(nullptr);
    junction->AddExit(Exit("L", "L1", "end").Get());
    junction->AddExit(Exit("R", "missing", "start").Get());
    junction->AddExit(Exit("R", "R2", "start").Get());
    EXPECT_FALSE(junction->PostLoad(network.Get()));
    EXPECT_EQ(junction->GetNetwork(), network.Get());
    EXPECT_NE(junction->GetSubNetworkExit(0)->GetTrack(), nullptr);
    EXPECT_EQ(junction->GetSubNetworkExit(1)->GetTrack(), nullptr);
    EXPECT_EQ(junction->GetSubNetworkExit(2)->GetTrack(), nullptr);
    EXPECT_EQ(junction->GetSubNetworkExit(3), nullptr);

    // The network drops it on post-load; a junction without exits resolves.
    network->CreateSubNetworkJunction("Empty");
    network->PostLoadSubNetworkJunctions();
    ASSERT_EQ(network->GetSubNetworkJunctionCount(), 1u);
    EXPECT_EQ(network->GetSubNetworkJunction(0)->GetName(), "Empty");
}

TEST(SubNetworkJunction, ExitsFollowTheirTracks) {
    CountedPtr<Network> network = TwoSides();
    ASSERT_TRUE(network);
    Orvia::SubNetwork* left = network->GetSubNetworkByName("L");
    Orvia::SubNetwork* right = network->GetSubNetworkByName("R");
    Orvia::Track* l1 = left->GetTrackByName("L1");
    Orvia::Track* r1 = right->GetTrackByName("R1");
    Orvia::Track* r2 = right->GetTrackByName("R2");

    SubNetworkJunction* junction = network->CreateSubNetworkJunction("J");
    CountedPtr<SubNetworkExit> atL1(new SubNetworkExit(l1, false));
    EXPECT_EQ(atL1->GetExtremity(), "end");
    junction->AddExit(atL1.Get());
    junction->AddExit(new SubNetworkExit(r1, true));
    junction->AddExit(new SubNetworkExit(r1, false));
    junction->AddExit(nullptr);
    EXPECT_EQ(junction->GetSubNetworkExitCount(), 3u);
    EXPECT_EQ(junction->GetSubNetworkExit(r1, false), junction->GetSubNetworkExit(2));
    EXPECT_EQ(junction->GetSubNetworkExit(l1, true), nullptr);
    EXPECT_EQ(r1->GetStartSubNetworkJunction(), junction);
    EXPECT_EQ(l1->GetStartSubNetworkJunction(), nullptr);
    EXPECT_TRUE(junction->ConnectsSubNetwork(left));

    // Renamed objects reach the records through UpdateNames.
    left->SetName("West");
    l1->SetName("West 1");
    atL1->SetIsAtStart(true);
    junction->UpdateNames();
    EXPECT_EQ(atL1->GetSubNetworkName(), "West");
    EXPECT_EQ(atL1->GetTrackName(), "West 1");
    EXPECT_EQ(atL1->GetExtremity(), "start");

    junction->ReplaceTrack(r1, r2);
    EXPECT_EQ(junction->GetSubNetworkExit(1)->GetTrack(), r2);
    EXPECT_EQ(junction->GetSubNetworkExit(2)->GetTrackName(), "R2");
    junction->RemoveExit(r2);
    ASSERT_EQ(junction->GetSubNetworkExitCount(), 1u);
    EXPECT_FALSE(junction->ConnectsSubNetwork(right));
    EXPECT_FALSE(junction->ConnectsSubNetwork(nullptr));

    // An unresolved exit still lies on the sub-network it names.
    SubNetworkJunction* pending = network->CreateSubNetworkJunction("Pending");
    pending->AddExit(Exit("R", "R9", "start").Get());
    EXPECT_TRUE(pending->ConnectsSubNetwork(right));
}

TEST(SubNetworkJunction, PositionAndNameThroughTheConnector) {
    CountedPtr<SubNetworkJunction> junction(new SubNetworkJunction);
    Orvia::TrackConnector* connector = junction.Get();
    connector->SetPosition(vek::Vector3(4, 5, 6));
    junction->SetName("Bridge");
    EXPECT_EQ(connector->GetAsSubNetworkJunction(), junction.Get());

    // Position and exits are saved with the junction's record.
    junction->AddExit(Exit("A", "T", "end").Get());
    const std::string saved = Ruvex::SaveToString(junction.Get());
    EXPECT_NE(saved.find(R"(<SubNetworkJunction name="Bridge" x="4" y="5" z="6")"), std::string::npos);
    EXPECT_NE(saved.find(R"(<SubNetworkExit subNetwork="A" track="T" extremity="end")"), std::string::npos);
}

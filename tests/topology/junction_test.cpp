#include <orvia/core/network.h>
#include <orvia/ground/ground.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST(SubNetworkJunction, PositionFollowsTheExits) {
    // L is placed 100 m east and turned a quarter turn: its track along local +x runs north in the network.
    const char* text = R"(<Ruvex version="2.5"><Network><SubNetworks>
  <SubNetwork name="L" x="100" heading="1.5707963267948966"><Tracks>
    <Track name="L1"><XYCurve><Segment length="10"/></XYCurve></Track></Tracks></SubNetwork>
  <SubNetwork name="R"><Tracks>
    <Track name="R1"><XYCurve x="100" y="30" orientation="1.5707963267948966"><Segment length="10"/></XYCurve></Track>
    <Track name="R2"><XYCurve x="120" y="10" orientation="3.1415926535897931"><Segment length="10"/></XYCurve></Track>
  </Tracks></SubNetwork></SubNetworks></Network></Ruvex>)";
    CountedPtr<Network> network(Network::Load(text, 0, {}));
    ASSERT_TRUE(network);
    Orvia::Track* l1 = network->GetSubNetworkByName("L")->GetTrackByName("L1");
    Orvia::Track* r1 = network->GetSubNetworkByName("R")->GetTrackByName("R1");
    Orvia::Track* r2 = network->GetSubNetworkByName("R")->GetTrackByName("R2");
    SubNetworkJunction* junction = network->CreateSubNetworkJunction("J");
    junction->SetPosition(vek::Vector3(7, 7, 7));
    junction->AddExit(Exit("R", "Unresolved", "start").Get());
    EXPECT_EQ(junction->GetPosition(), vek::Vector3(7, 7, 7));

    // L1's end lies at (100, 10) in the network; R1 starts at (100, 30) and R2 at (120, 10).
    junction->AddExit(new SubNetworkExit(l1, false));
    EXPECT_NEAR(junction->GetPosition().x, 100, 1e-9);
    EXPECT_NEAR(junction->GetPosition().y, 10, 1e-9);
    junction->AddExit(new SubNetworkExit(r1, true));
    junction->AddExit(new SubNetworkExit(r2, true));
    EXPECT_NEAR(junction->GetPosition().x, 320.0 / 3, 1e-9);
    EXPECT_NEAR(junction->GetPosition().y, 50.0 / 3, 1e-9);

    // Around (105, 15), in the network's frame: R2 (the smallest turn onto +x), then R1, then L1.
    junction->RemoveExit(r1);
    EXPECT_NEAR(junction->GetPosition().x, 110, 1e-9);
    EXPECT_NEAR(junction->GetPosition().y, 10, 1e-9);
    junction->AddExit(new SubNetworkExit(r1, true));
    junction->SetPosition(vek::Vector3(105, 15, 0));
    std::vector<Orvia::TrackExtremity> around;
    junction->GetTracksArroundConnector(around, false);
    ASSERT_EQ(around.size(), 3u);
    EXPECT_EQ(around[0], Orvia::TrackExtremity(l1, true));
    junction->GetTracksArroundConnector(around, true);
    ASSERT_EQ(around.size(), 3u);
    EXPECT_EQ(around[0].GetTrack(), r2);
    EXPECT_EQ(around[1].GetTrack(), r1);
    EXPECT_EQ(around[2].GetTrack(), l1);

    // A clone names and links the same tracks, in no network.
    CountedPtr<SubNetworkJunction> copy(junction->Clone());
    EXPECT_EQ(copy->GetNetwork(), nullptr);
    ASSERT_EQ(copy->GetSubNetworkExitCount(), 4u);
    EXPECT_EQ(copy->GetSubNetworkExit(3)->GetTrack(), r1);
    EXPECT_EQ(copy->GetName(), "J");
    EXPECT_EQ(copy->GetPosition(), junction->GetPosition());
}

TEST(TrackConnector, OutlineMaterialAndGround) {
    CountedPtr<Network> network(
        Network::Load(R"(<Ruvex version="2.5"><Network><SubNetworks><SubNetwork name="S">
<Materials><Material name="Asphalt" shininess="2"/></Materials><Grounds><Ground name="Road"/></Grounds>
<Intersections><Intersection name="X" material="Asphalt" groundName="Road" contourPoints="0 0 10 0 10 10 0 10"
 contourInterpolations="0 1"/></Intersections></SubNetwork></SubNetworks></Network></Ruvex>)",
                      0, {}));
    ASSERT_TRUE(network);
    Orvia::SubNetwork* s = network->GetSubNetwork(0);
    Orvia::TrackConnector* x = s->GetIntersectionByName("X");
    ASSERT_NE(x->GetMaterial(), nullptr);
    EXPECT_EQ(x->GetMaterial()->GetShininess(), 2.0f);
    ASSERT_NE(x->GetGround(), nullptr);
    EXPECT_EQ(x->GetGround()->GetName(), "Road");

    // Missing flags are straight stretches; the spline stretch is drawn with its samples.
    EXPECT_FALSE(x->IsInterpolationSpline(0));
    EXPECT_TRUE(x->IsInterpolationSpline(1));
    EXPECT_FALSE(x->IsInterpolationSpline(3));
    EXPECT_FALSE(x->IsInterpolationSpline(4));
    EXPECT_TRUE(x->IsValid());
    ASSERT_EQ(x->GetTrajContourNumber(), 1u);
    const std::vector<vek::Vector2>& drawn = x->GetTrajContour(0);
    ASSERT_EQ(drawn.size(), 4 + Orvia::TrackConnector::kSplineSegments - 1);
    EXPECT_EQ(drawn[1], vek::Vector2(10, 0));
    EXPECT_EQ(drawn[Orvia::TrackConnector::kSplineSegments + 1], vek::Vector2(10, 10));
    // Half-way along the spline stretch, through its neighbours (0, 0) and (0, 10).
    EXPECT_NEAR(drawn[1 + Orvia::TrackConnector::kSplineSegments / 2].x, 11.25, 1e-12);
    EXPECT_NEAR(drawn[1 + Orvia::TrackConnector::kSplineSegments / 2].y, 5, 1e-12);
    EXPECT_TRUE(x->GetTrajContour(1).empty());

    // Edits keep one flag per point and invalidate the drawing.
    EXPECT_EQ(x->FindContourPointInd(vek::Vector2(10.05, 9.95), 0.1), 2u);
    EXPECT_EQ(x->FindContourPointInd(vek::Vector2(5, 5), 0.1), Orvia::TrackConnector::npos);
    EXPECT_TRUE(x->MoveContourPoint(vek::Vector2(10, 10), vek::Vector2(12, 12), 0.1));
    EXPECT_FALSE(x->MoveContourPoint(9, vek::Vector2()));
    EXPECT_FALSE(x->IsValid());
    EXPECT_EQ(x->AddContourPoint(vek::Vector2(5, -2), 1), 1u);
    EXPECT_EQ(x->AddContourPoint(vek::Vector2(-1, 5), Orvia::TrackConnector::npos), 5u);
    EXPECT_TRUE(x->IsInterpolationSpline(2));
    EXPECT_TRUE(x->RemoveContourPoint(2));
    EXPECT_FALSE(x->RemoveContourPoint(5));
    EXPECT_FALSE(x->SetInterpolation(5, true));
    EXPECT_TRUE(x->SetInterpolation(4, true));
    const Ruvex::TrackConnectorElement* record = x->GetAsConnectionElement();
    EXPECT_EQ(record->GetContourPoints().size(), 5u);
    EXPECT_EQ(record->GetContourInterpolations(), (std::vector<double>{0, 0, 0, 0, 1}));
    x->SetContourPoints({vek::Vector2(0, 0), vek::Vector2(1, 0)}, {true});
    x->Validate();
    EXPECT_EQ(x->GetTrajContourNumber(), 0u);

    // A material of the same appearance is shared; another one is added under a free name.
    vek::Material look;
    look.name = "Asphalt";
    x->SetMaterial(look);
    EXPECT_EQ(record->GetMaterialName(), "Asphalt 1");
    EXPECT_EQ(s->GetMaterials().size(), 2u);
    x->SetMaterial(nullptr);
    EXPECT_EQ(x->GetMaterial(), nullptr);
    x->SetMaterial(look);
    EXPECT_EQ(s->GetMaterials().size(), 2u);
    EXPECT_EQ(x->GetMaterial(), s->GetMaterials()[1].Get());
    CountedPtr<Orvia::Ground> loose(new Orvia::Ground);
    loose->SetName("Mud");
    x->SetGround(loose.Get());
    EXPECT_EQ(x->GetGround(), loose.Get());
    x->SetGround(nullptr);
    EXPECT_EQ(record->GetGroundName(), "");
}

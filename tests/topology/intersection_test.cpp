#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/linear_object.h>
#include <orvia/topology/link.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

using Orvia::Intersection;
using Orvia::LaneConnection;
using Orvia::LaneOnIntersectionData;
using Orvia::Network;
using Orvia::SubNetwork;
using Orvia::Track;
using Orvia::TrackExtremity;
using Ruvex::CountedPtr;

namespace {

constexpr double kAngleToleranceRad = 1e-12;
constexpr double kPi = std::numbers::pi;

CountedPtr<Network> LoadNetwork(const std::string& subNetworkContent, const std::string& version = "2.5",
                                const std::string& revision = "0") {
    const std::string text = "<Ruvex version=\"" + version + "\" versionRevision=\"" + revision +
                             "\"><Network><SubNetworks><SubNetwork name=\"S\">" + subNetworkContent +
                             "</SubNetwork></SubNetworks></Network></Ruvex>";
    CountedPtr<Network> network(Network::Load(text.c_str(), text.size(), {}));
    EXPECT_TRUE(network);
    return network;
}

// Right-hand traffic: along the track on the right lane, against it on the left one.
const std::string kTwoWay = R"(<Profile name="TwoWay">
  <Lane name="L" circulationWay="inverse"/><Lane name="R" circulationWay="direct"/>
  <LaneBorder horizDistToAxis="-3.5"/><LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="3.5"/>
</Profile>)";
const std::string kOneWay = R"(<Profile name="OneWay">
  <Lane name="A" circulationWay="direct"/><Lane name="B" circulationWay="direct"/>
  <LaneBorder horizDistToAxis="-3.5"/><LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="3.5"/>
</Profile>)";
const std::string kWalk = R"(<Profile name="Walk">
  <Lane name="WL" laneType="sidewalk" circulationWay="both"/><Lane name="L" circulationWay="inverse"/>
  <Lane name="R" circulationWay="direct"/><Lane name="WR" laneType="sidewalk" circulationWay="both"/>
  <LaneBorder horizDistToAxis="-5"/><LaneBorder horizDistToAxis="-3.5"/><LaneBorder horizDistToAxis="0"/>
  <LaneBorder horizDistToAxis="3.5"/><LaneBorder horizDistToAxis="5"/>
</Profile>)";

std::string Num(double value) {
    std::ostringstream out;
    out.precision(17);
    out << value;
    return out.str();
}

// A straight track of `length` m from (x, y) heading `orientation`, one portion of `profile`.
std::string TrackXml(const std::string& name, double x, double y, double orientation,
                     const std::string& profile, const std::string& ends, double length = 100) {
    return "<Track name=\"" + name + "\" " + ends + "><XYCurve x=\"" + Num(x) + "\" y=\"" + Num(y) +
           "\" orientation=\"" + Num(orientation) + "\"><Segment length=\"" + Num(length) +
           "\"/></XYCurve><Portion endDistance=\"" + Num(length) + "\" startProfileName=\"" + profile +
           "\" endProfileName=\"" + profile + "\"/></Track>";
}

// Arms leaving X (at the origin) 10 m out towards the east, north, west and south, listed out of order.
std::string Cross(const std::string& profile, const std::string& intersectionExtra = "") {
    const std::string start = "startIntersectionName=\"X\"";
    return "<Profiles>" + kTwoWay + kOneWay + kWalk + "</Profiles><Intersections><Intersection name=\"X\">" +
           intersectionExtra + "</Intersection></Intersections><Tracks>" +
           TrackXml("S", 0, -10, -kPi / 2, profile, start) + TrackXml("W", -10, 0, kPi, profile, start) +
           TrackXml("E", 10, 0, 0, profile, start) + TrackXml("N", 0, 10, kPi / 2, profile, start) +
           "</Tracks>";
}

LaneOnIntersectionData At(const std::string& track, bool atEnd, const std::string& lane) {
    return LaneOnIntersectionData(track, atEnd, lane, 0);
}

std::vector<std::string> Names(const std::vector<TrackExtremity>& extremities) {
    std::vector<std::string> names;
    for (const TrackExtremity& e : extremities)
        names.push_back(e.GetTrack()->GetName() + (e.IsEnd() ? ">" : "<"));
    return names;
}

std::string Text(const LaneConnection& c) {
    return c.first.trackName + "." + c.first.laneName + "-" + c.second.trackName + "." + c.second.laneName;
}

std::vector<std::string> Texts(const std::vector<LaneConnection>& connections) {
    std::vector<std::string> texts;
    for (const LaneConnection& c : connections)
        texts.push_back(Text(c));
    return texts;
}

}  // namespace

TEST(TrackConnector, SortTracksGoesRoundCounterClockwise) {
    CountedPtr<Network> network = LoadNetwork(Cross("TwoWay"));
    ASSERT_TRUE(network);
    Intersection* x = network->GetSubNetwork(0)->GetIntersectionByName("X");
    std::vector<TrackExtremity> around;
    x->BuildTrackArrayAroundIntersection(around);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"S<", "W<", "E<", "N<"}));

    // Position 0 keeps what it held; the others hold the turn from the previous arm.
    std::vector<double> angles{-1.0};
    x->SortTracks(around, angles);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"E<", "N<", "W<", "S<"}));
    ASSERT_EQ(angles.size(), 4u);
    EXPECT_EQ(angles[0], -1.0);
    for (size_t i = 1; i < 4; ++i)
        EXPECT_NEAR(angles[i], kPi / 2, kAngleToleranceRad) << i;
    EXPECT_NEAR(x->GetTrackAngle(around[3], around[0]), kPi / 2, kAngleToleranceRad);
    EXPECT_NEAR(x->GetTrackAngle(around[0], around[3]), 3 * kPi / 2, kAngleToleranceRad);
    SubNetwork* s = network->GetSubNetwork(0);
    const std::vector<Track*> some{s->GetTrackByName("N"), s->GetTrackByName("W"), s->GetTrackByName("S")};
    x->BuildOrganizedTrackArrayAroundIntersection(some, around, angles);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"S<", "N<", "W<"}));
    EXPECT_NEAR(angles[1], kPi, kAngleToleranceRad);
    x->GetTracksArroundConnector(around, true);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"E<", "N<", "W<", "S<"}));

    // The first is the smallest turn from the arm onto +x: an arm just below the axis beats one just above.
    Track* east = s->GetTrackByName("E");
    Track* north = s->GetTrackByName("N");
    x->SetPosition(vek::Vector3(0, 1, 0));
    std::vector<TrackExtremity> pair{TrackExtremity(north, false), TrackExtremity(east, false)};
    x->SortTracks(pair, angles);
    EXPECT_EQ(Names(pair), (std::vector<std::string>{"E<", "N<"}));
    x->SetPosition(vek::Vector3(0, -1, 0));
    x->SortTracks(pair, angles);
    EXPECT_EQ(Names(pair), (std::vector<std::string>{"N<", "E<"}));

    // One arm: angle 0; none: nothing.
    std::vector<TrackExtremity> one{TrackExtremity(east, false)};
    angles = {5.0, 5.0};
    x->SortTracks(one, angles);
    EXPECT_EQ(angles, std::vector<double>{0.0});
    std::vector<TrackExtremity> none;
    x->SortTracks(none, angles);
    EXPECT_TRUE(angles.empty());
}

TEST(TrackConnector, GetDirectionUsesTheCrossedProfile) {
    // Two portions: symmetric first, all to the right last (middle at +3.5 m, i.e. 3.5 m towards -y here).
    const std::string profiles = "<Profiles>" + kTwoWay + kOneWay + R"(<Profile name="Right">
  <Lane name="A"/><LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="7"/></Profile></Profiles>)";
    CountedPtr<Network> network = LoadNetwork(profiles + R"(<Intersections><Intersection name="X"/>
<Intersection name="Y" x="100"/></Intersections><Tracks>
<Track name="T" startIntersectionName="X" endIntersectionName="Y"><XYCurve><Segment length="100"/></XYCurve>
<Portion endDistance="50" startProfileName="TwoWay" endProfileName="TwoWay"/>
<Portion endDistance="100" startProfileName="Right" endProfileName="Right"/></Track></Tracks>)");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Track* t = s->GetTrackByName("T");
    vek::Vector2 d;
    // The start takes the last portion's profile, the end the first portion's.
    ASSERT_TRUE(s->GetIntersectionByName("X")->GetDirection(d, TrackExtremity(t, false)));
    EXPECT_NEAR(d.x, 0, 1e-9);
    EXPECT_NEAR(d.y, -3.5, 1e-9);
    ASSERT_TRUE(s->GetIntersectionByName("Y")->GetDirection(d, TrackExtremity(t, true)));
    EXPECT_NEAR(d.x, 0, 1e-9);
    EXPECT_NEAR(d.y, 0, 1e-9);
    EXPECT_FALSE(s->GetIntersectionByName("Y")->GetDirection(d, TrackExtremity(nullptr, true)));
}

TEST(Intersection, FourArmCrossConnections) {
    CountedPtr<Network> network = LoadNetwork(Cross("TwoWay"));
    ASSERT_TRUE(network);
    Intersection* x = network->GetSubNetwork(0)->GetIntersectionByName("X");

    // Every incoming left lane to every outgoing right lane, its own arm included, in gathering order.
    std::vector<LaneConnection> all;
    x->ComputeAllConnections(all);
    std::vector<std::string> expected;
    for (const char* from : {"S", "W", "E", "N"})
        for (const char* to : {"S", "W", "E", "N"})
            expected.push_back(std::string(from) + ".L-" + to + ".R");
    EXPECT_EQ(Texts(all), expected);
    EXPECT_TRUE(x->AreCompatibleLanes(At("E", false, "L"), At("N", false, "R")));
    EXPECT_FALSE(x->AreCompatibleLanes(At("E", false, "R"), At("N", false, "R")));  // runs out of the node
    EXPECT_FALSE(x->AreCompatibleLanes(At("E", false, "L"), At("N", false, "L")));  // runs into it
    EXPECT_FALSE(x->AreCompatibleLanes(At("E", true, "L"), At("N", false, "R")));   // no lane at E's end
    EXPECT_FALSE(x->AreCompatibleLanes(At("E", false, "Q"), At("N", false, "R")));
    EXPECT_FALSE(x->AreCompatibleLanes(At("Nowhere", false, "L"), At("N", false, "R")));
    EXPECT_FALSE(x->AreCompatibleLanes(LaneOnIntersectionData("E", false, "L", 7), At("N", false, "R")));

    // Banning one pair bans exactly that one, once.
    EXPECT_TRUE(x->BanLink(At("E", false, "L"), At("N", false, "R")));
    EXPECT_FALSE(x->BanLink(At("E", false, "L"), At("N", false, "R")));
    EXPECT_EQ(x->GetBannedLinksCount(), 1u);
    ASSERT_NE(x->GetBannedLink(0), nullptr);
    EXPECT_EQ(x->GetBannedLink(0)->GetFromTrackBoundInfo(), "start");
    std::vector<LaneConnection> open;
    x->GetNonlinkedLanesPairs(open);
    std::vector<std::string> left = expected;
    std::erase(left, "E.L-N.R");
    EXPECT_EQ(Texts(open), left);
    for (const LaneConnection& c : all)
        EXPECT_EQ(x->IsBannedLink(c.first, c.second), Text(c) == "E.L-N.R") << Text(c);
    EXPECT_FALSE(x->IsBannedLink(At("N", false, "R"), At("E", false, "L")));
    EXPECT_FALSE(x->IsBannedLink(At("E", true, "L"), At("N", false, "R")));

    // An explicit link covers its pairs; a pair ending elsewhere covers nothing.
    Orvia::Link* link = x->createLink();
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(x->getLink(0), link);
    Ruvex::CountedPtr<Ruvex::LanePairElement> pair(new Orvia::LanePair);
    pair->SetFromTrack("S");
    pair->SetFromLane("L");
    pair->SetToTrack("W");
    pair->SetToLane("R");
    link->EditLanePairs().push_back(pair);
    Ruvex::CountedPtr<Ruvex::LanePairElement> elsewhere(new Orvia::LanePair);
    elsewhere->SetFromTrack("S");
    elsewhere->SetFromLane("L");
    elsewhere->SetToTrack("W");
    elsewhere->SetToTrackBoundInfo("end");
    elsewhere->SetToLane("R");
    link->EditLanePairs().push_back(elsewhere);
    x->GetNonlinkedLanesPairs(open);
    std::erase(left, "S.L-W.R");
    EXPECT_EQ(Texts(open), left);

    EXPECT_TRUE(x->AllowLink(At("E", false, "L"), At("N", false, "R")));
    EXPECT_FALSE(x->AllowLink(At("E", false, "L"), At("N", false, "R")));
    x->BanLink(At("W", false, "L"), At("S", false, "R"));
    x->BanAllLinks();
    EXPECT_EQ(x->GetBannedLinksCount(), 16u);
    x->GetNonlinkedLanesPairs(open);
    EXPECT_TRUE(open.empty());
    x->AllowAllLinks();
    EXPECT_EQ(x->GetBannedLinksCount(), 0u);

    // Banned links are saved and read back as they were.
    x->BanLink(At("E", false, "L"), At("N", false, "R"));
    const std::string saved = Ruvex::SaveToString(network.Get());
    CountedPtr<Network> reloaded(Network::Load(saved.c_str(), saved.size(), {}));
    ASSERT_TRUE(reloaded);
    Intersection* again = reloaded->GetSubNetwork(0)->GetIntersectionByName("X");
    EXPECT_EQ(again->GetBannedLinksCount(), 1u);
    EXPECT_TRUE(again->IsBannedLink(At("E", false, "L"), At("N", false, "R")));
}

TEST(Intersection, TeeWithAOneWayArm) {
    // E and W carry both ways; S only leaves the node.
    const std::string start = "startIntersectionName=\"T\"";
    CountedPtr<Network> network = LoadNetwork(
        "<Profiles>" + kTwoWay + kOneWay +
        "</Profiles><Intersections><Intersection name=\"T\"/></Intersections><Tracks>" +
        TrackXml("E", 10, 0, 0, "TwoWay", start) + TrackXml("S", 0, -10, -kPi / 2, "OneWay", start) +
        // W comes into the node: its right lane runs towards it.
        TrackXml("W", -110, 0, 0, "TwoWay", "endIntersectionName=\"T\"") + "</Tracks>");
    ASSERT_TRUE(network);
    Intersection* t = network->GetSubNetwork(0)->GetIntersectionByName("T");
    std::vector<LaneConnection> all;
    t->ComputeAllConnections(all);
    EXPECT_EQ(Texts(all), (std::vector<std::string>{"E.L-E.R", "E.L-S.A", "E.L-S.B", "E.L-W.L", "W.R-E.R",
                                                    "W.R-S.A", "W.R-S.B", "W.R-W.L"}));
    EXPECT_TRUE(all[3].second.atTrackEnd);

    std::vector<TrackExtremity> around;
    t->GetTracksArroundConnector(around, true);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"E<", "W>", "S<"}));
    t->GetTracksArroundConnector(around, false);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"E<", "S<", "W>"}));
}

TEST(Intersection, SidewalksGoRoundTheCorner) {
    // W comes in (its end at the node); the others leave. Around the node: E, N, W, S.
    const std::string start = "startIntersectionName=\"X\"";
    CountedPtr<Network> network =
        LoadNetwork("<Profiles>" + kWalk +
                    "</Profiles><Intersections><Intersection name=\"X\"/></Intersections><Tracks>" +
                    TrackXml("E", 10, 0, 0, "Walk", start) + TrackXml("N", 0, 10, kPi / 2, "Walk", start) +
                    TrackXml("W", -110, 0, 0, "Walk", "endIntersectionName=\"X\"") +
                    TrackXml("S", 0, -10, -kPi / 2, "Walk", start) + "</Tracks>");
    ASSERT_TRUE(network);
    Intersection* x = network->GetSubNetwork(0)->GetIntersectionByName("X");
    // Looking out of each arm, its left sidewalk meets the right one of the next arm counter-clockwise.
    // At W's end the sides swap: its left sidewalk (north) is the corner with N.
    struct Case {
        LaneOnIntersectionData from, to;
        bool expected;
    };
    const Case cases[] = {
        {At("E", false, "WL"), At("N", false, "WR"), true},   // north-east corner
        {At("E", false, "WL"), At("N", false, "WL"), false},  // the far side of N
        {At("E", false, "WL"), At("S", false, "WR"), false},  // S is the previous arm
        {At("E", false, "WR"), At("S", false, "WL"), true},   // south-east corner
        {At("N", false, "WL"), At("W", true, "WL"), true},    // north-west corner, W at its end
        {At("N", false, "WL"), At("W", true, "WR"), false},
        {At("W", true, "WL"), At("N", false, "WL"), true},  // from an end: previous arm
        {At("W", true, "WR"), At("S", false, "WR"), true},  // from an end: next arm
        {At("W", true, "WR"), At("N", false, "WL"), false},
        {At("E", false, "WL"), At("N", false, "R"), false},  // a sidewalk leads to sidewalks only
        {At("E", false, "WL"), At("E", false, "WR"), false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(x->AreCompatibleLanes(c.from, c.to), c.expected)
            << c.from.trackName << "." << c.from.laneName << " -> " << c.to.trackName << "." << c.to.laneName;

    // The whole set, which gathers the arms once for every sidewalk pair, agrees with the pairwise test.
    std::vector<LaneConnection> expected;
    const std::pair<const char*, bool> arms[] = {{"E", false}, {"N", false}, {"W", true}, {"S", false}};
    const char* lanes[] = {"WL", "L", "R", "WR"};
    for (const auto& [fromTrack, fromEnd] : arms)
        for (const char* fromLane : lanes)
            for (const auto& [toTrack, toEnd] : arms)
                for (const char* toLane : lanes)
                    if (x->AreCompatibleLanes(At(fromTrack, fromEnd, fromLane), At(toTrack, toEnd, toLane)))
                        expected.emplace_back(At(fromTrack, fromEnd, fromLane), At(toTrack, toEnd, toLane));
    std::vector<LaneConnection> all;
    x->ComputeAllConnections(all);
    EXPECT_EQ(all, expected);
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const auto& c) { return c.first.laneName[0] == 'W'; }),
              8);
}

TEST(Intersection, DefaultSelfBansFollowTheTrackEnd) {
    // Three compatible lanes; the intersection already bans one unrelated pair.
    const std::string three = R"(<Profile name="Three"><Lane name="a"/><Lane name="b"/><Lane name="c"/>
<LaneBorder horizDistToAxis="-3"/><LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="3"/>
<LaneBorder horizDistToAxis="6"/></Profile>)";
    CountedPtr<Network> network = LoadNetwork(
        "<Profiles>" + three + kTwoWay + "</Profiles><Intersections><Intersection name=\"X\"><BannedLinks>" +
        R"(<LanePair fromTrack="U" fromLane="L" toTrack="U" toLane="R"/></BannedLinks></Intersection>
<Intersection name="Y"/></Intersections><Tracks>)" +
        TrackXml("T", 0, 0, 0, "Three", "") +
        TrackXml("U", 0, 0, 0, "TwoWay", "startIntersectionName=\"X\"") + "</Tracks>");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Intersection* x = s->GetIntersectionByName("X");
    Intersection* y = s->GetIntersectionByName("Y");
    Track* t = s->GetTrackByName("T");
    // Post-load links without touching the saved bans.
    EXPECT_EQ(x->GetBannedLinksCount(), 1u);

    t->SetEndIntersection(x);
    ASSERT_EQ(x->GetBannedLinksCount(), 7u);
    for (const char* from : {"a", "b", "c"})
        for (const char* to : {"a", "b", "c"})
            EXPECT_EQ(x->IsBannedLink(At("T", true, from), At("T", true, to)), std::string(from) != to);
    t->SetEndIntersection(x);  // unchanged: nothing more
    EXPECT_EQ(x->GetBannedLinksCount(), 7u);

    // Moving the end takes exactly those six along; the start is another extremity.
    t->SetStartIntersection(x);
    EXPECT_EQ(x->GetBannedLinksCount(), 13u);
    t->SetEndIntersection(y);
    EXPECT_EQ(x->GetBannedLinksCount(), 7u);
    EXPECT_EQ(y->GetBannedLinksCount(), 6u);
    EXPECT_TRUE(x->IsBannedLink(At("U", false, "L"), At("U", false, "R")));
    EXPECT_TRUE(x->IsBannedLink(At("T", false, "a"), At("T", false, "b")));
    t->SetStartIntersection(nullptr);
    t->SetEndIntersection(nullptr);
    EXPECT_EQ(x->GetBannedLinksCount(), 1u);
    EXPECT_EQ(y->GetBannedLinksCount(), 0u);
    x->UpdateBannedTrackSelfLinks(nullptr, true, false);
    EXPECT_EQ(x->GetBannedLinksCount(), 1u);

    // Renaming the track renames it in the bans of its nodes.
    Track* u = s->GetTrackByName("U");
    u->SetName("V");
    EXPECT_TRUE(x->IsBannedLink(At("V", false, "L"), At("V", false, "R")));
}

TEST(Intersection, NamesAndExtremities) {
    CountedPtr<Network> network = LoadNetwork(R"(<Intersections><Intersection name="X"><Contours>
<ContourPiece startAnchorTrack="A" endAnchorTrack="B"/><ContourPiece startAnchorTrack="B" endAnchorTrack="A"/>
</Contours><BannedLinks><LanePair fromTrack="A" toTrack="B"/></BannedLinks></Intersection>
<Intersection name="Z"/><Intersection/></Intersections><Tracks>
<Track name="A" startIntersectionName="X" endIntersectionName="X"/><Track name="B" endIntersectionName="X"/>
<Track name="C" startIntersectionName="Z"/><Track name="D" endIntersectionName=""/></Tracks>)");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Intersection* x = s->GetIntersectionByName("X");
    std::vector<TrackExtremity> around;
    x->BuildTrackArrayAroundIntersection(around);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"A<", "A>", "B>"}));
    // A nameless intersection gathers nothing, not even the free ends.
    s->GetIntersectionByIndex(2)->BuildTrackArrayAroundIntersection(around);
    EXPECT_TRUE(around.empty());
    const std::vector<Track*> only{s->GetTrackByName("B"), nullptr};
    x->BuildTrackArrayAroundIntersection(only, around);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"B>"}));

    // Renaming renames the ends that named it, and only those.
    x->SetName("Square");
    EXPECT_EQ(s->GetTrackByName("A")->GetStartIntersectionName(), "Square");
    EXPECT_EQ(s->GetTrackByName("A")->GetEndIntersectionName(), "Square");
    EXPECT_EQ(s->GetTrackByName("B")->GetEndIntersectionName(), "Square");
    EXPECT_EQ(s->GetTrackByName("B")->GetStartIntersectionName(), "");
    EXPECT_EQ(s->GetTrackByName("C")->GetStartIntersectionName(), "Z");

    x->ReplaceTrackName("A", "A2");
    EXPECT_EQ(x->GetContourPieces()[0]->GetStartAnchorTrack(), "A2");
    EXPECT_EQ(x->GetContourPieces()[0]->GetEndAnchorTrack(), "B");
    EXPECT_EQ(x->GetContourPieces()[1]->GetEndAnchorTrack(), "A2");
    EXPECT_EQ(x->GetBannedLink(0)->GetFromTrack(), "A2");
    EXPECT_EQ(x->GetBannedLink(0)->GetToTrack(), "B");
}

TEST(Intersection, DriveableLanes) {
    // Drivable: a, e, g. Not: b (both ways), c (sidewalk), d (exactly 1 m), f (no way), h (median).
    CountedPtr<Network> network =
        LoadNetwork(R"(<Profiles><Profile name="P">
<Lane name="a"/><Lane name="b" circulationWay="both"/><Lane name="c" laneType="sidewalk"/><Lane name="d"/>
<Lane name="e" laneType="zebra" circulationWay="inverse"/><Lane name="f" laneType="paved major" circulationWay="none"/>
<Lane name="g" laneType="emergency"/><Lane name="h" laneType="median"/>
<LaneBorder horizDistToAxis="-10"/><LaneBorder horizDistToAxis="-6.5"/><LaneBorder horizDistToAxis="-3"/>
<LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="1"/><LaneBorder horizDistToAxis="3"/>
<LaneBorder horizDistToAxis="6"/><LaneBorder horizDistToAxis="7.5"/><LaneBorder horizDistToAxis="10"/>
</Profile></Profiles><Intersections><Intersection name="X"/></Intersections><Tracks>)" +
                    TrackXml("T", 0, 0, 0, "P", "") + "<Track name=\"Bare\"/></Tracks>");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    const Intersection* x = s->GetIntersectionByName("X");
    EXPECT_EQ(x->GetNumberOfDriveableLanes(TrackExtremity(s->GetTrackByName("T"), false)), 3u);
    EXPECT_EQ(x->GetNumberOfDriveableLanes(TrackExtremity(s->GetTrackByName("T"), true)), 3u);
    EXPECT_EQ(x->GetNumberOfDriveableLanes(TrackExtremity(s->GetTrackByName("Bare"), true)), 0u);
    EXPECT_EQ(x->GetNumberOfDriveableLanes(TrackExtremity()), 0u);
}

TEST(Intersection, DegenerateInput) {
    // A and B leave X from one point with one heading; Z has no length; Bare has no geometry nor portion;
    // the banned link and the contour piece name a track that does not exist.
    const std::string start = "startIntersectionName=\"X\"";
    CountedPtr<Network> network =
        LoadNetwork("<Profiles>" + kTwoWay + R"(</Profiles><Intersections><Intersection name="X"><Contours>
<ContourPiece startAnchorTrack="Ghost" endAnchorTrack="A"/></Contours><BannedLinks>
<LanePair fromTrack="Ghost" fromLane="L" toTrack="A" toLane="Nope"/></BannedLinks></Intersection></Intersections>
<Tracks>)" + TrackXml("A", 10, 0, 0, "TwoWay", start) +
                    TrackXml("B", 10, 0, 0, "TwoWay", start) + TrackXml("Z", 0, -10, 0, "TwoWay", start, 0) +
                    "<Track name=\"Bare\" " + start + "/></Tracks>");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Intersection* x = s->GetIntersectionByName("X");
    std::vector<TrackExtremity> around;
    x->GetTracksArroundConnector(around, true);
    // Ties keep the list order; the shapeless tracks sit where their (degenerate) directions put them.
    ASSERT_EQ(around.size(), 4u);
    const std::vector<std::string> names = Names(around);
    const auto a = std::find(names.begin(), names.end(), "A<");
    ASSERT_NE(a, names.end());
    ASSERT_NE(a + 1, names.end());
    EXPECT_EQ(*(a + 1), "B<");
    std::vector<double> angles;
    x->SortTracks(around, angles);
    EXPECT_EQ(angles[static_cast<size_t>(a - names.begin()) + 1], 0.0);

    std::vector<LaneConnection> all;
    x->ComputeAllConnections(all);
    EXPECT_EQ(all.size(), 9u);  // L to R among A, B and Z
    EXPECT_TRUE(x->IsBannedLink(At("Ghost", false, "L"), At("A", false, "Nope")));
    x->GetNonlinkedLanesPairs(all);
    EXPECT_EQ(all.size(), 9u);
    x->UpdateBannedTrackSelfLinks(s->GetTrackByName("Bare"), false, false);
    EXPECT_EQ(x->GetBannedLinksCount(), 1u);

    // Without a sub-network nothing is gathered.
    CountedPtr<Intersection> loose(new Intersection);
    loose->SetName("X");
    loose->GetTracksArroundConnector(around, true);
    EXPECT_TRUE(around.empty());
    loose->ComputeAllConnections(all);
    EXPECT_TRUE(all.empty());
    EXPECT_FALSE(loose->AreCompatibleLanes(At("A", false, "L"), At("B", false, "R")));
}

TEST(Intersection, OldDocumentsGoThroughTheConverter) {
    // Up to 2.4.1 the converter reads the intersection; from 2.4.2 its record does. The layouts agree.
    const std::string content =
        R"(<Intersections><Intersection name="X" x="1" altitude="2" contourPoints="0 0 1 0 1 1"
  contourInterpolations="0 1 0" drawMarkingInsideIntersection="true"><BannedLinks>
<LanePair fromTrack="A" fromTrackBoundInfo="end" fromLane="L" toTrack="B" toLane="R"/></BannedLinks>
</Intersection></Intersections>)";
    for (const char* revision : {"1", "2"}) {
        CountedPtr<Network> network = LoadNetwork(content, "2.4", revision);
        ASSERT_TRUE(network) << revision;
        EXPECT_EQ(network->GetFormatVersion(), Ruvex::MakeVersionID(2, 4, revision[0] - '0'));
        const Intersection* x = network->GetSubNetwork(0)->GetIntersectionByName("X");
        ASSERT_NE(x, nullptr) << revision;
        EXPECT_EQ(x->GetPosition(), vek::Vector3(1, 0, 0)) << revision;
        EXPECT_EQ(x->GetAltitude(), 2.0) << revision;
        EXPECT_TRUE(x->GetDrawInsideMarking()) << revision;
        EXPECT_TRUE(x->IsInterpolationSpline(1)) << revision;
        EXPECT_TRUE(x->IsBannedLink(At("A", true, "L"), At("B", false, "R"))) << revision;
    }
    EXPECT_EQ(Intersection::kLegacyVersion, Ruvex::MakeVersionID(2, 4, 1));
}

TEST(Intersection, LoopCloneAndBookkeeping) {
    // Loop leaves X and comes back to it; T only leaves.
    CountedPtr<Network> network = LoadNetwork(
        "<Profiles>" + kTwoWay +
        "</Profiles><Intersections><Intersection name=\"X\"/></Intersections><Tracks>" +
        TrackXml("T", 10, 0, 0, "TwoWay", "startIntersectionName=\"X\"") +
        R"(<Track name="Loop" startIntersectionName="X" endIntersectionName="X"><XYCurve x="0" y="10" orientation="0">
<CircleArc length="20" curvature="-0.1"/></XYCurve>
<Portion endDistance="20" startProfileName="TwoWay" endProfileName="TwoWay"/></Track></Tracks>)");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Intersection* x = s->GetIntersectionByName("X");
    std::vector<TrackExtremity> around;
    s->GetTracksArroundIntersection(x, around, false);
    EXPECT_EQ(Names(around), (std::vector<std::string>{"T<", "Loop<", "Loop>"}));
    s->GetTracksArroundIntersection(nullptr, around, false);
    EXPECT_TRUE(around.empty());

    // The loop's lanes reach each other across its two ends.
    std::vector<LaneConnection> all;
    x->ComputeAllConnections(all);
    std::vector<std::string> loop;
    for (const LaneConnection& c : all)
        if (c.first.trackName == "Loop" && c.second.trackName == "Loop")
            loop.push_back(Text(c) + (c.first.atTrackEnd ? ">" : "<") + (c.second.atTrackEnd ? ">" : "<"));
    EXPECT_EQ(loop, (std::vector<std::string>{"Loop.L-Loop.R<<", "Loop.L-Loop.L<>", "Loop.R-Loop.R><",
                                              "Loop.R-Loop.L>>"}));

    // Lanes by gathered position and back.
    Orvia::Lane* lane = x->FindLane(2, 1);
    ASSERT_NE(lane, nullptr);
    EXPECT_EQ(lane->GetName(), "R");
    EXPECT_EQ(x->FindLane(3, 0), nullptr);
    EXPECT_EQ(x->FindLane(0, 2), nullptr);
    size_t trackIndex = 9;
    size_t laneIndex = 9;
    // Every arm shares the profile: the first arm holding the lane answers.
    EXPECT_TRUE(x->FindTrackAndLaneIndex(lane, trackIndex, laneIndex));
    EXPECT_EQ(trackIndex, 0u);
    EXPECT_EQ(laneIndex, 1u);
    EXPECT_FALSE(x->FindTrackAndLaneIndex(nullptr, trackIndex, laneIndex));

    // What removing a track leaves dangling.
    x->BanLink(At("T", false, "L"), At("Loop", true, "L"));
    x->BanLink(At("Loop", false, "L"), At("Loop", false, "R"));
    x->BanLink(At("T", false, "L"), At("T", false, "R"));
    std::vector<LaneConnection> dangling;
    x->GetRemovedLinksFromTrackRemoval(s->GetTrackByName("Loop"), dangling);
    EXPECT_EQ(Texts(dangling), (std::vector<std::string>{"T.L-Loop.L", "Loop.L-Loop.R"}));
    x->RemoveLinks(dangling);
    EXPECT_EQ(x->GetBannedLinksCount(), 1u);

    // Clipped data bookkeeping.
    CountedPtr<Orvia::MarkClippedData> a(new Orvia::MarkClippedData);
    CountedPtr<Orvia::MarkClippedData> b(new Orvia::MarkClippedData);
    x->AddClippedData(a.Get());
    x->AddClippedData(nullptr);
    x->AddClippedData(b.Get());
    EXPECT_EQ(x->GetClippedDataIndex(b.Get()), 1u);
    EXPECT_FALSE(x->RemoveClippedData(2, 1));
    EXPECT_TRUE(x->RemoveClippedData(0, 5));
    EXPECT_EQ(x->GetClippedDataCount(), 0u);
    EXPECT_EQ(x->GetClippedDataIndex(a.Get()), Orvia::TrackConnector::npos);

    // A clone holds the same record, belongs nowhere and renames no track.
    CountedPtr<Intersection> copy(x->Clone());
    EXPECT_EQ(copy->GetInSubNetwork(), nullptr);
    EXPECT_EQ(Ruvex::SaveToString(copy.Get()), Ruvex::SaveToString(x));
    EXPECT_EQ(s->GetTrackByName("T")->GetStartIntersectionName(), "X");
}

namespace {

// One lane of each kind of neighbour: "In" brings two lanes into X from the west, "Out" takes two lanes
// east (banked 0.1), "N" is a single lane north, "Wk" and "Wk2" walkable arms south and south-east.
std::string LaneNode() {
    const std::string single = R"(<Profile name="Single"><Lane name="C" circulationWay="inverse"/>
  <LaneBorder horizDistToAxis="-1.5"/><LaneBorder horizDistToAxis="1.5"/></Profile>)";
    const std::string start = "startIntersectionName=\"X\"";
    const double d = 10 / std::sqrt(2.0);
    return "<Profiles>" + kOneWay + kWalk + single +
           "</Profiles><Intersections><Intersection name=\"X\"/></Intersections><Tracks>" +
           TrackXml("N", 0, 10, kPi / 2, "Single", start) +
           TrackXml("In", -110, 0, 0, "OneWay", "endIntersectionName=\"X\"") +
           TrackXml("Wk", 0, -10, -kPi / 2, "Walk", start) + TrackXml("Wk2", d, -d, -kPi / 4, "Walk", start) +
           R"(<Track name="Out" startIntersectionName="X"><XYCurve x="10" y="0"><Segment length="100"/></XYCurve>
<BankingCurve><Polynomial xIn="0" yIn="0.1" xOut="100" yOut="0.1"/></BankingCurve>
<Portion endDistance="100" startProfileName="OneWay" endProfileName="OneWay"/></Track></Tracks>)";
}

void ExpectNear(const vek::Vector3& actual, const vek::Vector3& expected) {
    EXPECT_LT((actual - expected).norm(), 1e-9) << actual.x << " " << actual.y << " " << actual.z;
}

}  // namespace

TEST(Intersection, FollowingLanesAndMainRoad) {
    CountedPtr<Network> network = LoadNetwork(LaneNode());
    ASSERT_TRUE(network);
    Intersection* x = network->GetSubNetwork(0)->GetIntersectionByName("X");
    const auto following = [x](const LaneOnIntersectionData& lane, bool toRight) {
        LaneOnIntersectionData next;
        return x->GetFollowingDriveableLane(lane, toRight, next) ? next.trackName + "." + next.laneName : "-";
    };
    // Right of travel is up the profile along the axis, down it against the axis; a sidewalk, the profile's
    // edge or a lane end not at X give nothing.
    EXPECT_EQ(following(At("In", true, "A"), true), "In.B");
    EXPECT_EQ(following(At("Wk", false, "L"), false), "Wk.R");
    for (const auto& [lane, toRight] : {std::pair{At("In", true, "A"), false},
                                        {At("Wk", false, "R"), true},
                                        {At("Wk", false, "L"), true},
                                        {At("In", false, "A"), true},
                                        {At("Wk", false, "WL"), false}})
        EXPECT_EQ(following(lane, toRight), "-") << lane.trackName << "." << lane.laneName;

    const auto pairsFrom = [x](const LaneOnIntersectionData& from, const LaneOnIntersectionData& to) {
        std::vector<LaneConnection> pairs{{from, to}};
        x->CreateFollowingLanesPairsFromInitialPair({from, to}, pairs);
        return Texts(pairs);
    };
    EXPECT_EQ(pairsFrom(At("In", true, "A"), At("Out", false, "A")), std::vector<std::string>{"In.B-Out.B"});
    EXPECT_EQ(pairsFrom(At("In", true, "B"), At("Out", false, "B")), std::vector<std::string>{"In.A-Out.A"});
    // Side by side only; into the two-way arm the left neighbour runs the wrong way; an incompatible start.
    EXPECT_TRUE(pairsFrom(At("In", true, "B"), At("Out", false, "A")).empty());
    EXPECT_TRUE(pairsFrom(At("In", true, "B"), At("Wk", false, "R")).empty());
    EXPECT_TRUE(pairsFrom(At("Out", false, "A"), At("In", true, "A")).empty());

    std::vector<TrackExtremity> arms;
    x->BuildTrackArrayAroundIntersection(arms);
    x->SortExtremitiesByMainRoad(arms);
    EXPECT_EQ(Names(arms), (std::vector<std::string>{"In>", "Wk<", "Wk2<", "Out<", "N<"}));

    // Sidewalks connect round the corner but carry no drivable strip.
    std::vector<LaneConnection> all;
    x->ComputeAllConnections(all);
    std::vector<std::string> expected;
    for (const std::string& text : Texts(all))
        if (text.find(".W") == std::string::npos) expected.push_back(text);
    EXPECT_EQ(std::ranges::count(Texts(all), "Wk.WL-Wk2.WR"), 1);
    EXPECT_EQ(std::ranges::count(expected, "In.A-Out.A"), 1);
    x->ComputeAllPassagewaysConnections(all);
    EXPECT_EQ(Texts(all), expected);
}

TEST(Intersection, LaneEndGeometry) {
    CountedPtr<Network> network = LoadNetwork(LaneNode());
    ASSERT_TRUE(network);
    Intersection* x = network->GetSubNetwork(0)->GetIntersectionByName("X");
    EXPECT_TRUE(x->IsLaneExtremity(At("Out", false, "B")));
    for (const auto& lane :
         {At("Out", true, "B"), At("Out", false, "Z"), LaneOnIntersectionData("Out", false, "B", 1)})
        EXPECT_FALSE(x->IsLaneExtremity(lane)) << lane.trackName << lane.atTrackEnd << lane.laneName;

    // In ends at (-10, 0) heading east, A left of the axis; the distance is clamped to the track.
    vek::Vector3 p;
    vek::Vector3 v;
    double banking = 1;
    for (const auto& [distance, along] : {std::pair{5.0, -15.0}, {1000.0, -110.0}, {-3.0, -10.0}}) {
        ASSERT_TRUE(x->ComputePositionBankingDirection(At("In", true, "A"), distance, p, v, banking));
        ExpectNear(p, vek::Vector3(along, 1.75, 0));
        ExpectNear(v, vek::Vector3(1, 0, 0));
        EXPECT_EQ(banking, 0);
    }
    // Out starts at (10, 0): the tangent towards X runs against the axis, so the banking turns over.
    ASSERT_TRUE(x->ComputePositionBankingDirection(At("Out", false, "B"), 5, p, v, banking));
    ExpectNear(p, vek::Vector3(15, -1.75, 1.75 * std::tan(-0.1)));
    ExpectNear(v, vek::Vector3(-1, 0, 0));
    EXPECT_NEAR(banking, -0.1, 1e-12);
    EXPECT_FALSE(x->ComputePositionBankingDirection(At("Out", true, "B"), 5, p, v, banking));
    ASSERT_TRUE(x->GetLaneBorder(At("In", true, "A"), false, p));
    ExpectNear(p, vek::Vector3(-10, 0, 0));
    EXPECT_FALSE(x->GetLaneBorder(At("N", true, "C"), false, p));
    SubNetwork* s = network->GetSubNetwork(0);
    ASSERT_TRUE(x->GetAnchorPos(TrackExtremity(s->GetTrackByName("In"), true), true, p));
    ExpectNear(p, vek::Vector3(-10, 3.5, 0));
    ASSERT_TRUE(x->GetAnchorPos(TrackExtremity(s->GetTrackByName("Wk"), false), false, p));
    ExpectNear(p, vek::Vector3(-5, -10, 0));
    EXPECT_FALSE(x->GetAnchorPos(TrackExtremity(), false, p));
}

TEST(Intersection, ValidateRefreshesOutlineAndClippedData) {
    CountedPtr<Network> network = LoadNetwork(LaneNode());
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Intersection* x = s->GetIntersectionByName("X");
    x->SetPosition(vek::Vector3(1, 2, 3));
    EXPECT_EQ(x->GetBoundingBox().max, x->GetBoundingBox().min);
    auto* mark = new Orvia::MarkClippedData;
    mark->SetName("Rail");
    auto* linear = new Orvia::LinearObject;
    mark->SetLinearObject(linear);
    linear->SetClippedData(nullptr);
    x->AddClippedData(mark);
    x->TrackConnector::SetContourPoints({vek::Vector2(-5, -4), vek::Vector2(6, -4), vek::Vector2(6, 7)}, {});
    x->Invalidate();
    x->Validate();
    EXPECT_EQ(x->GetBoundingBox().min, vek::Vector3(-5, -4, 3));
    EXPECT_EQ(x->GetBoundingBox().max, vek::Vector3(6, 7, 3));
    x->SetInterpolation(1, true);
    x->GetUserPointsFromRuvexData();
    ASSERT_EQ(x->UserPoints().size(), 3u);
    EXPECT_EQ(x->UserPoints()[1], (Orvia::TrackConnector::UserPoint{vek::Vector2(6, -4), true}));
    EXPECT_FALSE(x->UserPoints()[2].spline);
    EXPECT_EQ(mark->GetParent(), x);
    EXPECT_EQ(mark->GetInSubNetwork(), s);
    EXPECT_EQ(mark->GetQualifiedName(), "S//Rail");
    EXPECT_EQ(linear->GetClippedData(), mark);
    EXPECT_FALSE(x->IsConnectorSpecificMaterial());
    x->SetMaterial(vek::Material());
    EXPECT_TRUE(x->IsConnectorSpecificMaterial());
    x->RemoveConnectorMaterial();
    EXPECT_FALSE(x->IsConnectorSpecificMaterial());
    EXPECT_EQ(x->GetMaterial(), nullptr);
}

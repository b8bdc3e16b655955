#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/intersection_links.h>
#include <orvia/topology/lane_key.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <set>
#include <sstream>
#include <string>
#include <utility>

using Orvia::IntersectionLinksManager;
using Orvia::LaneOnIntersectionData;
using Orvia::Network;
using Ruvex::CountedPtr;

namespace {

constexpr double kEndToleranceM = 1e-9;
constexpr double kEndToleranceRad = 1e-9;

// Two lanes: "L" on [-3.5, 0] against the track, "R" on [0, 3.5] along it; "O" is one-way (both lanes
// along the track).
const std::string kProfiles = R"(<Profiles>
<Profile name="P"><Lane name="L" circulationWay="inverse"/><Lane name="R"/>
<LaneBorder horizDistToAxis="-3.5"/><LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="3.5"/></Profile>
<Profile name="O"><Lane name="L"/><Lane name="R"/>
<LaneBorder horizDistToAxis="-3.5"/><LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="3.5"/></Profile>
<Profile name="K"><Lane name="Walk" laneType="sidewalk" circulationWay="both"/><Lane name="R"/>
<LaneBorder horizDistToAxis="-2"/><LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="3.5"/></Profile>
</Profiles>)";

std::string TrackXml(const std::string& name, const std::string& start, const std::string& end, double x,
                     double y, double heading, double length, const std::string& profile = "P",
                     const std::string& extra = "") {
    std::ostringstream out;
    out.precision(17);
    out << "<Track name=\"" << name << "\" startIntersectionName=\"" << start << "\" endIntersectionName=\""
        << end << "\"><XYCurve x=\"" << x << "\" y=\"" << y << "\" orientation=\"" << heading
        << "\"><Segment length=\"" << length << "\"/></XYCurve>" << extra << "<Portion endDistance=\""
        << length << "\" startProfileName=\"" << profile << "\" endProfileName=\"" << profile
        << "\"/></Track>";
    return out.str();
}

constexpr double kPi = std::numbers::pi;

// A cross at the origin: W and S arrive, E and N leave, each 40 m long and 10 m off the centre.
std::string CrossTracks(const std::string& southProfile = "P") {
    return TrackXml("W", "", "X", -50, 0, 0, 40) + TrackXml("E", "X", "", 10, 0, 0, 40) +
           TrackXml(
               "S", "", "X", 0, -50, kPi / 2, 40, southProfile,
               R"(<SZCurve><Polynomial xIn="0" yIn="4" derivativeIn="0.1" xOut="40" yOut="8" derivativeOut="0.1"/></SZCurve>
<BankingCurve><Polynomial xIn="0" yIn="0.05" xOut="40" yOut="0.02" derivativeIn="0.001" derivativeOut="-0.002"/></BankingCurve>)") +
           TrackXml("N", "X", "", 0, 10, kPi / 2, 40);
}

CountedPtr<Network> Load(const std::string& tracks, const std::string& intersectionContent = "") {
    const std::string text =
        R"(<Ruvex version="2.5" versionRevision="0"><Network><SubNetworks><SubNetwork name="S">)" +
        kProfiles + "<Intersections><Intersection name=\"X\">" + intersectionContent +
        "</Intersection></Intersections><Tracks>" + tracks +
        "</Tracks></SubNetwork></SubNetworks></Network></Ruvex>";
    CountedPtr<Network> network(Network::Load(text.c_str(), text.size(), {}));
    EXPECT_TRUE(network);
    return network;
}

using Pairs = std::set<std::pair<std::string, std::string>>;

Pairs Derive(Network& network, IntersectionLinksManager& manager, bool implicitOnly = true) {
    Orvia::SubNetwork* sub = network.GetSubNetwork(0);
    manager.FillFromIntersection(sub->GetIntersectionByName("X"), true);
    Pairs pairs;
    for (const auto& [from, targets] : manager.GetMap())
        for (const auto& [to, entry] : targets)
            if (!implicitOnly || !entry.link->IsExplicit()) pairs.emplace(from, to);
    return pairs;
}

std::string Key(const std::string& track, bool atEnd, const std::string& lane) {
    return Orvia::GetLaneKey(LaneOnIntersectionData{track, atEnd, lane, 0});
}

// The way of every trajectory starts and ends on the centres of its lanes, along their directions of travel.
void ExpectWaysMeetLanes(Network& network, const IntersectionLinksManager& manager) {
    Orvia::SubNetwork* sub = network.GetSubNetwork(0);
    for (const auto& [fromKey, targets] : manager.GetMap())
        for (const auto& [toKey, entry] : targets) {
            SCOPED_TRACE(fromKey + " -> " + toKey);
            ASSERT_TRUE(entry.trajectory && entry.trajectory->GetAxis());
            const Orvia::Axis& way = *entry.trajectory->GetAxis();
            const double length = entry.trajectory->GetLength();
            ASSERT_GT(length, 0);
            // One lane as wide as the source lanes (3.5 m), centred on the way.
            double left = 0, right = 0;
            ASSERT_TRUE(entry.trajectory->GetWay()->GetWidthAt(0.5 * length, left, right));
            EXPECT_NEAR(left, -1.75, 1e-12);
            EXPECT_NEAR(right, 1.75, 1e-12);
            for (const bool isFrom : {true, false}) {
                const LaneOnIntersectionData& lane =
                    isFrom ? entry.trajectory->GetFrom() : entry.trajectory->GetTo();
                const Orvia::Track* track = sub->GetTrackByName(lane.trackName);
                const double t = lane.GetLane(&network)->GetCenterOffset().first;
                vek::Mark onLane, onWay;
                ASSERT_TRUE(track->GetMark(onLane, lane.atTrackEnd ? track->GetXYLength() : 0, t));
                ASSERT_TRUE(way.GetMark(onWay, isFrom ? 0 : length, 0.0));
                EXPECT_NEAR(onWay.position.x, onLane.position.x, kEndToleranceM);
                EXPECT_NEAR(onWay.position.y, onLane.position.y, kEndToleranceM);
                EXPECT_NEAR(onWay.position.z, onLane.position.z, kEndToleranceM);
                const bool along = lane.atTrackEnd == isFrom;
                const double turn = std::remainder(onWay.yaw - onLane.yaw - (along ? 0 : kPi), 2 * kPi);
                EXPECT_NEAR(turn, 0, kEndToleranceRad);
            }
        }
}

}  // namespace

TEST(IntersectionLinksManager, CrossGivesEveryTurnButUTurns) {
    CountedPtr<Network> network = Load(CrossTracks());
    ASSERT_TRUE(network);
    IntersectionLinksManager manager;
    const Pairs pairs = Derive(*network, manager);
    // Right-hand traffic: W and S arrive on their right lanes at their ends, E and N on their left lanes at
    // their starts; each may leave by the outgoing lane of any other arm.
    const std::pair<std::string, std::string> in[] = {{Key("W", true, "R"), "W"},
                                                      {Key("S", true, "R"), "S"},
                                                      {Key("E", false, "L"), "E"},
                                                      {Key("N", false, "L"), "N"}};
    const std::pair<std::string, std::string> out[] = {{Key("W", true, "L"), "W"},
                                                       {Key("S", true, "L"), "S"},
                                                       {Key("E", false, "R"), "E"},
                                                       {Key("N", false, "R"), "N"}};
    Pairs expected;
    for (const auto& [from, fromArm] : in)
        for (const auto& [to, toArm] : out)
            if (fromArm != toArm) expected.emplace(from, to);
    EXPECT_EQ(pairs, expected);
    EXPECT_EQ(manager.GetLinksCount(), 12u);
    ExpectWaysMeetLanes(*network, manager);

    // Names carry the count of links held before the derivation and the pair.
    EXPECT_EQ(manager.GetLink(0)->GetName().rfind("link implicit link 0 0-", 0), 0u);
    const LaneOnIntersectionData west{"W", true, "R", 0}, east{"E", false, "R", 0}, south{"S", true, "L", 0};
    Orvia::Link* straight = manager.GetLink(&west, &east);
    ASSERT_TRUE(straight);
    EXPECT_EQ(straight->GetName(), "link implicit link 0 0-W-R_0-E-R");
    EXPECT_EQ(straight->getWay()->GetName(), "implicit track 0 0-W-R_0-E-R");
    // Straight on is degenerated (parallel lines); the right turn is a proper corner; the way of straight on
    // is the 20 m between the lanes.
    EXPECT_TRUE(straight->IsDegenerated());
    EXPECT_NEAR(manager.GetLinkTrajectory(&west, &east)->GetLength(), 20.0, 1e-9);
    ASSERT_TRUE(manager.GetLink(&west, &south));
    EXPECT_FALSE(manager.GetLink(&west, &south)->IsDegenerated());
    // The follow-on question: three ways leave the west arm's right lane.
    const IntersectionLinksManager::ToLaneMap* following = manager.GetLinksFrom(west);
    ASSERT_TRUE(following);
    EXPECT_EQ(following->size(), 3u);
    EXPECT_FALSE(manager.GetLinksFrom(east));
    const auto flat = manager.GetFollowing(west);
    ASSERT_EQ(flat.size(), 3u);
    for (const auto& entry : flat)
        EXPECT_EQ(following->at(Orvia::GetLaneKey(entry.to)).link, entry.link);
    EXPECT_TRUE(manager.GetFollowing(east).empty());
    EXPECT_TRUE(manager.GetFollowing(LaneOnIntersectionData{"W", true, "R", 1}).empty());
    EXPECT_FALSE(manager.GetLink(&west, nullptr));

    // A second manager without Clear appends the same links again under the count of the first set.
    IntersectionLinksManager copy = manager;
    EXPECT_EQ(copy.GetLink(&west, &east), straight);
    copy.FillFromIntersection(network->GetSubNetwork(0)->GetIntersectionByName("X"), true);
    EXPECT_EQ(copy.GetLinksCount(), 24u);
    EXPECT_EQ(copy.GetLink(12)->GetName().rfind("link implicit link 12 ", 0), 0u);
    copy.Clear();
    EXPECT_EQ(copy.GetLinksCount(), 0u);
    EXPECT_FALSE(copy.GetLink(&west, &east));
}

TEST(IntersectionLinksManager, ExplicitBannedAndOneWay) {
    // An explicit link covers W -> N; a ban removes S -> E; a pair with a missing lane is kept but has no
    // way.
    const std::string content = R"(<BannedLinks><LanePair fromTrack="S" fromTrackBoundInfo="end" fromLane="R"
toTrack="E" toTrackBoundInfo="start" toLane="R"/></BannedLinks>
<Link name="Left"><LanePair fromTrack="W" fromTrackBoundInfo="end" fromLane="R" toTrack="N" toTrackBoundInfo="start" toLane="R"/>
<LanePair fromTrack="W" fromTrackBoundInfo="end" fromLane="Ghost" toTrack="N" toTrackBoundInfo="start" toLane="R"/></Link>)";
    CountedPtr<Network> network = Load(CrossTracks(), content);
    ASSERT_TRUE(network);
    IntersectionLinksManager manager;
    const Pairs implicit = Derive(*network, manager);
    EXPECT_EQ(implicit.size(), 10u);
    EXPECT_FALSE(implicit.count({Key("S", true, "R"), Key("E", false, "R")}));
    EXPECT_FALSE(implicit.count({Key("W", true, "R"), Key("N", false, "R")}));
    const LaneOnIntersectionData west{"W", true, "R", 0}, north{"N", false, "R", 0},
        ghost{"W", true, "Ghost", 0};
    ASSERT_TRUE(manager.GetLink(&west, &north));
    EXPECT_TRUE(manager.GetLink(&west, &north)->IsExplicit());
    EXPECT_EQ(manager.GetLink(0)->GetName(), "Left");
    EXPECT_EQ(manager.GetLink(1)->GetName().rfind("link implicit link 1 ", 0), 0u);
    ASSERT_TRUE(manager.GetLinkTrajectory(&ghost, &north));
    EXPECT_FALSE(manager.GetLinkTrajectory(&ghost, &north)->GetAxis());
    EXPECT_TRUE(manager.GetLinkTrajectory(&west, &north)->GetAxis());

    // A T whose south arm is one-way towards the node: nothing enters it; sidewalks never link.
    CountedPtr<Network> tee =
        Load(TrackXml("W", "", "X", -50, 0, 0, 40, "K") + TrackXml("E", "X", "", 10, 0, 0, 40, "K") +
             TrackXml("S", "", "X", 0, -50, kPi / 2, 40, "O"));
    ASSERT_TRUE(tee);
    IntersectionLinksManager teeLinks;
    const Pairs teePairs = Derive(*tee, teeLinks);
    EXPECT_FALSE(teePairs.empty());
    for (const auto& [from, to] : teePairs) {
        EXPECT_EQ(to.find("#S#"), std::string::npos) << to;
        EXPECT_EQ(from.find("Walk"), std::string::npos) << from;
    }
    EXPECT_TRUE(teePairs.count({Key("S", true, "L"), Key("E", false, "R")}));
}

TEST(IntersectionLinksManager, DerivedLinksAreNotSavedAndReloadAlike) {
    CountedPtr<Network> network = Load(CrossTracks());
    ASSERT_TRUE(network);
    const auto dir = std::filesystem::temp_directory_path();
    const std::string before = (dir / "links_before.xml").string(),
                      after = (dir / "links_after.xml").string();
    ASSERT_TRUE(network->Save(before.c_str()));
    IntersectionLinksManager manager;
    const Pairs pairs = Derive(*network, manager);
    ASSERT_TRUE(network->Save(after.c_str()));
    auto read = [](const std::string& path) {
        std::ifstream in(path);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    EXPECT_EQ(read(before), read(after));
    CountedPtr<Network> reloaded(Network::Load(after.c_str(), {}));
    ASSERT_TRUE(reloaded);
    IntersectionLinksManager again;
    EXPECT_EQ(Derive(*reloaded, again), pairs);
    for (const auto& [from, targets] : manager.GetMap())
        for (const auto& [to, entry] : targets)
            EXPECT_EQ(entry.trajectory->GetLength(), again.GetMap().at(from).at(to).trajectory->GetLength());
    std::filesystem::remove(before);
    std::filesystem::remove(after);
}

TEST(IntersectionLinksManager, HostileGeometryGivesNoNaN) {
    // A and B meet at one point with the same heading (lane ends coincide); Z has zero length.
    CountedPtr<Network> network =
        Load(TrackXml("A", "", "X", -40, 0, 0, 40) + TrackXml("B", "X", "", 0, 0, 0, 40) +
             TrackXml("Z", "X", "", 0, 0, kPi / 2, 0));
    ASSERT_TRUE(network);
    IntersectionLinksManager manager;
    Derive(*network, manager, false);
    const LaneOnIntersectionData a{"A", true, "R", 0}, b{"B", false, "R", 0};
    ASSERT_TRUE(manager.GetLink(&a, &b));
    EXPECT_FALSE(manager.GetLinkTrajectory(&a, &b)->GetAxis());
    for (const auto& [from, targets] : manager.GetMap())
        for (const auto& [to, entry] : targets) {
            const Orvia::Axis* way = entry.trajectory ? entry.trajectory->GetAxis() : nullptr;
            if (!way) continue;
            for (double share : {0.0, 0.5, 1.0}) {
                vek::Mark mark;
                ASSERT_TRUE(way->GetMark(mark, share * entry.trajectory->GetLength(), 0.0));
                EXPECT_TRUE(std::isfinite(mark.position.x) && std::isfinite(mark.position.y) &&
                            std::isfinite(mark.position.z) && std::isfinite(mark.yaw))
                    << from << " -> " << to;
            }
        }
}

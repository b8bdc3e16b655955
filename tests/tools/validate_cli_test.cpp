// `orvia validate` run as a user would.

#include "command_run.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orvia_cli_test;

class ValidateCommand : public ScratchTest {
protected:
    static CommandRun Run(const std::string& arguments) { return RunOrvia("validate " + arguments); }
};

}  // namespace

TEST_F(ValidateCommand, CleanDocumentsPass) {
    for (const char* name : {"examples/city_centre.xml", "tests/data/profiles.xml", "tests/data/rail.xml"}) {
        const CommandRun run = Run(std::string("'") + ORVIA_SOURCE_DIR + "/" + name + "'");
        EXPECT_EQ(run.status, 0) << name << run.out << run.err;
        EXPECT_EQ(run.out, "") << name;
    }
    const CommandRun json = Run(std::string("--json '") + ORVIA_SOURCE_DIR + "/examples/city_centre.xml'");
    EXPECT_EQ(json.status, 0);
    EXPECT_NE(json.out.find("\"problems\": []}"), std::string::npos) << json.out;
}

TEST_F(ValidateCommand, EveryCheckReportsInDocumentOrder) {
    // Line 3: a value that does not parse; line 4: lanes and borders that do not match; line 14: a light
    // group that names no sign.
    const std::string file = Write("bad.xml", R"(<Ruvex version="2.5" versionRevision="0"><Network name="N">
<Roads><Road name="R" priorityLevel="high"/></Roads><SubNetworks><SubNetwork name="S">
<Profiles><Profile name="P"><Lane name="A" laneType="bus"/>
<Lane name="B"/><LaneBorder horizDistToAxis="0"/></Profile></Profiles>
<Intersections><Intersection name="Cross">
<MarkClippedData name="North"><RoadSign type="traffic light">
  <Light name="Red" color="red" illumination="on"/>
</RoadSign></MarkClippedData>
</Intersection></Intersections>
<TrafficLightGroups><TrafficLightGroup name="G" currentCycle="Day">
  <TrafficLightAnimation cycleName="Day" roadSign="North">
    <TrafficLightState timeLength="10" illuminations="on"/>
  </TrafficLightAnimation>
  <TrafficLightAnimation cycleName="Day" roadSign="Nowhere"/>
</TrafficLightGroup></TrafficLightGroups>
</SubNetwork></SubNetworks></Network></Ruvex>)");
    const CommandRun run = Run("'" + file + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
    std::istringstream lines(run.out);
    std::vector<std::string> found;
    for (std::string line; std::getline(lines, line);)
        found.push_back(line);
    ASSERT_EQ(found.size(), 4u) << run.out;
    EXPECT_EQ(found[0].rfind(file + ":2:", 0), 0u) << found[0];
    EXPECT_NE(found[0].find("priorityLevel"), std::string::npos) << found[0];
    EXPECT_EQ(found[1].rfind(file + ":3:", 0), 0u) << found[1];
    EXPECT_NE(found[1].find("has 2 lanes and 1 borders"), std::string::npos) << found[1];
    EXPECT_NE(found[2].find("unknown lane type \"bus\""), std::string::npos) << found[2];
    EXPECT_EQ(found[3].rfind(file + ":14:", 0), 0u) << found[3];
    EXPECT_NE(found[3].find("no sign \"Nowhere\""), std::string::npos) << found[3];
    EXPECT_EQ(run.out.find("warning:"), std::string::npos);

    const CommandRun json = Run("--json '" + file + "'");
    EXPECT_EQ(json.status, 1);
    EXPECT_NE(json.out.find(R"({"line": 14, "column": )"), std::string::npos) << json.out;
}

TEST_F(ValidateCommand, RailNamesAndUnreadableFiles) {
    const std::string rail = Write("rail.xml", R"(<Ruvex version="2.5" versionRevision="0">
<RailNetwork><RailroadTracks>
<RailroadTrack name="A"><XYCurve><Segment length="10"/></XYCurve><SwitchEnd name="W9"/></RailroadTrack>
</RailroadTracks></RailNetwork></Ruvex>)");
    const CommandRun run = Run("'" + rail + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.rfind(rail + ":3:67: ", 0), 0u) << run.out;
    EXPECT_NE(run.out.find("names the switch \"W9\""), std::string::npos) << run.out;

    const CommandRun broken = Run("'" + Write("broken.xml", "<Ruvex><Network>\n</Ruvex>") + "'");
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.out, "");
    EXPECT_NE(broken.err.find("broken.xml:"), std::string::npos) << broken.err;
    const CommandRun missing = Run("'" + (dir_ / "absent.xml").string() + "'");
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err, "");
}

TEST_F(ValidateCommand, IntersectionReferencesAndArms) {
    // Line 5: a banned link to a missing track; line 6: to a lane that A's start does not have, and from the
    // end of A, which does not meet X; line 8: a contour piece (placed at X, line 3) naming a missing track;
    // A and B leave X at one point with one heading, Z has no length (placed at X).
    const std::string file = Write("nodes.xml", R"(<Ruvex version="2.5" versionRevision="0"><Network name="N">
<SubNetworks><SubNetwork name="S"><Profiles><Profile name="P"><Lane name="L"/><LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="3"/></Profile></Profiles>
<Intersections><Intersection name="X"><BannedLinks>
<LanePair fromTrack="A" fromLane="L" toTrack="A" toLane="L"/>
  <LanePair fromTrack="Ghost" fromLane="L" toTrack="A" toLane="L"/>
<LanePair fromTrack="A" fromTrackBoundInfo="end" fromLane="L" toTrack="B" toLane="Nope"/>
</BannedLinks>
<Contours><ContourPiece startAnchorTrack="A" endAnchorTrack="Lost"/></Contours></Intersection></Intersections>
<Tracks>
<Track name="A" startIntersectionName="X"><XYCurve><Segment length="10"/></XYCurve><Portion endDistance="10" startProfileName="P" endProfileName="P"/></Track>
<Track name="B" startIntersectionName="X"><XYCurve><Segment length="20"/></XYCurve><Portion endDistance="20" startProfileName="P" endProfileName="P"/></Track>
<Track name="Z" startIntersectionName="X"><XYCurve x="5"><Segment length="0"/></XYCurve></Track>
</Tracks></SubNetwork></SubNetworks></Network></Ruvex>)");
    const CommandRun run = Run("'" + file + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
    std::istringstream lines(run.out);
    std::vector<std::string> found;
    for (std::string line; std::getline(lines, line);)
        found.push_back(line);
    ASSERT_EQ(found.size(), 6u) << run.out;
    // Problems without a place of their own stand at the intersection, first in document order.
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(found[i].rfind(file + ":3:", 0), 0u) << found[i];
    EXPECT_NE(run.out.find("contour piece 1 names the track \"Lost\""), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("track \"Z\" meets it with no length"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("tracks \"A\" and \"B\" meet it at one point with one heading"), std::string::npos)
        << run.out;
    EXPECT_EQ(found[3], file +
                            ":5:4: intersection \"X\": banned link names the track \"Ghost\", which the "
                            "sub-network does not have");
    EXPECT_EQ(found[4].rfind(file + ":6:2: ", 0), 0u) << found[4];
    EXPECT_NE(found[4].find("the end of track \"A\", which does not meet it"), std::string::npos) << found[4];
    EXPECT_NE(found[5].find("the lane \"Nope\" at the start of track \"B\""), std::string::npos) << found[5];
}

TEST_F(ValidateCommand, ClippedDataOnNoTrackAndLoneJunctionExit) {
    const std::string file =
        Write("model.xml", R"(<Ruvex version="2.5"><Network><SubNetworks><SubNetwork name="A">
<ClippedDatas>
  <TrackClippedData name="Orphan"/></ClippedDatas>
<Tracks><Track name="T"/></Tracks></SubNetwork></SubNetworks>
<SubNetworkJunctions><SubNetworkJunction name="Lonely"><SubNetworkExit subNetwork="A" track="T"/></SubNetworkJunction>
</SubNetworkJunctions></Network></Ruvex>)");
    const CommandRun run = Run("'" + file + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.rfind(file + ":3:4: ", 0), 0u) << run.out;
    EXPECT_NE(run.out.find("\"Orphan\" lies on no track"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(file + ":5:23: sub-network junction \"Lonely\" has fewer than two exits"),
              std::string::npos)
        << run.out;
}

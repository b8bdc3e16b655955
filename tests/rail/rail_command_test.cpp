// `orvia rail` run as a user would: the summary of a document, the warnings of one with dangling names, and
// names that would drive a terminal printed harmless.

#include "tools/command_run.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orvia_cli_test;

class RailCommand : public ScratchTest {
protected:
    static CommandRun Run(const std::string& arguments) { return RunOrvia("rail " + arguments); }

    std::string Write(const std::string& body) const {
        return ScratchTest::Write("rail.xml",
                                  "<Ruvex version=\"2.5\" versionRevision=\"0\">\n<RailNetwork>\n" + body +
                                      "</RailNetwork>\n</Ruvex>\n");
    }

    const std::string m_data = std::string(ORVIA_SOURCE_DIR) + "/tests/data/";
};

}  // namespace

TEST_F(RailCommand, SummarisesAsTextAndJson) {
    CommandRun text = Run("'" + m_data + "rail.xml'");
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.err, "");
    for (const char* line :
         {"tracks:           2\n", "  A: 1000 m, BufferEnd .. SwitchEnd", "  W1 (ordinary)\n",
          "  S1 (track A)\n", "  Line1 (noInterpolation)\n",
          "  Electrification (enum, changed), default none, entries: \"none\" \"ac25kV\"\n",
          "unresolved:       0\n"})
        EXPECT_NE(text.out.find(line), std::string::npos) << line << "\nin\n" << text.out;

    CommandRun json = Run("'" + m_data + "rail_sample.xml' --json");
    EXPECT_EQ(json.status, 0) << json.err;
    EXPECT_EQ(json.out.front(), '{');
    EXPECT_EQ(json.out.find('\n'), json.out.size() - 1);  // one object on one line
    for (const char* part :
         {"\"tracks\": [{\"name\": \"myTrack1\", \"length\": 1500, \"start\": \"LinkedEnd\"",
          "\"switches\": [{\"name\": \"mySwitch1\", \"type\": \"ordinary\"}]",
          "{\"name\": \"Signal2\", \"track\": \"myTrack1\"}",
          "{\"name\": \"Civil\", \"usage\": \"linearInterpolation\"}",
          "\"entries\": [\"750 V\", \"5000 V\", \"25000 V\"]", "\"unresolved\": 0}"})
        EXPECT_NE(json.out.find(part), std::string::npos) << part << "\nin\n" << json.out;
}

TEST_F(RailCommand, DanglingNamesAreWarnedWithTheirPlace) {
    const std::string file = Write(R"(<RailroadTracks>
<RailroadTrack name="A"><XYCurve><Segment length="10"/></XYCurve><BufferEnd/><SwitchEnd name="W9"/></RailroadTrack>
</RailroadTracks>
<Signals><Signal name="S&#x9b;2J"><TrackQuote trackName="A"/></Signal></Signals>
)");
    CommandRun run = Run("'" + file + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.rfind(file + ":4:", 0), 0u) << run.err;
    EXPECT_NE(run.err.find("warning: <SwitchEnd> names the switch \"W9\""), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("unresolved:       1\n"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("\xc2\x9b"), std::string::npos);
    EXPECT_NE(run.out.find("  S\\x9B2J (track A)\n"), std::string::npos) << run.out;

    CommandRun other = Run("'" + std::string(ORVIA_SOURCE_DIR) + "/examples/city_centre.xml'");
    EXPECT_EQ(other.status, 1);
    EXPECT_NE(other.err.find("holds no rail network"), std::string::npos) << other.err;
}

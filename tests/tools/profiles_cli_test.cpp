// `orvia profiles` run as a user would.

#include "command_run.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orvia_cli_test;

CommandRun Profiles(const std::string& arguments) {
    return RunOrvia("profiles " + arguments);
}

}  // namespace

TEST(ProfilesCommand, ListsLanesOfNetworksAndLibraries) {
    const CommandRun example = Profiles(std::string("'") + ORVIA_SOURCE_DIR + "/examples/city_centre.xml'");
    EXPECT_EQ(example.status, 0) << example.err;
    EXPECT_EQ(example.err, "");
    EXPECT_NE(
        example.out.find("sub-network Old Town\n  profile Two Lanes (road type none, 2 lanes, 3 borders)\n"
                         "    0 Left: type paved, way inverse, left -3.5, right 0, markings Edge | Dashed\n"),
        std::string::npos)
        << example.out;

    const CommandRun library =
        Profiles(std::string("--json '") + ORVIA_SOURCE_DIR + "/tests/data/profiles.xml'");
    EXPECT_EQ(library.status, 0) << library.err;
    EXPECT_NE(
        library.out.find(R"({"name": "Walk", "type": "sidewalk", "way": "both", "left": -5, "right": -3.5, )"
                         R"("leftMarking": "", "rightMarking": "Solid"})"),
        std::string::npos)
        << library.out;
    EXPECT_NE(library.out.find(R"("problems": []})"), std::string::npos);
}

TEST(ProfilesCommand, ReportsBrokenProfilesWithTheirPlaces) {
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "orvia_profiles_bad.xml";
    std::ofstream(file) << R"(<Ruvex version="2.5" versionRevision="0"><Network name="N"><SubNetworks>
<SubNetwork name="S"><Profiles><Profile name="P">
<Lane name="A&#x9b;2J" laneType="bus"/><Lane name="B"/>
<LaneBorder horizDistToAxis="2"/>
<LaneBorder horizDistToAxis="-1"/>
</Profile></Profiles></SubNetwork></SubNetworks></Network></Ruvex>)";
    const CommandRun run = Profiles("'" + file.string() + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("1 B: type paved, way direct, left -1, right -, markings - | -"),
              std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("0 A\\x9B2J: type"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("\xc2\x9b"), std::string::npos);
    const std::string prefix = file.string() + ":";
    EXPECT_NE(run.err.find(prefix + "3:2: unknown lane type \"bus\""), std::string::npos) << run.err;
    EXPECT_NE(run.err.find(prefix + "2:33: profile \"P\" has 2 lanes and 2 borders (expected 3)"),
              std::string::npos)
        << run.err;
    EXPECT_NE(run.err.find(prefix + "5:2: profile \"P\": border 1 lies left of border 0"), std::string::npos)
        << run.err;

    const CommandRun missing = Profiles("'" + file.string() + ".absent'");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
    std::filesystem::remove(file);
}

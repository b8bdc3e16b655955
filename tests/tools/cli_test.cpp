#include "command_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace orvia_cli_test;

// "file:line:column: message\n" with numbers and a message on one line.
bool IsPlacedProblem(const std::string& text, const std::string& file) {
    if (text.compare(0, file.size() + 1, file + ":") != 0 || text.back() != '\n') return false;
    size_t at = file.size() + 1;
    for (int number = 0; number < 2; ++number) {
        const size_t end = text.find_first_not_of("0123456789", at);
        if (end == at || end == std::string::npos || text[end] != ':') return false;
        at = end + 1;
    }
    return text.compare(at, 1, " ") == 0 && text.size() > at + 2 && text.find('\n') == text.size() - 1;
}

// Three zeros with three decimals (either sign), then a newline.
bool IsZeroPoint(const std::string& text) {
    std::string unsignedText;
    for (char c : text)
        if (c != '-') unsignedText += c;
    return unsignedText == "0.000 0.000 0.000\n";
}

class OrviaTool : public ScratchTest {
protected:
    static CommandRun Orvia(const std::string& arguments) { return RunOrvia(arguments); }

    const std::string example_ = std::string(ORVIA_SOURCE_DIR) + "/examples/city_centre.xml";
};

}  // namespace

TEST_F(OrviaTool, InfoSummarisesTheNetwork) {
    CommandRun text = Orvia("info '" + example_ + "'");
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find("format version: 2.5.0\n"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("name:           City Centre\n"), std::string::npos);
    EXPECT_NE(text.out.find("traffic hand:   right-hand\n"), std::string::npos);
    EXPECT_NE(text.out.find("projection:     RGF93 v1 / Lambert-93\n"), std::string::npos);
    EXPECT_NE(text.out.find("sub-networks:   2\n"), std::string::npos);
    EXPECT_NE(text.out.find("junctions:      1\n"), std::string::npos);
    EXPECT_NE(text.out.find("roads:          2\n"), std::string::npos);
    EXPECT_NE(text.out.find("tracks:         6\n"), std::string::npos);
    EXPECT_NE(text.out.find("intersections:  5\n"), std::string::npos);
    // The tracks' surfaces, 4.1 m wide at most, reach beyond the westmost intersection at x = 0.
    EXPECT_NE(text.out.find("bounding box:   (-4.1, "), std::string::npos) << text.out;
    EXPECT_TRUE(text.err.empty());

    CommandRun json = Orvia("info --json '" + example_ + "'");
    EXPECT_EQ(json.status, 0);
    EXPECT_NE(json.out.find(
                  "\"subNetworks\": 2, \"junctions\": 1, \"roads\": 2, \"tracks\": 6, \"intersections\": 5"),
              std::string::npos)
        << json.out;
    EXPECT_EQ(json.out.front(), '{');
    EXPECT_EQ(json.out.substr(json.out.size() - 2), "}\n");

    const std::string empty =
        Write("empty.xml", R"(<Ruvex version="2.4"><Network name="Say &quot;hi&quot;"/></Ruvex>)");
    CommandRun bare = Orvia("info --json '" + empty + "'");
    EXPECT_EQ(bare.status, 0);
    EXPECT_NE(bare.out.find(R"("formatVersion": "2.4.0", "name": "Say \"hi\"")"), std::string::npos)
        << bare.out;
    EXPECT_NE(bare.out.find(R"("boundingBox": null)"), std::string::npos);
}

TEST_F(OrviaTool, FailuresGiveOneLineWithThePlace) {
    const std::string badValue =
        Write("bad_value.xml",
              "<Ruvex version=\"2.5\">\n  <Network name=\"x\">\n    <Roads><Road name=\"a\" "
              "priorityLevel=\"high\"/></Roads>\n  </Network>\n</Ruvex>\n");
    CommandRun run = Orvia("info '" + badValue + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(
        run.err,
        badValue +
            ":3:13: warning: attribute \"priorityLevel\" of <Road>: expected a non-negative integer, found "
            "\"high\"; left at its default\n");
    EXPECT_TRUE(run.out.empty());

    const std::string notXml = Write("not_xml.xml", "<Ruvex><Network>\n</Ruvex>");
    run = Orvia("convert '" + notXml + "' '" + (dir_ / "out.xml").string() + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(IsPlacedProblem(run.err, notXml)) << run.err;
    EXPECT_FALSE(IsPlacedProblem("x.xml: cannot read the file\n", "x.xml"));
    EXPECT_FALSE(std::filesystem::exists(dir_ / "out.xml"));

    const std::string road = Write("road.xml", R"(<Ruvex version="2.5"><Road name="R"/></Ruvex>)");
    run = Orvia("geo '" + road + "' --to-wgs84 0 0 0");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, road + ":1:22: the file holds no network: its element is <Road>\n");

    run = Orvia("info '" + (dir_ / "missing.xml").string() + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, (dir_ / "missing.xml").string() + ": cannot read the file\n");

    run = Orvia("convert '" + example_ + "' '" + (dir_ / "no_such_dir" / "out.xml").string() + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("no_such_dir/out.xml"), std::string::npos);
}

TEST_F(OrviaTool, ConvertCorrectsOldBankingSignOnce) {
    const std::filesystem::path old = dir_ / "old.xml";
    std::ofstream(old)
        << R"(<Ruvex version="2.4" versionRevision="2"><Network><SubNetworks><SubNetwork name="S">
<Tracks><Track name="T"><XYCurve><Segment length="50"/></XYCurve>
<BankingCurve><Polynomial xIn="0" yIn="0.05" xOut="50" yOut="0.05"/></BankingCurve></Track></Tracks>
</SubNetwork></SubNetworks></Network></Ruvex>)";
    const std::string first = (dir_ / "first.xml").string();
    const std::string second = (dir_ / "second.xml").string();
    ASSERT_EQ(Orvia("convert '" + old.string() + "' '" + first + "'").status, 0);
    ASSERT_EQ(Orvia("convert '" + first + "' '" + second + "'").status, 0);
    const std::string converted = Slurp(first);
    EXPECT_NE(converted.find("yIn=\"-0.05\""), std::string::npos) << converted;
    EXPECT_NE(converted.find("yOut=\"-0.05\""), std::string::npos) << converted;
    EXPECT_EQ(Slurp(second), converted);
}

TEST_F(OrviaTool, ConvertWritesWhatReadsBackTheSame) {
    const std::string first = (dir_ / "first.xml").string();
    const std::string second = (dir_ / "second.xml").string();
    ASSERT_EQ(Orvia("convert '" + example_ + "' '" + first + "'").status, 0);
    ASSERT_EQ(Orvia("convert '" + first + "' '" + second + "'").status, 0);
    EXPECT_EQ(Slurp(first), Slurp(second));

    // Absolute paths against given directories, then relative to the output's directory again.
    const std::string absolute = (dir_ / "absolute.xml").string();
    ASSERT_EQ(Orvia("convert '" + example_ + "' '" + absolute + "' --absolute-paths /data/city").status, 0);
    EXPECT_NE(Slurp(absolute).find("filePath=\"/data/city/terrain/city_centre_terrain.obj\""),
              std::string::npos);
    std::filesystem::create_directories(dir_ / "data");
    const std::string relative = (dir_ / "data" / "relative.xml").string();
    ASSERT_EQ(Orvia("convert '" + absolute + "' '" + relative + "' --relative-paths").status, 0);
    EXPECT_NE(Slurp(relative).find("filePath=\"../../../data/city/terrain/city_centre_terrain.obj\""),
              std::string::npos)
        << Slurp(relative).substr(0, 4000);

    EXPECT_NE(Orvia("convert '" + example_ + "' '" + relative + "' --relative-paths --absolute-paths").status,
              0);
    EXPECT_NE(Orvia("convert '" + example_ + "'").status, 0);
}

TEST_F(OrviaTool, GeoConvertsBothWays) {
    CommandRun origin = Orvia("geo '" + example_ + "' --to-wgs84 0 0 0");
    EXPECT_EQ(origin.status, 0) << origin.err;
    EXPECT_EQ(origin.out, "45.764000000 4.835700000 170.000\n");
    CommandRun back = Orvia("geo '" + example_ + "' --to-local 45.764 4.8357 170");
    EXPECT_EQ(back.status, 0) << back.err;
    EXPECT_TRUE(IsZeroPoint(back.out)) << back.out;
    CommandRun west = Orvia("geo '" + example_ + "' --to-wgs84 -100 -50.5 0");
    EXPECT_EQ(west.status, 0);

    EXPECT_NE(Orvia("geo '" + example_ + "'").status, 0);
    EXPECT_NE(Orvia("geo '" + example_ + "' --to-wgs84 0 0 0 --to-local 1 2 3").status, 0);
    EXPECT_NE(Orvia("geo '" + example_ + "' --to-wgs84 0 0").status, 0);
}

TEST_F(OrviaTool, GeoRefusesWhatIsNoPlaceOnEarth) {
    for (const char* point : {"--to-local 1e8 0 0", "--to-local 45 -181 0", "--to-local nan 0 0",
                              "--to-wgs84 0 1e300 0", "--to-wgs84 0 0 -1e6", "--to-wgs84 inf 0 0"}) {
        CommandRun run = Orvia("geo '" + example_ + "' " + point);
        EXPECT_EQ(run.status, 1) << point;
        EXPECT_TRUE(run.out.empty()) << point << ": " << run.out;
        EXPECT_NE(run.err.find("is outside"), std::string::npos) << point << ": " << run.err;
    }
    CommandRun run = Orvia("geo '" + example_ + "' --to-local 1e8 0 0");
    EXPECT_EQ(run.err, example_ + ": latitude 1e+08 is outside [-90, 90] degrees\n");

    // A projection centred far beyond the Earth gives no answer either.
    std::string text = Slurp(example_);
    const size_t centre = text.find("centerX=\"");
    ASSERT_NE(centre, std::string::npos);
    text.replace(centre + 9, text.find('"', centre + 9) - centre - 9, "1e308");
    const std::string far = Write("far.xml", text);
    run = Orvia("geo '" + far + "' --to-wgs84 0 0 0");
    EXPECT_EQ(run.status, 1) << run.out;
    EXPECT_TRUE(run.out.empty()) << run.out;
    EXPECT_EQ(run.err, far +
                           ": the network's projection is centred at (1e+308, 6.51992e+06, 170), which is no "
                           "place on Earth\n");
}

TEST_F(OrviaTool, NamesCannotDriveTheTerminal) {
    // XML holds no C0 control but the line breaks and tab; C1 controls and DEL it does.
    const std::string named = Write("named.xml",
                                    "<Ruvex version=\"2.5\"><Network name=\"a\xC2\x9B"
                                    "2Jb\x7F\\&#9;\"/></Ruvex>");
    CommandRun run = Orvia("info '" + named + "'");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("name:           a\\x9B"
                           "2Jb\\x7F\\\\\\x09\n"),
              std::string::npos)
        << run.out;
    run = Orvia("info --json '" + named + "'");
    EXPECT_NE(run.out.find("\"name\": \"a\xC2\x9B"
                           "2Jb\\u007f\\\\\\u0009\""),
              std::string::npos)
        << run.out;
    // Nor can the problems that quote them.
    const std::string bad = Write("bad.xml",
                                  "<Ruvex version=\"2.5\"><Network><Roads><Road name=\"x\" "
                                  "priorityLevel=\"\xC2\x9B]0;title\"/></Roads></Network></Ruvex>");
    run = Orvia("info '" + bad + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.find("\xC2\x9B"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("\\x9B]0;title"), std::string::npos) << run.err;
}

TEST_F(OrviaTool, HelpForEveryCommand) {
    for (const char* command : {"--help", "info --help", "convert --help", "geo --help"}) {
        CommandRun run = Orvia(command);
        EXPECT_EQ(run.status, 0) << command;
        EXPECT_NE(run.out.find("Usage:"), std::string::npos) << command;
    }
    EXPECT_NE(Orvia("").status, 0);
    EXPECT_NE(Orvia("frobnicate").status, 0);
}

// `orvia links` run as a user would.

#include "command_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using namespace orvia_cli_test;

CommandRun Links(const std::string& arguments) {
    return RunOrvia(std::string("links '") + ORVIA_SOURCE_DIR + "/tests/data/links.xml' " + arguments);
}

size_t Lines(const std::string& text, const std::string& prefix) {
    size_t count = 0;
    for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
        if (text.compare(at, prefix.size(), prefix) == 0) ++count;
        if (text.find('\n', at) == std::string::npos) break;
    }
    return count;
}

}  // namespace

// Twelve turns at a four-arm cross: one written in the file, one banned, ten derived.
TEST(LinksCommand, IntersectionListingAndFollowOn) {
    const CommandRun all = Links("--intersection X");
    EXPECT_EQ(all.status, 0) << all.err;
    EXPECT_EQ(Lines(all.out, "explicit\t"), 1u) << all.out;
    EXPECT_EQ(Lines(all.out, "implicit\t"), 10u) << all.out;
    EXPECT_EQ(Lines(all.out, "banned\tS end R\tE start R\t"), 1u) << all.out;
    // Straight on from W to E: the 20 m between the lanes.
    EXPECT_NE(all.out.find("implicit\tW end R\tE start R\t20\tlink implicit link 1 0-W-R_0-E-R\n"),
              std::string::npos)
        << all.out;

    const CommandRun json = Links("--intersection X --json");
    EXPECT_EQ(json.status, 0) << json.err;
    EXPECT_NE(json.out.find(
                  "{\"kind\": \"explicit\", \"name\": \"Left\", \"from\": {\"track\": \"W\", \"extremity\": "
                  "\"end\", \"lane\": \"R\"}, \"to\": {\"track\": \"N\", \"extremity\": \"start\", "
                  "\"lane\": \"R\"}, \"length\": "),
              std::string::npos)
        << json.out;
    EXPECT_NE(json.out.find("\"banned\": [{\"from\": {\"track\": \"S\""), std::string::npos) << json.out;

    const CommandRun follow = Links("--track W --end --lane R");
    EXPECT_EQ(follow.status, 0) << follow.err;
    EXPECT_EQ(Lines(follow.out, "explicit\tW end R\tN start R\t"), 1u) << follow.out;
    EXPECT_EQ(Lines(follow.out, "implicit\tW end R\t"), 2u) << follow.out;
    const CommandRun none = Links("--track E --start --lane R --json");
    EXPECT_EQ(none.status, 0) << none.err;
    EXPECT_NE(none.out.find("\"links\": []"), std::string::npos) << none.out;

    EXPECT_EQ(Links("--intersection Nowhere").status, 1);
    EXPECT_EQ(Links("--track W --end --lane Ghost").status, 1);
    EXPECT_EQ(Links("--track W --start --lane R").status, 1);  // no intersection there
    EXPECT_EQ(Links("--track W --lane R").status, 1);
    EXPECT_EQ(Links("").status, 1);
}

// `orvia lights` run as a user would.

#include "command_run.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orvia_cli_test;

CommandRun Lights(const std::string& arguments) {
    return RunOrvia(std::string("lights '") + ORVIA_SOURCE_DIR + "/tests/data/traffic.xml' " + arguments);
}

}  // namespace

// The group runs 4.5 s ahead in a 60 s day cycle: green 30 s, red blinking 3 s, red 27 s.
TEST(LightsCommand, StateAtATimeAndTimeline) {
    const CommandRun at = Lights("--at 27");
    EXPECT_EQ(at.status, 0) << at.err;
    EXPECT_NE(at.out.find("Centre / Cross: cycle Day, period 60, time 27, animation time 31.5\n"
                          "  NorthLight: state 1 of 3, time to red change 28.5\n"
                          "    Red red blinking timer 03\n"
                          "    Green green off timer -\n"),
              std::string::npos)
        << at.out;

    const CommandRun json = Lights("--group Cross --at -64.5 --json");
    EXPECT_EQ(json.status, 0) << json.err;
    EXPECT_NE(json.out.find("\"animationTime\": 60, \"signs\": [{\"sign\": \"NorthLight\", \"state\": 2"),
              std::string::npos)
        << json.out;

    const CommandRun timeline = Lights("--from 25 --to 26 --step 0.5");
    EXPECT_EQ(timeline.status, 0) << timeline.err;
    EXPECT_EQ(timeline.out,
              "time\tgroup\tsign\tstate\ttimeToRedChange\tlights\n"
              "25\tCross\tNorthLight\t0\t0.5\tred=off,green=on\n"
              "25.5\tCross\tNorthLight\t1\t30\tred=blinking,green=off\n"
              "26\tCross\tNorthLight\t1\t29.5\tred=blinking,green=off\n");

    EXPECT_EQ(Lights("--group Nowhere --at 1").status, 1);
    EXPECT_EQ(Lights("--from 1 --to 0 --step 1").status, 1);
    EXPECT_EQ(Lights("--from 0 --to 1 --step 0").status, 1);
}

#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace Ruvex;

namespace {

struct Place {
    size_t line;
    size_t column;
    bool warning;
};

std::vector<Place> Places() {
    std::vector<Place> places;
    for (const Problem& p : GetLastProblems())
        places.push_back({p.line, p.column, p.warning});
    return places;
}

// Loads `text` from memory and from a file: both find the same problems at the same places.
std::vector<Place> LoadBothWays(const std::string& text, bool loads) {
    CountedPtr<Element> fromMemory(Load(text.c_str(), true));
    EXPECT_EQ(static_cast<bool>(fromMemory), loads);
    const std::vector<Place> places = Places();
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / "orvia_problem_place_test.xml";
    std::ofstream(path, std::ios::binary) << text;
    CountedPtr<Element> fromFile(Load(path.string().c_str(), false));
    EXPECT_EQ(static_cast<bool>(fromFile), loads);
    const std::vector<Place> again = Places();
    std::filesystem::remove(path);
    EXPECT_EQ(again.size(), places.size());
    for (size_t i = 0; i < places.size() && i < again.size(); ++i) {
        EXPECT_EQ(again[i].line, places[i].line) << i;
        EXPECT_EQ(again[i].column, places[i].column) << i;
    }
    return places;
}

}  // namespace

TEST(Load, ProblemsHaveTheirPlaceInTheText) {
    // Line breaks inside values, CR LF ends and escapes change the text as it is parsed; places are those of
    // the text as written.
    const std::string text =
        "<Ruvex>\r\n  <Network name=\"a\r\nb &amp; c\">\r\n    <Roads>\r\n"
        "      <Road name=\"R\" priorityLevel=\"-1\"/>\r\n"
        "      <Road\r\n        priorityLevel=\"x\"/>\r\n    </Roads>\r\n  </Network>\r\n</Ruvex>\r\n";
    const std::vector<Place> warnings = LoadBothWays(text, true);
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_TRUE(warnings[0].warning);
    EXPECT_EQ(warnings[0].line, 5u);
    EXPECT_EQ(warnings[0].column, 8u);
    EXPECT_EQ(warnings[1].line, 6u);
    EXPECT_EQ(warnings[1].column, 8u);

    const std::vector<Place> errors =
        LoadBothWays("<Ruvex>\n  <Network>\n    <Roads>\n  </Network>\n</Ruvex>\n", false);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_FALSE(errors[0].warning);
    EXPECT_EQ(errors[0].line, 4u);
}

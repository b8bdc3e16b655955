#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

using namespace Ruvex;

namespace {

// Line, column and whether it is a warning.
using Place = std::tuple<size_t, size_t, bool>;

std::vector<Place> Places() {
    std::vector<Place> places;
    for (const Problem& p : GetLastProblems())
        places.emplace_back(p.line, p.column, p.warning);
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
    EXPECT_EQ(Places(), places);
    std::filesystem::remove(path);
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
    EXPECT_EQ(LoadBothWays(text, true), (std::vector<Place>{{5, 8, true}, {6, 8, true}}));

    const std::vector<Place> errors =
        LoadBothWays("<Ruvex>\n  <Network>\n    <Roads>\n  </Network>\n</Ruvex>\n", false);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_FALSE(std::get<2>(errors[0]));
    EXPECT_EQ(std::get<0>(errors[0]), 4u);
}

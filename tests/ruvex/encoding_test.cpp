#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/factory.h>

#include "well_formed.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

using namespace Ruvex;

namespace {

// Bytes written to a file and loaded from there (UTF-16 cannot come from a C string).
CountedPtr<Element> LoadBytes(const std::string& bytes) {
    // ctest runs the tests of this file side by side: one file per test.
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("orvia_encoding_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) +
         ".xml");
    std::ofstream(path, std::ios::binary) << bytes;
    CountedPtr<Element> root(Load(path.c_str(), false));
    std::filesystem::remove(path);
    return root;
}

std::string NameOf(const CountedPtr<Element>& root) {
    auto* network = dynamic_cast<NetworkElement*>(root.Get());
    return network ? network->GetName() : std::string("(no network)");
}

// ASCII text as UTF-16 code units, with `mark` before; "\xE9" and "\u20AC" are given as code units.
std::string Utf16(const std::u16string& text, bool little, bool mark) {
    std::string out;
    auto put = [&](char16_t unit) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xFF);
        out += little ? std::string{low, high} : std::string{high, low};
    };
    if (mark) put(0xFEFF);
    for (char16_t unit : text)
        put(unit);
    return out;
}

using Place = std::tuple<size_t, size_t, bool>;  // line, column, warning

std::vector<Place> Places() {
    std::vector<Place> places;
    for (const Problem& p : GetLastProblems())
        places.emplace_back(p.line, p.column, p.warning);
    return places;
}

const std::string kCafe = "Caf\xC3\xA9 \xE2\x82\xAC";  // "Café €" in UTF-8

}  // namespace

TEST(Encoding, ByteOrderMarkAndDeclarationDecideAndTheSavedDeclarationMatchesTheBytes) {
    // A UTF-8 mark before a declaration that says Latin-1: the mark wins, with a warning at the declaration.
    const std::string marked =
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<Ruvex><Network name=\"" + kCafe +
        "\"/></Ruvex>\n";
    CountedPtr<Element> root = LoadBytes(marked);
    ASSERT_TRUE(root);
    EXPECT_EQ(NameOf(root), kCafe);
    EXPECT_EQ(Places(), (std::vector<Place>{{1, 31, true}}));
    std::string saved = SaveToString(root.Get());
    EXPECT_EQ(saved.substr(0, 41), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    EXPECT_EQ(NotWellFormed(saved), "");
    CountedPtr<Element> again = LoadBytes(saved);
    EXPECT_EQ(NameOf(again), kCafe);
    EXPECT_TRUE(GetLastProblems().empty());
    EXPECT_EQ(SaveToString(again.Get()), saved);

    // UTF-16 either way round, with a mark or without: read, and saved as UTF-8 that says so.
    const std::u16string text =
        u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<Ruvex><Network name=\"Caf\u00E9 \u20AC\"/></Ruvex>\n";
    for (const auto& [little, mark] :
         {std::pair{true, true}, std::pair{false, true}, std::pair{true, false}, std::pair{false, false}}) {
        SCOPED_TRACE(std::string(little ? "little" : "big") + (mark ? " endian, marked" : " endian"));
        const std::string bytes = Utf16(text, little, mark);
        ASSERT_EQ(NotWellFormed(bytes), "");
        root = LoadBytes(bytes);
        ASSERT_TRUE(root) << ToString(GetLastProblems().at(0));
        EXPECT_EQ(NameOf(root), kCafe);
        EXPECT_TRUE(GetLastProblems().empty());
        saved = SaveToString(root.Get());
        EXPECT_EQ(saved.substr(0, 38), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
        EXPECT_EQ(NotWellFormed(saved), "");
        EXPECT_EQ(NameOf(LoadBytes(saved)), kCafe);
    }

    // Latin-1 stays Latin-1 (under its registered name), and what it cannot hold goes as references.
    const std::string latin1 =
        "<?xml version=\"1.0\" encoding=\"latin1\"?>\n<Ruvex>\n  <Network name=\"Caf\xE9\" />\n</Ruvex>\n";
    root = LoadBytes(latin1);
    ASSERT_TRUE(root);
    EXPECT_EQ(NameOf(root), "Caf\xC3\xA9");
    saved = SaveToString(root.Get());
    EXPECT_EQ(saved.substr(0, 43), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>");
    EXPECT_NE(saved.find("<Network name=\"Caf\xE9\""), std::string::npos) << saved;
    EXPECT_EQ(SaveToString(CountedPtr<Element>(LoadBytes(saved)).Get()), saved);
    static_cast<NetworkElement*>(root.Get())->SetName(kCafe);
    saved = SaveToString(root.Get());
    EXPECT_NE(saved.find("name=\"Caf\xE9 &#8364;\""), std::string::npos) << saved;
    EXPECT_EQ(NotWellFormed(saved), "");
    EXPECT_EQ(NameOf(LoadBytes(saved)), kCafe);

    // A declaration that says UTF-16 over 8-bit text is read as UTF-8, with a warning; it is saved as UTF-8.
    root = LoadBytes("<?xml version=\"1.0\" encoding=\"UTF-16\"?><Ruvex><Network name=\"" + kCafe +
                     "\"/></Ruvex>");
    ASSERT_TRUE(root);
    EXPECT_EQ(NameOf(root), kCafe);
    EXPECT_EQ(Places(), (std::vector<Place>{{1, 31, true}}));
    EXPECT_EQ(NotWellFormed(SaveToString(root.Get())), "");

    // What cannot be read is refused, at its place.
    EXPECT_FALSE(LoadBytes("<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<Ruvex><Network/></Ruvex>"));
    EXPECT_EQ(Places(), (std::vector<Place>{{1, 31, false}}));
    EXPECT_NE(GetLastProblems()[0].message.find("\"windows-1252\" is not supported"), std::string::npos);
    EXPECT_FALSE(LoadBytes(std::string("\xFF\xFE\0\0<\0\0\0", 8)));
    EXPECT_NE(GetLastProblems().at(0).message.find("UTF-32"), std::string::npos);
}

TEST(Encoding, WhatXmlCannotHoldIsReplacedWithAWarningAtItsPlace) {
    struct Case {
        std::string text;  // a Network's name, as written in the file
        std::string name;  // as read
        Place place;       // of the one warning
    };
    const std::string fffd = "\xEF\xBF\xBD";
    const std::vector<Case> cases = {
        // Invalid UTF-8: a Latin-1 byte in a UTF-8 file, a surrogate, an overlong form.
        {"Caf\xE9", "Caf" + fffd, {2, 19, true}},
        {"a\xED\xA0\x80", "a" + fffd + fffd + fffd, {2, 17, true}},
        {"\xC0\xAF", fffd + fffd, {2, 16, true}},
        // Control characters, literal or as references, and references to no character.
        {"a\x01", "a" + fffd, {2, 17, true}},
        {"a&#0;b", "a" + fffd + "b", {2, 17, true}},
        {"&#1;", fffd, {2, 16, true}},
        {"x&#xD800;", "x" + fffd, {2, 17, true}},
        {"&#x110000;", fffd, {2, 16, true}},
        {"&#99999999999999999999;", fffd, {2, 16, true}},
        // Undefined entities and stray ampersands are kept as text.
        {"a&nbsp;b", "a&nbsp;b", {2, 17, true}},
        {"a & b", "a & b", {2, 18, true}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const std::string file =
            "<Ruvex>\n<Network name=\"" + c.text + "\"><!-- &#0; & --><![CDATA[&]]></Network>\n</Ruvex>";
        CountedPtr<Element> root = LoadBytes(file);
        ASSERT_TRUE(root);
        EXPECT_EQ(NameOf(root), c.name);
        EXPECT_EQ(Places(), std::vector<Place>{c.place});
        const std::string saved = SaveToString(root.Get());
        EXPECT_EQ(NotWellFormed(saved), "") << saved;
        EXPECT_EQ(NameOf(CountedPtr<Element>(Load(saved.c_str(), true))), c.name);
    }

    // Every occurrence is counted in one warning, placed at the first.
    CountedPtr<Element> root = LoadBytes("<Ruvex><Network name=\"&#1;&#2;\" a=\"&#3;\"/></Ruvex>");
    ASSERT_TRUE(root);
    ASSERT_EQ(GetLastProblems().size(), 1u);
    EXPECT_NE(GetLastProblems()[0].message.find("3 times in all"), std::string::npos);

    // An attribute given twice: the last value stands, in the first place.
    root = LoadBytes("<Ruvex>\n  <Network name=\"A\" x=\"1\" name=\"B\" x=\"2\"/></Ruvex>");
    ASSERT_TRUE(root);
    EXPECT_EQ(NameOf(root), "B");
    EXPECT_EQ(Places(), (std::vector<Place>{{2, 4, true}, {2, 4, true}}));
    const std::string saved = SaveToString(root.Get());
    EXPECT_NE(saved.find("<Network name=\"B\" trafficHand=\"right-hand\" x=\"2\" />"), std::string::npos)
        << saved;
    EXPECT_EQ(NotWellFormed(saved), "");
}

TEST(Encoding, RepeatedAttributesAmongManyAndAlike) {
    // Names alike in their first letters are not repeats; many distinct names are kept whole.
    std::string attributes;
    for (int i = 0; i < 40; ++i)
        attributes += " x" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
    CountedPtr<Element> root =
        LoadBytes("<Ruvex><Network name=\"N\" nam=\"1\" names=\"2\"" + attributes + "/></Ruvex>");
    ASSERT_TRUE(root);
    EXPECT_TRUE(Places().empty());
    std::string saved = SaveToString(root.Get());
    EXPECT_NE(saved.find("nam=\"1\" names=\"2\""), std::string::npos) << saved;
    EXPECT_NE(saved.find("x39=\"39\""), std::string::npos) << saved;

    // A repeat far down a long list is still found, and the last value stands.
    root = LoadBytes("<Ruvex><Network name=\"N\"" + attributes + " x3=\"last\"/></Ruvex>");
    ASSERT_TRUE(root);
    EXPECT_EQ(Places(), (std::vector<Place>{{1, 9, true}}));
    saved = SaveToString(root.Get());
    EXPECT_NE(saved.find("x3=\"last\""), std::string::npos) << saved;
    EXPECT_EQ(saved.find("x3=\"3\""), std::string::npos) << saved;
}

TEST(Encoding, PlacesAreThoseOfTheFileWhateverItsEncoding) {
    // A bad value after non-ASCII text on its line and on the lines before: the column counts the file's
    // code units (bytes for Latin-1, 16-bit units for UTF-16); a replaced reference before it changes
    // nothing.
    const std::string body =
        "<Ruvex>\n<Network name=\"\xE9\xE9\xE9\"><!-- \xE9\xE9 -->\n"
        "<Roads><Road name=\"\xE9\xE9&#1;\" priorityLevel=\"x\"/></Roads></Network></Ruvex>\n";
    const std::string latin1 = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n" + body;
    CountedPtr<Element> root = LoadBytes(latin1);
    ASSERT_TRUE(root);
    EXPECT_EQ(Places(), (std::vector<Place>{{4, 22, true}, {4, 9, true}}));

    std::u16string wide;
    for (unsigned char c : "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n" + body)
        if (c) wide += static_cast<char16_t>(c);
    root = LoadBytes(Utf16(wide, true, true));
    ASSERT_TRUE(root);
    EXPECT_EQ(Places(), (std::vector<Place>{{4, 22, true}, {4, 9, true}}));

    // A UTF-8 mark is not counted either; an error in a converted file has its place too.
    root = LoadBytes(
        "\xEF\xBB\xBF<Ruvex><Network priority=\"1\"><Roads><Road "
        "priorityLevel=\"x\"/></Roads></Network></Ruvex>");
    ASSERT_TRUE(root);
    EXPECT_EQ(Places(), (std::vector<Place>{{1, 38, true}}));
    EXPECT_FALSE(
        LoadBytes("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<Ruvex>\xE9\xE9<Network></Ruvex>"));
    ASSERT_EQ(GetLastProblems().size(), 1u);
    EXPECT_EQ(GetLastProblems()[0].line, 2u);
    EXPECT_EQ(GetLastProblems()[0].column, 21u);  // the name in the closing tag
}

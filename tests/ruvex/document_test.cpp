#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

using namespace Ruvex;

namespace {

CountedPtr<Element> LoadText(const std::string& text) {
    return CountedPtr<Element>(Load(text.c_str(), true));
}

std::string RoundTrip(const std::string& text) {
    CountedPtr<Element> root = LoadText(text);
    EXPECT_TRUE(root) << (GetLastProblems().empty() ? "" : ToString(GetLastProblems().front()));
    return root ? SaveToString(root.Get()) : std::string();
}

}  // namespace

TEST(Document, KeepsWhatNoClassKnows) {
    const std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- made by hand -->
<Ruvex version="2.5" versionRevision="0" vendor="x">
  <Network name="N" colour="blue">
    <!-- first the roads -->
    <Roads extra="1">
      <Road name="R"/>
      <Mystery a="1"/>
      <Road name="S"/>
    </Roads>
    <Unknown deep="yes"/>
  </Network>
  <Sibling/>
</Ruvex>
)";
    std::string first = RoundTrip(text);
    EXPECT_NE(first.find("<!-- made by hand -->"), std::string::npos);
    EXPECT_NE(first.find("vendor=\"x\""), std::string::npos);
    EXPECT_NE(first.find("colour=\"blue\""), std::string::npos);
    EXPECT_NE(first.find("<Roads extra=\"1\">"), std::string::npos);
    EXPECT_NE(first.find("<Sibling"), std::string::npos);
    // The comment stays before the roads, the unknown element after them.
    EXPECT_LT(first.find("first the roads"), first.find("<Roads"));
    EXPECT_LT(first.find("<Road "), first.find("<Mystery"));
    EXPECT_LT(first.find("<Mystery"), first.find("<Road name=\"S\""));
    EXPECT_LT(first.find("</Roads>"), first.find("<Unknown"));
    // A second round trip changes nothing.
    EXPECT_EQ(RoundTrip(first), first);
}

TEST(Document, BadValuesWarnBadDocumentsFail) {
    // A value that does not parse is left at its default and listed as a warning with its place.
    CountedPtr<Element> segment = LoadText("<Ruvex>\n  <Segment\n length=\"abc\"/></Ruvex>");
    ASSERT_TRUE(segment);
    EXPECT_EQ(static_cast<SegmentElement*>(segment.Get())->GetLength(), 1.0);
    ASSERT_EQ(GetLastProblems().size(), 1u);
    const Problem& warning = GetLastProblems()[0];
    EXPECT_TRUE(warning.warning);
    EXPECT_EQ(warning.line, 2u);
    EXPECT_EQ(warning.column, 4u);
    EXPECT_NE(warning.message.find("expected a finite number"), std::string::npos);
    EXPECT_NE(ToString(warning).find("buffer:2:4: warning: "), std::string::npos);
    for (const char* bad : {"nan", "1e999", "", " 1", "1x", "inf"}) {
        CountedPtr<Element> arc =
            LoadText(std::string("<Ruvex><CircleArc curvature=\"") + bad + "\"/></Ruvex>");
        ASSERT_TRUE(arc) << bad;
        EXPECT_EQ(static_cast<CircleArcElement*>(arc.Get())->GetCurvature(), 1.0) << bad;
        EXPECT_EQ(GetLastProblems().size(), 1u) << bad;
    }
    EXPECT_TRUE(LoadText("<Ruvex version=\"two\"><Segment/></Ruvex>"));
    EXPECT_EQ(GetLastProblems().size(), 1u);

    // Documents that cannot be read at all give null and an error.
    for (const char* broken : {"<Ruvex><Segment length=\"1\"></Ruvex>", "", "<Ruvex><Seg",
                               "<Other><Segment/></Other>", "<Ruvex/>"}) {
        EXPECT_FALSE(LoadText(broken)) << broken;
        ASSERT_FALSE(GetLastProblems().empty()) << broken;
        EXPECT_FALSE(GetLastProblems()[0].warning) << broken;
    }
    EXPECT_EQ(Load(nullptr, true), nullptr);
    EXPECT_EQ(Load("/nonexistent/file.xml", false), nullptr);
    EXPECT_EQ(GetLastProblems().size(), 1u);
}

TEST(Document, VersionReachesTheReaders) {
    struct Probe : Element {
        uint32_t seen = 0;
        bool LoadFromXMLElement(IDOMElement* e, IDOMParser* p) override {
            seen = p ? p->GetVersion() : 0;
            return Element::LoadFromXMLElement(e, p);
        }
    };
    struct ProbeFactory : Factory {
        Probe* last = nullptr;
        Element* Create(const std::string& tag) override {
            if (tag == "Probe") return last = new Probe;
            return Factory::Create(tag);
        }
    };
    CountedPtr<ProbeFactory> factory(new ProbeFactory);
    SetFactory(factory.Get());
    for (const auto& [root, version] :
         {std::pair{"<Ruvex version=\"2.2\" versionRevision=\"2\">", MakeVersionID(2, 2, 2)},
          std::pair{"<Ruvex version=\"2.4.3\">", MakeVersionID(2, 4, 3)},
          std::pair{"<Ruvex>", kCurrentVersion}}) {
        CountedPtr<Element> probe = LoadText(std::string(root) + "<Probe/></Ruvex>");  // holds the probe read
        ASSERT_TRUE(probe) << root;
        EXPECT_EQ(factory->last->seen, version) << root;
    }
    SetFactory(nullptr);
    EXPECT_GT(MakeVersionID(2, 3, 0), MakeVersionID(2, 2, 255));
}

TEST(Document, Latin1TextCrossesTheBoundary) {
    Encoding::SetMode(Encoding::Latin1);
    CountedPtr<Element> root = LoadText("<Ruvex><Network name=\"Gare de l\xC3\xA9st\"/></Ruvex>");
    ASSERT_TRUE(root);
    EXPECT_EQ(static_cast<NetworkElement*>(root.Get())->GetName(), "Gare de l\xE9st");
    std::string saved = SaveToString(root.Get());
    EXPECT_NE(saved.find("Gare de l\xC3\xA9st"), std::string::npos);
    Encoding::SetMode(Encoding::UTF8);

    // A Latin-1 file is saved as Latin-1; characters it cannot hold survive as references.
    CountedPtr<Element> file = LoadText(
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<Ruvex><Network name=\"caf\xE9\"/></Ruvex>");
    ASSERT_TRUE(file);
    auto* network = static_cast<NetworkElement*>(file.Get());
    EXPECT_EQ(network->GetName(), "caf\xC3\xA9");
    network->SetName("caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x9A\x97");
    saved = SaveToString(file.Get());
    EXPECT_NE(saved.find("caf\xE9 &#8364; &#128663;"), std::string::npos) << saved;
    CountedPtr<Element> again = LoadText(saved);
    ASSERT_TRUE(again);
    EXPECT_EQ(static_cast<NetworkElement*>(again.Get())->GetName(), network->GetName());
}

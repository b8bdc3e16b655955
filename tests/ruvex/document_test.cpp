#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
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

TEST(Document, LoadsDeclaredDataAndDefaults) {
    CountedPtr<Element> root = LoadText(R"(<Ruvex version="2.4" versionRevision="3">
  <Network name="City" trafficHand="left-hand">
    <Roads><Road name="Main"><RoadElement subNetwork="A" track="T1" inverted="true"/></Road></Roads>
  </Network>
</Ruvex>)");
    ASSERT_TRUE(root);
    auto* network = dynamic_cast<NetworkElement*>(root.Get());
    ASSERT_NE(network, nullptr);
    EXPECT_EQ(network->GetName(), "City");
    EXPECT_EQ(network->GetTrafficHand(), "left-hand");
    ASSERT_EQ(network->GetRoads().size(), 1u);
    const RoadElement* road = network->GetRoads()[0].Get();
    EXPECT_EQ(road->GetName(), "Main");
    EXPECT_EQ(road->GetPriorityLevel(), std::numeric_limits<uint64_t>::max());
    ASSERT_EQ(road->GetPieces().size(), 1u);
    EXPECT_EQ(road->GetPieces()[0]->GetTrackName(), "T1");
    EXPECT_TRUE(road->GetPieces()[0]->GetInverted());
    EXPECT_EQ(network->GetRoads().find("Main"), 0u);
}

TEST(Document, KeepsWhatNoClassKnows) {
    const std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- made by hand -->
<Ruvex version="2.5" versionRevision="0" vendor="x">
  <Network name="N" colour="blue">
    <!-- first the roads -->
    <Roads extra="1">
      <Road name="R"/>
      <Mystery a="1"><Inner>text &amp; more</Inner></Mystery>
      <Road name="S"/>
    </Roads>
    <Unknown deep="yes"><Lane name="not here"/></Unknown>
    <?tool keep this?>
  </Network>
  <Sibling/>
</Ruvex>
)";
    std::string first = RoundTrip(text);
    EXPECT_NE(first.find("<!-- made by hand -->"), std::string::npos);
    EXPECT_NE(first.find("vendor=\"x\""), std::string::npos);
    EXPECT_NE(first.find("colour=\"blue\""), std::string::npos);
    EXPECT_NE(first.find("<Roads extra=\"1\">"), std::string::npos);
    EXPECT_NE(first.find("<Inner>text &amp; more</Inner>"), std::string::npos);
    EXPECT_NE(first.find("<Lane name=\"not here\""), std::string::npos);
    EXPECT_NE(first.find("<?tool keep this?>"), std::string::npos);
    EXPECT_NE(first.find("<Sibling"), std::string::npos);
    // The comment stays before the roads, the unknown element after them.
    EXPECT_LT(first.find("first the roads"), first.find("<Roads"));
    EXPECT_LT(first.find("<Road "), first.find("<Mystery"));
    EXPECT_LT(first.find("<Mystery"), first.find("<Road name=\"S\""));
    EXPECT_LT(first.find("</Roads>"), first.find("<Unknown"));
    // A second round trip changes nothing.
    EXPECT_EQ(RoundTrip(first), first);
}

TEST(Document, NumbersAreExactAndLocaleFree) {
    const double values[] = {0.1, 1.0 / 3.0, -2.5e-300, 6.02214076e23, std::nextafter(1.0, 2.0), -0.0};
    for (double v : values) {
        CountedPtr<CircleArcElement> arc(new CircleArcElement);
        arc->SetCurvature(v);
        std::string text = SaveToString(arc.Get());
        CountedPtr<Element> back = LoadText(text);
        ASSERT_TRUE(back);
        double read = static_cast<CircleArcElement*>(back.Get())->GetCurvature();
        EXPECT_EQ(std::memcmp(&read, &v, sizeof v), 0) << text;
    }
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
    EXPECT_TRUE(LoadText("<Ruvex><Road priorityLevel=\"-1\"/></Ruvex>"));
    EXPECT_EQ(GetLastProblems().size(), 1u);
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

TEST(Document, SaveReplacesAtomically) {
    namespace fs = std::filesystem;
    fs::path dir = fs::temp_directory_path() / "orvia_ruvex_save_test";
    fs::create_directories(dir);
    fs::path file = dir / "arc.xml";
    CountedPtr<CircleArcElement> arc(new CircleArcElement);
    arc->SetLength(12.5);
    ASSERT_TRUE(Save(arc.Get(), file.string().c_str()));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
    CountedPtr<Element> back(Load(file.string().c_str(), false));
    ASSERT_TRUE(back);
    auto* loaded = dynamic_cast<CircleArcElement*>(back.Get());
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetLength(), 12.5);

    // A value that cannot be written back fails the save and leaves the old file as it was.
    std::string before;
    {
        std::ifstream in(file);
        before.assign(std::istreambuf_iterator<char>(in), {});
    }
    arc->SetLength(std::numeric_limits<double>::infinity());
    EXPECT_FALSE(Save(arc.Get(), file.string().c_str()));
    std::ifstream in(file);
    std::string after(std::istreambuf_iterator<char>(in), {});
    EXPECT_EQ(before, after);
    EXPECT_FALSE(Save(arc.Get(), (dir / "missing" / "x.xml").string().c_str()));
    fs::remove_all(dir);
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
    CountedPtr<Element> a = LoadText("<Ruvex version=\"2.2\" versionRevision=\"2\"><Probe/></Ruvex>");
    ASSERT_TRUE(a);
    EXPECT_EQ(factory->last->seen, MakeVersionID(2, 2, 2));
    CountedPtr<Element> b = LoadText("<Ruvex version=\"2.4.3\"><Probe/></Ruvex>");
    EXPECT_EQ(factory->last->seen, MakeVersionID(2, 4, 3));
    CountedPtr<Element> c = LoadText("<Ruvex><Probe/></Ruvex>");
    EXPECT_EQ(factory->last->seen, kCurrentVersion);
    SetFactory(nullptr);
    EXPECT_EQ(GetFactory(), nullptr);
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

#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <string>

using namespace Ruvex;

namespace {

// An unknown element with every kind of node, nested, with a repeated attribute (the last value wins, in the
// first place) and a known tag where no class takes it.
const char* const kDocument = R"(<?xml version="1.0" encoding="UTF-8"?>
<Ruvex version="2.5" versionRevision="0">
  <Network name="N">
    <Unknown a="1" b="x &amp; y" a="2">
      <!--note -- here-->
      <Inner k="v">text &lt; more<![CDATA[raw ]]]]><![CDATA[> end]]><?tool body?></Inner>
      <Lane name="not here"><Deeper/></Lane>
    </Unknown>
    <Roads/>
  </Network>
</Ruvex>
)";

GenericElement* FirstKept(Element* element) {
    const PreservedContent* kept = element->GetPreserved();
    if (!kept || kept->nodes.empty()) return nullptr;
    return dynamic_cast<GenericElement*>(kept->nodes[0].element.Get());
}

}  // namespace

TEST(GenericElement, KeepsUnknownContentThroughLoadAndSave) {
    CountedPtr<Element> root(Load(kDocument, true));
    ASSERT_TRUE(root);
    const std::string saved = SaveToString(root.Get());
    EXPECT_NE(saved.find("<Unknown a=\"2\" b=\"x &amp; y\">"), std::string::npos) << saved;
    EXPECT_NE(saved.find("<!--note - - here-->"), std::string::npos) << saved;
    EXPECT_NE(
        saved.find(
            "<Inner k=\"v\">text &lt; more<![CDATA[raw ]]]]><![CDATA[> end]]><?tool body?>\n      </Inner>"),
        std::string::npos)
        << saved;
    EXPECT_NE(saved.find("<Lane name=\"not here\">\n        <Deeper />"), std::string::npos) << saved;
    CountedPtr<Element> again(Load(saved.c_str(), true));
    ASSERT_TRUE(again);
    EXPECT_EQ(SaveToString(again.Get()), saved);

    // A copy of an unknown element writes what the original writes.
    GenericElement* unknown = FirstKept(again.Get());
    ASSERT_NE(unknown, nullptr);
    CountedPtr<GenericElement> copy(new GenericElement(*unknown));
    EXPECT_EQ(SaveToString(copy.Get()), SaveToString(unknown));

    // Opened for inspection, the content is the same nodes and attributes, decoded, and saves the same.
    const PreservedContent* kept = unknown->GetPreserved();
    ASSERT_NE(kept, nullptr);
    ASSERT_EQ(kept->attributes.size(), 2u);
    EXPECT_EQ(kept->attributes[1].value, "x & y");
    ASSERT_EQ(kept->nodes.size(), 3u);
    ASSERT_TRUE(kept->nodes[1].element);
    const PreservedContent* inner = kept->nodes[1].element->GetPreserved();
    ASSERT_NE(inner, nullptr);
    ASSERT_EQ(inner->nodes.size(), 4u);
    EXPECT_EQ(inner->nodes[0].value, "text < more");
    EXPECT_EQ(inner->nodes[3].kind, NodeKind::ProcessingInstruction);
    EXPECT_EQ(inner->nodes[3].name, "tool");
    EXPECT_EQ(SaveToString(again.Get()), saved);

    // Edited after opening, the edit is saved.
    unknown->EditPreserved().attributes.push_back({"added", "yes"});
    EXPECT_NE(SaveToString(again.Get()).find("<Unknown a=\"2\" b=\"x &amp; y\" added=\"yes\">"),
              std::string::npos);
    // Cleared, nothing of it is left.
    CountedPtr<Element> cleared(Load(saved.c_str(), true));
    FirstKept(cleared.Get())->ClearPreserved();
    EXPECT_NE(SaveToString(cleared.Get()).find("<Unknown />"), std::string::npos);
}

// A second child for a single slot is kept as read; it must go back behind the slot's child even when the
// save writes children the file did not hold (a default geolocalisation) or in another order, or a reload
// would take it instead and the next save would differ.
TEST(GenericElement, RepeatedSingleChildStaysBehindTheOneTaken) {
    const char* const documents[] = {
        R"(<Ruvex version="2.5" versionRevision="0"><Network name="Town">
 <GeneratedTerrainMaterial><Material name="Grass" shininess="0.5"/></GeneratedTerrainMaterial>
 <GeneratedTerrainMaterial><Material name="Grass" odd="0.1"/></GeneratedTerrainMaterial>
</Network></Ruvex>)",
        R"(<Ruvex version="2.5" versionRevision="0"><Network name="Town">
 <ExternalPhysicSurface filePath="taken.psf"/>
 <ExternalSurface filePath="s.rsf"/>
 <ExternalPhysicSurface filePath="kept.psf"/>
 <!--after the surface-->
 <Survey/>
</Network></Ruvex>)",
    };
    for (const char* document : documents) {
        SCOPED_TRACE(document);
        CountedPtr<Element> root(Load(document, true));
        ASSERT_TRUE(root);
        const std::string first = SaveToString(root.Get());
        CountedPtr<Element> again(Load(first.c_str(), true));
        ASSERT_TRUE(again);
        EXPECT_EQ(SaveToString(again.Get()), first);
    }
    CountedPtr<Element> root(Load(documents[1], true));
    const std::string saved = SaveToString(root.Get());
    const size_t taken = saved.find("taken.psf"), kept = saved.find("kept.psf");
    const size_t comment = saved.find("<!--after the surface-->"), survey = saved.find("<Survey");
    ASSERT_NE(kept, std::string::npos);
    EXPECT_LT(taken, kept) << saved;
    // What followed a child in the file still follows it, in the file's order.
    EXPECT_LT(saved.find("s.rsf"), comment) << saved;
    EXPECT_LT(comment, survey) << saved;
}

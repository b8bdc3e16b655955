// What the generic schema test cannot see: slots told apart by their order in the file, a class's own view of
// its slots, lists that share an item tag, and wrappers that come and go with their lists.

#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/rail.h>
#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <string>

using namespace Ruvex;

namespace {

template <class T>
CountedPtr<T> LoadAs(const std::string& element) {
    const std::string text = "<Ruvex version=\"2.5\" versionRevision=\"0\">" + element + "</Ruvex>";
    CountedPtr<Element> root(Load(text.c_str(), true));
    EXPECT_TRUE(root) << (GetLastProblems().empty() ? "" : ToString(GetLastProblems().front()));
    return CountedPtr<T>(dynamic_cast<T*>(root.Get()));
}

void ExpectStableRoundTrip(Element* element) {
    const std::string saved = SaveToString(element);
    CountedPtr<Element> again(Load(saved.c_str(), true));
    ASSERT_TRUE(again);
    EXPECT_EQ(SaveToString(again.Get()), saved);
}

}  // namespace

TEST(RailroadTrackElement, EndsAndQuotesAreToldApartByOrder) {
    CountedPtr<Rail::RailroadTrackElement> track = LoadAs<Rail::RailroadTrackElement>(R"(
  <RailroadTrack name="t">
    <LinkedEnd name="link"/><XYCurve/><BufferEnd/>
    <PropertySpans><PropertySpan>
      <Quote abscissaInSystem="2"/><EnumPropertyValue value="x"/><Quote abscissaInSystem="1"/>
      <Quote abscissaInSystem="3"/>
    </PropertySpan></PropertySpans>
  </RailroadTrack>)");
    ASSERT_TRUE(track);
    ASSERT_TRUE(track->GetStartEnd() && track->GetEndEnd());
    EXPECT_EQ(track->GetStartEnd()->GetTagName(), "LinkedEnd");
    EXPECT_EQ(track->GetEndEnd()->GetTagName(), "BufferEnd");
    const Rail::PropertySpanElement* span = track->GetPropertySpans()[0].Get();
    ASSERT_TRUE(span->GetStartQuote() && span->GetEndQuote());
    EXPECT_EQ(span->GetStartQuote()->GetAbscissaInSystem(), 2.0);
    EXPECT_EQ(span->GetEndQuote()->GetAbscissaInSystem(), 1.0);
    // A third quote is neither: kept as read and written back after the two, replacing neither.
    ASSERT_TRUE(span->GetPreserved());
    EXPECT_EQ(span->GetPreserved()->nodes.size(), 1u);
    const std::string saved = SaveToString(track.Get());
    EXPECT_LT(saved.find("<LinkedEnd"), saved.find("<BufferEnd"));
    EXPECT_LT(saved.find("abscissaInSystem=\"2\""), saved.find("abscissaInSystem=\"1\""));
    EXPECT_LT(saved.find("abscissaInSystem=\"1\""), saved.find("abscissaInSystem=\"3\""));
    ExpectStableRoundTrip(track.Get());
}

TEST(MaterialElement, ChanelsByTag) {
    CountedPtr<MaterialElement> material =
        LoadAs<MaterialElement>("<Material name=\"m\"><Bump/><Specular red=\"0.5\"/><Diffuse/></Material>");
    ASSERT_TRUE(material);
    const auto chanels = material->GetChanels();
    const char* const expected[MaterialElement::kChanelCount] = {"Diffuse", nullptr, "Specular", nullptr,
                                                                 "Bump"};
    for (size_t i = 0; i < MaterialElement::kChanelCount; ++i) {
        ASSERT_EQ(chanels[i] != nullptr, expected[i] != nullptr) << i;
        if (chanels[i]) {
            EXPECT_EQ(chanels[i]->GetTagName(), expected[i]);
        }
    }
    EXPECT_EQ(chanels[2]->GetRed(), 0.5f);
    // Written in the stored order, whatever the file's order was.
    const std::string saved = SaveToString(material.Get());
    EXPECT_LT(saved.find("<Diffuse"), saved.find("<Specular"));
    EXPECT_LT(saved.find("<Specular"), saved.find("<Bump"));
}

TEST(SubNetworkElement, ListsSharingAnItemTagAndTheirWrappers) {
    CountedPtr<SubNetworkElement> sub = LoadAs<SubNetworkElement>(R"(<SubNetwork name="S">
    <Tracks><Track name="A"/><Track name="B"/></Tracks>
    <JunctionTracks><Track name="A"/></JunctionTracks>
    <Intersections><Intersection name="I"/></Intersections>
  </SubNetwork>)");
    ASSERT_TRUE(sub);
    EXPECT_EQ(sub->GetTracks().find("B"), 1u);
    ASSERT_EQ(sub->GetJunctionTracks().size(), 1u);
    EXPECT_NE(sub->GetJunctionTracks()[0].Get(), sub->GetTracks()[0].Get());
    EXPECT_EQ(sub->GetIntersections().find("I"), 0u);

    // An emptied list leaves no wrapper behind.
    sub->EditIntersections().clear();
    const std::string saved = SaveToString(sub.Get());
    EXPECT_EQ(saved.find("<Intersections"), std::string::npos);
    EXPECT_NE(saved.find("<JunctionTracks>"), std::string::npos);
    ExpectStableRoundTrip(sub.Get());
}

#include <orvia/core/library.h>
#include <orvia/core/user_data.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/clipped_data.h>

#include "ruvex/pugi_dom.h"

#include <gtest/gtest.h>

#include <string>

using Orvia::QuenbelDataElement;
using Orvia::UserData;
using Ruvex::CountedPtr;

namespace {

// A parsed document whose first element can be handed to a loader.
struct Parsed {
    explicit Parsed(const std::string& text) : document("test") {
        EXPECT_TRUE(document.Parse(text));
        root = document.Wrap(document.doc().first_child());
    }
    Ruvex::detail::PugiDocument document;
    Ruvex::IDOMElement* root = nullptr;
};

CountedPtr<QuenbelDataElement> Quenbel(std::initializer_list<const char*> lines) {
    CountedPtr<QuenbelDataElement> data(new QuenbelDataElement);
    for (const char* line : lines)
        data->EditLines().push_back(line);
    return data;
}

// A datum of the host's own that the library's factory does not know.
class HostData : public UserData {
public:
    const std::string& GetTagName() const override {
        static const std::string tag = "HostData";
        return tag;
    }
    bool LoadFromXMLElement(Ruvex::IDOMElement*, Ruvex::IDOMParser*) override { return true; }
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override {
        return parser->CreateElement(GetTagName());
    }
    void CopyFrom(const UserData*) override {}
    bool IsEqual(UserData* other) const override { return dynamic_cast<HostData*>(other) != nullptr; }
};

// Exposes the protected part of the mix-in.
class Carrier : public Orvia::UserDataContainer {
public:
    using UserDataContainer::IsEqual;
    using UserDataContainer::TryToLoadElement;
};

class UserDataTest : public testing::Test {
protected:
    void SetUp() override { Orvia::Init(Ruvex::Encoding::GetMode()); }
};

}  // namespace

TEST_F(UserDataTest, QuenbelDataLoadsLinesAndKeepsWhatElseTheFileHolds) {
    const std::string text =
        "<Ruvex version=\"2.5\" versionRevision=\"0\"><QuenbelData origin=\"survey\"><!-- notes -->"
        "<Line value=\"first\"/><Line/><Extra k=\"1\"><Inner/></Extra><Line value=\"a &amp; b\"/>"
        "</QuenbelData></Ruvex>";
    CountedPtr<Ruvex::Element> loaded(Ruvex::Load(text.c_str(), true));
    auto* data = dynamic_cast<QuenbelDataElement*>(loaded.Get());
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->GetLines(), (std::vector<std::string>{"first", "", "a & b"}));

    const std::string saved = Ruvex::SaveToString(data);
    EXPECT_NE(saved.find("origin=\"survey\""), std::string::npos);
    EXPECT_NE(saved.find("<!-- notes -->"), std::string::npos);
    // The unknown child stays between the second and the third line.
    EXPECT_LT(saved.find("<Line value=\"\""), saved.find("<Extra k=\"1\">"));
    EXPECT_LT(saved.find("<Inner"), saved.find("<Line value=\"a &amp; b\""));

    CountedPtr<Ruvex::Element> again(Ruvex::Load(saved.c_str(), true));
    auto* reloaded = dynamic_cast<QuenbelDataElement*>(again.Get());
    ASSERT_NE(reloaded, nullptr);
    EXPECT_TRUE(reloaded->IsEqual(data));
    EXPECT_EQ(Ruvex::SaveToString(reloaded), saved);
}

TEST_F(UserDataTest, QuenbelDataWithoutLinesLoadsFalse) {
    Parsed empty("<QuenbelData><Other value=\"x\"/></QuenbelData>");
    CountedPtr<QuenbelDataElement> data = Quenbel({"stale"});
    EXPECT_FALSE(data->LoadFromXMLElement(empty.root, &empty.document));
    EXPECT_TRUE(data->GetLines().empty());  // cleared even though nothing was read

    Parsed one("<QuenbelData><Line value=\"x\"/></QuenbelData>");
    EXPECT_FALSE(data->LoadFromXMLElement(one.root, nullptr));
    EXPECT_FALSE(data->LoadFromXMLElement(nullptr, &one.document));
    EXPECT_TRUE(data->LoadFromXMLElement(one.root, &one.document));
}

TEST_F(UserDataTest, QuenbelDataCopyCompareAndClone) {
    CountedPtr<QuenbelDataElement> source = Quenbel({"a", "b"});
    source->SetValue(0xFFFF'FFFF'FFFF'FFFFull);
    // Only the lines take part in the comparison.
    CountedPtr<QuenbelDataElement> copy = Quenbel({"a", "b"});
    EXPECT_TRUE(copy->IsEqual(source.Get()));
    copy->EditLines().pop_back();
    EXPECT_FALSE(copy->IsEqual(source.Get()));
    HostData other;
    EXPECT_FALSE(source->IsEqual(&other));
    EXPECT_FALSE(source->IsEqual(nullptr));
    copy->CopyFrom(&other);  // another kind: unchanged
    EXPECT_EQ(copy->GetLines(), std::vector<std::string>{"a"});

    CountedPtr<UserData> clone(source->Clone());
    ASSERT_NE(dynamic_cast<QuenbelDataElement*>(clone.Get()), nullptr);
    EXPECT_EQ(clone->GetRefCount(), 1u);
    EXPECT_TRUE(clone->IsEqual(source.Get()));
    EXPECT_EQ(static_cast<QuenbelDataElement*>(clone.Get())->GetValue(), source->GetValue());

    // A tag the factory does not make as a user datum cannot be cloned.
    EXPECT_EQ(other.Clone(), nullptr);
}

TEST_F(UserDataTest, ContainerInsertLookUpAndRemove) {
    Carrier carrier;
    CountedPtr<QuenbelDataElement> first = Quenbel({"1"});
    CountedPtr<QuenbelDataElement> second = Quenbel({"2"});
    CountedPtr<HostData> host(new HostData);

    EXPECT_TRUE(carrier.InsertUserData(0, first.Get()));  // at the count: appends
    EXPECT_FALSE(carrier.InsertUserData(2, host.Get()));  // beyond the count
    EXPECT_EQ(carrier.GetUserDataCount(), 1u);
    EXPECT_TRUE(carrier.InsertUserData(1, second.Get()));
    EXPECT_TRUE(carrier.InsertUserData(0, host.Get()));
    EXPECT_FALSE(carrier.InsertUserData(0, nullptr));
    carrier.AddUserData(nullptr);
    ASSERT_EQ(carrier.GetUserDataCount(), 3u);
    EXPECT_EQ(carrier.GetUserData(2), second.Get());
    EXPECT_EQ(first->GetRefCount(), 2u);  // the container holds a reference

    // Two data with the same tag: look-up and removal touch the first only.
    EXPECT_EQ(carrier.GetUserData("QuenbelData"), first.Get());
    EXPECT_EQ(carrier.GetUserData("quenbeldata"), nullptr);
    carrier.RemoveUserData("QuenbelData");
    ASSERT_EQ(carrier.GetUserDataCount(), 2u);
    EXPECT_EQ(carrier.GetUserData(0), host.Get());
    EXPECT_EQ(carrier.GetUserData(1), second.Get());
    EXPECT_EQ(first->GetRefCount(), 1u);
    carrier.RemoveUserData("Absent");
    EXPECT_EQ(carrier.GetUserDataCount(), 2u);
}

TEST_F(UserDataTest, ContainerTryToLoadElementKeepsOnlyUserData) {
    Carrier carrier;
    Parsed noLines("<QuenbelData note=\"kept\"/>");
    EXPECT_TRUE(carrier.TryToLoadElement(noLines.root, &noLines.document));
    ASSERT_EQ(carrier.GetUserDataCount(), 1u);  // kept although its load answered false
    EXPECT_NE(dynamic_cast<QuenbelDataElement*>(carrier.GetUserData(0)), nullptr);

    for (const char* other :
         {"<Segment length=\"3\"/>", "<Whatever/>", "<quenbelData><Line value=\"x\"/></quenbelData>"}) {
        Parsed parsed(other);
        EXPECT_FALSE(carrier.TryToLoadElement(parsed.root, &parsed.document)) << other;
    }
    EXPECT_EQ(carrier.GetUserDataCount(), 1u);
}

TEST_F(UserDataTest, ContainerCopyFromMakesDeepCopiesThroughTheFactory) {
    Carrier source;
    source.AddUserData(Quenbel({"a"}).Get());
    source.AddUserData(new HostData);
    source.AddUserData(Quenbel({"b", "c"}).Get());

    Carrier copy;
    copy.AddUserData(Quenbel({"old"}).Get());
    copy.CopyFrom(&source);
    ASSERT_EQ(copy.GetUserDataCount(), 3u);
    EXPECT_NE(copy.GetUserData(0), source.GetUserData(0));
    EXPECT_TRUE(copy.GetUserData(2)->IsEqual(source.GetUserData(2)));
    // The factory makes no user datum for the host's tag: its place stays empty.
    EXPECT_EQ(copy.GetUserData(1), nullptr);
    EXPECT_FALSE(copy.IsEqual(&source));

    // Deep: editing the source afterwards leaves the copy alone.
    static_cast<QuenbelDataElement*>(source.GetUserData(0))->EditLines()[0] = "changed";
    EXPECT_EQ(static_cast<QuenbelDataElement*>(copy.GetUserData(0))->GetLines()[0], "a");

    Carrier known;
    known.AddUserData(Quenbel({"x"}).Get());
    copy.CopyFrom(&known);
    EXPECT_TRUE(copy.IsEqual(&known));
    copy.CopyFrom(nullptr);
    EXPECT_EQ(copy.GetUserDataCount(), 0u);
}

TEST_F(UserDataTest, ClippedDataKeepUserDataThroughSaveAndLoad) {
    for (const std::string tag : {"ClippedData", "MarkClippedData"}) {
        SCOPED_TRACE(tag);
        const std::string text = "<Ruvex version=\"2.5\" versionRevision=\"0\"><" + tag +
                                 " name=\"Lamp\" isStatic=\"true\"><QuenbelData><Line value=\"one\"/>"
                                 "</QuenbelData><Unknown a=\"1\"/><QuenbelData note=\"n\"/>"
                                 "<ExternalElement filePath=\"lamp.obj\"/></" +
                                 tag + "></Ruvex>";
        CountedPtr<Ruvex::Element> loaded(Ruvex::Load(text.c_str(), true));
        auto* clipped = dynamic_cast<Orvia::ClippedData*>(loaded.Get());
        ASSERT_NE(clipped, nullptr);
        EXPECT_EQ(loaded->GetTagName(), tag);
        // The declared child went to the record, not through the user data.
        EXPECT_NE(clipped->GetClippedDataElement().GetObject3D(), nullptr);
        ASSERT_EQ(clipped->GetUserDataCount(), 2u);
        EXPECT_EQ(static_cast<QuenbelDataElement*>(clipped->GetUserData(0))->GetLines(),
                  std::vector<std::string>{"one"});
        EXPECT_TRUE(static_cast<QuenbelDataElement*>(clipped->GetUserData(1))->GetLines().empty());

        const std::string saved = Ruvex::SaveToString(loaded.Get());
        EXPECT_LT(saved.find("<ExternalElement"), saved.find("<QuenbelData>"));  // user data come last
        EXPECT_NE(saved.find("<Unknown a=\"1\""), std::string::npos);
        EXPECT_NE(saved.find("<QuenbelData note=\"n\""), std::string::npos);

        CountedPtr<Ruvex::Element> reloaded(Ruvex::Load(saved.c_str(), true));
        auto* again = dynamic_cast<Orvia::ClippedData*>(reloaded.Get());
        ASSERT_NE(again, nullptr);
        ASSERT_EQ(again->GetUserDataCount(), 2u);
        EXPECT_TRUE(again->GetUserData(0)->IsEqual(clipped->GetUserData(0)));
        EXPECT_EQ(Ruvex::SaveToString(reloaded.Get()), saved);
    }
}

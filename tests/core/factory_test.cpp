#include <orvia/core/external_element.h>
#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/core/orvia_factory.h>
#include <orvia/core/reference.h>
#include <orvia/core/surface.h>
#include <orvia/core/user_data.h>
#include <orvia/geometry/sequence.h>
#include <orvia/ground/ground.h>
#include <orvia/rail/rail_network.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/road.h>
#include <orvia/topology/zone.h>

#include <gtest/gtest.h>

#include <string>
#include <typeindex>
#include <typeinfo>
#include <vector>

using Ruvex::CountedPtr;

namespace {

// Tags whose class is not named after them, or that share a class with other tags: where the table is easy to
// get wrong. The corpus test meets every other tag through a document.
struct Row {
    const char* tag;
    std::type_index type;
};

template <class T>
Row R(const char* tag) {
    return Row{tag, std::type_index(typeid(T))};
}

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = {
        R<Orvia::Network>("Network"),
        R<Orvia::RoadPiece>("RoadElement"),
        R<Orvia::ExternalElement>("ExternalSurface"),
        R<Orvia::ExternalElement>("ProxyFile"),
        R<Orvia::Sequence>("SequenceZ"),
        R<Orvia::TrackClippedData>("ClippedData"),
        R<Orvia::Zone>("Area"),
        R<Orvia::Point2x2D>("Offset2x2DPoints"),
        R<Orvia::MaterialChanel>("Emissive"),
        R<Orvia::QuenbelDataElement>("QuenbelData"),
        R<Ruvex::CartesianCurveElement>("BankingCurve"),
        R<Rail::ObjectOnTrackSpanElement>("LevelCrossing"),
        R<Orvia::ReferenceElement>("SwitchEnd"),
    };
    return rows;
}

std::string TypeName(const Ruvex::Element* element) {
    return element ? typeid(*element).name() : "null";
}

class FactoryTest : public testing::Test {
protected:
    void SetUp() override {
        m_mode = Ruvex::Encoding::GetMode();
        Orvia::Init(m_mode);
    }
    // Leaves the process with the library started in the mode it had.
    void TearDown() override {
        Orvia::Close();
        Ruvex::Encoding::SetMode(m_mode);
        Orvia::Init(m_mode);
    }

    Ruvex::Encoding::Mode m_mode = Ruvex::Encoding::UTF8;
};

}  // namespace

TEST_F(FactoryTest, IrregularTagsMakeTheirClass) {
    Orvia::OrviaFactory factory;
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.tag);
        CountedPtr<Ruvex::Element> created(factory.Create(row.tag));
        ASSERT_TRUE(created);
        EXPECT_EQ(std::type_index(typeid(*created)), row.type) << TypeName(created.Get());
        EXPECT_EQ(created->GetTagName(), row.tag);
        EXPECT_EQ(created->GetRefCount(), 1u);  // new objects come unowned

        // Through a whole document: the loader asks the installed factory, and the object saves under its
        // tag.
        const std::string text =
            std::string("<Ruvex version=\"2.5\" versionRevision=\"0\"><") + row.tag + "/></Ruvex>";
        CountedPtr<Ruvex::Element> loaded(Ruvex::Load(text.c_str(), true));
        ASSERT_TRUE(loaded) << (Ruvex::GetLastProblems().empty()
                                    ? ""
                                    : Ruvex::ToString(Ruvex::GetLastProblems()[0]));
        EXPECT_EQ(std::type_index(typeid(*loaded)), row.type) << TypeName(loaded.Get());
        const std::string saved = Ruvex::SaveToString(loaded.Get());
        EXPECT_NE(saved.find(std::string("<") + row.tag + " "), std::string::npos) << saved;
    }
}

TEST_F(FactoryTest, OtherTagsGoToTheElementLayer) {
    Orvia::OrviaFactory factory;
    // Tags are compared exactly: another case is another tag.
    for (const char* tag : {"network", "NETWORK", "Network ", "quenbelData", ""}) {
        SCOPED_TRACE(tag);
        CountedPtr<Ruvex::Element> created(factory.Create(tag));
        EXPECT_EQ(std::type_index(typeid(*created)), std::type_index(typeid(Ruvex::GenericElement)));
        EXPECT_EQ(created->GetTagName(), tag);
    }
    // A data class the table does not name comes plain from the element layer.
    CountedPtr<Ruvex::Element> material(factory.Create("Material"));
    EXPECT_EQ(std::type_index(typeid(*material)), std::type_index(typeid(Ruvex::MaterialElement)));
    CountedPtr<Ruvex::Element> bump(factory.Create("Bump"));
    EXPECT_EQ(std::type_index(typeid(*bump)), std::type_index(typeid(Ruvex::MaterialChanelElement)));
    EXPECT_EQ(bump->GetTagName(), "Bump");
}

TEST_F(FactoryTest, RoughnessPointsStartWithTheirOwnValues) {
    Orvia::OrviaFactory factory;
    auto values = [](const Ruvex::Element* element) {
        auto* p = dynamic_cast<const Orvia::Point2x2D*>(element);
        return p ? std::vector<double>{p->GetValue0(), p->GetValue1(), p->GetValue2(), p->GetValue3(),
                                       p->GetValue4()}
                 : std::vector<double>{};
    };
    CountedPtr<Ruvex::Element> scale(factory.Create("Scale2x2DPoints"));
    CountedPtr<Ruvex::Element> offset(factory.Create("Offset2x2DPoints"));
    EXPECT_EQ(values(scale.Get()), std::vector<double>(5, 1.0));
    EXPECT_EQ(values(offset.Get()), std::vector<double>(5, 0.0));

    // A scale read from a file keeps 1 where the file says nothing.
    CountedPtr<Ruvex::Element> loaded(Ruvex::Load(
        "<Ruvex version=\"2.5\" versionRevision=\"0\"><Scale2x2DPoints value2=\"0.5\"/></Ruvex>", true));
    EXPECT_EQ(values(loaded.Get()), (std::vector<double>{1.0, 1.0, 0.5, 1.0, 1.0}));
}

TEST_F(FactoryTest, InitInstallsOnceAndRefusesAnotherEncoding) {
    Orvia::Close();
    Ruvex::Encoding::SetMode(Ruvex::Encoding::UTF8);
    Orvia::Init(Ruvex::Encoding::UTF8);
    Ruvex::Factory* installed = Ruvex::GetFactory();
    ASSERT_NE(dynamic_cast<Orvia::OrviaFactory*>(installed), nullptr);
    EXPECT_EQ(installed->GetRefCount(), 1u);

    Orvia::Init(Ruvex::Encoding::UTF8);  // same mode: nothing changes
    EXPECT_EQ(Ruvex::GetFactory(), installed);

    try {
        Orvia::Init(Ruvex::Encoding::Latin1);
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "Error, trying to initialize Orvia library with different encoding.");
    }
    EXPECT_EQ(Ruvex::GetFactory(), installed);
    EXPECT_EQ(Ruvex::Encoding::GetMode(), Ruvex::Encoding::UTF8);

    // Another host's factory is replaced, and the mode is then taken as given.
    Ruvex::SetFactory(new Ruvex::Factory);
    Orvia::Init(Ruvex::Encoding::Latin1);
    EXPECT_NE(dynamic_cast<Orvia::OrviaFactory*>(Ruvex::GetFactory()), nullptr);
    EXPECT_EQ(Ruvex::Encoding::GetMode(), Ruvex::Encoding::Latin1);
}

TEST_F(FactoryTest, CloseUninstalls) {
    Orvia::Close();
    EXPECT_EQ(Ruvex::GetFactory(), nullptr);
    CountedPtr<Ruvex::Element> network(Ruvex::CreateElement("Network"));
    EXPECT_EQ(std::type_index(typeid(*network)), std::type_index(typeid(Ruvex::NetworkElement)));
    CountedPtr<Ruvex::Element> quenbel(Ruvex::CreateElement("QuenbelData"));
    EXPECT_EQ(dynamic_cast<Orvia::UserData*>(quenbel.Get()), nullptr);

    Orvia::Init(m_mode);
    CountedPtr<Ruvex::Element> again(Ruvex::CreateElement("Network"));
    EXPECT_EQ(std::type_index(typeid(*again)), std::type_index(typeid(Orvia::Network)));
}

#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/ground/ground.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/sub_network.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using namespace Orvia;
using Ruvex::CountedPtr;

TEST(Ground, TypeTextsAndFallback) {
    CountedPtr<Ground> ground(new Ground);
    EXPECT_EQ(ground->GetTypeId(), eGroundAsphalt);
    EXPECT_EQ(ground->GetType(), "asphalt");
    EXPECT_FALSE(ground->GetIsSoftGround());
    for (uint32_t t = 0; t < 4; ++t)
        EXPECT_EQ(Ground::ToEType(Ground::ToText(static_cast<GroundType>(t))), t);
    EXPECT_EQ(Ground::ToEType("mud"), eGroundAsphalt);
    EXPECT_EQ(Ground::ToEType(nullptr), eGroundAsphalt);
    EXPECT_STREQ(Ground::ToText(eGroundAsphalt), "asphalt");
    EXPECT_STREQ(Ground::ToText(static_cast<GroundType>(4)), "asphalt");
    ground->SetTypeId(eGroundGrass);
    EXPECT_EQ(ground->GetType(), "grass");
    ground->SetTypeId(static_cast<GroundType>(12));
    EXPECT_EQ(ground->GetTypeId(), eGroundAsphalt);

    // An unknown text loads as asphalt with a warning at its place, and is saved as read.
    Init(Ruvex::Encoding::GetMode());
    const char* text =
        "<Ruvex version=\"2.5\" versionRevision=\"0\">\n<Ground name=\"G\" type=\"mud\"/></Ruvex>";
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text, true));
    auto* loaded = dynamic_cast<Ground*>(root.Get());
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetTypeId(), eGroundAsphalt);
    ASSERT_EQ(Ruvex::GetLastProblems().size(), 1u);
    EXPECT_TRUE(Ruvex::GetLastProblems()[0].warning);
    EXPECT_EQ(Ruvex::GetLastProblems()[0].line, 2u);
    EXPECT_NE(Ruvex::SaveToString(loaded).find("type=\"mud\""), std::string::npos);
}

TEST(Ground, SoftGroundModelsSwitch) {
    CountedPtr<SoftGroundPropertiesElement> soft(new SoftGroundPropertiesElement);
    ASSERT_NE(soft->GetFunctionalModel(), nullptr);
    ASSERT_NE(soft->GetTerramecanicsModel(), nullptr);
    EXPECT_TRUE(soft->GetFunctionalModel()->GetIsActive());
    EXPECT_FALSE(soft->GetTerramecanicsModel()->GetIsActive());
    EXPECT_EQ(soft->GetHumidity(), 0.05);
    EXPECT_EQ(soft->GetTerramecanicsModel()->GetKphiBekker(), 1000000.0);
    EXPECT_EQ(soft->GetFunctionalModel()->GetVerticalLoadForSinkage(), 30000.0);
    CountedPtr<SoftGroundPropertiesElement> start(new SoftGroundPropertiesElement);

    soft->SetIsTerramecanicsSoftGroundModel();
    EXPECT_TRUE(soft->GetTerramecanicsModel()->GetIsActive());
    EXPECT_FALSE(soft->GetFunctionalModel()->GetIsActive());
    EXPECT_FALSE(soft->IsEqual(start.Get()));
    soft->SetIsFunctionnalSoftGroundModel();
    EXPECT_TRUE(soft->IsEqual(start.Get()));  // switching twice restores the start

    // A ground made soft gets the properties; switching on a hard ground creates them too.
    CountedPtr<Ground> ground(new Ground);
    EXPECT_EQ(ground->GetSoftGround(), nullptr);
    ground->SetIsSoftGround(true);
    ASSERT_NE(ground->GetSoftGround(), nullptr);
    EXPECT_TRUE(ground->GetSoftGround()->GetFunctionalModel()->GetIsActive());
    CountedPtr<Ground> hard(new Ground);
    hard->SetIsTerramecanicsSoftGroundModel();
    EXPECT_TRUE(hard->GetSoftGround()->GetTerramecanicsModel()->GetIsActive());
    EXPECT_FALSE(hard->GetIsSoftGround());
}

TEST(Ground, LoadSaveCompareAndCopy) {
    Init(Ruvex::Encoding::GetMode());
    CountedPtr<Network> network(
        Network::Load((std::string(ORVIA_SOURCE_DIR) + "/tests/data/grounds.xml").c_str(), {}));
    ASSERT_TRUE(network);
    EXPECT_TRUE(Ruvex::GetLastProblems().empty());
    const auto& grounds = network->GetSubNetwork(0)->GetGrounds();
    ASSERT_EQ(grounds.size(), 2u);
    auto* track = dynamic_cast<Ground*>(grounds[0].Get());
    auto* mud = dynamic_cast<Ground*>(grounds[1].Get());
    ASSERT_TRUE(track && mud);
    EXPECT_EQ(track->GetTypeId(), eGroundConcrete);
    EXPECT_EQ(mud->GetTypeId(), eGroundGrass);
    // A loaded soft ground holds the models of its file, with their flags as written.
    ASSERT_NE(mud->GetSoftGround(), nullptr);
    EXPECT_TRUE(mud->GetSoftGround()->GetTerramecanicsModel()->GetIsActive());
    EXPECT_EQ(mud->GetSoftGround()->GetTerramecanicsModel()->GetKcBekker(), 28.0);

    CountedPtr<Ground> copy(mud->Clone());
    EXPECT_TRUE(copy->IsEqual(mud));
    EXPECT_EQ(copy->GetTypeId(), eGroundGrass);
    EXPECT_NE(copy->GetSoftGround(), mud->GetSoftGround());  // deep
    copy->GetSoftGround()->GetFunctionalModel()->SetMaxGripSkidding(0.41);
    EXPECT_FALSE(copy->IsEqual(mud));
    EXPECT_FALSE(copy->IsEqual(nullptr));
    EXPECT_FALSE(track->IsEqual(mud));
    CountedPtr<Ground> other(new Ground);
    *other = *track;
    EXPECT_TRUE(other->IsEqual(track));
    other->GetRoughness()->GetPoints()[1]->SetValue4(1e-3);
    EXPECT_FALSE(other->IsEqual(track));
    auto* roughness = dynamic_cast<Roughness*>(other->GetRoughness());
    ASSERT_NE(roughness, nullptr);
    roughness->CopyFrom(dynamic_cast<Roughness*>(track->GetRoughness()));
    EXPECT_TRUE(other->IsEqual(track));

    // A ground file of its own.
    const std::string path = (std::filesystem::temp_directory_path() / "orvia_ground.xml").string();
    ASSERT_TRUE(mud->Save(path.c_str()));
    CountedPtr<Ground> again(Ground::Load(path.c_str()));
    ASSERT_TRUE(again);
    EXPECT_TRUE(again->IsEqual(mud));
    EXPECT_EQ(Ruvex::SaveToString(again.Get()), Ruvex::SaveToString(mud));
    std::filesystem::remove(path);
    EXPECT_EQ(Ground::Load(path.c_str()), nullptr);
    EXPECT_EQ(Ground::Load(nullptr), nullptr);
}

#include <orvia/core/background_image.h>
#include <orvia/core/external_element.h>
#include <orvia/core/network.h>
#include <orvia/core/visitors.h>
#include <orvia/geometry/profile.h>
#include <orvia/topology/entities_generation.h>
#include <orvia/topology/sub_network.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

using Orvia::PathModeVisitor;
using Ruvex::CountedPtr;

namespace {

class Directories : public ::testing::Test {
protected:
    void SetUp() override {
        root_ = std::filesystem::weakly_canonical(std::filesystem::temp_directory_path()) /
                ("orvia_visitors_test_" +
                 std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::create_directories(root_ / "a" / "tex");
        std::filesystem::create_directories(root_ / "b");
        std::ofstream(root_ / "a" / "tex" / "only_in_a.png") << "x";
        std::ofstream(root_ / "a" / "tex" / "local.obj") << "x";
        a_ = (root_ / "a").string();
        b_ = (root_ / "b").string();
    }
    void TearDown() override { std::filesystem::remove_all(root_); }

    std::filesystem::path root_;
    std::string a_;
    std::string b_;
};

}  // namespace

TEST_F(Directories, AbsoluteModeTakesTheFirstDirectoryThatHasTheFile) {
    PathModeVisitor visitor(PathModeVisitor::eAbsolute, {b_, a_});
    EXPECT_EQ(visitor.ApplyMode("tex/only_in_a.png"), a_ + "/tex/only_in_a.png");
    PathModeVisitor aFirst(PathModeVisitor::eAbsolute, {a_, b_});
    EXPECT_EQ(aFirst.ApplyMode("tex/only_in_a.png"), a_ + "/tex/only_in_a.png");
    // Found nowhere: the last directory's candidate, untested.
    EXPECT_EQ(aFirst.ApplyMode("tex/nowhere.png"), b_ + "/tex/nowhere.png");
    EXPECT_EQ(aFirst.ApplyMode(""), "");
    EXPECT_EQ(aFirst.ApplyMode("/elsewhere/./x//y.png"), "/elsewhere/x/y.png");
    PathModeVisitor none(PathModeVisitor::eAbsolute, {});
    EXPECT_EQ(none.ApplyMode("tex//x/../y.png"), "tex/y.png");
}

TEST_F(Directories, RelativeModeTakesTheShortestPath) {
    PathModeVisitor visitor(PathModeVisitor::eRelative, {b_, a_});
    EXPECT_EQ(visitor.ApplyMode(a_ + "/tex/x.png"), "tex/x.png");
    // Equal lengths: the first directory.
    PathModeVisitor tie(PathModeVisitor::eRelative, {a_, b_});
    EXPECT_EQ(tie.ApplyMode(root_.string() + "/c/x.png"), "../c/x.png");
    EXPECT_EQ(tie.ApplyMode(""), "");
    EXPECT_EQ(tie.ApplyMode("already/relative.png"), "already/relative.png");
    PathModeVisitor none(PathModeVisitor::eRelative, {});
    EXPECT_EQ(none.ApplyMode(a_ + "/./tex/x.png"), a_ + "/tex/x.png");
}

TEST_F(Directories, NetworkWalkReachesEveryFileAndRestoresTheSearchList) {
    CountedPtr<Orvia::Network> network(new Orvia::Network);
    network->SetGlobalTerrainFilePath("tex/only_in_a.png");
    network->SetPhysicalSurfaceFilePath("p.phy");
    network->GetOrCreateBackGroundImage(2)->SetFilePath("map.png");
    CountedPtr<Ruvex::MaterialElement> grass(new Ruvex::MaterialElement);
    grass->SetFilePath("grass.png");
    grass->SetDiffuse(new Ruvex::MaterialChanelElement("Diffuse"));
    grass->GetDiffuse()->SetFilePath("grass_diffuse.png");
    network->SetGeneratedTerrainMaterial(grass.Get());

    // The proxy's directory is searched first for the files of its sub-network, and only for them.
    Orvia::SubNetwork* proxied = network->AddSubNetwork();
    proxied->SetProxyFileElement(new Orvia::ExternalElement("ProxyFile", "tex/only_in_a.png"));
    proxied->SetTerrainElement(new Orvia::ExternalElement("ExternalTerrain", "local.obj"));
    Orvia::SubNetwork* plain = network->AddSubNetwork();
    plain->SetTerrainElement(new Orvia::ExternalElement("ExternalTerrain", "local.obj"));
    CountedPtr<Ruvex::MaterialElement> asphalt(new Ruvex::MaterialElement);
    asphalt->SetFilePath("asphalt.png");
    plain->EditMaterials().push_back(asphalt);

    PathModeVisitor visitor(PathModeVisitor::eAbsolute, {b_, a_});
    visitor.Apply(network.Get());
    EXPECT_EQ(visitor.GetSearchPaths(), (std::vector<std::string>{b_, a_}));
    EXPECT_EQ(network->GetGlobalTerrainFilePath(), a_ + "/tex/only_in_a.png");
    EXPECT_EQ(network->GetPhysicalSurfaceFilePath(), a_ + "/p.phy");
    EXPECT_EQ(network->GetBackGroundImage(2)->GetFilePath(), a_ + "/map.png");
    EXPECT_EQ(grass->GetFilePath(), a_ + "/grass.png");
    EXPECT_EQ(grass->GetDiffuse()->GetFilePath(), a_ + "/grass_diffuse.png");
    EXPECT_EQ(proxied->GetProxyFile()->GetFilePath(), a_ + "/tex/only_in_a.png");
    EXPECT_EQ(proxied->GetTerrain()->GetFilePath(), a_ + "/tex/local.obj");
    EXPECT_EQ(plain->GetTerrain()->GetFilePath(), a_ + "/local.obj");
    EXPECT_EQ(asphalt->GetFilePath(), a_ + "/asphalt.png");

    // Null parts are ignored.
    visitor.Apply(static_cast<Orvia::Network*>(nullptr));
    visitor.Apply(static_cast<Orvia::SubNetwork*>(nullptr));
}

namespace {

// Every kind of file reference once, plus materials that markings, lanes and borders share by name, an
// external entity without a path and a second sub-network.
constexpr const char* kEveryFile = R"(<?xml version="1.0" encoding="UTF-8"?>
<Ruvex version="2.5" versionRevision="0">
  <Network name="Town">
    <ExternalTerrain filePath="terrain/town.obj"/>
    <ExternalSurface filePath="surfaces/town.rsf"/>
    <ExternalPhysicSurface filePath="surfaces/town.psf"/>
    <GeneratedTerrainMaterial>
      <Material name="Grass" filePath="materials/grass.mat"><Diffuse filePath="textures/grass.png"/></Material>
    </GeneratedTerrainMaterial>
    <SubNetworks>
      <SubNetwork name="Centre">
        <ProxyFile filePath="proxies/centre.xml"/>
        <ExternalTerrain filePath="terrain/centre.obj"/>
        <ExternalSurface filePath="surfaces/centre.rsf"/>
        <ExternalPhysicSurface filePath="surfaces/centre.psf"/>
        <Materials>
          <Material name="Paint" filePath="materials/paint.mat">
            <Diffuse filePath="textures/paint.png"/><Bump filePath="textures/paint_bump.png"/>
          </Material>
          <Material name="Kerb" filePath="materials/kerb.mat"/>
        </Materials>
        <Markings><Marking name="Solid" material="Paint"/></Markings>
        <Profiles>
          <Profile name="OneLane">
            <Lane name="Right" material="Kerb"/>
            <LaneBorder horizDistToAxis="0" markingName="Solid"/>
            <LaneBorder horizDistToAxis="3.5"><Decoration material="Kerb"/></LaneBorder>
          </Profile>
        </Profiles>
        <Intersections>
          <Intersection name="Square">
            <MarkClippedData name="Fountain"><ExternalElement filePath="objects/fountain.obj"/></MarkClippedData>
          </Intersection>
        </Intersections>
        <ParkingSpots>
          <ParkingSpot name="Disabled"><ParkingSpotSkin fillingTexture="textures/blue.png"/></ParkingSpot>
        </ParkingSpots>
        <EntitiesGenerations>
          <EntitiesGeneration name="Pupils">
            <ExternalEntity filePath="entities/child.xml"/>
            <ExternalEntity/>
          </EntitiesGeneration>
        </EntitiesGenerations>
      </SubNetwork>
      <SubNetwork name="Outskirts">
        <ExternalTerrain filePath="terrain/outskirts.obj"/>
      </SubNetwork>
    </SubNetworks>
  </Network>
</Ruvex>
)";

// Records each slot call as "slot:path" ("slot:" for null), and the sub-network brackets.
class Recorder final : public Orvia::OrviaVisitor {
public:
    void Traverse(Ruvex::ParkingSpotSkinElement* skin) override {
        calls.push_back("skin:" + (skin ? skin->GetFillingTexture() : ""));
    }
    void Traverse(Ruvex::ExternalEntityElement* entity) override {
        calls.push_back("entity:" + (entity ? entity->GetFilePath() : ""));
    }
    void Traverse(Ruvex::MaterialElement* material) override {
        calls.push_back("material:" + (material ? material->GetFilePath() : ""));
        OrviaVisitor::Traverse(material);
    }
    void Traverse(Ruvex::MaterialChanelElement* chanel) override {
        if (chanel) calls.push_back("chanel:" + chanel->GetFilePath());
    }
    void Traverse(Orvia::ExternalElement* element) override {
        if (element) calls.push_back("file:" + element->GetFilePath());
    }
    void Traverse(Orvia::SubNetwork* subNetwork) override {
        calls.push_back("begin:" + subNetwork->GetName());
    }
    void EndTraverse(Orvia::SubNetwork* subNetwork) override {
        calls.push_back("end:" + subNetwork->GetName());
    }
    std::vector<std::string> calls;
};

std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

}  // namespace

TEST(OrviaVisitor, EveryFileReferenceOnceInWalkOrder) {
    CountedPtr<Orvia::Network> network(Orvia::Network::Load(kEveryFile, 0, {}));
    ASSERT_TRUE(network);
    Recorder recorder;
    recorder.Apply(network.Get());
    const std::vector<std::string> expected = {
        "file:terrain/town.obj", "file:surfaces/town.rsf", "file:surfaces/town.psf",
        "material:materials/grass.mat", "chanel:textures/grass.png",
        // The sub-networks in brackets, the proxy after the sub-network's own files.
        "begin:Centre", "file:terrain/centre.obj", "file:surfaces/centre.rsf", "file:surfaces/centre.psf",
        "file:proxies/centre.xml", "material:materials/paint.mat", "chanel:textures/paint.png",
        "chanel:textures/paint_bump.png", "material:materials/kerb.mat", "file:objects/fountain.obj",
        "entity:entities/child.xml", "skin:textures/blue.png", "end:Centre", "begin:Outskirts",
        "file:terrain/outskirts.obj", "end:Outskirts"};
    EXPECT_EQ(recorder.calls, expected);

    // On their own, a profile and a marking pass their materials, an entity generation every entity.
    Orvia::SubNetwork* centre = network->GetSubNetwork(0);
    Recorder parts;
    parts.Apply(dynamic_cast<Orvia::Profile*>(centre->GetProfiles()[0].Get()));
    parts.Apply(dynamic_cast<Orvia::Marking*>(centre->GetMarkings()[0].Get()));
    parts.Apply(dynamic_cast<Orvia::EntitiesGeneration*>(centre->GetEntitiesGenerations()[0].Get()));
    EXPECT_EQ(parts.calls, (std::vector<std::string>{
                               "material:materials/kerb.mat", "material:materials/paint.mat",
                               "chanel:textures/paint.png", "chanel:textures/paint_bump.png",
                               "material:materials/paint.mat", "chanel:textures/paint.png",
                               "chanel:textures/paint_bump.png", "entity:entities/child.xml", "entity:"}));
    parts.Apply(static_cast<Orvia::Profile*>(nullptr));
    parts.Apply(static_cast<Orvia::Marking*>(nullptr));
    parts.Apply(static_cast<Orvia::EntitiesGeneration*>(nullptr));
    EXPECT_EQ(parts.calls.size(), 9u);
}

TEST_F(Directories, AbsoluteThenRelativeRestoresTheBytes) {
    CountedPtr<Orvia::Network> network(Orvia::Network::Load(kEveryFile, 0, {}));
    ASSERT_TRUE(network);
    ASSERT_TRUE(network->Save((root_ / "before.xml").c_str()));

    network->MakeAbsolutePaths({b_});
    Orvia::SubNetwork* centre = network->GetSubNetwork(0);
    // Found nowhere: the last directory, not the proxy's.
    EXPECT_EQ(centre->GetProxyFile()->GetFilePath(), b_ + "/proxies/centre.xml");
    EXPECT_EQ(centre->GetTerrain()->GetFilePath(), b_ + "/terrain/centre.obj");
    EXPECT_EQ(centre->GetParkingSpots()[0]->GetSkin()->GetFillingTexture(), b_ + "/textures/blue.png");
    EXPECT_EQ(centre->GetEntitiesGenerations()[0]->GetExternalEntities()[0]->GetFilePath(),
              b_ + "/entities/child.xml");
    EXPECT_EQ(centre->GetEntitiesGenerations()[0]->GetExternalEntities()[1]->GetFilePath(), "");
    EXPECT_EQ(network->GetSubNetwork(1)->GetTerrain()->GetFilePath(), b_ + "/terrain/outskirts.obj");

    const std::vector<std::string> directories{b_};
    ASSERT_TRUE(network->MakeRelativePathsAndSave((root_ / "after.xml").c_str(), &directories));
    EXPECT_EQ(ReadAll(root_ / "after.xml"), ReadAll(root_ / "before.xml"));
}

TEST_F(Directories, CheckAndReplaceSeeEachPathExactly) {
    CountedPtr<Orvia::Network> network(Orvia::Network::Load(kEveryFile, 0, {}));
    ASSERT_TRUE(network);
    network->GetSubNetwork(1)->GetTerrain()->SetFilePath("terrain/town.obj");
    network->SetRollingSurfaceFilePath(a_ + "/tex/local.obj");
    network->MakeAbsolutePaths({a_});

    Orvia::CheckFilesVisitor check;
    check.Apply(network.Get());
    const std::set<std::string>& missing = check.GetMissingFiles();
    // Two places, one entry; an existing file is not reported; entity files and skins are not checked.
    EXPECT_EQ(missing.count(a_ + "/terrain/town.obj"), 1u);
    EXPECT_EQ(missing.count(a_ + "/tex/local.obj"), 0u);
    EXPECT_EQ(missing.count(a_ + "/entities/child.xml"), 0u);
    EXPECT_EQ(missing.count(a_ + "/objects/fountain.obj"), 1u);
    EXPECT_EQ(missing.count(a_ + "/textures/paint_bump.png"), 1u);
    EXPECT_EQ(missing.size(), 13u);

    // Case matters; every place holding the path is replaced.
    Orvia::ReplaceFileVisitor wrongCase(a_ + "/TERRAIN/town.obj", "x.obj");
    wrongCase.Apply(network.Get());
    EXPECT_EQ(network->GetGlobalTerrainFilePath(), a_ + "/terrain/town.obj");
    Orvia::ReplaceFileVisitor replace(a_ + "/terrain/town.obj", "x.obj");
    replace.Apply(network.Get());
    EXPECT_EQ(network->GetGlobalTerrainFilePath(), "x.obj");
    EXPECT_EQ(network->GetSubNetwork(1)->GetTerrain()->GetFilePath(), "x.obj");
    Orvia::ReplaceFileVisitor chanel(a_ + "/textures/paint.png", "p.png");
    chanel.Apply(network.Get());
    auto& paint = network->GetSubNetwork(0)->GetMaterials()[0];
    EXPECT_EQ(paint->GetDiffuse()->GetFilePath(), "p.png");
    EXPECT_EQ(paint->GetFilePath(), a_ + "/materials/paint.mat");
}

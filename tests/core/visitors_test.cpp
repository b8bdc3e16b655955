#include <orvia/core/background_image.h>
#include <orvia/core/external_element.h>
#include <orvia/core/network.h>
#include <orvia/core/visitors.h>
#include <orvia/topology/sub_network.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
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

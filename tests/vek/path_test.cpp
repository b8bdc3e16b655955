#include <orvia/vek/path.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

TEST(Path, NormalizeDirNameAbsoluteRelative) {
    EXPECT_EQ(vek::NormalizePath(""), "");
    EXPECT_EQ(vek::NormalizePath("a/./b/../c/"), "a/c");
    EXPECT_EQ(vek::NormalizePath("/x//y\\z.txt"), "/x/y/z.txt");
    EXPECT_EQ(vek::NormalizePath("../a/.."), "..");
    EXPECT_EQ(vek::JustDirName("/data/roads/net.xml"), "/data/roads");
    EXPECT_EQ(vek::JustDirName("net.xml"), "");
    EXPECT_EQ(vek::JustDirName("/net.xml"), "/");
    EXPECT_EQ(vek::JustDirName("a\\b\\net.xml"), "a/b");

    EXPECT_EQ(vek::AbsoluteFilename("/data/roads", "../tex/a.png", false), "/data/tex/a.png");
    EXPECT_EQ(vek::AbsoluteFilename("/data/roads/", "./a.png", false), "/data/roads/a.png");
    EXPECT_EQ(vek::AbsoluteFilename("/data", "/other/b.png", false), "/other/b.png");
    EXPECT_EQ(vek::AbsoluteFilename("/data", "", false), "");

    EXPECT_EQ(vek::RelativeFilename("/data/roads", "/data/tex/a.png"), "../tex/a.png");
    EXPECT_EQ(vek::RelativeFilename("/data/roads/", "/data/roads/sub/a.png"), "sub/a.png");
    EXPECT_EQ(vek::RelativeFilename("/data/roads", "/data/roads"), ".");
    EXPECT_EQ(vek::RelativeFilename("/data", "tex/a.png"), "tex/a.png");
    EXPECT_EQ(vek::RelativeFilename("rel", "/a.png"), "/a.png");
    // Round trip.
    EXPECT_EQ(vek::AbsoluteFilename("/a/b/c", vek::RelativeFilename("/a/b/c", "/a/x/y.z"), false),
              "/a/x/y.z");
}

class PathOnDisk : public testing::Test {
protected:
    void SetUp() override {
        root_ =
            fs::temp_directory_path() /
            ("orvia_vek_path_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(root_);
        fs::create_directories(root_ / "Textures" / "Road");
        fs::create_directories(root_ / "twin");
        fs::create_directories(root_ / "TWIN");
        std::ofstream(root_ / "Textures" / "Road" / "Asphalt.PNG") << "x";
        std::ofstream(root_ / "Textures" / "Road" / "h\xC3\xA9.png") << "x";
    }
    void TearDown() override { fs::remove_all(root_); }
    std::string root() const { return root_.generic_string(); }

    fs::path root_;
};

TEST_F(PathOnDisk, FileExistAndFixCase) {
    EXPECT_TRUE(vek::FileExist(root() + "/Textures/Road/Asphalt.PNG"));
    EXPECT_TRUE(vek::FileExist(root() + "/Textures"));  // a directory
    EXPECT_FALSE(vek::FileExist(root() + "/textures/road/asphalt.png"));
    EXPECT_FALSE(vek::FileExist(""));
    EXPECT_TRUE(vek::FileExist(root() + "/Textures/Road/h\xC3\xA9.png"));  // UTF-8 name

    EXPECT_EQ(vek::AbsoluteFilename(root(), "textures/road/asphalt.png", true),
              root() + "/Textures/Road/Asphalt.PNG");
    EXPECT_EQ(vek::AbsoluteFilename(root() + "/TEXTURES", "../textures/ROAD/H\xC3\xA9.PNG", true),
              root() + "/Textures/Road/h\xC3\xA9.png");
    EXPECT_EQ(vek::AbsoluteFilename(root(), "textures/road/asphalt.png", false),
              root() + "/textures/road/asphalt.png");
    // Ambiguous and missing components are kept as given, and so is everything after them.
    EXPECT_EQ(vek::AbsoluteFilename(root(), "Twin/x", true), root() + "/Twin/x");
    EXPECT_EQ(vek::AbsoluteFilename(root(), "nothing/road", true), root() + "/nothing/road");
    EXPECT_EQ(vek::AbsoluteFilename(root(), "twin", true), root() + "/twin");
}

}  // namespace

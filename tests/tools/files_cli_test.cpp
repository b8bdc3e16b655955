// `orvia files` run as a user would.

#include "command_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

using namespace orvia_cli_test;

TEST(FilesCommand, ListsChecksReplacesAndRewrites) {
    const std::filesystem::path dir =
        std::filesystem::weakly_canonical(std::filesystem::temp_directory_path()) /
        "orvia_files_cli_ListsChecksReplacesAndRewrites";
    std::filesystem::create_directories(dir / "terrain");
    std::ofstream(dir / "terrain" / "town.obj") << "x";
    std::ofstream(dir / "grass.png") << "x";
    std::ofstream(dir / "net.xml") << R"(<Ruvex version="2.5" versionRevision="0"><Network name="N">
<ExternalTerrain filePath="terrain/town.obj"/><SubNetworks><SubNetwork name="S"><Materials>
<Material name="Grass" filePath="gone.png"><Diffuse filePath="grass.png"/></Material>
</Materials></SubNetwork></SubNetworks></Network></Ruvex>)";
    auto run = [&](const std::string& arguments, std::string& out) {
        const CommandRun run = RunOrvia("files " + arguments + " '" + (dir / "net.xml").string() + "'");
        out = run.out + run.err;
        return run.status;
    };

    std::string out;
    EXPECT_EQ(run("", out), 0);
    EXPECT_EQ(out,
              "ok\tterrain/town.obj\tExternalTerrain\n"
              "missing\tgone.png\tSubNetwork S / Material Grass\n"
              "ok\tgrass.png\tSubNetwork S / Material Grass / Diffuse\n");
    EXPECT_EQ(run("--check", out), 1);
    EXPECT_EQ(run("--absolute", out), 0);
    EXPECT_NE(out.find("ok\t" + (dir / "terrain" / "town.obj").string() + "\tExternalTerrain\n"),
              std::string::npos)
        << out;

    // The replaced file exists, so the check passes; the saved copy holds the new path.
    const std::string saved = (dir / "sub" / "copy.xml").string();
    std::filesystem::create_directories(dir / "sub");
    EXPECT_EQ(run("--check --replace gone.png grass.png --relative -o '" + saved + "'", out), 0) << out;
    EXPECT_NE(out.find("ok\t../grass.png\tSubNetwork S / Material Grass\n"), std::string::npos) << out;
    EXPECT_NE(Slurp(saved).find(R"(<Material name="Grass" filePath="../grass.png" )"), std::string::npos)
        << Slurp(saved);
    EXPECT_NE(Slurp(saved).find(R"(filePath="../terrain/town.obj")"), std::string::npos);

    EXPECT_NE(run("--replace a b", out), 0);  // nowhere to save
    EXPECT_EQ(run("--json", out), 0);
    EXPECT_NE(
        out.find(R"({"path": "gone.png", "element": "SubNetwork S / Material Grass", "exists": false})"),
        std::string::npos)
        << out;
    std::filesystem::remove_all(dir);
}

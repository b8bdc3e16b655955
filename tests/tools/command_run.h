// Runs the built `orvia` as a user would, capturing its status and both outputs.
#pragma once

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace orvia_cli_test {

struct CommandRun {
    int status = -1;
    std::string out;
    std::string err;
};

inline std::string Slurp(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// A scratch folder named after the running test and this process: ctest runs the tests side by side.
inline std::filesystem::path ScratchFolder(const std::string& prefix) {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    return std::filesystem::temp_directory_path() /
           (prefix + (test ? test->name() : "") + "_" + std::to_string(::getpid()));
}

// `orvia <arguments>`; the arguments are passed to the shell as written, so quote paths.
inline CommandRun RunOrvia(const std::string& arguments) {
    const std::filesystem::path dir = ScratchFolder("orvia_cli_run_");
    std::filesystem::create_directories(dir);
    const std::string command = std::string("'") + ORVIA_CLI + "' " + arguments + " >'" +
                                (dir / "out").string() + "' 2>'" + (dir / "err").string() + "'";
    const int raw = std::system(command.c_str());
    CommandRun run{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, Slurp(dir / "out"), Slurp(dir / "err")};
    std::filesystem::remove_all(dir);
    return run;
}

// A test with a scratch folder of its own to write documents into.
class ScratchTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = ScratchFolder("orvia_cli_test_");
        std::filesystem::create_directories(dir_);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(dir_ / name) << text;
        return (dir_ / name).string();
    }

    std::filesystem::path dir_;
};

}  // namespace orvia_cli_test

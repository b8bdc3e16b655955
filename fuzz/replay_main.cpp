// Runs the fuzz entry over every file of the given files and directories, so that a build without libFuzzer
// checks the corpus too. Exits non-zero when it found no file (a corpus that went missing proves nothing).

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void Replay(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::printf("%s\n", file.string().c_str());
    std::fflush(stdout);  // the name is out before a crash
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        const fs::path root(argv[i]);
        std::vector<fs::path> files;
        if (fs::is_directory(root)) {
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root))
                if (entry.is_regular_file()) files.push_back(entry.path());
        } else if (fs::is_regular_file(root)) {
            files.push_back(root);
        }
        std::sort(files.begin(), files.end());
        for (const fs::path& file : files)
            Replay(file);
        count += files.size();
    }
    std::printf("%zu inputs replayed\n", count);
    return count > 0 ? 0 : 1;
}

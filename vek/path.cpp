#include <orvia/vek/path.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace vek {

namespace fs = std::filesystem;

namespace {

// UTF-8 bytes in and out, whatever the platform's native encoding.
fs::path toPath(std::string s) {
    std::replace(s.begin(), s.end(), '\\', '/');
    return fs::path(std::u8string(s.begin(), s.end()));
}

std::string toString(const fs::path& p) {
    const std::u8string u = p.generic_u8string();
    return std::string(u.begin(), u.end());
}

fs::path normal(const fs::path& p) {
    fs::path n = p.lexically_normal();
    // "a/b/" normalises to "a/b/" (empty last element); drop it unless it is the root itself.
    if (!n.has_filename() && n.has_relative_path()) n = n.parent_path();
    return n;
}

char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return lowerAscii(x) == lowerAscii(y); });
}

// Rebuilds p component by component, replacing each missing component by its unique case-insensitive match.
fs::path fixPathCase(const fs::path& p) {
    fs::path result = p.root_path();
    bool searching = true;
    for (const fs::path& part : p.relative_path()) {
        fs::path next = result / part;
        std::error_code ec;
        if (searching && !fs::exists(next, ec)) {
            const std::string wanted = toString(part);
            fs::path match;
            int matches = 0;
            const fs::path parent = result.empty() ? fs::path(".") : result;
            for (fs::directory_iterator it(parent, ec), end; !ec && it != end; it.increment(ec)) {
                const fs::path name = it->path().filename();
                if (equalNoCase(toString(name), wanted)) {
                    match = name;
                    ++matches;
                }
            }
            if (matches == 1)
                next = result / match;
            else
                searching = false;
        }
        result = std::move(next);
    }
    return result;
}

}  // namespace

std::string AbsoluteFilename(const std::string& dir, const std::string& path, bool fixCase) {
    if (path.empty()) return {};
    const fs::path p = toPath(path);
    fs::path full = normal(p.is_absolute() ? p : toPath(dir) / p);
    if (fixCase) full = fixPathCase(full);
    return toString(full);
}

std::string RelativeFilename(const std::string& dir, const std::string& path) {
    const fs::path p = toPath(path);
    if (dir.empty() || !p.is_absolute()) return path;
    const fs::path rel = normal(p).lexically_relative(normal(toPath(dir)));
    return rel.empty() ? path : toString(rel);
}

std::string NormalizePath(const std::string& path) {
    if (path.empty()) return {};
    return toString(normal(toPath(path)));
}

std::string JustDirName(const std::string& path) {
    const fs::path p = toPath(path);
    if (!p.has_filename()) return toString(normal(p));
    return toString(normal(p.parent_path()));
}

bool FileExist(const std::string& path) {
    if (path.empty()) return false;
    std::error_code ec;
    const fs::file_status s = fs::status(toPath(path), ec);
    return !ec && (fs::is_regular_file(s) || fs::is_directory(s));
}

}  // namespace vek

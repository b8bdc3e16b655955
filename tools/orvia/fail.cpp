#include "commands.h"

#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace OrviaTool {

namespace {

// "file:line:column: the file holds no network, but <Tag>" for the element under the root of a UTF-8 file
// that loaded; the file alone when it cannot be found.
std::string NoNetwork(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), {});
    size_t at = text.find("<Ruvex");
    at = at == std::string::npos ? at : text.find('>', at);
    // The first start tag after the root's: comments, instructions and sections are passed over.
    while (at != std::string::npos && (at = text.find('<', at + 1)) != std::string::npos) {
        if (text.compare(at, 4, "<!--") == 0)
            at = text.find("-->", at);
        else if (text.compare(at, 2, "<?") == 0 || text.compare(at, 2, "<!") == 0)
            at = text.find('>', at);
        else
            break;
    }
    if (at == std::string::npos) return file + ": the file holds no network";
    const size_t lineStart = text.rfind('\n', at);
    const size_t line =
        1 + static_cast<size_t>(std::count(text.begin(), text.begin() + static_cast<long>(at), '\n'));
    const size_t column = lineStart == std::string::npos ? at + 1 : at - lineStart;
    const size_t nameEnd = text.find_first_of(" \t\r\n/>", at + 1);
    return file + ":" + std::to_string(line) + ":" + std::to_string(column) +
           ": the file holds no network: its element is <" + text.substr(at + 1, nameEnd - at - 1) + ">";
}

}  // namespace

std::string Printable(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool c1 = c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
                        static_cast<unsigned char>(text[i + 1]) <= 0x9F;
        if (c == '\\') {
            out += "\\\\";
        } else if (c < 0x20 || c == 0x7F || c1) {
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", c1 ? static_cast<unsigned char>(text[++i]) : c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

int ReportProblems(const std::string& file, std::vector<Ruvex::Problem>& problems) {
    for (Ruvex::Problem& problem : problems) {
        problem.file = file;
        problem.warning = false;
        std::fprintf(stderr, "%s\n", Printable(Ruvex::ToString(problem)).c_str());
    }
    return problems.empty() ? 0 : 1;
}

int Fail(const std::string& file, const std::string& fallback) {
    // The first error says what stopped the load; warnings before it only say what was overlooked.
    std::string line = file + ": " + fallback;
    for (const Ruvex::Problem& problem : Ruvex::GetLastProblems()) {
        if (problem.warning) continue;
        line = Ruvex::ToString(problem);
        break;
    }
    std::fprintf(stderr, "%s\n", Printable(line).c_str());
    return 1;
}

int LoadNetwork(const std::string& file, Ruvex::CountedPtr<Orvia::Network>& network) {
    network = Orvia::Network::Load(file.c_str(), {});
    if (!network) {
        bool failed = false;
        for (const Ruvex::Problem& problem : Ruvex::GetLastProblems())
            failed = failed || !problem.warning;
        if (!failed) {
            std::fprintf(stderr, "%s\n", Printable(NoNetwork(file)).c_str());
            return 1;
        }
        return Fail(file, "the file holds no network");
    }
    const std::vector<Ruvex::Problem>& problems = Ruvex::GetLastProblems();
    if (problems.empty()) return 0;
    for (const Ruvex::Problem& problem : problems)
        std::fprintf(stderr, "%s\n", Printable(Ruvex::ToString(problem)).c_str());
    network = nullptr;
    return 1;
}

std::string JsonQuoted(const std::string& text) {
    std::string out = "\"";
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool c1 = c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
                        static_cast<unsigned char>(text[i + 1]) <= 0x9F;
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20 || c == 0x7F || c1) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c1 ? static_cast<unsigned char>(text[++i]) : c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

}  // namespace OrviaTool

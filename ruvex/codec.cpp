#include <orvia/ruvex/hash_vector.h>
#include <orvia/ruvex/schema.h>

#include <atomic>
#include <charconv>
#include <cmath>

namespace Ruvex {

namespace {
std::atomic<int> g_mode{Encoding::UTF8};
std::atomic<uint64_t> g_nameGeneration{1};
}  // namespace

Encoding::Mode Encoding::GetMode() {
    return static_cast<Mode>(g_mode.load(std::memory_order_relaxed));
}
void Encoding::SetMode(Mode mode) {
    g_mode.store(mode, std::memory_order_relaxed);
}

uint64_t NameGeneration() {
    return g_nameGeneration.load(std::memory_order_relaxed);
}
void BumpNameGeneration() {
    g_nameGeneration.fetch_add(1, std::memory_order_relaxed);
}

namespace detail {

bool Latin1Mode() {
    return g_mode.load(std::memory_order_relaxed) == Encoding::Latin1;
}

std::string ToFileText(std::string_view modelText) {
    std::string out;
    out.reserve(modelText.size());
    for (unsigned char c : modelText) {
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
        } else {
            out.push_back(static_cast<char>(0xC0 | (c >> 6)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return out;
}

std::string FromFileText(std::string_view fileText) {
    std::string out;
    out.reserve(fileText.size());
    for (size_t i = 0; i < fileText.size();) {
        auto c = static_cast<unsigned char>(fileText[i]);
        size_t length = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 1;
        if (i + length > fileText.size()) length = 1;
        uint32_t code = c;
        if (length > 1) {
            code = c & (0x7F >> length);
            for (size_t k = 1; k < length; ++k)
                code = (code << 6) | (static_cast<unsigned char>(fileText[i + k]) & 0x3F);
        }
        // Characters outside Latin-1 have no place in the model's text.
        out.push_back(code <= 0xFF ? static_cast<char>(code) : '?');
        i += length;
    }
    return out;
}

std::string_view FormatDouble(double value, FormatBuffer& buffer) {
    // Negative zero reads back as zero only if written with its sign; to_chars keeps it.
    auto [end, error] =
        std::to_chars(buffer.digits.data(), buffer.digits.data() + buffer.digits.size(), value);
    (void)error;
    return std::string_view(buffer.digits.data(), static_cast<size_t>(end - buffer.digits.data()));
}

AttributeStatus ParseDouble(std::string_view text, double& value) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    if (text.empty()) return AttributeStatus::Malformed;
    double parsed = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(parsed))
        return AttributeStatus::Malformed;
    value = parsed;
    return AttributeStatus::Ok;
}

AttributeStatus ParseBool(std::string_view text, bool& value) {
    if (text == "true" || text == "1") {
        value = true;
        return AttributeStatus::Ok;
    }
    if (text == "false" || text == "0") {
        value = false;
        return AttributeStatus::Ok;
    }
    return AttributeStatus::Malformed;
}

AttributeStatus ParseNumberList(std::string_view text, std::vector<double>& values) {
    std::vector<double> parsed;
    size_t i = 0;
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
    while (true) {
        while (i < text.size() && blank(text[i]))
            ++i;
        if (i == text.size()) break;
        size_t start = i;
        while (i < text.size() && !blank(text[i]))
            ++i;
        double value = 0;
        if (ParseDouble(text.substr(start, i - start), value) != AttributeStatus::Ok)
            return AttributeStatus::Malformed;
        parsed.push_back(value);
    }
    values = std::move(parsed);
    return AttributeStatus::Ok;
}

std::string_view FormatNumberList(const double* values, size_t count, FormatBuffer& buffer) {
    buffer.text.clear();
    for (size_t i = 0; i < count; ++i) {
        if (i) buffer.text.push_back(' ');
        buffer.text.append(FormatDouble(values[i], buffer));
    }
    return buffer.text;
}

std::vector<std::string_view> SplitTags(std::string_view tags) {
    std::vector<std::string_view> out;
    while (!tags.empty()) {
        size_t bar = tags.find('|');
        out.push_back(tags.substr(0, bar));
        if (bar == std::string_view::npos) break;
        tags.remove_prefix(bar + 1);
    }
    return out;
}

}  // namespace detail
}  // namespace Ruvex

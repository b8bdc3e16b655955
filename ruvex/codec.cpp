#include <orvia/ruvex/hash_vector.h>
#include <orvia/ruvex/schema.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>

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

namespace {

// The powers of ten that doubles hold exactly.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Scaled values stay below this, so that the nearest decimal of a given number of places is unique and found
// by rounding: the decimals are then more than four units in the last place apart, and the scaling is off by
// less than an eighth.
constexpr double kScaledLimit = 0x1p50;

constexpr uint64_t kIntegerPowersOfTen[] = {1,
                                            10,
                                            100,
                                            1000,
                                            10000,
                                            100000,
                                            1000000,
                                            10000000,
                                            100000000,
                                            1000000000,
                                            10000000000,
                                            100000000000,
                                            1000000000000,
                                            10000000000000,
                                            100000000000000,
                                            1000000000000000,
                                            10000000000000000};

size_t DigitCount(uint64_t n) {
    return static_cast<size_t>(
        std::upper_bound(std::begin(kIntegerPowersOfTen) + 1, std::end(kIntegerPowersOfTen), n) -
        std::begin(kIntegerPowersOfTen));
}

// "00" to "99": digits are written two at a time.
constexpr char kDigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

// What to_chars writes for `value` (finite, not zero) when it is a decimal of at most 15 significant digits
// that to_chars writes in fixed notation, found without the general shortest-digits search; empty otherwise.
// The decimal with the fewest places that reads back as the value has the fewest significant digits, and
// no other decimal of as many places reads back as it: it is the shortest form.
std::string_view FormatFixedDecimal(double value, char* out) {
    const double magnitude = std::fabs(value);
    if (!(magnitude >= 1e-7 && magnitude < 1e15)) return {};
    // The most places that keep 15 digits in all, leading zeros after the point not counted.
    int places = 15;
    if (magnitude >= 1) {
        places -=
            static_cast<int>(std::upper_bound(kPowersOfTen + 1, kPowersOfTen + 16, magnitude) - kPowersOfTen);
    } else {
        for (int zeros = 1; zeros <= 7 && magnitude * kPowersOfTen[zeros] < 1; ++zeros)
            ++places;
    }
    const double scaled = magnitude * kPowersOfTen[places];
    if (scaled >= kScaledLimit) return {};
    // Rounds to the nearest integer (ties to even) without a library call: below 2^52 adding 2^52 leaves no
    // fraction bits.
    const double rounded = (scaled + 0x1p52) - 0x1p52;
    if (rounded / kPowersOfTen[places] != magnitude) return {};
    auto digits = static_cast<uint64_t>(rounded);
    // Trailing zeros go with the places they stand in (at most 15 of them, in binary steps).
    for (int step : {8, 4, 2, 1})
        if (places >= step && digits % kIntegerPowersOfTen[step] == 0) {
            digits /= kIntegerPowersOfTen[step];
            places -= step;
        }
    // to_chars takes the shorter of fixed and scientific notation, fixed on a tie.
    const size_t count = DigitCount(digits);
    size_t significant = count;
    for (uint64_t d = digits; places == 0 && d % 10 == 0; d /= 10)
        --significant;
    const int exponent = static_cast<int>(count) - 1 - places;
    const size_t fixedLength =
        places == 0 ? count : (exponent >= 0 ? count + 1 : static_cast<size_t>(places) + 2);
    const size_t exponentDigits = std::abs(exponent) >= 100 ? 3 : 2;
    const size_t scientificLength = significant + (significant > 1 ? 1 : 0) + 2 + exponentDigits;
    if (fixedLength > scientificLength) return {};

    char text[24];
    size_t i = count;
    for (; digits >= 10; digits /= 100) {
        const size_t pair = 2 * (digits % 100);
        text[--i] = kDigitPairs[pair + 1];
        text[--i] = kDigitPairs[pair];
    }
    if (i > 0) text[--i] = static_cast<char>('0' + digits);
    char* p = out;
    if (value < 0) *p++ = '-';
    const auto point = static_cast<size_t>(places);
    if (point == 0) {
        std::memcpy(p, text, count);
        p += count;
    } else if (count > point) {
        std::memcpy(p, text, count - point);
        p += count - point;
        *p++ = '.';
        std::memcpy(p, text + count - point, point);
        p += point;
    } else {
        *p++ = '0';
        *p++ = '.';
        for (size_t k = count; k < point; ++k)
            *p++ = '0';
        std::memcpy(p, text, count);
        p += count;
    }
    return std::string_view(out, static_cast<size_t>(p - out));
}

// Most values are short decimals ([-]digits[.digits], at most 15 digits), read here: the digits make an exact
// integer, and dividing it by a power of ten that doubles hold exactly rounds once, correctly. False for
// anything else, which from_chars reads. The text ends at a NUL (Terminated) or at `end`.
template <bool Terminated>
bool ReadShortDecimal(const char* p, const char* end, double& value) {
    constexpr int kMaxDigits = 15;
    auto more = [&](const char* at) { return Terminated || at != end; };
    auto digit = [&](const char* at) { return more(at) && static_cast<unsigned>(*at - '0') < 10; };
    const bool negative = more(p) && *p == '-';
    p += negative;
    uint64_t mantissa = 0;
    int digits = 0;
    for (; digit(p) && digits <= kMaxDigits; ++p, ++digits)
        mantissa = 10 * mantissa + static_cast<unsigned>(*p - '0');
    int places = 0;
    if (digits > 0 && more(p) && *p == '.') {
        ++p;
        for (; digit(p) && digits + places <= kMaxDigits; ++p, ++places)
            mantissa = 10 * mantissa + static_cast<unsigned>(*p - '0');
        if (places == 0) return false;  // "1." goes the long way
    }
    const bool atEnd = Terminated ? *p == '\0' : p == end;
    if (!atEnd || digits == 0 || digits + places > kMaxDigits) return false;
    const double magnitude = static_cast<double>(mantissa) / kPowersOfTen[places];
    value = negative ? -magnitude : magnitude;
    return true;
}

}  // namespace

std::string_view FormatDouble(double value, FormatBuffer& buffer) {
    // Files hold mostly short decimals: those are written directly.
    if (value == 0) return std::signbit(value) ? "-0" : "0";
    std::string_view fast = FormatFixedDecimal(value, buffer.digits.data());
    if (!fast.empty()) return fast;
    // Negative zero reads back as zero only if written with its sign; to_chars keeps it.
    auto [end, error] =
        std::to_chars(buffer.digits.data(), buffer.digits.data() + buffer.digits.size(), value);
    (void)error;
    return std::string_view(buffer.digits.data(), static_cast<size_t>(end - buffer.digits.data()));
}

AttributeStatus ParseDouble(std::string_view text, double& value) {
    if (ReadShortDecimal<false>(text.data(), text.data() + text.size(), value)) return AttributeStatus::Ok;
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    if (text.empty()) return AttributeStatus::Malformed;
    double parsed = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(parsed))
        return AttributeStatus::Malformed;
    value = parsed;
    return AttributeStatus::Ok;
}

AttributeStatus ParseDoubleTerminated(const char* text, double& value) {
    if (ReadShortDecimal<true>(text, nullptr, value)) return AttributeStatus::Ok;
    return ParseDouble(std::string_view(text), value);
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

namespace {

// The numbers of a list, in a scratch list of the thread's that keeps its room: the result is then allocated
// once, at its size.
const std::vector<double>* ParseNumbers(std::string_view text) {
    thread_local std::vector<double> parsed;
    parsed.clear();
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
        if (ParseDouble(text.substr(start, i - start), value) != AttributeStatus::Ok) return nullptr;
        parsed.push_back(value);
    }
    return &parsed;
}

}  // namespace

AttributeStatus ParseNumberList(std::string_view text, std::vector<double>& values) {
    const std::vector<double>* parsed = ParseNumbers(text);
    if (!parsed) return AttributeStatus::Malformed;
    values.assign(parsed->begin(), parsed->end());
    return AttributeStatus::Ok;
}

AttributeStatus ParsePointList(std::string_view text, std::vector<vek::Vector2>& points) {
    const std::vector<double>* parsed = ParseNumbers(text);
    if (!parsed || parsed->size() % 2 != 0) return AttributeStatus::Malformed;
    points.resize(parsed->size() / 2);
    for (size_t i = 0; i < points.size(); ++i)
        points[i] = vek::Vector2((*parsed)[2 * i], (*parsed)[2 * i + 1]);
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

#include <orvia/ruvex/schema.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

namespace {

// The text of a double is exactly what to_chars writes: shortest, reading back bit for bit.
void ExpectSameText(double value) {
    char reference[64];
    auto [end, error] = std::to_chars(reference, reference + sizeof reference, value);
    ASSERT_EQ(error, std::errc());
    Ruvex::FormatBuffer buffer;
    ASSERT_EQ(Ruvex::detail::FormatDouble(value, buffer), std::string_view(reference, end))
        << std::hexfloat << value;
}

uint64_t Next(uint64_t& state) {
    state = state * 6364136223846793005ull + 1442695040888963407ull;
    return state >> 11;
}

}  // namespace

TEST(FormatDouble, SameTextAsToChars) {
    auto bothSigns = [](double v) {
        ExpectSameText(v);
        ExpectSameText(-v);
    };
    // Zeros and decimals that binary cannot hold.
    for (double v : {0.0, 1.0, 0.1, 0.3, 0.1 + 0.2, 1.0 / 3.0, 4.35, 2.675, 1.005, 123.456})
        bothSigns(v);
    // Where fixed and scientific notation trade places.
    for (double v : {1.9e-5, 1.2645e-4, 1e-7, 9.99e-8, 1e-8, 100.0, 1e6, 1234567.0, 1e14, 1e15})
        bothSigns(v);
    for (double v : {999999999999999.0, 999999999999999.9, 0x1p50, 0x1p50 - 1, 0x1p53})
        bothSigns(v);
    // The ends of the range, written directly.
    for (double v : {1.7976931348623157e308, 3.4028234663852886e38, std::numeric_limits<double>::denorm_min(),
                     std::numeric_limits<double>::min()})
        bothSigns(v);

    uint64_t state = 7;
    for (int i = 0; i < 300000; ++i) {
        // Decimals of every length and place, as files hold them.
        const auto digits = static_cast<int>(Next(state) % 17) + 1;
        const uint64_t mantissa = Next(state) % static_cast<uint64_t>(std::pow(10.0, digits));
        const auto places = static_cast<int>(Next(state) % 23);
        const double decimal = static_cast<double>(mantissa) / std::pow(10.0, places);
        ExpectSameText(i % 2 ? decimal : -decimal);
        // Integers with trailing zeros, which switch to scientific notation.
        ExpectSameText(static_cast<double>(mantissa % 1000) *
                       std::pow(10.0, static_cast<double>(places % 18)));
        // Any finite double.
        uint64_t bits = Next(state) << 11 | Next(state) % 2048;
        double any = 0;
        std::memcpy(&any, &bits, sizeof any);
        if (std::isfinite(any)) ExpectSameText(any);
        // Doubles next to short decimals.
        ExpectSameText(std::nextafter(decimal, 2 * decimal + 1));
        if (HasFatalFailure()) return;
    }
}

TEST(ParseDouble, SameValueAsFromChars) {
    // Whole text, an optional '+', finite: what from_chars makes of it, read from a view or from a parser's
    // buffer (ending at a NUL); same status, same bits.
    auto expectSame = [](const std::string& text) {
        std::string_view rest = text;
        if (!rest.empty() && rest.front() == '+') rest.remove_prefix(1);
        double reference = 0;
        auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), reference);
        const bool valid = !rest.empty() && error == std::errc() && end == rest.data() + rest.size() &&
                           std::isfinite(reference);
        const Ruvex::AttributeStatus expected =
            valid ? Ruvex::AttributeStatus::Ok : Ruvex::AttributeStatus::Malformed;
        double fromView = 1.25;
        double fromTerminated = 1.25;
        ASSERT_EQ(Ruvex::detail::ParseDouble(text, fromView), expected) << '"' << text << '"';
        ASSERT_EQ(Ruvex::detail::ParseDoubleTerminated(text.c_str(), fromTerminated), expected)
            << '"' << text << '"';
        if (!valid) reference = 1.25;  // left as it was
        ASSERT_EQ(std::memcmp(&fromView, &reference, sizeof(double)), 0) << '"' << text << '"';
        ASSERT_EQ(std::memcmp(&fromTerminated, &reference, sizeof(double)), 0) << '"' << text << '"';
    };
    // Signs, dots and exponents in and out of place; non-finite and padded text.
    for (const char* text :
         {"0",     "-0",    "0.0",    "-0.0", "1",    "+1", "+-1", "-",   "",     ".",     ".5", "-.5", "1.",
          "1.2.3", "00012", "007.50", "1e5",  "1E-5", "1e", "nan", "inf", "-inf", "1e999", " 1", "1 "})
        expectSame(text);
    // Hexadecimal is no number here; digit counts either side of what fits a double exactly.
    for (const char* text :
         {"0x10", "123456789012345", "1234567890123456", "12345678901234567", "0.123456789012345",
          "0.1234567890123456", "99999999999999.9", "999999999999999.9"})
        expectSame(text);
    for (const char* text :
         {"4.35", "2.675", "0.000000000000000000001", "0.0000000000000000000001", "1.7976931348623157e+308"})
        expectSame(text);

    uint64_t state = 11;
    Ruvex::FormatBuffer buffer;
    for (int i = 0; i < 200000; ++i) {
        const auto digits = static_cast<int>(Next(state) % 18) + 1;
        const uint64_t mantissa = Next(state) % static_cast<uint64_t>(std::pow(10.0, digits));
        const auto places = static_cast<int>(Next(state) % 24);
        std::string text = std::to_string(mantissa);
        if (places > 0) {
            text.insert(0, static_cast<size_t>(std::max(0, places + 1 - static_cast<int>(text.size()))), '0');
            text.insert(text.size() - static_cast<size_t>(places), ".");
        }
        expectSame(i % 2 ? "-" + text : text);
        uint64_t bits = Next(state) << 11 | Next(state) % 2048;
        double any = 0;
        std::memcpy(&any, &bits, sizeof any);
        if (std::isfinite(any)) expectSame(std::string(Ruvex::detail::FormatDouble(any, buffer)));
        if (HasFatalFailure()) return;
    }
}

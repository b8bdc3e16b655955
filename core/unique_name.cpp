// GCC 12 flags std::regex's own internals as maybe uninitialised at some optimisation levels (a false
// positive inside <regex>, seen with sanitizers at -O1).
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <orvia/core/unique_name.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <regex>

namespace Orvia {

namespace {

// A name that ends in digits preceded by something that is not a digit: "Road 12", "Road12".
const std::regex& NumberedName() {
    static const std::regex expression("(.*[^[:digit:]])([[:digit:]]+)$", std::regex::ECMAScript);
    return expression;
}

}  // namespace

std::string GetUniqueName(const std::string& requested, const std::vector<const std::string*>& names) {
    if (std::none_of(names.begin(), names.end(), [&](const std::string* n) { return *n == requested; }))
        return requested;

    std::smatch match;
    std::string base = requested;
    if (std::regex_match(requested, match, NumberedName())) base = match[1].str();
    if (!base.empty() && base.back() == ' ') base.pop_back();

    std::vector<int64_t> numbers;
    for (const std::string* name : names) {
        if (name->size() < base.size() || name->compare(0, base.size(), base) != 0) continue;
        if (!std::regex_match(*name, match, NumberedName())) continue;
        int32_t value = 0;
        const char* first = name->data() + match.position(2);
        const char* last = first + match.length(2);
        auto [end, error] = std::from_chars(first, last, value);
        if (error == std::errc() && end == last) numbers.push_back(value);
    }
    if (numbers.empty()) return requested + " 1";

    std::sort(numbers.begin(), numbers.end());
    for (size_t i = 0; i + 1 < numbers.size(); ++i)
        if (numbers[i + 1] - numbers[i] > 1) return base + " " + std::to_string(numbers[i] + 1);
    return base + " " + std::to_string(numbers.back() + 1);
}

}  // namespace Orvia

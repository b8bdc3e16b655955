#include <orvia/core/unique_name.h>

#include <algorithm>
#include <charconv>

namespace Orvia {

namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Where the trailing digits of a numbered name begin: the name is some text without a line break, one
// character that is not a digit, then digits to its end ("Road 12", "Road12"). kNone for any other name.
size_t NumberStart(std::string_view name) {
    size_t start = name.size();
    while (start > 0 && IsDigit(name[start - 1]))
        --start;
    if (start == name.size() || start == 0) return kNone;
    // The character before the digits may be anything, a line break included; what precedes it may not.
    for (size_t i = 0; i + 1 < start; ++i)
        if (name[i] == '\n' || name[i] == '\r') return kNone;
    return start;
}

// The number a numbered name carries; false when it has none or it does not fit a signed 32-bit integer.
bool TrailingNumber(std::string_view name, int64_t& value) {
    const size_t start = NumberStart(name);
    if (start == kNone) return false;
    int32_t parsed = 0;
    const char* last = name.data() + name.size();
    auto [end, error] = std::from_chars(name.data() + start, last, parsed);
    if (error != std::errc() || end != last) return false;
    value = parsed;
    return true;
}

// The requested name without its trailing number, then without one trailing blank.
std::string_view BaseOf(std::string_view requested) {
    const size_t start = NumberStart(requested);
    std::string_view base = start == kNone ? requested : requested.substr(0, start);
    if (!base.empty() && base.back() == ' ') base.remove_suffix(1);
    return base;
}

std::string Numbered(std::string_view base, int64_t number) {
    std::string name(base);
    name += ' ';
    name += std::to_string(number);
    return name;
}

}  // namespace

std::string GetUniqueName(const std::string& requested, const std::vector<const std::string*>& names) {
    if (std::none_of(names.begin(), names.end(), [&](const std::string* n) { return *n == requested; }))
        return requested;
    const std::string_view base = BaseOf(requested);
    std::vector<int64_t> numbers;
    for (const std::string* name : names) {
        int64_t value = 0;
        if (std::string_view(*name).starts_with(base) && TrailingNumber(*name, value))
            numbers.push_back(value);
    }
    if (numbers.empty()) return requested + " 1";
    // The smallest number above the smallest one in use that no name carries.
    std::sort(numbers.begin(), numbers.end());
    int64_t next = numbers.front() + 1;
    for (int64_t number : numbers)
        if (number == next) ++next;
    return Numbered(base, next);
}

// ---- UniqueNames

void UniqueNames::Numbers::Add(int64_t value) {
    if (++counts[value] > 1 || stale) return;
    if (value == counts.begin()->first) {
        stale = true;  // a new smallest number
    } else if (value == next) {
        auto it = counts.find(value);
        while (it != counts.end() && it->first == next) {
            ++next;
            ++it;
        }
    }
}

void UniqueNames::Numbers::Remove(int64_t value) {
    auto it = counts.find(value);
    if (it == counts.end() || --it->second > 0) return;
    counts.erase(it);
    stale = true;
}

int64_t UniqueNames::Numbers::Next() {
    if (stale && !counts.empty()) {
        auto it = counts.begin();
        next = it->first + 1;
        for (++it; it != counts.end() && it->first == next; ++it)
            ++next;
        stale = false;
    }
    return next;
}

template <class Apply>
void UniqueNames::ForEachBaseOf(std::string_view name, Apply apply) {
    if (m_bases.size() <= name.size() + 1) {
        for (auto& [base, numbers] : m_bases)
            if (name.starts_with(base)) apply(numbers);
        return;
    }
    for (size_t length = 0; length <= name.size(); ++length) {
        auto it = m_bases.find(name.substr(0, length));
        if (it != m_bases.end()) apply(it->second);
    }
}

void UniqueNames::Add(std::string_view name) {
    auto it = m_names.find(name);
    if (it == m_names.end())
        m_names.emplace(std::string(name), 1);
    else
        ++it->second;
    int64_t value = 0;
    if (!m_bases.empty() && TrailingNumber(name, value))
        ForEachBaseOf(name, [value](Numbers& numbers) { numbers.Add(value); });
}

void UniqueNames::Remove(std::string_view name) {
    auto it = m_names.find(name);
    if (it == m_names.end()) return;
    if (--it->second == 0) m_names.erase(it);
    int64_t value = 0;
    if (!m_bases.empty() && TrailingNumber(name, value))
        ForEachBaseOf(name, [value](Numbers& numbers) { numbers.Remove(value); });
}

void UniqueNames::Rename(std::string_view from, std::string_view to) {
    Remove(from);
    Add(to);
}

std::string UniqueNames::GetUnique(const std::string& requested) {
    if (!Contains(requested)) return requested;
    const std::string_view base = BaseOf(requested);
    auto found = m_bases.find(base);
    if (found == m_bases.end()) {
        // First time this base is asked for: the names that begin with it are one run of the sorted names.
        found = m_bases.emplace(std::string(base), Numbers{}).first;
        Numbers& numbers = found->second;
        for (auto it = m_names.lower_bound(base); it != m_names.end() && it->first.starts_with(base); ++it) {
            int64_t value = 0;
            if (TrailingNumber(it->first, value)) numbers.counts[value] += it->second;
        }
    }
    Numbers& numbers = found->second;
    if (numbers.counts.empty()) return requested + " 1";
    return Numbered(base, numbers.Next());
}

}  // namespace Orvia

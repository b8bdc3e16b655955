#pragma once

// The numbered-variant rule that keeps names unique inside one list (sub-networks, roads, junctions, and
// every list of a sub-network).

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace Orvia {

// A name for a new or renamed member of a list whose current names are `names`:
// - `requested` itself when no name equals it exactly;
// - otherwise the base (the requested name without its trailing digits, then without one trailing blank),
//   a blank and a number: the smallest n+1 above a gap in the numbers already carried by the names that begin
//   with the base and end in digits, or the largest such number + 1 when there is no gap;
// - `requested` + " 1" when no name carries a number.
// Numbers below the smallest one in use are never filled, and any name that merely begins with the base
// counts ("Roadster 9" makes a duplicate "Road" become "Road 10"). A name carries a number only when its
// trailing digits follow something that is not a digit and no line break comes before that; trailing numbers
// that do not fit a signed 32-bit integer are ignored.
std::string GetUniqueName(const std::string& requested, const std::vector<const std::string*>& names);

// The same over a list of pointer-like members with GetName(); null members are skipped.
template <class List>
std::string GetUniqueName(const std::string& requested, const List& list) {
    std::vector<const std::string*> names;
    names.reserve(list.size());
    for (const auto& item : list)
        if (item) names.push_back(&item->GetName());
    return GetUniqueName(requested, names);
}

// The names of one list, kept so that a series of renames costs O(log n) each rather than a pass over the
// list: GetUnique answers what GetUniqueName would for the names held. Remembers the numbers in use under
// each base asked for, and keeps them up to date as names come and go.
class UniqueNames {
public:
    UniqueNames() = default;
    template <class List>
    explicit UniqueNames(const List& list) {
        for (const auto& item : list)
            if (item) Add(item->GetName());
    }

    void Add(std::string_view name);
    // One occurrence; nothing when the name is not held.
    void Remove(std::string_view name);
    bool Contains(std::string_view name) const { return m_names.find(name) != m_names.end(); }
    std::string GetUnique(const std::string& requested);
    // Remove(from), then Add(to).
    void Rename(std::string_view from, std::string_view to);

private:
    // The trailing numbers carried by the held names that begin with one base, with their counts; `next` is
    // the smallest number above the smallest one that no name carries.
    struct Numbers {
        std::map<int64_t, uint32_t> counts;
        int64_t next = 0;
        bool stale = true;
        void Add(int64_t value);
        void Remove(int64_t value);
        int64_t Next();
    };
    // Calls `apply` for each remembered base that `name` begins with.
    template <class Apply>
    void ForEachBaseOf(std::string_view name, Apply apply);

    std::map<std::string, uint32_t, std::less<>> m_names;
    std::map<std::string, Numbers, std::less<>> m_bases;
};

// True when two non-null members bear the same non-empty name. Short lists are compared pairwise, so that the
// common case (short, no repeat) allocates nothing.
template <class List>
bool HasRepeatedName(const List& list) {
    const size_t n = list.size();
    if (n <= 16) {
        for (size_t i = 1; i < n; ++i)
            for (size_t j = 0; j < i; ++j)
                if (list[i] && list[j] && !list[i]->GetName().empty() &&
                    list[i]->GetName() == list[j]->GetName())
                    return true;
        return false;
    }
    std::unordered_set<std::string_view> seen;
    seen.reserve(n);
    for (size_t i = 0; i < n; ++i)
        if (list[i] && !list[i]->GetName().empty() && !seen.insert(list[i]->GetName()).second) return true;
    return false;
}

// Renames, in list order, each member whose (non-empty) name an earlier member bears, by the unique-name rule
// over the list as it stands at that moment; the earlier bearer keeps the name. Null members are skipped. A
// list with no repeated name is only read.
template <class List>
void MakeRepeatedNamesUnique(List& list) {
    if (!HasRepeatedName(list)) return;
    const size_t n = list.size();
    UniqueNames names(list);
    std::unordered_set<std::string_view> seen;  // views of names that no longer change
    seen.reserve(n);
    for (size_t i = 0; i < n; ++i) {
        const auto& item = list[i];
        if (!item || item->GetName().empty() || seen.insert(item->GetName()).second) continue;
        const std::string old = item->GetName();
        item->SetName(names.GetUnique(old));
        names.Rename(old, item->GetName());
        seen.insert(item->GetName());
    }
}

// One pass of the network's rule over `list`: a member without a name gets `defaultName` made unique (not
// remembered, so a later member may still bear that name); a member whose name an earlier member of the pass
// bore gets its name made unique. Null members are skipped. True when something was renamed.
template <class List>
bool NameBlankAndRepeated(List& list, const std::string& defaultName) {
    std::unordered_set<std::string_view> seen;  // views of names that no longer change
    seen.reserve(list.size());
    UniqueNames names;
    bool renamed = false;
    for (size_t i = 0; i < list.size(); ++i) {
        const auto& item = list[i];
        if (!item) continue;
        const bool blank = item->GetName().empty();
        if (!blank && seen.insert(item->GetName()).second) continue;
        // Nothing renamed yet: the list's names are still those it had.
        if (!renamed) names = UniqueNames(list);
        const std::string old = item->GetName();
        item->SetName(names.GetUnique(blank ? defaultName : old));
        names.Rename(old, item->GetName());
        if (!blank) seen.insert(item->GetName());
        renamed = true;
    }
    return renamed;
}

}  // namespace Orvia

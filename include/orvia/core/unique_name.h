#pragma once

// The numbered-variant rule that keeps names unique inside one list (sub-networks, roads, junctions, and
// every list of a sub-network).

#include <string>
#include <vector>

namespace Orvia {

// A name for a new or renamed member of a list whose current names are `names`:
// - `requested` itself when no name equals it exactly;
// - otherwise the base (the requested name without its trailing digits, then without one trailing blank),
//   a blank and a number: the smallest n+1 above a gap in the numbers already carried by the names that begin
//   with the base and end in digits, or the largest such number + 1 when there is no gap;
// - `requested` + " 1" when no name carries a number.
// Numbers below the smallest one in use are never filled, and any name that merely begins with the base
// counts ("Roadster 9" makes a duplicate "Road" become "Road 10"). Trailing numbers that do not fit a signed
// 32-bit integer are ignored.
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

}  // namespace Orvia

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ruvex {

// Bumped by every rename of a named element, so that name indices know when they may be stale.
uint64_t NameGeneration();
void BumpNameGeneration();

// An ordered list whose members (pointer-like, with GetName()) can be found by name. Lookups return the first
// member in list order that bears the name exactly. The index is kept right through appends, insertions,
// removals and renames of members: structural edits in the middle and renames anywhere mark it stale, and the
// next lookup rebuilds. Lets name indices be searched with a string_view without building a std::string.
struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
};

template <class Ptr>
class HashVector {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    using iterator = typename std::vector<Ptr>::iterator;
    using const_iterator = typename std::vector<Ptr>::const_iterator;

    size_t size() const { return m_items.size(); }
    bool empty() const { return m_items.empty(); }
    const Ptr& operator[](size_t i) const { return m_items[i]; }
    const Ptr& at(size_t i) const { return m_items.at(i); }
    const_iterator begin() const { return m_items.begin(); }
    const_iterator end() const { return m_items.end(); }
    const Ptr& back() const { return m_items.back(); }
    const std::vector<Ptr>& items() const { return m_items; }

    void push_back(Ptr item) {
        if (!m_stale && m_generation == NameGeneration() && item)
            m_index.emplace(std::string(item->GetName()), m_items.size());
        m_items.push_back(std::move(item));
    }
    // Inserts before `index`; an index at or past the end appends.
    void insert(size_t index, Ptr item) {
        if (index >= m_items.size()) return push_back(std::move(item));
        m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(index), std::move(item));
        m_stale = true;
    }
    // Returns false when the index is out of range.
    bool erase(size_t index) {
        if (index >= m_items.size()) return false;
        m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(index));
        m_stale = true;
        return true;
    }
    void set(size_t index, Ptr item) {
        if (index >= m_items.size()) return;
        m_items[index] = std::move(item);
        m_stale = true;
    }
    void pop_back() {
        m_items.pop_back();
        m_stale = true;
    }
    void clear() {
        m_items.clear();
        m_index.clear();
        m_stale = false;
    }
    void reserve(size_t n) { m_items.reserve(n); }

    // Position of the first member named `name`, or npos.
    size_t find(std::string_view name) const {
        Refresh();
        auto it = m_index.find(name);
        return it == m_index.end() ? npos : it->second;
    }
    bool contains(std::string_view name) const { return find(name) != npos; }
    // Position of `item` (pointer comparison), or npos.
    template <class Raw>
    size_t indexOf(const Raw* item) const {
        for (size_t i = 0; i < m_items.size(); ++i)
            if (m_items[i].Get() == item) return i;
        return npos;
    }

private:
    void Refresh() const {
        uint64_t generation = NameGeneration();
        if (!m_stale && generation == m_generation) return;
        m_index.clear();
        for (size_t i = 0; i < m_items.size(); ++i)
            if (m_items[i]) m_index.emplace(std::string(m_items[i]->GetName()), i);
        m_generation = generation;
        m_stale = false;
    }

    std::vector<Ptr> m_items;
    mutable std::unordered_map<std::string, size_t, NameHash, std::equal_to<>> m_index;
    mutable uint64_t m_generation = 0;
    mutable bool m_stale = true;
};

}  // namespace Ruvex

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ruvex {

// Bumped by every rename of a named element, so that name indices know when they may be stale.
uint64_t NameGeneration();
void BumpNameGeneration();

// An ordered list whose members (pointer-like, with GetName()) can be found by name. Lookups return the first
// member in list order that bears the name exactly. Short lists are searched in order; a longer one builds a
// name index on its first lookup, kept right through appends, insertions, removals and renames of members:
// structural edits in the middle and renames anywhere mark it stale, and the next lookup rebuilds. The index
// sits behind a pointer, so that a list that is never searched costs three words and one pointer.
struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
};

template <class Ptr>
class HashVector {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);
    // Lists up to this long are searched member by member: cheaper than hashing, and no index to keep.
    static constexpr size_t kLinearSearchMax = 16;

    using iterator = typename std::vector<Ptr>::iterator;
    using const_iterator = typename std::vector<Ptr>::const_iterator;

    HashVector() = default;
    HashVector(const HashVector& other) : m_items(other.m_items) {}
    HashVector(HashVector&&) noexcept = default;
    HashVector& operator=(const HashVector& other) {
        if (this != &other) {
            m_items = other.m_items;
            m_index.reset();
        }
        return *this;
    }
    HashVector& operator=(HashVector&&) noexcept = default;

    size_t size() const { return m_items.size(); }
    bool empty() const { return m_items.empty(); }
    const Ptr& operator[](size_t i) const { return m_items[i]; }
    const Ptr& at(size_t i) const { return m_items.at(i); }
    const_iterator begin() const { return m_items.begin(); }
    const_iterator end() const { return m_items.end(); }
    const Ptr& back() const { return m_items.back(); }
    const std::vector<Ptr>& items() const { return m_items; }

    void push_back(Ptr item) {
        if (m_index && !m_index->stale && m_index->generation == NameGeneration() && item)
            m_index->positions.emplace(std::string(item->GetName()), m_items.size());
        m_items.push_back(std::move(item));
    }
    // Inserts before `index`; an index at or past the end appends.
    void insert(size_t index, Ptr item) {
        if (index >= m_items.size()) return push_back(std::move(item));
        m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(index), std::move(item));
        MarkStale();
    }
    // Returns false when the index is out of range.
    bool erase(size_t index) {
        if (index >= m_items.size()) return false;
        m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(index));
        MarkStale();
        return true;
    }
    void set(size_t index, Ptr item) {
        if (index >= m_items.size()) return;
        m_items[index] = std::move(item);
        MarkStale();
    }
    void pop_back() {
        m_items.pop_back();
        MarkStale();
    }
    void clear() {
        m_items.clear();
        m_index.reset();
    }
    void reserve(size_t n) { m_items.reserve(n); }

    // Position of the first member named `name`, or npos.
    size_t find(std::string_view name) const {
        if (m_items.size() <= kLinearSearchMax) {
            for (size_t i = 0; i < m_items.size(); ++i)
                if (m_items[i] && m_items[i]->GetName() == name) return i;
            return npos;
        }
        Refresh();
        auto it = m_index->positions.find(name);
        return it == m_index->positions.end() ? npos : it->second;
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
    struct Index {
        std::unordered_map<std::string, size_t, NameHash, std::equal_to<>> positions;
        uint64_t generation = 0;
        bool stale = true;
    };

    void MarkStale() {
        if (m_index) m_index->stale = true;
    }
    void Refresh() const {
        if (!m_index) m_index = std::make_unique<Index>();
        const uint64_t generation = NameGeneration();
        if (!m_index->stale && generation == m_index->generation) return;
        m_index->positions.clear();
        for (size_t i = 0; i < m_items.size(); ++i)
            if (m_items[i]) m_index->positions.emplace(std::string(m_items[i]->GetName()), i);
        m_index->generation = generation;
        m_index->stale = false;
    }

    std::vector<Ptr> m_items;
    mutable std::unique_ptr<Index> m_index;
};

}  // namespace Ruvex

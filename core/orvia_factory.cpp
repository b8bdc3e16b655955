// The tag-to-class table: which runtime object stands for each tag of a file.

#include <orvia/core/orvia_factory.h>
#include <orvia/core/user_data.h>

#include <string_view>
#include <unordered_map>

namespace Orvia {

namespace {

using Creator = Ruvex::Element* (*)();

struct Entry {
    std::string_view tag;
    Creator create;
};

template <class T>
Entry Make(std::string_view tag) {
    return Entry{tag, [] { return static_cast<Ruvex::Element*>(new T); }};
}

// For classes that keep the tag they were made for; the tag is fixed at compile time.
template <class T, const char* Tag>
Entry Tagged() {
    return Entry{Tag, [] { return static_cast<Ruvex::Element*>(new T(Tag)); }};
}

// In the order of the rule: when a tag appears twice, the first entry wins.
const std::vector<Entry>& Table() {
    static const std::vector<Entry> table = {
        Make<QuenbelDataElement>("QuenbelData"),
    };
    return table;
}

}  // namespace

Ruvex::Element* OrviaFactory::Create(const std::string& tag) {
    static const std::unordered_map<std::string_view, Creator> index = [] {
        std::unordered_map<std::string_view, Creator> map;
        for (const Entry& entry : Table())
            map.emplace(entry.tag, entry.create);
        return map;
    }();
    auto it = index.find(tag);
    if (it != index.end()) return it->second();
    return Ruvex::Factory::Create(tag);
}

}  // namespace Orvia

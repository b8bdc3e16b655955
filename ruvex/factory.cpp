#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/schema.h>

#include <unordered_map>

namespace Ruvex {

namespace {

CountedPtr<Factory>& InstalledFactory() {
    static CountedPtr<Factory> factory;
    return factory;
}

Factory& BaseFactory() {
    static Factory* factory = [] {
        auto* f = new Factory;
        f->AddRef();  // kept for the life of the process
        return f;
    }();
    return *factory;
}

}  // namespace

Element* Factory::Create(const std::string& tag) {
    static const std::unordered_map<std::string_view, Element* (*)()> registry = [] {
        std::unordered_map<std::string_view, Element* (*)()> map;
        for (const DataClassInfo& info : DataClasses())
            map.emplace(info.tag, info.create);
        return map;
    }();
    auto it = registry.find(tag);
    if (it != registry.end()) return it->second();
    return new GenericElement(tag);
}

Factory* GetFactory() {
    return InstalledFactory().Get();
}

void SetFactory(Factory* factory) {
    InstalledFactory() = factory;
}

Element* CreateElement(const std::string& tag) {
    Factory* factory = InstalledFactory().Get();
    return factory ? factory->Create(tag) : BaseFactory().Create(tag);
}

std::string ToString(const Problem& problem) {
    std::string text = problem.file.empty() ? std::string("<input>") : problem.file;
    if (problem.line > 0) text += ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column);
    return text + (problem.warning ? ": warning: " : ": ") + problem.message;
}

}  // namespace Ruvex

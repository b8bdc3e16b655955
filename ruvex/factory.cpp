#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/schema.h>

#include <atomic>
#include <unordered_map>

namespace Ruvex {

namespace {

std::atomic<uint64_t> g_factoryEpoch{1};

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

Element* (*Factory::FindCreator(std::string_view) const)() {
    return nullptr;
}

Factory* GetFactory() {
    return InstalledFactory().Get();
}

void SetFactory(Factory* factory) {
    InstalledFactory() = factory;
    g_factoryEpoch.fetch_add(1, std::memory_order_release);
}

uint64_t FactoryEpoch() {
    return g_factoryEpoch.load(std::memory_order_acquire);
}

Element* (*FactoryCreators::Get(const Factory& factory, const std::vector<std::string_view>& tags,
                                size_t index))() {
    const uint64_t epoch = FactoryEpoch();
    if (m_epoch.load(std::memory_order_acquire) != epoch) {
        // Loads on other threads under the same factory may fill it too, with the same answers.
        for (size_t i = 0; i < tags.size(); ++i)
            m_creators[i].store(factory.FindCreator(tags[i]), std::memory_order_relaxed);
        m_epoch.store(epoch, std::memory_order_release);
    }
    return m_creators[index].load(std::memory_order_relaxed);
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

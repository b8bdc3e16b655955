#include <orvia/ruvex/counted.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/hash_vector.h>

#include <gtest/gtest.h>

using namespace Ruvex;

namespace {
struct Tracked : CountedObject {
    explicit Tracked(int* deaths) : deaths(deaths) {}
    ~Tracked() override { ++*deaths; }
    int* deaths;
};
}  // namespace

TEST(CountedPtr, OwnershipRules) {
    int deaths = 0;
    auto* a = new Tracked(&deaths);
    EXPECT_EQ(a->GetRefCount(), 0u);
    {
        CountedPtr<Tracked> p(a);
        EXPECT_EQ(a->GetRefCount(), 1u);
        CountedPtr<Tracked> q = p;
        EXPECT_EQ(a->GetRefCount(), 2u);
        p = p;  // self-assignment keeps the object
        EXPECT_EQ(a->GetRefCount(), 2u);
        q = nullptr;
        EXPECT_EQ(a->GetRefCount(), 1u);
        CountedPtr<Tracked> moved = std::move(p);
        EXPECT_FALSE(p);
        EXPECT_EQ(a->GetRefCount(), 1u);
    }
    EXPECT_EQ(deaths, 1);

    // Assigning an object that only the old one keeps alive must not destroy it first.
    struct Holder : CountedObject {
        CountedPtr<CountedObject> inner;
    };
    int innerDeaths = 0;
    CountedPtr<CountedObject> slot(new Holder);
    static_cast<Holder*>(slot.Get())->inner = new Tracked(&innerDeaths);
    slot = static_cast<Holder*>(slot.Get())->inner.Get();
    EXPECT_EQ(innerDeaths, 0);
    slot = nullptr;
    EXPECT_EQ(innerDeaths, 1);
}

// Short lists are searched in order, longer ones through their index: both run the same edits.
TEST(HashVector, IndexFollowsEdits) {
    for (const size_t filler : {size_t(0), HashVector<CountedPtr<RoadElement>>::kLinearSearchMax}) {
        SCOPED_TRACE(filler);
        HashVector<CountedPtr<RoadElement>> roads;
        auto make = [](const char* name) {
            auto* r = new RoadElement;
            r->SetName(name);
            return r;
        };
        RoadElement* b = make("B");
        roads.push_back(make("A"));
        roads.push_back(b);
        roads.push_back(make("A"));
        for (size_t i = 0; i < filler; ++i)
            roads.push_back(make("filler"));
        EXPECT_EQ(roads.find("A"), 0u);  // first of two
        EXPECT_EQ(roads.find("B"), 1u);
        EXPECT_EQ(roads.find("C"), HashVector<CountedPtr<RoadElement>>::npos);

        roads.insert(0, make("C"));
        EXPECT_EQ(roads.find("C"), 0u);
        EXPECT_EQ(roads.find("B"), 2u);

        b->SetName("Bee");
        EXPECT_EQ(roads.find("B"), HashVector<CountedPtr<RoadElement>>::npos);
        EXPECT_EQ(roads.find("Bee"), 2u);

        EXPECT_TRUE(roads.erase(1));  // the first "A"
        EXPECT_EQ(roads.find("A"), 2u);
        EXPECT_FALSE(roads.erase(1000));
        EXPECT_EQ(roads.indexOf(b), 1u);
    }
}

#include <orvia/ruvex/counted.h>

#include <vector>

namespace Ruvex {

namespace {

// Each nested destruction takes a handful of stack frames; this many stay far below any thread's stack, and
// no tree a file can hold nests deeper (loading refuses deeper documents), so for those nothing is ever
// deferred.
constexpr size_t kMaxNestedDestructions = 256;

thread_local size_t t_nested = 0;
thread_local std::vector<CountedObject*> t_deferred;

}  // namespace

void CountedObject::Destroy(CountedObject* object) {
    if (t_nested >= kMaxNestedDestructions) {
        t_deferred.push_back(object);
        return;
    }
    ++t_nested;
    delete object;
    // The outermost destruction finishes what deeper ones deferred; those may defer more in turn.
    if (t_nested == 1) {
        while (!t_deferred.empty()) {
            CountedObject* next = t_deferred.back();
            t_deferred.pop_back();
            delete next;
        }
    }
    --t_nested;
}

}  // namespace Ruvex

#include <orvia/ruvex/counted.h>

#include <cstdint>

namespace Ruvex {

namespace {

// Each nested destruction takes a handful of stack frames; this many stay far below any thread's stack, and
// no tree a file can hold nests deeper (loading refuses deeper documents), so for those nothing is ever
// deferred.
constexpr size_t kMaxNestedDestructions = 256;

thread_local size_t t_nested = 0;
// Objects waiting for deletion, linked through their count (0 and unused once released): deferring allocates
// nothing, so it cannot fail inside a destructor.
thread_local CountedObject* t_deferred = nullptr;

}  // namespace

void CountedObject::Destroy(CountedObject* object) {
    if (t_nested >= kMaxNestedDestructions) {
        object->m_refCount = reinterpret_cast<uintptr_t>(t_deferred);
        t_deferred = object;
        return;
    }
    ++t_nested;
    delete object;
    // The outermost destruction finishes what deeper ones deferred; those may defer more in turn.
    if (t_nested == 1) {
        while (CountedObject* next = t_deferred) {
            t_deferred = reinterpret_cast<CountedObject*>(static_cast<uintptr_t>(next->m_refCount));
            next->m_refCount = 0;
            delete next;
        }
    }
    --t_nested;
}

}  // namespace Ruvex

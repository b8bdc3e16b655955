#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace Ruvex {

// Root of every model element and of the factory. The count is plain (not atomic): an element tree belongs to
// one thread at a time. A new object has count 0; whoever first stores it in a CountedPtr takes the first
// reference.
class CountedObject {
public:
    CountedObject() = default;
    // A copy is a new object: it starts unowned whatever the count of the original.
    CountedObject(const CountedObject&) noexcept {}
    CountedObject& operator=(const CountedObject&) noexcept { return *this; }
    virtual ~CountedObject() = default;

    // Returns the new count.
    virtual uint64_t AddRef() { return ++m_refCount; }
    // Returns the new count; destroys the object when it reaches 0 (also when releasing an object never
    // referenced).
    virtual uint64_t Release() {
        if (m_refCount <= 1) {
            m_refCount = 0;
            Destroy(this);
            return 0;
        }
        return --m_refCount;
    }
    virtual void SetRefCount(size_t count) { m_refCount = count; }

    uint64_t GetRefCount() const { return m_refCount; }

private:
    // Deletes `object`. Below a few hundred nested destructors it deletes at once; deeper, the deletion waits
    // until the outermost destructor returns, so that a chain of any length is destroyed within a bounded
    // stack.
    static void Destroy(CountedObject* object);

    uint64_t m_refCount = 0;
};

// Intrusive owning pointer. Assignment references the new object before releasing the old one, so
// self-assignment and assigning a child of the old object are safe. A null CountedPtr is valid.
template <class T>
class CountedPtr {
public:
    using element_type = T;

    CountedPtr() noexcept = default;
    CountedPtr(std::nullptr_t) noexcept {}
    CountedPtr(T* object) : m_object(object) {
        if (m_object) m_object->AddRef();
    }
    CountedPtr(const CountedPtr& other) : CountedPtr(other.m_object) {}
    CountedPtr(CountedPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    template <class U>
    CountedPtr(const CountedPtr<U>& other) : CountedPtr(other.Get()) {}
    ~CountedPtr() {
        if (m_object) m_object->Release();
    }

    CountedPtr& operator=(const CountedPtr& other) { return *this = other.m_object; }
    CountedPtr& operator=(CountedPtr&& other) noexcept {
        if (this != &other) {
            T* old = std::exchange(m_object, std::exchange(other.m_object, nullptr));
            if (old) old->Release();
        }
        return *this;
    }
    CountedPtr& operator=(T* object) {
        if (object) object->AddRef();
        T* old = std::exchange(m_object, object);
        if (old) old->Release();
        return *this;
    }

    T* Get() const noexcept { return m_object; }
    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }
    void Reset() { *this = nullptr; }

    friend bool operator==(const CountedPtr& a, const CountedPtr& b) noexcept {
        return a.m_object == b.m_object;
    }
    friend bool operator==(const CountedPtr& a, const T* b) noexcept { return a.m_object == b; }
    friend bool operator==(const CountedPtr& a, std::nullptr_t) noexcept { return a.m_object == nullptr; }

private:
    T* m_object = nullptr;
};

}  // namespace Ruvex

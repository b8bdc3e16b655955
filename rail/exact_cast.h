// Private to the rail module.
#pragma once

#include <typeinfo>

namespace Rail::detail {

// The exact type needs no search of the hierarchy; queries ask for the curves at every call.
template <class T, class Record>
T* As(Record* record) {
    if (!record) return nullptr;
    return typeid(*record) == typeid(T) ? static_cast<T*>(record) : dynamic_cast<T*>(record);
}

}  // namespace Rail::detail

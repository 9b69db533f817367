// A process-wide object that is never destroyed: the reports made while the process ends, and code
// that still runs then, find it intact.
#pragma once

namespace host {

template <class T>
union Immortal {
    constexpr Immortal() : value() {}
    constexpr ~Immortal() {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T* operator->() { return &value; }
    T& operator*() { return value; }

    T value;
};

}  // namespace host

#pragma once

#include "parallel/memory/aligned_malloc.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Polynomials {

/// Storage at 64-byte boundaries between guard words. A guard that was overwritten ends the process when the storage is
/// given back: the heap can't be trusted then, and a destructor can't report it.
template <class T>
struct GuardedAllocator {
    using value_type = T;

    GuardedAllocator() = default;
    template <class U>
    GuardedAllocator(const GuardedAllocator<U>&) {}

    T* allocate(std::size_t count) { return static_cast<T*>(zvp::aligned_malloc(count * sizeof(T), 64)); }
    void deallocate(T* storage, std::size_t) noexcept { zvp::aligned_free(storage); }

    template <class U>
    bool operator==(const GuardedAllocator<U>&) const {
        return true;
    }
};

using GuardedWords = std::vector<std::uint64_t, GuardedAllocator<std::uint64_t>>;

} // namespace Polynomials

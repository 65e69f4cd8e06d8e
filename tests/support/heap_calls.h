#pragma once
// How often a thread takes memory from the heap. For one source of a test program: it brings the C library's functions
// itself, in which operator new ends too. A sanitizer has a heap of its own; tests of this kind are left out there.

#ifndef ZORVANE_SANITIZED

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

namespace test {
inline thread_local std::size_t heap_calls = 0;
}

extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* p, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);

void* malloc(std::size_t bytes) { return ++test::heap_calls, __libc_malloc(bytes); }
void* calloc(std::size_t count, std::size_t bytes) { return ++test::heap_calls, __libc_calloc(count, bytes); }
void* realloc(void* p, std::size_t bytes) { return ++test::heap_calls, __libc_realloc(p, bytes); }
void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return ++test::heap_calls, __libc_memalign(alignment, bytes);
}
}

namespace test {

/// The heap calls of work() on this thread. Fails if one of its own isn't counted.
template <class Work>
std::size_t heap_calls_of(Work&& work) {
    const std::size_t before = heap_calls;
    work();
    const std::size_t calls = heap_calls - before;
    ::operator delete(::operator new(1));
    EXPECT_EQ(heap_calls, before + calls + 1) << "the heap isn't counted";
    return calls;
}

} // namespace test

#endif

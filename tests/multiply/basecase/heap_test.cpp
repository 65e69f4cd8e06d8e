// No heap on any path of the smallest products. A sanitizer has a malloc of its own.
#ifndef ZORVANE_SANITIZED

#include "multiply/basecase/mulb.h"
#include "support/heap_calls.h"

#include <vector>

namespace {

using namespace zvp;

template <class Word>
void call_everything(const Word* A, std::size_t a, const Word* B, std::size_t b, Word* T, void* S) {
    MULB::sqrB(A, b, T);
    MULB::elmB(A, B, b, T);
    MULB::mulB(A, a, B, b, T);
    MULB::sqr(A, b, T, S);
    MULB::elm(A, B, b, T, S);
    MULB::mul(A, a, B, b, T, S);
}

TEST(BasecaseHeap, CallsNoHeapOnAnyPath) {
    constexpr std::size_t longest = 601;
    const std::vector<c32i> x32(longest, 7);
    const std::vector<c64i> x64(longest, 7);
    std::vector<c32i> t32(2 * longest);
    std::vector<c64i> t64(2 * longest), scratch(MULB::mul_scratch(2 * longest) / 8 + 1);

    call_everything(x64.data(), 1, x64.data(), 1, t64.data(), scratch.data()); // the choice of the set, once
    const std::size_t calls = test::heap_calls_of([&] {
        for (const std::size_t a : {1, 7, 64, 131, 600, 601})
            for (const std::size_t b : {1, 7, 64, 131, 600, 601}) {
                if (a < b) continue;
                call_everything(x32.data(), a, x32.data(), b, t32.data(), scratch.data());
                call_everything(x64.data(), a, x64.data(), b, t64.data(), scratch.data());
            }
    });
    EXPECT_EQ(calls, 0u);
}

} // namespace

#endif

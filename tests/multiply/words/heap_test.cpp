// No heap on any path of word arithmetic. A sanitizer has a malloc of its own.
#ifndef ZORVANE_SANITIZED

#include "multiply/words/limb_kernels.h"
#include "multiply/words/parallel_words.h"
#include "multiply/words/shoup_divider.h"

#include "operands.h"
#include "support/heap_calls.h"

namespace {

using namespace zvp;

template <class Word>
void call_everything(Word* T, const Word* A, const Word* B, std::size_t n, const ParallelContext& ctx) {
    const ShoupDivider<Word> D(7);
    bp_copy(T, A, n * sizeof(Word), ctx);
    bp_fill(T, n, Word{1}, ctx);
    bp_not(T, A, n, ctx);
    bp_add(T, A, B, n, true, ctx); // B is the complement of A: the carry runs through everything
    bp_sub(T, A, A, n, true, ctx);
    bp_mul_word(T, A, n, Word{3}, Word{1}, ctx);
    bp_fill(T, n, test::ones<Word>, ctx);
    bp_add_carry(1, T, n, ctx);
    bp_scan_top(Word{0}, T, n, ctx);
    bp_hash(1, T, n, ctx);
    bp_div_ex(D, T, n, Word{6}, ctx);
    bp_div_np(D, T, A, n, Word{6}, ctx);
}

TEST(WordArithmetic, CallsNoHeapOnAnyPath) {
    constexpr std::size_t n = 200'003;
    std::mt19937_64 random(test::seed());
    const auto framework = make_framework_config("none")->make_framework();
    const auto a = test::piecewise<c32i>(random, n);
    test::Words<c32i> b(n), t(n);
    for (std::size_t i = 0; i < n; ++i) b[i] = ~a[i];
    test::Words<c64i> a64(a.begin(), a.end()), b64(n), t64(n);
    for (std::size_t i = 0; i < n; ++i) b64[i] = ~a64[i];

    limb_kernels(); // the choice of the set, once in a process
    const std::size_t calls = test::heap_calls_of([&] {
        for (const std::uint32_t tds : {1u, 64u}) {
            const ParallelContext ctx{tds, framework.get()};
            call_everything(t.data(), a.data(), b.data(), n, ctx);
            call_everything(t64.data(), a64.data(), b64.data(), n, ctx);
            const WordWindow x{a.data(), n, 0}, y{b.data(), n, 100};
            bp_uadd_window(t.data(), ctx, true, x, y, 0, n);
            bp_usub_window(t.data(), ctx, true, x, y, 0, n);
        }
    });
    EXPECT_EQ(calls, 0u);
}

} // namespace

#endif

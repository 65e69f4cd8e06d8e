#pragma once
// Word arithmetic on long arrays: each function decides from the length and the context's task decomposition whether to
// cut the array into blocks that run as tasks. Results are those of the serial loops.
//
// Blocks start on cache lines of the target (its words up to the next 64-byte boundary are done first, serially), are
// multiples of 64 bytes long, and are at most 64, so that what they report fits tables on the stack; bp_copy, bp_fill
// and bp_not, which report nothing, take as many as the decomposition names. Nothing here allocates.
// In a dry run (parallel/memory/dry_run.h) nothing is touched: no carry or borrow comes out, a high word does, and no top
// word is dropped.
// Lengths are in words. A target may be one of the operands (the same start), but may not overlap one otherwise.

#include "digits/hash/word_hash.h"
#include "multiply/words/word_types.h"
#include "multiply/words/word_window.h"
#include "parallel/tasks/parallel_framework.h"

namespace zvp {

/// Copies bytes; T and A don't overlap.
void bp_copy(void* T, const void* A, std::size_t bytes, const ParallelContext& ctx);

/// Sets n words to `word`.
void bp_fill(c32i* T, std::size_t n, c32i word, const ParallelContext& ctx);
void bp_fill(c64i* T, std::size_t n, c64i word, const ParallelContext& ctx);

/// T = the complement of each word of A.
void bp_not(c32i* T, const c32i* A, std::size_t n, const ParallelContext& ctx);
void bp_not(c64i* T, const c64i* A, std::size_t n, const ParallelContext& ctx);

/// T = A + B + carry; returns the carry out of the top.
bool bp_add(c32i* T, const c32i* A, const c32i* B, std::size_t n, bool carry, const ParallelContext& ctx);
bool bp_add(c64i* T, const c64i* A, const c64i* B, std::size_t n, bool carry, const ParallelContext& ctx);

/// T = A - B - borrow; returns the borrow out of the top.
bool bp_sub(c32i* T, const c32i* A, const c32i* B, std::size_t n, bool borrow, const ParallelContext& ctx);
bool bp_sub(c64i* T, const c64i* A, const c64i* B, std::size_t n, bool borrow, const ParallelContext& ctx);

/// T[0 .. hi - lo) = the window [lo, hi) of A + the same window of B + carry; returns the carry out of the top.
/// T doesn't overlap A or B.
bool bp_uadd_window(wtype* T, const ParallelContext& ctx, bool carry, const WordWindow& A, const WordWindow& B,
                    std::int64_t lo, std::int64_t hi);

/// T[0 .. hi - lo) = the window [lo, hi) of A - the same window of B - borrow; returns the borrow out of the top.
/// T doesn't overlap A or B.
bool bp_usub_window(wtype* T, const ParallelContext& ctx, bool borrow, const WordWindow& A, const WordWindow& B,
                    std::int64_t lo, std::int64_t hi);

/// T = A * x + carry; returns the high word.
c32i bp_mul_word(c32i* T, const c32i* A, std::size_t n, c32i x, c32i carry, const ParallelContext& ctx);
c64i bp_mul_word(c64i* T, const c64i* A, std::size_t n, c64i x, c64i carry, const ParallelContext& ctx);

/// Adds the small signed value c at T[0] and ripples; returns what leaves the top: +1, 0 or -1.
int bp_add_carry(int c, c32i* T, std::size_t n, const ParallelContext& ctx);
int bp_add_carry(int c, c64i* T, std::size_t n, const ParallelContext& ctx);

/// The length that T has without the top words equal to `word`.
std::size_t bp_scan_top(c32i word, const c32i* T, std::size_t n, const ParallelContext& ctx);
std::size_t bp_scan_top(c64i word, const c64i* T, std::size_t n, const ParallelContext& ctx);

/// h continued over the n words at T, most significant first, modulo 2^61 - 1 (digits/hash/word_hash.h); a c64i word counts
/// as two c32i words.
inline std::uint64_t bp_hash(std::uint64_t h, const c32i* T, std::size_t n, const ParallelContext& ctx) {
    return hash_words_parallel(h, T, n, ctx.framework, ctx.tds);
}
inline std::uint64_t bp_hash(std::uint64_t h, const c64i* T, std::size_t n, const ParallelContext& ctx) {
    return hash_words_parallel(h, T, n, ctx.framework, ctx.tds);
}

} // namespace zvp

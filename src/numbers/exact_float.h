#pragma once
// Signed numbers that are always exact: a mantissa of whole words, a word-granular exponent, no precision. They carry
// the residue of their value modulo p = 2^61 - 1.
//
// A number is a view of storage that somebody else owns; copying it copies the view. No operation allocates.
// The value is (sign ? +1 : -1) * sum of T[i] * W^(i + exp), i < L, with W = 2^w, w the bits of a Word; lengths,
// capacities and exponents are in words.
//
// The residue of a result comes from the residues of the operands (2 has an inverse modulo p, so that negative exponents
// have one too), never from its words: a word that was damaged, or that an operation got wrong, shows when somebody
// compares `hash` with residue(). The residue of a zero goes on like any other: were a damaged difference to vanish, its
// hash would still tell, in every sum and product that it enters.
//
// In-place sums grow into the storage on both sides: the words of `buffer` below T take lower positions, those above the
// top word higher ones.

#include "multiply/contract/multiply_parameters.h"
#include "multiply/words/word_types.h"
#include "numbers/basic_int.h"
#include "parallel/memory/dry_run.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Fields as described above, with these invariants: T and T + L lie in [buffer, buffer + capacity]; the top word
/// T[L - 1] isn't zero, low words may be; of a zero (L = 0), sign and exp tell nothing. Any number congruent to the
/// value is a good `hash` as long as it is below 2^62, which the results are. Exponents stay within [-2^61, 2^61) (the
/// code above sees to that).
///
/// Every set_ operation overwrites the number from the start of its buffer. Operands may not lie in the storage of the
/// target; A and B may be the same number. Where the capacity is less than an operation's comment says, it throws
/// BufferTooSmallException with its name before a word is written. `pars` and `ctx` name the task decomposition; products
/// also take their scratch from `pars` (see multiply/tables/multiply.h for what they throw).
template <class WordKind>
class ExactFloat {
public:
    using Word = WordKind;
    static constexpr unsigned w = word_bits<Word>;

    /// Products of fewer words than this come straight from the schoolbook loops and need no scratch.
    static constexpr std::size_t basecase_clen = 20;

    Word* T = nullptr;
    std::size_t L = 0;
    std::int64_t exp = 0;
    bool sign = false;
    std::uint64_t hash = 0;
    Word* buffer = nullptr;
    std::size_t capacity = 0;

    /// A zero without storage.
    ExactFloat() = default;

    /// A zero on `capacity_` words of storage.
    ExactFloat(Word* buffer_, std::size_t capacity_) : T(buffer_), buffer(buffer_), capacity(capacity_) {}

    /// A copy of A. Its low zero words become exponent, and the words below T stay free for in-place sums. Capacity: A.L.
    void set_BasicInt(const ParallelContext& ctx, const BasicInt<Word>& A);

    /// A copy of A. Capacity: A.L.
    void set_ExactFloat(const ParallelContext& ctx, const ExactFloat& A);
    void set_ExactFloat(const ExactFloat& A) { set_ExactFloat(ParallelContext{}, A); }

    /// A + B. Capacity: the words from the lower exp to the higher top, and one more; for a zero operand as
    /// set_ExactFloat(). Throws InvalidParametersException where the signs differ: add_ip() is for these.
    void set_add(const ParallelContext& ctx, const ExactFloat& A, const ExactFloat& B);

    /// A * B. Capacity: A.L + B.L.
    void set_mul(const MultiplyParameters& pars, const ExactFloat& A, const ExactFloat& B);

    /// this *= 2^e, in place. Capacity: (T - buffer) + L + 1.
    void mp2(const ParallelContext& ctx, std::int64_t e);
    void mp2(std::int64_t e) { mp2(ParallelContext{}, e); }

    /// this += B, in place; where this is zero, as set_ExactFloat(). Throws what the four below do.
    void add_ip(const ParallelContext& ctx, const ExactFloat& B);

    // The four cases of add_ip(), which keep away from `hash`. Neither number may be zero. AB wants top() >= B.top(), BA
    // top() < B.top(). They throw InvalidParametersException, before a word is written, with
    // "Bexp < Tmin" where B reaches below the storage,
    // "Amag >= Tmax" where a sum would have no room for a carry above the higher of the two tops,
    // "Amag > Tmax" where the higher of the two tops lies above the storage.

    /// |this| + |B|, with the sign of this.
    void uaddAB_ip(const ParallelContext& ctx, const ExactFloat& B);
    void uaddBA_ip(const ParallelContext& ctx, const ExactFloat& B);

    /// |this| - |B|, with the sign of this, which flips where that is negative. A zero gets sign 1.
    void usubAB_ip(const ParallelContext& ctx, const ExactFloat& B);

    /// |B| - |this|, with the sign of B.
    void usubBA_ip(const ParallelContext& ctx, const ExactFloat& B);

    /// The residue, in [0, 2^61 - 1), of what the words, exp and sign say: one pass over the words. Equal to
    /// normalize_hash(hash) unless something is damaged.
    std::uint64_t residue(const ParallelContext& ctx) const;

    /// Whether the words have the residue that `hash` says. One pass over them.
    bool matches_hash(const ParallelContext& ctx) const;

    /// The position above the top word.
    std::int64_t top() const { return exp + static_cast<std::int64_t>(L); }

    /// The lowest position that the storage has, and the one above the highest.
    std::int64_t Tmin() const { return exp - (T - buffer); }
    std::int64_t Tmax() const { return Tmin() + static_cast<std::int64_t>(capacity); }

private:
    void start(const char* function, std::size_t needed);
    void set_zero(bool zero_sign);
    void append(Word top_word) {
        if (!is_dry(T)) T[L] = top_word;
        ++L;
    }
    const Word* at(std::int64_t position) const { return T + (position - exp); }
    Word* at(std::int64_t position) { return T + (position - exp); }

    void check_reach(const char* function, bool top_is_outside, const char* text, const ExactFloat& B) const;
    void reach_down(std::int64_t position);
    void add_magnitude(const char* function, const ParallelContext& ctx, const ExactFloat& B);
    void finish_difference(bool borrow, const ParallelContext& ctx);
};

} // namespace zvp

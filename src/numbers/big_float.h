#pragma once
// Signed floating-point numbers with a mantissa of many words, a word-granular exponent and a precision that each
// operation is told.
//
// A number is a view of storage that somebody else owns; copying it copies the view. No operation allocates.
// The value is (sign ? +1 : -1) * sum of T[i] * W^(i + exp), i < L, with W = 2^w, w the bits of a wtype.
// Lengths, capacities and precisions are in words, and so are exponents.
//
// Precision and error. p words are asked for; what an operation keeps beyond that are guard words. Results are cut,
// never rounded. The bounds are in units of T[0] of the result (before its zero top words are dropped) and hold for the
// magnitude, with operands taken as exact:
//
//   set_BigFloat          keeps min(p+2, L) words                       0 <= exact - result < 1
//   set_uadd              keeps p+1 words below the higher top          0 <= exact - result < 2
//   set_usub, set_rsub    keep as many                                 -1 <  exact - result < 1
//   set_mul, set_sqr      keep p+2 words of the product                 0 <= exact - result < 5
//   set_mul_uW            cuts A to n words, then is exact              0 <= exact - result < |x|
//   set_div_sW            keeps p+2 words from the top of A             0 <= exact - result < 1
//
// Residues. Copies, sums, differences, products with words, and products by transforms (numbers/transforms) carry them from
// operands that are all watched; other results aren't watched.
//
// Sums: each operand loses less than a unit by the cut, and a difference has one such error less the other. The error
// is absolute: what cancels at the top is gone.
// Products: cutting A to p+2 words loses less than one unit of its lowest word. If A was cut, the result's lowest word
// has the weight of that one times the weight of B's top, so that this loses less than one unit of the result; as much
// for B; and what stands below the words that are kept is less than a unit: three in all. The range that is asked of
// mul() begins at s = AL + BL - (p+2) <= min(AL, BL), where mul() trims nothing away; but the algorithms of the longest
// products leave out carries from below it: two units more. A product of which nothing is cut is exact. A result that was
// cut has at least p+1 words: the relative error is below 5 * W^-p.
// A product with a word x: the cut, below one unit, times x. The result is at least x * W^(n-1) units, so that the
// relative error is below W^-(n-1); n = p+1, or p where x is a signed double word that fits a word.
// A quotient by x: of the integer A' that the cut leaves, A'/x loses at most (x-1)/x, and the cut less than 1/x.

#include "app/console/watching.h"
#include "multiply/contract/multiply_parameters.h"
#include "multiply/words/word_window.h"
#include "parallel/memory/dry_run.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zvp {

/// Fields as described above, with these invariants: T lies in [buffer, buffer + capacity], T + L too; the top word
/// T[L - 1] isn't zero; a zero has L = 0 and exp = 0, and its sign tells nothing. Exponents stay within [-2^61, 2^61)
/// (the code above sees to that), precisions below 2^61.
///
/// Every set_ operation overwrites the number from the start of its buffer. Its operands may not lie in that buffer; A
/// and B may be the same number. A capacity below what an operation's comment says is a BufferTooSmallException with
/// its name, before a word is written. `pars` and `ctx` name the task decomposition; products also take their scratch
/// from `pars` (see multiply/tables/multiply.h for what they throw).
class BigFloat {
public:
    using Word = wtype;
    using SWord = std::make_signed_t<Word>;
    static constexpr unsigned w = word_bits<Word>;
    using DWord = std::conditional_t<w == 32, std::uint64_t, unsigned __int128>; // twice as wide
    using SDWord = std::conditional_t<w == 32, std::int64_t, __int128>;

    /// Guard words of the multiplicative operations.
    static constexpr std::size_t extra_precision = 2;

    Word* T = nullptr;
    std::size_t L = 0;
    std::int64_t exp = 0;
    bool sign = false;
    Word* buffer = nullptr;
    std::size_t capacity = 0;

    /// Where `watched`: what the sum of T[i] * W^i is modulo 2^61 - 1, as it follows from the numbers that this one was made
    /// from. The words themselves are not asked: what went wrong in an operation, or with words at rest, shows when somebody
    /// compares (check_hash()), however many operations later. Whoever changes T, L or words of a watched number without an
    /// operation changes `hash` with them.
    std::uint64_t hash = 0;
    bool watched = false;

    /// A zero without storage.
    BigFloat() = default;

    /// A zero on `capacity_` words of storage.
    BigFloat(Word* buffer_, std::size_t capacity_) : T(buffer_), buffer(buffer_), capacity(capacity_) {}

    // Copies and conversions.

    /// The top min(p+2, A.L) words of A. Capacity: as many.
    void set_BigFloat(std::size_t p, const ParallelContext& ctx, const BigFloat& A);

    /// x * W^e, exactly but for denormals, of which the low w bits of the fraction are dropped (w = 32). A NaN gives
    /// zero, an infinity counts as 2^1024. Capacity: 2 words for the 53 bits of the fraction (1 for w = 64), and one
    /// more, asked for by mul_uW(), unless the lowest of these bits has a weight of W^k.
    void set_double(double x, std::int64_t e);

    /// d with value ~ d * W^out_e, out_e = L + exp and 1/W <= |d| < 1; 0.0 for zero. The relative error is below
    /// 2^-51.
    double to_double(std::int64_t& out_e) const;

    // Sums. With top and low the bounds of the words that are kept, top = the higher of the tops exp + L and
    // low = max(top - (p+1), the lower of the exps), n = top - low.

    /// A + B and A - B. Capacity: that of set_uadd() or set_usub(), whichever the signs lead to; for a zero operand
    /// that of set_BigFloat().
    void set_add(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B);
    void set_sub(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B);

    /// |A| + |B|, sign 1. Capacity: n + 1.
    void set_uadd(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B);

    /// |A| - |B|, sign 1. Capacity: n. Throws UnsupportedNegativeException when |A| < |B| in the words kept.
    void set_usub(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B);

    /// The words [top - (p+1), top) of |A| - |B|, modulo W^top: for differences that are known to fit below `top`. The
    /// sign is stored as given, but a zero gets sign 1. Capacity: p + 1.
    void set_rsub(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B, std::int64_t top,
                  bool result_sign);

    // Products. AL and BL are the lengths after cutting to p+2 words. Small ones come straight from the schoolbook
    // loops and need no scratch.

    /// A * B. Capacity: min(AL + BL, p+2).
    void set_mul(std::size_t p, const MultiplyParameters& pars, const BigFloat& A, const BigFloat& B);

    /// The same for a caller that has sized `pars` by total() of the product's algorithm: no shortcut for small
    /// operands and no checks of tables and scratch.
    void set_mul_small(std::size_t p, const MultiplyParameters& pars, const BigFloat& A, const BigFloat& B);

    /// A^2. Capacity: min(2 AL, p+2).
    void set_sqr(std::size_t p, const MultiplyParameters& pars, const BigFloat& A);

    // Words.

    /// A * x. Capacity: p+2.
    void set_mul_uW(std::size_t p, const ParallelContext& ctx, const BigFloat& A, Word x);

    /// A * x. Where |x| fits a word, A is cut to p words (p >= 1) and the capacity is p+1; else A is cut to p+1 words
    /// and the capacity is AL + 2 <= p+3.
    void set_mul_uW(std::size_t p, const ParallelContext& ctx, const BigFloat& A, SDWord x);

    /// A / x. Capacity: p+2; x = 1 is set_BigFloat(). The quotient has p+2 words, or one less, however short A is.
    /// Throws ArithmeticException for x = 0, and InvalidParametersException for x = -2^(w-1) and where |x| is a power
    /// of two other than 1.
    void set_div_sW(std::size_t p, const ParallelContext& ctx, const BigFloat& A, SWord x);

    /// this *= x, in place. Capacity: (T - buffer) + L + 1 unless x is 0 or 1.
    void mul_uW(const ParallelContext& ctx, Word x);

    /// this += word * W^pos in magnitude, in place. Capacity: (T - buffer) + L + 1. Unless the number isn't zero and
    /// exp <= pos <= exp + L, a fatal stop.
    void add_ip(Word word, std::int64_t pos);

    /// Adds 1 to the word T[k], k < L, in magnitude, in place; nothing for zero. Capacity, if the carry leaves the top:
    /// (T - buffer) + L + 1.
    void purturb_up(std::size_t k);

    // Steps of iterations, in place.

    /// Makes ready a number just below a power of W for complement_ip(): low zero words go, and so do the words of all
    /// ones at the top, but one if there is nothing else. Zero words below such ones belong to the residual, whose
    /// complement has ones there; they stay, so that the top word may be zero until complement_ip() has run. A number
    /// whose top isn't all ones loses its zero top words.
    void strip_ip(const ParallelContext& ctx);

    /// W^top - this, with top the power of W just above the number: turns 1 - r into r. Nothing for zero; the sign
    /// stays. Strips first as strip_ip() does, which may also have run before.
    void complement_ip(const ParallelContext& ctx);

    /// Removes the words at position `pos` and above.
    void truncate_at(std::int64_t pos, const ParallelContext& ctx);

    // Residues.

    /// Takes the residue from the words, which nothing else tells anything about. One pass over them.
    void watch(const ParallelContext& ctx);

    /// Throws AlgorithmFailedException, "Number Hash Mismatch", in the name of `function`, if a watched number's words don't
    /// have its residue. One pass over them.
    void check_hash(const char* function, const ParallelContext& ctx) const;

    /// Whether the number is watched and its words have its residue. One pass over them.
    bool matches_hash(const ParallelContext& ctx) const;

    /// The residue of the top min(n, L) words of a watched number: what is left of `hash`. One pass over the others.
    std::uint64_t hash_of_top(std::size_t n, const ParallelContext& ctx) const;

    // Queries.

    /// The word at position `pos`; zero outside [exp, exp + L).
    Word get_word(std::int64_t pos) const;

    /// Copies the words of the positions pos .. pos + n - 1.
    void read_window(std::int64_t pos, std::size_t n, Word* out) const { window().read_window(pos, n, out); }

    /// A fatal stop if the top word is zero.
    void check_normalization() const;

    /// The position above the top word.
    std::int64_t top() const { return exp + static_cast<std::int64_t>(L); }

    WordWindow window() const { return {T, L, exp}; }

private:
    void start(const char* function, std::size_t needed);
    void check_room(const char* function, std::size_t needed) const;
    void set_zero(bool zero_sign);
    /// Sets `hash` to hash_of_words() where the operands are watched.
    template <class Hash>
    void set_hash(bool operands_watched, Hash&& hash_of_words) {
        watched = operands_watched && arithmetic_is_watched;
        if (watched) hash = hash_of_words();
    }
    void append(Word top_word) {
        if (!is_dry(T)) T[L] = top_word;
        ++L;
    }
    void drop_top_zeros(const ParallelContext& ctx);
    bool strip_ones(const ParallelContext& ctx);
    void set_signed_sum(std::size_t p, const ParallelContext& ctx, const BigFloat& A, const BigFloat& B, bool flip);
    void multiply_word(std::size_t n, const ParallelContext& ctx, const BigFloat& A, Word x);
    void finish_product(const WordWindow& A, const WordWindow& B, std::size_t kept, bool product_sign);
    WordWindow top_words(std::size_t n) const;
};

static_assert(std::is_trivially_copyable_v<BigFloat>);

/// -1, 0 or +1 as |A| is below, equal to or above |B|.
int ucmp(const BigFloat& A, const BigFloat& B);

} // namespace zvp

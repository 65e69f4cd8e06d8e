#include "multiply/basecase/mulb_kernels.h"

#include "multiply/basecase/limb_products.h"
#include "multiply/basecase/mulb.h"
#include "multiply/words/word_loops.h"

#include <cstring>
#include <utility>

namespace zvp::MULB {

namespace {

limb* limbs_of(c32i* words) { return reinterpret_cast<limb*>(words); }
limb* limbs_of(c64i* words) { return words; }
const limb* limbs_of(const c32i* words) { return reinterpret_cast<const limb*>(words); }
const limb* limbs_of(const c64i* words) { return words; }

template <class Word>
constexpr std::size_t limb_words = sizeof(limb) / sizeof(Word);

/// The limbs that hold n words.
template <class Word>
constexpr std::size_t limbs_for(std::size_t n) {
    return (n + limb_words<Word> - 1) / limb_words<Word>;
}

template <class Word>
constexpr bool whole_limbs(std::size_t n) {
    return n % limb_words<Word> == 0;
}

/// Operands of up to so many limbs together are copied to the stack where they have to be made whole limbs; what is longer
/// goes to the caller's scratch, which is long enough then.
constexpr std::size_t stack_limbs = 128;

/// T[0, n) = the words of an operand, with a zero above an odd one. Limb by limb: the copy is read at once, and a limb
/// written in two stores would wait for both. The empty assembly keeps it from becoming a call of memcpy.
const limb* pad(limb* T, const c32i* words, std::size_t n) {
    const limb* const from = limbs_of(words);
    for (std::size_t i = 0; i < n / 2; ++i) {
        std::uint64_t x = from[i];
        __asm__("" : "+r"(x));
        T[i] = x;
    }
    if (n % 2 != 0) T[n / 2] = words[n - 1];
    return T;
}

/// The product of operands that tiny_halves limbs hold, one or both of which end in half a limb. T takes the limbs below
/// the top one, and half of that if only one of the two is odd.
[[gnu::noinline]] void mul_tiny_halves(const c32i* A, std::size_t a, const c32i* B, std::size_t b, c32i* T) {
    if (a < b) {
        std::swap(A, B);
        std::swap(a, b);
    }
    const bool half_a = !whole_limbs<c32i>(a), half_b = !whole_limbs<c32i>(b);
    const std::uint64_t top = multiply_tiny_halves(limbs_of(T), limbs_of(A), limbs_for<c32i>(a), limbs_of(B),
                                                   limbs_for<c32i>(b), half_a, half_b);
    if (half_a != half_b) T[a + b - 1] = static_cast<c32i>(top);
}

/// The same for schoolbook products of any lengths; an operand that ends in half a limb is copied to `scratch`.
void mul_halves(const ProductKernels& kernels, const c32i* A, std::size_t a, const c32i* B, std::size_t b, c32i* T,
                limb* scratch) {
    const bool half_a = !whole_limbs<c32i>(a), half_b = !whole_limbs<c32i>(b);
    const std::size_t la = limbs_for<c32i>(a), lb = limbs_for<c32i>(b);
    const limb* const x = half_a ? pad(scratch, A, a) : limbs_of(A);
    const limb* const y = half_b ? pad(scratch + la, B, b) : limbs_of(B);
    const std::uint64_t top = multiply_schoolbook(kernels, limbs_of(T), x, la, y, lb);
    if (half_a != half_b) T[a + b - 1] = static_cast<c32i>(top);
}

/// The same without scratch, for any lengths: long operands lose their odd words, which make rows of their own.
[[gnu::noinline]] void mul_halves(const ProductKernels& kernels, const c32i* A, std::size_t a, const c32i* B,
                                  std::size_t b, c32i* T) {
    if (limbs_for<c32i>(a) + limbs_for<c32i>(b) <= stack_limbs) {
        limb copies[stack_limbs];
        return mul_halves(kernels, A, a, B, b, T, copies);
    }
    if (whole_limbs<c32i>(b)) {
        std::swap(A, B);
        std::swap(a, b);
    }
    if (b == 1) {
        T[a] = mul_word(T, A, a, B[0], c32i{0});
        return;
    }
    Kernels<c32i>{kernels}.mulB(A, a, B, b - 1, T);
    T[a + b - 1] = mul_add_word(T + b - 1, A, a, B[b - 1]);
}

/// The same for any lengths, with the caller's scratch; not only schoolbook.
[[gnu::noinline]] void mul_halves(const ProductKernels& kernels, const c32i* A, std::size_t a, const c32i* B,
                                  std::size_t b, c32i* T, void* S) {
    const std::size_t la = limbs_for<c32i>(a), lb = limbs_for<c32i>(b);
    limb* const product = static_cast<limb*>(S);
    if (schoolbook(kernels, la, lb)) {
        limb copies[stack_limbs];
        return mul_halves(kernels, A, a, B, b, T, la + lb <= stack_limbs ? copies : product);
    }
    limb* const copies = product + la + lb;
    const limb* const x = whole_limbs<c32i>(a) ? limbs_of(A) : pad(copies, A, a);
    const limb* const y = whole_limbs<c32i>(b) ? limbs_of(B) : pad(copies + la, B, b);
    multiply(kernels, product, x, la, y, lb, copies + la + lb);
    std::memcpy(T, product, (a + b) * sizeof(c32i));
}

/// The schoolbook square of an odd number of words; T takes the limbs below the top one.
[[gnu::noinline]] void sqr_halves(const ProductKernels& kernels, const c32i* A, std::size_t n, c32i* T) {
    const std::size_t l = limbs_for<c32i>(n);
    if (l > stack_limbs) return mul_halves(kernels, A, n, A, n, T);
    limb copy[stack_limbs];
    square_schoolbook(kernels, limbs_of(T), pad(copy, A, n), l);
}

/// The same of any length, with the caller's scratch.
void sqr_halves(const ProductKernels& kernels, const c32i* A, std::size_t n, c32i* T, void* S) {
    const std::size_t l = limbs_for<c32i>(n);
    if (l < kernels.karatsuba_sqr) return sqr_halves(kernels, A, n, T);
    limb* const product = static_cast<limb*>(S);
    limb* const copy = product + 2 * l;
    square(kernels, product, pad(copy, A, n), l, copy + l);
    std::memcpy(T, product, 2 * n * sizeof(c32i));
}

} // namespace

template <class Word>
void Kernels<Word>::sqrB(const Word* A, std::size_t n, Word* T) const {
    const std::size_t l = limbs_for<Word>(n);
    if constexpr (limb_words < Word >> 1)
        if (!whole_limbs<Word>(n)) return sqr_halves(limbs, A, n, T);
    limbs_of(T)[2 * l - 1] = square_schoolbook(limbs, limbs_of(T), limbs_of(A), l);
}

template <class Word>
void Kernels<Word>::elmB(const Word* A, const Word* B, std::size_t n, Word* T) const {
    mulB(A, n, B, n, T);
}

template <class Word>
void Kernels<Word>::mulB(const Word* A, std::size_t a, const Word* B, std::size_t b, Word* T) const {
    const std::size_t la = limbs_for<Word>(a), lb = limbs_for<Word>(b);
    if constexpr (limb_words < Word >> 1)
        if (!whole_limbs<Word>(a) || !whole_limbs<Word>(b))
            return la <= tiny_halves && lb <= tiny_halves ? mul_tiny_halves(A, a, B, b, T)
                                                          : mul_halves(limbs, A, a, B, b, T);
    limbs_of(T)[la + lb - 1] = multiply_schoolbook(limbs, limbs_of(T), limbs_of(A), la, limbs_of(B), lb);
}

template <class Word>
void Kernels<Word>::sqr(const Word* A, std::size_t n, Word* T, void* S) const {
    if constexpr (limb_words < Word >> 1)
        if (!whole_limbs<Word>(n)) return sqr_halves(limbs, A, n, T, S);
    square(limbs, limbs_of(T), limbs_of(A), limbs_for<Word>(n), static_cast<limb*>(S));
}

template <class Word>
void Kernels<Word>::elm(const Word* A, const Word* B, std::size_t n, Word* T, void* S) const {
    mul(A, n, B, n, T, S);
}

template <class Word>
void Kernels<Word>::mul(const Word* A, std::size_t a, const Word* B, std::size_t b, Word* T, void* S) const {
    const std::size_t la = limbs_for<Word>(a), lb = limbs_for<Word>(b);
    if constexpr (limb_words < Word >> 1)
        if (!whole_limbs<Word>(a) || !whole_limbs<Word>(b))
            return la <= tiny_halves && lb <= tiny_halves ? mul_tiny_halves(A, a, B, b, T)
                                                          : mul_halves(limbs, A, a, B, b, T, S);
    if (schoolbook(limbs, la, lb))
        limbs_of(T)[la + lb - 1] = multiply_schoolbook(limbs, limbs_of(T), limbs_of(A), la, limbs_of(B), lb);
    else
        multiply(limbs, limbs_of(T), limbs_of(A), la, limbs_of(B), lb, static_cast<limb*>(S));
}

template struct Kernels<c32i>;
template struct Kernels<c64i>;

namespace {

template <class Word>
Kernels<Word> active() {
    return {active_product_kernels()};
}

} // namespace

void sqrB(const c32i* A, std::size_t n, c32i* T) { active<c32i>().sqrB(A, n, T); }
void sqrB(const c64i* A, std::size_t n, c64i* T) { active<c64i>().sqrB(A, n, T); }

void elmB(const c32i* A, const c32i* B, std::size_t n, c32i* T) { active<c32i>().elmB(A, B, n, T); }
void elmB(const c64i* A, const c64i* B, std::size_t n, c64i* T) { active<c64i>().elmB(A, B, n, T); }

void mulB(const c32i* A, std::size_t a, const c32i* B, std::size_t b, c32i* T) { active<c32i>().mulB(A, a, B, b, T); }
void mulB(const c64i* A, std::size_t a, const c64i* B, std::size_t b, c64i* T) { active<c64i>().mulB(A, a, B, b, T); }

void sqr(const c32i* A, std::size_t n, c32i* T, void* S) { active<c32i>().sqr(A, n, T, S); }
void sqr(const c64i* A, std::size_t n, c64i* T, void* S) { active<c64i>().sqr(A, n, T, S); }

void elm(const c32i* A, const c32i* B, std::size_t n, c32i* T, void* S) { active<c32i>().elm(A, B, n, T, S); }
void elm(const c64i* A, const c64i* B, std::size_t n, c64i* T, void* S) { active<c64i>().elm(A, B, n, T, S); }

void mul(const c32i* A, std::size_t a, const c32i* B, std::size_t b, c32i* T, void* S) {
    active<c32i>().mul(A, a, B, b, T, S);
}
void mul(const c64i* A, std::size_t a, const c64i* B, std::size_t b, c64i* T, void* S) {
    active<c64i>().mul(A, a, B, b, T, S);
}

} // namespace zvp::MULB

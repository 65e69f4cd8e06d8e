// Leaves made of short integers without sign.
//
// The recursion runs on 64-bit limbs, two words each: products of whole limbs are the fastest. Residues keep out of it: they
// are summed term by term from those of the terms, in the order in which the recursion comes to them.

#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/basecase/limb_products.h"
#include "multiply/words/word_loops.h"
#include "series/splitting/common_p2b3.h"

#include <algorithm>

namespace zvp::BinarySplitting::CommonP2B3 {
namespace {

/// A natural number on storage that somebody else owns; without zero top limbs.
struct Limbs {
    c64i* T = nullptr;
    std::size_t capacity = 0;
    std::size_t L = 0;

    Limbs(const LeafInt& A) : T(reinterpret_cast<c64i*>(A.T)), capacity(A.capacity / 2) {}
    Limbs(c64i* T_, std::size_t capacity_) : T(T_), capacity(capacity_) {}

    LeafInt words() const { return LeafInt(reinterpret_cast<wtype*>(T), 2 * capacity); }

    /// Views what lies at T, with a zero above an odd word.
    void take(const LeafInt& A) {
        if (A.L % 2 != 0) A.T[A.L] = 0;
        L = (A.L + 1) / 2;
    }

    /// Copies n limbs, fewer the zeros on top.
    void take(const std::uint64_t* A, std::size_t n) {
        std::copy(A, A + n, T);
        while (n > 0 && A[n - 1] == 0) --n;
        L = n;
    }

    std::size_t word_count() const { return 2 * L - (L > 0 && T[L - 1] >> 32 == 0); }

    /// The storage from limb `skipped` on.
    Limbs behind(std::size_t skipped) const {
        const std::size_t used = std::min(skipped, capacity);
        return {T + used, capacity - used};
    }

    void check_room(std::size_t needed) const {
        if (capacity < needed) throw BufferTooSmallException("BSR_End()", 2 * capacity, 2 * needed);
    }

    void set_product(const MULB::ProductKernels& kernels, const Limbs& A, const Limbs& B) {
        const std::size_t n = A.L + B.L;
        check_room(n);
        L = 0;
        if (A.L == 0 || B.L == 0) return;
        const c64i top = MULB::multiply_schoolbook(kernels, T, A.T, A.L, B.T, B.L);
        T[n - 1] = top;
        L = n - (top == 0);
    }

    void operator+=(const Limbs& B) {
        const std::size_t common = std::min(L, B.L), longer = std::max(L, B.L);
        check_room(longer + 1);
        std::copy(B.T + common, B.T + B.L, T + common);
        const bool carry = add_words(T, T, B.T, common);
        L = longer;
        if (carry && add_word(T + common, L - common, c64i{1})) T[L++] = 1;
    }

    /// B is below this number.
    void operator-=(const Limbs& B) {
        if (B.L > L || (subtract_words(T, T, B.T, B.L) && carry_ripple(-1, T + B.L, L - B.L) != 0))
            throw UnsupportedNegativeException("BSR_End()", "A negative value was encountered.");
        L = top_length(c64i{0}, T, L);
    }
};

/// The residues of the numbers of the terms so far.
struct Residues {
    std::uint64_t P = 0, Q = 1, R = 1;

    /// p and q are below 2^63, and none of the three need be reduced.
    void append(std::uint64_t p, std::uint64_t q, std::uint64_t r) {
        // P and R are reduced: the sum of the products is below 2^125.
        P = reduce_hash(HashProduct{P} * q + HashProduct{R} * p);
        Q = mul_mod(Q, q);
        R = mul_mod(R, r);
    }
};

class Leaf {
    static constexpr std::uint64_t short_terms = 4; // that a ShortRange is made of

public:
    Leaf(const BasicIntSeries& series_, std::uint64_t first_) : series(series_), first(first_) {}

    /// While the halves are made, their P, Q and R lie in scratch0, R and scratch1, the right half's behind the left
    /// half's.
    void run(Limbs& P, Limbs& Q, Limbs& R, Limbs& scratch0, Limbs& scratch1, std::uint64_t a, std::uint64_t b) {
        if (b - a <= short_terms && run_short(P, Q, R, a, b)) return;
        if (b - a == 1) return run_term(P, Q, R, b);
        const std::uint64_t m = middle(a, b);
        Limbs left_P = scratch0, left_Q = R, left_R = scratch1;
        run(left_P, left_Q, left_R, P, Q, a, m);
        const std::size_t longest = std::max({left_P.L, left_Q.L, left_R.L});
        Limbs right_P = scratch0.behind(longest), right_Q = R.behind(longest), right_R = scratch1.behind(longest);
        run(right_P, right_Q, right_R, P, Q, m, b);

        P.set_product(kernels, left_P, right_Q);
        Q.set_product(kernels, left_R, right_P); // until it is added
        if (same_sign(a, m))
            P += Q;
        else
            P -= Q;
        Q.set_product(kernels, left_Q, right_Q);
        R.set_product(kernels, left_R, right_R);
    }

    Residues residues;

private:
    bool same_sign(std::uint64_t a, std::uint64_t b) const { return !series.alternating || (a ^ b) % 2 == 0; }

    /// Whole groups of short terms, as equal as they may be.
    static std::uint64_t middle(std::uint64_t a, std::uint64_t b) {
        const std::uint64_t half = (b - a + 1) / 2;
        return b - a <= short_terms ? a + half : a + (half + short_terms / 2) / short_terms * short_terms;
    }

    /// False when a term isn't short, or when the storage could be too small for the terms' numbers.
    bool run_short(Limbs& P, Limbs& Q, Limbs& R, std::uint64_t a, std::uint64_t b) {
        if (std::min({P.capacity, Q.capacity, 2 * R.capacity}) < 2 * short_terms) return false;
        ShortTerm terms[short_terms];
        for (std::uint64_t k = a; k < b; ++k)
            if (!series.short_leaf(terms[k - a], k + 1)) return false;
        for (std::uint64_t k = a; k < b; ++k) append(terms[k - a], k + 1);

        const std::uint64_t n = b - a;
        if (n == 1) return take(P, Q, R, terms[0]);
        const auto left = merge_short(terms[0], terms[1], !series.alternating);
        if (n == 2) return take(P, Q, R, left);
        const auto right = merge_short(terms[2], n == 3 ? no_terms : terms[3], !series.alternating);
        return take(P, Q, R, merge_short(left, right, true));
    }

    void append(const ShortTerm& term, std::uint64_t k) {
        const auto residue = [](const std::uint64_t* A) { return append_limb(fold_hash(A[1]), A[0]); };
        const std::uint64_t p = residue(term.P);
        residues.append(same_sign(first, k) ? p : 3 * hash_modulus - p, residue(term.Q), term.R[0]);
    }

    template <std::size_t n>
    static bool take(Limbs& P, Limbs& Q, Limbs& R, const ShortRange<n>& range) {
        P.take(range.P, 2 * n);
        Q.take(range.Q, 2 * n);
        R.take(range.R, n);
        return true;
    }

    void run_term(Limbs& P, Limbs& Q, Limbs& R, std::uint64_t k) {
        LeafInt p = P.words(), q = Q.words(), r = R.words();
        series.leaf(p, q, r, k);
        P.take(p);
        Q.take(q);
        R.take(r);
        residues.append(same_sign(first, k) ? p.hash : hash_negate(p.hash), q.hash, r.hash);
    }

    const MULB::ProductKernels& kernels = MULB::active_product_kernels();
    const BasicIntSeries& series;
    const std::uint64_t first; // the index of the first term, whose sign is that of P
};

void give(LeafInt& A, const Limbs& limbs, std::uint64_t residue) {
    A.L = limbs.word_count();
    A.hash = residue;
}

LeafInt view_of(const ExactNumber& target) { return LeafInt(target.buffer, target.capacity); }

void set(ExactNumber& target, const LeafInt& magnitude, bool sign) {
    target.T = magnitude.T;
    target.L = magnitude.L;
    target.exp = 0;
    target.sign = sign;
    target.hash = sign ? magnitude.hash : hash_negate(magnitude.hash);
}

} // namespace

void BasicIntSeries::BSR_E(const MultiplyParameters& pars, ExactNumber& P, ExactNumber& Q, ExactNumber& R,
                           ExactNumber& scratch, std::uint64_t a, std::uint64_t b) const {
    LeafInt p = view_of(P), q = view_of(Q), r = view_of(R), scratch0 = view_of(scratch);
    LeafInt scratch1(reinterpret_cast<wtype*>(pars.M), pars.ML / sizeof(wtype));
    BSR_End(p, q, r, scratch0, scratch1, a, b);
    set(P, p, !alternating || a % 2 != 0);
    set(Q, q, true);
    set(R, r, true);
}

void BasicIntSeries::BSR_End(LeafInt& P, LeafInt& Q, LeafInt& R, LeafInt& scratch0, LeafInt& scratch1, std::uint64_t a,
                             std::uint64_t b) const {
    Limbs p(P), q(Q), r(R), s0(scratch0), s1(scratch1);
    Leaf leaf_of_range(*this, a + 1);
    leaf_of_range.run(p, q, r, s0, s1, a, b);
    give(P, p, leaf_of_range.residues.P);
    give(Q, q, leaf_of_range.residues.Q);
    give(R, r, leaf_of_range.residues.R);
}

} // namespace zvp::BinarySplitting::CommonP2B3

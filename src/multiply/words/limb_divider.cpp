#include "multiply/words/limb_divider.h"

#include "app/failure/exceptions.h"
#include "multiply/words/carry_chain.h"
#include "multiply/words/shoup_step.h"

namespace zvp {

namespace {

using Divider = ShoupDivider<c64i>;

constexpr std::size_t lanes = 4;

/// The limbs of a lane, a multiple of sum_limbs: few, so that the lanes of an array out of the cache are neighbours in
/// one stream from memory (words_bench: lanes of 64 to 256 limbs take up to twice as long there, and no less within the
/// cache).
constexpr std::size_t lane_limbs = 32;

constexpr std::size_t sum_limbs = 16;

/// From this length on the tables for the lanes pay.
constexpr std::size_t min_long = lanes * lane_limbs;

/// A sum of up to 2^64 products.
struct ProductSum {
    c64i low = 0, middle = 0, high = 0;

    void add(c64i a, c64i b) {
        c64i product_high;
        __asm__("mulq %[b]\n\t"
                "add %[a], %[low]\n\t"
                "adc %[product_high], %[middle]\n\t"
                "adc $0, %[high]"
                : [a] "+&a"(a), [product_high] "=&d"(product_high), [low] "+&r"(low), [middle] "+&r"(middle),
                  [high] "+&r"(high)
                : [b] "r"(b)
                : "cc");
    }
};

/// Remainders of arrays: sums of limbs times powers of W modulo d, reduced once for sixteen limbs.
class Modulus {
public:
    explicit Modulus(const Divider& divider) : D(divider), next(divider, fill_powers()) {}

    /// (r * W^n + A) mod d.
    c64i of(const void* A, std::size_t n, c64i r) const {
        for (; n % sum_limbs != 0; --n) divide_step(D, r, load_limb(A, n - 1));
        for (; n > 0; n -= sum_limbs) r = add_mod(D, next.times(r), of_sum(A, n - sum_limbs));
        return r;
    }

private:
    /// Returns W^sum_limbs mod d.
    c64i fill_powers() {
        c64i power = 1;
        for (c64i& p : powers) {
            p = power;
            divide_step(D, power);
        }
        return power;
    }

    c64i of_sum(const void* A, std::size_t begin) const {
        ProductSum sum;
        for (std::size_t i = 0; i < sum_limbs; ++i) sum.add(load_limb(A, begin + i), powers[i]);
        // Each product is below d * W: the high limb is below sum_limbs, and 0 unless d is near W.
        c64i r = sum.high;
        divide_step(D, r, sum.middle);
        divide_step(D, r, sum.low);
        return r;
    }

    const Divider& D;
    c64i powers[sum_limbs];
    ConstantFactor<c64i> next;
};

/// A numerator of zeros.
struct NoNumerator {
    static constexpr const char* function = "divmod()";
    struct Residues {
        Residues(const NoNumerator&, const Divider&) {}
        c64i of_lane(std::size_t) const { return 0; }
    };

    c64i step(const Divider& D, c64i& r, std::size_t) const { return divide_step(D, r); }
};

struct Numerator {
    static constexpr const char* function = "divmod(A)";
    struct Residues {
        Residues(const Numerator& source, const Divider& D) : A(source.A), modulus(D) {}
        c64i of_lane(std::size_t begin) const {
            return modulus.of(static_cast<const std::byte*>(A) + 8 * begin, lane_limbs, 0);
        }
        const void* A;
        Modulus modulus;
    };

    c64i step(const Divider& D, c64i& r, std::size_t i) const { return divide_step(D, r, load_limb(A, i)); }

    const void* A;
};

/// Divides the limbs from `begin` on, lane 0 the lowest; returns the remainder. `power`: W^lane_limbs mod d.
template <class Source>
c64i divide_in_lanes(const Divider& D, const Source& source, const typename Source::Residues& residues, void* T,
                     std::size_t begin, c64i r, const ConstantFactor<c64i>& power) {
    c64i leaving[lanes]; // of lane i; enters lane i - 1
    c64i state[lanes];
    for (std::size_t lane = lanes; lane-- > 1;) {
        state[lane] = r;
        r = leaving[lane] = add_mod(D, power.times(r), residues.of_lane(begin + lane * lane_limbs));
    }
    state[0] = r;
    for (std::size_t i = begin + lane_limbs; i-- > begin;)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            store_limb(T, i + lane * lane_limbs, source.step(D, state[lane], i + lane * lane_limbs));
    for (std::size_t lane = 1; lane < lanes; ++lane)
        if (state[lane] != leaving[lane])
            throw AlgorithmFailedException(Source::function, "Mismatching block residuals.");
    return state[0];
}

template <class Source>
c64i divide(const Divider& divider, const Source& source, void* T, std::size_t n, c64i r) {
    const Divider D = divider; // nothing that T could overlap
    if (n >= min_long) {
        const typename Source::Residues residues(source, D);
        const ConstantFactor<c64i> power(D, D.powmod(lane_limbs));
        for (; n >= lanes * lane_limbs; n -= lanes * lane_limbs)
            r = divide_in_lanes(D, source, residues, T, n - lanes * lane_limbs, r, power);
    }
    while (n-- > 0) store_limb(T, n, source.step(D, r, n));
    return r;
}

} // namespace

c64i divide_limbs(const Divider& D, void* T, std::size_t n, c64i r) { return divide(D, NoNumerator{}, T, n, r); }

c64i divide_limbs(const Divider& D, void* T, const void* A, std::size_t n, c64i r) {
    return divide(D, Numerator{A}, T, n, r);
}

c64i limbs_modulo(const Divider& D, const void* A, std::size_t n, c64i r) {
    if (n >= 4 * sum_limbs) return Modulus(D).of(A, n, r);
    while (n-- > 0) divide_step(D, r, load_limb(A, n));
    return r;
}

} // namespace zvp

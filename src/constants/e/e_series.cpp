#include "constants/e/e_series.h"

#include "app/failure/exceptions.h"
#include "digits/hash/word_hash.h"
#include "series/double_double/size_units.h"
#include "series/double_double/stirling.h"

#include <cstring>

namespace zvp {

using BinarySplitting::ExactNumber;

namespace {

constexpr std::uint32_t leaf_range = 16;
constexpr std::size_t most_limbs = leaf_range; // a limb for each factor

/// The least n from 1 on whose factorial reaches `nats`.
std::uint64_t factorial_reaching(const DoubleDouble& nats) {
    const auto below = [&](std::uint64_t n) { return stirling(DoubleDouble::from_integer(n)) < nats; };
    std::uint64_t high = 1;
    while (below(high)) high *= 2;
    std::uint64_t low = high / 2;
    while (high - low > 1) {
        const std::uint64_t middle = low + (high - low) / 2;
        (below(middle) ? low : high) = middle;
    }
    return high;
}

/// P and Q of a leaf in limbs, of equal length; P < Q.
struct Leaf {
    std::uint64_t P[most_limbs];
    std::uint64_t Q[most_limbs];
    std::size_t size;
};

/// Horner's scheme from the first factor on: P = P k + 1, Q = Q k, both in one pass.
Leaf sum_terms(std::uint64_t first, std::uint64_t last) {
    __extension__ using Wide = unsigned __int128;
    Leaf leaf{{1}, {first}, 1};
    for (std::uint64_t k = first + 1; k <= last; ++k) {
        std::uint64_t P_carry = 1, Q_carry = 0;
        for (std::size_t i = 0; i < leaf.size; ++i) {
            const Wide P = Wide{leaf.P[i]} * k + P_carry, Q = Wide{leaf.Q[i]} * k + Q_carry;
            leaf.P[i] = static_cast<std::uint64_t>(P);
            leaf.Q[i] = static_cast<std::uint64_t>(Q);
            P_carry = static_cast<std::uint64_t>(P >> 64);
            Q_carry = static_cast<std::uint64_t>(Q >> 64);
        }
        if (Q_carry == 0) continue; // P < Q: its carry is 0, too
        leaf.P[leaf.size] = P_carry;
        leaf.Q[leaf.size++] = Q_carry;
    }
    return leaf;
}

/// The same with alternating signs, the last but one being a minus.
Leaf sum_alternating_terms(std::uint64_t first, std::uint64_t last) {
    __extension__ using Wide = unsigned __int128;
    Leaf leaf{{1}, {first}, 1};
    bool minus = true;
    for (std::uint64_t k = first + 1; k <= last; ++k, minus = !minus) {
        std::uint64_t P_carry = minus ? 0 : 1, Q_carry = 0, borrow = minus ? 1 : 0;
        for (std::size_t i = 0; i < leaf.size; ++i) {
            const Wide P = Wide{leaf.P[i]} * k + P_carry, Q = Wide{leaf.Q[i]} * k + Q_carry;
            const auto low = static_cast<std::uint64_t>(P);
            leaf.P[i] = low - borrow;
            borrow = low < borrow ? 1 : 0;
            leaf.Q[i] = static_cast<std::uint64_t>(Q);
            P_carry = static_cast<std::uint64_t>(P >> 64);
            Q_carry = static_cast<std::uint64_t>(Q >> 64);
        }
        P_carry -= borrow; // P k >= 1: what was borrowed is there
        if (Q_carry == 0) continue;
        leaf.P[leaf.size] = P_carry;
        leaf.Q[leaf.size++] = Q_carry;
    }
    return leaf;
}

/// T = the words of a leaf's number that isn't zero.
void store(ExactNumber& T, const char* function, std::size_t needed, const std::uint64_t* limbs, std::size_t size) {
    if (T.capacity < needed) throw BufferTooSmallException(function, T.capacity, needed);
    while (limbs[size - 1] == 0) --size;
    T.T = T.buffer;
    T.L = 2 * size - (limbs[size - 1] >> 32 == 0);
    T.exp = 0;
    T.sign = true;
    std::memcpy(T.T, limbs, T.L * sizeof(wtype));
    T.hash = hash_words(0, T.T, T.L);
}

[[noreturn]] void not_implemented(const char* function) {
    throw InvalidParametersException(function, "Not Implemented");
}

} // namespace

SeriesETaylor::SeriesETaylor(bool alternating_, std::size_t precision_words) {
    N = factorial_reaching(DoubleDouble::from_integer(precision_words) * nats_per_word() + DoubleDouble(1)) + 1;
    leaf_terms = leaf_range;
    split_slack = 22;
    alternating = alternating_;
}

DoubleDouble SeriesETaylor::log_remaining(std::uint64_t) const { not_implemented("SeriesETaylor::log_remaining()"); }
std::size_t SeriesETaylor::precision_words(std::uint64_t) const { not_implemented("SeriesETaylor::precision_words()"); }

double SeriesETaylor::size_at_double(std::uint64_t x) const { return stirling(static_cast<double>(x)); }
DoubleDouble SeriesETaylor::size_at(std::uint64_t x) const { return stirling(DoubleDouble::from_integer(x)); }

void SeriesETaylor::BSR_E(const MultiplyParameters&, ExactNumber& P, ExactNumber& Q, std::uint64_t a,
                          std::uint64_t b) const {
    const std::uint64_t first = a + 2, last = b + 1;
    const Leaf leaf = alternating ? sum_alternating_terms(first, last) : sum_terms(first, last);
    const char* const function = alternating ? "seriesA_BSR_End_PQ1()" : "seriesN_BSR_End_PQ1()";
    const std::size_t needed = (b - a) * (last >> 32 == 0 ? 1 : 2);
    store(P, function, needed, leaf.P, leaf.size);
    store(Q, function, needed, leaf.Q, leaf.size);
    if (alternating && a % 2 == 1) {
        P.sign = false;
        P.hash = hash_negate(P.hash);
    }
}

} // namespace zvp

#include "constants/pi/pi_series.h"

#include "series/families/short_limbs.h"

namespace zvp {

using BinarySplitting::FactorialSeriesParameters;
using BinarySplitting::LeafInt;
using BinarySplitting::ShortLimbs;
using BinarySplitting::CommonP2B3::ShortTerm;

namespace {

__extension__ using Wide = unsigned __int128;

FactorialSeriesParameters chudnovsky() {
    return {DoubleDouble::parse("32.65445004176851599077913804969300490729"),
            DoubleDouble::parse("36.93111616078457130182132488791258602081"),
            3.0,
            41,
            8,
            true};
}

FactorialSeriesParameters ramanujan() {
    return {DoubleDouble::parse("18.38047627747241588639166145022043732094"),
            DoubleDouble::parse("21.84621530333808625449589681453160567684"),
            3.0,
            41,
            12,
            false};
}

// Below, R fits three words, P and Q five (Ramanujan's Q four): (2k-1)(6k-5) and the linear factor of P stay below
// 2^64.
constexpr std::uint64_t chudnovsky_two_words = 715'827'883; // about 2^32 / 6
constexpr std::uint64_t ramanujan_two_words = 0x4000'0001;

// Below, R fits a limb, P and Q two: 72 k^3 and 32 k^3 stay below 2^64.
constexpr std::uint64_t chudnovsky_short = 635'000, ramanujan_short = 832'000;

/// A number below 2^128 at T.
void set_limbs(std::uint64_t* T, Wide value) {
    T[0] = static_cast<std::uint64_t>(value);
    T[1] = static_cast<std::uint64_t>(value >> 64);
}

} // namespace

PiChudnovskySeries::PiChudnovskySeries(std::size_t precision_words) : FactorialSeries(precision_words, chudnovsky()) {}

void PiChudnovskySeries::leaf(LeafInt& P, LeafInt& Q, LeafInt& R, std::uint64_t k) const {
    constexpr std::uint64_t A = 545'140'134, B = 13'591'409, C = 10'939'058'860'032'000; // 640320^3 / 24
    if (k < chudnovsky_two_words) {
        ShortLimbs<4> product(Wide{(2 * k - 1) * (6 * k - 5)} * (6 * k - 1));
        product.store("Pi_Chudnovsky_BSR_End_R1()", 3, R);
        (product *= A * k + B).store("Pi_Chudnovsky_BSR_End_P1()", 5, P);
        (ShortLimbs<4>(Wide{k * k} * k) *= C).store("Pi_Chudnovsky_BSR_End_Q1", 5, Q);
    } else {
        ShortLimbs<6> product(2 * k - 1);
        ((product *= 6 * k - 5) *= 6 * k - 1).store("Pi_Chudnovsky_BSR_End_PR2()", 6, R);
        (product *= Wide{A} * k + B).store("Pi_Chudnovsky_BSR_End_PR2()", 9, P);
        ShortLimbs<6> cube(k);
        (((cube *= k) *= k) *= C).store("Pi_Chudnovsky_BSR_End_Q2", 8, Q);
    }
}

bool PiChudnovskySeries::short_leaf(ShortTerm& term, std::uint64_t k) const {
    constexpr std::uint64_t A = 545'140'134, B = 13'591'409, C = 10'939'058'860'032'000; // 640320^3 / 24
    if (k >= chudnovsky_short) return false;
    const std::uint64_t r = (2 * k - 1) * (6 * k - 5) * (6 * k - 1);
    term.R[0] = r;
    set_limbs(term.P, Wide{r} * (A * k + B));
    set_limbs(term.Q, Wide{k * k * k} * C);
    return true;
}

PiRamanujanSeries::PiRamanujanSeries(std::size_t precision_words) : FactorialSeries(precision_words, ramanujan()) {}

void PiRamanujanSeries::leaf(LeafInt& P, LeafInt& Q, LeafInt& R, std::uint64_t k) const {
    constexpr std::uint64_t A = 26'390, B = 1'103, C = 3'073'907'232; // 396^4 / 8
    if (k < ramanujan_two_words) {
        ShortLimbs<4> product(Wide{(2 * k - 1) * (4 * k - 3)} * (4 * k - 1));
        product.store("Pi_Ramanujan_BSR_End_R1()", 3, R);
        (product *= A * k + B).store("Pi_Ramanujan_BSR_End_P1()", 5, P);
        (ShortLimbs<4>(Wide{k * k} * k) *= C).store("Pi_Ramanujan_BSR_End_Q1()", 4, Q);
    } else {
        ShortLimbs<6> product(2 * k - 1);
        ((product *= 4 * k - 3) *= 4 * k - 1).store("Pi_Ramanujan_BSR_End_R2()", 6, R);
        (product *= Wide{A} * k + B).store("Pi_Ramanujan_BSR_End_P2()", 9, P);
        ShortLimbs<6> cube(k);
        (((cube *= k) *= k) *= C).store("Pi_Ramanujan_BSR_End_Q2()", 8, Q);
    }
}

bool PiRamanujanSeries::short_leaf(ShortTerm& term, std::uint64_t k) const {
    constexpr std::uint64_t A = 26'390, B = 1'103, C = 3'073'907'232; // 396^4 / 8
    if (k >= ramanujan_short) return false;
    const std::uint64_t r = (2 * k - 1) * (4 * k - 3) * (4 * k - 1);
    term.R[0] = r;
    set_limbs(term.P, Wide{r} * (A * k + B));
    set_limbs(term.Q, Wide{k * k * k} * C);
    return true;
}

} // namespace zvp

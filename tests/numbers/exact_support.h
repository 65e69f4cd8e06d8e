#pragma once
// Exact numbers of both word kinds between guard words, with their values and residues by GMP.

#include "digits/hash/hash_field.h"
#include "numbers/exact_float.h"
#include "numbers/guarded_number.h"
#include "numbers/multiplier.h"
#include "support/seed.h"

namespace test {

using zvp::c32i;
using zvp::c64i;
using WordKinds = testing::Types<c32i, c64i>;

inline const mpz_class modulus((mpz_class(1) << 61) - 1);

/// x * 2^bits modulo p.
inline std::uint64_t residue_of(const mpz_class& x, std::int64_t bits = 0) {
    mpz_class power, result;
    const mpz_class base = 2, exponent = static_cast<long>(bits);
    mpz_powm(power.get_mpz_t(), base.get_mpz_t(), exponent.get_mpz_t(), modulus.get_mpz_t());
    const mpz_class product = x * power;
    mpz_mod(result.get_mpz_t(), product.get_mpz_t(), modulus.get_mpz_t());
    return result.get_ui();
}

/// A number with the hash of its value.
template <class Word>
class ExactNumber : public GuardedNumber<zvp::ExactFloat<Word>> {
public:
    using Base = GuardedNumber<zvp::ExactFloat<Word>>;
    using Base::Base, Base::f;

    ExactNumber(const std::vector<Word>& words, std::int64_t exp, bool sign, std::size_t below = 0,
                std::size_t above = 0)
        : Base(words, exp, sign, below, above) {
        const mpz_class magnitude = integer(f.T, f.L);
        f.hash = residue_of(sign ? magnitude : mpz_class(-magnitude), f.exp * std::int64_t{zvp::word_bits<Word>});
    }
};

/// f / W^unit, for units at or below its lowest word.
template <class Word>
mpz_class in_units(const zvp::ExactFloat<Word>& f, std::int64_t unit) {
    if (f.L == 0) return 0;
    const mpz_class magnitude = integer(f.T, f.L) << static_cast<mp_bitcnt_t>(zvp::word_bits<Word> * (f.exp - unit));
    return f.sign ? magnitude : mpz_class(-magnitude);
}

/// The number is that many units of W^unit, and its hash is that of the value.
template <class Word>
void expect_value(const ExactNumber<Word>& number, const mpz_class& value, std::int64_t unit) {
    const zvp::ExactFloat<Word>& f = number.f;
    ASSERT_NO_FATAL_FAILURE(expect_fields(number));
    EXPECT_TRUE(in_units(f, unit) == value);
    EXPECT_EQ(zvp::normalize_hash(f.hash), residue_of(value, unit * std::int64_t{zvp::word_bits<Word>}));
    EXPECT_LT(f.hash, std::uint64_t{1} << 62);
    EXPECT_EQ(f.residue({}), zvp::normalize_hash(f.hash));
}

} // namespace test

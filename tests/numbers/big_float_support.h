#pragma once
// Numbers between guard words, their exact values in GMP integers, and what a product needs.

#include "numbers/big_float.h"
#include "numbers/guarded_number.h"
#include "numbers/multiplier.h"
#include "support/seed.h"

namespace test {

using zvp::BigFloat;
using Words = std::vector<zvp::wtype>;

inline constexpr zvp::wtype ones = all_ones<zvp::wtype>;

/// A number, with `room` more words behind its own.
class Number : public GuardedNumber<BigFloat> {
public:
    using GuardedNumber::GuardedNumber;

    Number(const Words& words, std::int64_t exp, bool sign = true, std::size_t room = 0)
        : GuardedNumber(words, exp, sign, 0, room) {}
};

inline Words words_of(const BigFloat& f) { return {f.T, f.T + f.L}; }

/// A number of n random words with room for one more; exp within `spread` of `origin`.
inline Number random_number(std::mt19937_64& random, std::size_t n, std::int64_t origin = 0, std::size_t spread = 0) {
    const std::int64_t exp = origin + static_cast<std::int64_t>(random() % (2 * spread + 1) - spread);
    return Number(random_words(random, n), exp, random() % 2, 1);
}

/// |f| / W^unit as a fraction.
inline mpq_class in_units(const BigFloat& f, std::int64_t unit) {
    const mpq_class m = integer(f.T, f.L);
    const std::int64_t bits = 32 * (f.L == 0 ? 0 : f.exp - unit);
    return bits >= 0 ? mpq_class(m << bits) : mpq_class(m >> -bits);
}

/// The number is as its class wants it.
inline void expect_sound(const Number& number) {
    expect_fields(number);
    EXPECT_TRUE(number.f.L != 0 || number.f.exp == 0);
}

using Multiplier = WordMultiplier<zvp::wtype>;

} // namespace test

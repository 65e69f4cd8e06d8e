#include "digits/hash/hash_field.h"

#include "digits/gmp_value.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace zvp;
using test::Integer;
using test::residue;

/// The edges of the field and of its unreduced values, then random ones.
std::vector<std::uint64_t> field_values() {
    constexpr std::uint64_t p = hash_modulus, max = ~std::uint64_t{0};
    std::vector<std::uint64_t> values{0,     1,     2,         p - 1,   p,   p + 1,     2 * p,
                                      7 * p, 8 * p, 8 * p + 6, max - 1, max, 1ull << 63};
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 40; ++i) values.push_back(test::random_up_to_bits(random, 64));
    return values;
}

TEST(HashField, UnreducedValuesCountAsTheirResidues) {
    SCOPED_TRACE(test::seed_trace());
    EXPECT_EQ(normalize_hash(hash_modulus), 0u);
    for (const std::uint64_t a : field_values()) {
        SCOPED_TRACE(a);
        EXPECT_EQ(normalize_hash(a), a % hash_modulus);
        EXPECT_EQ(hash_negate(a), (hash_modulus - a % hash_modulus) % hash_modulus);
        for (const std::uint64_t b : field_values()) {
            const auto sum = HashProduct{a} + b, product = HashProduct{a} * b;
            EXPECT_EQ(add_mod(a, b), static_cast<std::uint64_t>(sum % hash_modulus)) << b;
            EXPECT_EQ(mul_mod(a, b), static_cast<std::uint64_t>(product % hash_modulus)) << b;
        }
    }
    EXPECT_EQ(reduce_hash(~HashProduct{0}), static_cast<std::uint64_t>(~HashProduct{0} % hash_modulus));
}

TEST(HashField, PowersOfEveryBaseAndExponent) {
    SCOPED_TRACE(test::seed_trace());
    const Integer p(hash_modulus);
    for (const std::uint64_t base : field_values()) {
        EXPECT_EQ(pow_mod(base, 0), 1u) << base;
        for (const std::uint64_t e : field_values()) {
            Integer power(base);
            mpz_powm_ui(power.z, power.z, e, p.z);
            EXPECT_EQ(pow_mod(base, e), mpz_get_ui(power.z)) << base << " ^ " << e;
        }
    }
}

TEST(HashField, PowersOfTwoWithNegativeExponents) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min(),
                           most = std::numeric_limits<std::int64_t>::max();
    constexpr std::uint64_t half = std::uint64_t{1} << 60, inverse_word = std::uint64_t{1} << 29;
    for (const std::int64_t e : {0l, 1l, 60l, 61l, 62l, 122l, 1'000'000'007l, most - 1, most, least + 1}) {
        SCOPED_TRACE(e);
        const auto magnitude = static_cast<std::uint64_t>(e < 0 ? -e : e);
        EXPECT_EQ(pow_two(e), pow_mod(e < 0 ? half : 2, magnitude));
        EXPECT_EQ(pow_word(e), pow_mod(e < 0 ? inverse_word : std::uint64_t{1} << 32, magnitude));
        EXPECT_EQ(mul_mod(pow_word(e), pow_word(-e)), 1u);
        EXPECT_EQ(mul_mod(pow_two(e), pow_two(-e)), 1u);
    }
    EXPECT_EQ(pow_two(least), pow_mod(half, std::uint64_t{1} << 63));
    EXPECT_EQ(pow_word(least), pow_mod(inverse_word, std::uint64_t{1} << 63));
    EXPECT_EQ(mul_mod(pow_word(-1), std::uint64_t{1} << 32), 1u);
}

} // namespace

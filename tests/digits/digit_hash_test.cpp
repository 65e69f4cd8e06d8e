#include "digits/hash/digit_hash.h"

#include "app/raised.h"
#include "digits/gmp_value.h"
#include "digits/supported_kernels.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace zvp;

constexpr std::uint64_t unreduced = ~std::uint64_t{0};

/// Digits below `limit`, with runs of zeros and of the largest one.
std::vector<std::uint8_t> random_digits(std::mt19937_64& random, std::size_t n, unsigned limit) {
    std::vector<std::uint8_t> digits;
    while (digits.size() < n) {
        const unsigned kind = static_cast<unsigned>(random() % 4);
        for (std::size_t run = 1 + random() % 40; run > 0 && digits.size() < n; --run)
            digits.push_back(static_cast<std::uint8_t>(kind == 0 ? 0 : kind == 1 ? limit - 1 : random() % limit));
    }
    return digits;
}

class DigitKernelTest : public testing::TestWithParam<platform::KernelSet> {};

TEST_P(DigitKernelTest, LargestDigitsDoNotOverflow) {
    const DigitKernels& kernels = digit_kernels(GetParam());
    std::mt19937_64 random(test::seed());
    for (const unsigned limit : {10u, 16u, 256u}) // whole bytes: only their low halves count
        for (const bool largest : {false, true})
            for (const std::size_t vectors : {0, 1, 2, 3, 4, 5, 15, 16, 17, 31, 32, 33, 61, 62, 123}) {
                const std::size_t n = vectors * kernels.vector_digits;
                std::vector<std::uint8_t> digits = random_digits(random, n + 1, limit);
                if (largest) std::fill(digits.begin(), digits.end(), static_cast<std::uint8_t>(limit - 1));
                const std::uint8_t* const p = digits.data() + 1;
                const std::uint64_t h = hash_modulus - 1;
                SCOPED_TRACE(std::to_string(limit) + " vectors " + std::to_string(vectors) + "; " + test::seed_trace());
                EXPECT_EQ(kernels.hash_decimal(h, p, vectors), test::hashed_digits(h, p, n, 10));
                EXPECT_EQ(kernels.hash_hexadecimal(h, p, vectors), test::hashed_digits(h, p, n, 16));
            }
}

TEST_P(DigitKernelTest, CountsDoNotWrapInAByte) {
    const DigitKernels& kernels = digit_kernels(GetParam());
    std::mt19937_64 random(test::seed());
    for (const std::size_t vectors : {0, 1, 14, 15, 16, 31, 300, 1'000}) {
        const std::size_t n = vectors * kernels.vector_digits;
        for (int value = -1; value < 256; value += value < 15 ? 1 : 60) { // mixed; all the same digit; high bits set
            std::vector<std::uint8_t> digits = random_digits(random, n, 16);
            if (value >= 0) std::fill(digits.begin(), digits.end(), static_cast<std::uint8_t>(value));
            std::uint64_t expected[16]{}, all[16]{}, decimal[16]{};
            for (const std::uint8_t digit : digits) ++expected[digit & 15];
            kernels.count_all(all, digits.data(), vectors);
            kernels.count_decimal(decimal, digits.data(), vectors);
            SCOPED_TRACE("vectors " + std::to_string(vectors) + " value " + std::to_string(value) + "; "
                         + test::seed_trace());
            for (int d = 0; d < 16; ++d) EXPECT_EQ(all[d], expected[d]) << d;
            for (int d = 0; d < 10; ++d) EXPECT_EQ(decimal[d], expected[d]) << d;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EverySet, DigitKernelTest, testing::ValuesIn(test::supported_kernel_sets()),
                         [](const auto& set) { return test::name_of(set.param); });

TEST(DigitHash, EverySplitAndEveryRest) {
    std::mt19937_64 random(test::seed());
    for (const unsigned radix : {10u, 16u}) {
        const std::vector<std::uint8_t> digits = random_digits(random, 600, radix);
        for (std::size_t split = 0; split <= digits.size(); ++split) {
            SCOPED_TRACE("radix " + std::to_string(radix) + " split " + std::to_string(split) + "; "
                         + test::seed_trace());
            const std::size_t rest = digits.size() - split;
            const std::uint64_t first = hash_digits(unreduced, digits.data(), split, radix);
            const std::uint64_t second = hash_digits(0, digits.data() + split, rest, radix);
            const std::uint64_t whole = test::hashed_digits(unreduced, digits.data(), digits.size(), radix);
            EXPECT_EQ(first, test::hashed_digits(unreduced, digits.data(), split, radix));
            EXPECT_EQ(hash_digits(first, digits.data() + split, rest, radix), whole);
            EXPECT_EQ(add_mod(mul_mod(first, pow_mod(radix, rest)), second), whole);
        }
    }
}

TEST(DigitHash, LeadingZerosCountAsAbsent) {
    std::vector<std::uint8_t> digits(1'000, 0);
    for (const unsigned radix : {10u, 16u}) {
        EXPECT_EQ(hash_digits(0, digits.data(), digits.size(), radix), 0u);
        EXPECT_EQ(hash_digits(hash_modulus, digits.data(), digits.size(), radix), 0u);
    }
    digits.push_back(7);
    EXPECT_EQ(hash_digits(0, digits.data(), digits.size(), 10), 7u);
}

TEST(DigitHash, TakesTheTwoRadicesOnly) {
    const std::uint8_t digit = 1;
    EXPECT_EQ(test::raised_by([&] { hash_digits(0, &digit, 1, 8); }), "InvalidParametersException: Invalid Radix.");
}

} // namespace

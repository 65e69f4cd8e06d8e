#include "bbp/digit_buffer.h"
#include "bbp/supported_kernels.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace BBPv2;
__extension__ using Wide = __int128;
__extension__ using UnsignedWide = unsigned __int128;

constexpr std::uint64_t digit_base = std::uint64_t{1} << digit_bits;

/// Digits of a sum modulo 1, the most significant first.
using Digits = std::vector<std::uint64_t>;

void carry(Digits& digits) {
    for (std::size_t j = digits.size(); j-- > 0;) {
        if (j != 0) digits[j - 1] += digits[j] / digit_base;
        digits[j] %= digit_base;
    }
}

std::uint64_t power_of_two_modulo(std::uint64_t exponent, std::uint64_t m) {
    UnsignedWide result = 1 % m, square = 2 % m;
    for (; exponent != 0; exponent >>= 1, square = square * square % m)
        if ((exponent & 1) != 0) result = result * square % m;
    return static_cast<std::uint64_t>(result);
}

/// Adds the digits of remainder / m from `place` on, cut.
void add_quotient(Digits& digits, UnsignedWide remainder, std::uint64_t m, std::size_t place) {
    for (std::size_t j = place; j < digits.size(); ++j) {
        remainder *= digit_base;
        digits[j] += static_cast<std::uint64_t>(remainder / m);
        remainder %= m;
    }
    carry(digits);
}

Digits exact_sum(const PowerTerms& terms, std::size_t n) {
    Digits digits(n);
    for (std::size_t i = 0; i < terms.count; ++i) {
        const std::uint64_t m = terms.divisor + i * terms.divisor_step;
        add_quotient(digits, power_of_two_modulo(terms.exponent - i * terms.exponent_step, m), m, 0);
    }
    return digits;
}

Digits exact_sum(const ShiftedTerms& terms, std::size_t n) {
    Digits digits(n);
    for (std::size_t i = 0; i < terms.count; ++i) {
        const std::uint64_t m = terms.divisor + i * terms.divisor_step;
        const std::uint64_t shift = terms.shift + i * terms.shift_step;
        const std::size_t place = shift / digit_bits;
        if (place >= n) continue;
        const std::uint64_t dividend = std::uint64_t{1} << (digit_bits - shift % digit_bits);
        digits[place] += dividend / m;
        add_quotient(digits, dividend % m, m, place + 1);
    }
    return digits;
}

/// The lanes' sums as one sum.
Digits merged(DigitBuffer& buffer, std::size_t lanes) {
    buffer.normalize();
    Digits digits(buffer.size());
    for (std::size_t j = 0; j < digits.size(); ++j)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            digits[j] += static_cast<std::uint64_t>(buffer.data()[j * lanes + lane]);
    carry(digits);
    return digits;
}

/// |a - b| modulo 1 in units of the last digit; huge when it reaches into the digits before.
std::uint64_t distance(const Digits& a, const Digits& b) {
    Wide difference = 0;
    for (std::size_t j = 0; j < a.size(); ++j) {
        difference = difference * static_cast<Wide>(digit_base) + static_cast<Wide>(a[j]) - static_cast<Wide>(b[j]);
        const Wide whole = static_cast<Wide>(digit_base);
        if (j == 0 && difference > whole / 2) difference -= whole; // wraps around 1
        if (j == 0 && difference < -whole / 2) difference += whole;
        if (difference > 1'000'000'000 || difference < -1'000'000'000) return ~std::uint64_t{0};
    }
    return static_cast<std::uint64_t>(difference < 0 ? -difference : difference);
}

std::string describe(const char* kind, std::uint64_t divisor, std::uint64_t exponent, std::size_t count) {
    return std::string(kind) + " divisor " + std::to_string(divisor) + " exponent or shift " + std::to_string(exponent)
           + " count " + std::to_string(count) + "; " + test::seed_trace();
}

class KernelTest : public testing::TestWithParam<zvp::platform::KernelSet> {
protected:
    static constexpr std::size_t words = 6;

    const BBPKernels& kernels = bbp_kernels(GetParam());

    template <class Sum, class Terms>
    void expect_exact(Sum sum, const Terms& terms) {
        DigitBuffer buffer(words, kernels.lanes);
        EXPECT_EQ(sum(buffer.data(), buffer.size(), terms), GetParam()); // the code of this set ran
        // Each term rounds its last digit by at most half a unit; the oracle cuts a whole one.
        EXPECT_LE(distance(merged(buffer, kernels.lanes), exact_sum(terms, buffer.size())), 2 * terms.count);
    }

    /// One call for each of many shapes: short and odd counts, exponents from 0 up, divisors from 1 to the very
    /// limit.
    template <class Sum>
    void expect_exact_powers(Sum sum, unsigned divisor_bits) {
        std::mt19937_64 random(test::seed());
        for (int i = 0; i < 400; ++i) {
            PowerTerms terms{};
            terms.count = 1 + random() % 200;
            terms.divisor_step = i % 2 == 0 ? 8 : 20;
            terms.exponent_step = i % 2 == 0 ? 4 : 20;
            const std::uint64_t span = terms.count * terms.divisor_step;
            const std::uint64_t limit = (std::uint64_t{1} << divisor_bits) - 1;
            terms.divisor =
                i % 3 == 0 ? limit - span - 2 * (random() % 50) : test::random_up_to_bits(random, divisor_bits);
            terms.divisor = std::min(terms.divisor, limit - span) | 1;
            terms.exponent = terms.exponent_step * (terms.count - 1) + test::random_up_to_bits(random, 61);
            SCOPED_TRACE(describe("power", terms.divisor, terms.exponent, terms.count));
            expect_exact(sum, terms);
        }
    }
};

TEST_P(KernelTest, PowersAreExactUpToTheModesLimit) {
    expect_exact_powers(kernels.sum_powers_mode_a, mode_a_bits);
    expect_exact_powers(kernels.sum_powers_mode_b, mode_b_bits);
}

TEST_P(KernelTest, ExponentsDifferAboveTheMantissa) { // a carry runs through all bits inside one block
    for (const unsigned bits : {20u, 52u, 53u, 60u}) {
        const PowerTerms terms{1'000'003, 8, (std::uint64_t{1} << bits) + 100, 4, 64};
        SCOPED_TRACE(bits);
        expect_exact(kernels.sum_powers_mode_a, terms);
        expect_exact(kernels.sum_powers_mode_b, terms);
    }
}

TEST_P(KernelTest, ShiftedTermsBeginAtTheirOwnPlace) {
    std::mt19937_64 random(test::seed());
    for (int i = 0; i < 400; ++i) {
        const std::uint64_t step = i % 2 == 0 ? 4 : 20;
        const ShiftedTerms terms{i % 4 == 0 ? 1 : random() >> (64 - mode_b_bits + 1) | 1, i % 2 == 0 ? 8u : 20u,
                                 i % 5 == 0 ? 48 : random() % 400, step, 1 + random() % 200};
        SCOPED_TRACE(describe("shifted", terms.divisor, terms.shift, terms.count));
        expect_exact(kernels.sum_shifted, terms);
    }
}

TEST_P(KernelTest, TheLongestCallDoesNotOverflowASum) {
    const PowerTerms terms{(std::uint64_t{1} << mode_b_bits) - 1 - 8 * max_call_terms, 8, 1u << 30, 4, max_call_terms};
    expect_exact(kernels.sum_powers_mode_b, terms);
}

INSTANTIATE_TEST_SUITE_P(EverySet, KernelTest, testing::ValuesIn(test::supported_kernel_sets()),
                         [](const auto& set) { return test::name_of(set.param); });

} // namespace

#include "constants/catalog/computation_size.h"

#include "app/raised.h"
#include "support/program.h"

#include <mpfr.h>

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using test::printed_by;
using test::raised_by;

/// digits log(from)/log(to), rounded down or up, with 256 bits.
std::uint64_t converted(std::uint64_t digits, unsigned from, unsigned to, mpfr_rnd_t rounding) {
    mpfr_t ratio, divisor;
    mpfr_inits2(256, ratio, divisor, nullptr);
    mpfr_set_ui(ratio, from, MPFR_RNDN);
    mpfr_log(ratio, ratio, MPFR_RNDN);
    mpfr_set_ui(divisor, to, MPFR_RNDN);
    mpfr_log(divisor, divisor, MPFR_RNDN);
    mpfr_div(ratio, ratio, divisor, MPFR_RNDN);
    mpfr_mul_ui(ratio, ratio, digits, MPFR_RNDN);
    const std::uint64_t result = mpfr_get_ui(ratio, rounding);
    mpfr_clears(ratio, divisor, nullptr);
    return result;
}

TEST(ComputationSize, EquivalentsAreOffByOne) {
    std::vector<std::uint64_t> sizes{1, 2, 99, 100, 101, max_decimal_digits, max_decimal_digits - 1};
    for (std::uint64_t size = 150; size < max_decimal_digits; size = size * 7 / 4 + 3) sizes.push_back(size);
    for (const std::uint64_t size : sizes) {
        EXPECT_EQ(hexadecimal_equivalent_of(size), converted(size, 10, 16, MPFR_RNDD)) << size;
        EXPECT_EQ(decimal_equivalent_of(size), converted(size, 16, 10, MPFR_RNDU)) << size;
    }
}

TEST(ComputationSize, TheWorkingSizeCarriesTooFewDigits) {
    for (const std::uint64_t decimal : {100u, 1'000'000u, 12'345'678u}) {
        for (const std::uint64_t hexadecimal : {0u, 83u, 830'482u, 5'000'000u, 40'000'000u}) {
            ComputationSize size(decimal);
            size.set_hexadecimal_digits(hexadecimal, max_decimal_digits);
            const ComputationSize working = size.working_size();
            EXPECT_GE(working.decimal_digits, decimal + 100);
            EXPECT_GE(working.hexadecimal_equivalent, hexadecimal == 0 ? 0 : hexadecimal + 83);
            EXPECT_EQ(working.precision_words, working.hexadecimal_equivalent / 8 + 3);
            if (hexadecimal <= size.hexadecimal_equivalent) {
                EXPECT_EQ(working.decimal_digits, decimal + 100);
            }
        }
    }
}

TEST(ComputationSize, AnImpossibleSizeIsTaken) {
    const std::string low = "InvalidParametersException: Computation size must be at least ";
    const std::string high = "InvalidParametersException: Computation size cannot be larger than ";
    constexpr std::uint64_t maximum = 1'000'000;
    const struct {
        bool hexadecimal;
        std::uint64_t digits;
        std::string raised;
    } cases[] = {
        {false, 0, low + "100 decimal digits."},
        {false, 99, low + "100 decimal digits."},
        {false, 100, "nothing"},
        {false, maximum, "nothing"},
        {false, maximum + 1, high + "1,000,000 decimal digits."},
        {false, ~std::uint64_t{0}, high + "1,000,000 decimal digits."},
        {true, 0, "nothing"},
        {true, 1, low + "83 hexadecimal digits."},
        {true, 83, "nothing"},
        {true, 830'482, "nothing"},
        {true, 830'483, high + "830,482 hexadecimal digits."},
    };
    for (const auto& c : cases) {
        ComputationSize size(5000);
        const ComputationSize before = size;
        EXPECT_EQ(raised_by([&] {
                      c.hexadecimal ? size.set_hexadecimal_digits(c.digits, maximum)
                                    : size.set_decimal_digits(c.digits, maximum);
                  }),
                  c.raised)
            << c.digits;
        if (c.raised != "nothing") {
            EXPECT_TRUE(size == before);
        }
    }
}

TEST(ComputationSize, HexadecimalDigitsStayBehind) {
    ComputationSize size(1000);
    EXPECT_EQ(size.hexadecimal_digits, 830u);
    size.set_decimal_digits(2000, max_decimal_digits);
    EXPECT_EQ(size.hexadecimal_digits, 1660u);
    size.set_hexadecimal_digits(0, max_decimal_digits);
    size.set_decimal_digits(3000, max_decimal_digits);
    EXPECT_EQ(size.hexadecimal_digits, 0u);
    size.enable_hexadecimal_digits(true);
    EXPECT_EQ(size.hexadecimal_digits, 2491u);
    size.set_hexadecimal_digits(5000, max_decimal_digits); // a number of its own
    size.set_decimal_digits(4000, max_decimal_digits);
    EXPECT_EQ(size.hexadecimal_digits, 5000u);
    EXPECT_EQ(size.precision_words, 5000u / 8 + 3);
}

TEST(ComputationSize, AnotherConstantLeavesASizeBeyondItsLimits) {
    const std::string clipped = "\nPrecision above maximum: Clipping to maximum.\n";
    ComputationSize size(5000);
    EXPECT_EQ(printed_by([&] { size.normalize(5000); }), "");
    EXPECT_EQ(printed_by([&] { size.normalize(1000); }), clipped);
    EXPECT_TRUE(size == ComputationSize(1000));
    size.set_hexadecimal_digits(4000, max_decimal_digits);
    EXPECT_EQ(printed_by([&] { size.normalize(1000); }), clipped);
    EXPECT_TRUE(size == ComputationSize(1000));
    ComputationSize small(50);
    EXPECT_EQ(printed_by([&] { small.normalize(1000); }), "\nPrecision below minimum. Adjusting to minimum.\n");
    EXPECT_TRUE(small == ComputationSize(100));
}

} // namespace

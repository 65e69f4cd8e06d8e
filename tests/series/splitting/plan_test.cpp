// Sizes of ranges, and the memory that plans tell.

#include "splitting_support.h"

#include <iostream>

namespace {

using namespace test;

template <class Family, class Series>
void expect_refusals(const Series& series, std::uint64_t b) {
    using Number = bs::ExactNumber;
    const bs::BSR_BlockB<Family> block(series, 0, b, 1, 3, 1, 1);
    const auto& plan = block.plan;
    const auto name = [](std::size_t has, std::size_t needs) {
        return "BSR_BlockB::run() " + std::to_string(has) + " " + std::to_string(needs);
    };
    const auto failure = [&](typename BlockRun<Family>::Missing missing, std::uint32_t tds) {
        BlockRun<Family> run(block, missing);
        return failure_of([&] { run.template run<Number>(tds); });
    };
    EXPECT_EQ(failure({}, 3), "nothing");
    EXPECT_EQ(failure({16, 0, 0}, 3), name(plan.number_words - 16, plan.number_words));
    if (Family::numbers > Family::results) {
        EXPECT_EQ(failure({0, 16, 0}, 3), name(plan.scratch_number_words - 16, plan.scratch_number_words));
    }
    EXPECT_EQ(failure({0, 0, 64}, 3), name(plan.scratch_bytes - 64, plan.scratch_bytes));
    EXPECT_EQ(failure({}, 4),
              "InvalidParametersException: BSR_BlockB::run() Attempted to run with a larger tds than the "
              "plan supports.");
}

TEST(BlockPlan, OneLineLessIsRefused) {
    expect_refusals<bs::CommonP2B3::Family>(CubicSeries(true), 3'000);
    expect_refusals<bs::Hyperdescent::Family>(ExponentialSeries(true), 3'000);
    expect_refusals<bs::BinaryBBP::Family>(PowerSeries(2), 3'000);
    expect_refusals<bs::BrentMcMillanAB::Family>(BesselSeries(6, 3'000), 3'000);
}

/// What the plan tells is no more than the numbers and transforms of the recursion need, and a constant.
TEST(BlockPlan, IsNotWasteful) {
    const CubicSeries series(true);
    for (const std::uint64_t b : {1'000U, 10'000U, 100'000U}) {
        const bs::BSR_BlockB<bs::CommonP2B3::Family> block(series, 0, b, 1, 1, 1, 0);
        EXPECT_LE(block.plan.number_words, block.size_words + 1200);
        EXPECT_LE(block.plan.scratch_number_words, block.size_words + 32);
        EXPECT_LE(block.plan.scratch_bytes,
                  zvp::algorithm_table<wtype>().mSBsize(block.size_words + 8, 1, true) + 65'536);
    }
}

/// Series whose sizes must hold what GMP says: printed as a table.
TEST(Sizes, AreNeverBelowTheTruth) {
    std::cout << "range, largest number in words, estimate\n";
    const auto check = [](const char* name, const auto& series, std::uint64_t a, std::uint64_t b, std::size_t results) {
        const ExactSum sum = sum_by_gmp(series, a, b);
        std::size_t largest = 0;
        for (std::size_t i = 0; i < results; ++i)
            largest = std::max(largest, (mpz_sizeinbase(sum.numbers[i].get_mpz_t(), 2) + 31) / 32);
        std::cout << name << " (" << a << ", " << b << "] " << largest << " " << series.size_words(a, b) << "\n";
        EXPECT_GE(series.size_words(a, b), largest);
        EXPECT_LE(static_cast<double>(series.size_words(a, b)), 1.01 * static_cast<double>(largest) + 4);
    };
    for (const auto& [a, b] :
         {std::pair{0ULL, 1ULL}, std::pair{0ULL, 10ULL}, std::pair{5ULL, 6ULL}, std::pair{0ULL, 1'000ULL},
          std::pair{99'000ULL, 99'001ULL}, std::pair{50'000ULL, 52'000ULL}, std::pair{0ULL, 20'000ULL}}) {
        check("cubic", CubicSeries(true), a, b, 3);
        check("exponential", ExponentialSeries(false), a, b, 2);
    }
}

/// The split by size: S(m - 1) < mean <= S(m), also where double-doubles take over.
TEST(Sizes, MidpointHalvesTheSize) {
    CubicSeries series(true);
    for (const auto& [a, b] : {std::pair{0ULL, 2ULL}, std::pair{0ULL, 3ULL}, std::pair{0ULL, 1'000ULL},
                               std::pair{123'456ULL, 9'999'999ULL}, std::pair{1ULL << 45, (1ULL << 48) - 1},
                               std::pair{1ULL << 45, 1ULL << 48}, std::pair{1ULL << 48, 1ULL << 61}}) {
        SCOPED_TRACE(testing::Message() << a << " " << b);
        const std::uint64_t m = series.midpoint(a, b);
        const DoubleDouble half = (series.size_at(a) + series.size_at(b)) * DoubleDouble(0.5);
        const DoubleDouble slack = series.size_at(b) * DoubleDouble(1e-15);
        EXPECT_TRUE(series.size_at(m) >= half - slack);
        EXPECT_TRUE(series.size_at(m - 1) < half + slack);
    }
    EXPECT_EQ(series.midpoint(7, 7), 7U);
    EXPECT_EQ(series.midpoint(7, 8), 8U);
}

/// Words and digits where doubles end and double-doubles begin.
TEST(Sizes, WordsAndDigitsOfHugeRanges) {
    const CubicSeries series(true);
    for (const std::uint64_t b : {std::uint64_t{1} << 20, (std::uint64_t{1} << 48) - 1, std::uint64_t{1} << 48,
                                  (std::uint64_t{1} << 50) - 1, std::uint64_t{1} << 50, std::uint64_t{1} << 53}) {
        SCOPED_TRACE(b);
        const DoubleDouble nats = series.log_range(1000, b);
        const DoubleDouble words = nats * zvp::words_per_nat();
        const double rounding = 4e-16 * words.hi;
        const auto exact = static_cast<double>(truncated_sum(words));
        EXPECT_NEAR(static_cast<double>(series.size_words(1000, b)), exact + 2, 1 + rounding);
        const DoubleDouble digits = nats * zvp::digits_per_nat();
        EXPECT_NEAR(static_cast<double>(series.size_digits(1000, b)), static_cast<double>(truncated_sum(digits)),
                    1 + 4e-16 * digits.hi);
    }
}

/// A leaf that nobody wrote says so.
TEST(Leaves, MissingOnesAreReported) {
    class NoLeaf final : public FactorialSized<bs::CommonP2B3::Series> {
    } common;
    class NoTerm final : public FactorialSized<bs::CommonP2B3::BasicIntSeries> {
    } term;
    bs::ExactNumber n;
    std::vector<wtype> words(100);
    bs::ExactNumber target(words.data(), words.size());
    const std::string missing = "InvalidParametersException: BSR_E() Not implemented.";
    EXPECT_EQ(failure_of([&] { common.BSR_E({}, n, n, n, n, 0, 1); }), missing);
    EXPECT_EQ(failure_of([&] { term.BSR_E({}, target, n, n, n, 0, 1); }),
              "InvalidParametersException: BSR_End() Not implemented.");
    class NoBinary final : public FactorialSized<bs::BinaryBBP::Series> {
    } binary;
    EXPECT_EQ(failure_of([&] { binary.BSR_E({}, n, n, n, 0, 1); }), missing);
    class NoDescent final : public FactorialSized<bs::Hyperdescent::Series> {
    } descent;
    EXPECT_EQ(failure_of([&] { descent.BSR_E({}, n, n, 0, 1); }), missing);
    class NoPair final : public FactorialSized<bs::BrentMcMillanAB::Series> {
    } pair;
    bs::BrentMcMillanAB::NumbersOf<bs::ExactNumber> numbers;
    EXPECT_EQ(failure_of([&] { pair.BSR_E({}, numbers, 0, 1); }), missing);
}

} // namespace

#include "radix/direct_convert.h"

#include "radix/overlap.h"
#include "radix/radix_support.h"
#include "radix/remainder_float.h"
#include "support/seed.h"

#include <map>
#include <utility>

namespace {

using namespace test;
using zvp::AlgorithmFailedException;
using zvp::DirectConvertB;

constexpr std::uint32_t billion = 1'000'000'000;

/// The words of a conversion may be one too low in their last place where what was cut off would have carried.
void expect_digits(const BigFloat& x, std::uint32_t R, std::size_t n, std::uint32_t tds, std::size_t plan_words) {
    const Digits digits = converted(x, R, n, tds, plan_words);
    for (const std::uint32_t digit : digits) ASSERT_LT(digit, R);
    const mpz_class difference = scaled_fraction(x, R, n) - value_of(digits, R);
    EXPECT_TRUE(difference == 0 || difference == 1) << "R = " << R << ", " << n << " words, " << tds << " tasks, "
                                                    << x.L << " words of x at " << x.exp << ", off by " << difference;
}

/// The tree, as the obvious recursion tells it.
TEST(DirectConvert, PlansHaveTheTreesShape) {
    const struct {
        std::uint64_t N, b;
        unsigned levels;
    } cases[] = {{1, 1, 0}, {31, 31, 0}, {32, 16, 1}, {33, 17, 1}, {62, 31, 1}, {64, 16, 2}, {1'000'000, 31, 15}};
    for (const auto& c : cases) {
        const zvp::ConvertShape shape(c.N);
        EXPECT_EQ(shape.b, c.b) << c.N;
        EXPECT_EQ(shape.levels, c.levels) << c.N;
    }
    const DirectConvertB leaf(billion, 31, 4);
    EXPECT_EQ(leaf.table.forms_bytes, 0u);
    const DirectConvertB serial(billion, 1000, 1);
    EXPECT_EQ(serial.table.T, 0u);
    for (unsigned i = 0; i < serial.table.shape.levels; ++i) EXPECT_EQ(serial.table.levels[i].tasks, 1u);
    EXPECT_EQ(DirectConvertB(billion, 64, 64).table.T, 0u);
    const DirectConvertB wide(billion, 100'000, 5);
    EXPECT_EQ(wide.table.T, 3u);
    EXPECT_EQ(wide.table.levels[wide.table.shape.levels - 1].tasks, 5u);
    EXPECT_EQ(wide.table.levels[wide.table.shape.levels - 3].tasks, 2u);
    EXPECT_EQ(wide.table.levels[wide.table.shape.levels - 4].tasks, 1u);
}

TEST(DirectConvert, WordsOfPowersAreExact) {
    for (const std::uint32_t R : {2u, 3u, 10u, billion, 0x8000'0000u, 0xFFFF'FFFFu})
        for (const std::uint64_t n : {0u, 1u, 31u, 32u, 33u, 1000u, 12'345u}) {
            mpz_class power;
            mpz_ui_pow_ui(power.get_mpz_t(), R, n);
            EXPECT_EQ(zvp::radix_words(R, n), (mpz_sizeinbase(power.get_mpz_t(), 2) - 1) / 32) << R << "^" << n;
        }
}

TEST(DirectConvert, DigitsAreGmps) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const std::size_t sizes[] = {1, 2, 3, 16, 31, 32, 33, 62, 63, 64, 65, 100, 127, 128, 500, 1023, 1500, 4099, 11'112};
    for (const std::size_t n : sizes)
        for (const std::uint32_t tds : {1u, 2u, 3u, 8u}) {
            if (n > 5000 && tds == 3) continue;
            const std::size_t words = zvp::radix_words(billion, n) + 6;
            const auto below = -static_cast<std::int64_t>(words);
            expect_digits(Number(random_words(random, words), below).f, billion, n, tds, n);
            expect_digits(Number(random_words(random, words + 1), below).f, billion, n, tds, n);
        }
    for (const std::uint32_t R : {2u, 3u, 10u, 1'000'003u, 0x4000'0000u, 0x8000'0000u, 0xFFFF'FFFFu})
        for (const std::size_t n : {5u, 77u, 1000u})
            expect_digits(Number(random_words(random, n + 9), -static_cast<std::int64_t>(n + 9)).f, R, n, 2, n);
}

/// Numbers that are shorter, longer, or lie elsewhere than their digits, and outputs shorter than the plan's.
TEST(DirectConvert, NumbersLieAnywhere) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    testing::internal::CaptureStdout();
    for (const std::size_t n : {1u, 20u, 40u, 333u, 2100u})
        for (const std::size_t words : {1u, 2u, 30u, 700u, 5000u})
            for (const std::int64_t exp : {-1, -2, -7, -300, -701, -4999, -5001, 0, 3}) {
                const Number x(random_words(random, words), exp, random() % 2);
                expect_digits(x.f, billion, n, 1 + random() % 3, n);
                expect_digits(x.f, billion, n, 2, n + random() % (2 * n));
            }
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(converted(BigFloat(), billion, 100, 2, 100), Digits(100, 0));
}

/// Fractions a / R^m have digits that end in zeros, or, one unit of the last word lower, in R - 1: a split in such a run
/// shows what its products cut. m stands at the splits of each level, 512 to 32 words, and between them.
TEST(DirectConvert, RunsOfNinesAndZerosAreRepaired) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const std::size_t n = 1000, words = zvp::radix_words(billion, n) + 8;
    std::map<std::uint32_t, std::size_t> repairs;
    for (const std::size_t m :
         {1u, 15u, 16u, 31u, 32u, 250u, 499u, 500u, 501u, 512u, 750u, 768u, 896u, 960u, 992u, 999u})
        for (const int step : {-1, 0, 1}) {
            mpz_class power, a;
            mpz_ui_pow_ui(power.get_mpz_t(), billion, m);
            for (std::size_t i = 0; i < m; ++i) a = a * billion + random() % billion;
            mpz_class fraction = (a << (32 * words)) / power + step;
            if (fraction < 0 || mpz_sizeinbase(fraction.get_mpz_t(), 2) > 32 * words) continue;
            Words T(words);
            mpz_export(T.data(), nullptr, -1, sizeof(T[0]), 0, 0, fraction.get_mpz_t());
            while (!T.empty() && T.back() == 0) T.pop_back();
            const Number x(T, -static_cast<std::int64_t>(words));
            for (const std::uint32_t tds : {1u, 2u, 4u}) {
                testing::internal::CaptureStdout();
                const Digits digits = converted(x.f, billion, n, tds, n);
                const std::string output = testing::internal::GetCapturedStdout();
                repairs[tds] += output.find("Performing additive correction...") != std::string::npos;
                mpz_class off = scaled_fraction(x.f, billion, n) - value_of(digits, billion);
                EXPECT_TRUE(off == 0 || off == 1) << m << " words, step " << step << ", off by " << off;
            }
        }
    for (const std::uint32_t tds : {1u, 2u, 4u}) EXPECT_GT(repairs[tds], 0u) << tds << " tasks";
}

/// A prepared power that doesn't belong to its level is refused before a word is written.
TEST(DirectConvert, AWrongPowerIsRefused) {
    const DirectConvertB plan(billion, 100, 1);
    PlanRun<DirectConvertB> run(plan);
    zvp::AlignedBufferC<64> buffer = run.buffer();
    const zvp::AlignedBufferC<64> forms = buffer.spawn(plan.table.forms_bytes);
    zvp::ReadyPowers powers(plan.table, run.pars, nullptr, forms, buffer);
    run.pars.M = buffer.pointer;
    run.pars.ML = buffer.bytes;
    const struct {
        std::int64_t exp;
        std::uint64_t longer;
        const char* failure;
    } cases[] = {
        {-1000, 1, "AlgorithmFailedException: RemainderFloatB::set_inverse_fmul() Unexpected: tmag < 0"},
        {0, 40, "InvalidParametersException: RemainderFloatB::set_inverse_fmul() Truncated Range"},
        {0, 1, "nothing"},
    };
    const Words before(600, 5);
    for (const auto& c : cases) {
        zvp::PowerTransform& power = powers.powers[1];
        const std::int64_t exp = std::exchange(power.exp, power.exp + c.exp);
        const std::uint64_t length = std::exchange(power.L, power.L * c.longer);
        Words area = before;
        zvp::RemainderFloatB lower{area.data() + 300, 0, 300};
        const zvp::RemainderFloatB input{area.data() + 600, 300, 300};
        EXPECT_EQ(failure_of([&] { lower.set_inverse_fmul(powers, 1, input, run.pars); }), c.failure);
        EXPECT_EQ(area == before, c.exp != 0 || c.longer != 1);
        power.exp = exp;
        power.L = length;
    }
}

TEST(DirectConvert, OverlapsAreRepairedThroughWholeWords) {
    const std::uint32_t R = billion, top = R - 1;
    testing::internal::CaptureStdout();
    Digits digits = {top, top, 7, 1};
    zvp::repair_overlap(R, digits.data(), digits.size(), 0, top);
    EXPECT_EQ(digits, (Digits{0, 0, 8, 1}));
    zvp::repair_overlap(R, digits.data(), digits.size(), top, 0);
    EXPECT_EQ(digits, (Digits{top, top, 7, 1}));
    const std::string output = testing::internal::GetCapturedStdout();
    for (const char* text : {"Overlap Mismatch", "Expected:", "Actual:", "Performing additive correction...",
                             "Performing subtractive correction..."})
        EXPECT_NE(output.find(text), std::string::npos) << text;

    const struct {
        Digits upper;
        std::uint32_t expected, actual;
        const char* function;
    } failures[] = {{{top, top}, 0, top, "add1()"}, {{0, 0}, top, 0, "sub1()"}, {{5, 5}, 8, 7, "fixup()"}};
    for (const auto& c : failures) {
        Digits upper = c.upper;
        testing::internal::CaptureStdout();
        try {
            zvp::repair_overlap(R, upper.data(), upper.size(), c.expected, c.actual);
            ADD_FAILURE() << c.function;
        } catch (const AlgorithmFailedException& failure) {
            EXPECT_EQ(failure.function, c.function);
        }
        testing::internal::GetCapturedStdout();
    }
}

TEST(DirectConvert, PlansAreExact) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Number x(random_words(random, 4000), -4000);
    for (const std::size_t n : {40u, 1000u, 4000u})
        for (const std::uint32_t tds : {1u, 2u, 4u}) {
            const DirectConvertB plan(billion, n, tds);
            Digits out(n);
            PlanRun<DirectConvertB> run(plan, 64);
            run.pars.tds = tds;
            EXPECT_THROW(plan.run(run.pars, nullptr, out.data() + n, n, x.f, run.buffer()),
                         zvp::BufferTooSmallException);
            EXPECT_TRUE(run.memory.guards_are_intact());
            PlanRun<DirectConvertB> good(plan);
            EXPECT_THROW(plan.run(good.pars, nullptr, out.data() + n, n + 1, x.f, good.buffer()),
                         zvp::InvalidParametersException);
        }
    EXPECT_THROW(DirectConvertB(1, 100, 1), zvp::InvalidParametersException);
}

} // namespace

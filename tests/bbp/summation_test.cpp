#include "app/failure/exceptions.h"
#include "bbp/bbp_session.h"
#include "bbp/supported_kernels.h"
#include "bbp/threaded_sum.h"
#include "support/program.h"

#include <gtest/gtest.h>

namespace {

using namespace BBPv2;
using zvp::platform::KernelSet;

/// The fraction of 16^offset * Pi, and nothing of its threads' order or modes may show in it.
FractionFloat pi_fraction(Formula formula, std::uint64_t offset, const std::vector<const SummationMode*>& modes,
                          std::uint32_t threads, std::size_t words = 4) {
    FractionFloat total(words);
    const std::uint64_t terms = terms_needed(formula, offset, 8 * words).terms;
    for (const TermRecord& record : term_records(formula, offset)) {
        const FractionFloat sum = sum_record(record, terms, words, modes, {threads, false}, [](std::uint64_t) {});
        record.positive ? total += sum : total -= sum;
    }
    return total;
}

TEST(Summation, EveryFormulaModeAndThreadCountGivesTheDigitsOfPi) {
    const struct {
        std::uint64_t offset;
        std::vector<std::uint32_t> digits;
    } cases[] = {{0, {0x243F'6A88, 0x85A3'08D3}}, {1000, {0x49F1'C09B, 0x0753'72C9}}, {99'999, {}}};
    for (const KernelSet set : test::supported_kernel_sets()) {
        const ModeA a(bbp_kernels(set));
        const ModeB b(bbp_kernels(set));
        for (const auto& c : cases) {
            std::vector<std::uint32_t> expected = c.digits;
            for (const auto& modes : {std::vector<const SummationMode*>{&a}, {&b}, {&a, &b}}) {
                for (const Formula formula : {Formula::bbp_4_terms, Formula::bellard_7_terms}) {
                    for (const std::uint32_t threads : {1u, 2u, 7u}) {
                        const FractionFloat pi = pi_fraction(formula, c.offset, modes, threads);
                        const std::vector<std::uint32_t> got(pi.words.begin(), pi.words.begin() + 2);
                        if (expected.empty()) expected = got; // the first variant vouches for the others
                        EXPECT_EQ(got, expected) << test::name_of(set) << " offset " << c.offset << " modes "
                                                 << modes.size() << " threads " << threads;
                    }
                }
            }
        }
    }
}

TEST(Summation, ModesAgreeOnDivisorsJustBelowTheLimitOfA) {
    const std::uint64_t k1 = ((std::uint64_t{1} << mode_a_bits) - 2) / 8;
    for (const KernelSet set : test::supported_kernel_sets()) {
        const ModeA a(bbp_kernels(set));
        const ModeB b(bbp_kernels(set));
        FractionFloat by_a(4), by_b(4);
        const auto start = static_cast<std::int64_t>(4 * k1 + 1'000'000);
        a.sum_range(by_a, 8, 1, -4, start, k1 - 5000, k1);
        b.sum_range(by_b, 8, 1, -4, start, k1 - 5000, k1);
        by_a -= by_b;
        // They round differently behind the last digit: equal but for the lowest word, from either side.
        EXPECT_TRUE(by_a.words[0] == 0 || by_a.words[0] == 0xFFFF'FFFF) << test::name_of(set);
        EXPECT_EQ(by_a.words[0], by_a.words[2]) << test::name_of(set);
    }
}

TEST(Summation, ARangeIsTheSumOfItsTermsWhereExponentsPassBelowZero) {
    for (const KernelSet set : test::supported_kernel_sets()) {
        const ModeA mode(bbp_kernels(set));
        for (const std::int64_t start : {-1, 0, 2, 399, 400, 401}) {
            FractionFloat whole(8), terms(8);
            mode.sum_range(whole, 8, 1, -4, start, 0, 150);
            for (std::uint64_t k = 0; k < 150; ++k) mode.sum_term(terms, 8, 1, -4, start, k);
            whole -= terms;
            for (std::size_t i = 0; i < 7; ++i)
                EXPECT_TRUE(whole.words[i] == 0 || whole.words[i] == 0xFFFF'FFFF) << test::name_of(set) << start;
        }
    }
}

TEST(Summation, ADivisorBeyondTheModeIsToldOnce) {
    const ModeA mode(bbp_kernels(KernelSet::sse3));
    FractionFloat out(3);
    const auto sum = [&] { mode.sum_term(out, 8, 1, -4, 1'000'000, (std::uint64_t{1} << 46) + 1); };
    EXPECT_NE(test::printed_by(sum).find("Maximum coefficient size of 2^49 has been exceeded."), std::string::npos);
    EXPECT_EQ(test::printed_by(sum), "");
}

TEST(SummableRange, GivesEachModeItsDivisorsTheLargestFirst) {
    const ModeA a(bbp_kernels(KernelSet::sse3));
    const ModeB b(bbp_kernels(KernelSet::sse3));
    const std::uint64_t last_a = (a.limit() - 1) / 8, last_b = (b.limit() - 1) / 8;
    const auto ranges = SummableRange({&a, &b}, 8, 1, last_a - 10, last_a + 10);
    ASSERT_EQ(ranges.size(), 2u);
    EXPECT_EQ(ranges[0].mode, &b);
    EXPECT_EQ(ranges[0].k0, last_a);
    EXPECT_EQ(ranges[0].k1, last_a + 10);
    EXPECT_EQ(ranges[1].mode, &a);
    EXPECT_EQ(ranges[1].k1, last_a);
    EXPECT_EQ(SummableRange({&a, &b}, 8, 1, 0, 100).size(), 1u);

    const auto message_of = [](const auto& modes, std::uint64_t k1) {
        try {
            SummableRange(modes, 8, 1, 0, k1);
        } catch (const zvp::InvalidParametersException& e) {
            return e.function + ": " + e.message;
        }
        return std::string("nothing thrown");
    };
    using Modes = std::vector<const SummationMode*>;
    EXPECT_EQ(message_of(Modes{}, 1), "BBPv2::SummableRange(): No modes enabled.");
    EXPECT_EQ(message_of(Modes{&a, &b}, last_b + 1), "BBPv2::SummableRange(): No mode is able to handle this range.");
    EXPECT_EQ(message_of(Modes{&a, &b}, last_b), "nothing thrown");
}

TEST(ThreadedSum, ChunksShrinkTowardsTheEndAndNeverPassIt) {
    EXPECT_EQ(chunk_terms(0, 4), 0u);
    EXPECT_EQ(chunk_terms(9'999, 4), 9'999u);
    EXPECT_EQ(chunk_terms(10'000, 4), 10'000u);
    EXPECT_EQ(chunk_terms(1'000'000, 4), 125'001u);
    EXPECT_EQ(chunk_terms(1'000'000'000'000, 4), 400'000'000u);
    EXPECT_EQ(chunk_terms(1'000'000, 65'536), 10'000u);
}

TEST(ThreadedSum, AThreadsFailureEndsTheRunAndIsThrownToTheCaller) {
    const ModeA mode(bbp_kernels(KernelSet::sse3));
    const TermRecord record{8, 1, -4, 4'000'002, true};
    for (const std::uint32_t threads : {1u, 3u}) {
        const auto fail = [](std::uint64_t) { throw zvp::AlgorithmFailedException("progress()", "Out of luck."); };
        EXPECT_THROW(sum_record(record, 200'000, 4, {&mode}, {threads, true}, fail), zvp::AlgorithmFailedException);
    }
    EXPECT_THROW(sum_record(record, 100, 4, {}, {2, false}, [](std::uint64_t) {}), zvp::InvalidParametersException);
}

TEST(BBPSession, DerivesItsSizesFromTheSettings) {
    zorvane::BBPSession session;
    EXPECT_EQ(session.words, 6u);
    EXPECT_EQ(session.terms, 1'000'000'048u);
    EXPECT_EQ(session.largest_divisor, 8'000'000'386u);
    session.algorithm = 1;
    session.digits = 8;
    session.offset = 0;
    session.update_settings();
    EXPECT_EQ(session.words, 3u);
    EXPECT_EQ(session.terms, 96u / 20 + 1);
    session.offset = zorvane::BBPSession::max_offset;
    session.update_settings();
    EXPECT_GT(session.largest_divisor, session.offset); // no overflow at the largest setting
    session.algorithm = 2;
    EXPECT_THROW(session.update_settings(), zvp::InvalidParametersException);
}

TEST(BBPSession, StartsOnlyIfAModeTakesTheLargestDivisor) {
    zorvane::BBPSession session;
    std::string reason;
    const auto reason_with = [&](bool a, bool b, std::uint64_t offset) {
        session.mode_a = a;
        session.mode_b = b;
        session.offset = offset;
        session.update_settings();
        return session.can_start(reason) ? "can start" : reason;
    };
    const std::uint64_t just_in_a = (std::uint64_t{1} << 46) - 1 - 48; // 8 N + 2 = 2^49 - 6
    EXPECT_EQ(reason_with(false, false, 0), "No modes enabled.");
    EXPECT_EQ(reason_with(true, false, just_in_a), "can start");
    EXPECT_EQ(reason_with(true, false, just_in_a + 1), "Divisor exceeds limit of 2^49 - 1.");
    EXPECT_EQ(reason_with(true, true, just_in_a + 1), "can start");
    EXPECT_EQ(reason_with(false, true, std::uint64_t{1} << 48), "Divisor exceeds limit of 2^51 - 1.");
}

} // namespace

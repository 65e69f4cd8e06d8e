#include "digits/hash/digit_counts.h"

#include "app/raised.h"
#include "digits/gmp_value.h"
#include "digits/hash/digit_source.h"
#include "parallel/tasks/push_pool.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

namespace {

using namespace zvp;

std::vector<std::uint8_t> digits_of(unsigned limit, std::size_t n) {
    std::mt19937_64 random(test::seed());
    std::vector<std::uint8_t> digits(n);
    for (std::uint8_t& digit : digits) digit = static_cast<std::uint8_t>(random() % limit);
    return digits;
}

void expect_equal(const DigitCounts& actual, const DigitCounts& expected) {
    EXPECT_EQ(actual.radix, expected.radix);
    EXPECT_EQ(actual.radix_copy, expected.radix_copy);
    EXPECT_EQ(actual.counts, expected.counts);
    EXPECT_EQ(normalize_hash(actual.hash), normalize_hash(expected.hash));
}

/// Digit by digit; `base` is the radix of the hash, 0 for none.
DigitCounts counted_slowly(DigitCounts counts, const std::uint8_t* digits, std::size_t n, unsigned base) {
    for (std::size_t i = 0; i < n; ++i) ++counts.counts[digits[i] & 15];
    if (base != 0) counts.hash = test::hashed_digits(counts.hash, digits, n, base);
    return counts;
}

TEST(DigitCounts, RadixOutsideTwoToSixteenFails) {
    const std::string failure = "InvalidParametersException: Radix is too large.";
    for (const unsigned radix : {0u, 1u, 17u, 256u, 258u, 266u})
        EXPECT_EQ(test::raised_by([&] { DigitCounts counts(radix); }), failure) << radix;
    for (const unsigned radix : {2u, 16u}) EXPECT_EQ(DigitCounts(radix, 5).radix_copy, radix);
}

TEST(DigitCounts, CountsAndHashesRunsOfEveryLength) {
    const std::vector<std::uint8_t> bytes = digits_of(256, 20'001);
    for (const unsigned radix : {2u, 9u, 10u, 11u, 16u})
        for (const unsigned limit : {radix, 16u, 256u}) // 16: damaged digits; 256: the high halves don't count
            for (const std::size_t n : {0, 1, 63, 64, 65, 255, 256, 257, 8'191, 8'192, 8'193, 20'000}) {
                std::vector<std::uint8_t> digits(bytes.begin() + 1, bytes.end());
                for (std::uint8_t& digit : digits) digit = static_cast<std::uint8_t>(digit % limit);
                SCOPED_TRACE(std::to_string(radix) + " limit " + std::to_string(limit) + " n " + std::to_string(n)
                             + "; " + test::seed_trace());
                const DigitCounts start(radix, ~std::uint64_t{0});
                DigitCounts counts = start;
                counts.add(digits.data(), n);
                expect_equal(counts, counted_slowly(start, digits.data(), n, radix % 6 == 4 ? radix : 0));
            }
}

TEST(DigitCounts, MergedPartsAreTheWhole) {
    const std::vector<std::uint8_t> digits = digits_of(10, 3'000);
    DigitCounts whole(10, 3);
    whole.add(digits.data(), digits.size());
    for (const std::size_t split : {0, 1, 8, 17, 1'499, 2'999, 3'000}) {
        DigitCounts first(10, 3), second(10);
        first.add(digits.data(), split);
        second.add(digits.data() + split, digits.size() - split);
        first.scale_hash(digits.size() - split);
        first.merge(second);
        expect_equal(first, whole);
    }
}

TEST(DigitCounts, TextShowsTheDigitsOfTheRadix) {
    DigitCounts counts(3);
    const std::uint8_t digits[]{2, 0, 2};
    counts.add(digits, 3);
    EXPECT_EQ(counts.counts_text(), "{1, 0, 2}");
}

/// Digits in memory that come in words of 9; fails on the piece that holds `bad`.
class FakeSource final : public DigitSource {
public:
    explicit FakeSource(const std::vector<std::uint8_t>& digits_) : digits(digits_) {}

    void process(DigitCounts& counts, std::uint64_t begin, std::uint64_t end) override {
        ++pieces;
        EXPECT_EQ(begin % (64 * 9), 0u);
        if (begin <= bad && bad < end) throw std::runtime_error("bad digit");
        counts.add(digits.data() + begin, end - begin);
    }

    std::atomic<std::uint64_t> pieces = 0;
    std::uint64_t bad = ~std::uint64_t{0};

private:
    const std::vector<std::uint8_t>& digits;
};

TEST(ParallelCounts, EverySplitCountsAsOneThread) {
    struct Case {
        std::size_t n;
        std::uint32_t tasks;
        std::uint64_t pieces, min_digits = 10'000;
    };
    const std::vector<std::uint8_t> digits = digits_of(10, 1'200'000);
    PushPool pool({}, [](std::uint32_t) {});
    // 10'000 rounded up to whole groups of 64 words is 10'368.
    for (const Case& c : {Case{0, 3, 1}, Case{9'999, 2, 1}, Case{10'368, 2, 1}, Case{10'369, 2, 2}, Case{10'369, 1, 1},
                          Case{50'000, 3, 3}, Case{1'200'000, 64, 64}, Case{1'200'000, 100, 100},
                          Case{1'200'000, 1'000, 116}, Case{2'000, 2, 2, 1'000}}) {
        SCOPED_TRACE("n " + std::to_string(c.n) + " tasks " + std::to_string(c.tasks) + "; " + test::seed_trace());
        FakeSource source(digits);
        DigitCounts start(10, 123), expected = start;
        start.counts[4] = 44;
        expected.counts[4] = 44;
        expected.add(digits.data(), c.n);
        DigitCounts counts = start;
        count_digits(counts, source, c.n, {64 * 9, c.min_digits}, {c.tasks, &pool});
        expect_equal(counts, expected);
        EXPECT_EQ(source.pieces, c.pieces);
        counts = start;
        count_digits(counts, source, c.n, {64 * 9, c.min_digits}, {c.tasks, nullptr});
        expect_equal(counts, expected);
    }
    EXPECT_EQ(DigitSplit::of_words(19).unit, 64u * 19);
}

TEST(ParallelCounts, AFailingPieceLeavesTheCountsAsTheyWere) {
    const std::vector<std::uint8_t> digits = digits_of(10, 50'000);
    PushPool pool({}, [](std::uint32_t) {});
    FakeSource source(digits);
    source.bad = 30'000;
    const DigitCounts start(10, 9);
    DigitCounts counts = start;
    EXPECT_THROW(count_digits(counts, source, digits.size(), DigitSplit::of_words(9), {4, &pool}), std::runtime_error);
    expect_equal(counts, start);
}

} // namespace

#include "app/failure/exceptions.h"
#include "bbp/digit_buffer.h"
#include "bbp/fraction_float.h"

#include <gtest/gtest.h>

namespace {

using namespace BBPv2;

FractionFloat fraction(std::vector<std::uint32_t> words) {
    FractionFloat f(words.size());
    f.words = std::move(words);
    return f;
}

TEST(FractionFloat, CarriesAndBorrowsRunThroughAndLeaveAtOne) {
    constexpr std::uint32_t ones = 0xFFFF'FFFF;
    FractionFloat f = fraction({ones, ones, ones});
    f += fraction({0, 0, 1});
    EXPECT_EQ(f.words, (std::vector<std::uint32_t>{0, 0, 0}));
    f -= fraction({0, 0, 1});
    EXPECT_EQ(f.words, (std::vector<std::uint32_t>{ones, ones, ones}));
    f -= fraction({0, 1, ones});
    EXPECT_EQ(f.words, (std::vector<std::uint32_t>{ones, ones - 1, 0}));
}

TEST(FractionFloat, ShiftsAcrossWordsAndOut) {
    const struct {
        std::uint64_t bits;
        std::vector<std::uint32_t> expected;
    } cases[] = {{0, {0x89AB'CDEF, 0x0123'4567, 0x8000'0001}},
                 {4, {0x089A'BCDE, 0xF012'3456, 0x7800'0000}},
                 {32, {0, 0x89AB'CDEF, 0x0123'4567}},
                 {36, {0, 0x089A'BCDE, 0xF012'3456}},
                 {95, {0, 0, 1}},
                 {96, {0, 0, 0}},
                 {~std::uint64_t{0}, {0, 0, 0}}};
    for (const auto& c : cases) {
        FractionFloat f = fraction({0x89AB'CDEF, 0x0123'4567, 0x8000'0001});
        f >>= c.bits;
        EXPECT_EQ(f.words, c.expected) << c.bits;
    }
}

TEST(FractionFloat, RefusesLengthsThatDoNotFit) {
    EXPECT_THROW(FractionFloat(1), zvp::InvalidParametersException);
    FractionFloat f(3);
    EXPECT_THROW(f += FractionFloat(2), zvp::InvalidParametersException);
    EXPECT_THROW(f -= FractionFloat(4), zvp::InvalidParametersException);
}

TEST(DigitBuffer, NegativeSumsOfAllLanesBecomeOneFraction) {
    for (const std::size_t words : {2, 3, 4, 5, 6, 7}) {
        DigitBuffer buffer(words, 2);
        // -1 in the last digit of one lane and 2 in that of the other; 3/4 in the first digit.
        buffer.data()[2 * buffer.size() - 2] = -1;
        buffer.data()[2 * buffer.size() - 1] = 2;
        buffer.data()[0] = std::int64_t{3} << 46;
        FractionFloat out(words);
        buffer.add_to(out);
        FractionFloat expected(words);
        expected.words[0] = 0xC000'0000;
        const std::size_t cut = 48 * buffer.size() - 32 * words; // bits of the digits below the words
        if (cut == 0) expected.words.back() += 1;
        EXPECT_EQ(out.words, expected.words) << words;
    }
}

} // namespace

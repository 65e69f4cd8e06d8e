// Digits out of words, in every kernel set, at every place.

#include "digits/supported_kernels.h"
#include "digits/writer/word_digits.h"
#include "digits/writer/writer_support.h"

namespace {

using namespace test;
using DigitViewer2::FloatReaderB;
using zvp::DigitCounts;

/// Words at the edges of what a step of the decoders divides.
Words awkward_words(std::mt19937_64& random, std::size_t n, std::uint32_t limit) {
    constexpr std::uint32_t edges[] = {0,           1,           9,          99,          100,
                                       9'999,       10'000,      99'999'999, 100'000'000, 999'999'999,
                                       999'990'000, 123'456'789, 9'999'999,  10'009'999,  900'000'000};
    Words words(n);
    for (std::uint32_t& word : words)
        word = random() % 3 == 0 ? edges[random() % std::size(edges)] : static_cast<std::uint32_t>(random() % limit);
    return words;
}

/// The digits of the words from the top down.
std::string digits_of(const Words& words, const char* form) {
    std::string text;
    for (std::size_t i = words.size(); i-- > 0;) {
        char digits[16];
        std::snprintf(digits, sizeof digits, form, words[i]);
        text += digits;
    }
    return text;
}

TEST(WordDigits, EveryCountOfWordsInEveryKernelSet) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const zvp::platform::KernelSet set : supported_kernel_sets()) {
        SCOPED_TRACE(name_of(set));
        const zvp::WordDecoders& decoders = zvp::word_decoders(set);
        ASSERT_EQ(decoders.set, set);
        for (std::size_t n = 0; n < 100; ++n) {
            const Words decimal = awkward_words(random, n, 1'000'000'000), binary = awkward_words(random, n, ones);
            Values output(9 * n + 1, 0xEE);
            decoders.decimal(output.data(), decimal.data(), n);
            EXPECT_EQ(output.back(), 0xEE);
            output.pop_back();
            ASSERT_EQ(text_of(output), digits_of(decimal, "%09u"));
            output.assign(8 * n + 1, 0xEE);
            decoders.hexadecimal(output.data(), binary.data(), n);
            EXPECT_EQ(output.back(), 0xEE);
            output.pop_back();
            ASSERT_EQ(text_of(output), digits_of(binary, "%08x"));
        }
    }
}

TEST(WordDigits, AllWordsNearTheEdgesOfTheDivisions) {
    for (const zvp::platform::KernelSet set : supported_kernel_sets()) {
        const zvp::WordDecoder decode = zvp::word_decoders(set).decimal;
        Words words;
        for (std::uint64_t step = 100; step <= 100'000'000; step *= 10)
            for (std::uint64_t i = 1; i <= 1'000'000'000 / step && i <= 3'000; ++i)
                for (const std::uint64_t near : {i * step - 1, i * step, 1'000'000'000 - i * step})
                    if (near < 1'000'000'000) words.push_back(static_cast<std::uint32_t>(near));
        Values output(9 * words.size());
        decode(output.data(), words.data(), words.size());
        ASSERT_EQ(text_of(output), digits_of(words, "%09u")) << name_of(set);
    }
}

/// A word that isn't below 10^9 comes from a fault: it mustn't look like good digits.
TEST(WordDigits, AWordThatIsTooLargeShows) {
    for (const std::uint32_t word : {1'000'000'000u, 1'073'741'824u + 5, 0xFFFF'FFFFu}) {
        Values output(9);
        zvp::word_decoders(zvp::platform::active_kernel_set()).decimal(output.data(), &word, 1);
        EXPECT_GT(output[0], 9);
    }
}

TEST(FloatReader, AnyRangeOfEitherRadix) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Contexts contexts;
    for (const unsigned radix : {10u, 16u}) {
        const Words words = awkward_words(random, 9'001, radix == 10 ? 1'000'000'000 : ones);
        const std::string all =
            digits_of(words, radix == 10 ? "%09u" : "%08x") + (radix == 10 ? "" : std::string(80, '0'));
        const Number x(words, -9'001);
        const auto reader = radix == 10 ? std::make_unique<FloatReaderB>(words.data(), words.size(), 7)
                                        : std::make_unique<FloatReaderB>(x.f, words.size() + 10);
        ASSERT_EQ(reader->stream_end(), all.size());
        EXPECT_EQ(reader->first_digits(), (radix == 10 ? "7." : "0.") + all.substr(0, 50));
        for (int i = 0; i < 60; ++i) {
            const std::size_t start = random() % all.size();
            const std::size_t count = (i % 2 ? random() % 40 : random()) % (all.size() - start + 1);
            const zvp::ParallelContext context = contexts.all()[random() % 3];
            Values output(count + 1, 0xEE);
            DigitCounts stats(radix, 99), only_stats(radix, 99), expected(radix, 99);
            reader->load_digits(output.data(), &stats, start, count, {}, context);
            reader->load_stats(only_stats, start, count, {}, context);
            EXPECT_EQ(output.back(), 0xEE);
            output.pop_back();
            ASSERT_EQ(text_of(output), all.substr(start, count)) << start;
            expected.add(output.data(), count);
            EXPECT_EQ(stats.hash, expected.hash);
            EXPECT_EQ(only_stats.hash, expected.hash);
            EXPECT_EQ(stats.counts, expected.counts);
            EXPECT_EQ(only_stats.counts, expected.counts);
        }
        EXPECT_TRUE(reader->range_is_available(all.size(), 0));
        EXPECT_FALSE(reader->range_is_available(all.size(), 1));
        EXPECT_FALSE(reader->range_is_available(~std::uint64_t{0}, 2));
        EXPECT_EQ(fault_of([&] { reader->load_digits(nullptr, nullptr, all.size(), 1, {}, {}); }),
                  "FloatReaderB::load_digits()|Out of range.");
    }
}

TEST(FloatReader, TakesNumbersNearOne) {
    struct Row {
        Words words;
        std::int64_t exp;
        std::size_t min_words;
        std::string first; // empty: out of range
    };
    const std::vector<Row> rows{
        {{0x243f6a88, 3}, -1, 0, "3.243f6a88"},
        {{0x80000000}, -1, 0, "0.80000000"},
        {{0x80000000}, -1, 2, "0.8000000000000000"},
        {{0xffffffff, 0xffffffff}, -1, 0, "ffffffff.ffffffff"},
        {{1}, 0, 1, "1.00000000"},
        {{1}, 0, 0, ""},
        {{}, 0, 0, ""},
        {{5, 1}, 0, 1, ""},
        {{1}, 1, 1, ""},
        {{7}, -2, 0, ""},
        {{1, 2, 3}, -1, 0, ""},
    };
    for (const Row& row : rows) {
        const Number x(row.words, row.exp);
        std::string first;
        const std::string fault = fault_of([&] { first = FloatReaderB(x.f, row.min_words).first_digits(); });
        EXPECT_EQ(first, row.first);
        EXPECT_EQ(fault, row.first.empty() ? "FloatReaderB::FloatReaderB()|Object is out of range." : "nothing");
    }
}

} // namespace

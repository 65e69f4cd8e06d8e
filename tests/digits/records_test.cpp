#include "digits/digest/sha2.h"
#include "digits/records/hashed_digits.h"
#include "digits/records/last_digits.h"

#include "app/raised.h"
#include "parallel/memory/aligned_malloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

using namespace zvp;

/// Digit k is (k + k / 50) modulo the radix.
class FakeReader final : public DigitViewer2::BasicDigitReader {
public:
    explicit FakeReader(std::uint8_t radix_) : BasicDigitReader(radix_) {}

    std::uint8_t digit(std::uint64_t k) const { return static_cast<std::uint8_t>((k + k / 50) % radix); }
    std::string text(std::uint64_t start, std::uint64_t count) const {
        std::string digits;
        for (std::uint64_t k = start; k < start + count; ++k) digits += "0123456789abcdef"[digit(k)];
        return digits;
    }

    std::string first_digits() override { return "3." + text(0, 50); }
    std::uint64_t stream_end() override { return 0; }
    bool range_is_available(std::uint64_t, std::uint64_t) override { return true; }
    std::size_t recommend_buffer_size(std::uint64_t, std::size_t limit) override {
        EXPECT_EQ(limit, 1'073'741'824u);
        return 12'345;
    }
    void flush_cache() override {}
    void load_stats(DigitCounts&, std::uint64_t, std::uint64_t, DigitViewer2::DigitBuffer,
                    const ParallelContext&) override {
        FAIL() << "not asked for";
    }
    void load_digits(std::uint8_t* output, DigitCounts*, std::uint64_t start, std::uint64_t count,
                     DigitViewer2::DigitBuffer buffer, const ParallelContext&) override {
        EXPECT_EQ(buffer.bytes, 12'345u);
        std::fill_n(buffer.pointer, buffer.bytes, std::byte{7});
        if (overruns) {
            damaged = buffer;
            damage();
        }
        if (broken) throw std::runtime_error("broken");
        for (std::uint64_t i = 0; i < count; ++i) output[i] = digit(start + i);
    }

    /// Frees the block that was left where it was.
    void mend() {
        damage();
        aligned_free(damaged.pointer);
    }

    bool broken = false;
    bool overruns = false;

private:
    void damage() { damaged.pointer[damaged.bytes] ^= std::byte{1}; }

    DigitViewer2::DigitBuffer damaged;
};

TEST(LastDigits, StartAtTheMultipleOfFifty) {
    struct Case {
        std::uint64_t total, start;
    };
    for (const Case& c : {Case{0, 0}, Case{1, 0}, Case{50, 0}, Case{100, 0}, Case{101, 50}, Case{150, 50},
                          Case{151, 100}, Case{200, 100}, Case{1'000'000, 999'900}, Case{1'000'001, 999'950}}) {
        for (const std::uint8_t radix : {10, 16}) {
            SCOPED_TRACE(c.total);
            FakeReader reader(radix);
            LastDigits digits;
            digits.set(c.total, reader);
            EXPECT_EQ(digits.start, c.start);
            EXPECT_EQ(digits.radix, radix);
            EXPECT_EQ(digits.text, reader.text(c.start, c.total - c.start));
        }
    }
}

TEST(LastDigits, LinesShowThePositionBehindThem) {
    FakeReader reader(10);
    LastDigits digits;
    digits.set(1'051, reader);
    EXPECT_EQ(digits.start, 1'000u);
    EXPECT_EQ(digits.file_text(), "Last Decimal Digits:\r\n"
                                  "0123456789 0123456789 0123456789 0123456789 0123456789  :  1,050\r\n"
                                  "1\r\n");
    testing::internal::CaptureStdout();
    digits.print();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "0123456789 0123456789 0123456789 0123456789 0123456789  : 1,050\n"
              "1\n");
    FakeReader hexadecimal(16);
    digits.set(100, hexadecimal);
    EXPECT_EQ(digits.file_text(), "Last Hexadecimal Digits:\r\n"
                                  "0123456789 abcdef0123 456789abcd ef01234567 89abcdef01  :  50\r\n"
                                  "3456789abc def0123456 789abcdef0 123456789a bcdef01234  :  100\r\n"
                                  "\r\n");
    EXPECT_EQ(LastDigits().file_text(), "Last Digits:\r\n\r\n");
}

TEST(LastDigits, AFailureLeavesTheRecord) {
    FakeReader good(10), octal(8), broken(10);
    LastDigits digits;
    digits.set(30, good);
    EXPECT_EQ(test::raised_by([&] { digits.set(60, octal); }), "InvalidParametersException: Invalid Radix.");
    broken.broken = true;
    EXPECT_EQ(test::raised_by([&] { digits.set(60, broken); }), "broken");
    broken.overruns = true; // of two failures the reader's is told
    EXPECT_EQ(test::raised_by([&] { digits.set(60, broken); }), "broken");
    broken.mend();
    EXPECT_EQ(digits.text, good.text(0, 30));
}

TEST(HashedDigits, CoversExactlyTheRange) {
    for (const std::uint8_t radix : {10, 16}) {
        FakeReader reader(radix);
        const HashedDigits digits(reader, 1'000, 237);
        EXPECT_EQ(digits.start, 1'000u);
        EXPECT_EQ(digits.end, 1'237u);
        EXPECT_EQ(digits.length, 237u);
        EXPECT_EQ(digits.sha256, sha256_text(reader.text(1'000, 237)));
        EXPECT_EQ(digits.report_text(), "SHA256-dec(1,001 - 1,237): " + digits.sha256);
    }
    FakeReader octal(8);
    EXPECT_EQ(test::raised_by([&] { HashedDigits(octal, 0, 5); }), "InvalidParametersException: Invalid Radix.");
}

TEST(HashedDigits, AReaderBeyondItsBufferIsFound) {
    FakeReader reader(10);
    reader.overruns = true;
    EXPECT_EQ(test::raised_by([&] { HashedDigits(reader, 0, 5); }),
              "AlgorithmFailedException: Memory buffer has been overrun.");
    reader.mend();
}

} // namespace

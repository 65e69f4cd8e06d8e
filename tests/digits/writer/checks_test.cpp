// Every check bites: what is damaged between two steps is told by the check that is there for it.

#include "digits/writer/read_check.h"
#include "digits/writer/writer_support.h"
#include "radix/direct_convert.h"

#include <map>

namespace {

using namespace test;
using DigitViewer2::BasicTextReader;
using zvp::DigitCounts;
using zvp::DigitOutput;

struct Damage : testing::Test {
    static constexpr std::uint64_t digits = 20'000, hexadecimal = 15'003;

    Damage() {
        output.path = folder.path / "";
        Real pi(80'000);
        mpfr_const_pi(pi.x, MPFR_RNDN);
        x = std::make_unique<Number>(number_of(pi, words_for(digits + 100)));
    }

    /// The outcome of a run in which `act` is called before the step `line`.
    std::string run(const std::string& line, const std::function<void(Writing&)>& act) {
        Writing writing(output, true, partial, digits + 100, digits, hexadecimal, 2);
        bool acted = false;
        writing.sink.on_task = [&](const std::string& begun) {
            if (begun == line) act(writing);
            acted |= begun == line;
        };
        testing::internal::CaptureStdout();
        const std::string fault = writing.fault(x->f);
        printed = testing::internal::GetCapturedStdout();
        EXPECT_TRUE(acted);
        return fault;
    }

    std::filesystem::path file(const char* radix) const {
        return folder.path / ("Pi - " + std::string(radix) + " - Test.txt");
    }

    TemporaryFolder folder;
    DigitOutput output;
    std::unique_ptr<Number> x;
    bool partial = true;
    std::string printed;
};

constexpr const char* conversion = "FloatWriterB::verify()|Base Conversion Failed: Checksum Mismatch";
constexpr const char* binary = "FloatWriterB::verify_binary_words()|Checksum Mismatch";
constexpr const char* output_failed = "read_check()|Digit output failed. Metadata cross-check doesn't match.";

TEST_F(Damage, RadixWords) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (int i = 0; i < 40; ++i) {
        partial = i % 2 == 0;
        const unsigned bit = static_cast<unsigned>(random() % 29);
        const std::size_t back = i == 0 ? 3 : random() % (digits / 9); // from the top; never among the guard words
        EXPECT_EQ(run("Writing Decimal Digits",
                      [&](Writing& writing) { writing.radix_words()[writing.writer.words - 1 - back] ^= 1u << bit; }),
                  conversion)
            << "bit " << bit << ", word " << back;
        EXPECT_NE(printed.find("R = "), std::string::npos);
        EXPECT_NE(printed.find("B = "), std::string::npos);
    }
}

/// The conversion cuts what is below its lowest word, and the proof what is below the point: one of difference is no fault.
TEST_F(Damage, TheLowestWordMayBeOffByOne) {
    std::string passed;
    for (int step = -3; step <= 3; ++step) {
        const std::string fault = run("Writing Decimal Digits", [&](Writing& writing) {
            writing.radix_words()[0] += static_cast<std::uint32_t>(step);
        });
        EXPECT_TRUE(fault == "nothing" || fault == conversion) << fault;
        passed += fault == "nothing" ? '1' : '0';
    }
    EXPECT_EQ(passed[3], '1');
    EXPECT_TRUE(passed == "0111000" || passed == "0011100" || passed == "0001110") << passed;
}

/// A bit of the powers, their forms, or the fractions between two steps of the conversion: what isn't told does no harm.
TEST_F(Damage, Conversion) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const std::string right = exact_digits(x->f, 10, digits);
    std::size_t steps = 0;
    const auto flipped = [&](std::size_t step, bool near) { // near: behind the forms, where the powers are squared
        Writing writing(output, true, true, digits + 100, digits, 0, 2);
        writing.sink.stepped = "Base Converting";
        writing.sink.step = step;
        writing.sink.on_step = [&] {
            const std::size_t forms = writing.writer.convert_plan->table.forms_bytes;
            const std::size_t at = near ? forms + random() % 4'096 : random() % writing.writer.convert_bytes;
            writing.buffer.p[4 * writing.writer.aligned_words + at] ^= std::byte{1} << random() % 8;
        };
        testing::internal::CaptureStdout();
        const std::string fault = writing.fault(x->f);
        testing::internal::GetCapturedStdout();
        if (steps == 0) steps = writing.sink.steps;
        EXPECT_TRUE(fault != "nothing" || read_file(file("Dec")) == right) << "step " << step;
        return fault;
    };
    EXPECT_EQ(flipped(~std::size_t{0}, false), "nothing");
    ASSERT_GT(steps, 7u);
    std::map<std::string, int> faults;
    for (int i = 0; i < 300; ++i) {
        const std::string fault = flipped(random() % steps, i % 2 == 0);
        ++faults[fault.substr(0, fault.find(":\n"))];
    }
    for (const char* fault : {"nothing", "ReadyTableB::make_tables()|Checksum Mismatch", conversion})
        EXPECT_GT(faults[fault], 0) << fault;
    for (const auto& [fault, count] : faults) RecordProperty(fault, count);
}

/// A word of 10^9 or more has no digits, which the file tells before any proof.
TEST_F(Damage, RadixWordsThatAreNone) {
    EXPECT_EQ(run("Writing Decimal Digits",
                  [&](Writing& writing) { writing.radix_words()[writing.writer.words - 100] |= 3u << 30; }),
              "BasicTextWriter::store_digits()|Invalid Digit");
}

TEST_F(Damage, BinaryNumber) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const std::size_t words = x->f.L;
    for (int i = 0; i < 40; ++i) {
        // Within the hexadecimal digits, the integer word among them.
        const std::size_t word = words - 1 - random() % (hexadecimal / 8);
        std::uint32_t& damaged = x->f.T[word];
        const std::uint32_t flip = 1u << random() % 32;
        const auto damage = [&](Writing&) { damaged ^= flip; };
        EXPECT_EQ(run("Verifying Binary Output", damage), binary);
        EXPECT_NE(printed.find("Before Hash = "), std::string::npos);
        EXPECT_NE(printed.find("After  Hash = "), std::string::npos);
        damaged ^= flip;
        EXPECT_EQ(run("Verifying Base Conversion", damage), conversion);
        damaged ^= flip;
        EXPECT_EQ(run("Base Converting", damage), binary); // the digits belong to the damaged number
        damaged ^= flip;
    }
    EXPECT_EQ(run("Base Converting", [](Writing&) {}), "nothing");
}

TEST_F(Damage, WrittenFiles) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const char* radix : {"Dec", "Hex"}) {
        const std::string line = std::string("Verifying ") + (radix[0] == 'D' ? "Decimal" : "Hexadecimal") + " Output";
        const auto changed = [&](const std::function<void(std::string&)>& change) {
            return run(line, [&](Writing&) {
                std::string text = read_file(file(radix));
                change(text);
                write_file(file(radix), text);
            });
        };
        for (int i = 0; i < 10; ++i) { // one digit is another one
            const std::size_t place = 2 + random() % (hexadecimal - 2);
            EXPECT_EQ(changed([&](std::string& text) { text[place] = text[place] == '7' ? '1' : '7'; }), output_failed);
            EXPECT_NE(printed.find("Pre-Write Hash = "), std::string::npos);
            EXPECT_NE(printed.find("Read-Back Hash = "), std::string::npos);
        }
        EXPECT_EQ(changed([](std::string& text) { // the counts stay
                      text[5'000] = text[5'001] == '1' ? '2' : '1';
                      std::swap(text[5'000], text[5'001]);
                  }),
                  output_failed);
        EXPECT_EQ(changed([](std::string& text) { text[9'000] ^= 0x40; }),
                  "BasicTextReader::process_txt()|Invalid Digit");
        EXPECT_EQ(changed([](std::string& text) { text.resize(9'000); }),
                  "BasicTextReader::load_stats()|Incomplete read.");
        EXPECT_EQ(changed([](std::string&) {}), "nothing");
    }
}

/// A reader with any first digits.
class NamedReader final : public DigitViewer2::BasicDigitReader {
public:
    NamedReader(unsigned radix_, std::string first_)
        : BasicDigitReader(static_cast<std::uint8_t>(radix_)), first(std::move(first_)) {}
    std::string first_digits() override { return first; }
    std::uint64_t stream_end() override { return 0; }
    bool range_is_available(std::uint64_t, std::uint64_t) override { return false; }
    std::size_t recommend_buffer_size(std::uint64_t, std::size_t) override { return 0; }
    void flush_cache() override { ++flushed; }
    void load_stats(DigitCounts&, std::uint64_t, std::uint64_t, DigitViewer2::DigitBuffer,
                    const zvp::ParallelContext&) override {}
    void load_digits(std::uint8_t*, DigitCounts*, std::uint64_t, std::uint64_t, DigitViewer2::DigitBuffer,
                     const zvp::ParallelContext&) override {}
    int flushed = 0;

private:
    const std::string first;
};

TEST(ReadCheck, FrontsAndBuffers) {
    struct Row {
        unsigned radix;
        std::string first;
        std::uint64_t hash;
        std::string fault;
    };
    const std::vector<Row> rows{
        {10, "31.4", 31, "nothing"},
        {16, "ff.0", 255, "nothing"},
        {10, "ff.0", 255, "read_check()|Invalid decimal digit in first digits."},
        {16, "xy.0", 0, "read_check()|Invalid hexadecimal digit in first digits."},
        {10, "-3.1", 0, "read_check()|Invalid decimal digit in first digits."},
        {10, "314", 0, "read_check()|A decimal place was not found within the first 63 bytes of the file."},
        {12, "3.1", 3, "read_check()|Invalid radix."},
        {10, "31.4", 32, output_failed},
    };
    const Sectors sectors(4'096);
    const zvp::AlignedBufferC<64> buffer(sectors.data, sectors.bytes);
    for (const Row& row : rows) {
        NamedReader reader(row.radix, row.first);
        const DigitCounts expected(row.radix, row.hash);
        std::string fault;
        printed_by([&] { fault = fault_of([&] { zvp::read_check({}, {}, reader, 0, expected, buffer); }); });
        EXPECT_EQ(fault, row.fault) << row.first;
        EXPECT_EQ(reader.flushed, row.fault == "nothing" ? 1 : 0);
    }
    NamedReader reader(10, "31.4");
    const std::string label = "AlignedBufferC::extract_aligned()";
    EXPECT_EQ(fault_of([&] {
                  zvp::read_check({}, {}, reader, 0, DigitCounts(10, 31), {sectors.data + 64, 4'032});
              }),
              label + "|4032 of 8128");
}

} // namespace

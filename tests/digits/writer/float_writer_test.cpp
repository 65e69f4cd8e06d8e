// The whole road from a number to proved digits in files.

#include "digits/writer/writer_support.h"

#include "digits/digest/sha2.h"

#include <algorithm>

namespace {

using namespace test;
using zvp::DigitOutput;
using zvp::DigitResult;
using zvp::OutputFormat;

/// Pi, log 2, or a number with a large integer part.
void set_constant(Real& real, int which) {
    if (which == 0) mpfr_const_pi(real.x, MPFR_RNDN);
    if (which == 1) mpfr_const_log2(real.x, MPFR_RNDN);
    if (which == 2) mpfr_sqrt_ui(real.x, 987'654'321'012'345'678, MPFR_RNDN);
}

std::string text_between(const std::string& text, std::size_t begin, std::size_t end) {
    return text.substr(begin, end - begin);
}

/// floor(value of all digits) modulo 2^61 - 1, the point left out.
std::uint64_t hash_of(std::string digits, int radix) {
    digits.erase(digits.find('.'), 1);
    const mpz_class residue = mpz_class(digits, radix) % mpz_class(std::to_string(zvp::hash_modulus));
    return residue.get_ui();
}

void expect_result(const DigitResult& result, const std::string& digits, int radix) {
    const std::string fraction = digits.substr(digits.find('.') + 1);
    EXPECT_EQ(zvp::normalize_hash(result.counts.hash), hash_of(digits, radix));
    for (std::uint8_t d = 0; d < radix; ++d)
        EXPECT_EQ(result.counts.counts[d],
                  static_cast<std::uint64_t>(std::count(fraction.begin(), fraction.end(), character_of(d))));
    EXPECT_EQ(std::string(result.last.text), fraction.substr(result.last.start));
}

TEST(FloatWriter, DigitsOfConstantsAtOddSizes) {
    for (const std::uint64_t digits : {100, 101, 997, 4'096, 12'345, 65'537}) {
        const auto which = static_cast<int>(digits % 3);
        const std::uint64_t hexadecimal = digits * 830 / 1000, compute = digits + 100;
        Real real(static_cast<mpfr_prec_t>(4 * compute + 500));
        set_constant(real, which);
        const Number x = number_of(real, words_for(compute));
        const std::string all = exact_digits(x.f, 10, compute + 1);
        const std::string decimal = all.substr(0, all.find('.') + 1 + digits);
        for (const std::uint32_t tasks : {1u, 3u}) {
            SCOPED_TRACE(std::to_string(digits) + " digits, constant " + std::to_string(which) + ", tasks "
                         + std::to_string(tasks));
            const TemporaryFolder folder;
            DigitOutput output;
            output.path = folder.path / "";
            output.raw_io = tasks == 1;
            Writing writing(output, true, digits % 2 == 0, compute, digits, hexadecimal, tasks);
            writing.run(x.f);
            EXPECT_TRUE(writing.buffer.guards_are_intact());
            EXPECT_TRUE(x.guards_are_intact());
            EXPECT_EQ(read_file(folder.path / "Pi - Dec - Test.txt"), decimal);
            EXPECT_EQ(read_file(folder.path / "Pi - Hex - Test.txt"), exact_digits(x.f, 16, hexadecimal));
            expect_result(*writing.results.decimal, decimal, 10);
            expect_result(*writing.results.hexadecimal, exact_digits(x.f, 16, hexadecimal), 16);
            const std::size_t hidden = all.find('.') + 1 + digits;
            EXPECT_EQ(writing.results.decimal->hidden->sha256,
                      zvp::sha256_text(text_between(all, hidden, hidden + compute - digits)));
            EXPECT_FALSE(writing.results.hexadecimal->hidden);
            EXPECT_EQ(writing.sink.lines, (std::vector<std::string>{
                                              "Writing Hexadecimal Digits", "Base Converting", "Writing Decimal Digits",
                                              "Verifying Base Conversion", "Verifying Binary Output",
                                              "Verifying Decimal Output", "Verifying Hexadecimal Output"}));
            Values ten(10); // what a spot check reads
            writing.results.decimal_stream->load_digits(ten.data(), nullptr, digits - 10, 10, {}, {});
            EXPECT_EQ(text_of(ten), decimal.substr(decimal.size() - 10));
        }
    }
}

TEST(FloatWriter, DigitsOfPiAreMpfrs) {
    constexpr std::uint64_t digits = 12'345;
    Real pi(static_cast<mpfr_prec_t>(4 * digits + 500));
    mpfr_const_pi(pi.x, MPFR_RNDN);
    mpfr_exp_t exponent;
    char* const text = mpfr_get_str(nullptr, &exponent, 10, digits + 20, pi.x, MPFR_RNDN);
    const std::string expected = std::string(text, digits + 1).insert(1, ".");
    mpfr_free_str(text);
    const TemporaryFolder folder;
    DigitOutput output;
    output.path = folder.path / "";
    Writing writing(output, true, true, digits + 100, digits, 0, 2);
    writing.run(number_of(pi, words_for(digits + 100)).f);
    EXPECT_EQ(read_file(folder.path / "Pi - Dec - Test.txt"), expected);
}

TEST(FloatWriter, WithoutFilesTheDigitsAreProcessedAndProved) {
    Real pi(8'000);
    mpfr_const_pi(pi.x, MPFR_RNDN);
    const Number x = number_of(pi, words_for(1'100));
    DigitOutput output;
    output.format = OutputFormat::none;
    for (const bool verify : {true, false}) {
        Writing writing(output, verify, true, 1'000, 1'000, 0, 2);
        writing.run(x.f);
        expect_result(*writing.results.decimal, exact_digits(x.f, 10, 1'000), 10);
        EXPECT_FALSE(writing.results.decimal->hidden); // all that was computed is put out
        EXPECT_FALSE(writing.results.hexadecimal);
        EXPECT_FALSE(writing.results.decimal->reader);
        std::vector<std::string> lines{"Base Converting", "Processing Decimal Digits"};
        if (verify) lines.push_back("Verifying Base Conversion");
        EXPECT_EQ(writing.sink.lines, lines);
    }
}

TEST(FloatWriter, OneAndOtherShortNumbers) {
    struct Row {
        Words words;
        std::int64_t exp;
        std::string decimal, hexadecimal; // zeros follow
    };
    const std::vector<Row> rows{
        {{1}, 0, "1.", "1."},
        {{0x80000000, 1}, -1, "1.5", "1.8"},
        {{0x20000000}, -1, "0.125", "0.2"},
        {{0, 0xffffffff}, -1, "4294967295.", "ffffffff."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.decimal);
        const TemporaryFolder folder;
        DigitOutput output;
        output.path = folder.path / "";
        Writing writing(output, true, true, 1'100, 1'000, 803, 2);
        writing.run(Number(row.words, row.exp).f);
        const auto padded = [](std::string text, std::size_t digits) {
            return text.append(text.find('.') + 1 + digits - text.size(), '0');
        };
        EXPECT_EQ(read_file(folder.path / "Pi - Dec - Test.txt"), padded(row.decimal, 1'000));
        EXPECT_EQ(read_file(folder.path / "Pi - Hex - Test.txt"), padded(row.hexadecimal, 803));
    }
}

TEST(FloatWriter, NoDecimalDigitsButHexadecimalOnes) {
    Real pi(8'000);
    mpfr_const_pi(pi.x, MPFR_RNDN);
    const Number x = number_of(pi, words_for(1'100));
    const TemporaryFolder folder;
    DigitOutput output;
    output.path = folder.path / "";
    Writing writing(output, true, true, 1'000, 0, 801, 2);
    writing.run(x.f);
    EXPECT_EQ(read_file(folder.path / "Pi - Dec - Test.txt"), "3.");
    EXPECT_EQ(read_file(folder.path / "Pi - Hex - Test.txt"), exact_digits(x.f, 16, 801));
}

TEST(FloatWriter, NumbersOutOfRange) {
    struct Row {
        Words words;
        std::int64_t exp;
        std::string fault;
    };
    const std::vector<Row> rows{{{}, 0, "words_to_dec()|Number is zero and out of range."},
                                {{1, 1}, 0, "words_to_dec()|Number is out of range."},
                                {{1}, 1, "words_to_dec()|Number is out of range."},
                                {{9}, -2, "words_to_dec()|Number is out of range."}};
    DigitOutput output;
    output.format = OutputFormat::none;
    for (const Row& row : rows)
        for (const std::uint64_t hexadecimal : {0, 100}) {
            Writing writing(output, true, true, 1'000, 1'000, hexadecimal, 1);
            testing::internal::CaptureStdout();
            const std::string fault = writing.fault(Number(row.words, row.exp).f);
            const std::string printed = testing::internal::GetCapturedStdout();
            EXPECT_EQ(fault.substr(0, row.fault.size()), row.fault);
            EXPECT_NE(fault.find("32-bit binaries: 2^-32 < x < 2^32"), std::string::npos);
            EXPECT_EQ(printed.empty(), row.words.empty()) << printed; // the position is told
        }
}

TEST(FloatWriter, NegativeNumbersAreFlippedWithAWarning) {
    DigitOutput output;
    output.format = OutputFormat::none;
    Writing writing(output, true, true, 500, 400, 100, 1);
    Real pi(4'000);
    mpfr_const_pi(pi.x, MPFR_RNDN);
    Number x = number_of(pi, words_for(500));
    x.f.sign = false;
    writing.run(x.f);
    expect_result(*writing.results.decimal, exact_digits(x.f, 10, 400), 10);
    ASSERT_EQ(writing.sink.warnings.size(), 1u);
    EXPECT_EQ(writing.sink.warnings[0],
              "Warning: zorvane's digit output cannot handle negative numbers.\nOutput will be flipped positive...\n");
}

TEST(FloatWriter, SizesThatDontFit) {
    zvp::MultiplyTables tables;
    EXPECT_EQ(fault_of([&] { zvp::FloatWriterB(tables, "", "", {}, true, true, 999, 1'000, 0, 1); }),
              "FloatWriterB()|compute < output");
    DigitOutput output;
    output.format = OutputFormat::none;
    const Number x({0x243f6a88, 3}, -1);
    Writing exact(output, true, true, 1'000, 1'000, 0, 1), small(output, true, true, 1'000, 1'000, 0, 1, 1);
    EXPECT_EQ(exact.fault(x.f), "nothing");
    EXPECT_EQ(small.fault(x.f).substr(0, 23), "FloatWriterB::convert()");
    const auto write_to = [&](std::size_t bytes) {
        return fault_of([&] { exact.writer.write(exact.pars, {}, exact.results, x.f, {exact.buffer.p, bytes}); });
    };
    EXPECT_EQ(write_to(64).substr(0, 29), "AlignedBufferC::spawn_words()");
    zvp::AlignedBufferC<64> rest = exact.span();
    rest.spawn_words(exact.writer.aligned_words);
    const auto verify = [&](std::uint64_t D, std::size_t less) {
        return fault_of([&] {
            exact.writer.verify(exact.pars, {}, exact.results.decimal->counts.hash, D, *exact.results.decimal_stream,
                                x.f, {rest.pointer, rest.bytes - less});
        });
    };
    EXPECT_EQ(verify(1'000, 0), "nothing");
    EXPECT_EQ(verify(1'001, 0), "FloatWriterB::verify()|Too many digits.");
    EXPECT_EQ(verify(1'000, rest.bytes - exact.writer.verify_bytes + 64).substr(0, 22), "FloatWriterB::verify()");
    const auto convert = fault_of([&] {
        exact.writer.convert(exact.pars, {}, exact.radix_words(), x.f, {rest.pointer, exact.writer.convert_bytes - 64});
    });
    EXPECT_EQ(convert.substr(0, 23), "FloatWriterB::convert()");
}

TEST(FloatWriter, AFolderThatTakesNoFile) {
    DigitOutput output;
    output.path = "/nowhere at all/";
    Writing writing(output, true, true, 500, 400, 0, 1);
    EXPECT_EQ(writing.fault(Number({0x243f6a88, 3}, -1).f), "nothing"); // the digits are proved without their file
    ASSERT_NE(writing.results.decimal->write_fault, nullptr);
    EXPECT_EQ(fault_of([&] { writing.results.decimal->write_fault->fire(); }),
              fault("RawFile()", "Unable to create file.", "Path does not exist.", ENOENT));
}

} // namespace

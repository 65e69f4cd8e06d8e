#include "digits/writer/float_writer.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/console/run_watch.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "digits/hash/word_hash.h"
#include "digits/writer/float_reader.h"
#include "digits/writer/output_section.h"
#include "digits/writer/read_check.h"
#include "parallel/memory/memory_allocator.h"
#include "radix/direct_convert.h"
#include "radix/verify_conversion.h"

#include <algorithm>

namespace zvp {

using DigitViewer2::BasicDigitReader;
using DigitViewer2::FloatReaderB;

namespace {

constexpr std::uint32_t output_radix = 1'000'000'000;
constexpr std::uint64_t radix_word_digits = 9;
constexpr std::uint64_t hexadecimal_word_digits = 8;

/// Transfers of this size reach a disk's full speed, and the characters of one are still in the processor's largest cache
/// when they are written.
constexpr std::uint64_t file_buffer_bytes = std::uint64_t{16} << 20;

std::uint64_t checked_digits(std::uint64_t compute_digits, std::uint64_t decimal_digits) {
    if (compute_digits < decimal_digits) throw InvalidParametersException("FloatWriterB()", "compute < output");
    return compute_digits;
}

std::unique_ptr<const DirectConvertB> make_convert_plan(MultiplyTables& tables, std::uint64_t words,
                                                        std::uint32_t tasks) {
    auto plan = std::make_unique<const DirectConvertB>(output_radix, words, tasks);
    plan->ensure_tables(tables);
    return plan;
}

std::unique_ptr<const VerifyB> make_verify_plan(bool verify, MultiplyTables& tables, std::uint64_t words,
                                                std::uint32_t tasks, bool partial) {
    if (!verify) return nullptr;
    auto plan = std::make_unique<const VerifyB>(output_radix, words, tasks, partial);
    plan->ensure_tables(tables);
    return plan;
}

constexpr std::uint64_t page = 4'096;

/// The buffer of a file.
std::uint64_t transfer_bytes(const DigitOutput& output, std::uint64_t digits) {
    return output.enabled() ? std::min(file_buffer_bytes, round_up(digits, page) + page) : 0;
}

/// One byte for each digit and, from the next multiple of 4096 on, the buffer of a file.
std::uint64_t bytes_of_output(const DigitOutput& output, std::uint64_t digits) {
    return round_up(digits, 64) + page + transfer_bytes(output, digits);
}

constexpr const char* range_text = "zorvane's radix conversion and digit output is only equipped to handle\n"
                                   "positive numbers with a magnitude near 1.\n\n"
                                   "The exact range that zorvane can handle is:\n"
                                   "    32-bit binaries: 2^-32 < x < 2^32\n"
                                   "    64-bit binaries: 2^-64 < x < 2^64";

void warn_of_sign(const RunReport& report) {
    constexpr const char* text = "Warning: zorvane's digit output cannot handle negative numbers.\n"
                                 "Output will be flipped positive...\n";
    report.sink ? report.sink->warning(text) : print_warning(text);
}

/// The number is there and so are its digits: a disk that is full is no reason to lose them.
void warn_of_fault(const RunReport& report, const FileIO::FileException& fault) {
    if (!report.sink) return;
    report.sink->warning("The digits couldn't be written as a whole. What could be written is kept:\n    " + fault.path
                         + "\nFree some disk space, or choose another path (option -o), and compute again.\n");
}

/// Throws for a number that has no digits here; with a report, warns of a negative one.
void check_range(const BigFloat& x, const RunReport* report) {
    constexpr const char* function = "words_to_dec()";
    if (is_dry(x.T)) return;
    if (x.L == 0)
        throw InvalidParametersException(function, std::string("Number is zero and out of range.\n\n") + range_text);
    if (!x.sign && report) warn_of_sign(*report);
    const std::int64_t t = x.top();
    if (t == 0 || t == 1) return;
    print_labelc("t", format_signed(t));
    print_line();
    throw InvalidParametersException(function, std::string("Number is out of range.\n\n") + range_text);
}

void print_hashes(const char* first_label, std::uint64_t first, const char* second_label, std::uint64_t second) {
    print_line();
    print_line(first_label + format_number(first), 'R');
    print_line(second_label + format_number(second), 'R');
    set_color('w');
}

} // namespace

FloatWriterB::FloatWriterB(MultiplyTables& tables, std::string name_, std::string algorithm_, DigitOutput digit_writer_,
                           bool verify_, bool partial_, std::uint64_t compute_digits_, std::uint64_t decimal_digits_,
                           std::uint64_t hex_digits_, std::uint32_t tasks_)
    : name(std::move(name_)),
      algorithm(std::move(algorithm_)),
      digit_writer(std::move(digit_writer_)),
      do_verify(verify_),
      partial(partial_),
      compute_digits(checked_digits(compute_digits_, decimal_digits_)),
      decimal_digits(decimal_digits_),
      hex_digits(hex_digits_),
      tasks(tasks_),
      words(compute_digits / radix_word_digits + 3),
      convert_plan(make_convert_plan(tables, words, tasks)),
      verify_plan(make_verify_plan(do_verify, tables, words, tasks, partial)),
      aligned_words(round_up(words, 16)),
      convert_bytes(convert_plan->total_bytes),
      verify_bytes(verify_plan ? verify_plan->total_bytes : 0),
      output_bytes(bytes_of_output(digit_writer, std::max(decimal_digits, hex_digits))),
      total_bytes(round_up(std::max({convert_bytes, verify_bytes, output_bytes}), 64)) {}

FloatWriterB::~FloatWriterB() = default;

void FloatWriterB::write(const MultiplyParameters& pars, const RunReport& report, DigitResults& results,
                         const BigFloat& x, const AlignedBufferC<64>& buffer) const {
    AlignedBufferC<64> rest = buffer;
    const LinearWordBuffer radix_words = rest.spawn_words(aligned_words);
    if (rest.bytes < total_bytes) throw BufferTooSmallException("FloatWriterB::convert()", rest.bytes, total_bytes);
    const std::uint32_t integer = x.get_word(0);
    if (hex_digits != 0) { // in all of the buffer: there are no radix words yet
        check_range(x, nullptr);
        const std::uint64_t hex_words = round_up(hex_digits, hexadecimal_word_digits) / hexadecimal_word_digits;
        FloatReaderB stream(is_dry(x.T) ? BigFloat() : x, hex_words);
        results.hexadecimal = put_out(pars, report, stream, integer, hex_digits, buffer);
    }
    convert(pars, report, radix_words.pointer, x, rest);
    const std::uint64_t readable = is_dry(radix_words.pointer) ? 0 : words;
    auto stream = std::make_unique<FloatReaderB>(radix_words.pointer, readable, integer);
    results.decimal = put_out(pars, report, *stream, integer, decimal_digits, rest);
    results.decimal_stream = std::move(stream);
    if (do_verify) verify_all(pars, report, results, x, rest);
    x.check_hash("FloatWriterB::write()", pars); // what was converted, written and proved is what was computed
}

void FloatWriterB::verify_all(const MultiplyParameters& pars, const RunReport& report, DigitResults& results,
                              const BigFloat& x, const AlignedBufferC<64>& buffer) const {
    if (report.sink) report.sink->print_line("");
    verify(pars, report, results.decimal->counts.hash, decimal_digits, *results.decimal_stream, x, buffer);
    if (results.hexadecimal) verify_binary_words(pars, report, results.hexadecimal->counts.hash, x);
    if (results.decimal->reader)
        read_check(pars, report, *results.decimal->reader, decimal_digits, results.decimal->counts, buffer);
    if (results.hexadecimal && results.hexadecimal->reader)
        read_check(pars, report, *results.hexadecimal->reader, hex_digits, results.hexadecimal->counts, buffer);
}

void FloatWriterB::convert(const MultiplyParameters& pars, const RunReport& report, std::uint32_t* out,
                           const BigFloat& x, const AlignedBufferC<64>& buffer) const {
    check_range(x, &report);
    if (buffer.bytes < convert_bytes)
        throw BufferTooSmallException("FloatWriterB::convert()", buffer.bytes, convert_bytes);
    const OutputSection section(report, "Base Converting");
    MultiplyParameters own = pars;
    own.tds = std::min(pars.tds, tasks);
    convert_plan->run(own, section.node(), out + words, words, x, buffer);
}

/// The first D digits of the stream: counted, hashed with the integer part, and written if there is an output.
DigitResult FloatWriterB::put_out(const ParallelContext& context, const RunReport& report, BasicDigitReader& stream,
                                  std::uint32_t integer, std::uint64_t D, AlignedBufferC<64> buffer) const {
    const bool decimal = stream.radix == 10;
    const OutputSection section(report, std::string(digit_writer.enabled() ? "Writing " : "Processing ")
                                            + (decimal ? "Decimal Digits" : "Hexadecimal Digits"));
    auto* const digits = reinterpret_cast<std::uint8_t*>(buffer.spawn(round_up(D, 64)).pointer);
    DigitResult result(stream.radix);
    if (is_dry(digits)) {
        buffer.extract_aligned().spawn(transfer_bytes(digit_writer, D));
        return result;
    }
    stream.load_digits(digits, &result.counts, 0, D, {}, context);
    result.counts.hash = add_mod(result.counts.hash, mul_mod(integer, pow_mod(stream.radix, D)));
    result.last.set(D, stream);
    if (decimal && compute_digits > D) result.hidden.emplace(stream, D, compute_digits - D);
    if (!digit_writer.enabled()) return result;
    const std::string file_name = name + (decimal ? " - Dec - " : " - Hex - ") + algorithm;
    const FileInProgress in_progress(digit_writer.path + file_name + ".txt");
    try {
        const auto writer = digit_writer.make_writer(file_name, stream.first_digits(), stream.radix);
        writer->store_digits(digits, 0, D, buffer.extract_aligned(), context);
        result.reader = writer->close_and_get_basic_reader();
    } catch (const FileIO::FileException& fault) {
        result.write_fault = std::make_shared<FileIO::FileException>(fault);
        warn_of_fault(report, fault);
    }
    return result;
}

void FloatWriterB::verify(const MultiplyParameters& pars, const RunReport& report, std::uint64_t hash, std::uint64_t D,
                          BasicDigitReader& stream, const BigFloat& x, const AlignedBufferC<64>& buffer) const {
    constexpr const char* function = "FloatWriterB::verify()";
    const OutputSection section(report, "Verifying Base Conversion");
    if (D > compute_digits || !verify_plan) throw InvalidParametersException(function, "Too many digits.");
    if (buffer.bytes < verify_bytes) throw BufferTooSmallException(function, buffer.bytes, verify_bytes);
    MultiplyParameters own = pars;
    own.tds = std::min(pars.tds, tasks);
    const std::uint64_t fraction_hash = verify_plan->hash_binary(own, section.node(), x, words, buffer);
    if (is_dry(x.T)) return;
    const std::uint64_t all_digits = radix_word_digits * words;
    DigitCounts all(10, hash);
    stream.load_stats(all, D, all_digits - D, {}, pars);
    const std::uint64_t H = normalize_hash(all.hash);
    const std::uint64_t B = add_mod(fraction_hash, mul_mod(x.get_word(0), pow_mod(10, all_digits)));
    // The words that the conversion cut away may carry into the lowest one: the two may differ by one.
    if (H == B || add_mod(B, 1) == H || add_mod(H, 1) == B) return;
    print_hashes("R = ", H, "B = ", B);
    throw AlgorithmFailedException(function, "Base Conversion Failed: Checksum Mismatch");
}

void FloatWriterB::verify_binary_words(const ParallelContext& context, const RunReport& report, std::uint64_t hash,
                                       const BigFloat& x) const {
    const OutputSection section(report, "Verifying Binary Output");
    if (is_dry(x.T)) return;
    const std::uint64_t whole = hex_digits / hexadecimal_word_digits, part = hex_digits % hexadecimal_word_digits;
    const std::uint64_t fraction = x.L > 0 && x.exp < 0 ? static_cast<std::uint64_t>(-x.exp) : 0;
    const std::uint64_t present = std::min(whole, fraction);
    const std::uint32_t* const top = x.T + fraction;
    std::uint64_t h = hash_words_parallel(x.get_word(0), top - present, present, context.framework, context.tds);
    h = mul_mod(h, pow_word(static_cast<std::int64_t>(whole - present)));
    DigitCounts digits(16, h);
    FloatReaderB(x, whole + 1).load_stats(digits, whole * hexadecimal_word_digits, part, {}, {});
    const std::uint64_t before = normalize_hash(digits.hash), after = normalize_hash(hash);
    if (before == after) return;
    print_hashes("Before Hash = ", before, "After  Hash = ", after);
    throw AlgorithmFailedException("FloatWriterB::verify_binary_words()", "Checksum Mismatch");
}

} // namespace zvp

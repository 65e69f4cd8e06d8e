#pragma once
// The road from a computed number in memory to proved digits in files.

#include "app/console/run_report.h"
#include "digits/writer/digit_output.h"
#include "digits/writer/digit_result.h"
#include "multiply/contract/multiply_parameters.h"
#include "numbers/big_float.h"
#include "parallel/memory/aligned_buffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace zvp {

class DirectConvertB;
class VerifyB;
class MultiplyTables;

/// Hexadecimal digits straight from the binary number, the conversion to words of radix 10^9, the decimal digits, and the
/// proofs of all three. Read-only once it is made.
class FloatWriterB {
public:
    /// For numbers of at least compute_digits decimal digits, of which decimal_digits are put out, and hex_digits
    /// hexadecimal ones (0: none). `verify`: prove what is put out; `partial`: as VerifyB takes it. The files are named
    /// "<name> - Dec - <algorithm>" and "<name> - Hex - <algorithm>". Raises the wish of `tables` to the products of the
    /// conversion and its proof. Raises InvalidParametersException for compute_digits < decimal_digits.
    FloatWriterB(MultiplyTables& tables, std::string name_, std::string algorithm_, DigitOutput digit_writer_,
                 bool verify_, bool partial_, std::uint64_t compute_digits_, std::uint64_t decimal_digits_,
                 std::uint64_t hex_digits_, std::uint32_t tasks_);
    ~FloatWriterB();

    /// All of it. `x` is near 1 in magnitude; of a negative number the magnitude is put out, with a warning. The buffer
    /// has buffer_bytes() bytes and keeps the words that results.decimal_stream reads; the words of x lie elsewhere.
    /// `pars` names tasks and tables; its own scratch isn't used.
    ///
    /// Raises InvalidParametersException for a number out of range and BufferTooSmallException before anything is
    /// computed, AlgorithmFailedException where a check found a fault, FileException where a file can't be read back. A file
    /// that can't be written is a warning and DigitResult::write_fault; all other work is done.
    void write(const MultiplyParameters& pars, const RunReport& report, DigitResults& results, const BigFloat& x,
               const AlignedBufferC<64>& buffer) const;

    /// out[0 .. words) = the fraction of |x| in radix 10^9, least significant word first.
    void convert(const MultiplyParameters& pars, const RunReport& report, std::uint32_t* out, const BigFloat& x,
                 const AlignedBufferC<64>& buffer) const;

    /// Proves the first D digits of `stream`, the converted words, by their hash `hash` (DigitResult::counts.hash), and with
    /// them all others: floor(|x| 10^(9 words)) modulo 2^61 - 1, found from the binary number, may differ by one.
    void verify(const MultiplyParameters& pars, const RunReport& report, std::uint64_t hash, std::uint64_t D,
                DigitViewer2::BasicDigitReader& stream, const BigFloat& x, const AlignedBufferC<64>& buffer) const;

    /// Proves that `hash` is that of the number's first hex_digits hexadecimal digits.
    void verify_binary_words(const ParallelContext& context, const RunReport& report, std::uint64_t hash,
                             const BigFloat& x) const;

    /// What write() needs: the radix words and, behind them, total_bytes.
    std::uint64_t buffer_bytes() const { return aligned_words * sizeof(std::uint32_t) + total_bytes; }

    const std::string name;
    const std::string algorithm;
    const DigitOutput digit_writer;
    const bool do_verify;
    const bool partial;
    const std::uint64_t compute_digits;
    const std::uint64_t decimal_digits;
    const std::uint64_t hex_digits;
    const std::uint32_t tasks;
    const std::uint64_t words; // of radix 10^9
    const std::unique_ptr<const DirectConvertB> convert_plan;
    const std::unique_ptr<const VerifyB> verify_plan; // null without `verify`
    const std::uint64_t aligned_words;
    const std::uint64_t convert_bytes;
    const std::uint64_t verify_bytes;
    const std::uint64_t output_bytes; // digit values and the buffer of the files
    const std::uint64_t total_bytes;  // the largest of the three

private:
    DigitResult put_out(const ParallelContext& context, const RunReport& report, DigitViewer2::BasicDigitReader& stream,
                        std::uint32_t integer, std::uint64_t D, AlignedBufferC<64> buffer) const;
    void verify_all(const MultiplyParameters& pars, const RunReport& report, DigitResults& results, const BigFloat& x,
                    const AlignedBufferC<64>& buffer) const;
};

} // namespace zvp

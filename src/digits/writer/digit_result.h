#pragma once
// What is known of an output once it is made.

#include "app/failure/file_exceptions.h"
#include "digits/hash/digit_counts.h"
#include "digits/reader/digit_reader.h"
#include "digits/records/hashed_digits.h"
#include "digits/records/last_digits.h"

#include <memory>
#include <optional>

namespace zvp {

/// One output. The counts are those of the digits behind the point; the hash is that of the whole number, its integer part
/// included: floor(|x| radix^D) modulo 2^61 - 1 for D digits.
struct DigitResult {
    explicit DigitResult(unsigned radix) : counts(radix) {}

    DigitCounts counts;
    LastDigits last;
    std::optional<HashedDigits> hidden;                       // of the digits computed beyond the output
    std::unique_ptr<DigitViewer2::BasicDigitReader> reader;   // of the written file
    std::shared_ptr<const FileIO::FileException> write_fault; // why the file isn't whole; there is no reader then
};

/// The outputs of a computation. The reader of the decimal stream reads words in the buffer that the writer was given.
struct DigitResults {
    std::optional<DigitResult> hexadecimal;
    std::optional<DigitResult> decimal;
    std::unique_ptr<DigitViewer2::BasicDigitReader> decimal_stream;
};

} // namespace zvp

#pragma once
// Where the digits of a computation go.

#include "digits/reader/digit_writer.h"

#include <cstdint>
#include <memory>
#include <string>

namespace zvp {

enum class OutputFormat { none, text, compressed };

/// The configuration of the output; how it is read, saved and edited is a matter of the session.
struct DigitOutput {
    bool enabled() const { return format != OutputFormat::none; }

    /// A writer for one stream: `name` is the file's name without its extension, `first` the integer part, the point and
    /// the first digits. Raises FileException where the file can't be made. Only for an enabled output; a compressed one
    /// is the end of the program, since there is no such format yet.
    std::unique_ptr<DigitViewer2::BasicDigitWriter> make_writer(const std::string& name, const std::string& first,
                                                                unsigned radix) const;

    bool operator==(const DigitOutput&) const = default;

    OutputFormat format = OutputFormat::text;
    std::string path;                  // of a folder, with "/" behind it; empty: the working directory
    bool raw_io = true;                // unbuffered file access
    std::uint64_t digits_per_file = 0; // of compressed files; 0: all in one file
};

} // namespace zvp

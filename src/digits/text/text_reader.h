#pragma once
// A text file of digits: a short text that ends in the file's first ".", then one character for each digit and nothing
// else. Digit k of the stream is byte offset + k of the file.

#include "digits/reader/digit_reader.h"
#include "digits/text/digit_characters.h"
#include "farmemory/files/raw_file.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace DigitViewer2 {

/// Bytes for `count` digits with what lies beside them in their sectors, at most `limit` and at least a sector.
std::size_t recommended_text_buffer(std::uint64_t count, std::size_t limit);

/// Several threads may read at once; only the transfers wait for each other.
class BasicTextReader final : public BasicDigitReader {
public:
    /// Opens the file for reading, `raw_io` past the system's memory. Radix 0: it is found out from the file's first 64
    /// bytes, of which one is the point; a letter among them makes it 16.
    ///
    /// Raises FileException for faults of the file and for one without a point there, StringException for a character
    /// that is none of a digit, InvalidParametersException for a radix other than 0, 10 and 16.
    BasicTextReader(const std::string& path, bool raw_io, unsigned radix = 0,
                    zvp::platform::FileSystem& system = zvp::platform::file_system());

    /// The first 64 bytes of the file, or all of a shorter one.
    std::string first_digits() override { return opened.first; }
    std::uint64_t stream_end() override { return digits; }
    bool range_is_available(std::uint64_t start, std::uint64_t count) override;
    std::size_t recommend_buffer_size(std::uint64_t count, std::size_t limit) override {
        return recommended_text_buffer(count, limit);
    }
    void flush_cache() override {}

    /// Raise StringException for digits behind the end, BufferTooSmallException for a buffer below a sector, FileException
    /// for faults of the file and where it has become shorter, InvalidParametersException for a character that isn't a
    /// digit of the radix.
    void load_stats(zvp::DigitCounts& stats, std::uint64_t start, std::uint64_t count, DigitBuffer buffer,
                    const zvp::ParallelContext& context) override;
    void load_digits(std::uint8_t* output, zvp::DigitCounts* stats, std::uint64_t start, std::uint64_t count,
                     DigitBuffer buffer, const zvp::ParallelContext& context) override;

private:
    /// What the front of the file tells.
    struct Opened {
        std::unique_ptr<FileIO::RawFile> file;
        std::string first;
        std::uint64_t offset; // behind the point
        unsigned radix;
    };

    static Opened open(const std::string& path, bool raw_io, unsigned radix, zvp::platform::FileSystem& system);
    explicit BasicTextReader(Opened&& opened_);
    void load(const char* function, std::uint8_t* output, zvp::DigitCounts* stats, std::uint64_t start,
              std::uint64_t count, DigitBuffer buffer, const zvp::ParallelContext& context);

    std::mutex file_mutex;
    Opened opened;
    zvp::CharacterRoutine to_digits;
    std::uint64_t digits; // of the stream
};

} // namespace DigitViewer2

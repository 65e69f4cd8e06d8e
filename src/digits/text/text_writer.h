#pragma once
// Makes a text file of digits; see text_reader.h for what it holds.

#include "digits/reader/digit_writer.h"
#include "digits/text/digit_characters.h"
#include "digits/text/text_buffer.h"
#include "farmemory/files/raw_file.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace DigitViewer2 {

/// The file has its final name from the start, and its exact length once it is closed by close_and_get_basic_reader();
/// what nobody stored is zero bytes. Several threads may store at once.
class BasicTextWriter final : public BasicDigitWriter {
public:
    /// Makes the file, in place of one of that name, and writes `first` up to its point; behind the point it holds a digit
    /// or more, which aren't written. With an empty `first` nothing is written, and the digits begin with the file.
    /// Raises FileException for faults of the file and where `first` has no such point, InvalidParametersException for
    /// a radix other than 10 and 16.
    BasicTextWriter(const std::string& path, const std::string& first, unsigned radix_, bool raw_io = true,
                    zvp::platform::FileSystem& system_ = zvp::platform::file_system());

    std::size_t recommend_buffer_size(std::uint64_t count, std::size_t limit) override;
    std::unique_ptr<BasicDigitReader> close_and_get_basic_reader() override;

    /// Raises InvalidParametersException on a closed file and for a value that isn't a digit, BufferTooSmallException for a
    /// buffer below a sector, FileException for faults of the file. What earlier calls stored stays.
    void store_digits(const std::uint8_t* input, std::uint64_t start, std::uint64_t count, DigitBuffer buffer,
                      const zvp::ParallelContext& context) override;

private:
    void write_front(const std::string& first);
    void load_neighbours(const TextPass& pass, std::byte* buffer);

    std::mutex file_mutex;
    zvp::platform::FileSystem& system;
    const unsigned radix;
    const zvp::CharacterRoutine to_text;
    FileIO::RawFile file;
    std::uint64_t offset = 0;     // behind the point
    std::uint64_t high_water = 0; // end of the digits that were stored
};

} // namespace DigitViewer2

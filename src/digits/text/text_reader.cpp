#include "digits/text/text_reader.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"
#include "app/failure/file_exceptions.h"
#include "digits/hash/digit_source.h"
#include "digits/text/text_buffer.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace DigitViewer2 {

using FileIO::FileException;
using zvp::DigitCounts;
using zvp::InvalidParametersException;
using zvp::StringException;

namespace {

constexpr std::size_t seen_bytes = 64; // of the front of a file

/// A run of characters is still in the cache when its digits are counted.
constexpr std::uint64_t run_digits = 8'192;

/// Where the front of a file has its point, and what the characters up to it tell of the radix.
struct Front {
    std::size_t offset = 0; // behind the point; 0: none was found
    unsigned radix = 10;
    std::size_t walked = 0;
};

Front walk_front(std::string_view first) {
    Front front;
    for (; front.walked < first.size(); ++front.walked) {
        const char c = first[front.walked];
        if (c == '.') {
            if (front.offset == 0) front.offset = front.walked + 1;
        } else if (c >= 'a' && c <= 'f') {
            front.radix = 16;
            break;
        } else if (c < '0' || c > '9') {
            throw StringException("TextReader::BasicTextReader()", "Invalid Digit");
        }
    }
    return front;
}

std::uint64_t file_length(const std::string& path) {
    std::error_code error;
    const std::uint64_t bytes = std::filesystem::file_size(path, error);
    if (error) zvp::fatal_stop("Path does not exist.");
    return bytes;
}

/// Characters in memory.
class TextSource final : public zvp::DigitSource {
public:
    /// The digits' values go to `output`; null: only the counts are wanted, and the characters are overwritten.
    TextSource(std::uint8_t* text_, std::uint8_t* output_, zvp::CharacterRoutine to_digits_, bool counted_)
        : text(text_), output(output_ ? output_ : text_), to_digits(to_digits_), counted(counted_) {}

    void process(DigitCounts& counts, std::uint64_t begin, std::uint64_t end) override {
        while (begin < end) {
            const std::uint64_t run = std::min(run_digits, end - begin);
            if (!to_digits(output + begin, text + begin, run))
                throw InvalidParametersException("BasicTextReader::process_txt()", "Invalid Digit");
            if (counted) counts.add(output + begin, run);
            begin += run;
        }
    }

private:
    std::uint8_t* const text;
    std::uint8_t* const output;
    const zvp::CharacterRoutine to_digits;
    const bool counted;
};

} // namespace

std::size_t recommended_text_buffer(std::uint64_t count, std::size_t limit) {
    limit = std::max(limit, text_sector);
    constexpr std::uint64_t slack = 2 * text_sector - 1;
    if (count > ~std::uint64_t{0} - slack) return limit;
    const std::uint64_t bytes = (count + slack) / text_sector * text_sector;
    return bytes >> 32 != 0 || bytes > limit ? limit : static_cast<std::size_t>(bytes);
}

BasicTextReader::Opened BasicTextReader::open(const std::string& path, bool raw_io, unsigned radix,
                                              zvp::platform::FileSystem& system) {
    constexpr const char* function = "BasicTextReader::BasicTextReader()";
    auto file = std::make_unique<FileIO::RawFile>(path, text_sector_bits, FileIO::FileMode::read, raw_io, system);
    alignas(text_sector) char front_bytes[text_sector];
    const std::size_t bytes = file->load(0, front_bytes, sizeof front_bytes, false);
    std::string first(front_bytes, std::min(bytes, seen_bytes));
    Front front;
    if (radix == 0) {
        front = walk_front(first);
        radix = front.radix;
    }
    if (front.offset == 0) front.offset = first.find('.', front.walked) + 1; // npos + 1 is 0
    if (front.offset == 0)
        throw FileException(function, "A decimal place was not found within the first 63 bytes of the file.", path, 0);
    if (radix != 10 && radix != 16) throw InvalidParametersException(function, "Invalid Radix");
    return {std::move(file), std::move(first), front.offset, radix};
}

BasicTextReader::BasicTextReader(const std::string& path, bool raw_io, unsigned radix_,
                                 zvp::platform::FileSystem& system)
    : BasicTextReader(open(path, raw_io, radix_, system)) {}

BasicTextReader::BasicTextReader(Opened&& opened_)
    : BasicDigitReader(static_cast<std::uint8_t>(opened_.radix)),
      opened(std::move(opened_)),
      to_digits(zvp::digits_of_text(radix)) {
    const std::uint64_t bytes = file_length(opened.file->path);
    digits = bytes - std::min(bytes, opened.offset);
}

bool BasicTextReader::range_is_available(std::uint64_t start, std::uint64_t count) {
    return start <= digits && count <= digits - start;
}

void BasicTextReader::load_stats(DigitCounts& stats, std::uint64_t start, std::uint64_t count, DigitBuffer buffer,
                                 const zvp::ParallelContext& context) {
    load("BasicTextReader::load_stats()", nullptr, &stats, start, count, buffer, context);
}

void BasicTextReader::load_digits(std::uint8_t* output, DigitCounts* stats, std::uint64_t start, std::uint64_t count,
                                  DigitBuffer buffer, const zvp::ParallelContext& context) {
    load("BasicTextReader::load_digits()", output, stats, start, count, buffer, context);
}

void BasicTextReader::load(const char* function, std::uint8_t* output, DigitCounts* stats, std::uint64_t start,
                           std::uint64_t count, DigitBuffer buffer, const zvp::ParallelContext& context) {
    if (!range_is_available(start, count)) throw StringException(function, "Out of range.");
    DigitCounts unwanted(radix);
    TextPasses passes(function, opened.offset + start, count, buffer.bytes);
    for (TextPass pass; passes.next(pass);) {
        {
            const std::lock_guard lock(file_mutex);
            const std::size_t bytes = opened.file->load(pass.begin, buffer.pointer, pass.bytes(), false);
            if (bytes < pass.last - pass.begin) throw FileException(function, "Incomplete read.", opened.file->path, 0);
        }
        std::uint8_t* const text = reinterpret_cast<std::uint8_t*>(buffer.pointer) + (pass.first - pass.begin);
        const std::uint64_t done = pass.first - opened.offset - start;
        TextSource source(text, output ? output + done : nullptr, to_digits, stats != nullptr);
        zvp::count_digits(stats ? *stats : unwanted, source, pass.last - pass.first, {64}, context);
    }
}

} // namespace DigitViewer2

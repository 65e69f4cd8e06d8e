#include "digits/text/text_writer.h"

#include "app/failure/exceptions.h"
#include "app/failure/file_exceptions.h"
#include "digits/text/text_buffer.h"
#include "digits/text/text_reader.h"
#include "parallel/tasks/parallelization_settings.h"

#include <atomic>
#include <cstring>
#include <limits>

namespace DigitViewer2 {

using FileIO::FileException;
using zvp::InvalidParametersException;

namespace {

constexpr const char* store_label = "BasicTextWriter::store_digits()";

/// A task gets no fewer digits.
constexpr std::size_t min_task_digits = 10'000;

zvp::CharacterRoutine checked_routine(unsigned radix) {
    const zvp::CharacterRoutine routine = zvp::text_of_digits(radix);
    if (!routine) throw InvalidParametersException("BasicTextWriter::BasicTextWriter()", "Invalid Radix");
    return routine;
}

class ToTextAction final : public zvp::BasicAction {
public:
    ToTextAction(std::uint8_t* text_, const std::uint8_t* digits_, std::size_t n_, std::size_t block_,
                 zvp::CharacterRoutine to_text_)
        : text(text_), digits(digits_), n(n_), block(block_), to_text(to_text_) {}

    void run(std::uint32_t index) override {
        const std::size_t begin = index * block, count = std::min(block, n - begin);
        if (!to_text(text + begin, digits + begin, count)) valid.store(false, std::memory_order_relaxed);
    }

    std::atomic<bool> valid{true};

private:
    std::uint8_t* const text;
    const std::uint8_t* const digits;
    const std::size_t n;
    const std::size_t block;
    const zvp::CharacterRoutine to_text;
};

void turn_to_text(std::uint8_t* text, const std::uint8_t* digits, std::size_t n, zvp::CharacterRoutine to_text,
                  const zvp::ParallelContext& context) {
    const zvp::SweepSplit split = zvp::split_sweep(n, min_task_digits, context.framework ? context.tds : 1,
                                                   std::numeric_limits<std::uint32_t>::max(), min_task_digits, 64);
    ToTextAction action(text, digits, n, split.tasks < 2 ? n : split.block, to_text);
    if (split.tasks < 2)
        action.run(0);
    else
        context.framework->run_in_parallel(action, 0, split.tasks);
    if (!action.valid) throw InvalidParametersException(store_label, "Invalid Digit");
}

} // namespace

BasicTextWriter::BasicTextWriter(const std::string& path, const std::string& first, unsigned radix_, bool raw_io,
                                 zvp::platform::FileSystem& system_)
    : system(system_),
      radix(radix_),
      to_text(checked_routine(radix_)),
      file(path, text_sector_bits, FileIO::FileMode::create_empty, raw_io, system_) {
    if (!first.empty()) write_front(first);
}

void BasicTextWriter::write_front(const std::string& first) {
    const std::size_t point = first.find('.');
    if (point == std::string::npos || point + 1 == first.size() || point >= text_sector)
        throw FileException("TextWriter::TextWriter()", "No decimal place was found.", file.path, 0);
    offset = point + 1;
    alignas(text_sector) char sector[text_sector]{};
    std::memcpy(sector, first.data(), offset);
    file.store(0, sector, sizeof sector, true);
}

std::size_t BasicTextWriter::recommend_buffer_size(std::uint64_t count, std::size_t limit) {
    return recommended_text_buffer(count, limit);
}

/// What else is in the pass's first and last sector goes into its buffer; behind the end of the file there are zeros.
void BasicTextWriter::load_neighbours(const TextPass& pass, std::byte* buffer) {
    alignas(text_sector) std::byte sector[text_sector];
    const auto load_sector = [&](std::uint64_t begin) {
        const std::size_t bytes = file.load(begin, sector, text_sector, false);
        std::memset(sector + bytes, 0, text_sector - bytes);
    };
    const std::size_t front = pass.first - pass.begin, back = pass.end - pass.last;
    const bool one_sector = pass.bytes() == text_sector;
    if (front > 0 || (one_sector && back > 0)) load_sector(pass.begin);
    if (front > 0) std::memcpy(buffer, sector, front);
    if (back == 0) return;
    if (!one_sector) load_sector(pass.end - text_sector);
    std::memcpy(buffer + pass.bytes() - back, sector + text_sector - back, back);
}

/// The tasks run in front of the lock: one of them could be a store of this file, which waits for it.
void BasicTextWriter::store_digits(const std::uint8_t* input, std::uint64_t start, std::uint64_t count,
                                   DigitBuffer buffer, const zvp::ParallelContext& context) {
    if (!file.is_open()) throw InvalidParametersException(store_label, "File is closed.");
    TextPasses passes(store_label, offset + start, count, buffer.bytes);
    for (TextPass pass; passes.next(pass);) {
        std::uint8_t* const text = reinterpret_cast<std::uint8_t*>(buffer.pointer) + (pass.first - pass.begin);
        const std::uint8_t* const digits = input + (pass.first - offset - start);
        turn_to_text(text, digits, pass.last - pass.first, to_text, context);
        const std::lock_guard lock(file_mutex);
        load_neighbours(pass, buffer.pointer);
        file.store(pass.begin, buffer.pointer, pass.bytes(), true);
        high_water = std::max(high_water, pass.last - offset);
    }
}

std::unique_ptr<BasicDigitReader> BasicTextWriter::close_and_get_basic_reader() {
    const std::lock_guard lock(file_mutex);
    if (!file.is_open()) return nullptr;
    const std::string path = file.path;
    file.close_and_set_size(offset + high_water);
    return std::make_unique<BasicTextReader>(path, file.raw, radix, system);
}

} // namespace DigitViewer2

#include "digits/writer/read_check.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "digits/text/digit_characters.h"
#include "digits/writer/output_section.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr const char* label = "read_check()";

/// The fewest digits of a step: smaller ones cost more than they tell the user.
constexpr std::uint64_t min_step = 1'000'000;

/// What stands in front of the point.
std::string front_of(const std::string& first) {
    const std::size_t point = first.find('.');
    if (point == std::string::npos)
        throw StringException(label, "A decimal place was not found within the first 63 bytes of the file.");
    return first.substr(0, point);
}

std::uint64_t hash_of_front(std::string digits, unsigned radix) {
    auto* values = reinterpret_cast<std::uint8_t*>(digits.data());
    if (!digits_of_text(radix)(values, values, digits.size()))
        throw InvalidParametersException(label, radix == 10 ? "Invalid decimal digit in first digits."
                                                            : "Invalid hexadecimal digit in first digits.");
    DigitCounts front(radix);
    front.add(values, digits.size());
    return front.hash;
}

void show_progress(StatusNode* status, std::uint64_t done) {
    if (!status) return;
    StatusNode& node = status->make_node();
    const StatusScope scope(*status, node);
    node.push_cells(
        {{'w', "Verifying...    "}, {'G', format_number(done, NumberForm::commas)}, {'w', "  digits hashed"}});
    node.update();
}

/// Prints what differs.
void print_difference(const DigitCounts& before, const DigitCounts& after) {
    print_line();
    print_line("Pre-Write Hash = " + format_number(normalize_hash(before.hash)), 'R');
    print_line("Read-Back Hash = " + format_number(normalize_hash(after.hash)), 'R');
    print_line("Pre-Write Counts = " + before.counts_text(), 'R');
    print_line("Read-Back Counts = " + after.counts_text(), 'R');
    set_color('w');
}

} // namespace

void read_check(const ParallelContext& context, const RunReport& report, DigitViewer2::BasicDigitReader& reader,
                std::uint64_t digits, const DigitCounts& expected, const AlignedBufferC<64>& buffer) {
    const AlignedBufferC<4096> work = buffer.extract_aligned();
    if (work.bytes < 4096)
        throw BufferTooSmallException("AlignedBufferC::extract_aligned()", buffer.bytes,
                                      buffer.bytes - work.bytes + 4096);
    const std::string front = front_of(reader.first_digits());
    const unsigned radix = reader.radix;
    if (radix != 10 && radix != 16) throw InvalidParametersException(label, "Invalid radix.");
    const OutputSection section(report, radix == 10 ? "Verifying Decimal Output" : "Verifying Hexadecimal Output");
    DigitCounts read(radix, hash_of_front(front, radix));
    for (std::uint64_t done = 0; done < digits;) {
        const std::uint64_t step =
            std::max<std::uint64_t>(reader.recommend_buffer_size(digits - done, work.bytes), min_step);
        const std::uint64_t count = std::min(step, digits - done);
        reader.load_stats(read, done, count, work, context);
        show_progress(section.node(), done += count);
    }
    if (normalize_hash(read.hash) != normalize_hash(expected.hash) || read.counts != expected.counts) {
        print_difference(expected, read);
        throw AlgorithmFailedException(label, "Digit output failed. Metadata cross-check doesn't match.");
    }
    reader.flush_cache();
}

} // namespace zvp

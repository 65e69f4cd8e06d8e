#include "digits/writer/float_reader.h"

#include "app/failure/exceptions.h"
#include "digits/hash/digit_source.h"

#include <algorithm>
#include <cstring>

namespace DigitViewer2 {

using zvp::BigFloat;
using zvp::DigitCounts;
using zvp::InvalidParametersException;
using zvp::word_decoders;

namespace {

constexpr std::uint64_t preview_digits = 50;

/// Words are turned into digits in runs that are still in the cache when they are counted.
constexpr std::uint64_t run_words = 608;
constexpr std::uint64_t max_word_digits = 9;

/// The words of |x| below the point.
std::size_t fraction_words(const BigFloat& x, std::size_t min_words) {
    const bool has_fraction = x.L > 0 && x.exp < 0;
    const bool fits = x.L == 0 || x.exp >= 0 ? x.top() <= 1 : x.top() == 0 || x.top() == 1;
    if (!fits || (!has_fraction && min_words == 0))
        throw InvalidParametersException("FloatReaderB::FloatReaderB()", "Object is out of range.");
    return has_fraction ? static_cast<std::size_t>(-x.exp) : 0;
}

std::string integer_text(std::uint32_t integer, unsigned radix) {
    std::string text;
    do {
        text += "0123456789abcdef"[integer % radix];
        integer /= radix;
    } while (integer != 0);
    std::reverse(text.begin(), text.end());
    return text;
}

/// Digits of a reader from `start` on. Their values go to `output`; null: only the counts are wanted.
class WordSource final : public zvp::DigitSource {
public:
    WordSource(const FloatReaderB& reader_, std::uint64_t start_, std::uint64_t digits_per_word, std::uint8_t* output_,
               bool counted_)
        : reader(reader_), start(start_), run_digits(run_words * digits_per_word), output(output_), counted(counted_) {}

    void process(DigitCounts& counts, std::uint64_t begin, std::uint64_t end) override {
        std::uint8_t own[run_words * max_word_digits];
        while (begin < end) {
            const std::uint64_t run = std::min(run_digits, end - begin);
            std::uint8_t* const digits = output ? output + begin : own;
            reader.read(digits, start + begin, run);
            if (counted) counts.add(digits, run);
            begin += run;
        }
    }

private:
    const FloatReaderB& reader;
    const std::uint64_t start;
    const std::uint64_t run_digits;
    std::uint8_t* const output;
    const bool counted;
};

} // namespace

FloatReaderB::FloatReaderB(const BigFloat& x, std::size_t min_words)
    : BasicDigitReader(16),
      digits_per_word(8),
      words(x.T),
      word_count(fraction_words(x, min_words)),
      zero_words(min_words - std::min(min_words, word_count)),
      decode_words(word_decoders(zvp::platform::active_kernel_set()).hexadecimal) {
    set_first(x.get_word(0));
}

FloatReaderB::FloatReaderB(const std::uint32_t* words_, std::size_t word_count_, std::uint32_t integer)
    : BasicDigitReader(10),
      digits_per_word(9),
      words(words_),
      word_count(word_count_),
      zero_words(0),
      decode_words(word_decoders(zvp::platform::active_kernel_set()).decimal) {
    set_first(integer);
}

void FloatReaderB::set_first(std::uint32_t integer) {
    std::uint8_t digits[preview_digits];
    const std::uint64_t count = std::min(preview_digits, stream_end());
    read(digits, 0, count);
    first = integer_text(integer, radix) + ".";
    for (std::uint64_t i = 0; i < count; ++i) first += "0123456789abcdef"[digits[i] & 15];
}

bool FloatReaderB::range_is_available(std::uint64_t start, std::uint64_t count) {
    return start <= stream_end() && count <= stream_end() - start;
}

void FloatReaderB::check_range(const char* function, std::uint64_t start, std::uint64_t count) {
    if (!range_is_available(start, count)) throw InvalidParametersException(function, "Out of range.");
}

void FloatReaderB::load_stats(DigitCounts& stats, std::uint64_t start, std::uint64_t count, DigitBuffer,
                              const zvp::ParallelContext& context) {
    check_range("FloatReaderB::load_stats()", start, count);
    WordSource source(*this, start, digits_per_word, nullptr, true);
    zvp::count_digits(stats, source, count, zvp::DigitSplit::of_words(digits_per_word), context);
}

void FloatReaderB::load_digits(std::uint8_t* output, DigitCounts* stats, std::uint64_t start, std::uint64_t count,
                               DigitBuffer, const zvp::ParallelContext& context) {
    check_range("FloatReaderB::load_digits()", start, count);
    WordSource source(*this, start, digits_per_word, output, stats != nullptr);
    DigitCounts unwanted(radix);
    zvp::count_digits(stats ? *stats : unwanted, source, count, zvp::DigitSplit::of_words(digits_per_word), context);
}

void FloatReaderB::read(std::uint8_t* output, std::uint64_t start, std::uint64_t count) const {
    std::uint64_t word = start / digits_per_word;
    const auto take_part = [&](std::uint64_t skipped) {
        std::uint8_t digits[max_word_digits];
        decode(digits, word++, 1);
        const std::uint64_t taken = std::min(count, digits_per_word - skipped);
        std::memcpy(output, digits + skipped, taken);
        output += taken;
        count -= taken;
    };
    if (count > 0 && start % digits_per_word != 0) take_part(start % digits_per_word);
    const std::uint64_t whole = count / digits_per_word;
    decode(output, word, whole);
    word += whole;
    output += whole * digits_per_word;
    count -= whole * digits_per_word;
    if (count > 0) take_part(0);
}

/// `count` words from the stream's word `word` on.
void FloatReaderB::decode(std::uint8_t* output, std::uint64_t word, std::size_t count) const {
    const std::size_t present = word < word_count ? std::min<std::size_t>(count, word_count - word) : 0;
    if (present > 0) decode_words(output, words + (word_count - word - present), present);
    std::memset(output + present * digits_per_word, 0, (count - present) * digits_per_word);
}

} // namespace DigitViewer2

#pragma once
// A number's words as a stream of digits.

#include "digits/reader/digit_reader.h"
#include "digits/writer/word_digits.h"
#include "numbers/big_float.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace DigitViewer2 {

/// Words in ascending order, the least significant first; the stream begins with the top digit of the top word. It owns
/// nothing: the words outlive it. Needs no buffer; several threads may read at once.
class FloatReaderB final : public BasicDigitReader {
public:
    /// The hexadecimal digits behind the point of |x|, 8 a word, and zeros behind them up to `min_words` words. Raises
    /// InvalidParametersException for an x with words above position 0 or without one at -1; where zeros may follow, no
    /// word behind the point is needed.
    explicit FloatReaderB(const zvp::BigFloat& x, std::size_t min_words = 0);

    /// The decimal digits of words of radix 10^9, 9 a word, behind the integer part `integer`.
    FloatReaderB(const std::uint32_t* words_, std::size_t word_count_, std::uint32_t integer);

    std::string first_digits() override { return first; }
    std::uint64_t stream_end() override { return (word_count + zero_words) * std::uint64_t{digits_per_word}; }
    bool range_is_available(std::uint64_t start, std::uint64_t count) override;
    std::size_t recommend_buffer_size(std::uint64_t, std::size_t) override { return 0; }
    void flush_cache() override {}

    /// Raise InvalidParametersException for digits behind the end.
    void load_stats(zvp::DigitCounts& stats, std::uint64_t start, std::uint64_t count, DigitBuffer buffer,
                    const zvp::ParallelContext& context) override;
    void load_digits(std::uint8_t* output, zvp::DigitCounts* stats, std::uint64_t start, std::uint64_t count,
                     DigitBuffer buffer, const zvp::ParallelContext& context) override;

    /// Writes digits [start, start + count), which are there.
    void read(std::uint8_t* output, std::uint64_t start, std::uint64_t count) const;

private:
    void set_first(std::uint32_t integer);
    void check_range(const char* function, std::uint64_t start, std::uint64_t count);
    void decode(std::uint8_t* output, std::uint64_t word, std::size_t count) const;

    std::string first;
    std::uint32_t digits_per_word;
    const std::uint32_t* words;
    std::size_t word_count;
    std::size_t zero_words; // behind the last word
    zvp::WordDecoder decode_words;
};

} // namespace DigitViewer2

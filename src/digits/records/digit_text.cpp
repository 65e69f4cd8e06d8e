#include "digits/records/digit_text.h"

#include "parallel/memory/aligned_malloc.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr std::size_t max_buffer_bytes = std::size_t{1} << 30;
constexpr std::size_t buffer_alignment = 4'096;

/// A reader's buffer. release() looks at its guards; while an exception passes, a damaged block is left where it is.
class ReaderBuffer {
public:
    explicit ReaderBuffer(std::size_t bytes_) : bytes(bytes_), block(aligned_malloc(bytes, buffer_alignment)) {}
    ~ReaderBuffer() {
        try {
            release();
        } catch (const Exception&) {
        }
    }
    ReaderBuffer(const ReaderBuffer&) = delete;
    ReaderBuffer& operator=(const ReaderBuffer&) = delete;

    void release() {
        void* const owned = block;
        block = nullptr;
        aligned_free(owned);
    }

    DigitViewer2::DigitBuffer span() const { return {block, bytes}; }

private:
    const std::size_t bytes;
    void* block;
};

} // namespace

std::string read_digit_text(DigitViewer2::BasicDigitReader& reader, std::uint64_t start, std::uint64_t count) {
    std::string text(count, '\0');
    if (count == 0) return text;
    ReaderBuffer buffer(std::min(reader.recommend_buffer_size(count, max_buffer_bytes), max_buffer_bytes));
    reader.load_digits(reinterpret_cast<std::uint8_t*>(text.data()), nullptr, start, count, buffer.span(), {});
    buffer.release();
    for (char& digit : text) digit = "0123456789abcdef"[digit & 15];
    return text;
}

} // namespace zvp

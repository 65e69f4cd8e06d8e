#include "app/failure/byte_cursor.h"

#include "app/failure/exceptions.h"

namespace zvp {

namespace {

template <class T>
void append_little_endian(std::string& bytes, T value) {
    for (unsigned shift = 0; shift < 8 * sizeof(T); shift += 8)
        bytes.push_back(static_cast<char>(value >> shift & 0xFF));
}

template <class T>
T little_endian(std::string_view bytes) {
    T value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

} // namespace

void append_u32(std::string& bytes, std::uint32_t value) { append_little_endian(bytes, value); }

void append_u64(std::string& bytes, std::uint64_t value) { append_little_endian(bytes, value); }

void append_string(std::string& bytes, std::string_view text) {
    append_u32(bytes, static_cast<std::uint32_t>(text.size()));
    bytes += text;
}

std::string_view ByteCursor::take(std::size_t count) {
    if (count > rest.size()) throw EndOfStreamException("ByteCursor::take()", "Unexpected end of stream.");
    const std::string_view taken = rest.substr(0, count);
    rest.remove_prefix(count);
    return taken;
}

std::uint32_t ByteCursor::take_u32() { return little_endian<std::uint32_t>(take(4)); }

std::uint64_t ByteCursor::take_u64() { return little_endian<std::uint64_t>(take(8)); }

std::string ByteCursor::take_string() {
    const std::uint32_t length = take_u32();
    return std::string(take(length));
}

} // namespace zvp

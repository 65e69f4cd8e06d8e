#pragma once
// The byte form of exceptions: little-endian numbers; strings as a 32-bit byte length and their bytes.

#include <cstdint>
#include <string>
#include <string_view>

namespace zvp {

void append_u32(std::string& bytes, std::uint32_t value);
void append_u64(std::string& bytes, std::uint64_t value);
void append_string(std::string& bytes, std::string_view text);

/// Reads what the functions above appended, front to back. Bytes that end too early raise EndOfStreamException.
class ByteCursor {
public:
    explicit ByteCursor(std::string_view bytes) : rest(bytes) {}

    std::uint32_t take_u32();
    std::uint64_t take_u64();
    std::string take_string();

    bool at_end() const { return rest.empty(); }

private:
    std::string_view take(std::size_t count);

    std::string_view rest;
};

} // namespace zvp

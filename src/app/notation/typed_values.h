#pragma once
// Numbers on the command line. They are whole words: a tail that the parser doesn't understand raises
// InvalidParametersException, "Invalid number: " with the word and the place. An empty word is 0.

#include <cstdint>
#include <string_view>

namespace CommandLine {

std::int32_t read_s32(std::string_view word);
std::int64_t read_s64(std::string_view word);
std::uint32_t read_u32(std::string_view word);

/// With the units of parse_digits() and parse_bytes().
std::uint64_t read_digits(std::string_view word);
std::uint64_t read_bytes(std::string_view word);

} // namespace CommandLine

#pragma once
// The two parsers of the object notation.
//
// Both skip blanks, tabs, CR and LF, and comments from "//" to the end of the line. Errors are ParseExceptions
// whose message begins with "Line <n>: "; a text that ends too early raises EndOfStreamException. Values nest
// at most max_nesting deep. Neither stops the process, whatever the bytes are.

#include "app/notation/node.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace zvp {

inline constexpr std::size_t max_nesting = 1000;

/// Parses one value in the notation. `text` is advanced behind it and `line`, which counts line feeds from 0,
/// with it.
std::unique_ptr<Node> parse_notation(std::string_view& text, std::size_t& line);

/// Parses one value in JSON: strings escape only \" and \\; numbers are integers.
std::unique_ptr<Node> parse_json(std::string_view& text, std::size_t& line);

/// Parse a text that holds one value and, behind it, nothing but blanks and comments.
std::unique_ptr<Node> parse_notation_text(std::string_view text);
std::unique_ptr<Node> parse_json_text(std::string_view text);

} // namespace zvp

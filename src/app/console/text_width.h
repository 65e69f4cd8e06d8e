#pragma once
// Columns that UTF-8 text takes on a console, one for each code point.

#include <string>
#include <string_view>

namespace zvp {

/// The number of code points of `text`, told by the bytes that begin one.
std::size_t column_count(std::string_view text);

/// `text` cut or padded with blanks on its right to exactly `columns` columns.
std::string fit_left(std::string_view text, std::size_t columns);

/// `text` padded with blanks on its left to at least `columns` columns.
std::string pad_left(std::string_view text, std::size_t columns);

} // namespace zvp

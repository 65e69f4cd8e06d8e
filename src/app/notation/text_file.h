#pragma once
// Text files: configuration, formulas, user names, check digits.

#include <string>
#include <string_view>

namespace zvp {

enum class TextEncoding { utf8, utf16_big_endian, utf16_little_endian };

/// "UTF-8", "UTF-16 (Big Endian)", "UTF-16 (Little Endian)".
std::string_view text_encoding_name(TextEncoding encoding);

/// The encoding that the first bytes tell: FF FE or FE FF is UTF-16, anything else UTF-8.
TextEncoding detect_encoding(std::string_view bytes);

/// The text as UTF-8, without its byte order mark. Bytes of UTF-8 text are taken as they are. UTF-16 that ends
/// in half a character or has a surrogate without its partner raises ParseException with the line.
std::string decode_text(std::string_view bytes);

/// Reads a text file of any of the encodings. Raises FileException when it can't be read.
std::string load_text_file(const std::string& path);

} // namespace zvp

#include "app/notation/text_file.h"

#include "app/console/number_forms.h"
#include "app/failure/file_exceptions.h"
#include "platform/file.h"

#include <cerrno>

namespace zvp {

namespace {

void append_utf8(std::string& out, std::uint32_t code) {
    const auto put = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

class Utf16Decoder {
public:
    Utf16Decoder(std::string_view bytes_, bool big_endian_) : bytes(bytes_), big_endian(big_endian_) {}

    std::string decode() {
        std::string out;
        while (!bytes.empty()) {
            const std::uint32_t unit = take_unit();
            if (unit >= 0xDC00 && unit < 0xE000) fail();
            if (unit >= 0xD800 && unit < 0xDC00) {
                const std::uint32_t low = take_unit();
                if (low < 0xDC00 || low >= 0xE000) fail();
                append_utf8(out, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
            } else {
                append_utf8(out, unit);
            }
            if (unit == '\n') ++line;
        }
        return out;
    }

private:
    [[noreturn]] void fail() const {
        throw ParseException("decode_text()", "Line " + std::to_string(line + 1) + ": Invalid UTF-16 text.");
    }

    std::uint32_t take_unit() {
        if (bytes.size() < 2) fail();
        const auto first = static_cast<unsigned char>(bytes[0]);
        const auto second = static_cast<unsigned char>(bytes[1]);
        bytes.remove_prefix(2);
        return big_endian ? std::uint32_t{first} << 8 | second : std::uint32_t{second} << 8 | first;
    }

    std::string_view bytes;
    bool big_endian;
    std::size_t line = 0;
};

} // namespace

std::string_view text_encoding_name(TextEncoding encoding) {
    switch (encoding) {
    case TextEncoding::utf8: return "UTF-8";
    case TextEncoding::utf16_big_endian: return "UTF-16 (Big Endian)";
    case TextEncoding::utf16_little_endian: return "UTF-16 (Little Endian)";
    }
    return "";
}

TextEncoding detect_encoding(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE")) return TextEncoding::utf16_little_endian;
    if (bytes.starts_with("\xFE\xFF")) return TextEncoding::utf16_big_endian;
    return TextEncoding::utf8;
}

std::string decode_text(std::string_view bytes) {
    const TextEncoding encoding = detect_encoding(bytes);
    if (encoding != TextEncoding::utf8)
        return Utf16Decoder(bytes.substr(2), encoding == TextEncoding::utf16_big_endian).decode();
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    return std::string(bytes);
}

std::string load_text_file(const std::string& path) {
    std::string bytes;
    const int error = platform::read_whole_file(path, bytes);
    if (error == EFBIG)
        throw FileIO::FileException("load_text_file()",
                                    "The file is too large. A text file may have "
                                        + format_number(platform::max_whole_file_bytes, NumberForm::commas) + " bytes.",
                                    path, 0);
    if (error != 0)
        throw FileIO::FileException("load_text_file()", with_system_error("Unable to open file.", error), path, error);
    return decode_text(bytes);
}

} // namespace zvp

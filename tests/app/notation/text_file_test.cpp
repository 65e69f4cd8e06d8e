#include "app/failure/file_exceptions.h"
#include "app/notation/config_file.h"
#include "app/notation/text_file.h"
#include "app/raised.h"
#include "support/program.h"

#include <cerrno>
#include <string>
#include <tuple>

namespace {

using namespace zvp;
using namespace std::string_literals;
using test::raised_by;

TEST(TextFile, EveryEncodingBecomesUtf8) {
    const std::tuple<std::string, std::string, std::string> rows[] = {
        {"\xFF", "UTF-8", "\xFF"},
        {"\xEF\xBB\xBF\xCF\x80\0\xEF\xBB\xBF"s, "UTF-8", "\xCF\x80\0\xEF\xBB\xBF"s},
        {"\xFF\xFE", "UTF-16 (Little Endian)", ""},
        {"\xFF\xFE\x61\0\xC0\x03\0\0\xAC\x20\x3D\xD8\x00\xDE"s, "UTF-16 (Little Endian)", "a\u03C0\0\u20AC\U0001F600"s},
        {"\xFE\xFF\0\x7F\0\x80\x07\xFF\x08\0\0\0\xFF\xFF\xD8\0\xDC\0\xDB\xFF\xDF\xFF"s, "UTF-16 (Big Endian)",
         "\x7F\u0080\u07FF\u0800\0\uFFFF\U00010000\U0010FFFF"s}};
    for (const auto& [bytes, encoding, text] : rows) {
        EXPECT_EQ(text_encoding_name(detect_encoding(bytes)), encoding);
        EXPECT_EQ(decode_text(bytes), text);
    }
}

TEST(TextFile, BrokenUtf16NamesItsLine) {
    const std::pair<std::string, int> rows[] = {
        {"\xFF\xFE\x61"s, 1},                     // half a character
        {"\xFF\xFE\n\0\n\0\x00"s, 3},             // the same, further down
        {"\xFE\xFF\0\n\xD8\x3D"s, 2},             // a high surrogate at the end
        {"\xFE\xFF\0\n\xD8\x3D\0\n"s, 2},         // before another character
        {"\xFE\xFF\xD8\x3D\xD8\x3D\xDE\x00"s, 1}, // before a high surrogate
        {"\xFE\xFF\xDE\x00\xD8\x3D"s, 1},         // a low surrogate first
    };
    for (const auto& [bytes, line] : rows)
        EXPECT_EQ(raised_by([&, &bytes = bytes] { decode_text(bytes); }),
                  "ParseException: Line " + std::to_string(line) + ": Invalid UTF-16 text.");
}

TEST(TextFile, FailureTellsPathAndCode) {
    const test::TemporaryFolder folder;
    const std::pair<std::string, int> rows[] = {{folder.path / "missing", ENOENT}, {folder.path, EISDIR}};
    for (const auto& [path, code] : rows) {
        try {
            load_text_file(path);
            ADD_FAILURE() << path << " was read";
        } catch (const FileIO::FileException& exception) {
            EXPECT_EQ(exception.path, path);
            EXPECT_EQ(exception.error_code, code);
            EXPECT_EQ(exception.message, with_system_error("Unable to open file.", code));
        }
    }
    EXPECT_EQ(with_system_error("text", ENOENT), "text\n\nPath does not exist.");
}

TEST(TextFile, ConfigurationMayBeUtf16) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path / "a.cfg";
    test::write_file(path, "\xFF\xFE{\0a\0:\0\"\0\xC0\x03\"\0}\0\r\0\n\0"s);
    EXPECT_EQ(load_notation_file(path)->as_object("").get_string("a"), "\u03C0");
    test::write_file(path, "\xEF\xBB\xBF{a:1}\n\0"s);
    EXPECT_EQ(raised_by([&] { load_notation_file(path); }),
              "ParseException: Line 2: Unexpected text behind the end of the value.");
}

} // namespace

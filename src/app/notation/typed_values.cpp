#include "app/notation/typed_values.h"

#include "app/console/value_parsers.h"
#include "app/failure/exceptions.h"

namespace CommandLine {

namespace {

std::string checked(std::string_view word, zvp::NumberKind kind) {
    zvp::TypedNumber number(word, kind);
    if (!number.unread.empty()) throw zvp::InvalidParametersException("", zvp::invalid_number_text(word, number));
    return std::move(number.text);
}

} // namespace

std::int32_t read_s32(std::string_view word) { return zvp::parse_s32(checked(word, zvp::NumberKind::signed_integer)); }

std::int64_t read_s64(std::string_view word) { return zvp::parse_sL(checked(word, zvp::NumberKind::signed_integer)); }

std::uint32_t read_u32(std::string_view word) { return zvp::parse_u32(checked(word, zvp::NumberKind::integer)); }

std::uint64_t read_digits(std::string_view word) { return zvp::parse_digits(checked(word, zvp::NumberKind::digits)); }

std::uint64_t read_bytes(std::string_view word) { return zvp::parse_bytes(checked(word, zvp::NumberKind::bytes)); }

} // namespace CommandLine

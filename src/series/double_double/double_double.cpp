#include "series/double_double/double_double.h"

#include "app/failure/exceptions.h"

#include <cmath>
#include <cstdlib>
#include <string>

namespace zvp {
namespace {

constexpr const char* parse_name = "DoubleDouble::parse()";
constexpr int kept_decimals = 37; // 10^37 / 2 < 2^122: the low part, scaled, fits 127 bits

struct Decimal {
    unsigned __int128 digits = 0; // modulo 2^128: enough, since only a small difference is read from it
    unsigned __int128 scale = 1;  // 10^decimals
};

Decimal read_decimal(std::string_view text) {
    Decimal decimal;
    bool point = false, any = false;
    int decimals = 0;
    for (const char c : text) {
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9')
            throw InvalidParametersException(parse_name, "Not a decimal number: " + std::string(text));
        any = true;
        if (point && decimals == kept_decimals) continue;
        decimal.digits = decimal.digits * 10 + static_cast<unsigned>(c - '0');
        if (!point) continue;
        decimal.scale *= 10;
        ++decimals;
    }
    if (!any) throw InvalidParametersException(parse_name, "Not a decimal number: " + std::string(text));
    return decimal;
}

} // namespace

// hi is the nearest double, M * 2^-s. The rest, (digits * 2^s - M * scale) / (2^s * scale), has a numerator of at
// most scale / 2, so it's exact modulo 2^128, however large its two products are.
DoubleDouble DoubleDouble::parse(std::string_view text) {
    const Decimal decimal = read_decimal(text);
    const double hi = std::strtod(std::string(text).c_str(), nullptr);
    if (hi >= 0x1p53) throw InvalidParametersException(parse_name, "Number is too large: " + std::string(text));
    if (hi < 0x1p-64) return hi;
    int exponent;
    const auto mantissa = static_cast<std::uint64_t>(std::ldexp(std::frexp(hi, &exponent), 53));
    const int shift = 53 - exponent;
    const auto rest = static_cast<__int128>((decimal.digits << shift) - decimal.scale * mantissa);
    return quick_two_sum(hi, std::ldexp(static_cast<double>(rest) / static_cast<double>(decimal.scale), -shift));
}

} // namespace zvp

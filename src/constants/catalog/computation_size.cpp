#include "constants/catalog/computation_size.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace zvp {

namespace {

// log(10)/log(16); the products of whole numbers below 2^53 with it are told apart from whole numbers by the 64 bits of
// a long double.
constexpr long double hexadecimal_per_decimal = 0.83048202372184058696757985737234754L;

void check(std::uint64_t digits, std::uint64_t lowest, std::uint64_t highest, const std::string& unit) {
    if (digits < lowest)
        throw InvalidParametersException("", "Computation size must be at least "
                                                 + format_number(lowest, NumberForm::commas) + unit);
    if (digits > highest)
        throw InvalidParametersException("", "Computation size cannot be larger than "
                                                 + format_number(highest, NumberForm::commas) + unit);
}

} // namespace

std::uint64_t hexadecimal_equivalent_of(std::uint64_t decimal_digits) {
    return static_cast<std::uint64_t>(std::floor(static_cast<long double>(decimal_digits) * hexadecimal_per_decimal));
}

std::uint64_t decimal_equivalent_of(std::uint64_t hexadecimal_digits) {
    return static_cast<std::uint64_t>(
        std::ceil(static_cast<long double>(hexadecimal_digits) / hexadecimal_per_decimal));
}

ComputationSize::ComputationSize(std::uint64_t decimal_digits_) {
    assign(decimal_digits_);
    hexadecimal_digits = hexadecimal_equivalent;
}

void ComputationSize::assign(std::uint64_t decimal_digits_) {
    const bool follow = hexadecimal_digits != 0 && hexadecimal_digits == hexadecimal_equivalent;
    decimal_digits = decimal_digits_;
    hexadecimal_equivalent = hexadecimal_equivalent_of(decimal_digits);
    assign_hexadecimal(follow ? hexadecimal_equivalent : hexadecimal_digits);
}

void ComputationSize::assign_hexadecimal(std::uint64_t digits) {
    hexadecimal_digits = digits;
    precision_words = words_of_hexadecimal(std::max(hexadecimal_equivalent, hexadecimal_digits));
}

void ComputationSize::set_decimal_digits(std::uint64_t digits, std::uint64_t maximum) {
    check(digits, min_decimal_digits, maximum, " decimal digits.");
    assign(digits);
}

void ComputationSize::set_hexadecimal_digits(std::uint64_t digits, std::uint64_t maximum) {
    if (digits != 0)
        check(digits, hexadecimal_equivalent_of(min_decimal_digits), hexadecimal_equivalent_of(maximum),
              " hexadecimal digits.");
    assign_hexadecimal(digits);
}

void ComputationSize::normalize(std::uint64_t maximum) {
    if (decimal_digits < min_decimal_digits) {
        print_warning("Precision below minimum. Adjusting to minimum.");
        assign(min_decimal_digits);
    }
    if (decimal_digits > maximum || hexadecimal_digits > hexadecimal_equivalent_of(maximum)) {
        print_warning("Precision above maximum: Clipping to maximum.");
        assign(std::min(decimal_digits, maximum));
        assign_hexadecimal(std::min(hexadecimal_digits, hexadecimal_equivalent_of(maximum)));
    }
}

ComputationSize ComputationSize::working_size() const {
    ComputationSize size;
    const std::uint64_t carried =
        hexadecimal_digits > hexadecimal_equivalent ? decimal_equivalent_of(hexadecimal_digits) : 0;
    size.assign(std::max(decimal_digits, carried) + guard_decimal_digits);
    size.hexadecimal_digits = hexadecimal_digits;
    return size;
}

} // namespace zvp

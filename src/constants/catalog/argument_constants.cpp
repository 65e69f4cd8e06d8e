#include "constants/catalog/argument_constants.h"

#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/failure/exceptions.h"
#include "app/failure/file_exceptions.h"
#include "app/notation/text_file.h"
#include "app/notation/typed_values.h"
#include "constants/catalog/constant_rows.h"

#include <cmath>
#include <limits>
#include <string>

namespace zvp {

namespace {

[[noreturn]] void refuse(const std::string& message) { throw InvalidParametersException("", message); }

std::uint32_t checked_argument(std::int64_t n, std::int64_t above) {
    if (n <= above) refuse("Argument must be greater than " + std::to_string(above) + ".");
    if (n > std::int64_t{std::numeric_limits<std::uint32_t>::max()}) refuse("Argument is too large.");
    return static_cast<std::uint32_t>(n);
}

bool is_square(std::uint32_t n) {
    const auto root = static_cast<std::uint64_t>(std::sqrt(static_cast<double>(n))); // exact below 2^53
    return root * root == n;
}

/// The long name of an algorithm of Brent and McMillan with its parameter.
std::string brent_name(std::string_view name, std::uint32_t k) {
    return std::string(name) + " ( n = 2^" + std::to_string(k) + " )";
}

} // namespace

void ArgumentConstant::set_parameters(std::string_view text) { set_argument(CommandLine::read_s64(text)); }

void ArgumentConstant::save_parameters(Object& object) const { object.add_integer("Argument", argument); }

void ArgumentConstant::load_parameters(const Object& object) { set_argument(object.get_integer("Argument")); }

bool ArgumentConstant::prompt_argument(std::string_view heading, std::string_view label) {
    print_line("\n\n" + std::string(heading) + "\n", 'w');
    for (;;) {
        try {
            set_argument(prompt_signed(label, 'T'));
            print_line();
            return true;
        } catch (const InvalidParametersException& refusal) {
            print_line(refusal.message, 'R');
            set_color('w');
        }
    }
}

SqrtConstant::SqrtConstant() : ArgumentConstant(constant_traits(0), 2) {}

bool SqrtConstant::prompt_parameters() {
    print_line("\n\nSquare Root of n\n", 'w');
    for (;;) {
        const std::int64_t n = prompt_signed("n = ", 'T');
        try {
            if (is_square(checked_argument(n, 1))) {
                print_line("This number is a perfect square.", 'R');
                print_line("Please choose something more interesting :)", 'w');
                continue;
            }
            set_argument(n);
            print_line();
            return true;
        } catch (const InvalidParametersException& refusal) {
            print_line(refusal.message, 'R');
            set_color('w');
        }
    }
}

void SqrtConstant::set_argument(std::int64_t n) {
    const std::uint32_t number = checked_argument(n, 1);
    if (is_square(number)) refuse(std::to_string(number) + " is a perfect square.");
    argument = number;
}

LogConstant::LogConstant() : ArgumentConstant(constant_traits(4), 2) {}

void LogConstant::set_argument(std::int64_t n) {
    const std::uint32_t number = checked_argument(n, 1);
    if (number > 32767) refuse(std::to_string(number) + " is out of range.");
    argument = number;
}

GammaConstant::GammaConstant() : Constant(constant_traits(8)) { set_digits(digits); }

void GammaConstant::set_digits(std::uint64_t working_digits) {
    Constant::set_digits(working_digits);
    const long double needed = static_cast<long double>(working_words()) * 22.18070977791824990135L / 4 + 10;
    for (k = 2; std::ldexp(1.0L, static_cast<int>(k)) < needed;) ++k;
}

std::string GammaConstant::algorithm_name() const { return brent_name(current().long_name, k); }

BrentConstant::BrentConstant() : ArgumentConstant(constant_traits(9), 0) {}

void BrentConstant::set_argument(std::int64_t n) {
    const std::uint32_t k = checked_argument(n, 0);
    if (k > 63) refuse(std::to_string(k) + " is out of range.");
    argument = k;
}

std::string BrentConstant::algorithm_name() const { return brent_name(current().long_name, argument); }

CustomConstant::CustomConstant() : Constant(constant_traits(10)) {}

void CustomConstant::set_parameters(std::string_view path) {
    if (path.empty()) refuse("No formula file specified.");
    try {
        load_text_file(std::string(path));
    } catch (const FileIO::FileException&) {
        refuse("File not found.");
    }
    file = path;
}

} // namespace zvp

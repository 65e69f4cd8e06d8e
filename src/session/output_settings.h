#pragma once
// Where the digits of a computation go: the object "Output" of a configuration, and its menu.

#include "app/notation/node.h"
#include "constants/catalog/computation_size.h"
#include "digits/writer/digit_output.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zvp {

/// The output with what a configuration and a menu need.
class OutputSettings : public DigitOutput {
public:
    static constexpr std::uint64_t min_digits_per_file = 1'000'000;

    /// Text files in the working directory.
    OutputSettings() = default;

    /// Reads "Framework" and the format's keys. Raises KeyNotFoundException, and InvalidParametersException for another
    /// word or a number of digits that set_digits_per_file() refuses.
    explicit OutputSettings(const Object& object);

    Object to_config_object() const;

    /// "No Digit Output" and so on.
    std::string_view display_name() const;

    /// 0 is a single file; other numbers below the minimum raise InvalidParametersException.
    void set_digits_per_file(std::uint64_t digits);

    /// Puts a "/" behind a path that has none; the empty path is the working directory.
    void set_path(std::string new_path);

    /// The bytes of all files.
    std::uint64_t total_bytes(const ComputationSize& size) const;

    /// Raises InvalidParametersException if no file can be made where the digits are to go.
    void check_path() const;

    /// Lets the user choose; a choice that can't be kept is told, and leaves the settings as they were.
    void menu(const ComputationSize& size);

    bool operator==(const OutputSettings&) const = default;

private:
    void print_rows(const ComputationSize& size) const;
    /// Raise InvalidParametersException for a choice that can't be kept; nothing is changed then.
    void menu_format();
    void menu_path();
};

} // namespace zvp

#pragma once
// Numbers as the program prints them.

#include <cstdint>
#include <string>

namespace zvp {

enum class NumberForm {
    plain,            // 1234567
    commas,           // 1,234,567
    bytes,            // 1.18 MiB
    commas_and_bytes, // 1,234,567 (1.18 MiB)
};

std::string format_number(std::uint64_t value, NumberForm form = NumberForm::plain);
std::string format_signed(std::int64_t value, NumberForm form = NumberForm::plain);

/// A byte count with three significant digits and its unit, always four columns before the unit's blank:
/// "  7 bytes", "0.98 KiB", " 100 MiB".
std::string format_bytes(std::uint64_t bytes);

/// Seconds with three decimals, and the same in minutes, hours (from 7200 s) or days (from 172800 s).
std::string format_seconds(double seconds);

/// Fixed notation with `decimals` decimals, without separators.
std::string format_fixed(double value, unsigned decimals);

} // namespace zvp

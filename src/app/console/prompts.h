#pragma once
// Questions to the user. Each prints its label (in white, when a colour is given), reads the answer in the colour, and asks
// again, without a message, until the value is in range; an answer that isn't a number is reported first. A prompt that
// could only repeat itself because the input has ended stops the program (see read_line()).

#include <cstdint>
#include <string>
#include <string_view>

namespace zvp {

/// An unsigned decimal number in lo .. hi; an empty line is 0.
std::uint32_t prompt_int(std::string_view label, std::uint32_t lo, std::uint32_t hi, char color = ' ');
std::uint64_t prompt_int64(std::string_view label, std::uint64_t lo, std::uint64_t hi, char color = ' ');

/// A number of any size, with "-" in front if it is negative; an empty line is 0.
std::int64_t prompt_signed(std::string_view label, char color = ' ');

/// A menu's option in lo .. hi, with the label "option: ". The end of the input chooses none, so that nothing starts that
/// nobody asked for: it is asked again, which ends the program where no answer can follow.
std::uint32_t prompt_option(std::uint32_t lo, std::uint32_t hi);

/// A byte count.
std::uint64_t prompt_size(std::string_view label, char color = ' ');

/// A digit count in lo .. hi with the suffixes of the digit menu, which are explained first.
std::uint64_t prompt_digits(std::string_view label, std::uint64_t lo, std::uint64_t hi);

/// A line as it stands.
std::string prompt_line(std::string_view label, char color = ' ');

} // namespace zvp

#pragma once
// Printing and reading on the console.
//
// A colour is one letter: B G T R P Y are bright blue, green, cyan, red, purple, yellow; b g t r p y their dark
// forms; a blank leaves the colour as it is; any other letter is white. A colour stays in force until the next
// one. On a terminal the letters become ANSI sequences, white being the terminal's own text colour; redirected
// output and colours:0 get none. Texts are UTF-8.
//
// Only the main thread prints; what draws from another thread holds the console lock.

#include <cstdint>
#include <string>
#include <string_view>

namespace zvp {

/// Whether colours can be seen. What differs in colour alone needs another sign where they cannot.
bool colors_shown();

void set_color(char color);
void reset_color();

/// Puts `text`, without control characters, into the title of the terminal's window; nothing where there is none.
void set_title(std::string_view text);

void print(std::string_view text, char color = ' ');
void print_line(std::string_view text = {}, char color = ' ');

/// `label`, ": ", `value` in the colour.
void print_labelc(std::string_view label, std::string_view value, char color = ' ');

/// `label` padded with blanks to `width` columns, the last of them always a blank (a longer label is cut); then
/// `value` in the colour; then white, unless the colour is a blank.
void print_labelm(std::size_t width, std::string_view label, std::string_view value, char color = ' ');

/// print_labelm() and the end of the line.
void print_labelm_line(std::size_t width, std::string_view label, std::string_view value, char color = ' ');

/// A warning: a blank line, `text` and a newline in bright red, then white.
void print_warning(std::string_view text);

/// Reads one line of standard input, typed in the colour; trailing control characters are cut. The end of the
/// input counts as one empty line; reading on after it is a fatal stop, since no prompt could ever be
/// answered. On a terminal (Ctrl-D) every end is an empty line, since the user can go on typing.
std::string read_line(char color = ' ');

/// Whether the last line was an end of the input and not typed: it must not choose what a menu runs.
bool input_has_ended();

/// Waits for a key where a user is there to press one and pauses aren't switched off (pause:-2); in the colour, white by
/// default. Returns whether the key was Ctrl-C: what follows a warning breaks off then.
bool pause(char color = 'w');

/// Ends the process with code 1 where nothing can be thrown: resets the colour and pauses if that is allowed.
[[noreturn]] void fatal_stop();

/// The same, after a blank line and `text` in bright red.
[[noreturn]] void fatal_stop(std::string_view text);

} // namespace zvp

#pragma once
// The console as the operating system gives it: bytes out, lines in, a key press.

#include <string>
#include <string_view>

namespace zvp::platform {

/// Whether standard output (input) is a terminal. Asked once per process.
bool output_is_terminal();
bool input_is_terminal();

/// Columns of the terminal that standard output is; 0 if it is none or doesn't tell.
unsigned output_columns();

/// Whether a write to standard output would go on at once. A stopped terminal must not stop what only reports to it.
bool output_ready() noexcept;

/// The first errno of output that was lost, unless its reader had simply gone away; 0 if none was.
int lost_output() noexcept;

/// Writes all bytes of `text` to standard output, unbuffered. A reader that went away (closed pipe, full disk)
/// is ignored: a computation of days must not end because its console did. Async-signal-safe.
void write_output(std::string_view text) noexcept;

/// Writes to standard error.
void write_error(std::string_view text) noexcept;

enum class LineStatus { complete, too_long, end_of_input, failed };

/// Lines longer than this are refused whole.
inline constexpr std::size_t max_line_bytes = 65'536;

/// Reads one line of standard input into `line`, without its line feed. The last line needs no line feed.
/// too_long: the line was passed over up to its end, `line` is empty. end_of_input: nothing was left to read.
/// failed: the system refused; nothing was answered.
LineStatus read_line(std::string& line);

/// Whether lines may follow an end of the input: it is a terminal that is still there. After a hang-up every read is an end.
bool input_goes_on();

/// Waits for one key on the terminal, after printing the customary hint. Returns at once, and reads nothing,
/// when standard input is no terminal. Returns whether the key was Ctrl-C. Async-signal-safe.
bool wait_for_key() noexcept;

/// From here on a signal that ends the program (Ctrl-C outside an InterruptGate, SIGTERM, hang-up) leaves the terminal in its own colour and mode.
void restore_terminal_at_signals();

} // namespace zvp::platform

#include "platform/console_io.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace zvp::platform {

bool output_is_terminal() {
    static const bool terminal = isatty(STDOUT_FILENO) == 1;
    return terminal;
}

bool input_is_terminal() {
    static const bool terminal = isatty(STDIN_FILENO) == 1;
    return terminal;
}

void write_output(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN) { // another program made the terminal non-blocking
            pollfd output{STDOUT_FILENO, POLLOUT, 0};
            poll(&output, 1, -1);
            continue;
        }
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

namespace {

/// Bytes of standard input that were read ahead of the line that was asked for.
struct InputBuffer {
    std::array<char, 4096> bytes;
    std::size_t next = 0;
    std::size_t end = 0;

    bool refill() {
        ssize_t got;
        do {
            got = read(STDIN_FILENO, bytes.data(), bytes.size());
        } while (got < 0 && errno == EINTR);
        next = 0;
        end = got > 0 ? static_cast<std::size_t>(got) : 0;
        return end != 0;
    }
};

} // namespace

LineStatus read_line(std::string& line) {
    static InputBuffer input;
    line.clear();
    bool anything = false;
    bool too_long = false;
    while (input.next != input.end || input.refill()) {
        anything = true;
        const char c = input.bytes[input.next++];
        if (c == '\n') return too_long ? LineStatus::too_long : LineStatus::complete;
        if (line.size() == max_line_bytes) {
            too_long = true;
            line.clear();
        }
        if (!too_long) line.push_back(c);
    }
    if (too_long) return LineStatus::too_long;
    return anything ? LineStatus::complete : LineStatus::end_of_input;
}

void wait_for_key() noexcept {
    termios saved;
    if (tcgetattr(STDIN_FILENO, &saved) != 0) return;
    write_output("Press any key to continue . . . ");
    termios raw = saved;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG); // Ctrl-C is a key here, not a way to leave it so
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &raw);
    char key;
    while (read(STDIN_FILENO, &key, 1) < 0 && errno == EINTR) {
    }
    tcsetattr(STDIN_FILENO, TCSANOW, &saved);
    write_output("\n");
}

} // namespace zvp::platform

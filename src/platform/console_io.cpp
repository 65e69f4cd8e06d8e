#include "platform/console_io.h"

#include "platform/interrupts.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/ioctl.h>
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

void write_error(std::string_view text) noexcept {
    if (write(STDERR_FILENO, text.data(), text.size()) < 0) return; // nowhere left to tell it
}

unsigned output_columns() {
    winsize size{};
    return output_is_terminal() && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool output_ready() noexcept {
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    return poll(&output, 1, 0) != 0;
}

namespace {

std::atomic<int> first_lost_output{0};

} // namespace

int lost_output() noexcept { return first_lost_output; }

void write_output(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN) { // another program made the terminal non-blocking
            pollfd output{STDOUT_FILENO, POLLOUT, 0};
            poll(&output, 1, -1);
            continue;
        }
        if (written <= 0) {
            if (errno != EPIPE && errno != EIO && first_lost_output == 0) first_lost_output = errno;
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

namespace {

/// Bytes of standard input that were read ahead of the line that was asked for.
struct InputBuffer {
    std::array<char, 4096> bytes;
    std::size_t next = 0;
    std::size_t end = 0;

    enum class Refill { filled, ended, failed };

    Refill refill() {
        ssize_t got;
        while ((got = read(STDIN_FILENO, bytes.data(), bytes.size())) < 0) {
            if (errno == EAGAIN) { // another program made the terminal or pipe non-blocking
                pollfd input{STDIN_FILENO, POLLIN, 0};
                poll(&input, 1, -1);
            } else if (errno != EINTR) {
                return Refill::failed;
            }
        }
        next = 0;
        end = static_cast<std::size_t>(got);
        return got == 0 ? Refill::ended : Refill::filled;
    }
};

} // namespace

LineStatus read_line(std::string& line) {
    static InputBuffer input;
    line.clear();
    bool anything = false;
    bool too_long = false;
    for (;;) {
        if (input.next == input.end) {
            const InputBuffer::Refill refilled = input.refill();
            if (refilled == InputBuffer::Refill::failed) return LineStatus::failed;
            if (refilled == InputBuffer::Refill::ended) break;
        }
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

bool input_goes_on() {
    termios state;
    return input_is_terminal() && tcgetattr(STDIN_FILENO, &state) == 0;
}

namespace {

/// The terminal as it was before a wait for a key; restored by the wait's end, or by a signal that ends the program.
termios terminal_before_wait;
std::atomic<bool> waits_for_key{false};

void restore_terminal() noexcept {
    if (waits_for_key.exchange(false)) tcsetattr(STDIN_FILENO, TCSAFLUSH, &terminal_before_wait);
}

void on_end_signal(int signal) {
    if (pass_interrupt(signal)) return;
    restore_terminal();
    if (isatty(STDOUT_FILENO) == 1) write_output("\x1b[0m");
    std::signal(signal, SIG_DFL);
    raise(signal);
}

} // namespace

void restore_terminal_at_signals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = on_end_signal;
        action.sa_flags = SA_ONSTACK | SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

bool wait_for_key() noexcept {
    termios now;
    if (tcgetpgrp(STDIN_FILENO) != getpgrp()) return false; // in the background nobody sees the question
    if (tcgetattr(STDIN_FILENO, &now) != 0) return false;
    if (!waits_for_key) terminal_before_wait = now;
    waits_for_key = true;
    write_output("Press any key to continue . . . ");
    now.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG); // Ctrl-C is a key here
    now.c_cc[VMIN] = 1;
    now.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &now);
    char key = '\0';
    while (read(STDIN_FILENO, &key, 1) < 0 && errno == EINTR) {
    }
    restore_terminal();
    write_output("\n");
    constexpr char interrupt_key = '\x03';
    return key == interrupt_key;
}

} // namespace zvp::platform

#include "platform/interrupts.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace zvp::platform {

namespace {

/// Never closed: a signal that was taken for one gate may still be on its way when that one is gone.
struct Pipe {
    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0) ends[0] = ends[1] = -1;
    }
    int ends[2]; // read, write
};

const Pipe& messages() {
    static const Pipe pipe;
    return pipe;
}

/// The write end while a gate is open; taken by the first signal, so that the second one finds none.
std::atomic<int> open_end{-1};

constexpr char interrupted = 'i', closed = 'c';

void send(int end, char message) noexcept {
    while (write(end, &message, 1) < 0 && errno == EINTR) {
    }
}

char receive(int end) noexcept {
    char message = closed;
    while (read(end, &message, 1) < 0 && errno == EINTR) {
    }
    return message;
}

} // namespace

InterruptGate::InterruptGate() {
    const Pipe& pipe = messages();
    if (pipe.ends[0] < 0) return;
    for (pollfd left{pipe.ends[0], POLLIN, 0}; poll(&left, 1, 0) > 0;) receive(pipe.ends[0]);
    open_end = pipe.ends[1];
}

InterruptGate::~InterruptGate() { open_end = -1; }

bool InterruptGate::wait() noexcept { return messages().ends[0] >= 0 && receive(messages().ends[0]) == interrupted; }

void InterruptGate::close() noexcept {
    open_end = -1;
    if (messages().ends[1] >= 0) send(messages().ends[1], closed);
}

bool pass_interrupt(int signal) noexcept {
    if (signal != SIGINT) return false;
    const int end = open_end.exchange(-1);
    if (end < 0) return false;
    const int error = errno;
    send(end, interrupted);
    errno = error;
    return true;
}

} // namespace zvp::platform

#include "platform/crash_filter.h"

#include "platform/threads.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <execinfo.h>
#include <fcntl.h>
#include <string_view>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace zvp::platform {

namespace {

FaultHandler fault_handler = nullptr;

constexpr std::array fault_signals{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

void on_fault(int signal, siginfo_t* info, void* context) {
    const Fault fault{signal, info, context};
    fault_handler(fault);
    end_by_fault(fault);
}

std::string_view signal_name(int signal) {
    switch (signal) {
    case SIGSEGV: return "SIGSEGV (invalid memory access)";
    case SIGBUS: return "SIGBUS (memory that the system can't provide)";
    case SIGILL: return "SIGILL (illegal instruction)";
    case SIGFPE: return "SIGFPE (arithmetic fault)";
    case SIGABRT: return "SIGABRT (abort)";
    default: return "unknown";
    }
}

/// A file that is written without the heap, stdio or locks.
class RecordFile {
public:
    explicit RecordFile(int file_) : file(file_) {}

    RecordFile& operator<<(std::string_view text) {
        while (!text.empty()) {
            const ssize_t written = write(file, text.data(), text.size());
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) {
                if (first_error == 0) first_error = errno;
                return *this;
            }
            text.remove_prefix(static_cast<std::size_t>(written));
        }
        return *this;
    }

    RecordFile& decimal(std::int64_t value) {
        std::array<char, 24> text;
        std::size_t at = text.size();
        auto rest = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
        do {
            text[--at] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest != 0);
        if (value < 0) text[--at] = '-';
        return *this << std::string_view(text.data() + at, text.size() - at);
    }

    RecordFile& hexadecimal(std::uint64_t value) {
        std::array<char, 18> text{'0', 'x'};
        for (std::size_t i = 0; i < 16; ++i) text[17 - i] = "0123456789abcdef"[value >> (4 * i) & 15];
        return *this << std::string_view(text.data(), text.size());
    }

    const int file;
    int first_error = 0;
};

void write_cause(RecordFile& out, const Fault& fault) {
    const auto& info = *static_cast<const siginfo_t*>(fault.signal_info);
    out << "Signal:   ";
    out.decimal(fault.signal) << "  " << signal_name(fault.signal) << "\nCode:     ";
    out.decimal(info.si_code) << "\n";
    if (info.si_code <= 0) { // SI_USER and its like: sent by a process
        out << "Sender:   process ";
        out.decimal(info.si_pid) << ", user ";
        out.decimal(info.si_uid) << "\n";
    } else {
        out << "Address:  ";
        out.hexadecimal(reinterpret_cast<std::uintptr_t>(info.si_addr)) << "\n";
    }
    out << "Process:  ";
    out.decimal(getpid()) << "\nThread:   ";
    out.decimal(current_thread_number()) << "\n\n";
}

void write_registers(RecordFile& out, const Fault& fault) {
    static constexpr struct {
        const char* name;
        int index;
    } registers[] = {{"rax", REG_RAX}, {"rbx", REG_RBX}, {"rcx", REG_RCX}, {"rdx", REG_RDX}, {"rsi", REG_RSI},
                     {"rdi", REG_RDI}, {"rbp", REG_RBP}, {"rsp", REG_RSP}, {"r8 ", REG_R8},  {"r9 ", REG_R9},
                     {"r10", REG_R10}, {"r11", REG_R11}, {"r12", REG_R12}, {"r13", REG_R13}, {"r14", REG_R14},
                     {"r15", REG_R15}, {"rip", REG_RIP}, {"efl", REG_EFL}, {"err", REG_ERR}, {"cr2", REG_CR2}};
    const auto& context = *static_cast<const ucontext_t*>(fault.context);
    out << "Registers:\n";
    for (const auto& r : registers) {
        out << "    " << r.name << " = ";
        out.hexadecimal(static_cast<std::uint64_t>(context.uc_mcontext.gregs[r.index])) << "\n";
    }
}

void write_backtrace(RecordFile& out) {
    std::array<void*, 128> frames;
    const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
    out << "\nBacktrace:\n";
    backtrace_symbols_fd(frames.data(), count, out.file);
}

} // namespace

void install_fault_handler(FaultHandler handler) {
    static const FaultStack main_thread_stack;
    fault_handler = handler;
    // The first backtrace() loads the unwinder, which takes locks and memory: not inside a fault.
    void* frame;
    backtrace(&frame, 1);

    struct sigaction action {};
    action.sa_sigaction = on_fault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const int signal : fault_signals) sigaction(signal, &action, nullptr);
}

CrashRecordResult write_crash_record(const Fault& fault, const char* path) noexcept {
    const int file = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (file < 0) return {false, errno};
    RecordFile out(file);
    out << "zorvane crash record\n\n";
    write_cause(out, fault);
    write_registers(out, fault);
    write_backtrace(out);
    close(file);
    return {true, out.first_error};
}

void end_by_fault(const Fault& fault) noexcept {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    sigaction(fault.signal, &action, nullptr);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, fault.signal);
    raise(fault.signal);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr); // the signal is blocked while its handler runs
    _exit(128 + fault.signal);
}

long current_thread_number() noexcept { return syscall(SYS_gettid); }

void sleep_milliseconds(unsigned milliseconds) noexcept {
    timespec t{static_cast<std::time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (nanosleep(&t, &t) != 0 && errno == EINTR) {
    }
}

} // namespace zvp::platform

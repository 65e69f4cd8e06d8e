#pragma once
// Faults of the process: the handler that sees them and the record that they leave.

namespace zvp::platform {

/// One fault, valid inside the handler only.
struct Fault {
    int signal;
    const void* signal_info; // siginfo_t
    const void* context;     // ucontext_t
};

/// Runs on the faulting thread, on its fault stack; only async-signal-safe calls are allowed in it. After its
/// return the signal takes its default action.
using FaultHandler = void (*)(const Fault&);

/// Sends SIGSEGV, SIGBUS, SIGILL, SIGFPE and SIGABRT of every thread to `handler`. The calling thread gets a
/// fault stack; others hold a FaultStack.
void install_fault_handler(FaultHandler handler);

struct CrashRecordResult {
    bool created;
    int error; // errno, or 0
};

/// Writes the signal, its address, the registers and a backtrace as text to the new file `path`.
/// Async-signal-safe.
CrashRecordResult write_crash_record(const Fault& fault, const char* path) noexcept;

/// Ends the process by the fault's signal with its default action. Async-signal-safe.
[[noreturn]] void end_by_fault(const Fault& fault) noexcept;

/// Number of the calling thread, unique while it lives. Async-signal-safe.
long current_thread_number() noexcept;

/// Sleeps; async-signal-safe.
void sleep_milliseconds(unsigned milliseconds) noexcept;

} // namespace zvp::platform

#pragma once

namespace zvp {

/// For the handler of whatever leaves the entry of a thread: there is nobody to hand it to. Prints the exception that is
/// being handled and ends the program with "FATAL ERROR: Unhandled exception in child thread."
[[noreturn]] void stop_in_child_thread() noexcept;

/// The entry of a thread that has no other place for its exceptions.
template <class Body>
void run_child_thread(Body&& body) noexcept {
    try {
        body();
    } catch (...) {
        stop_in_child_thread();
    }
}

} // namespace zvp

#pragma once

#include <atomic>
#include <exception>

namespace zvp {

/// Keeps the first exception of a group of tasks for the thread that waits for them.
///
/// Whoever waits marks the holder as checked. A holder that is destroyed unchecked, with no exception on its way
/// through the thread, is a fatal stop ("Exceptions not handled!"): a failure would be lost.
class ExceptionHolder {
public:
    ExceptionHolder() = default;
    ~ExceptionHolder();
    ExceptionHolder(const ExceptionHolder&) = delete;
    ExceptionHolder& operator=(const ExceptionHolder&) = delete;

    /// Keeps the exception in flight, unless one is kept already. To be called inside a catch block.
    void capture_current() noexcept;

    /// Throws the kept exception, if there is one and no other has begun to unwind on this thread since the holder was
    /// made. (A task may run, and its nested calls may fail, while an outer call is unwinding.)
    void rethrow_if_any();

    void mark_checked() noexcept { checked = true; }

    /// mark_checked() and rethrow_if_any().
    void check() {
        mark_checked();
        rethrow_if_any();
    }

private:
    bool unwinding() const noexcept { return std::uncaught_exceptions() > uncaught_at_start; }

    const int uncaught_at_start = std::uncaught_exceptions();
    bool checked = false;
    std::atomic<std::exception_ptr*> stored{nullptr};
};

} // namespace zvp

#include "parallel/tasks/exception_holder.h"

#include "app/console/console.h"

#include <memory>

namespace zvp {

ExceptionHolder::~ExceptionHolder() {
    if (!checked && !unwinding()) fatal_stop("Exceptions not handled!");
    delete stored.load();
}

void ExceptionHolder::capture_current() noexcept {
    if (!std::current_exception()) return;
    auto captured = std::make_unique<std::exception_ptr>(std::current_exception());
    std::exception_ptr* none = nullptr;
    if (stored.compare_exchange_strong(none, captured.get())) captured.release();
}

void ExceptionHolder::rethrow_if_any() {
    const std::exception_ptr* kept = stored.load();
    if (kept && !unwinding()) std::rethrow_exception(*kept);
}

} // namespace zvp

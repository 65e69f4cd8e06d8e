#pragma once
// Checks of what no input can break.

namespace zvp {

/// Reports the failed condition and raises a fault, so that the crash filter leaves a record.
[[noreturn]] void assertion_failed(const char* file, int line, const char* condition);

} // namespace zvp

#define ZVP_ASSERT(condition) ((condition) ? void(0) : ::zvp::assertion_failed(__FILE__, __LINE__, #condition))

#pragma once
// System error codes in the program's words.

#include <string_view>

namespace zvp::platform {

/// The program's text for an errno value: one of a fixed set of causes that a user can act on, else a reference
/// to the system's list.
std::string_view system_error_text(int error) noexcept;

} // namespace zvp::platform

#pragma once
// System error codes in the program's words.

#include <string>

namespace zvp::platform {

/// The program's text for an errno value: one of a fixed set of causes that a user can act on, else a reference to
/// the system's list.
std::string system_error_text(int error);

} // namespace zvp::platform

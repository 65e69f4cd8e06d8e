#pragma once
// System error codes in the program's words.

#include <string_view>

namespace zvp::platform {

/// What failed, where that is known: the system has one code for a disk that can't be read and one that can't be written.
enum class FaultDirection { none, read, write };

/// The program's text for an errno value: one of a fixed set of causes that a user can act on, else a reference
/// to the system's list.
std::string_view system_error_text(int error, FaultDirection direction = FaultDirection::none) noexcept;

} // namespace zvp::platform

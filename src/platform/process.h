#pragma once
// This process: its file, its priority, its end.

#include <optional>
#include <string>

namespace zvp::platform {

/// The full path of the running executable; nothing if the system doesn't tell.
std::optional<std::string> executable_path();

/// Ends the process at once with `code`: no destructors, no exit handlers, so that it may be called while other
/// threads run.
[[noreturn]] void end_process(int code) noexcept;

/// A write to a closed pipe or peer, or beyond a limit of file size, becomes an error code, never a signal that ends the
/// process.
void ignore_write_signals();

enum class PriorityClass { idle, below_normal, normal, above_normal, high, real_time };

/// Sets the process to the nice value nearest to the class. Never raises the priority above what the process
/// was started with unless `requested`: a user who ran it under `nice` keeps that. Returns 0, or errno when the
/// system refuses.
int set_priority_class(PriorityClass priority, bool requested);

/// The nice value that stands for the class.
int nice_value(PriorityClass priority);

/// The nice value of the process, to which those of its threads are relative: the one that set_priority_class() set, else
/// the one that the process was started with.
int process_nice_value();

/// The value of an environment variable; empty when it isn't set.
std::string environment_variable(const char* name);

} // namespace zvp::platform

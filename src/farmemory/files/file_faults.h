#pragma once
// How the file layer tells its faults, and how it waits for a user to mend one.

#include "app/failure/file_exceptions.h"
#include "platform/file_system.h"

#include <string>
#include <string_view>

namespace FileIO {

using zvp::platform::FaultDirection;

/// Raises FileException for a failed system call: the message, and the text for the errno value.
[[noreturn]] void throw_file_fault(const char* function, std::string_view message, const std::string& path, int error,
                                   FaultDirection direction = FaultDirection::none);

/// Prints a fault that stops nothing, and the file that has it. Any thread may call it.
void warn_of_file(std::string_view text, const std::string& path);

/// The same, with a note that later ones won't be told; only when `told` wasn't set before.
void warn_of_file_once(std::atomic<bool>& told, std::string_view text, const std::string& path);

/// The waits between the rounds of an operation that a user can mend, such as a disk that dropped out.
class UserRetry {
public:
    explicit UserRetry(zvp::platform::FileSystem& system_) : system(system_) {}

    /// Prints the lines in red, then "Re-attempting...", and waits for the user, for as many rounds as the user likes.
    /// Where nobody can press a key the wait is 1 second, then twice as long each time; a fault that lasts for more than
    /// two minutes is a fatal stop, since the output of an unattended run mustn't grow for ever.
    void wait(std::string_view lines);

private:
    zvp::platform::FileSystem& system;
    unsigned unattended_seconds = 1;
};

} // namespace FileIO

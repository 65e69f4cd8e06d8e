#pragma once
// This process as a test needs it: what is typed into it, what it prints while it ends, what it may ask of the system.

#include "support/program.h"

#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace test {

/// Lets the program read `text` from standard input, as long as this object lives.
class TypedInput {
public:
    explicit TypedInput(const std::string& text);
    ~TypedInput();
    TypedInput(const TypedInput&) = delete;
    TypedInput& operator=(const TypedInput&) = delete;

private:
    int before;
};

/// What `function` prints while the user types `input`.
template <class Function>
std::string printed_with_input(const std::string& input, Function&& function) {
    const TypedInput typed(input);
    return printed_by(function);
}

/// Sends standard output where EXPECT_EXIT looks for its pattern.
void show_output();

/// Limits the process as a user is limited, as long as this object lives: root becomes a user that nobody else is.
class UserLimit {
public:
    /// `resource` as in <sys/resource.h>; the hard limit goes with `hard` only, for good.
    UserLimit(int resource, rlim_t limit, bool hard = false);
    ~UserLimit();
    UserLimit(const UserLimit&) = delete;
    UserLimit& operator=(const UserLimit&) = delete;

private:
    const int limited;
    rlimit before{};
};

/// The limit under which this process can start `more` threads, or none at all where its user has other processes.
rlim_t threads_and(unsigned more);

} // namespace test

#pragma once
// The program's parameters and the tables that read them.

#include "app/failure/registry.h"

#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace CommandLine {

/// A command line that can't be read. Not of the exception family: it reaches the user as a standard exception.
class CommandLineException : public std::exception {
public:
    explicit CommandLineException(const char* text_) : text(text_) {}
    const char* what() const noexcept override { return text; }

private:
    const char* text; // a literal
};

/// The raw parameters, each also split at its first ":" into key and value, and a cursor over them. The cursor
/// starts behind the program's own name; whoever reads a parameter advances it.
class CommandLine {
public:
    explicit CommandLine(std::vector<std::string> parameters);

    bool at_end() const { return cursor >= raw.size(); }

    /// The parameter under the cursor, whole, its key, and its value (empty without a ":"). At the end they
    /// raise CommandLineException "Expected more parameters."
    const std::string& parameter() const { return raw[checked_cursor()]; }
    const std::string& key() const { return split[checked_cursor()].first; }
    const std::string& value() const { return split[checked_cursor()].second; }

    /// Whether the parameter under the cursor has a ":": its value may still be empty.
    bool has_value() const { return parameter().find(':') != std::string::npos; }

    void advance() { ++cursor; }

    /// The value under the cursor; the cursor moves on.
    const std::string& take_value();

    /// The whole parameter under the cursor; the cursor moves on.
    const std::string& take_parameter();

private:
    std::size_t checked_cursor() const;

    std::vector<std::string> raw;
    std::vector<std::pair<std::string, std::string>> split;
    std::size_t cursor = 1;
};

/// Keywords (exact, case-sensitive) and the handlers that fill `Target` from the parameter under the cursor. A
/// handler advances the cursor itself.
template <class Target>
class OptionTable {
public:
    using Handler = std::function<void(Target&, CommandLine&)>;

    OptionTable(std::vector<std::pair<std::string, Handler>> rows) : handlers("Duplicate Option", std::move(rows)) {}

    /// Handles parameters as long as their keys are in the table; the first that isn't stays under the cursor.
    void scan(Target& target, CommandLine& line) const {
        while (!line.at_end()) {
            const Handler* handler = handlers.find(line.key());
            if (!handler) return;
            (*handler)(target, line);
        }
    }

    const std::vector<std::string>& names() const { return handlers.names(); }

private:
    zvp::Registry<Handler> handlers;
};

/// Raises InvalidParametersException with "Invalid Command: " and the parameter under the cursor, and the nearest of the
/// words that are known.
[[noreturn]] void reject_parameter(const CommandLine& line, const std::vector<std::string>& known = {});

/// scan() for a table that must take all that remains; another word is rejected.
template <class Target>
void apply_options(const OptionTable<Target>& table, Target& target, CommandLine& line) {
    table.scan(target, line);
    if (!line.at_end()) reject_parameter(line, table.names());
}

} // namespace CommandLine

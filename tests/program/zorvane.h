#pragma once
// The program under test.

#include "support/program.h"

#include <regex>
#include <string>
#include <vector>

namespace test {

inline ProgramRun zorvane(std::vector<std::string> parameters, std::string input = "") {
    parameters.insert(parameters.begin(), ZORVANE_PROGRAM);
    ProgramRun run;
    run.arguments = std::move(parameters);
    run.input = std::move(input);
    return run;
}

/// What a run prints before its action, on a processor that has the required features.
inline constexpr std::string_view start_up = "\nChecking processor/OS features...\n"
                                             "\n"
                                             "Required Features:\n"
                                             "    SSE, SSE2, SSE3\n"
                                             "\n\n\n";

/// The output behind `start_up`, with "V" for the version. An output that doesn't begin so is returned whole.
inline std::string behind_start_up(const ProgramResult& result) {
    const std::size_t skipped = result.output.starts_with(start_up) ? start_up.size() : 0;
    return std::regex_replace(result.output.substr(skipped), std::regex(R"(\d+\.\d+\.\d+ Build \d+)"), "V");
}

inline const std::string input_ended = "\nThe input has ended, but an answer is needed. Stopping.\n";

inline std::string unbuilt(const std::string& what) { return what + " isn't part of version V.\n"; }

/// The report of an exception that reached the top, and the end of the run behind it.
inline std::string reported(const std::string& type, const std::string& body) {
    return "\nException Encountered: " + type + "\n\n" + body + "\n\n\n\n";
}

inline std::string invalid(const std::string& message) {
    return reported("InvalidParametersException", message);
}

inline std::string uncaught(const std::string& message) {
    return "Uncaught std exception: " + message + "\n\n";
}

} // namespace test

#pragma once
// The program under test.

#include "support/program.h"

#include <regex>
#include <string>

namespace test {

/// A run with the words of `line`, which single blanks separate. An empty line has no words; a blank at its end
/// stands before an empty word.
inline ProgramRun zorvane(const std::string& line, std::string input = "") {
    ProgramRun run;
    run.arguments = {ZORVANE_PROGRAM};
    for (std::size_t begin = 0; !line.empty() && begin <= line.size();) {
        const std::size_t end = std::min(line.find(' ', begin), line.size());
        run.arguments.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
    run.input = std::move(input);
    return run;
}

inline std::string replaced(const std::string& text, const char* mark, const std::string& by) {
    const std::size_t at = text.find(mark);
    return at == std::string::npos ? text : text.substr(0, at) + by + text.substr(at + 1);
}

/// What a run prints before its action, on a processor that has the required features.
inline const std::string start_up =
    "\nChecking processor/OS features...\n\nRequired Features:\n    SSE, SSE2, SSE3\n\n\n\n";

/// The output behind `start_up`, with "V" for the version. An output that doesn't begin so is returned whole.
inline std::string behind_start_up(const ProgramResult& result) {
    const std::size_t skipped = result.output.starts_with(start_up) ? start_up.size() : 0;
    return std::regex_replace(result.output.substr(skipped), std::regex(R"(\d+\.\d+\.\d+ Build \d+)"), "V");
}

/// Runs the program and expects this output behind the start-up lines.
inline void expect_output(const ProgramRun& run, const std::string& expected, int exit_code = 1) {
    const ProgramResult result = run_program(run);
    EXPECT_EQ(behind_start_up(result), expected) << describe(run, result);
    EXPECT_EQ(result.exit_code, exit_code) << describe(run, result);
}

inline std::string unbuilt(const std::string& what) { return what + " isn't part of version V.\n"; }

/// The report of an exception that reached the top, and the end of the run behind it.
inline std::string reported(const std::string& type, const std::string& body) {
    return "\nException Encountered: " + type + "\n\n" + body + "\n\n\n\n";
}

inline std::string invalid(const std::string& message) { return reported("InvalidParametersException", message); }

inline std::string uncaught(const std::string& message) { return "Uncaught std exception: " + message + "\n\n"; }

inline const std::string input_ended = "\nThe input has ended, but an answer is needed. Stopping.\n";

} // namespace test

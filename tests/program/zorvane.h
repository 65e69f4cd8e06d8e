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

/// The first lines of every run, on a processor that has the required features.
inline const std::string feature_check =
    "\nChecking processor/OS features...\n\nRequired Features:\n    SSE, SSE2, SSE3\n\n\n";

/// What stands between them and the action, on a machine of one processor group.
inline const std::regex topology_lines(
    R"(Parsing Core -> Handle Mappings\.\.\.\n)"
    R"(Parsing NUMA -> Core Mappings\.\.\.\n(    Node +\d+:  ([\d-]+ )+\n( {14,}([\d-]+ )+\n)*)+)"
    R"(Parsing Processor Group -> Core Mappings\.\.\.\n    Group  0:  ([\d-]+ )+\n( {15,}([\d-]+ )+\n)*\n)");

/// The output behind the start-up lines, with "V" for the version. An output that doesn't begin with them is returned
/// whole.
inline std::string behind_start_up(const ProgramResult& result) {
    std::string output = result.output;
    std::smatch match;
    if (output.starts_with(feature_check)
        && std::regex_search(output.cbegin() + static_cast<std::ptrdiff_t>(feature_check.size()), output.cend(), match,
                             topology_lines, std::regex_constants::match_continuous))
        output = match.suffix();
    return std::regex_replace(output, std::regex(R"(\d+\.\d+\.\d+ Build \d+)"), "V");
}

/// Runs the program and expects this output behind the start-up lines.
inline void expect_output(const ProgramRun& run, const std::string& expected, int exit_code = 1) {
    const ProgramResult result = run_program(run);
    EXPECT_EQ(behind_start_up(result), expected) << describe(run, result);
    EXPECT_EQ(result.exit_code, exit_code) << describe(run, result);
}

/// What the actions are called where they aren't built.
inline const std::string bench_name = "Benchmark Pi (action \"bench\")",
                         stress_name = "The Component Stress Tester (action \"stress\")",
                         benchio_name = "The I/O Performance Analysis (action \"benchio\")",
                         viewer_name = "The Digit Viewer (action \"digitviewer\")",
                         validator_name = "The Benchmark Validator (action \"validate\")",
                         slave_name = "Slave Mode (action \"slave\")";

inline std::string unbuilt(const std::string& what) { return what + " isn't part of version V.\n"; }

/// The report of an exception that reached the top, and the end of the run behind it.
inline std::string reported(const std::string& type, const std::string& body) {
    return "\nException Encountered: " + type + "\n\n" + body + "\n\n\n\n";
}

inline std::string invalid(const std::string& message) { return reported("InvalidParametersException", message); }

inline std::string uncaught(const std::string& message) { return "Uncaught std exception: " + message + "\n\n"; }

inline const std::string input_ended = "\nThe input has ended, but an answer is needed. Stopping.\n";

} // namespace test

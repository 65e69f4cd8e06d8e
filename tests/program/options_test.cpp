#include "program/zorvane.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace test;
using Words = std::vector<std::string>;

const std::string custom_end = unbuilt("Computing a constant (action \"custom\")");
const std::string bench_end = unbuilt("The benchmark (action \"bench\")");
const std::string benchio_end = unbuilt("The I/O performance analysis (action \"benchio\")");
const std::string stress_end = unbuilt("The stress test (action \"stress\")");
const std::string slave_end = unbuilt("Slave mode (action \"slave\")");
const std::string more = uncaught("Expected more parameters.");
const std::string many_digits(5000, '9');

struct Case {
    Words parameters;
    std::string expected; // behind the start-up lines
    int exit_code = 1;
};

void expect_cases(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        const ProgramRun run = zorvane(c.parameters);
        const ProgramResult result = run_program(run);
        EXPECT_EQ(behind_start_up(result), c.expected) << describe(run, result);
        EXPECT_EQ(result.exit_code, c.exit_code) << describe(run, result);
    }
}

std::string unsupported(const std::string& option) {
    return invalid("Option " + option + " is not supported for this mode.");
}

TEST(Actions, AnUnknownWordRunsSomething) {
    const std::string long_word(100'000, 'x');
    expect_cases({
        {{"nonsense"}, "Invalid Parameter: nonsense\n"},
        {{"Bench"}, "Invalid Parameter: Bench\n"},
        {{""}, "Invalid Parameter: \n"},
        {{":5"}, "Invalid Parameter: :5\n"},
        {{"-o"}, "Invalid Parameter: -o\n"},
        {{"Colors:0", "about"}, "Invalid Parameter: Colors:0\n"},
        {{"colors:0", "nonsense:1"}, "Invalid Parameter: nonsense:1\n"},
        {{"\u03c0"}, "Invalid Parameter: \u03c0\n"},
        {{long_word}, "Invalid Parameter: " + long_word + "\n"},
    });
}

TEST(Actions, AnActionWithoutItsWorkEndsSilentlyOrWithSuccess) {
    expect_cases({
        {{"bench"}, unbuilt("Benchmark Pi")},
        {{"custom"}, unbuilt("Custom Compute a Constant")},
        {{"stress"}, stress_end},
        {{"benchio"}, benchio_end},
        {{"slave", "0"}, slave_end},
        {{"digitviewer", "ignored"}, unbuilt("The Digit Viewer (action \"digitviewer\")")},
        {{"validate", "ignored"}, unbuilt("The Benchmark Validator")},
    });
}

TEST(CustomOptions, AWordIsTakenForAnother) {
    const auto pi = [](Words options, std::string expected) {
        options.insert(options.begin(), {"custom", "pi"});
        return Case{options, std::move(expected)};
    };
    expect_cases({
        {{"custom", "tau"}, invalid("Invalid Constant: tau")},
        {{"custom", ""}, invalid("Invalid Constant: ")},
        {{"custom", "-dec:100"}, invalid("Invalid Constant: -dec")},
        {{"custom", "log:10", "-dec:100"}, custom_end},
        pi({"-dec:1m", "-hex:0", "-algorithm:chudnovsky", "-C:100", "-compress:-1", "-verify:0"}, custom_end),
        pi({"-dec:", "-hex:abc", "-dec:-5", "-C:", "-verify:", "-od:", "-algorithm:"}, custom_end),
        pi({"-dec:" + many_digits, "-hex:" + many_digits + "T", "-C:-" + many_digits}, custom_end),
        pi({"-MA:malloc", "-PF:none", "-TD:65536", "-o", "-od:1"}, custom_end),
        pi({"-o"}, more),
        pi({"-o:path", "-TD:1"}, custom_end),
        pi({"-o:path", "nonsense"}, custom_end),
        pi({"-dec"}, custom_end),
        pi({"-DEC:5"}, invalid("Invalid Command: -DEC:5")),
        pi({"-dec:5", "pi"}, invalid("Invalid Command: pi")),
        pi({""}, invalid("Invalid Command: ")),
        pi({"25m"}, invalid("Invalid Command: 25m")),
        pi({"-mode:disk"}, invalid("Invalid Mode: disk")),
        pi({"-mode:"}, invalid("Invalid Mode: ")),
        pi({"-mode"}, invalid("Invalid Mode: ")),
        pi({"-M:1G"}, unsupported("-M")),
        pi({"-minIO:1M"}, unsupported("-minIO")),
        pi({"-swap:raid0", "/tmp"}, unsupported("-swap")),
        pi({"-mode:swap", "-mode:ram", "-M:1G"}, unsupported("-M")),
        pi({"-mode:swap", "-M:1.5G", "-minIO:1", "-swap:raid0", "/tmp", "-dec:5"}, custom_end),
        pi({"-mode:swap", "-swap:raid3", "/a", "/b"}, custom_end),
        pi({"-mode:swap", "-swap:raid0"}, invalid("Invalid RaidFile configuration.")),
        pi({"-mode:swap", "-swap:raid1", "/tmp"}, invalid("Unrecognized mode: raid1")),
        pi({"-mode:swap", "-swap"}, invalid("Unrecognized mode: ")),
    });
}

TEST(TaskDecomposition, ACountOutOfRangeIsTaken) {
    std::vector<Case> cases;
    for (const char* action : {"bench", "benchio"})
        for (const std::string& value : Words{"", ":", ":0", ":-1", ":abc", ":65537", ":" + many_digits})
            cases.push_back(
                {{action, "-TD" + value}, invalid("Task decomposition must be between 1 and 65536")});
    expect_cases(cases);
}

TEST(BenchOptions, ASizeIsMissedOrMisread) {
    Words sizes{"25m", "50m", "100m", "250m", "500m", "1b",   "2.5b", "5b",
                "10b", "25b", "50b",  "100b", "250b", "500b", "1t",   "2.5t"};
    for (int size = 1; size <= 512; size *= 2) sizes.push_back(std::to_string(size) + "M");
    for (int size = 1; size <= 128; size *= 2) sizes.push_back(std::to_string(size) + "G");
    std::vector<Case> cases;
    for (const std::string& size : sizes) cases.push_back({{"bench", size}, bench_end});
    for (const char* word : {"26m", "25M", "1B", "256G", "1024M", "", "0", "-1M", "-M:1G"})
        cases.push_back({{"bench", word}, invalid(std::string("Invalid Command: ") + word)});
    expect_cases(cases);
    expect_cases({
        {{"bench", "-od:1"}, invalid("No benchmark size selected.")},
        {{"bench", "-o", "25m"}, invalid("No benchmark size selected.")},
        {{"bench", "25m", "-o"}, more},
        {{"bench", "25m", "1M", "-od:0", "-TD:4", "-PF:none", "-MA:malloc", "-o", "/tmp"}, bench_end},
        {{"bench", "25m", "colors:0"}, invalid("Invalid Command: colors:0")},
    });
}

TEST(OptionsOfTheOtherActions, AWordIsTakenForAnother) {
    std::vector<Case> cases{
        {{"benchio", "-M:1G", "-MA:malloc", "-PF:none", "-TD:1", "-minIO:1M", "-swap:raid0", "/tmp"},
         benchio_end},
        {{"benchio", "-swap:raid0"}, invalid("Invalid RaidFile configuration.")},
        {{"benchio", "-swap:x", "/tmp"}, invalid("Unrecognized mode: x")},
        {{"benchio", "-dec:5"}, invalid("Invalid Command: -dec:5")},
        {{"stress", "BKT", "BBP", "FFT", "N32", "N64", "HNT", "VST", "-M:1G", "-D:0", "-TL:1"}, stress_end},
        {{"stress", "-M:", "-D:-1", "-TL:abc", "-M:" + many_digits, "-D:" + many_digits}, stress_end},
        {{"stress", "C17"}, invalid("Invalid Command: C17")},
        {{"stress", "SFT"}, invalid("Invalid Command: SFT")},
        {{"stress", "bkt"}, invalid("Invalid Command: bkt")},
        {{"stress", "skip-warnings"}, invalid("Invalid Command: skip-warnings")},
        {{"slave"}, more},
        {{"slave", "1"},
         reported("InvalidParametersException",
                  "In Function: SlaveMode::run()\n\nUnsupported version number: 1")},
        {{"slave", "0", "-port:65535", "-ctype:acfg", "-ctype:json", "-allowremote:1", "-printtraffic:-1"},
         slave_end},
        {{"slave", "0", "-ctype:xml"}, invalid("Invalid config type: xml")},
        {{"slave", "0", "-ctype"}, invalid("Invalid config type: ")},
        {{"slave", "0", "-od:1"}, invalid("Invalid Command: -od:1")},
    };
    for (const std::string& port : Words{"", "0", "65536", "-1", "abc", many_digits})
        cases.push_back({{"slave", "0", "-port:" + port}, invalid("Invalid port: " + port)});
    expect_cases(cases);
}

TEST(GlobalOptions, AValueChangesTheRun) {
    const std::string about = run_program(zorvane({"about"})).output;
    for (const std::string& option :
         Words{"pause",        "pause:",        "pause:1",         "pause:-2",  "pause:" + many_digits,
               "colors",       "colors:abc",    "colors:0",        "colors:-1", "PII:",
               "PII:1",        "PII:-1",        "height:",         "height:-5", "height:0",
               "height:99999", "skip-warnings", "skip-warnings:x", "priority",  "priority:-1",
               "priority:-99"}) {
        const Words parameters{"height:30", option, "PII", "about"};
        const ProgramRun run = zorvane(parameters);
        const ProgramResult result = run_program(run);
        EXPECT_EQ(result.output, about) << describe(run, result);
        EXPECT_EQ(result.exit_code, 0) << describe(run, result);
    }
}

TEST(GlobalOptions, OneBehindTheActionIsObeyed) {
    expect_cases({
        {{"custom", "pi", "colors:0"}, invalid("Invalid Command: colors:0")},
        {{"stress", "pause:-2"}, invalid("Invalid Command: pause:-2")},
        {{"benchio", "priority:0"}, invalid("Invalid Command: priority:0")},
        {{"slave", "0", "PII:1"}, invalid("Invalid Command: PII:1")},
    });
}

TEST(GlobalOptions, ThePauseComesAtTheWrongTime) {
    const struct {
        Words parameters;
        bool pauses;
    } cases[] = {
        {{"about"}, false},
        {{"custom", "tau"}, true},
        {{"pause:1", "about"}, true},
        {{"pause:", "about"}, false},
        {{"pause:-1", "about"}, false},
        {{"pause:-1", "custom", "tau"}, true},
        {{"pause:-2", "about"}, false},
        {{"pause:-2", "custom", "tau"}, false},
        {{"nonsense"}, true},
        {{"pause:-2", "nonsense"}, false},
        {{"bench"}, true},
        {{"pause:-2", "bench"}, false},
    };
    for (const auto& c : cases) {
        ProgramRun run = zorvane(c.parameters, "\n\n");
        run.terminal = true;
        const ProgramResult result = run_program(run);
        EXPECT_EQ(result.output.find("Press any key") != std::string::npos, c.pauses) << describe(run, result);
        EXPECT_EQ(result.signal, 0) << describe(run, result);
    }
}

TEST(GlobalOptions, APriorityIsMappedToTheWrongClass) {
    const struct {
        const char* option;
        int nice;
    } cases[] = {{"priority:-99", 19}, {"priority:-2", 19}, {"priority:-1", 10},
                 {"priority", 0},      {"priority:0", 0},   {"priority:1", -7},
                 {"priority:2", -14},  {"priority:3", -20}, {"priority:99", -20}};
    for (const auto& c : cases) {
        const ProgramRun run = zorvane({c.option});
        int nice = 100;
        const ProgramResult result = run_and_act(run, "option: ", [&](int process) {
            nice = getpriority(PRIO_PROCESS, static_cast<id_t>(process));
            kill(process, SIGTERM);
        });
        const bool refused =
            result.output.find("Warning: Unable to set the process priority") != std::string::npos;
        EXPECT_TRUE(refused || nice == c.nice) << "nice " << nice << ", expected " << c.nice << "\n"
                                               << describe(run, result);
    }
}

TEST(GlobalOptions, ARefusedPriorityEndsTheRun) {
    ProgramRun run = zorvane({"priority:3", "about"});
    if (geteuid() == 0)
        run.arguments.insert(run.arguments.begin(), {"/usr/bin/setpriv", "--bounding-set=-sys_nice"});
    const ProgramResult result = run_program(run);
    EXPECT_EQ(result.exit_code, 0) << describe(run, result);
    EXPECT_TRUE(result.output.starts_with("\nWarning: Unable to set the process priority: Access Denied\n"))
        << describe(run, result);
    EXPECT_NE(result.output.find("Disclaimer:"), std::string::npos) << describe(run, result);
}

std::string parse_error(const std::string& message, const std::string& type = "ParseException") {
    return reported(type, "In Function: parse_notation()\n\n" + message);
}

std::string end_of_file(int line) {
    return parse_error("Line " + std::to_string(line) + ": Unexpected end of stream.", "EndOfStreamException");
}

std::string utf16(const std::string& ascii, bool big_endian) {
    std::string text = big_endian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : ascii) (text += big_endian ? '\0' : c) += big_endian ? c : '\0';
    return text;
}

void expect_config(const std::string& content, const std::string& expected) {
    const TemporaryFolder folder;
    write_file(folder.path / "run.cfg", content);
    ProgramRun run = zorvane({"config", "run"});
    run.working_directory = folder.path;
    const ProgramResult result = run_program(run);
    EXPECT_EQ(behind_start_up(result), expected) << describe(run, result) << "File:\n"
                                                 << content.substr(0, 400);
    EXPECT_EQ(result.exit_code, 1) << describe(run, result);
}

TEST(ConfigFile, ABrokenFileIsAcceptedOrBlamedOnTheWrongLine) {
    const std::string nested = "{Action:\"StressTest\" StressTest:{x:" + std::string(100'000, '[');
    const auto invalid_utf16 = [](int line) {
        return reported("ParseException", "In Function: decode_text()\n\nLine " + std::to_string(line)
                                              + ": Invalid UTF-16 text.");
    };
    const std::pair<std::string, std::string> cases[] = {
        {"", end_of_file(1)},
        {"\xEF\xBB\xBF", end_of_file(1)},
        {"// nothing\r\n\r\n", end_of_file(3)},
        {"{\nAction : \"StressTest\"\n", end_of_file(3)},
        {"{\nAction : \"Stress", end_of_file(2)},
        {"{\nAction", end_of_file(2)},
        {"{a : 1", end_of_file(1)},
        {"}", parse_error("Line 1: Unexpected '}'.")},
        {"\x7F"
         "ELF\x01\x02",
         parse_error("Line 1: Invalid integer literal.")},
        {std::string(4096, '\0'), parse_error("Line 1: Invalid integer literal.")},
        {"{\n  a : 1\n  a : 2\n}", parse_error("Line 3: Duplicate key in object.")},
        {"{\n  a : [1, 2]\n}", parse_error("Line 2: Don't use commas to separate elements.")},
        {"{\n\n  a : \"x\ny\\z\"\n}", parse_error("Line 4: Invalid escape character: z")},
        {"{\r\n  // \"\r\n  my,key : 1\r\n}", parse_error("Line 3: Invalid character in identifier.")},
        {"{\n a 1}", parse_error("Line 2: Expected colon after identifier.")},
        {"{a:9223372036854775808}", parse_error("Line 1: Integer literal is too large.")},
        {nested, parse_error("Line 1: Values are nested more than 1000 deep.")},
        {utf16("{\n\n}x", true), parse_error("Line 3: Unexpected text behind the end of the value.")},
        {utf16("{\n", false) + "}", invalid_utf16(2)},
        {utf16("{\n", true) + std::string("\xDC\x00", 2), invalid_utf16(2)},
    };
    for (const auto& [content, expected] : cases) expect_config(content, expected);
}

TEST(ConfigFile, AnActionIsMissedOrMisread) {
    const auto missing = [](const char* function, const std::string& key) {
        return reported("KeyNotFoundException",
                        "In Function: " + std::string(function) + "\n\nKey not found: " + key);
    };
    const std::string stress = "{ Action : \"StressTest\" // comment\n StressTest : {} }\n";
    const std::pair<std::string, std::string> cases[] = {
        {stress, unbuilt("Running \"StressTest\"")},
        {utf16(stress, false), unbuilt("Running \"StressTest\"")},
        {utf16(stress, true), unbuilt("Running \"StressTest\"")},
        {"\xEF\xBB\xBF" + stress, unbuilt("Running \"StressTest\"")},
        {"{Action:\"CustomCompute\" CustomCompute:{}}", unbuilt("Running \"CustomCompute\"")},
        {"{Action:\"BenchIO\" BenchIO:{a:1}}", unbuilt("Running \"BenchIO\"")},
        {"{Action:\"Bench\" Bench:{}}", invalid("Invalid Action: Bench")},
        {"{Action:\"\"}", invalid("Invalid Action: ")},
        {"{}", missing("Object::get_string()", "Action")},
        {"{action:\"BenchIO\"}", missing("Object::get_string()", "Action")},
        {"{Action:\"BenchIO\" StressTest:{}}", missing("Object::get_object()", "BenchIO")},
    };
    for (const auto& [content, expected] : cases) expect_config(content, expected);
    for (const auto& [content, types] : {std::pair{"{Action:5 }", "String, got Integer."},
                                         std::pair{"{Action:\"BenchIO\" BenchIO:\"\"}", "Object, got String."},
                                         std::pair{"[1]", "Object, got Array."}}) {
        const TemporaryFolder folder;
        write_file(folder.path / "run.cfg", content);
        const ProgramRun run = zorvane({"config", (folder.path / "run.cfg").string()});
        const ProgramResult result = run_program(run);
        EXPECT_NE(result.output.find(std::string("\nExpected ") + types + "\n"), std::string::npos)
            << describe(run, result);
        EXPECT_EQ(result.exit_code, 1);
    }
}

TEST(ConfigPath, TheWrongFileIsRead) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path / "dir.d");
    for (const char* name : {"myrun", "myrun.cfg", "myrun.txt", "dir.d/myrun"})
        write_file(folder.path / name, "{Action:\"" + std::string(name) + "\"}");
    const auto missing = [](const std::string& path, const std::string& code, const std::string& text) {
        return reported("FileException", "In Function:        load_text_file()\nError Code:         " + code
                                             + "\nPath:   " + path + "\n\nUnable to open file.\n\n" + text);
    };
    const std::pair<Words, std::string> cases[] = {
        {{}, uncaught("Please specify a config file.")},
        {{"myrun"}, invalid("Invalid Action: myrun.cfg")},
        {{"myrun.txt"}, invalid("Invalid Action: myrun.txt")},
        {{"dir.d/myrun"}, invalid("Invalid Action: dir.d/myrun")},
        {{"./myrun"}, invalid("Invalid Action: myrun")},
        {{"none"}, missing("none.cfg", "2", "Path does not exist.")},
        {{"none.txt"}, missing("none.txt", "2", "Path does not exist.")},
        {{""}, missing(".cfg", "2", "Path does not exist.")},
        {{"myrun.txt/x"}, missing("myrun.txt/x", "20", "Path does not exist.")},
        {{"dir.d"}, missing("dir.d", "21", "Unknown Error, See:\nman 3 errno")},
    };
    for (const auto& [words, expected] : cases) {
        ProgramRun run = zorvane({"config"});
        run.arguments.insert(run.arguments.end(), words.begin(), words.end());
        run.working_directory = folder.path;
        const ProgramResult result = run_program(run);
        EXPECT_EQ(behind_start_up(result), expected) << describe(run, result);
        EXPECT_EQ(result.exit_code, 1) << describe(run, result);
    }
}

} // namespace

#include "program/zorvane.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace test;
using Lines = std::vector<std::string>;

const std::string long_number(5000, '9');

/// Each command line ends with code 1 and exactly this output behind the start-up lines, in which "@" stands
/// for the last word of the command line, and "#" for that word's value. A nearest word may be shown.
void expect_end(const std::string& expected, const Lines& lines) {
    const std::regex hint("Did you mean \"[^\"]*\"\\?\n");
    for (const std::string& line : lines) {
        const std::string word = line.substr(line.rfind(' ') + 1);
        const ProgramRun run = zorvane(line);
        const ProgramResult result = run_program(run);
        EXPECT_EQ(std::regex_replace(behind_start_up(result), hint, ""),
                  replaced(replaced(expected, "@", word), "#", word.substr(word.find(':') + 1)))
            << describe(run, result);
        EXPECT_EQ(result.exit_code, 1) << describe(run, result);
    }
}

TEST(Action, AnUnknownWordRunsSomething) {
    expect_end("Invalid Parameter: @\n", {"nonsense", "Bench", " ", ":5", "-o", "Colors:0", "colors:0 nonsense:1",
                                          "\u03c0", std::string(100'000, 'x')});
}

TEST(Action, WorkThatIsNotThereYetEndsLikeSuccess) {
    expect_end(unbuilt(bench_name), {"bench"});
    expect_end(unbuilt(viewer_name), {"digitviewer", "digitviewer ignored"});
    expect_end(unbuilt(validator_name), {"validate", "validate ignored"});
}

TEST(Options, OneThatIsRightIsRefused) {
    expect_end(unbuilt(bench_name),
               {"bench 25m", "bench 50m", "bench 100m", "bench 250m", "bench 500m", "bench 1b", "bench 2.5b",
                "bench 5b", "bench 10b", "bench 25b", "bench 50b", "bench 100b", "bench 250b", "bench 500b", "bench 1t",
                "bench 2.5t", "bench 25m 1M -od:0 -TD:4 -PF:none -MA:malloc -o /tmp"});
    for (int size = 1; size <= 512; size *= 2)
        expect_end(unbuilt(bench_name),
                   {"bench " + std::to_string(size) + (size > 128 ? "M" : "G"), "bench " + std::to_string(size) + "M"});
    expect_end(unbuilt(benchio_name),
               {"benchio", "benchio -M:1G -MA:malloc -PF:none -TD:1 -minIO:1M -swap:raid3 /tmp /tmp"});
    expect_end(unbuilt(stress_name),
               {"stress", "stress BKT BBP FFT N32 N64 HNT VST -M:1,024MiB -D:0 -TL:1 -M: -D: -TL:",
                "stress -M:" + long_number + " -D:" + long_number});
    expect_end(unbuilt(slave_name),
               {"slave 0", "slave 0 -port:65535 -ctype:acfg -ctype:json -allowremote:1 -printtraffic:-1"});
}

TEST(Options, OneThatIsWrongIsTaken) {
    expect_end(invalid("Invalid Command: @"),
               {"custom pi -DEC:5", "custom pi -dec:5 pi", "custom pi ", "custom pi 25m", "bench 26m", "bench 25M",
                "bench 1B", "bench 256G", "bench 1024M", "bench ", "bench 0", "bench -M:1G", "benchio -dec:5",
                "stress C17", "stress SFT", "stress bkt", "stress -minIO:1", "slave 0 -od:1"});
    expect_end(invalid("Invalid Constant: @"), {"custom tau", "custom ", "custom Pi", "custom -dec"});
    expect_end(invalid("Invalid Mode: #"), {"custom pi -mode:disk", "custom pi -mode:"});
    expect_end(invalid("Option -M is not supported for this mode."),
               {"custom pi -M:1G", "custom pi -M", "custom pi -mode:swap -mode:ram -M:1G"});
    expect_end(invalid("Option -minIO is not supported for this mode."), {"custom pi -minIO:1M"});
    expect_end(invalid("Option -swap is not supported for this mode."), {"custom pi -swap:raid0 /tmp"});
    expect_end(invalid("Invalid RaidFile configuration."), {"custom pi -mode:swap -swap:raid0", "benchio -swap:raid3"});
    expect_end(invalid("Unrecognized mode: #"), {"custom pi -mode:swap -swap:raid1", "benchio -swap:"});
    expect_end(invalid("No benchmark size selected."), {"bench -od:1", "bench -o 25m"});
    expect_end(invalid("Invalid config type: #"), {"slave 0 -ctype:xml", "slave 0 -ctype:"});
    expect_end(invalid("In Function: SlaveMode::run()\n\nUnsupported version number: @"), {"slave 1"});
    expect_end(uncaught("Expected more parameters."), {"custom pi -o", "bench 25m -o", "slave"});
    for (const std::string& value : Lines{"", "0", "65536", "-1", "abc", long_number})
        expect_end(invalid("Invalid port: #"), {"slave 0 -port:" + value});
    for (const std::string& value : Lines{"", ":", ":0", ":65537", ":" + long_number})
        expect_end(invalid("Task decomposition must be between 1 and 65536"),
                   {"custom pi -TD" + value, "bench -TD" + value, "benchio -TD" + value});
}

TEST(Options, ANumberWithATailIsRefused) {
    const std::pair<std::string, Lines> cases[] = {
        {"e3", {"custom pi -dec:1e3"}},
        {".5k", {"custom pi -dec:1.5k"}},
        {",0000", {"custom pi -dec:1,0000"}},
        {"-1", {"custom pi -hex:-1", "custom pi -TD:-1"}},
        {"k", {"custom pi -hex:1kk", "custom pi -dec:k", "custom pi -C:1k", "bench 25m -TD:k", "stress -D:1k"}},
        {"no",
         {"custom pi -od:no", "custom sqrt:2no", "custom log:2no", "benchio -minIO:1no", "colors:no",
          "slave 0 -allowremote:no"}},
    };
    for (const auto& [tail, lines] : cases)
        expect_end(invalid("Invalid number: #  (not understood: \"" + tail + "\")"), lines);
}

TEST(GlobalOption, OneBehindTheActionIsObeyed) {
    expect_end(invalid("Invalid Command: @"), {"custom pi colors:0", "bench 25m colors:0", "stress pause:-2",
                                               "benchio priority:0", "slave 0 PII:1", "stress skip-warnings"});
}

TEST(GlobalOption, AValueChangesTheRun) {
    const std::string about = behind_start_up(run_program(zorvane("about")));
    for (const std::string& option :
         Lines{"pause pause: pause:1 pause:-2 pause:" + long_number,
               "colors colors: colors:0 colors:-1 PII PII: PII:1 PII:-1",
               "height height: height:-5 height:0 height:99999 skip-warnings skip-warnings:x priority:-99"}) {
        expect_output(zorvane(option + " about colors:0"), about, 0);
    }
}

TEST(GlobalOption, ThePauseComesAtTheWrongTime) {
    const std::pair<bool, Lines> cases[] = {
        {true, {"pause:1 about", "custom tau", "pause:-1 custom tau", "pause:0 nonsense", "bench"}},
        {false,
         {"about", "pause: about", "pause:-1 about", "pause:-2 custom tau", "pause:-2 nonsense", "pause:-2 bench"}},
    };
    for (const auto& [pauses, lines] : cases) {
        for (const std::string& line : lines) {
            ProgramRun run = zorvane(line, "\n\n");
            run.terminal = true;
            const ProgramResult result = run_program(run);
            EXPECT_EQ(result.output.find("Press any key") != std::string::npos, pauses) << describe(run, result);
            EXPECT_EQ(result.signal, 0) << describe(run, result);
        }
    }
}

TEST(GlobalOption, APriorityIsMappedToTheWrongClass) {
    const std::pair<const char*, int> cases[] = {{"priority:-99", 19}, {"priority:-2", 19}, {"priority:-1", 10},
                                                 {"priority", 0},      {"priority:1", -7},  {"priority:2", -14},
                                                 {"priority:3", -20},  {"priority:99", -20}};
    for (const auto& [option, expected] : cases) {
        const ProgramRun run = zorvane(option);
        int nice = 100;
        const ProgramResult result = run_and_act(run, "option: ", [&](int process) {
            nice = getpriority(PRIO_PROCESS, static_cast<id_t>(process));
            kill(process, SIGTERM);
        });
        const bool refused = result.output.find("Unable to set the process priority") != std::string::npos;
        EXPECT_TRUE(refused || nice == expected) << "nice " << nice << "\n" << describe(run, result);
    }
}

TEST(GlobalOption, ARefusedPriorityEndsTheRun) {
    ProgramRun run = zorvane("priority:3 about");
    if (geteuid() == 0) run.arguments.insert(run.arguments.begin(), {"/usr/bin/setpriv", "--bounding-set=-sys_nice"});
    const ProgramResult result = run_program(run);
    EXPECT_EQ(result.exit_code, 0) << describe(run, result);
    EXPECT_EQ(result.output.find("\nWarning: Unable to set the process priority: Access Denied\n"), 0u)
        << describe(run, result);
}

void expect_config(const std::string& content, const std::string& expected) {
    const TemporaryFolder folder;
    write_file(folder.path / "run.cfg", content);
    ProgramRun run = zorvane("config run");
    run.working_directory = folder.path;
    SCOPED_TRACE("File:\n" + content.substr(0, 400));
    expect_output(run, expected);
}

std::string utf16(const std::string& ascii, bool big_endian) {
    std::string text = big_endian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : ascii) (text += big_endian ? '\0' : c) += big_endian ? c : '\0';
    return text;
}

TEST(ConfigFile, ABrokenFileIsAcceptedOrBlamedOnTheWrongLine) {
    const std::string parser = "In Function: parse_notation()\n\nLine ",
                      decoder = "In Function: decode_text()\n\nLine ";
    const std::pair<std::string, std::string> truncated[] = {
        {"", "1"},     {"\xEF\xBB\xBF", "1"}, {"// nothing\r\n\r\n", "3"},  {"{\nAction : \"StressTest\"\n", "3"},
        {"{a:1", "1"}, {"{\nAction", "2"},    {"{\nAction : \"Stress", "2"}};
    for (const auto& [content, line] : truncated)
        expect_config(content, reported("EndOfStreamException", parser + line + ": Unexpected end of stream."));
    const std::pair<std::string, std::string> broken[] = {
        {"}", "1: Unexpected '}'."},
        {"\x7F\x45LF\x01\x02", "1: Invalid integer literal."},
        {std::string(4096, '\0'), "1: Invalid integer literal."},
        {"{\n  a : 1\n  a : 2\n}", "3: Duplicate key in object."},
        {"{\n  a : [1, 2]\n}", "2: Don't use commas to separate elements."},
        {"{\n\n  a : \"x\ny\\z\"\n}", "4: Invalid escape character: z"},
        {"{\r\n  // \"\r\n  my,key : 1\r\n}", "3: Invalid character in identifier."},
        {"{\n a 1}", "2: Expected colon after identifier."},
        {"{a:9223372036854775808}", "1: Integer literal is too large."},
        {"{Action:\"StressTest\"\nx:" + std::string(100'000, '['), "2: Values are nested more than 1000 deep."},
        {utf16("{\n\n}x", true), "3: Unexpected text behind the end of the value."},
    };
    for (const auto& [content, error] : broken) expect_config(content, reported("ParseException", parser + error));
    for (const std::string& content : {utf16("{\n", false) + "}", utf16("{\n", true) + std::string("\xDC\x00", 2)})
        expect_config(content, reported("ParseException", decoder + "2: Invalid UTF-16 text."));
}

TEST(ConfigFile, AnActionIsMissedOrMisread) {
    const std::string stress = "{ Action : \"StressTest\" // comment\n StressTest : {} }\n";
    for (const std::string& content : {stress, utf16(stress, false), utf16(stress, true), "\xEF\xBB\xBF" + stress})
        expect_config(content, unbuilt(stress_name));
    expect_config("{Action:\"BenchIO\" BenchIO:{a:1}}", unbuilt(benchio_name));
    expect_config("{Action:\"Bench\" Bench:{}}", invalid("Invalid Action: Bench"));
    expect_config("{Action:\"\"}", invalid("Invalid Action: "));
    const struct {
        const char *content, *type, *body;
    } wrong[] = {
        {"{action:\"BenchIO\"}", "KeyNotFoundException", "Object::get_string()\n\nKey not found: Action"},
        {"{Action:\"BenchIO\"}", "KeyNotFoundException", "Object::get_object()\n\nKey not found: BenchIO"},
        {"{Action:\"CustomCompute\" CustomCompute:{}}", "KeyNotFoundException",
         "Object::get_string()\n\nKey not found: Mode"},
        {"{Action:5 }", "ParseException", "Object::get_string()\n\nExpected String, got Integer."},
        {"{Action:\"BenchIO\" BenchIO:\"\"}", "ParseException", "Object::get_object()\n\nExpected Object, got String."},
        {"[1]", "ParseException", "config_action()\n\nExpected Object, got Array."},
    };
    for (const auto& c : wrong) expect_config(c.content, reported(c.type, std::string("In Function: ") + c.body));
}

TEST(ConfigPath, TheWrongFileIsRead) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path / "dir.d");
    for (const char* name : {"myrun", "myrun.cfg", "myrun.txt", "dir.d/myrun"})
        write_file(folder.path / name, "{Action:\"" + std::string(name) + "\"}");
    const auto unread = [](const std::string& path, const std::string& code, const std::string& text) {
        return reported("FileException", "In Function:        load_text_file()\nError Code:         " + code
                                             + "\nPath:   " + path + "\n\nUnable to open file.\n\n" + text);
    };
    const std::pair<std::string, std::string> cases[] = {
        {"config", uncaught("Please specify a config file.")},
        {"config myrun", invalid("Invalid Action: myrun.cfg")},
        {"config myrun.txt", invalid("Invalid Action: myrun.txt")},
        {"config dir.d/myrun", invalid("Invalid Action: dir.d/myrun")},
        {"config ./myrun", invalid("Invalid Action: myrun")},
        {"config none", unread("none.cfg", "2", "Path does not exist.")},
        {"config ", unread(".cfg", "2", "Path does not exist.")},
        {"config myrun.txt/x", unread("myrun.txt/x", "20", "Path does not exist.")},
        {"config dir.d", unread("dir.d", "21", "Access Denied")},
    };
    for (const auto& [line, expected] : cases) {
        ProgramRun run = zorvane(line);
        run.working_directory = folder.path;
        expect_output(run, expected);
    }
}

} // namespace

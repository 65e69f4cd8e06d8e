#include "app/notation/command_line.h"
#include "app/raised.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace CommandLine {

namespace {

using test::raised_by;

TEST(CommandLine, SplitsAtTheFirstColonOnly) {
    for (const auto& [word, key, value] : {std::tuple{"-o:C:/x", "-o", "C:/x"}, {"word", "word", ""}, {":", "", ""}}) {
        const CommandLine line({"zorvane", word});
        EXPECT_EQ(line.key() + "|" + line.value() + "|" + line.parameter(),
                  std::string(key) + "|" + value + "|" + word);
    }
}

TEST(CommandLine, ReadingBehindTheEndIsAStandardException) {
    CommandLine line({"zorvane", "a:1", "b"});
    EXPECT_EQ(line.take_value(), "1");
    EXPECT_EQ(line.take_parameter(), "b");
    EXPECT_TRUE(line.at_end());
    const std::string expected = "Expected more parameters.";
    EXPECT_EQ(raised_by([&] { line.take_value(); }), expected);
    EXPECT_EQ(raised_by([&] { line.take_parameter(); }), expected);
    EXPECT_EQ(raised_by([&] { line.key(); }), expected);
    EXPECT_EQ(raised_by([] { CommandLine({}).parameter(); }), expected);
}

struct Settings {
    std::string threads, name;
};

const OptionTable<Settings>& options() {
    static const OptionTable<Settings> table(
        {{"-TD", [](Settings& settings, CommandLine& line) { settings.threads = line.take_value(); }},
         {"name", [](Settings& settings, CommandLine& line) {
              line.advance();
              settings.name = line.take_parameter();
          }}});
    return table;
}

TEST(OptionTable, HandlersTakeTheirOwnParameters) {
    Settings settings;
    CommandLine line({"zorvane", "-TD:4", "name", "-TD:a:b", "custom", "-TD:9"});
    options().scan(settings, line);
    EXPECT_EQ(settings.threads + "|" + settings.name, "4|-TD:a:b");
    EXPECT_EQ(line.parameter(), "custom"); // stays for the next table
    CommandLine short_line({"zorvane", "name"});
    EXPECT_EQ(raised_by([&] { options().scan(settings, short_line); }), "Expected more parameters.");
}

TEST(OptionTable, RejectsWordsThatAreNotExact) {
    Settings settings;
    const std::pair<std::string, std::string> words[] = {{"-td:4", "\nDid you mean \"-TD\"?"},
                                                         {"-TD2:4", "\nDid you mean \"-TD\"?"},
                                                         {"Name", "\nDid you mean \"name\"?"},
                                                         {"nmae", "\nDid you mean \"name\"?"},
                                                         {"nnaammee", ""},
                                                         {"x", ""},
                                                         {"", ""}};
    for (const auto& [word, hint] : words) {
        CommandLine line({"zorvane", "-TD:1", word});
        EXPECT_EQ(raised_by([&] { apply_options(options(), settings, line); }),
                  "InvalidParametersException: Invalid Command: " + word + hint);
    }
}

} // namespace

} // namespace CommandLine

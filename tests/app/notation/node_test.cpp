#include "app/failure/exceptions.h"
#include "app/notation/config_file.h"
#include "app/notation/node.h"
#include "app/notation/optional_flag.h"
#include "app/notation/parser.h"
#include "app/raised.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using namespace zvp;
using test::raised_by;

/// `text` with CR LF for each line feed.
std::string crlf(std::string_view text) {
    std::string out;
    for (const char c : text) out += c == '\n' ? "\r\n" : std::string(1, c);
    return out;
}

Object sample() {
    Object root("heading");
    root.add_integer("count", -5, "first line\nsecond line\n");
    root.add_node("words", parse_notation_text("[\"a\" \"b\"]"), "one line each");
    root.add_node("mixed", parse_notation_text(R"([ [1 2] ["a"] {} {path:"C:\\dir \"x\""} 7 ])"));
    root.add_array("none", Array());
    root.add_boolean("flag", true);
    return root;
}

const char* const sample_text = R"({   //  heading

    //  first line
    //  second line
    count : -5

    //  one line each
    words : [
        "a"
        "b"
    ]
    mixed : [
        [1 2]
        ["a"]
        {}
        {
            path : "C:\\dir \"x\""
        }
        7
    ]
    none : []
    flag : "true"
}
)";

TEST(NodePrinting, FollowsTheLayoutOfBothForms) {
    EXPECT_EQ(sample().to_text(), crlf(sample_text));
    const auto tree = parse_json_text(R"({"a":[[1,2],["\\\""],{},{"b":-1}],"c":[],"d":"x"})");
    EXPECT_EQ(tree->to_json(1, true), crlf(R"({
        "a": [
            [1, 2],
            ["\\\""],
            {},
            {
                "b": -1
            }
        ],
        "c": [],
        "d": "x"
    },
)"));
}

TEST(NodeReads, TellWhatDisagrees) {
    const Object root = sample();
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[&] { root.get_object("count"); }, "ParseException: Expected Object, got Integer."},
        {[&] { root.get_string("words"); }, "ParseException: Expected String, got Array."},
        {[&] { root.get_array("mixed").get_array(2); }, "ParseException: Expected Array, got Object."},
        {[&] { root.get_array("words").get_integer(0); }, "ParseException: Expected Integer, got String."},
        {[&] { root.get_boolean("count"); }, "ParseException: Expected String, got Integer."},
        {[&] { root.get_array("mixed").get_object(3).get_boolean("path"); }, "ParseException: Expected true or false."},
        {[&] { root.get_integer("Count"); }, "KeyNotFoundException: Key not found: Count"},
    };
    for (const auto& [read, raised] : rows) EXPECT_EQ(raised_by(read), raised);
    EXPECT_TRUE(root.get_boolean("flag"));
}

TEST(ObjectKeys, RepeatedKeyNamesTheFunctionAndChangesNothing) {
    Object root;
    root.add_integer("key", 1);
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"Object::add_integer()", [&] { root.add_integer("key", 2); }},
        {"Object::add_string()", [&] { root.add_string("key", "x"); }},
        {"Object::add_array()", [&] { root.add_array("key", Array()); }},
        {"Object::add_object()", [&] { root.add_object("key", Object()); }},
        {"Object::add_node()", [&] { root.add_node("key", Array().clone()); }}};
    for (const auto& [function, add] : rows) {
        try {
            add();
            ADD_FAILURE() << function << " took the key";
        } catch (const ParseException& exception) {
            EXPECT_EQ(exception.function, function);
            EXPECT_EQ(exception.message, "Attempted to add an existing key.");
        }
    }
    EXPECT_EQ(root.to_text(), "{\r\n    key : 1\r\n}\r\n");
}

TEST(NodeCopies, OutliveTheirOriginal) {
    std::unique_ptr<Node> clone, moved;
    {
        Object root = sample();
        clone = root.clone();
        moved = root.move_out();
        root.add_integer("count", 1); // the old keys are gone
        EXPECT_EQ(root.to_text(), "{\r\n    count : 1\r\n}\r\n");
    }
    EXPECT_EQ(clone->to_text(), crlf(sample_text));
    EXPECT_EQ(moved->to_text(), crlf(sample_text));
}

TEST(OptionalFlag, EveryWordLoadsBackAndOthersAreNamed) {
    for (const char* word : {"disabled", "attempt", "forced"}) {
        Object stored, saved;
        stored.add_string("Mode", word);
        OptionalFlagConfig::load(stored, "Mode").save(saved);
        EXPECT_EQ(saved.to_text(), stored.to_text());
    }
    Object wrong;
    wrong.add_string("Mode", "Forced");
    EXPECT_EQ(raised_by([&] { OptionalFlagConfig::load(wrong, "Mode"); }),
              "InvalidParametersException: Invalid Mode: Forced");
}

TEST(ConfigFile, ReadsBackBehindItsHeading) {
    Object settings;
    settings.add_integer("Digits", 50);
    const std::string text = config_file_text("1.2 Build 3", "CustomCompute", settings);
    EXPECT_TRUE(text.starts_with("//  zorvane Configuration File\r\n//  Version: 1.2 Build 3\r\n//\r\n")) << text;
    EXPECT_EQ(parse_notation_text(text)->to_text(),
              crlf("{\n    Action : \"CustomCompute\"\n    CustomCompute : {\n        Digits : 50\n    }\n}\n"));
    EXPECT_EQ(config_path("name"), "name.cfg");
    EXPECT_EQ(config_path("../name"), "../name");
}

} // namespace

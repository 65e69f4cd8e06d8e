#include "app/failure/exceptions.h"
#include "app/notation/config_file.h"
#include "app/notation/node.h"
#include "app/notation/optional_flag.h"
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

template <class... Values>
Array integers(Values... values) {
    Array array;
    (array.push_integer(values), ...);
    return array;
}

Array strings(std::initializer_list<const char*> values) {
    Array array;
    for (const char* value : values) array.push_string(value);
    return array;
}

Object sample() {
    Object path;
    path.add_string("path", "C:\\dir \"x\"");
    Array mixed;
    mixed.push(integers(1, 2).move_out());
    mixed.push(Object("not printed").move_out());
    mixed.push(path.move_out());
    mixed.push_integer(7);
    Object root("heading");
    root.add_integer("count", -5, "first line\nsecond line\n");
    root.add_array("word", strings({"a"}));
    root.add_array("words", strings({"a", "b"}), "one line each");
    root.add_array("mixed", std::move(mixed));
    root.add_array("none", Array());
    root.add_boolean("flag", true);
    return root;
}

const char* const sample_text = R"({   //  heading

    //  first line
    //  second line
    count : -5
    word : ["a"]

    //  one line each
    words : [
        "a"
        "b"
    ]
    mixed : [
        [1 2]
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

const char* const sample_json = R"({
    "count": -5,
    "word": ["a"],
    "words": [
        "a",
        "b"
    ],
    "mixed": [
        [1, 2],
        {},
        {
            "path": "C:\\dir \"x\""
        },
        7
    ],
    "none": [],
    "flag": "true"
},
)";

TEST(NodePrinting, FollowsTheLayoutOfBothForms) {
    EXPECT_EQ(sample().to_text(), crlf(sample_text));
    EXPECT_EQ(sample().to_json(0, true), crlf(sample_json));
    EXPECT_EQ(strings({"a", "b"}).to_text(1), "[\r\n        \"a\"\r\n        \"b\"\r\n    ]\r\n");
    EXPECT_EQ(integers(1, 2).to_json(1, true) + Object().to_json(0, true) + Array().to_json(), "[1, 2],{},[]");
}

TEST(NodeReads, TellWhatDisagrees) {
    const Object root = sample();
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[&] { root.get_object("count"); }, "ParseException: Expected Object, got Integer."},
        {[&] { root.get_string("words"); }, "ParseException: Expected String, got Array."},
        {[&] { root.get_array("mixed").get_array(2); }, "ParseException: Expected Array, got Object."},
        {[&] { root.get_array("words").get_integer(0); }, "ParseException: Expected Integer, got String."},
        {[&] { root.get_boolean("count"); }, "ParseException: Expected String, got Integer."},
        {[&] { root.get_array("mixed").get_object(2).get_boolean("path"); },
         "ParseException: Expected true or false."},
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
        EXPECT_EQ(raised_by(add), "ParseException: Attempted to add an existing key.");
        try {
            add();
        } catch (const ParseException& exception) {
            EXPECT_EQ(exception.function, function);
        }
    }
    EXPECT_EQ(root.to_text(), "{\r\n    key : 1\r\n}\r\n");
}

TEST(NodeCopies, OutliveTheirOriginal) {
    std::unique_ptr<Node> clone;
    std::unique_ptr<Node> moved;
    {
        Object root = sample();
        clone = root.clone();
        moved = root.move_out();
        EXPECT_EQ(root.to_text(), "{}");
        root.add_integer("count", 1); // the old keys are gone
        EXPECT_EQ(root.to_text(), "{\r\n    count : 1\r\n}\r\n");
    }
    EXPECT_EQ(clone->to_text(), crlf(sample_text));
    EXPECT_EQ(moved->to_text(), crlf(sample_text));
    EXPECT_EQ(moved->as_object("").get_integer("count"), -5);
    Array array = integers(1);
    EXPECT_EQ(array.move_out()->to_text(), "[1]");
    EXPECT_EQ(array.size(), 0u);
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

TEST(ConfigFile, BeginsWithItsHeading) {
    Object settings;
    settings.add_integer("Digits", 50);
    EXPECT_EQ(config_file_text("1.2 Build 3", "CustomCompute", settings), crlf(R"(//  zorvane Configuration File
//  Version: 1.2 Build 3
//
//  Load this from zorvane or run directly:
//      zorvane config filename.cfg
//
//  If you're copying Windows file paths into here, be sure to replace
//  all backslashes "\" with forward slashes "/". Backslash is an
//  escape character.
//

{
    Action : "CustomCompute"
    CustomCompute : {
        Digits : 50
    }
}
)"));
    EXPECT_EQ(config_path("name"), "name.cfg");
    EXPECT_EQ(config_path("name.txt"), "name.txt");
    EXPECT_EQ(config_path("../name"), "../name");
}

} // namespace

#include "app/failure/exceptions.h"
#include "app/notation/parser.h"
#include "app/raised.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

namespace {

using namespace zvp;
using test::raised_by;
using Parse = std::unique_ptr<Node> (*)(std::string_view);

/// Each text raises the error ("<type>: <message>") of its row.
void expect_errors(Parse parse, const std::map<std::string, std::vector<std::string>>& rows) {
    for (const auto& [error, texts] : rows)
        for (const std::string& text : texts) EXPECT_EQ(raised_by([&] { parse(text); }), error) << text;
}

TEST(NotationParser, ErrorsTellTextAndLine) {
    const std::string p = "ParseException: Line ", end = ": Unexpected end of stream.";
    expect_errors(
        parse_notation_text,
        {{p + "1: Don't use commas to separate elements.", {"[1, 2]", ",", "{a:,}", "[\"a\",\"b\"]"}},
         {p + "4: Don't use commas to separate elements.", {"[\n\n\"a\"\n, \"b\"]", "{a:\"x\ny\n\"\nb:,}"}},
         {p + "2: Unexpected ']'.", {"\r\n]", "{a:\n]}"}},
         {p + "2: Unexpected '}'.", {"{a:\r\n}", "[//[\n}"}},
         {p + "1: Invalid integer literal.", {"{a:1b}", "[1\"a\"]", "[1[2]]", "[1/2]", "[-x]", "true"}},
         {p + "1: Integer literal is too large.",
          {"[9223372036854775808]", "[-9223372036854775808]", "[100000000000000000000]"}},
         {p + "2: Invalid escape character: p", {"[\"\nC:\\path\"]", "{\na\\p:1}"}},
         {p + "2: Expected identifier.", {"{\n\"a\":1}", "{\n:1}"}},
         {p + "2: Expected colon after identifier.", {"{a\n1}", "{\na 1}", "{\na\"b\":1}"}},
         {p + "2: Invalid character in identifier.", {"{\nmy,key:1}", "{\n\xCF\x80:1}", "{a//comment\nb,:1}"}},
         {p + "3: Duplicate key in object.", {"{\na:1\na:2}"}},
         {p + "4: Unexpected text behind the end of the value.", {"// one\r\n{a:1 // two\r\n}//three\r\n x"}},
         {"EndOfStreamException: Line 1" + end, {"", "5", "5 ", "-", "{a:1", "{a", "[1 //]", "\"\\"}},
         {"EndOfStreamException: Line 2" + end, {" \n//", "{a//b\n", "\"a\n\\\""}}});
}

TEST(JsonParser, ErrorsTellTextAndLine) {
    const std::string p = "ParseException: Line ", end = ": Unexpected end of stream.";
    expect_errors(parse_json_text,
                  {{p + "2: Unexpected ','.", {"[\n,1]", "[1,\n,2]", "{\"a\": \n,}"}},
                   {p + "2: Unexpected ']'.", {"[1,\n]"}},
                   {p + "2: Unexpected '}'.", {"{\"a\":1,\n}", "{\"a\":\n}"}},
                   {p + "2: Expected ',' before identifier.", {"[1\n2]", "[\"a\"\n\"b\"]", "[1\n}"}},
                   {p + "1: Invalid integer literal.", {"[1x]", "[1.5]", "[null]"}},
                   {p + "1: Integer literal is too large.", {"[9223372036854775808]", "[-9223372036854775808]"}},
                   {p + "1: Invalid escape character: n", {"[\"\\n\"]", "{\"\\n\":1}"}},
                   {p + "1: Expected object key string.", {"{a:1}", "{\"a\":1,2}"}},
                   {p + "1: Expected colon after object key string.", {"{\"a\" 1}", "{\"a\"}"}},
                   {p + "2: Expected ',' before object key string.", {"{\"a\":1\n\"b\":2}"}},
                   {p + "2: Duplicate key in object.", {"{\"a\":1,\n\"a\":2}"}},
                   {p + "1: Unexpected text behind the end of the value.", {"{}{}", "{},"}},
                   {"EndOfStreamException: Line 1" + end, {"", "5", "{\"a", "{\"a\":1,//}"}},
                   {"EndOfStreamException: Line 2" + end, {"[1,\n"}}});
}

TEST(NotationParser, AcceptsWhatTheGrammarAllows) {
    const std::pair<const char*, const char*> rows[] = {
        {"{a:1}", R"({"a": 1})"},
        {"[1\t2//x\n3]", "[1, 2, 3]"},
        {"[-7 -0 007 9223372036854775807 -9223372036854775807]",
         "[-7, 0, 7, 9223372036854775807, -9223372036854775807]"},
        {"{my-key.1:1}//end", R"({"my-key.1": 1})"},
        {"{!#$%&'()*+-./=?@^_|~\\\"\\\\ : \"\"}", R"({"!#$%&'()*+-./=?@^_|~\"\\": ""})"},
        {"{one//comment\nkey:1}", R"({"onekey": 1})"},
        {"{a\n:\n1\nb:2}", R"({"a": 1, "b": 2})"},
        {"{a:{}b:[]c:\"\"d:1}", R"({"a": {}, "b": [], "c": "", "d": 1})"},
        {"[\"C:\\\\path\" \"two\nlines // no comment\"]", "[\"C:\\\\path\", \"two\nlines // no comment\"]"},
    };
    for (const auto& [notation, json] : rows)
        EXPECT_EQ(parse_notation_text(notation)->to_json(), parse_json_text(json)->to_json()) << notation;
}

TEST(NotationParser, CountsLinesAcrossValuesOfOneText) {
    std::string_view text = "1\n\"two\n\" ] rest";
    std::size_t line = 4;
    EXPECT_EQ(parse_notation(text, line)->to_text(), "1");
    EXPECT_EQ(parse_notation(text, line)->to_text(), "\"two\n\"");
    EXPECT_EQ(line, 6u);
    EXPECT_EQ(text, " ] rest");
    EXPECT_EQ(raised_by([&] { parse_notation(text, line); }), "ParseException: Line 7: Unexpected ']'.");
}

TEST(Parsers, TruncatedTextIsAnErrorAtEveryByte) {
    const std::string notation = "// \xCF\x80\r\n{ key.1 : [1 -2 {}] // x\r\n a\\\"b//c\n : \"s\\\\ \n\" o : { "
                                 "i : 5 n : [[\"a\" \"b\"] []] } }";
    const std::string json =
        "{ \"k\\\\\" : [1, -2, {}] , // x\r\n\"s\": \"\\\"\n\", \"o\": { \"i\":5,\"n\":[[\"\"],[]]}}";
    for (const auto& [parse, whole] :
         {std::pair<Parse, std::string>{parse_notation_text, notation}, {parse_json_text, json}}) {
        EXPECT_NO_THROW(parse(whole));
        for (std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_THROW(parse(whole.substr(0, size)), ParseException) << whole.substr(0, size);
    }
}

TEST(Parsers, NestingIsLimited) {
    const std::string too_deep = "ParseException: Line 1: Values are nested more than 1000 deep.";
    for (const Parse parse : {parse_notation_text, parse_json_text}) {
        EXPECT_NO_THROW(parse(std::string(1000, '[') + std::string(1000, ']')));
        EXPECT_EQ(raised_by([&] { parse(std::string(1001, '[')); }), too_deep);
        EXPECT_EQ(raised_by([&] { parse(std::string(1'000'000, '[')); }), too_deep);
    }
    std::string objects;
    for (std::size_t i = 0; i <= max_nesting; ++i) objects += "{a:";
    EXPECT_EQ(raised_by([&] { parse_notation_text(objects); }), too_deep);
}

/// Trees of all shapes, with keys that the notation can write.
struct RandomTree {
    std::mt19937_64 random;

    std::uint64_t below(std::uint64_t bound) { return random() % bound; }

    std::string text(std::string_view set, std::size_t count) {
        std::string made;
        for (; count > 0; --count) made += set.empty() ? static_cast<char>(random()) : set[below(set.size())];
        return made;
    }

    std::unique_ptr<Node> node(std::size_t depth) {
        switch (below(depth == 0 ? 2 : 4)) {
        case 0: return Integer(static_cast<std::int64_t>(random()) >> below(64) | 1).move_out(); // never -2^63
        case 1: return String(text(below(2) ? "" : "a \\\"/\r\n\t,:{}[]", below(12))).move_out();
        case 2: return array(depth - 1).move_out();
        default: return object(depth - 1).move_out();
        }
    }

    Array array(std::size_t depth) {
        Array made;
        for (std::size_t count = below(4); count > 0; --count) made.push(node(depth));
        return made;
    }

    Object object(std::size_t depth) {
        Object made(below(4) == 0 ? "comment" : "");
        for (std::size_t count = below(5); count > 0; --count) {
            std::string key = text("aZ09!#$%&'()*+-.=?@^_|~\\\"", 1 + below(4)) + (below(2) ? "/" : "");
            std::string comment = below(3) ? "" : text("c {\"\\\r\n", below(9));
            if (!made.find(key)) made.add_node(std::move(key), node(depth), std::move(comment));
        }
        return made;
    }
};

TEST(Parsers, PrintedTreesParseToTheSameTree) {
    SCOPED_TRACE(test::seed_trace());
    for (std::uint64_t i = 0; i < 500; ++i) {
        const Object tree = RandomTree{std::mt19937_64(test::seed() + i)}.object(5);
        const std::string json = tree.to_json();
        EXPECT_EQ(parse_json_text(json)->to_json(), json) << "tree " << i;
        EXPECT_EQ(parse_notation_text(tree.to_text())->to_json(), json) << "tree " << i;
    }
}

} // namespace

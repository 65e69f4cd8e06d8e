#include "app/notation/parser.h"

#include "app/failure/exceptions.h"

namespace zvp {

namespace {

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }

constexpr bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool is_key_character(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')
           || (c != '\0' && std::string_view("!#$%&'()*+-./=?@^_|~").find(c) != std::string_view::npos);
}

/// What both grammars share: the cursor, skipping, integers, strings.
class Scanner {
public:
    Scanner(std::string_view text_, std::size_t line_, const char* function_)
        : text(text_), line(line_), function(function_) {}

    [[noreturn]] void fail(const std::string& message) const { throw ParseException(function, located(message)); }

    /// The next character; the text must go on.
    char peek() const {
        if (at == text.size()) throw EndOfStreamException(function, located("Unexpected end of stream."));
        return text[at];
    }

    char take() {
        const char c = peek();
        ++at;
        if (c == '\n') ++line;
        return c;
    }

    /// Passes blanks and comments as far as the text goes; tells whether there were any.
    bool skip_to_end() {
        const std::size_t start = at;
        while (at < text.size()) {
            if (text.substr(at, 2) == "//") {
                skip_comment();
            } else if (is_blank(text[at])) {
                take();
            } else {
                break;
            }
        }
        return at != start;
    }

    /// The same where something must follow.
    bool skip() {
        const bool skipped = skip_to_end();
        peek();
        return skipped;
    }

    /// Passes a comment, its line feed included.
    void skip_comment() {
        while (at < text.size() && take() != '\n') {
        }
    }

    bool at_comment() const { return text.substr(at, 2) == "//"; }

    /// The digits of an integer and their sign, held to magnitudes below 2^63; what may follow them is the
    /// grammar's.
    std::unique_ptr<Node> take_integer() {
        const bool negative = peek() == '-';
        if (negative) take();
        if (!is_digit(peek())) fail("Invalid integer literal.");
        std::int64_t magnitude = 0;
        while (at < text.size() && is_digit(text[at])) {
            if (__builtin_mul_overflow(magnitude, 10, &magnitude)
                || __builtin_add_overflow(magnitude, text[at] - '0', &magnitude))
                fail("Integer literal is too large.");
            ++at;
        }
        return std::make_unique<Integer>(negative ? -magnitude : magnitude);
    }

    std::string take_string() {
        take(); // the opening quote
        std::string value;
        for (char c = take(); c != '"'; c = take()) value += c == '\\' ? take_escaped() : c;
        return value;
    }

    /// The character behind a backslash.
    char take_escaped() {
        const char c = peek();
        if (c == '"' || c == '\\') return take();
        std::size_t length = 1; // the whole character, if it has several bytes
        while (length < 4 && at + length < text.size()
               && (static_cast<unsigned char>(text[at + length]) & 0xC0) == 0x80)
            ++length;
        fail("Invalid escape character: " + std::string(text.substr(at, length)));
    }

    /// Counts one level of nesting for as long as it lives.
    class Level {
    public:
        explicit Level(Scanner& scanner_) : scanner(scanner_) {
            if (++scanner.depth > max_nesting)
                scanner.fail("Values are nested more than " + std::to_string(max_nesting) + " deep.");
        }
        ~Level() { --scanner.depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Scanner& scanner;
    };

    std::string_view rest() const { return text.substr(at); }
    std::size_t line_count() const { return line; }

private:
    std::string located(const std::string& message) const {
        return "Line " + std::to_string(line + 1) + ": " + message;
    }

    std::string_view text;
    std::size_t at = 0;
    std::size_t line;
    std::size_t depth = 0;
    const char* function;
};

class NotationParser {
public:
    NotationParser(std::string_view text, std::size_t line) : scanner(text, line, "parse_notation()") {}

    std::unique_ptr<Node> value() {
        const Scanner::Level level(scanner);
        scanner.skip();
        switch (scanner.peek()) {
        case '"': return std::make_unique<String>(scanner.take_string());
        case '{': return object();
        case '[': return array();
        case ',': scanner.fail(no_commas);
        case ']': scanner.fail("Unexpected ']'.");
        case '}': scanner.fail("Unexpected '}'.");
        default: return integer();
        }
    }

    Scanner scanner;

private:
    static constexpr const char* no_commas = "Don't use commas to separate elements.";

    std::unique_ptr<Node> integer() {
        auto node = scanner.take_integer();
        const char next = scanner.peek();
        if (next == ',') scanner.fail(no_commas);
        if (next != ']' && next != '}' && !scanner.skip()) scanner.fail("Invalid integer literal.");
        return node;
    }

    std::unique_ptr<Node> array() {
        auto node = std::make_unique<Array>();
        scanner.take();
        for (scanner.skip(); scanner.peek() != ']'; scanner.skip()) node->push(value());
        scanner.take();
        return node;
    }

    std::unique_ptr<Node> object() {
        auto node = std::make_unique<Object>();
        scanner.take();
        for (scanner.skip(); scanner.peek() != '}'; scanner.skip()) {
            std::string name = key();
            scanner.skip();
            if (scanner.peek() != ':') scanner.fail("Expected colon after identifier.");
            scanner.take();
            if (node->find(name)) scanner.fail("Duplicate key in object.");
            auto entry_value = value();
            node->add_node(std::move(name), std::move(entry_value));
        }
        scanner.take();
        return node;
    }

    /// A bare key. A comment inside it is passed over and the key goes on in the next line.
    std::string key() {
        std::string name;
        for (char c = scanner.peek(); c != '"' && c != ':'; c = scanner.peek()) {
            if (is_blank(c)) {
                scanner.take();
                break;
            }
            if (scanner.at_comment()) {
                scanner.skip_comment();
                continue;
            }
            scanner.take();
            if (c == '\\') {
                name += scanner.take_escaped();
            } else if (is_key_character(c)) {
                name += c;
            } else {
                scanner.fail("Invalid character in identifier.");
            }
        }
        if (name.empty()) scanner.fail("Expected identifier.");
        return name;
    }
};

class JsonParser {
public:
    JsonParser(std::string_view text, std::size_t line) : scanner(text, line, "parse_json()") {}

    std::unique_ptr<Node> value() {
        const Scanner::Level level(scanner);
        scanner.skip();
        switch (scanner.peek()) {
        case '"': return std::make_unique<String>(scanner.take_string());
        case '{': return object();
        case '[': return array();
        case ',': scanner.fail("Unexpected ','.");
        case ']': scanner.fail("Unexpected ']'.");
        case '}': scanner.fail("Unexpected '}'.");
        default: return integer();
        }
    }

    Scanner scanner;

private:
    std::unique_ptr<Node> integer() {
        auto node = scanner.take_integer();
        const char next = scanner.peek();
        if (next != ',' && next != ']' && next != '}' && !scanner.skip()) scanner.fail("Invalid integer literal.");
        return node;
    }

    std::unique_ptr<Node> array() {
        auto node = std::make_unique<Array>();
        scanner.take();
        scanner.skip();
        if (scanner.peek() == ']') {
            scanner.take();
            return node;
        }
        for (;;) {
            node->push(value());
            scanner.skip();
            const char next = scanner.peek();
            if (next != ',' && next != ']') scanner.fail("Expected ',' before identifier.");
            scanner.take();
            if (next == ']') return node;
        }
    }

    std::unique_ptr<Node> object() {
        auto node = std::make_unique<Object>();
        scanner.take();
        scanner.skip();
        if (scanner.peek() == '}') {
            scanner.take();
            return node;
        }
        for (;;) {
            entry(*node);
            scanner.skip();
            const char next = scanner.peek();
            if (next != ',' && next != '}') scanner.fail("Expected ',' before object key string.");
            scanner.take();
            if (next == '}') return node;
        }
    }

    void entry(Object& node) {
        scanner.skip();
        if (scanner.peek() == '}') scanner.fail("Unexpected '}'.");
        if (scanner.peek() != '"') scanner.fail("Expected object key string.");
        std::string name = scanner.take_string();
        scanner.skip();
        if (scanner.peek() != ':') scanner.fail("Expected colon after object key string.");
        scanner.take();
        if (node.find(name)) scanner.fail("Duplicate key in object.");
        auto entry_value = value();
        node.add_node(std::move(name), std::move(entry_value));
    }
};

template <class Parser>
std::unique_ptr<Node> parse_one(std::string_view& text, std::size_t& line) {
    Parser parser(text, line);
    auto node = parser.value();
    text = parser.scanner.rest();
    line = parser.scanner.line_count();
    return node;
}

template <class Parser>
std::unique_ptr<Node> parse_whole(std::string_view text) {
    Parser parser(text, 0);
    auto node = parser.value();
    parser.scanner.skip_to_end();
    if (!parser.scanner.rest().empty()) parser.scanner.fail("Unexpected text behind the end of the value.");
    return node;
}

} // namespace

std::unique_ptr<Node> parse_notation(std::string_view& text, std::size_t& line) {
    return parse_one<NotationParser>(text, line);
}

std::unique_ptr<Node> parse_json(std::string_view& text, std::size_t& line) {
    return parse_one<JsonParser>(text, line);
}

std::unique_ptr<Node> parse_notation_text(std::string_view text) { return parse_whole<NotationParser>(text); }

std::unique_ptr<Node> parse_json_text(std::string_view text) { return parse_whole<JsonParser>(text); }

} // namespace zvp

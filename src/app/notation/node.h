#pragma once
// The object notation: one tree of values for everything that is saved or sent: configuration and formula
// files, the settings in a validation file, checkpoints, slave messages.
//
// Values are signed 64-bit integers, strings of any bytes, arrays, and objects with ordered, named entries.
// Booleans are the strings "true" and "false". A tree prints in two forms: the notation (comments, no commas)
// and JSON.

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zvp {

class Array;
class Object;

/// The type ids of nodes.
enum class NodeType : int { integer = 0, string = 1, array = 2, object = 3 };

/// "Integer", "String", "Array", "Object", as messages tell them.
std::string_view node_type_name(NodeType type);

class Node {
public:
    explicit Node(NodeType type_) : type(type_) {}
    virtual ~Node() = default;

    /// The notation, every line ending in CR LF; lines behind the first are indented for `depth`.
    std::string to_text(std::size_t depth = 0) const;

    /// JSON in the same layout, without comments; `comma` sets a comma behind the value.
    std::string to_json(std::size_t depth = 0, bool comma = false) const;

    virtual std::unique_ptr<Node> clone() const = 0;

    /// Moves the contents to a new node; this one stays behind empty.
    virtual std::unique_ptr<Node> move_out() = 0;

    /// Typed views of a node. A node of another type fails with "Expected <type>, got <type>.", thrown as
    /// ParseException in the name of `function`.
    std::int64_t as_integer(std::string_view function) const;
    const std::string& as_string(std::string_view function) const;
    const Array& as_array(std::string_view function) const;
    const Object& as_object(std::string_view function) const;

    /// A string that is "true" or "false"; another string fails with "Expected true or false.".
    bool as_boolean(std::string_view function) const;

    const NodeType type;

    virtual void append_text(std::string& out, std::size_t depth) const = 0;
    virtual void append_json(std::string& out, std::size_t depth, bool comma) const = 0;

protected:
    Node(const Node&) = default;

private:
    void check_type(NodeType expected, std::string_view function) const;
};

class Integer final : public Node {
public:
    explicit Integer(std::int64_t value_) : Node(NodeType::integer), value(value_) {}

    std::unique_ptr<Node> clone() const override;
    std::unique_ptr<Node> move_out() override;
    void append_text(std::string& out, std::size_t depth) const override;
    void append_json(std::string& out, std::size_t depth, bool comma) const override;

    std::int64_t value;
};

class String final : public Node {
public:
    explicit String(std::string value_) : Node(NodeType::string), value(std::move(value_)) {}

    std::unique_ptr<Node> clone() const override;
    std::unique_ptr<Node> move_out() override;
    void append_text(std::string& out, std::size_t depth) const override;
    void append_json(std::string& out, std::size_t depth, bool comma) const override;

    std::string value;
};

class Array final : public Node {
public:
    Array() : Node(NodeType::array) {}

    void push(std::unique_ptr<Node> element) { elements.push_back(std::move(element)); }
    void push_integer(std::int64_t value) { push(std::make_unique<Integer>(value)); }
    void push_string(std::string value) { push(std::make_unique<String>(std::move(value))); }

    std::size_t size() const { return elements.size(); }
    const Node& at(std::size_t index) const { return *elements[index]; }

    /// Typed reads of an element that exists.
    std::int64_t get_integer(std::size_t index) const { return at(index).as_integer("Array::get_integer()"); }
    const std::string& get_string(std::size_t index) const { return at(index).as_string("Array::get_string()"); }
    const Array& get_array(std::size_t index) const { return at(index).as_array("Array::get_array()"); }
    const Object& get_object(std::size_t index) const { return at(index).as_object("Array::get_object()"); }

    std::unique_ptr<Node> clone() const override;
    std::unique_ptr<Node> move_out() override;
    void append_text(std::string& out, std::size_t depth) const override;
    void append_json(std::string& out, std::size_t depth, bool comma) const override;

private:
    bool prints_on_one_line() const;

    std::vector<std::unique_ptr<Node>> elements;
};

class Object final : public Node {
public:
    struct Entry {
        std::string key;
        std::string comment; // may be empty, may have several lines
        std::unique_ptr<Node> value;
    };

    /// `comment` (one line) is printed behind the opening brace.
    explicit Object(std::string comment_ = {}) : Node(NodeType::object), comment(std::move(comment_)) {}

    /// Add an entry behind the others. A key that is present fails with "Attempted to add an existing key."
    void add_integer(std::string key, std::int64_t value, std::string entry_comment = {});
    void add_string(std::string key, std::string value, std::string entry_comment = {});
    void add_boolean(std::string key, bool value, std::string entry_comment = {});
    void add_array(std::string key, Array value, std::string entry_comment = {});
    void add_object(std::string key, Object value, std::string entry_comment = {});
    void add_node(std::string key, std::unique_ptr<Node> value, std::string entry_comment = {});

    /// The value of a key. A missing key fails with KeyNotFoundException, which names it.
    std::int64_t get_integer(std::string_view key) const;
    const std::string& get_string(std::string_view key) const;
    bool get_boolean(std::string_view key) const;
    const Array& get_array(std::string_view key) const;
    const Object& get_object(std::string_view key) const;
    const Node& get_node(std::string_view key) const;

    /// The entry of a key, or null.
    const Entry* find(std::string_view key) const;

    /// In the order in which they were added.
    const std::vector<const Entry*>& entries() const { return ordered; }

    std::unique_ptr<Node> clone() const override;
    std::unique_ptr<Node> move_out() override;
    void append_text(std::string& out, std::size_t depth) const override;
    void append_json(std::string& out, std::size_t depth, bool comma) const override;

    std::string comment;

private:
    void add(std::string_view function, std::string key, std::unique_ptr<Node> value, std::string entry_comment);
    const Node& get(std::string_view function, std::string_view key) const;

    std::map<std::string, Entry, std::less<>> by_key;
    std::vector<const Entry*> ordered; // entries of by_key, which never move
};

} // namespace zvp

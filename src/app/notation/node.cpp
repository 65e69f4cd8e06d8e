#include "app/notation/node.h"

#include "app/failure/exceptions.h"

#include <utility>

namespace zvp {

std::string_view node_type_name(NodeType type) {
    switch (type) {
    case NodeType::integer: return "Integer";
    case NodeType::string: return "String";
    case NodeType::array: return "Array";
    case NodeType::object: return "Object";
    }
    return "invalid type";
}

std::string Node::to_text(std::size_t depth) const {
    std::string out;
    append_text(out, depth);
    return out;
}

std::string Node::to_json(std::size_t depth, bool comma) const {
    std::string out;
    append_json(out, depth, comma);
    return out;
}

void Node::check_type(NodeType expected, std::string_view function) const {
    if (type == expected) return;
    throw ParseException(std::string(function), "Expected " + std::string(node_type_name(expected)) + ", got "
                                                    + std::string(node_type_name(type)) + ".");
}

std::int64_t Node::as_integer(std::string_view function) const {
    check_type(NodeType::integer, function);
    return static_cast<const Integer&>(*this).value;
}

const std::string& Node::as_string(std::string_view function) const {
    check_type(NodeType::string, function);
    return static_cast<const String&>(*this).value;
}

const Array& Node::as_array(std::string_view function) const {
    check_type(NodeType::array, function);
    return static_cast<const Array&>(*this);
}

const Object& Node::as_object(std::string_view function) const {
    check_type(NodeType::object, function);
    return static_cast<const Object&>(*this);
}

bool Node::as_boolean(std::string_view function) const {
    const std::string& text = as_string(function);
    if (text == "true") return true;
    if (text == "false") return false;
    throw ParseException(std::string(function), "Expected true or false.");
}

std::unique_ptr<Node> Integer::clone() const { return std::make_unique<Integer>(value); }

std::unique_ptr<Node> Integer::move_out() {
    auto moved = std::make_unique<Integer>(value);
    value = 0;
    return moved;
}

std::unique_ptr<Node> String::clone() const { return std::make_unique<String>(value); }

std::unique_ptr<Node> String::move_out() { return std::make_unique<String>(std::exchange(value, {})); }

std::unique_ptr<Node> Array::clone() const {
    auto copy = std::make_unique<Array>();
    for (const auto& element : elements) copy->push(element->clone());
    return copy;
}

std::unique_ptr<Node> Array::move_out() {
    auto moved = std::make_unique<Array>();
    moved->elements.swap(elements);
    return moved;
}

void Object::add(std::string_view function, std::string key, std::unique_ptr<Node> value, std::string entry_comment) {
    const auto [place, added] = by_key.try_emplace(key);
    if (!added) throw ParseException(std::string(function), "Attempted to add an existing key.");
    place->second = {std::move(key), std::move(entry_comment), std::move(value)};
    ordered.push_back(&place->second);
}

void Object::add_integer(std::string key, std::int64_t value, std::string entry_comment) {
    add("Object::add_integer()", std::move(key), std::make_unique<Integer>(value), std::move(entry_comment));
}

void Object::add_string(std::string key, std::string value, std::string entry_comment) {
    add("Object::add_string()", std::move(key), std::make_unique<String>(std::move(value)), std::move(entry_comment));
}

void Object::add_boolean(std::string key, bool value, std::string entry_comment) {
    add_string(std::move(key), value ? "true" : "false", std::move(entry_comment));
}

void Object::add_array(std::string key, Array value, std::string entry_comment) {
    add("Object::add_array()", std::move(key), value.move_out(), std::move(entry_comment));
}

void Object::add_object(std::string key, Object value, std::string entry_comment) {
    add("Object::add_object()", std::move(key), value.move_out(), std::move(entry_comment));
}

void Object::add_node(std::string key, std::unique_ptr<Node> value, std::string entry_comment) {
    add("Object::add_node()", std::move(key), std::move(value), std::move(entry_comment));
}

const Object::Entry* Object::find(std::string_view key) const {
    const auto found = by_key.find(key);
    return found == by_key.end() ? nullptr : &found->second;
}

const Node& Object::get(std::string_view function, std::string_view key) const {
    const Entry* entry = find(key);
    if (!entry) throw KeyNotFoundException(std::string(function), "Key not found: " + std::string(key));
    return *entry->value;
}

std::int64_t Object::get_integer(std::string_view key) const {
    return get("Object::get_integer()", key).as_integer("Object::get_integer()");
}

const std::string& Object::get_string(std::string_view key) const {
    return get("Object::get_string()", key).as_string("Object::get_string()");
}

bool Object::get_boolean(std::string_view key) const {
    return get("Object::get_boolean()", key).as_boolean("Object::get_boolean()");
}

const Array& Object::get_array(std::string_view key) const {
    return get("Object::get_array()", key).as_array("Object::get_array()");
}

const Object& Object::get_object(std::string_view key) const {
    return get("Object::get_object()", key).as_object("Object::get_object()");
}

const Node& Object::get_node(std::string_view key) const { return get("Object::get_node()", key); }

std::unique_ptr<Node> Object::clone() const {
    auto copy = std::make_unique<Object>(comment);
    for (const Entry* entry : ordered) copy->add_node(entry->key, entry->value->clone(), entry->comment);
    return copy;
}

std::unique_ptr<Node> Object::move_out() {
    auto moved = std::make_unique<Object>(std::exchange(comment, {}));
    moved->by_key.swap(by_key); // nodes of a map keep their addresses
    moved->ordered.swap(ordered);
    return moved;
}

} // namespace zvp

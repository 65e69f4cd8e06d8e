#pragma once
// What every accepted text must satisfy: both printed forms read back to the same tree.

#include "app/failure/exceptions.h"
#include "app/notation/parser.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz {

inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

/// Keys that JSON allows and the notation can't write bare: JSON's round trip alone is checked then.
inline bool has_bare_keys(const zvp::Node& node) {
    if (node.type == zvp::NodeType::array) {
        const zvp::Array& array = node.as_array("fuzz");
        for (std::size_t i = 0; i < array.size(); ++i)
            if (!has_bare_keys(array.at(i))) return false;
    }
    if (node.type != zvp::NodeType::object) return true;
    for (const zvp::Object::Entry* entry : node.as_object("fuzz").entries()) {
        for (const char c : entry->key)
            if (static_cast<unsigned char>(c) <= ' ' || static_cast<unsigned char>(c) >= 0x7F || c == ':' || c == ','
                || c == ';' || c == '<' || c == '>' || c == '[' || c == ']' || c == '{' || c == '}' || c == '`')
                return false;
        if (entry->key.empty() || entry->key.find("//") != std::string::npos) return false;
        if (!has_bare_keys(*entry->value)) return false;
    }
    return true;
}

inline void check_round_trip(const zvp::Node& node) {
    if (node.type == zvp::NodeType::integer) return; // a bare integer at the end of a text isn't a value
    const std::string json = node.to_json();
    require(zvp::parse_json_text(json)->to_json() == json, "JSON doesn't read back.");
    if (!has_bare_keys(node)) return;
    const std::string text = node.to_text();
    require(zvp::parse_notation_text(text)->to_text() == text, "The notation doesn't read back.");
}

} // namespace fuzz

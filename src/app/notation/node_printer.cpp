// The two printed forms of a tree.

#include "app/notation/node.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr std::string_view line_end = "\r\n";

void append_indent(std::string& out, std::size_t depth) { out.append(4 * depth, ' '); }

void append_escaped(std::string& out, std::string_view text) {
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
}

void append_quoted(std::string& out, std::string_view text) {
    out += '"';
    append_escaped(out, text);
    out += '"';
}

void end_line_if_open(std::string& out) {
    if (!out.ends_with(line_end)) out += line_end;
}

void append_comment(std::string& out, std::string_view comment, std::size_t depth) {
    out += line_end;
    while (!comment.empty()) {
        const std::size_t end = std::min(comment.find('\n'), comment.size());
        std::string_view line = comment.substr(0, end);
        comment.remove_prefix(std::min(end + 1, comment.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        append_indent(out, depth);
        out += "//  ";
        out += line;
        out += line_end;
    }
}

} // namespace

void Integer::append_text(std::string& out, std::size_t) const { out += std::to_string(value); }

void Integer::append_json(std::string& out, std::size_t, bool comma) const {
    out += std::to_string(value);
    if (comma) out += ',';
}

void String::append_text(std::string& out, std::size_t) const { append_quoted(out, value); }

void String::append_json(std::string& out, std::size_t, bool comma) const {
    append_quoted(out, value);
    if (comma) out += ',';
}

bool Array::prints_on_one_line() const {
    if (elements.size() == 1 && elements[0]->type == NodeType::string) return true;
    return std::all_of(elements.begin(), elements.end(),
                       [](const auto& element) { return element->type == NodeType::integer; });
}

void Array::append_text(std::string& out, std::size_t depth) const {
    out += '[';
    if (prints_on_one_line()) {
        for (std::size_t i = 0; i < elements.size(); ++i) {
            if (i != 0) out += ' ';
            elements[i]->append_text(out, depth);
        }
        out += ']';
        return;
    }
    out += line_end;
    for (const auto& element : elements) {
        append_indent(out, depth + 1);
        element->append_text(out, depth + 1);
        end_line_if_open(out);
    }
    append_indent(out, depth);
    out += ']';
    out += line_end;
}

void Array::append_json(std::string& out, std::size_t depth, bool comma) const {
    const std::string_view closer = comma ? "]," : "]";
    out += '[';
    if (prints_on_one_line()) {
        for (std::size_t i = 0; i < elements.size(); ++i) {
            if (i != 0) out += ", ";
            elements[i]->append_json(out, depth, false);
        }
        out += closer;
        return;
    }
    out += line_end;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        append_indent(out, depth + 1);
        elements[i]->append_json(out, depth + 1, i + 1 != elements.size());
        end_line_if_open(out);
    }
    append_indent(out, depth);
    out += closer;
    out += line_end;
}

void Object::append_text(std::string& out, std::size_t depth) const {
    if (ordered.empty()) {
        out += "{}";
        return;
    }
    out += '{';
    if (!comment.empty()) out += "   //  " + comment;
    out += line_end;
    for (const Entry* entry : ordered) {
        if (!entry->comment.empty()) append_comment(out, entry->comment, depth + 1);
        append_indent(out, depth + 1);
        append_escaped(out, entry->key); // bare, but a quote or backslash in it must read back
        out += " : ";
        entry->value->append_text(out, depth + 1);
        end_line_if_open(out);
    }
    append_indent(out, depth);
    out += '}';
    out += line_end;
}

void Object::append_json(std::string& out, std::size_t depth, bool comma) const {
    const std::string_view closer = comma ? "}," : "}";
    out += '{';
    if (!ordered.empty()) {
        out += line_end;
        for (const Entry* entry : ordered) {
            append_indent(out, depth + 1);
            append_quoted(out, entry->key);
            out += ": ";
            entry->value->append_json(out, depth + 1, entry != ordered.back());
            end_line_if_open(out);
        }
        append_indent(out, depth);
    }
    out += closer;
    if (!ordered.empty()) out += line_end;
}

} // namespace zvp

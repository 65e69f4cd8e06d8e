#pragma once
// Configuration files: one object in the notation, whose "Action" names what to run and the key of its
// settings.

#include "app/notation/node.h"

#include <memory>
#include <string>
#include <string_view>

namespace zvp {

/// `path` with ".cfg" behind it if it holds no "." at all.
std::string config_path(std::string path);

/// Parses a file that holds one value in the notation. Raises FileException, ParseException,
/// EndOfStreamException.
std::unique_ptr<Node> load_notation_file(const std::string& path);

/// The text of a configuration file for `action` with its settings. `version` goes into the heading.
std::string config_file_text(std::string_view version, std::string_view action, const Object& settings);

/// Asks for a path and saves the settings there; an empty answer saves nothing. Raises FileException; an old file then stays as it was.
void save_config_file(std::string_view version, std::string_view action, const Object& settings);

} // namespace zvp

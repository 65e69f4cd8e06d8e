#pragma once
// The list of what the program can compute, and how a user's or a file's choice becomes a constant.

#include "constants/catalog/constant.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zvp {

inline constexpr std::int32_t pi_id = 3;
inline constexpr std::int32_t custom_formula_id = 10;

/// One row of the catalog; the index is the constant's id. An empty text isn't shown.
struct CatalogRow {
    std::string_view key;
    char color;
    std::string_view name;
    std::string_view value;
    std::string_view difficulty; // relative to one radix conversion; one number for each algorithm, the fastest first
};

std::span<const CatalogRow> catalog_rows();

/// The id of a name as the command line and configurations have it. Raises InvalidParametersException with "Invalid
/// Constant: " and the name.
std::int32_t constant_id(std::string_view name);

/// All names that constant_id() knows.
std::vector<std::string> constant_names();

/// The key of an id; that of the first row for an unknown id.
std::string_view constant_key(std::int32_t id);

/// The constant with its defaults; null for an unknown id.
std::unique_ptr<Constant> make_constant(std::int32_t id);

/// What the words of a command line name: a constant, and its argument if one was given (an empty one was given, too).
/// Raises what constant_id() and Constant::set_parameters() raise, the latter also for a constant that needs an argument.
std::unique_ptr<Constant> make_constant(std::string_view name, std::optional<std::string_view> argument);

/// Reads what Constant::to_config_object() gives.
std::unique_ptr<Constant> load_constant(const Object& object);

/// Shows the catalog and lets the user choose. Null if the choice can't be kept; the user has been told then.
std::unique_ptr<Constant> choose_constant();

} // namespace zvp

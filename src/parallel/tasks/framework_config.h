#pragma once
// The choice of a framework and its settings.

#include "app/failure/registry.h"
#include "app/notation/node.h"
#include "parallel/tasks/parallel_framework.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zvp {

inline constexpr std::uint32_t max_worker_threads = 65'536;

/// The settings of one framework choice. The workers of a pool are placed from the processor group on in which the
/// configuration was made.
class ParallelFrameworkConfig {
public:
    virtual ~ParallelFrameworkConfig() = default;

    virtual std::string_view key() const = 0;
    virtual std::string_view display_name() const = 0;
    virtual std::unique_ptr<ParallelFramework> make_framework() const = 0;

    /// "Framework" and the settings, as they are saved.
    virtual Object to_config_object() const = 0;

    /// The same for a report: numbers come with their display text.
    virtual Object to_config_object_full() const = 0;

    /// One line: name, number of tasks, worker threads (0 is no limit).
    virtual std::string summary(std::uint32_t task_count) const = 0;

    /// Prints the display name in the colour of a setting, without a line feed.
    virtual void print_with_tag() const = 0;

    /// Prints the menu's rows from number `first_row` on and returns the next free number.
    virtual std::uint32_t print_menu_rows(std::uint32_t first_row) const = 0;

    /// Acts on the row of that index, from 0.
    virtual void menu_select(std::uint32_t row) = 0;
};

/// What the registry knows of a framework.
struct ParallelFrameworkType {
    std::string_view display_name;
    std::unique_ptr<ParallelFrameworkConfig> (*make_default)();

    /// Reads the settings; a missing key raises KeyNotFoundException.
    std::unique_ptr<ParallelFrameworkConfig> (*from_config)(const Object& object);
};

/// All frameworks by key, in the order of the menu.
const Registry<ParallelFrameworkType>& framework_registry();

/// The framework of that key with its defaults. Another key raises InvalidParametersException "Invalid Parallel
/// Framework: " and the key.
std::unique_ptr<ParallelFrameworkConfig> make_framework_config(std::string_view key);

/// The default choice for this machine.
std::unique_ptr<ParallelFrameworkConfig> default_framework_config(std::uint32_t logical_cores);

} // namespace zvp

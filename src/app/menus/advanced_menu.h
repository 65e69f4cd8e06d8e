#pragma once

namespace zorvane {

/// Tools for developers and curious users.
void advanced_menu();

/// Validates a validation file: the action "validate" and an item of the menu.
void benchmark_validator();

} // namespace zorvane

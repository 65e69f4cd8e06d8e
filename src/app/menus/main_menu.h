#pragma once

namespace zorvane {

/// Shows the banner and the main menu, reads a choice and runs it once.
void main_menu();

/// Views and converts digit files: the action "digitviewer" and an item of the menu.
void digit_viewer();

} // namespace zorvane

#pragma once

namespace zorvane {

void about_screen();

} // namespace zorvane

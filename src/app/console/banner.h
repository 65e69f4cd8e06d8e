#pragma once

namespace zvp {

/// The program's name, version and makers, and the tuning line.
void print_banner();

/// "Tuning: ", the build's path and the processors that its active kernels are written for.
void print_tuning();

} // namespace zvp

#pragma once
// Menu rows of allocators.

#include "app/notation/optional_flag.h"

#include <cstdint>
#include <string_view>

namespace zvp {

/// A three-way setting in a menu and in a report.
class OptionalFlagSelector {
public:
    explicit OptionalFlagSelector(OptionalFlagConfig& flag_) : flag(flag_) {}

    /// From Disabled to Attempt to Forced to Disabled.
    void cycle();

    static void print_row(const OptionalFlagConfig& flag, std::uint32_t row, std::string_view label);

    /// Adds the flag under its key; `full` as an object with "Value", "DisplayText" and "DisplayColor".
    static void save(const OptionalFlagConfig& flag, Object& object, bool full);

private:
    OptionalFlagConfig& flag;
};

} // namespace zvp

#pragma once

#include "app/console/status.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zvp {

/// How an iteration of the status chain shows how far it is.
class IterationNumber {
public:
    /// A label that opens a bracket is closed by the number.
    IterationNumber(std::string_view label, std::uint64_t total_, IterationMode mode_);

    /// "42 %", " 7 / 10", or nothing.
    std::string text(std::uint64_t completed) const;

private:
    const std::uint64_t total;
    const IterationMode mode;
    const bool opens_bracket;
};

} // namespace zvp

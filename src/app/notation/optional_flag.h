#pragma once

#include "app/notation/node.h"

#include <string>
#include <string_view>

namespace zvp {

/// A setting that is off, tried, or insisted on.
enum class OptionalFlag { disabled, attempt, forced };

/// An OptionalFlag with the key under which it is stored, as "disabled", "attempt" or "forced".
class OptionalFlagConfig {
public:
    OptionalFlagConfig(std::string key_, OptionalFlag value_) : key(std::move(key_)), value(value_) {}

    /// Reads the key from `object`. A missing key raises KeyNotFoundException, another word
    /// InvalidParametersException with "Invalid Mode: " and the word.
    static OptionalFlagConfig load(const Object& object, std::string key);

    void save(Object& object) const;

    /// "Disabled", "Attempt", "Forced", and the colour of each.
    std::string_view display_name() const;
    char display_color() const;

    std::string key;
    OptionalFlag value;
};

} // namespace zvp

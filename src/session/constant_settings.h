#pragma once

#include "constants/catalog/computation_size.h"
#include "constants/catalog/constant_catalog.h"
#include "session/output_settings.h"

#include <memory>

namespace zvp {

/// What is computed, how far, and where the digits go. Shared between the sessions of one screen.
struct ConstantSettings {
    /// Takes the constant; the size is brought into its limits, with warnings.
    void set_constant(std::unique_ptr<Constant> new_constant);

    void set_decimal_digits(std::uint64_t digits) { size.set_decimal_digits(digits, constant->max_digits()); }
    void set_hexadecimal_digits(std::uint64_t digits) { size.set_hexadecimal_digits(digits, constant->max_digits()); }

    /// Adds the keys "Constant" to "OutputVerify" of a configuration, and reads them. load() raises KeyNotFoundException
    /// and InvalidParametersException and changes nothing then.
    void save(Object& object) const;
    void load(const Object& object);

    std::unique_ptr<Constant> constant = make_constant(pi_id);
    ComputationSize size; // requested
    OutputSettings output;
    bool verify_output = true;
};

} // namespace zvp

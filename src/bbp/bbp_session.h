#pragma once
// The digit extractor as the user meets it: settings, menu, run.

#include "bbp/fraction_float.h"
#include "bbp/term_record.h"

#include <cstdint>
#include <string>

namespace zorvane {

class BBPSession {
public:
    static constexpr std::uint64_t max_offset = 922'337'203'684'428'988;
    static constexpr std::uint32_t min_digits = 8;
    static constexpr std::uint32_t max_digits = 1'048'576;
    static constexpr std::uint32_t max_threads = 65'536;

    BBPSession();

    /// Recomputes the derived fields. Every change of a setting ends with it.
    void update_settings();

    /// Whether the settings can run; if not, what stands against it: "No modes enabled." and the like.
    bool can_start(std::string& reason) const;

    /// Shows the settings and lets the user change them until the computation starts.
    void menu();

    /// Computes the digits and prints them with the run's report.
    void run() const;

    std::int32_t algorithm = 0; // a BBPv2::Formula
    std::uint64_t offset = 1'000'000'000;
    std::uint32_t digits = 32;
    std::uint32_t threads;
    bool pin = true;
    bool mode_a = true;
    bool mode_b = true;
    bool mode_c = false;

    // Derived.
    std::string limit_name = "0";
    std::uint64_t limit = 0; // largest divisor that the enabled modes take
    std::uint32_t precision_digits = 0;
    std::uint32_t words = 0;
    std::uint64_t terms = 0;
    std::uint64_t largest_divisor = 0;

private:
    bool within_modes() const;
    BBPv2::Formula formula() const { return static_cast<BBPv2::Formula>(algorithm); }

    void print_menu() const;
    void apply_option(std::uint32_t option);
    void formula_menu();
    void modes_menu();

    BBPv2::FractionFloat sum_records() const;
};

/// The action "bbp".
void bbp_menu();

} // namespace zorvane

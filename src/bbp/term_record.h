#pragma once
// The series for Pi that the extractor sums.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace BBPv2 {

/// The series  sum over k >= 0 of  2^(step * k + start) / (a * k + b),  taken modulo 1, added or subtracted.
struct TermRecord {
    std::uint64_t a;
    std::uint64_t b;
    std::int64_t step; // negative
    std::int64_t start;
    bool positive;
};

enum class Formula : std::int32_t { bbp_4_terms = 0, bellard_7_terms = 1 };

/// "Original 4-term BBP", "Bellard's 7-term BBP".
std::string_view formula_name(Formula formula);

/// The formula as lines of text.
std::string_view formula_display(Formula formula);

/// The records whose sum is the fraction of 16^offset * Pi.
///
/// 4 terms: D. Bailey, P. Borwein, S. Plouffe, "On the rapid computation of various polylogarithmic constants",
/// Math. Comp. 66 (1997). 7 terms: F. Bellard, "A new formula to compute the n'th binary digit of pi" (1997),
/// with two consecutive indices folded into one, so that the signs don't alternate inside a record.
std::vector<TermRecord> term_records(Formula formula, std::uint64_t offset);

/// How many terms of each record `hex_digits` digits behind the offset need, and the largest divisor among
/// them.
struct TermCount {
    std::uint64_t terms;
    std::uint64_t largest_divisor;
};
TermCount terms_needed(Formula formula, std::uint64_t offset, std::uint64_t hex_digits);

} // namespace BBPv2

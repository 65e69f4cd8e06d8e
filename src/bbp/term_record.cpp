#include "bbp/term_record.h"

namespace BBPv2 {

std::string_view formula_name(Formula formula) {
    return formula == Formula::bbp_4_terms ? "Original 4-term BBP" : "Bellard's 7-term BBP";
}

std::string_view formula_display(Formula formula) {
    if (formula == Formula::bbp_4_terms)
        return "         inf   1  (  4      2      1      1   )\n"
               "    Pi = SUM ---- ( ---- - ---- - ---- - ---- )\n"
               "         k=0 16^k ( 8k+1   8k+4   8k+5   8k+6 )\n";
    return "         inf (-1)^k (   2^-1   2^-6    2^2      1     2^-4    2^-4    2^-6  )\n"
           "    Pi = SUM ------ ( - ---- - ---- + ----- - ----- - ----- - ----- + ----- )\n"
           "         k=0 1024^k (   4k+1   4k+3   10k+1   10k+3   10k+5   10k+7   10k+9 )\n";
}

std::vector<TermRecord> term_records(Formula formula, std::uint64_t offset) {
    const auto d = 4 * static_cast<std::int64_t>(offset);
    // Fractions with even numerators are reduced: 2/(8k+4) = 2^-1/(2k+1), 1/(8k+6) = 2^-1/(4k+3).
    if (formula == Formula::bbp_4_terms)
        return {{8, 1, -4, d + 2, true}, {2, 1, -4, d - 1, false}, {8, 5, -4, d, false}, {4, 3, -4, d - 1, false}};
    return {{8, 1, -20, d - 1, false},   {8, 3, -20, d - 6, false},   {8, 5, -20, d - 11, true},
            {8, 7, -20, d - 16, true},   {20, 1, -20, d + 2, true},   {20, 3, -20, d, false},
            {20, 5, -20, d - 4, false},  {20, 7, -20, d - 4, false},  {20, 9, -20, d - 6, true},
            {20, 11, -20, d - 8, false}, {20, 13, -20, d - 10, true}, {20, 15, -20, d - 14, true},
            {20, 17, -20, d - 14, true}, {20, 19, -20, d - 16, false}};
}

TermCount terms_needed(Formula formula, std::uint64_t offset, std::uint64_t hex_digits) {
    const std::uint64_t digits = hex_digits + offset;
    if (formula == Formula::bbp_4_terms) return {digits, 8 * digits + 2};
    const std::uint64_t terms = 4 * digits / 20 + 1;
    return {terms, 20 * terms + 2};
}

} // namespace BBPv2

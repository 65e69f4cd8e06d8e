#include "constants/catalog/constant_rows.h"

#include <array>

namespace zvp {

namespace {

using Text = std::string_view;

constexpr ConstantAlgorithm newton[] = {{"newton", "Newton's Method", "Newton", "1st order Newton's Method"}};

constexpr ConstantAlgorithm e_series[] = {
    {"exp(1)", "Taylor Series of exp(1)", "exp(1)", "Taylor Series of exp(1)"},
    {"exp(-1)", "Taylor Series of exp(-1)", "exp(-1)", "Taylor Series of exp(-1)    (same speed)\n"},
};

constexpr ConstantAlgorithm pi_series[] = {
    {"chudnovsky", "Chudnovsky (1988)", "Chudnovsky", "Chudnovsky (1988)       (fastest)"},
    {"ramanujan", "Ramanujan (1910)", "Ramanujan", "Ramanujan (1910)        (~40% slower)"},
    {"chudnovsky-reduced", "Chudnovsky (1988) (reduced memory)", "Chudnovsky (reduced)",
     "Chudnovsky (1988)       (reduced memory)"},
    {"ramanujan-reduced", "Ramanujan (1910) (reduced memory)", "Ramanujan (reduced)",
     "Ramanujan (1910)        (reduced memory)"},
};

constexpr ConstantAlgorithm log_formulas[] = {
    {"machin-primary", "Primary Machin-like Formula", "Machin (primary)", "Primary Machin-like Formula"},
    {"machin-secondary", "Secondary Machin-like Formula", "Machin (secondary)", "Secondary Machin-like Formula"},
};

constexpr ConstantAlgorithm zeta3_series[] = {
    {"wedeniwski", "Wedeniwski (1998)", "Wedeniwski", "Wedeniwski (1998)               (fastest)"},
    {"az", "Amdeberhan-Zeilberger (1997)", "Amdeberhan-Zeilberger (1997)",
     "Amdeberhan-Zeilberger (1997)    (slightly slower)"},
};

constexpr ConstantAlgorithm catalan_series[] = {
    {"pilehrood-short", "Pilehrood (2010-short)", "Pilehrood (short)", "Pilehrood (2010-short)      (fastest)"},
    {"guillera2019", "Guillera (2019)", "Guillera (2019)", "Guillera (2019)             (1.3x slower)"},
    {"pilehrood-long", "Pilehrood (2010-long)", "Pilehrood (long)", "Pilehrood (2010-long)       (1.5x slower)"},
    {"guillera2008", "Guillera (2008)", "Guillera (2008)", "Guillera (2008)             (1.8x slower)"},
    {"lupas", "Lupas (2000)", "Lupas", "Lupas (2000)                (3.8x slower)"},
    {"huvent", "Huvent (2006)", "Huvent", "Huvent (2006)               (4.3x slower)"},
};

constexpr ConstantAlgorithm lemniscate_formulas[] = {
    {"agm-pi", "AGM-Pi", "AGM-Pi", "AGM with Pi         (Can be very slow on disk.)\n"},
    {"gauss", "Gauss Formula", "Gauss", "Gauss Formula       (2x slower in ram, may be faster on disk)\n"},
    {"sebah", "Sebah's formula", "Sebah", "Sebah's Formula     (20% slower than Gauss)\n"},
};

constexpr Text lemniscate_notes[] = {
    "            Lemniscate = 2 Pi / AGM(1, sqrt(2))\n",
    "            Lemniscate = 8 * ArcSinlemn(1/2) + 4 * ArcSinLemn(7/23)\n",
    "            Lemniscate = 8 * ArcSinlemn(2/3) - 4 * ArcSinLemn(7/137)\n",
};

constexpr ConstantAlgorithm gamma_formulas[] = {
    {"brent-refined", "Brent-McMillan with Refinement", "Brent-McMillan (refined)", "Brent-McMillan with Refinement"},
    {"brent-original", "Brent-McMillan", "Brent-McMillan", "Brent-McMillan"},
};

constexpr ConstantAlgorithm custom_formula[] = {{"custom", "Custom Formula", "Custom", "Custom Formula:"}};

constexpr Text sqrt_text = "    There are no alternate formulas for square roots. To verify sqrt(n),\n"
                           "    compute sqrt(100*n) instead. The digits will be the same, but shifted\n"
                           "    over by one digit.";

constexpr Text golden_ratio_text = "    There is no alternate formula for Golden Ratio. However, a verification\n"
                                   "    can be done by computing sqrt(125) instead. The digits will be the same,\n"
                                   "    but shifted over by one digit.";

constexpr Text pi_text = "    Reduced memory algorithms use alternate parameters that require less\n"
                         "    memory at the cost of decreased performance.";

constexpr Text euler = "Euler-Mascheroni Constant";

// id, key, colour, short name, long name, digit file, menu, algorithms, notes, text, built
constexpr std::array<ConstantTraits, 11> rows{{
    {0, "sqrt", 'P', "", "", "", "Menu-Sqrt-Algorithms", newton, {}, sqrt_text, true},
    {1,
     "goldenratio",
     'P',
     "Golden Ratio",
     "Golden Ratio",
     "GoldenRatio",
     "Menu-GoldenRatio-Algorithms",
     newton,
     {},
     golden_ratio_text,
     true},
    {2, "e", 'P', "e", "e", "e", "Menu-E-Algorithms", e_series, {}, "", true},
    {3, "pi", 'G', "Pi", "Pi", "Pi", "Menu-Pi-Algorithms", pi_series, {}, pi_text, true},
    {4, "log", 'G', "", "", "", "Menu-Log-Algorithms", log_formulas, {}, "", false},
    {5,
     "zeta3",
     'G',
     "Zeta(3)",
     "Zeta(3) - Apery's Constant",
     "Zeta3",
     "Menu-Zeta3-Algorithms",
     zeta3_series,
     {},
     "",
     false},
    {6,
     "catalan",
     'G',
     "Catalan",
     "Catalan's Constant",
     "Catalan",
     "Menu-Catalan-Algorithms",
     catalan_series,
     {},
     "",
     false},
    {7, "lemniscate", 'G', "Lemniscate", "Lemniscate Constant", "Lemniscate", "Menu-Lemniscate-Algorithms",
     lemniscate_formulas, lemniscate_notes, "", false},
    {8, "gamma", 'B', euler, "Euler's Constant", "Gamma", "Menu-Gamma-Algorithms", gamma_formulas, {}, "", false},
    {9, "brent", 'B', euler, "Euler's Constant", "Gamma", "Menu-Brent-Algorithms", gamma_formulas, {}, "", false},
    {10, "custom", 'R', "Custom", "Custom Formula", "Custom", "Menu-Custom-Algorithms", custom_formula, {}, "", false},
}};

} // namespace

const ConstantTraits& constant_traits(std::int32_t id) { return rows[static_cast<std::size_t>(id)]; }

} // namespace zvp

#include "radix/remainder_float.h"

#include "app/failure/exceptions.h"
#include "multiply/words/parallel_words.h"
#include "numbers/transforms/product_window.h"

#include <algorithm>

namespace zvp {

void RemainderFloatB::set_inverse_fmul(const ReadyPowers& table, unsigned level, const RemainderFloatB& input,
                                       const MultiplyParameters& pars) {
    constexpr const char* function = "RemainderFloatB::set_inverse_fmul()";
    const ConvertLevel& plan = table.plan.levels[level];
    const PowerTransform& power = table.powers[level];
    const auto P = static_cast<std::int64_t>(plan.p_words);
    const auto zeros = static_cast<std::int64_t>(plan.zero_words);
    // The power moves the input up by its zero words at least: what stands at the top becomes integer and isn't needed.
    const std::int64_t low = std::max(-static_cast<std::int64_t>(input.length), -2 * P);
    const std::int64_t AL = std::max<std::int64_t>(-zeros - low, 0);
    const auto L = static_cast<std::int64_t>(power.L);
    const std::int64_t top_position = L - zeros + power.exp;
    const std::int64_t low_position = low + power.exp;
    if (top_position < 0) throw AlgorithmFailedException(function, "Unexpected: tmag < 0");

    TransformObject object;
    const Transform& transform = plan_product(object, plan, pars.tds);
    const auto capacity_words = static_cast<std::int64_t>(transform.capacity_bits / 32);
    if (capacity_words < P || top_position - low_position + P > 2 * capacity_words)
        throw InvalidParametersException(function, "Truncated Range");

    const ProductWindow window =
        AL == 0 ? ProductWindow{}
                : ProductWindow::params(transform, -P, 0, low_position, static_cast<std::uint64_t>(AL) + power.L);
    std::uint32_t* const fraction = end - P;
    length = plan.p_words;
    if (window.n() == 0) return bp_fill(fraction, plan.p_words, 0, pars);

    const auto start = static_cast<std::size_t>(window.exp + P);
    const std::size_t stop = start + window.n();
    std::byte* const Xa = pars.M;
    std::byte* const M = Xa + transform.transform_bytes;
    DryRun::reach(M + transform.scratch_bytes);
    if (is_dry(fraction)) return;
    transform.mul_rf_xf(pars, M, fraction + start, window.s, window.e, Xa, input.end + low,
                        static_cast<std::size_t>(AL), power.X);
    std::fill(fraction, fraction + start, 0);
    std::fill(fraction + stop, end, 0);
}

} // namespace zvp

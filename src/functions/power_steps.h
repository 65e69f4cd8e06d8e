#pragma once
// What both kinds of powers do between their products.

#include "app/console/number_forms.h"
#include "app/console/status.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "functions/iteration_plan.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Moves low zero words into the exponent, in multiples of 16 so that T stays aligned: they never enter a transform.
inline void trim_low_zeros(BigFloat& T) {
    if (is_dry(T.T)) return;
    std::size_t zeros = 0;
    while (zeros < T.L && T.T[zeros] == 0) ++zeros;
    zeros &= ~std::size_t{15};
    T.T += zeros;
    T.exp += static_cast<std::int64_t>(zeros);
    T.L -= zeros;
    T.hash = shift_words(T.hash, -static_cast<std::int64_t>(zeros));
}

/// Throws ExponentOverflowException if T's exponent has left [-2^61, 2^61).
inline void check_exponent(const char* function, const BigFloat& T) {
    constexpr std::int64_t limit = std::int64_t{1} << 61;
    if (T.exp < -limit || T.exp >= limit) throw ExponentOverflowException(function, T.exp, limit);
}

/// Throws LimitExceededException beyond the plan of a power.
inline void check_power_limits(const char* function, const IterationLimits& plan, std::size_t p, std::uint32_t tds) {
    if (p > plan.p) throw LimitExceededException(function, "Precision", plan.p, p);
    if (tds > plan.tds) throw LimitExceededException(function, "Task Decomposition", plan.tds, tds);
}

/// The power reached so far, on the status line.
class PowerStatus {
public:
    explicit PowerStatus(StatusNode* node_) : node(node_) {}
    ~PowerStatus() { clear(); }
    PowerStatus(const PowerStatus&) = delete;
    PowerStatus& operator=(const PowerStatus&) = delete;

    void show(std::uint64_t power) {
        if (node == nullptr) return;
        clear();
        node->push_cell({'Y', format_number(power, NumberForm::commas)});
        shown = true;
        node->update();
    }

private:
    void clear() {
        if (shown) node->pop_frame({{}, 1});
        shown = false;
    }

    StatusNode* const node;
    bool shown = false;
};

} // namespace zvp

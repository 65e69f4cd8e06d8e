#pragma once
// A product whose check fails is made once more if its operands are still what they were: a fault that passes, of a core or of
// scratch memory, doesn't end the run.

#include "app/console/number_forms.h"
#include "app/console/recovered_errors.h"
#include "app/failure/exceptions.h"

#include <cstddef>
#include <string>

namespace zvp {

/// Whether the words of `operand` are intact, and stay so while `target` is written. Number: BigFloat or ExactFloat.
template <class Number>
bool can_serve_again(const Number& operand, const Number& target, const ParallelContext& ctx) {
    const bool apart = operand.T + operand.L <= target.buffer || target.buffer + target.capacity <= operand.T;
    return apart && operand.matches_hash(ctx);
}

/// Does multiply(). If that throws AlgorithmFailedException or one of its family and both operands can serve again, reports a
/// recovered error and does it a second time; what that throws passes through.
template <class Number, class Multiply>
void multiply_repaired(const char* function, const Number& T, const Number& A, const Number& B,
                       const ParallelContext& ctx, Multiply&& multiply) {
    try {
        return multiply();
    } catch (const AlgorithmFailedException& failure) {
        if (!can_serve_again(A, T, ctx) || !can_serve_again(B, T, ctx)) throw;
        report_recovered_error(std::string(function) + ": a product of " + format_number(A.L, NumberForm::commas)
                               + " x " + format_number(B.L, NumberForm::commas)
                               + " words was made again: " + failure.message);
    }
    multiply();
}

} // namespace zvp

#include "series/plans/series_finish.h"

#include "app/failure/exceptions.h"
#include "parallel/memory/carving.h"

#include <algorithm>

namespace zvp::BinarySplitting {
namespace {

int checked_power(const char* owner, int power) {
    if (power != 1 && power != -1) throw InvalidParametersException(owner, "Power must be 1 or -1.");
    return power;
}

std::uint32_t magnitude(std::int32_t c) {
    return c < 0 ? 0 - static_cast<std::uint32_t>(c) : static_cast<std::uint32_t>(c);
}

BigFloat spawn_number(AlignedBufferC<64>& memory, std::size_t words) {
    const LinearWordBuffer storage = memory.spawn_words(words);
    return {storage.pointer, storage.words};
}

} // namespace

// p + 2 words that a cut leaves, and one for the carry of each of two products and a sum.
SeriesFinish::SeriesFinish(const char* owner, int power_, const SumCoefficients& coefficients_, std::size_t precision,
                           std::uint32_t tasks)
    : power(checked_power(owner, power_)),
      coefficients(coefficients_),
      division(precision, tasks),
      number_words(padded_words(precision + 5)),
      result_words(padded_words(std::max(precision + 5, division.result_words))),
      memory_bytes(
          number_words * sizeof(wtype)
          + std::max<std::uint64_t>(number_words * sizeof(wtype), padded_words(division.buffer_words) * sizeof(wtype)
                                                                      + padded_bytes(division.memory_bytes))) {}

/// The numerator of c1 P/Q + c2 over Q, in Q's terms; Q stays. What is taken from `memory` holds it.
BigFloat SeriesFinish::numerator(const ParallelContext& ctx, bool P_is_out, BigFloat P, BigFloat& Q,
                                 AlignedBufferC<64>& memory) const {
    const std::size_t p = division.p;
    const std::uint32_t u = magnitude(coefficients.c1), v = magnitude(coefficients.c2);
    BigFloat N = spawn_number(memory, number_words);
    if (coefficients.c1 < 0) P.sign = !P.sign;
    if (u == v) {
        coefficients.c2 >= 0 ? N.set_add(p, ctx, P, Q) : N.set_sub(p, ctx, P, Q);
        N.mul_uW(ctx, u);
        return N;
    }
    P.mul_uW(ctx, u);
    if (v == 0) {
        if (!P_is_out) return P;
        N.set_BigFloat(p, ctx, P);
        return N;
    }
    AlignedBufferC<64> rest = memory; // is free again once the sum stands
    BigFloat X = spawn_number(rest, number_words);
    X.set_mul_uW(p, ctx, Q, v);
    if (coefficients.c2 < 0) X.sign = !X.sign;
    N.set_add(p, ctx, P, X);
    return N;
}

void SeriesFinish::run(const MultiplyParameters& caller, const RunReport& report, BigFloat& out, BigFloat P, BigFloat Q,
                       AlignedBufferC<64> memory) const {
    BigFloat N = numerator(caller, P.buffer == out.buffer, P, Q, memory);
    Q.mul_uW(caller, coefficients.c3);
    report.log(Division_BigFloatR::heading);
    MultiplyParameters pars = caller;
    const LinearWordBuffer buffer = memory.spawn_words(padded_words(division.buffer_words));
    pars.M = memory.pointer;
    pars.ML = memory.bytes;
    power == 1 ? division.run_task(pars, report.sink, out, N, Q, buffer)
               : division.run_task(pars, report.sink, out, Q, N, buffer);
}

} // namespace zvp::BinarySplitting

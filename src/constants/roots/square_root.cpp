#include "constants/roots/square_root.h"

#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "parallel/memory/carving.h"

#include <string>

namespace zvp {
namespace {

std::size_t result_size(const InvsqrtWord_BigFloatR& root) { return (root.result_words + 16) & ~std::size_t{15}; }

std::uint64_t memory_size(const InvsqrtWord_BigFloatR& root) {
    return padded_words(root.buffer_words) * sizeof(wtype) + padded_bytes(root.memory_bytes);
}

/// T = 1/sqrt(x): the words of the iteration lie at the front of `memory`, the scratch of its products behind them.
void invert_root(const InvsqrtWord_BigFloatR& root, MultiplyParameters pars, const RunReport& report, BigFloat& T,
                 wtype x, AlignedBufferC<64> memory) {
    report.log("InvSqrt(" + std::to_string(x) + ")");
    const LinearWordBuffer buffer = memory.spawn_words(padded_words(root.buffer_words));
    pars.M = memory.pointer;
    pars.ML = memory.bytes;
    root.run_task(pars, report.sink, T, x, root.p, buffer);
}

int checked_power(int power) {
    if (power != 1 && power != -1)
        throw InvalidParametersException("GoldenRatio_Newton_BigFloatR()", "Power must be 1 or -1.");
    return power;
}

/// x - 1 for x = sqrt(5), whose integer part is a word.
void subtract_one(BigFloat& x) {
    if (!is_dry(x.T)) --x.T[-x.exp];
    x.hash = subtract_mod(x.hash, pow_word(-x.exp));
}

/// x / 2 without a shift of words: a product by W/2 that begins a word lower. The word above takes the carry.
void halve(BigFloat& x, const ParallelContext& ctx) {
    x.mul_uW(ctx, wtype{1} << (BigFloat::w - 1));
    --x.exp;
}

} // namespace

Sqrt_Newton_BigFloatR::Sqrt_Newton_BigFloatR(wtype n_, std::size_t precision_words, std::uint32_t tasks)
    : n(n_), root(precision_words, tasks), result_words(result_size(root)), memory_bytes(memory_size(root)) {}

void Sqrt_Newton_BigFloatR::run(const MultiplyParameters& pars, const RunReport& report, BigFloat& T,
                                AlignedBufferC<64> memory) const {
    check_size("Sqrt_Newton_BigFloatR::run()", T.capacity, result_words);
    check_size("Sqrt_Newton_BigFloatR::run()", memory.bytes, memory_bytes);
    invert_root(root, pars, report, T, n, memory);
    const ReportedTask task(report, "Finishing", "Finishing...");
    T.mul_uW(pars, n);
}

GoldenRatio_Newton_BigFloatR::GoldenRatio_Newton_BigFloatR(int power_, std::size_t precision_words, std::uint32_t tasks)
    : power(checked_power(power_)),
      root(precision_words, tasks),
      result_words(result_size(root)),
      memory_bytes(memory_size(root)) {}

void GoldenRatio_Newton_BigFloatR::run(const MultiplyParameters& pars, const RunReport& report, BigFloat& T,
                                       AlignedBufferC<64> memory) const {
    check_size("GoldenRatio_Newton_BigFloatR::run()", T.capacity, result_words);
    check_size("GoldenRatio_Newton_BigFloatR::run()", memory.bytes, memory_bytes);
    invert_root(root, pars, report, T, 5, memory);
    const ReportedTask task(report, "Finishing", "Finishing...");
    T.mul_uW(pars, 5);
    power == 1 ? T.add_ip(1, 0) : subtract_one(T);
    halve(T, pars);
}

} // namespace zvp

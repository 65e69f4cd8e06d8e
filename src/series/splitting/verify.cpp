#include "series/splitting/verify.h"

#include "app/console/watching.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/words/parallel_words.h"

#include <algorithm>
#include <vector>

namespace zvp::BinarySplitting {
namespace {

constexpr std::size_t max_numbers = 4;

/// How far a number's words are from its residue.
std::uint64_t difference_of(const ExactNumber& number, const ParallelContext& ctx) {
    return fold_hash(fold_hash(number.hash) + hash_modulus - number.residue(ctx));
}

std::uint64_t difference_of(const BigFloat& number, const ParallelContext& ctx) {
    return number.watched ? subtract_mod(number.hash, bp_hash(0, number.T, number.L, ctx)) : 0;
}

/// Each task compares one number with its residue.
template <class Number>
class Comparison final : public BasicAction {
public:
    Comparison(std::span<const Number> numbers_, const ParallelContext& ctx_) : numbers(numbers_), ctx(ctx_) {}

    void run(std::uint32_t index) override { differences[index] = difference_of(numbers[index], ctx); }

    std::uint64_t differences[max_numbers] = {};

private:
    std::span<const Number> numbers;
    ParallelContext ctx;
};

bool is_zero(std::uint64_t difference) { return normalize_hash(difference) == 0; }

template <class Number>
void verify(std::uint64_t a, std::uint64_t b, std::span<const Number> numbers, const ParallelContext& ctx) {
    constexpr std::size_t parallel_words = 10'000; // of the first number
    const auto n = static_cast<std::uint32_t>(numbers.size());
    if (!arithmetic_is_watched || (n > 0 && is_dry(numbers[0].buffer))) return;
    if (n == 0 || n > max_numbers)
        throw InvalidParametersException("zvc_Verify_BSR()", "One to four numbers are expected.");
    ParallelContext each = ctx;
    each.tds = (std::max(ctx.tds, 1U) + n - 1) / n;
    if (each.tds < 2) each.framework = nullptr;

    Comparison<Number> comparison(numbers, each);
    if (numbers[0].L >= parallel_words && ctx.framework != nullptr)
        ctx.framework->run_in_parallel(comparison, 0, n);
    else
        for (std::uint32_t i = 0; i < n; ++i) comparison.run(i);

    const std::span differences(comparison.differences, n);
    if (!std::all_of(differences.begin(), differences.end(), is_zero))
        throw BSRModularCheckFailedException("zvc_Verify_BSR()", "Modular Redundancy Check Failed", a, b,
                                             {differences.begin(), differences.end()});
}

} // namespace

void zvc_Verify_BSR(std::uint64_t a, std::uint64_t b, std::span<const ExactNumber> numbers,
                    const ParallelContext& ctx) {
    verify(a, b, numbers, ctx);
}

void zvc_Verify_BSR(std::uint64_t a, std::uint64_t b, std::span<const BigFloat> numbers, const ParallelContext& ctx) {
    verify(a, b, numbers, ctx);
}

} // namespace zvp::BinarySplitting

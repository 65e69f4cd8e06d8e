#include "series/splitting/verify.h"

#include "app/failure/exceptions.h"
#include "app/console/watching.h"
#include "digits/hash/hash_field.h"

#include <algorithm>
#include <vector>

namespace zvp::BinarySplitting {
namespace {

constexpr std::size_t max_numbers = 4;

/// Each task compares one number with its residue.
class Comparison final : public BasicAction {
public:
    Comparison(std::span<const ExactNumber> numbers_, const ParallelContext& ctx_) : numbers(numbers_), ctx(ctx_) {}

    void run(std::uint32_t index) override {
        const ExactNumber& number = numbers[index];
        differences[index] = fold_hash(fold_hash(number.hash) + hash_modulus - number.residue(ctx));
    }

    std::uint64_t differences[max_numbers] = {};

private:
    std::span<const ExactNumber> numbers;
    ParallelContext ctx;
};

bool is_zero(std::uint64_t difference) { return normalize_hash(difference) == 0; }

} // namespace

void zvc_Verify_BSR(std::uint64_t a, std::uint64_t b, std::span<const ExactNumber> numbers,
                    const ParallelContext& ctx) {
    constexpr std::size_t parallel_words = 10'000; // of the first number
    const auto n = static_cast<std::uint32_t>(numbers.size());
    if (!arithmetic_is_watched || (n > 0 && is_dry(numbers[0].buffer))) return;
    if (n == 0 || n > max_numbers)
        throw InvalidParametersException("zvc_Verify_BSR()", "One to four numbers are expected.");
    ParallelContext each = ctx;
    each.tds = (std::max(ctx.tds, 1U) + n - 1) / n;
    if (each.tds < 2) each.framework = nullptr;

    Comparison comparison(numbers, each);
    if (numbers[0].L >= parallel_words && ctx.framework != nullptr)
        ctx.framework->run_in_parallel(comparison, 0, n);
    else
        for (std::uint32_t i = 0; i < n; ++i) comparison.run(i);

    const std::span differences(comparison.differences, n);
    if (!std::all_of(differences.begin(), differences.end(), is_zero))
        throw BSRModularCheckFailedException("zvc_Verify_BSR()", "Modular Redundancy Check Failed", a, b,
                                             {differences.begin(), differences.end()});
}

} // namespace zvp::BinarySplitting

#include "series/plans/psr_block.h"

#include "app/console/number_forms.h"
#include "functions/iteration_plan.h"
#include "parallel/memory/carving.h"
#include "series/splitting/verify.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace zvp::BinarySplitting {
namespace {

constexpr const char* function = "PSR_BlockB::run()";

/// Sizes of ranges are estimates with a word or two to spare; this is beyond what any could be short of.
constexpr std::size_t size_slack = 32;

/// The decimal digits of a number of so many words.
std::uint64_t digits_of(std::size_t words) {
    return static_cast<std::uint64_t>(static_cast<double>(words) * BigFloat::w * std::log10(2.0));
}

} // namespace

// The memory: the numbers that a fold uses, then the others and the recursion's scratch; the fold's scratch takes the place
// of these.
template <class Family>
PSR_BlockB<Family>::PSR_BlockB(const Series& series, std::uint64_t a, std::uint64_t b, std::uint32_t tasks,
                               std::uint32_t depth, bool is_last)
    : prec_a(series.precision_words(a)),
      prec_b(series.precision_words(b)),
      block(series, a, b, prec_a, tasks, 1, depth, is_last),
      precision{prec_a, prec_b, std::min(prec_a + BigFloat::extra_precision, block.size_words + size_slack)} {
    std::uint64_t kept = 0, others = 0;
    for (std::size_t i = 0; i < Family::numbers; ++i) {
        number_words[i] = i < Family::results ? block.plan.number_words : block.plan.scratch_number_words;
        if (!is_last) number_words[i] = std::max(number_words[i], padded_words(Fold::number_words(i, precision)));
        (i < Fold::kept ? kept : others) += number_words[i] * sizeof(wtype);
    }
    const std::uint64_t folding = is_last ? 0 : product_memory(Fold::longest_product(precision), tasks);
    memory_bytes = kept + std::max<std::uint64_t>(others + padded_bytes(block.plan.scratch_bytes), folding);
}

template <class Family>
void PSR_BlockB<Family>::ensure_tables(MultiplyTables& tables) const {
    block.ensure_tables(tables);
    if (!block.is_last) ensure_product_tables(tables, Fold::longest_product(precision));
}

/// The block's numbers, checked where they are exact.
template <class Family>
void PSR_BlockB<Family>::sum(const MultiplyParameters& pars, StatusNode* status, Numbers& numbers) const {
    const std::size_t first = block.is_last ? Fold::first_checked : 0;
    const std::size_t end = block.is_last ? Fold::last_checked_end : Family::results;
    if (is_aggressive()) {
        block.run(pars, status, numbers);
        return zvc_Verify_BSR(block.a, block.b, std::span<const BigFloat>(numbers).subspan(first, end - first), pars);
    }
    typename BSR_BlockB<Family>::ExactNumbers exact = as_exact_targets(numbers);
    block.run(pars, status, exact);
    zvc_Verify_BSR(block.a, block.b, std::span(exact).subspan(first, end - first), pars);
    numbers = as_floats(exact);
}

template <class Family>
void PSR_BlockB<Family>::run(const MultiplyParameters& caller, StatusNode* status, Running& running,
                             AlignedBufferC<64> memory) const {
    for (const BigFloat& number : running) check_size(function, number.capacity, folded_words(prec_a));
    check_size(function, memory.bytes, memory_bytes);
    Numbers numbers;
    MultiplyParameters pars = caller;
    pars.status = nullptr;
    AlignedBufferC<64> folding;
    for (std::size_t i = 0; i < Family::numbers; ++i) {
        if (i == Fold::kept) folding = memory;
        const LinearWordBuffer storage = memory.spawn_words(number_words[i]);
        numbers[i] = BigFloat(storage.pointer, storage.words);
    }
    if (Fold::kept == Family::numbers) folding = memory;
    pars.M = memory.pointer;
    pars.ML = memory.bytes;
    sum(pars, status, numbers);
    if (block.is_last) return Fold::take(pars, precision, numbers, running);
    if (status != nullptr) {
        status->push_cell({'Y', format_number(digits_of(running[0].L), NumberForm::commas)});
        status->update();
    }
    pars.M = folding.pointer;
    pars.ML = folding.bytes;
    Fold::fold(pars, precision, numbers, running);
}

template class PSR_BlockB<CommonP2B3::Family>;
template class PSR_BlockB<BinaryBBP::Family>;
template class PSR_BlockB<BrentMcMillanAB::Family>;

} // namespace zvp::BinarySplitting

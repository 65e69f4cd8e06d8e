#include "series/plans/psr_sum.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "functions/iteration_plan.h"
#include "parallel/memory/carving.h"
#include "series/double_double/size_units.h"

#include <algorithm>
#include <optional>

namespace zvp::BinarySplitting {
namespace {

template <class Family>
PSR_BlockB<Family> make_block(const typename Family::Series& series, const BlockRange& range, std::uint32_t tasks,
                              std::uint64_t spare_bytes) {
    const bool is_last = range.b == series.N;
    PSR_BlockB<Family> block(series, range.a, range.b, tasks, 0, is_last);
    if (block.is_aggressive() || block.memory_bytes <= spare_bytes) return block;
    PSR_BlockB<Family> deeper(series, range.a, range.b, tasks, 1, is_last);
    return deeper.memory_bytes < block.memory_bytes ? deeper : block;
}

template <class Family>
std::vector<PSR_BlockB<Family>> make_blocks(const typename Family::Series& series, const BlockPlan& plan,
                                            std::uint32_t tasks, std::uint64_t spare_bytes) {
    std::vector<PSR_BlockB<Family>> blocks;
    blocks.reserve(plan.blocks.size());
    for (const BlockRange& range : plan.blocks) blocks.push_back(make_block<Family>(series, range, tasks, spare_bytes));
    return blocks;
}

template <class Family>
std::uint64_t most_bytes(const std::vector<PSR_BlockB<Family>>& blocks) {
    std::uint64_t most = 0;
    for (const auto& block : blocks) most = std::max(most, block.memory_bytes);
    return most;
}

void show_title(double percent, std::size_t index, char letter) {
    set_title(std::string("Series: ") + letter + " ( " + std::to_string(index) + " ) " + format_fixed(percent, 3)
              + "%");
}

/// What the status line tells of the block `index`.
std::vector<StatusCell> block_cells(double percent, std::size_t index, char letter) {
    return {{'G', std::to_string(static_cast<unsigned>(percent)) + "%"},
            {'w', "  " + format_number(index, NumberForm::commas)},
            {'R', std::string(" ") + letter + " "}};
}

} // namespace

std::string sum_heading(const char* heading, const Series& series, std::size_t precision_words) {
    const double words = (series.log_range(0, series.N) * words_per_nat()).hi;
    return heading + format_number(series.N, NumberForm::commas)
           + " terms  (Expansion Factor = " + format_fixed(words / static_cast<double>(precision_words), 3) + ")";
}

template <class Family>
PSR_SumB<Family>::PSR_SumB(const Series& series, std::size_t precision, std::uint32_t tasks, bool halve_plan,
                           std::uint64_t spare_bytes)
    : plan(series, 0, series.N, tasks, halve_plan ? precision / 2 : precision),
      blocks(make_blocks<Family>(series, plan, tasks, spare_bytes)),
      running_words(padded_words(folded_words(series.precision_words(0)))),
      memory_bytes(most_bytes(blocks)) {}

template <class Family>
void PSR_SumB<Family>::run(const MultiplyParameters& pars, StatusNode* status, Running& running,
                           AlignedBufferC<64> memory) const {
    const auto terms = static_cast<double>(plan.b);
    for (std::size_t index = blocks.size(); index-- > 0;) {
        const PSR_BlockB<Family>& block = blocks[index];
        if (status == nullptr) {
            block.run(pars, nullptr, running, memory);
            continue;
        }
        StatusNode& node = status->make_node();
        const StatusScope scope(*status, node);
        const double percent = 100 * (terms - static_cast<double>(block.block.b)) / terms;
        show_title(percent, index, block.letter());
        node.push_cells(block_cells(percent, index, block.letter()));
        node.update();
        block.run(pars, &node, running, memory);
    }
}

template <class Family>
void PSR_SumB<Family>::ensure_tables(MultiplyTables& tables) const {
    for (const auto& block : blocks) block.ensure_tables(tables);
}

template class PSR_SumB<CommonP2B3::Family>;
template class PSR_SumB<BinaryBBP::Family>;
template class PSR_SumB<BrentMcMillanAB::Family>;

} // namespace zvp::BinarySplitting

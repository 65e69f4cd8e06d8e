#include "series/plans/block_plan.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "series/double_double/size_units.h"

#include <algorithm>
#include <bit>

namespace zvp::BinarySplitting {
namespace {

constexpr std::uint64_t bits_per_task = 0xE00001; // one above the longest product of the floating-point transform
constexpr std::uint64_t most_bits = std::uint64_t{1} << 26;

/// The least c in (low, high] from which on `below` doesn't hold; `below` isn't asked for `high`.
template <class Below>
std::uint64_t bisect(std::uint64_t low, std::uint64_t high, Below&& below) {
    while (high - low > 1) {
        const std::uint64_t middle = low + (high - low) / 2;
        (below(middle) ? low : high) = middle;
    }
    return high;
}

void warn_of_size(std::size_t blocks) {
    print_warning("PSR plan has reached a size of " + format_number(blocks, NumberForm::commas));
    print_line("It is not recommended to proceed with such a computation.\n", 'R');
    print_line("If you are seeing this message, it means the series is either too slow or", 'R');
    print_line("there is something wrong with its convergence behavior.", 'R');
    set_color('w');
}

std::vector<BlockRange> cut(const Series& series, std::uint64_t a, std::uint64_t b, const DoubleDouble& least,
                            const DoubleDouble& most) {
    std::vector<BlockRange> blocks;
    while (a < b) {
        std::uint64_t c = equilibrium_index(series, a);
        const DoubleDouble size = series.log_range(a, c);
        if (size < least) c = reach(series, a, least);
        if (size > most) c = reach(series, a, most);
        c = std::min(c, b);
        blocks.push_back({a, c});
        a = c;
        if (blocks.size() == BlockPlan::many_blocks)
            print_warning("Performance Warning: PSR plan has exceeded 10000 blocks.");
    }
    if (blocks.size() >= BlockPlan::many_blocks) warn_of_size(blocks.size());
    return blocks;
}

} // namespace

std::uint64_t equilibrium_index(const Series& series, std::uint64_t a) {
    return bisect(a, series.N, [&](std::uint64_t c) { return series.log_remaining(c) > series.log_range(a, c); });
}

std::uint64_t reach(const Series& series, std::uint64_t a, const DoubleDouble& nats) {
    return bisect(a, series.N, [&](std::uint64_t c) { return series.log_range(a, c) < nats; });
}

DoubleDouble least_block(std::uint32_t tasks) {
    const std::uint64_t parts = std::bit_ceil(2 * std::max<std::uint64_t>(tasks, 1));
    return DoubleDouble::from_integer(std::min(parts * bits_per_task, most_bits)) * ln_2();
}

BlockPlan::BlockPlan(const Series& series, std::uint64_t a_, std::uint64_t b_, std::uint32_t tasks,
                     std::size_t max_words)
    : a(a_),
      b(b_),
      min_block(least_block(tasks)),
      max_block(DoubleDouble::from_integer(max_words) * nats_per_word()),
      blocks(cut(series, a, b, min_block, max_block)) {}

} // namespace zvp::BinarySplitting

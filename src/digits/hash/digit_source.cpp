#include "digits/hash/digit_source.h"

#include "parallel/tasks/parallelization_settings.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace zvp {

namespace {

class CountAction final : public BasicAction {
public:
    CountAction(const DigitCounts& start, DigitSource& source_, std::uint64_t n_, SweepSplit split_)
        : source(source_), n(n_), split(split_), records(split.tasks, DigitCounts(start.radix)) {
        records[0] = start;
    }

    void run(std::uint32_t index) override {
        const std::uint64_t begin = index * split.block, end = std::min(begin + split.block, n);
        DigitCounts record = records[index]; // neighbours in the list share cache lines
        source.process(record, begin, end);
        record.scale_hash(n - end);
        records[index] = record;
    }

    DigitCounts merged() const {
        DigitCounts sum(records[0].radix);
        for (const DigitCounts& record : records) sum.merge(record);
        return sum;
    }

private:
    DigitSource& source;
    const std::uint64_t n;
    const SweepSplit split;
    std::vector<DigitCounts> records;
};

} // namespace

void count_digits(DigitCounts& counts, DigitSource& source, std::uint64_t n, DigitSplit split,
                  const ParallelContext& context) {
    const SweepSplit sweep = split_sweep(n, split.min_digits, context.framework ? context.tds : 1,
                                         std::numeric_limits<std::uint32_t>::max(), split.min_digits, split.unit);
    if (sweep.tasks < 2) return source.process(counts, 0, n);
    CountAction action(counts, source, n, sweep);
    context.framework->run_in_parallel(action, 0, sweep.tasks);
    counts = action.merged();
}

} // namespace zvp

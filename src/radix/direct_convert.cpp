#include "radix/direct_convert.h"

#include "app/console/number_forms.h"
#include "app/console/status.h"
#include "app/failure/exceptions.h"
#include "multiply/words/word_window.h"
#include "parallel/memory/carving.h"
#include "radix/base_case.h"
#include "radix/overlap.h"
#include "radix/remainder_float.h"
#include "series/double_double/size_units.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zvp {

namespace {

constexpr const char* run_name = "DirectConvertB::run()";

/// The storage of a run of the tree from `level` down.
struct TreeNeeds {
    std::uint64_t input_words = 0;
    std::uint64_t scratch_bytes = 0;

    void include(const TreeNeeds& other) {
        input_words = std::max(input_words, other.input_words);
        scratch_bytes = std::max(scratch_bytes, other.scratch_bytes);
    }
};

/// One after the other: the lower input of each level lies below the words that the upper half keeps.
TreeNeeds serial_needs(const ReadyTableB& table, unsigned level) {
    TreeNeeds needs{table.shape.b + 2, 0};
    for (unsigned i = 0; i < level; ++i) {
        const std::uint64_t P = table.levels[i].p_words;
        needs.input_words = std::max(2 * P, P + needs.input_words);
        needs.scratch_bytes = std::max(needs.scratch_bytes, table.product_bytes(i, 1));
    }
    return needs;
}

/// By tasks: each split halves the areas. A lower half may be any shorter tree, with as many tasks. Step by step from the
/// fewest tasks up: `halves` has the needs of each level's tree by half as many tasks.
TreeNeeds tree_needs(const ReadyTableB& table, unsigned level, std::uint32_t tasks) {
    std::vector<std::uint32_t> halvings{tasks};
    while (halvings.back() > 1) halvings.push_back((halvings.back() + 1) / 2);

    std::vector<TreeNeeds> halves;
    for (unsigned i = 0; i <= level; ++i) halves.push_back(serial_needs(table, i));
    for (std::size_t step = halvings.size() - 1; step-- > 0;) {
        std::vector<TreeNeeds> needs(halves);
        for (unsigned i = 2; i <= level; ++i) {
            const TreeNeeds& half = halves[i - 1];
            needs[i] = {2 * std::max(table.levels[i - 1].p_words, half.input_words),
                        std::max(table.product_bytes(i - 1, halvings[step]), 2 * padded_bytes(half.scratch_bytes))};
            needs[i].include(needs[i - 1]);
        }
        halves = std::move(needs);
    }
    return halves[level];
}

/// A node's cells on the status line, for the time of a scope.
class NodeStatus {
public:
    NodeStatus(StatusNode* node_, const char* head, const char* count, std::uint64_t words) : node(node_) {
        if (node == nullptr) return;
        const DoubleDouble nats = DoubleDouble::from_integer(words) * nats_per_word();
        const auto digits = static_cast<std::uint64_t>((nats * digits_per_nat()).hi);
        node->push_cells({{'B', head}, {'G', count}, {'Y', format_number(digits, NumberForm::commas)}});
        node->update();
    }
    ~NodeStatus() {
        if (node != nullptr) node->pop_frame({{}, 3});
    }
    NodeStatus(const NodeStatus&) = delete;
    NodeStatus& operator=(const NodeStatus&) = delete;

private:
    StatusNode* const node;
};

/// The tree of one run.
class Conversion {
public:
    Conversion(const ReadyPowers& powers_, ParallelFramework* framework_, const MultiplyTables* tables_)
        : powers(powers_), table(powers_.plan), framework(framework_), tables(tables_) {}

    /// The next digits' first word behind `out_len` words at out_end downward.
    std::uint32_t convertP(StatusNode* status, unsigned level, std::uint32_t tasks, std::uint32_t* out_end,
                           std::uint64_t out_len, RemainderFloatB input, AlignedBufferC<64> scratch) const;
    std::uint32_t convertL(unsigned level, std::uint32_t* out_end, std::uint64_t out_len, RemainderFloatB input,
                           AlignedBufferC<64> scratch) const;

private:
    class Half;

    unsigned lowered(unsigned level, std::uint64_t out_len) const {
        while (level > 0 && table.shape.b << (level - 1) >= out_len) --level;
        return level;
    }
    void multiply(unsigned level, std::uint32_t tasks, RemainderFloatB& lower, const RemainderFloatB& input,
                  AlignedBufferC<64> scratch) const {
        MultiplyParameters pars;
        pars.tds = tasks;
        pars.framework = framework;
        pars.tables = tables;
        pars.M = scratch.pointer;
        pars.ML = scratch.bytes;
        lower.set_inverse_fmul(powers, level, input, pars);
    }
    /// In a dry run an upper half is walked only beside a lower half of fewer words: one of as many has less room.
    bool walks_upper(const RemainderFloatB& input, std::uint64_t top, std::uint64_t out_len) const {
        return !is_dry(input.end) || out_len - top < top;
    }
    void repair(std::uint32_t* out_end, std::uint64_t top, std::uint32_t actual) const {
        if (is_dry(out_end)) return;
        std::uint32_t* const upper = out_end - top;
        repair_overlap(table.R, upper, top, upper[-1], actual);
    }

    const ReadyPowers& powers;
    const ReadyTableB& table;
    ParallelFramework* const framework;
    const MultiplyTables* const tables;
};

/// A half of a node as a task.
class Conversion::Half final : public BasicAction {
public:
    Half(const Conversion& tree_, unsigned level_, std::uint32_t tasks_, std::uint32_t* out_end_,
         std::uint64_t out_len_, const RemainderFloatB& input_, AlignedBufferC<64> scratch_)
        : tree(tree_),
          level(level_),
          tasks(tasks_),
          out_end(out_end_),
          out_len(out_len_),
          input(input_),
          scratch(scratch_) {}
    void run(std::uint32_t) override {
        overlap = tree.convertP(nullptr, level, tasks, out_end, out_len, input, scratch);
    }

    std::uint32_t overlap = 0;

private:
    const Conversion& tree;
    const unsigned level;
    const std::uint32_t tasks;
    std::uint32_t* const out_end;
    const std::uint64_t out_len;
    const RemainderFloatB input;
    const AlignedBufferC<64> scratch;
};

std::uint32_t Conversion::convertP(StatusNode* status, unsigned level, std::uint32_t tasks, std::uint32_t* out_end,
                                   std::uint64_t out_len, RemainderFloatB input, AlignedBufferC<64> scratch) const {
    level = lowered(level, out_len);
    if (tasks < 2 || level < 2) {
        const NodeStatus shown(status, " -> ", "1 x ", level > 0 ? 2 * table.levels[level - 1].p_words : out_len);
        return convertL(level, out_end, out_len, input, scratch);
    }
    --level;
    const std::uint64_t P = table.levels[level].p_words;
    if (input.capacity < 2 * P) throw BufferTooSmallException("convertP()", input.capacity, 2 * P);
    const WordAreaHalves areas(input.end, input.capacity);
    RemainderFloatB lower{areas.lower_end, 0, areas.lower_words};
    {
        const NodeStatus shown(status, "  - ", "", 2 * P);
        multiply(level, tasks, lower, input, scratch);
    }
    input.capacity = areas.upper_words;
    input.length = std::min(P, input.length);

    const std::uint64_t top = table.shape.b << level;
    const BufferHalves<64> halves(scratch);
    Half upper_half(*this, level, (tasks + 1) / 2, out_end, top, input, halves.first);
    Half lower_half(*this, level, (tasks + 1) / 2, out_end - top, out_len - top, lower, halves.second);
    {
        const NodeStatus shown(status, " -> ", "2 x ", P);
        if (framework != nullptr) {
            framework->run_in_parallel(upper_half, lower_half);
        } else {
            if (walks_upper(input, top, out_len)) upper_half.run(0);
            lower_half.run(0);
        }
    }
    repair(out_end, top, upper_half.overlap);
    return lower_half.overlap;
}

std::uint32_t Conversion::convertL(unsigned level, std::uint32_t* out_end, std::uint64_t out_len, RemainderFloatB input,
                                   AlignedBufferC<64> scratch) const {
    level = lowered(level, out_len);
    if (level == 0) return is_dry(input.end) ? 0 : convert_leaf(table.R, out_end, out_len, input.end, input.length);
    --level;
    const std::uint64_t P = table.levels[level].p_words;
    if (input.capacity < 2 * P) throw BufferTooSmallException("convertL()", input.capacity, 2 * P);
    RemainderFloatB lower{input.end - P, 0, input.capacity - P};
    multiply(level, 1, lower, input, scratch);
    input.length = std::min(P, input.length);

    const std::uint64_t top = table.shape.b << level;
    const std::uint32_t overlap = convertL(level, out_end - top, out_len - top, lower, scratch);
    if (walks_upper(input, top, out_len)) repair(out_end, top, convertL(level, out_end, top, input, scratch));
    return overlap;
}

/// Copies blocks of a number's words.
class WindowCopy final : public BasicAction {
public:
    WindowCopy(std::uint32_t* out_, std::int64_t pos_, std::uint64_t n_, const BigFloat& x_, std::uint32_t tasks_)
        : out(out_), pos(pos_), n(n_), x(x_), tasks(tasks_) {}
    void run(std::uint32_t index) override {
        if (is_dry(out)) return;
        const std::uint64_t begin = n / tasks * index;
        const std::uint64_t end = index + 1 == tasks ? n : begin + n / tasks;
        x.read_window(pos + static_cast<std::int64_t>(begin), end - begin, out + begin);
    }

private:
    std::uint32_t* const out;
    const std::int64_t pos;
    const std::uint64_t n;
    const BigFloat& x;
    const std::uint32_t tasks;
};

} // namespace

DirectConvertB::DirectConvertB(std::uint32_t R, std::uint64_t N_, std::uint32_t tasks_)
    : N(N_), tasks_total(std::max<std::uint32_t>(tasks_, 1)), table(R, N_, tasks_total) {
    const TreeNeeds needs = tree_needs(table, table.shape.levels, table.tasks_top);
    input_words = padded_words(needs.input_words);
    scratch_bytes = padded_bytes(needs.scratch_bytes);
    total_bytes = table.forms_bytes + std::max(input_words * sizeof(std::uint32_t) + scratch_bytes, table.build_bytes);
}

void DirectConvertB::run(const MultiplyParameters& pars, StatusNode* status, std::uint32_t* out_end,
                         std::uint64_t out_len, const BigFloat& x, AlignedBufferC<64> buffer) const {
    if (out_len > N) throw InvalidParametersException(run_name, "Input size is too large for conversion plan.");
    if (pars.tds > tasks_total)
        throw InvalidParametersException(run_name, "Attempted to run with a larger tds than the plan supports.");
    if (buffer.bytes < total_bytes) throw BufferTooSmallException(run_name, buffer.bytes, total_bytes);
    if (out_len == 0) return;
    table.check_tables(pars, buffer.pointer);
    AlignedBufferC<64> forms = buffer.spawn(table.forms_bytes);
    const ReadyPowers powers(table, pars, status, forms, buffer);

    const LinearWordBuffer area = buffer.spawn_words(input_words);
    const std::uint64_t behind_point = x.L > 0 && x.exp < 0 ? 0 - static_cast<std::uint64_t>(x.exp) : 0;
    RemainderFloatB input{area.pointer + area.words, std::min<std::uint64_t>(area.words, behind_point), area.words};
    WindowCopy copy(input.end - input.length, -static_cast<std::int64_t>(input.length), input.length, x,
                    std::max<std::uint32_t>(pars.tds, 1));
    if (pars.framework != nullptr && pars.tds > 1)
        pars.framework->run_in_parallel(copy, 0, pars.tds);
    else
        for (std::uint32_t i = 0; i < std::max<std::uint32_t>(pars.tds, 1); ++i) copy.run(i);

    const Conversion tree(powers, pars.framework, pars.tables);
    const std::uint32_t tasks = std::min(std::max<std::uint32_t>(pars.tds, 1), table.tasks_top);
    if (status != nullptr) status->push_cell({'w', "Converting...  "});
    tree.convertP(status, table.shape.levels, tasks, out_end, out_len, input, buffer);
    if (status != nullptr) status->pop_frame({{}, 1});
}

} // namespace zvp

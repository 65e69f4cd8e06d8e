// Included by one source for each family.

#include "app/console/number_forms.h"
#include "app/console/status.h"
#include "app/failure/exceptions.h"
#include "series/splitting/block.h"
#include "series/splitting/recursion.h"

#include <algorithm>
#include <type_traits>

namespace zvp::BinarySplitting {
namespace {

template <class Number>
constexpr bool is_truncated = std::is_same_v<Number, BigFloat>;

template <class Family>
std::size_t limit_behind(const typename Family::Series& series, std::uint64_t m) {
    return std::min(series.precision_words(m), max_limit);
}

/// Does `run` on exact views of the node's storage, and views the results as truncated numbers.
template <class Family, class Run>
void run_exact(Node<Family, BigFloat>& node, const Run& run) {
    Node<Family, ExactNumber> exact{as_exact_targets(node.numbers), node.a, node.b, node.is_last};
    run(exact);
    node.numbers = as_floats(exact.numbers);
}

template <class Family>
void merge_halves(const MultiplyParameters& pars, Node<Family, ExactNumber>& left, Node<Family, ExactNumber>& right,
                  Node<Family, ExactNumber>& node, std::size_t) {
    merge<Family>(pars, left.numbers, right.numbers, node.numbers, node.is_last);
}

template <class Family>
void merge_halves(const MultiplyParameters& pars, Node<Family, BigFloat>& left, Node<Family, BigFloat>& right,
                  Node<Family, BigFloat>& node, std::size_t limit) {
    merge<Family>(pars, limit, left.numbers, right.numbers, node.numbers, node.is_last);
}

/// The lower and the upper half of a number's storage.
template <class Number>
Number low_half(const Number& A) {
    return Number(A.buffer, A.capacity / 2 / number_alignment * number_alignment);
}

template <class Number>
Number high_half(const Number& A) {
    const std::size_t low = low_half(A).capacity;
    return Number(A.buffer + low, A.capacity - low);
}

/// What is left of the storage behind a left half's number.
template <class Number>
Number storage_behind(const Number& storage, const Number& left) {
    const std::size_t used = static_cast<std::size_t>(left.T - storage.buffer)
                             + (left.L + number_alignment - 1) / number_alignment * number_alignment;
    if (used > storage.capacity) throw BufferTooSmallException("BSR_BlockT::run()", storage.capacity, used);
    return Number(storage.buffer + used, storage.capacity - used);
}

// Dry runs. A part of the recursion is walked where it meets the least room: the right half on the serial level, whose
// storage lies behind the left half's results, and a left half elsewhere, which has the terms and tasks of its sibling or
// more, and no more storage. Its sibling's results are taken as long as a range's may be.

template <class Family, class Number>
bool is_dry_node(const Node<Family, Number>& node) {
    return is_dry(node.numbers[0].buffer);
}

/// The words that a result of the node may have; in the truncated kind at precision `limit`.
template <class Family, class Number>
std::size_t most_words(const Job<Family>& job, const Node<Family, Number>& node, std::size_t limit) {
    const std::size_t size = job.series.size_words(node.a, node.b);
    return is_truncated<Number> ? std::min(size, limit + BigFloat::extra_precision) : size;
}

/// Results of the node without walking it.
template <class Family, class Number>
void set_dry_results(const Job<Family>& job, Node<Family, Number>& node, std::size_t limit) {
    const std::size_t words = most_words(job, node, limit);
    for (std::size_t i = 0; i < Family::results; ++i) {
        Number& number = node.numbers[i];
        if (number.capacity < words) throw BufferTooSmallException("BSR_BlockT::run()", number.capacity, words);
        number.T = number.buffer;
        number.L = words;
        number.exp = 0;
        number.sign = true;
    }
}

/// Results that a merge has made are no longer than the series says.
template <class Family, class Number>
void cut_dry_results(const Job<Family>& job, Node<Family, Number>& node, std::size_t limit) {
    if (!is_dry_node(node)) return;
    const std::size_t words = most_words(job, node, limit);
    for (std::size_t i = 0; i < Family::results; ++i) node.numbers[i].L = std::min(node.numbers[i].L, words);
}

// The serial level.

template <class Family, class Number>
void run_serial(const Job<Family>& job, const MultiplyParameters& pars, Node<Family, Number>& node, std::size_t limit) {
    const auto& series = job.series;
    const std::uint64_t a = node.a, b = node.b, terms = b - a;
    if constexpr (is_truncated<Number>) {
        const bool is_short = terms < std::max(series.leaf_terms, Family::exact_terms) || terms < 2;
        if (is_short || (terms > plain_split_terms && series.size_words(a, b) <= limit))
            return run_exact<Family>(node, [&](Node<Family, ExactNumber>& exact) { run_serial(job, pars, exact, 0); });
    } else if (terms < series.leaf_terms || terms < 2) {
        if (is_dry_node(node)) return set_dry_results(job, node, 0);
        return leaf<Family>(series, pars, node.numbers, a, b);
    }

    const std::uint64_t m = split<Family>(series, a, b);
    Node<Family, Number> left{node.numbers, a, m, false};
    is_dry_node(node) ? set_dry_results(job, left, limit) : run_serial(job, pars, left, limit);
    Node<Family, Number> right{node.numbers, m, b, node.is_last};
    for (std::size_t i = 0; i < Family::results; ++i)
        right.numbers[i] = storage_behind(node.numbers[i], left.numbers[i]);
    run_serial(job, pars, right, is_truncated<Number> ? limit_behind<Family>(series, m) : 0);
    merge_halves(pars, left, right, node, limit);
    cut_dry_results(job, node, limit);
}

// The parallel level.

template <class Family, class Number>
void run_parallel(const Job<Family>& job, const MultiplyParameters& pars, Node<Family, Number>& node,
                  std::size_t limit);

/// One half of a node.
template <class Family, class Number>
class Half final : public BasicAction {
public:
    Half(const Job<Family>& job_, const MultiplyParameters& pars_, std::uint32_t tasks, std::byte* M, std::size_t ML,
         std::uint64_t a, std::uint64_t b, bool is_last, std::size_t limit_)
        : node{{}, a, b, is_last}, job(job_), pars(pars_), limit(limit_) {
        pars.tds = tasks;
        pars.M = M;
        pars.ML = ML;
    }

    void run(std::uint32_t) override { run_parallel(job, pars, node, limit); }
    void set_dry() { set_dry_results(job, node, limit); }

    Node<Family, Number> node;

private:
    const Job<Family>& job;
    MultiplyParameters pars;
    std::size_t limit;
};

template <class Family, class Number>
void run_halves(const Job<Family>& job, const MultiplyParameters& pars, Node<Family, Number>& node, std::size_t limit) {
    constexpr std::size_t scratch_alignment = 64;
    const std::uint64_t m = split<Family>(job.series, node.a, node.b);
    const std::size_t limit_right = is_truncated<Number> ? limit_behind<Family>(job.series, m) : 0;
    const std::uint32_t fewer = pars.tds / 2;
    const std::size_t ML = pars.ML / 2 / scratch_alignment * scratch_alignment;
    Half<Family, Number> left(job, pars, pars.tds - fewer, pars.M, ML, node.a, m, false, limit);
    Half<Family, Number> right(job, pars, fewer, pars.M + ML, ML, m, node.b, node.is_last, limit_right);
    std::transform(node.numbers.begin(), node.numbers.end(), left.node.numbers.begin(), low_half<Number>);
    std::transform(node.numbers.begin(), node.numbers.end(), right.node.numbers.begin(), high_half<Number>);
    if (pars.framework != nullptr) {
        pars.framework->run_in_parallel(left, right);
    } else {
        left.run(0);
        is_dry_node(node) ? right.set_dry() : right.run(0);
    }
    MultiplyParameters merging = pars;
    merging.tds = std::min(pars.tds, job.tds);
    merge_halves(merging, left.node, right.node, node, limit);
    cut_dry_results(job, node, limit);
}

template <class Family, class Number>
void run_parallel(const Job<Family>& job, const MultiplyParameters& pars, Node<Family, Number>& node,
                  std::size_t limit) {
    if (pars.tds < 2 || node.b - node.a < min_parallel_terms) {
        MultiplyParameters serial = pars;
        serial.tds = 1;
        return run_serial(job, serial, node, limit);
    }
    if constexpr (is_truncated<Number>)
        if (job.series.size_words(node.a, node.b) <= limit)
            return run_exact<Family>(node,
                                     [&](Node<Family, ExactNumber>& exact) { run_parallel(job, pars, exact, 0); });
    run_halves(job, pars, node, limit);
}

// The tree.

/// A cell of the status line while a part of the tree runs, and the node for what is below.
class TreeStatus {
public:
    TreeStatus(StatusNode* parent_, char color, const char* text) : parent(parent_) {
        if (parent) child = &parent->make_node({color, text});
    }
    ~TreeStatus() {
        if (child) parent->pop_frame({{child}, 0});
    }
    TreeStatus(const TreeStatus&) = delete;
    TreeStatus& operator=(const TreeStatus&) = delete;

    void show_digits(std::uint64_t digits) {
        if (!child) return;
        child->push_cell({'Y', format_number(digits, NumberForm::commas)});
        child->update();
    }

    StatusNode* node() const { return child; }

private:
    StatusNode* parent;
    StatusNode* child = nullptr;
};

std::uint64_t digits_of(std::size_t words) {
    constexpr double digits_per_word = 9.632959861247398; // 32 log10 2
    return static_cast<std::uint64_t>(static_cast<double>(words) * digits_per_word);
}

/// Below the tree: as many tasks as the leaves get.
template <class Family, class Number>
void run_bottom(const Job<Family>& job, const MultiplyParameters& pars, StatusNode* status, Node<Family, Number>& node,
                std::size_t limit) {
    TreeStatus arrow(status, 'B', " -> ");
    arrow.show_digits(job.series.size_digits(node.a, node.b));
    for (std::size_t i = 0; i < Family::results; ++i)
        if (node.numbers[i].capacity < job.bottom_words)
            throw BufferTooSmallException("BSR_BlockT::run()", node.numbers[i].capacity, job.bottom_words);
    MultiplyParameters below = pars;
    below.status = nullptr;
    below.tds = pars.tds < 2 ? 1 : std::max(pars.tds, job.leaf_tasks);
    run_parallel(job, below, node, limit);
}

} // namespace

template <class Family, class Number>
void run_tree(const Job<Family>& job, const MultiplyParameters& pars, StatusNode* status, Node<Family, Number>& node,
              std::uint32_t depth, std::size_t limit) {
    if (depth == 0 || node.b - node.a < min_parallel_terms) return run_bottom(job, pars, status, node, limit);
    if constexpr (is_truncated<Number>)
        if (job.series.size_words(node.a, node.b) <= limit)
            return run_exact<Family>(
                node, [&](Node<Family, ExactNumber>& exact) { run_tree(job, pars, status, exact, depth, 0); });

    const std::uint64_t m = split<Family>(job.series, node.a, node.b);
    Node<Family, Number> left{node.numbers, node.a, m, false}, right{node.numbers, m, node.b, node.is_last};
    for (std::size_t i = 0; i < Family::results; ++i) {
        left.numbers[i] = low_half(node.numbers[i]);
        right.numbers[i] = high_half(node.numbers[i]);
    }
    {
        TreeStatus zero(status, 'G', "0");
        run_tree(job, pars, zero.node(), left, depth - 1, limit);
    }
    {
        TreeStatus one(status, 'G', "1");
        const std::size_t limit_right = is_truncated<Number> ? limit_behind<Family>(job.series, m) : 0;
        if (is_dry_node(node))
            set_dry_results(job, right, limit_right);
        else
            run_tree(job, pars, one.node(), right, depth - 1, limit_right);
    }
    TreeStatus dash(status, 'G', "-  ");
    const Number& last = right.numbers[Family::results - 1];
    dash.show_digits(digits_of(last.L));
    merge_halves(pars, left, right, node, limit);
    cut_dry_results(job, node, limit);
}

} // namespace zvp::BinarySplitting

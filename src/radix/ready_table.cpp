#include "radix/ready_table.h"

#include "app/console/number_forms.h"
#include "app/console/status.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/contract/check_buffers.h"
#include "multiply/tables/algorithm_table.h"
#include "numbers/transforms/exact_float_transform.h"
#include "parallel/memory/carving.h"
#include "series/double_double/double_double.h"
#include "series/double_double/size_units.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace zvp {

namespace {

using ExactNumber = ExactFloat<wtype>;

unsigned split_depth(std::uint32_t tasks_total, unsigned levels) {
    if (levels < 2) return 0;
    const auto wanted = static_cast<unsigned>(std::bit_width(std::max<std::uint32_t>(tasks_total, 1) - 1));
    return std::min(wanted, levels - 2);
}

std::uint32_t top_tasks(std::uint32_t tasks_total, unsigned T) {
    const std::uint64_t most = std::uint64_t{1} << T;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(std::max<std::uint32_t>(tasks_total, 1), most));
}

std::size_t strip_low_zeros(ExactNumber& A) {
    std::size_t zeros = 0;
    while (zeros < A.L && A.T[zeros] == 0) ++zeros;
    A.T += zeros;
    A.L -= zeros;
    A.exp += static_cast<std::int64_t>(zeros);
    return zeros;
}

/// In a dry run: as long as the power of `level` may be, without its zero words.
void set_dry_power(ExactNumber& A, const ReadyTableB& table, unsigned level) {
    const ConvertLevel& plan = table.levels[level];
    A.T = A.buffer;
    A.L = radix_words(table.R, table.shape.b << level) + 1 - plan.zero_words;
    A.exp = static_cast<std::int64_t>(plan.zero_words);
    A.sign = true;
    A.hash = 0;
}

/// R^n for a few words, by word multiplies; the residue doesn't come from the words.
void set_small_power(ExactNumber& A, std::uint32_t R, std::uint64_t n) {
    A.T = A.buffer;
    A.T[0] = 1;
    A.L = 1;
    for (std::uint64_t i = 0; i < n; ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < A.L; ++j) {
            carry += std::uint64_t{A.T[j]} * R;
            A.T[j] = static_cast<wtype>(carry);
            carry >>= 32;
        }
        if (carry != 0) A.T[A.L++] = static_cast<wtype>(carry);
    }
    A.sign = true;
    A.exp = 0;
    A.hash = pow_mod(R, n);
    strip_low_zeros(A);
}

void show_size(StatusNode* status, std::uint64_t words) {
    if (status == nullptr) return;
    const DoubleDouble nats = DoubleDouble::from_integer(words) * nats_per_word();
    const auto digits = static_cast<std::uint64_t>((nats * digits_per_nat()).hi);
    status->push_cells({{'w', "Squaring...    "}, {'Y', format_number(digits, NumberForm::commas)}});
    status->update();
    status->pop_frame({{}, 2});
}

} // namespace

const Transform& plan_product(TransformObject& object, const ConvertLevel& level, std::uint32_t tasks) {
    return algorithm_table<wtype>().get_algorithm(level.mul_words).params(object, level.mul_words, tasks);
}

ConvertShape::ConvertShape(std::uint64_t N) : b(N) {
    for (; b >= 32; b = (b + 1) >> 1) ++levels;
}

std::uint64_t radix_words(std::uint32_t R, std::uint64_t n) {
    if (std::has_single_bit(R)) {
        const auto bits = static_cast<unsigned>(std::countr_zero(R));
        return n / 32 * bits + n % 32 * bits / 32; // R < 2^32: nothing overflows
    }
    const DoubleDouble words = log(DoubleDouble(R)) * words_per_nat() * DoubleDouble::from_integer(n);
    const double whole = std::floor(words.hi);
    return static_cast<std::uint64_t>(whole)
           + static_cast<std::uint64_t>(static_cast<std::int64_t>(std::floor(words.hi - whole + words.lo)));
}

ReadyTableB::ReadyTableB(std::uint32_t R_, std::uint64_t N, std::uint32_t tasks_total)
    : R(R_),
      shape(N),
      t(static_cast<unsigned>(std::countr_zero(R_))),
      T(split_depth(tasks_total, shape.levels)),
      tasks_top(top_tasks(tasks_total, T)) {
    if (R < 2) throw InvalidParametersException("ReadyTableB::ReadyTableB()", "Invalid radix.");
    std::uint32_t tasks = 1;
    unsigned depth = 0;
    std::uint64_t product = 0;
    for (unsigned i = 0; i < shape.levels; ++i) {
        if (i >= shape.levels - T) {
            tasks = std::min(2 * tasks, tasks_top);
            ++depth;
        }
        ConvertLevel& level = levels[i];
        const std::uint64_t digits = shape.b << i;
        level.zero_words = (t * digits) >> 5;
        level.p_words = radix_words(R, digits) + 4;
        level.mul_words = 2 * level.p_words - level.zero_words;
        level.tasks = tasks;
        level.task_log = depth;
        TransformObject object;
        level.scratch_bytes = plan_product(object, level, tasks).scratch_bytes;
        level.transform_bytes = object->transform_bytes;
        forms_bytes += level.transform_bytes;
        product = std::max(product, level.transform_bytes + plan_product(object, level, tasks_total).scratch_bytes);
    }
    if (shape.levels > 0) build_bytes = product + power_words(shape.levels - 1) * sizeof(wtype);
    if (shape.levels > 1) build_bytes += power_words(shape.levels - 2) * sizeof(wtype);
}

std::uint64_t ReadyTableB::power_words(unsigned level) const {
    // The base power starts with its zero words, at most b.
    return padded_words(levels[level].p_words - levels[level].zero_words + shape.b);
}

std::uint64_t ReadyTableB::product_bytes(unsigned level, std::uint32_t tasks) const {
    TransformObject object;
    const Transform& transform = plan_product(object, levels[level], tasks);
    return transform.transform_bytes + transform.scratch_bytes;
}

void ReadyTableB::ensure_tables(MultiplyTables& tables) const {
    if (shape.levels > 0) algorithm_table<wtype>().ensure_tables(tables, levels[shape.levels - 1].mul_words);
}

void ReadyTableB::check_tables(const MultiplyParameters& pars, const std::byte* M) const {
    if (shape.levels == 0) return;
    TransformObject object;
    zvp::check_tables("check_buffers()", plan_product(object, levels[shape.levels - 1], pars.tds), pars.tables, M);
}

ReadyPowers::ReadyPowers(const ReadyTableB& plan_, const MultiplyParameters& pars, StatusNode* status,
                         AlignedBufferC<64> table, AlignedBufferC<64> scratch)
    : plan(plan_) {
    if (plan.shape.levels > 0) make_tables(pars, status, table, scratch);
}

void ReadyPowers::place(unsigned level, AlignedBufferC<64>& table) {
    PowerTransform& power = powers[level];
    plan_product(power.transform, plan.levels[level], 1);
    power.X = table.spawn(plan.levels[level].transform_bytes).pointer;
}

void ReadyPowers::make_tables(const MultiplyParameters& pars, StatusNode* status, AlignedBufferC<64> table,
                              AlignedBufferC<64> scratch) {
    const unsigned last = plan.shape.levels - 1;
    const LinearWordBuffer odd = scratch.spawn_words(plan.power_words(last));
    const LinearWordBuffer even = last > 0 ? scratch.spawn_words(plan.power_words(last - 1)) : odd;
    ExactNumber power(odd.pointer, odd.words), other(even.pointer, even.words);
    if (last % 2 != 0) std::swap(power, other);
    const bool dry = is_dry(power.buffer);
    dry ? set_dry_power(power, plan, 0) : set_small_power(power, plan.R, plan.shape.b);

    for (unsigned i = 0; i <= last; ++i) {
        show_size(status, power.L);
        place(i, table);
        PowerTransform& record = powers[i];
        TransformObject object;
        const Transform& transform = plan_product(object, plan.levels[i], pars.tds);
        if (!transform.compatible(*record.transform))
            throw InvalidParametersException("PowerTransform::replace()", "Transforms are incompatible.");
        AlignedBufferC<64> memory = scratch;
        std::byte* const Xd = memory.spawn(transform.transform_bytes).pointer;
        std::byte* const M = memory.spawn(transform.scratch_bytes).pointer;
        ExactFloatTransformR<wtype> form;
        if (i < last) {
            ExactFloatTransformR<wtype>::sqr_rx_xf(pars, transform, M, other, Xd, power, record.X, form);
            dry ? set_dry_power(other, plan, i + 1) : void(strip_low_zeros(other));
        } else {
            if (power.residue(pars) != normalize_hash(power.hash))
                throw AlgorithmFailedException("ReadyTableB::make_tables()", "Checksum Mismatch");
            form.forward(pars, transform, M, power, record.X);
        }
        record.L = form.L;
        record.exp = form.exp;
        filled = i + 1;
        power.T = power.buffer;
        std::swap(power, other);
    }
}

} // namespace zvp

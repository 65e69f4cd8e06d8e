#include "radix/verify_conversion.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/console/status.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "digits/hash/word_hash.h"
#include "multiply/tables/algorithm_table.h"
#include "parallel/memory/carving.h"
#include "radix/ready_table.h"

#include <algorithm>
#include <bit>

namespace zvp {

namespace {

constexpr const char* function = "VerifyB::hash_binary()";

/// |A| modulo 2^61 - 1.
std::uint64_t magnitude_hash(const BigFloat& A, const ParallelContext& ctx) {
    return mul_mod(hash_words_parallel(0, A.T, A.L, ctx.framework, ctx.tds), pow_word(A.exp));
}

/// The top `words` words of A.
BigFloat top_of(BigFloat A, std::uint64_t words) {
    if (A.L > words) {
        const std::size_t cut = A.L - words;
        A.watched = false;
        A.T += cut;
        A.L -= cut;
        A.exp += static_cast<std::int64_t>(cut);
    }
    return A;
}

/// The words behind the point, down to `words` of them.
BigFloat fraction_of(BigFloat x, std::uint64_t words, const ParallelContext& ctx) {
    x.truncate_at(0, ctx);
    const auto lowest = -static_cast<std::int64_t>(words);
    if (x.L > 0 && x.exp < lowest) x = top_of(x, x.top() > lowest ? static_cast<std::uint64_t>(x.top() - lowest) : 0);
    x.sign = true;
    return x;
}

void compare_power(std::uint64_t expected, std::uint64_t actual) {
    if (expected == actual) return;
    print_line("");
    print_line("Radix Conversion: Power Hash Mismatch", 'R');
    print_labelm_line(10, "Expected", format_number(expected), 'R');
    print_labelm_line(10, "Actual  ", format_number(actual), 'R');
    throw AlgorithmFailedException(function, "Power Hash Mismatch");
}

} // namespace

VerifyB::VerifyB(std::uint32_t R_, std::uint64_t n_, std::uint32_t tds_, bool partial_)
    : R(R_),
      n(n_),
      tds(std::max<std::uint32_t>(tds_, 1)),
      partial(partial_),
      t(static_cast<unsigned>(std::countr_zero(R_))),
      power_words(radix_words(R_ >> t, n_) + 4),
      result_words(radix_words(R_, n_) + 2),
      power(power_words, tds) {
    power_storage = padded_words(power.result_words);
    buffer_words = (result_words + BigFloat::extra_precision + 15) & ~std::uint64_t{15};
    // Both factors are cut to two words more than the result has.
    work_bytes =
        std::max(power.memory_bytes, buffer_words * sizeof(wtype) + product_memory(2 * (result_words + 2), tds));
    total_bytes = power_storage * sizeof(wtype) + padded_bytes(work_bytes);
}

void VerifyB::ensure_tables(MultiplyTables& tables) const {
    power.ensure_tables(tables);
    ensure_product_tables(tables, 2 * (result_words + 2));
}

std::uint64_t VerifyB::hash_binary(const MultiplyParameters& pars, StatusNode* status, const BigFloat& x,
                                   std::uint64_t run_n, AlignedBufferC<64> buffer) const {
    if (buffer.bytes < total_bytes) throw BufferTooSmallException(function, buffer.bytes, total_bytes);
    if (run_n > n) throw InvalidParametersException(function, "Too many digits for the plan.");
    const BigFloat fraction = fraction_of(x, result_words + 2, pars);
    if (fraction.L == 0 || run_n == 0) return 0;

    MultiplyParameters inner = pars;
    inner.status = nullptr;
    const LinearWordBuffer storage = buffer.spawn_words(power_storage);
    inner.M = buffer.pointer;
    inner.ML = buffer.bytes;
    BigFloat P(storage.pointer, storage.words);
    const auto shown = [&](const char* label) {
        if (status == nullptr) return;
        status->push_cells({{'w', label}, {'Y', format_bytes(result_words * sizeof(wtype))}});
        status->update();
    };
    shown("Powering...   ");
    power.run(inner, nullptr, P, R, run_n, power_words);
    if (!is_dry(P.T)) compare_power(pow_mod(R, run_n), magnitude_hash(P, pars));
    if (status != nullptr) status->pop_frame({{}, 2});

    shown("Multiplying...    ");
    const LinearWordBuffer product = buffer.spawn_words(buffer_words);
    inner.M = buffer.pointer;
    inner.ML = buffer.bytes;
    BigFloat T(product.pointer, product.words);
    const std::uint64_t kept = result_words + (partial ? 2 : 0);
    T.set_mul(result_words, inner, top_of(fraction, kept), top_of(P, kept));
    if (status != nullptr) status->pop_frame({{}, 2});
    if (T.exp < 0) T = T.top() > 0 ? top_of(T, static_cast<std::uint64_t>(T.top())) : BigFloat();
    return magnitude_hash(T, pars);
}

} // namespace zvp

#pragma once
// The hybrid transform in areas that are exactly as large as it says.

#include "multiply/algorithms/products.h"
#include "multiply/hybrid/hybrid_transform.h"
#include "support/seed.h"

#include <memory>
#include <string>
#include <vector>

namespace test {

using Words = std::vector<std::uint32_t>;

/// The kernel sets of this machine, with roots for all rings of at most `ring_bits`.
class RingTables {
public:
    RingTables(zvp::platform::KernelSet set, std::uint64_t ring_bits) : tables(set) {
        tables.ensure_rings(ring_bits);
        memory = std::make_unique<GuardedArea>(tables.bytes());
        tables.place(memory->data);
    }

    zvp::FftTables tables;

private:
    std::unique_ptr<GuardedArea> memory;
};

inline std::vector<zvp::platform::KernelSet> kernel_sets() {
    std::vector<zvp::platform::KernelSet> sets;
    for (const auto set : zvp::platform::all_kernel_sets)
        if (zvp::platform::kernel_set_supported(set)) sets.push_back(set);
    return sets;
}

inline std::string name_of(const zvp::HybridRow& row) {
    return "k = " + std::to_string(row.k) + ", m = " + std::to_string(row.m);
}

/// How a product is asked for: of two forms in the place of one; in a third area; of raw operands; of a raw one and a form.
enum class Way { forms, kept_forms, raw, raw_and_form };
inline constexpr Way all_ways[]{Way::forms, Way::kept_forms, Way::raw, Way::raw_and_form};

class HybridAreas {
public:
    HybridAreas(zvp::HybridRow row, const zvp::FftTables& tables, zvp::ParallelContext ctx = {})
        : HybridAreas(row, tables, ctx, zvp::ring_kernels(tables.kernel_set())) {}
    HybridAreas(zvp::HybridRow row, const zvp::FftTables& tables, zvp::ParallelContext ctx,
                const zvp::RingKernels& kernels)
        : size(row, ctx.tds),
          capacity(size.capacity_bits / 32),
          a(size.transform_bytes),
          b(size.transform_bytes),
          d(size.transform_bytes),
          M(size.scratch_bytes),
          job{size, kernels, tables, ctx, M.data} {}

    std::uint32_t* xa() { return a.words<std::uint32_t>(); }
    std::uint32_t* xb() { return b.words<std::uint32_t>(); }
    std::uint32_t* xd() { return d.words<std::uint32_t>(); }

    /// Words s .. e - 1 of A * B, or of A^2 without B.
    Words product(Way way, const Words& A, const Words* B, std::size_t s, std::size_t e) {
        GuardedArea T(4 * (e - s));
        auto* const t = T.words<std::uint32_t>();
        B ? multiply(way, A, *B, t, s, e) : square(way, A, t, s, e);
        EXPECT_TRUE(T.intact() && M.intact() && a.intact() && b.intact() && d.intact());
        return T.copy<std::uint32_t>();
    }

    const zvp::HybridSize size;
    const std::size_t capacity; // words
    GuardedArea a, b, d, M;
    const zvp::HybridJob job;

private:
    void multiply(Way way, const Words& A, const Words& B, std::uint32_t* t, std::size_t s, std::size_t e) {
        zvp::hybrid_forward(job, xb(), B.data(), B.size());
        const Words form = b.copy<std::uint32_t>();
        if (way == Way::forms || way == Way::kept_forms) {
            zvp::hybrid_forward(job, xa(), A.data(), A.size());
            const Words other = a.copy<std::uint32_t>();
            zvp::hybrid_product(job, way == Way::forms ? xa() : xd(), xa(), xb(), t, s, e);
            EXPECT_TRUE(way == Way::forms || a.copy<std::uint32_t>() == other) << "A's form is lost";
        } else {
            if (way == Way::raw) std::memset(b.data, 0x5A, size.stride * 4 << size.k);
            const zvp::HybridOperand right{xb(), way == Way::raw ? data(B) : nullptr, B.size()};
            zvp::hybrid_multiply(job, {xa(), data(A), A.size()}, right, t, s, e);
        }
        EXPECT_TRUE(b.copy<std::uint32_t>() == form) << "B's form is lost";
    }

    void square(Way way, const Words& A, std::uint32_t* t, std::size_t s, std::size_t e) {
        if (way == Way::raw || way == Way::raw_and_form)
            return zvp::hybrid_multiply(job, {xa(), data(A), A.size()}, {xa(), nullptr, 0}, t, s, e);
        zvp::hybrid_forward(job, xa(), A.data(), A.size());
        zvp::hybrid_product(job, way == Way::forms ? xa() : xd(), xa(), xa(), t, s, e);
    }

    /// Raw words are told from a form by a pointer, also when there are none.
    static const std::uint32_t* data(const Words& A) {
        static constexpr std::uint32_t none = 0;
        return A.empty() ? &none : A.data();
    }
};

} // namespace test

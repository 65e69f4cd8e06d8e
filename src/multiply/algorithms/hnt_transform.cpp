#include "multiply/algorithms/hnt_transform.h"

#include "multiply/contract/multiply_tables.h"
#include "multiply/hybrid/hybrid_transform.h"

#include <cstring>

namespace zvp {

namespace {

HybridJob make_job(const HybridSize& size, const MultiplyParameters& pars, std::byte* M) {
    const FftTables& tables = pars.tables->get<FftTables>();
    return {size, ring_kernels(tables.kernel_set()), tables, pars, M};
}

RingWord* elements(std::byte* X) { return reinterpret_cast<RingWord*>(X); }
const RingWord* elements(const std::byte* X) { return reinterpret_cast<const RingWord*>(X); }

/// Null would tell that X holds a form.
HybridOperand raw(std::byte* X, const c32i* A, std::size_t AL) {
    static constexpr c32i no_words{};
    return {elements(X), AL > 0 ? A : &no_words, AL};
}

/// What hybrid_product() has left at the start of M.
std::uint64_t read_hash(const std::byte* M, std::size_t index) {
    std::uint64_t hash;
    std::memcpy(&hash, M + index * sizeof hash, sizeof hash);
    return hash;
}

} // namespace

HNTTransform::HNTTransform(std::uint64_t bits, std::uint32_t tds) : size(hybrid_row(bits), tds) {
    capacity_bits = size.capacity_bits;
    transform_bytes = size.transform_bytes;
    scratch_bytes = size.scratch_bytes;
    requested_bits = bits;
}

void HNTTransform::forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                           std::size_t AL) const {
    check_capacity(AL);
    hybrid_forward(make_job(size, pars, M), elements(X), A, AL);
}

void HNTTransform::inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c32i* T,
                                std::size_t s, std::size_t e) const {
    check_capacity(e);
    hybrid_product(make_job(size, pars, M), elements(Xd), elements(Xs), elements(Xs), T, s, e);
}

void HNTTransform::inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb,
                                c32i* T, std::size_t s, std::size_t e) const {
    check_capacity(e);
    hybrid_product(make_job(size, pars, M), elements(Xa), elements(Xa), elements(Xb), T, s, e);
}

void HNTTransform::forward_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                                std::size_t AL, c32i* T, std::size_t s, std::size_t e) const {
    check_capacity(AL);
    check_capacity(e);
    hybrid_multiply(make_job(size, pars, M), raw(X, A, AL), {elements(X), nullptr, 0}, T, s, e);
}

void HNTTransform::forward_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const c32i* A,
                                std::size_t AL, std::byte* Xb, const c32i* B, std::size_t BL, c32i* T, std::size_t s,
                                std::size_t e) const {
    check_capacity(AL);
    check_capacity(BL);
    check_capacity(e);
    hybrid_multiply(make_job(size, pars, M), raw(Xa, A, AL), {elements(Xb), B, BL}, T, s, e);
}

std::optional<std::uint64_t> HNTTransform::left_out(const std::byte* M, std::size_t, std::size_t, std::size_t) const {
    return read_hash(M, 0);
}

std::optional<std::uint64_t> HNTTransform::taken(const std::byte* M, std::size_t, std::size_t) const {
    return read_hash(M, 1);
}

bool HNTTransform::compatible(const Transform& other) const {
    const auto* same_class = dynamic_cast<const HNTTransform*>(&other);
    return same_class && same_class->size.k == size.k && same_class->size.m == size.m;
}

} // namespace zvp

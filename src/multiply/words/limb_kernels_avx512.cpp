// The limb loops of the avx512 set: sums of eight limbs in a vector, products with two carry flags (ADX).

#include "multiply/words/carry_chain.h"
#include "multiply/words/limb_kernels.h"
#include "multiply/words/mulx_chain.h"
#include "platform/simd/intrinsics.h"

#include "platform/simd/target_avx512_begin.inl"

namespace zvp::avx512 {

namespace {

constexpr std::size_t lanes = 8;
constexpr unsigned pair_lanes = 2 * lanes;

__m512i load(const void* p, std::size_t i) { return _mm512_loadu_si512(static_cast<const std::byte*>(p) + 8 * i); }
void store(void* p, std::size_t i, __m512i v) { _mm512_storeu_si512(static_cast<std::byte*>(p) + 8 * i, v); }

struct Addition {
    static constexpr c64i run_through = ~c64i{0}; // a limb that passes a carry on
    static __m512i limbs(__m512i a, __m512i b) { return _mm512_add_epi64(a, b); }
    static __mmask8 carries(__m512i a, __m512i, __m512i sum) { return _mm512_cmplt_epu64_mask(sum, a); }
    static __m512i apply(__m512i sum, __mmask8 in) {
        return _mm512_mask_sub_epi64(sum, in, sum, _mm512_set1_epi64(-1));
    }
    static bool chain(void* T, const void* A, const void* B, std::size_t limbs, bool carry) {
        return add_chain(T, A, B, limbs, carry);
    }
};

struct Subtraction {
    static constexpr c64i run_through = 0;
    static __m512i limbs(__m512i a, __m512i b) { return _mm512_sub_epi64(a, b); }
    static __mmask8 carries(__m512i a, __m512i b, __m512i) { return _mm512_cmplt_epu64_mask(a, b); }
    static __m512i apply(__m512i sum, __mmask8 in) {
        return _mm512_mask_add_epi64(sum, in, sum, _mm512_set1_epi64(-1));
    }
    static bool chain(void* T, const void* A, const void* B, std::size_t limbs, bool carry) {
        return subtract_chain(T, A, B, limbs, carry);
    }
};

/// Two vectors a round. All limbs are added on their own; then the carries find their ways as bits of one number: with a
/// bit for each limb that makes a carry and for each that would pass one on, the addition
///     2 * made + carry in + passing
/// runs through the passing limbs, and the bits in which it differs from `passing` are the limbs that get a carry.
template <class Operation>
bool vector_chain(void* T, const void* A, const void* B, std::size_t limbs, bool carry_in) {
    const __m512i run_through = _mm512_set1_epi64(static_cast<long long>(Operation::run_through));
    unsigned carry = carry_in;
    std::size_t i = 0;
    for (; i + pair_lanes <= limbs; i += pair_lanes) {
        const __m512i a0 = load(A, i), a1 = load(A, i + lanes), b0 = load(B, i), b1 = load(B, i + lanes);
        const __m512i s0 = Operation::limbs(a0, b0), s1 = Operation::limbs(a1, b1);
        const unsigned made = _mm512_kunpackb(Operation::carries(a1, b1, s1), Operation::carries(a0, b0, s0));
        const unsigned passing =
            _mm512_kunpackb(_mm512_cmpeq_epi64_mask(s1, run_through), _mm512_cmpeq_epi64_mask(s0, run_through));
        const unsigned sum = 2 * made + passing + carry;
        const unsigned in = sum ^ passing;
        carry = sum >> pair_lanes;
        store(T, i, Operation::apply(s0, static_cast<__mmask8>(in)));
        store(T, i + lanes, Operation::apply(s1, static_cast<__mmask8>(in >> lanes)));
    }
    const auto at = [i](const void* p) { return static_cast<const std::byte*>(p) + 8 * i; };
    return Operation::chain(static_cast<std::byte*>(T) + 8 * i, at(A), at(B), limbs - i, carry != 0);
}

} // namespace

constexpr LimbKernels limb_kernel_table{platform::KernelSet::avx512, vector_chain<Addition>, vector_chain<Subtraction>,
                                        mulx_chain, adx_add_chain};

} // namespace zvp::avx512

#include "platform/simd/target_end.inl"

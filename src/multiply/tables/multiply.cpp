#include "multiply/tables/multiply.h"

#include "multiply/contract/range_trimming.h"
#include "multiply/tables/algorithm_table.h"

#include <algorithm>

namespace zvp {

namespace {

/// Where one operand is empty, no algorithm is asked.
template <class Word>
bool zero_product(Word* T, std::size_t s, std::size_t e, std::size_t AL, std::size_t BL) {
    if (AL > 0 && BL > 0) return false;
    std::fill(T, T + (e - s), Word{0});
    return true;
}

template <class Word>
const MultiplyAlgorithm<Word>& algorithm_for(std::uint64_t length) {
    return algorithm_table<Word>().get_algorithm(length);
}

template <class Word>
void mul_whole(const MultiplyParameters& pars, Word* T, const Word* A, std::size_t AL, const Word* B, std::size_t BL) {
    if (zero_product(T, 0, AL + BL, AL, BL)) return;
    algorithm_for<Word>(AL + BL).mul(pars, T, A, AL, B, BL);
}

template <class Word>
void mul_range(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A, std::size_t AL,
               const Word* B, std::size_t BL) {
    if (s >= e || zero_product(T, s, e, AL, BL)) return;
    const auto r = trim_range(ProductRange<Word>{s, e, A, AL, B, BL});
    algorithm_for<Word>(r.AL + r.BL).mul(pars, T, r.s, r.e, r.A, r.AL, r.B, r.BL);
}

template <class Word>
void sqr_range(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A, std::size_t AL) {
    if (s >= e || zero_product(T, s, e, AL, AL)) return;
    const auto r = trim_range(SquareRange<Word>{s, e, A, AL});
    algorithm_for<Word>(2 * r.AL).sqr(pars, T, r.s, r.e, r.A, r.AL);
}

} // namespace

void mul(const MultiplyParameters& pars, c32i* T, const c32i* A, std::size_t AL, const c32i* B, std::size_t BL) {
    mul_whole(pars, T, A, AL, B, BL);
}
void mul(const MultiplyParameters& pars, c64i* T, const c64i* A, std::size_t AL, const c64i* B, std::size_t BL) {
    mul_whole(pars, T, A, AL, B, BL);
}

void mul(const MultiplyParameters& pars, c32i* T, std::size_t s, std::size_t e, const c32i* A, std::size_t AL,
         const c32i* B, std::size_t BL) {
    mul_range(pars, T, s, e, A, AL, B, BL);
}
void mul(const MultiplyParameters& pars, c64i* T, std::size_t s, std::size_t e, const c64i* A, std::size_t AL,
         const c64i* B, std::size_t BL) {
    mul_range(pars, T, s, e, A, AL, B, BL);
}

void sqr(const MultiplyParameters& pars, c32i* T, std::size_t s, std::size_t e, const c32i* A, std::size_t AL) {
    sqr_range(pars, T, s, e, A, AL);
}
void sqr(const MultiplyParameters& pars, c64i* T, std::size_t s, std::size_t e, const c64i* A, std::size_t AL) {
    sqr_range(pars, T, s, e, A, AL);
}

void mul_unchecked(const MultiplyParameters& pars, c32i* T, std::size_t s, std::size_t e, const c32i* A, std::size_t AL,
                   const c32i* B, std::size_t BL) {
    if (s >= e || zero_product(T, s, e, AL, BL)) return;
    const auto r = trim_range(ProductRange<c32i>{s, e, A, AL, B, BL});
    algorithm_for<c32i>(r.AL + r.BL).mul_unchecked(pars, T, r.s, r.e, r.A, r.AL, r.B, r.BL);
}

} // namespace zvp

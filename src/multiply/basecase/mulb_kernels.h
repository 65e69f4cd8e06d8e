#pragma once
// The six kernels of mulb.h over a table of one's choice.

#include "multiply/basecase/product_kernels.h"
#include "multiply/words/word_types.h"

namespace zvp::MULB {

template <class Word>
struct Kernels {
    void sqrB(const Word* A, std::size_t n, Word* T) const;
    void elmB(const Word* A, const Word* B, std::size_t n, Word* T) const;
    void mulB(const Word* A, std::size_t a, const Word* B, std::size_t b, Word* T) const;
    void sqr(const Word* A, std::size_t n, Word* T, void* S) const;
    void elm(const Word* A, const Word* B, std::size_t n, Word* T, void* S) const;
    void mul(const Word* A, std::size_t a, const Word* B, std::size_t b, Word* T, void* S) const;

    const ProductKernels& limbs;
};

extern template struct Kernels<c32i>;
extern template struct Kernels<c64i>;

} // namespace zvp::MULB

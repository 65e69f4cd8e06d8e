#pragma once
// The smallest products: schoolbook and subtractive Karatsuba on one thread, without a heap. T overlaps neither operand
// nor S. Lengths are in words of the kind; arrays need the alignment of a word, S that of a c64i. Both kinds run on limbs
// of 64 bits, with the loops of the process's kernel set; S is scratch of mul_scratch() bytes.

#include "multiply/words/word_types.h"

namespace zvp::MULB {

/// T[0, 2n) = A^2, schoolbook. n >= 1 here and below.
void sqrB(const c32i* A, std::size_t n, c32i* T);
void sqrB(const c64i* A, std::size_t n, c64i* T);

/// T[0, 2n) = A * B, schoolbook ("equal-length multiply").
void elmB(const c32i* A, const c32i* B, std::size_t n, c32i* T);
void elmB(const c64i* A, const c64i* B, std::size_t n, c64i* T);

/// T[0, a + b) = A * B, schoolbook.
void mulB(const c32i* A, std::size_t a, const c32i* B, std::size_t b, c32i* T);
void mulB(const c64i* A, std::size_t a, const c64i* B, std::size_t b, c64i* T);

/// T[0, 2n) = A^2.
void sqr(const c32i* A, std::size_t n, c32i* T, void* S);
void sqr(const c64i* A, std::size_t n, c64i* T, void* S);

/// T[0, 2n) = A * B.
void elm(const c32i* A, const c32i* B, std::size_t n, c32i* T, void* S);
void elm(const c64i* A, const c64i* B, std::size_t n, c64i* T, void* S);

/// T[0, a + b) = A * B, any lengths.
void mul(const c32i* A, std::size_t a, const c32i* B, std::size_t b, c32i* T, void* S);
void mul(const c64i* A, std::size_t a, const c64i* B, std::size_t b, c64i* T, void* S);

/// Bytes of scratch that sqr(), elm() and mul() need for operands whose lengths sum to 2n c32i words or less.
std::size_t mul_scratch(std::size_t n);

} // namespace zvp::MULB

#pragma once
// Products by a number-theoretic transform over the ring modulo 2^N + 1, whose roots of unity are powers of two: the
// transform adds, subtracts and shifts, and the products of its points are done by the floating-point transform, which
// wraps as the ring does. (A. Schönhage, V. Strassen, "Schnelle Multiplikation großer Zahlen", 1971, with √2 as root.)
//
//   words of A -> 2^k coefficients of c words, each in an element of n + 1
//      columns: 2^v points, 2^(k-v) elements apart, read as they are first needed   |  output: scale, check, add with
//      rows:    2^v blocks of 2^(k-v) points, by the same rule                      |  overlap
//   forward form, in the order that the divisions leave  -> products of elements -> rows -> columns
//
// Every pass is cut into tasks: columns first, then rows. An element's value is kept modulo 2^N + 1 with a small signed
// top word. Forward forms are canonical, and carry residues of their operand above the lowest bit of the top words.

#include "multiply/fft/fft_tables.h"
#include "multiply/hybrid/hybrid_size.h"
#include "multiply/hybrid/ring_kernels.h"
#include "parallel/tasks/parallel_framework.h"

namespace zvp {

/// A size with what runs it. M: size.scratch_bytes, aligned to 64 bytes.
struct HybridJob {
    const HybridSize& size;
    const RingKernels& kernels;
    const FftTables& tables;
    ParallelContext ctx;
    std::byte* M;
};

/// X = forward form of the AL words at A; 32 AL is at most the capacity.
void hybrid_forward(const HybridJob& job, RingWord* X, const RingWord* A, std::size_t AL);

/// An operand of a product: raw words, whose forward form is left in X, or, without words, the form that X holds.
struct HybridOperand {
    RingWord* X;
    const RingWord* words;
    std::size_t length;
};

/// T = words s .. e - 1 of the product of the forward forms Xa and Xb, e at most the capacity of C words. A range from
/// s = 0 on is exact; above, its lowest word may miss a carry of at most 2 from below. A product of more than C words comes
/// modulo 2^(32 C) - 1, where zero may be all ones, if the range is the whole; other ranges are defined above the words on
/// which its top folds, but for a carry out of those. Xd takes the work and may be Xa; Xb may be Xa, and survives when it
/// isn't Xd.
///
/// At the start of M stands, as 64 bits, what the product is modulo 2^61 - 1 less 2^(32 s) times T: the words that were left
/// out, with the carries that are missing. It means nothing for a product that has folded. Behind it stands the residue of T's
/// words, made as they were written.
///
/// A fault of the memory or the processor, from the words of the operands to those of the product, throws: mostly
/// AlgorithmFailedException, "Coefficient is too large.", else ConvolutionFailedException, "Modular redundancy check
/// failed." (coefficient_residues.h). T is undefined then.
void hybrid_product(const HybridJob& job, RingWord* Xd, const RingWord* Xa, const RingWord* Xb, RingWord* T,
                    std::size_t s, std::size_t e);

/// The same product of a raw operand a and one that is raw or a form. A row is transformed, multiplied and transformed back
/// while the cache holds it. a.X takes the work; b.X ends as a forward form. A square has b.X = a.X and no words for b.
/// T may be an operand's words.
void hybrid_multiply(const HybridJob& job, const HybridOperand& a, const HybridOperand& b, RingWord* T, std::size_t s,
                     std::size_t e);

} // namespace zvp

#pragma once
// Products of word arrays by whatever algorithm the tables hold for their length.
//
// T has e - s words and overlaps neither operand nor the scratch of `pars`; all lengths are in words. Ranges from s = 0 on
// are exact. Above, a range, read as one number modulo W^(e - s), may be short of the exact words for carries from below:
// by up to 1 for each operand that is shorter than s, as words that only feed carries are dropped (range_trimming.h), and
// beyond the row of "FFT" by up to 2 more that the transform leaves out (hybrid/hybrid_transform.h).
// Throws LimitExceededException when no algorithm covers the length or the tables weren't built for it, and
// BufferTooSmallException when pars.ML is less than mSBsize() of the length.

#include "multiply/contract/multiply_parameters.h"
#include "multiply/words/word_types.h"

namespace zvp {

/// T[0, AL + BL) = A * B.
void mul(const MultiplyParameters& pars, c32i* T, const c32i* A, std::size_t AL, const c32i* B, std::size_t BL);
void mul(const MultiplyParameters& pars, c64i* T, const c64i* A, std::size_t AL, const c64i* B, std::size_t BL);

/// T = words s .. e - 1 of A * B. s < e <= AL + BL.
void mul(const MultiplyParameters& pars, c32i* T, std::size_t s, std::size_t e, const c32i* A, std::size_t AL,
         const c32i* B, std::size_t BL);
void mul(const MultiplyParameters& pars, c64i* T, std::size_t s, std::size_t e, const c64i* A, std::size_t AL,
         const c64i* B, std::size_t BL);

/// T = words s .. e - 1 of A^2. s < e <= 2 AL.
void sqr(const MultiplyParameters& pars, c32i* T, std::size_t s, std::size_t e, const c32i* A, std::size_t AL);
void sqr(const MultiplyParameters& pars, c64i* T, std::size_t s, std::size_t e, const c64i* A, std::size_t AL);

/// The range product without checks of buffers and tables, for callers that have planned with total().
void mul_unchecked(const MultiplyParameters& pars, c32i* T, std::size_t s, std::size_t e, const c32i* A, std::size_t AL,
                   const c32i* B, std::size_t BL);

} // namespace zvp

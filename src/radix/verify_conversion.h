#pragma once
// The proof of a conversion: floor(x R^n) modulo 2^61 - 1 from the binary number, by one power and one product that the
// conversion didn't use, to be compared with the hash of the digits.

#include "functions/power_word.h"
#include "multiply/contract/multiply_parameters.h"
#include "numbers/big_float.h"
#include "parallel/memory/aligned_buffer.h"

#include <cstdint>

namespace zvp {

/// The plan for n words of radix R >= 2 by `tds` tasks. `partial`: of the product only the top is formed. Read-only once
/// made.
class VerifyB {
public:
    VerifyB(std::uint32_t R_, std::uint64_t n_, std::uint32_t tds_, bool partial_);

    /// floor(frac(|x|) R^n) modulo 2^61 - 1, for n up to the plan's; where the fraction has words below those that the
    /// plan keeps, the floor may be one too small. The buffer has total_bytes; pars.tds is at most the plan's, its own
    /// scratch isn't used; `status` may be null. Throws BufferTooSmallException, LimitExceededException, and
    /// AlgorithmFailedException, "Power Hash Mismatch", where R^n was found wrong.
    std::uint64_t hash_binary(const MultiplyParameters& pars, StatusNode* status, const BigFloat& x, std::uint64_t n,
                              AlignedBufferC<64> buffer) const;

    void ensure_tables(MultiplyTables& tables) const;

    const std::uint32_t R;
    const std::uint64_t n;
    const std::uint32_t tds;
    const bool partial;
    const unsigned t;                  // trailing zero bits of R
    const std::uint64_t power_words;   // of the odd part of R^n, with guard words
    const std::uint64_t result_words;  // of the product above the point
    const Power_uW_uL_BigFloatR power; // R^n
    std::uint64_t power_storage = 0;   // in words
    std::uint64_t buffer_words = 0;    // of the product
    std::uint64_t work_bytes = 0;      // scratch
    std::uint64_t total_bytes = 0;
};

} // namespace zvp

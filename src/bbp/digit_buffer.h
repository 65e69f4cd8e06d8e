#pragma once

#include "bbp/bbp_kernels.h"
#include "bbp/fraction_float.h"

#include <cstdint>
#include <vector>

namespace BBPv2 {

/// The running sums of a kernel in base 2^48, as bbp_kernels.h lays them out, for a fraction of `words` 32-bit
/// words.
class DigitBuffer {
public:
    DigitBuffer(std::size_t words, std::size_t lanes_);

    /// Digits of a sum: as many whole ones as make up the words, at least 2.
    static std::size_t digit_count(std::size_t words);

    std::int64_t* data() { return reinterpret_cast<std::int64_t*>(blocks.data()); }
    std::size_t size() const { return n; }

    /// Brings every digit below 2^48 in magnitude by carrying into the digit before it; the carry out of the
    /// first is a whole number and dropped.
    void normalize();

    /// Adds the sums of all lanes to `out`, cut to its words. They stay as they are, but for being normalised.
    void add_to(FractionFloat& out);

private:
    struct alignas(64) CacheLine {
        std::int64_t sums[8];
    };

    std::size_t n;
    std::size_t lanes;
    std::vector<CacheLine> blocks;
};

} // namespace BBPv2

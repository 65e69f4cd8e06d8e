#pragma once

#include "platform/clock.h"

#include <cstdint>

namespace bench {

/// The frequency in Hz at which this core runs now: a chain of dependent additions takes one cycle each.
inline double core_clock() {
    constexpr std::uint64_t additions = 50'000'000;
    const std::uint64_t began = zvp::platform::performance_counter();
    std::uint64_t x = 0;
    for (std::uint64_t i = 0; i < additions / 10; ++i)
        __asm__ volatile("add $1, %0\n\tadd $1, %0\n\tadd $1, %0\n\tadd $1, %0\n\tadd $1, %0\n\t"
                         "add $1, %0\n\tadd $1, %0\n\tadd $1, %0\n\tadd $1, %0\n\tadd $1, %0"
                         : "+r"(x));
    const std::uint64_t ended = zvp::platform::performance_counter();
    return static_cast<double>(additions) * 1e9 / static_cast<double>(ended - began);
}

} // namespace bench

#pragma once
// Products summed column by column (P. G. Comba, "Exponentiation cryptosystems on the IBM PC", 1990), on any x86-64
// processor: all limb products of one weight go into three registers, from which the lowest limb then leaves.

#include "multiply/basecase/limb.h"

namespace zvp::MULB {

class ColumnSum {
public:
    /// Up to 2^64 products fit.
    [[gnu::always_inline]] void add_product(std::uint64_t x, std::uint64_t y) {
        const unsigned __int128 product = static_cast<unsigned __int128>(x) * y;
        __asm__("add %3, %0\n\tadc %4, %1\n\tadc $0, %2"
                : "+&r"(m_low), "+&r"(m_middle), "+&r"(m_high)
                : "r"(static_cast<std::uint64_t>(product)), "r"(static_cast<std::uint64_t>(product >> 64))
                : "cc");
    }

    [[gnu::always_inline]] void add_limb(std::uint64_t x) {
        __asm__("add %3, %0\n\tadc $0, %1\n\tadc $0, %2"
                : "+&r"(m_low), "+&r"(m_middle), "+&r"(m_high)
                : "r"(x)
                : "cc");
    }

    /// Adds another sum twice.
    [[gnu::always_inline]] void add_twice(const ColumnSum& other) {
        add(other.m_low, other.m_middle, other.m_high);
        add(other.m_low, other.m_middle, other.m_high);
    }

    /// Takes the lowest limb off; what remains belongs to the next column.
    [[gnu::always_inline]] std::uint64_t next() {
        const std::uint64_t lowest = m_low;
        m_low = m_middle;
        m_middle = m_high;
        m_high = 0;
        return lowest;
    }

private:
    // Operands in registers: where memory is allowed too, clang 14 takes it, by way of the stack.
    [[gnu::always_inline]] void add(std::uint64_t low, std::uint64_t middle, std::uint64_t high) {
        __asm__("add %3, %0\n\tadc %4, %1\n\tadc %5, %2"
                : "+&r"(m_low), "+&r"(m_middle), "+&r"(m_high)
                : "r"(low), "r"(middle), "r"(high)
                : "cc");
    }

    std::uint64_t m_low = 0;
    std::uint64_t m_middle = 0;
    std::uint64_t m_high = 0;
};

} // namespace zvp::MULB

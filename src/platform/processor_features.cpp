#include "platform/processor_features.h"

#include <array>
#include <cpuid.h>
#include <cstdint>
#include <cstring>

namespace zvp::platform {

namespace {

struct Leaf {
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
};

Leaf cpuid(unsigned leaf) {
    Leaf r;
    __get_cpuid_count(leaf, 0, &r.eax, &r.ebx, &r.ecx, &r.edx);
    return r;
}

constexpr bool bit(unsigned value, unsigned index) { return (value >> index & 1) != 0; }

/// XCR0, written as an instruction because the intrinsic needs a target region. Call only where leaf 1 reports
/// OSXSAVE.
std::uint64_t xgetbv0() {
    std::uint32_t low, high;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return std::uint64_t{high} << 32 | low;
}

} // namespace

ProcessorFeatures read_processor_features() {
    ProcessorFeatures f;
    const Leaf leaf1 = cpuid(1);
    const Leaf leaf7 = cpuid(7);

    if (bit(leaf1.ecx, 27) && bit(leaf1.ecx, 28)) {
        const std::uint64_t saved = xgetbv0();
        constexpr std::uint64_t avx_state = 0x06, avx512_state = 0xE6;
        f.os_avx = (saved & avx_state) == avx_state;
        f.os_avx512 = (saved & avx512_state) == avx512_state;
    }
    f.sse = bit(leaf1.edx, 25);
    f.sse2 = bit(leaf1.edx, 26);
    f.sse3 = bit(leaf1.ecx, 0);
    f.fma3 = bit(leaf1.ecx, 12);
    f.bmi2 = bit(leaf7.ebx, 8);
    f.adx = bit(leaf7.ebx, 19);
    f.avx2 = bit(leaf7.ebx, 5);
    f.avx512_f = bit(leaf7.ebx, 16);
    f.avx512_dq = bit(leaf7.ebx, 17);
    f.avx512_bw = bit(leaf7.ebx, 30);
    f.avx512_vl = bit(leaf7.ebx, 31);
    return f;
}

const ProcessorFeatures& processor_features() {
    static const ProcessorFeatures features = read_processor_features();
    return features;
}

std::string processor_name() {
    std::array<unsigned, 12> text{};
    for (unsigned i = 0; i < 3; ++i) {
        const Leaf leaf = cpuid(0x80000002 + i);
        const unsigned registers[4] = {leaf.eax, leaf.ebx, leaf.ecx, leaf.edx};
        std::memcpy(&text[4 * i], registers, sizeof registers);
    }
    std::string name(reinterpret_cast<const char*>(text.data()), sizeof text);
    name.resize(name.find('\0') == std::string::npos ? name.size() : name.find('\0'));
    const std::size_t first = name.find_first_not_of(' ');
    const std::size_t last = name.find_last_not_of(' ');
    return first == std::string::npos ? "Unable to Detect" : name.substr(first, last - first + 1);
}

} // namespace zvp::platform

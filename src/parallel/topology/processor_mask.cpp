#include "parallel/topology/processor_mask.h"

#include <cstdio>

namespace zvp {

namespace {

constexpr std::uint64_t word_bit(unsigned bit) { return std::uint64_t{1} << (bit % 64); }

} // namespace

ProcessorMask::ProcessorMask(const std::vector<unsigned>& bits) {
    for (const unsigned bit : bits) set(bit);
}

bool ProcessorMask::test(unsigned bit) const {
    return bit / 64 < words.size() && (words[bit / 64] & word_bit(bit)) != 0;
}

void ProcessorMask::set(unsigned bit) {
    if (bit / 64 >= words.size()) words.resize(bit / 64 + 1);
    words[bit / 64] |= word_bit(bit);
}

void ProcessorMask::reset(unsigned bit) {
    if (!test(bit)) return;
    words[bit / 64] &= ~word_bit(bit);
    while (!words.empty() && words.back() == 0) words.pop_back();
}

std::vector<unsigned> ProcessorMask::bits() const {
    std::vector<unsigned> numbers;
    for (unsigned bit = 0; bit < 64 * words.size(); ++bit)
        if (test(bit)) numbers.push_back(bit);
    return numbers;
}

std::string ProcessorMask::to_hex() const {
    if (empty()) return "0";
    std::string text;
    for (std::size_t i = words.size(); i-- > 0;) {
        char digits[17];
        std::snprintf(digits, sizeof digits, text.empty() ? "%llx" : "%016llx",
                      static_cast<unsigned long long>(words[i]));
        text += digits;
    }
    return text;
}

} // namespace zvp

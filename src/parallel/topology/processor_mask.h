#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zvp {

/// A set of the processors of one group, one bit for each; of any size.
class ProcessorMask {
public:
    ProcessorMask() = default;
    explicit ProcessorMask(const std::vector<unsigned>& bits);

    bool test(unsigned bit) const;
    void set(unsigned bit);
    void reset(unsigned bit);

    bool empty() const { return words.empty(); }

    /// The numbers of the set bits, ascending.
    std::vector<unsigned> bits() const;

    /// The mask as one hexadecimal number; "0" if it is empty.
    std::string to_hex() const;

    bool operator==(const ProcessorMask&) const = default;

private:
    std::vector<std::uint64_t> words; // the last isn't 0, so that equal sets are equal objects
};

} // namespace zvp

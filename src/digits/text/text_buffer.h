#pragma once
// How a range of a text file's bytes is cut into transfers of whole sectors.

#include "app/failure/exceptions.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace DigitViewer2 {

/// Transfers begin and end at multiples of this many bytes.
inline constexpr std::size_t text_sector = 4'096;
inline constexpr std::uint32_t text_sector_bits = 12;

/// One transfer: bytes [begin, end) of the file, of which [first, last) belong to the range.
struct TextPass {
    std::uint64_t begin, end;
    std::uint64_t first, last;

    std::size_t bytes() const { return static_cast<std::size_t>(end - begin); }
};

/// The transfers of bytes [first, first + count) through a buffer.
class TextPasses {
public:
    /// Raises BufferTooSmallException with that label for a buffer below a sector, unless the range is empty.
    TextPasses(const char* function, std::uint64_t first, std::uint64_t count, std::size_t buffer_bytes)
        : position(first), last(first + count), room(buffer_bytes / text_sector * text_sector) {
        if (count > 0 && room == 0) throw zvp::BufferTooSmallException(function, buffer_bytes, text_sector);
    }

    bool next(TextPass& pass) {
        if (position == last) return false;
        pass.begin = position / text_sector * text_sector;
        const std::uint64_t sectors = (last - pass.begin + text_sector - 1) / text_sector;
        pass.end = pass.begin + std::min(room, sectors * text_sector);
        pass.first = position;
        pass.last = position = std::min(last, pass.end);
        return true;
    }

private:
    std::uint64_t position;
    const std::uint64_t last;
    const std::uint64_t room;
};

} // namespace DigitViewer2

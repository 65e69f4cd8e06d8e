#include "parallel/memory/aligned_malloc.h"

#include "app/failure/exceptions.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace zvp {

namespace {

constexpr std::uint32_t head_guard = 0x4BD0187D;
constexpr std::uint32_t tail_guard = 0x0559CFE4;

#pragma pack(push, 1)
struct Header {
    void* raw;
    std::uint64_t bytes;
    std::uint32_t guard;
};
#pragma pack(pop)
static_assert(sizeof(Header) == 20);

Header read_header(const void* p) {
    Header header;
    std::memcpy(&header, static_cast<const std::byte*>(p) - sizeof header, sizeof header);
    return header;
}

void check_guards(const void* p, const Header& header) {
    if (header.guard != head_guard)
        throw AlgorithmFailedException("aligned_free()", "Memory buffer has been underrun.");
    std::uint32_t tail;
    std::memcpy(&tail, static_cast<const std::byte*>(p) + header.bytes, sizeof tail);
    if (tail != tail_guard) throw AlgorithmFailedException("aligned_free()", "Memory buffer has been overrun.");
}

} // namespace

// With r the heap's pointer, p = ((r + 20) rounded down to a multiple of align) + align lies in (r + 20, r + 20 + align]:
// the header fits in front, and p + bytes + 4 <= r + bytes + 24 + align, what the heap was asked for.
void* aligned_malloc(std::size_t bytes, std::size_t align) {
    if ((align & (align - 1)) != 0)
        throw InvalidParametersException("aligned_malloc()", "Alignment must be a power of two.");
    align = std::max<std::size_t>(align, 4);
    std::size_t total;
    if (__builtin_add_overflow(bytes, sizeof(Header) + sizeof tail_guard, &total)
        || __builtin_add_overflow(total, align, &total))
        throw std::bad_alloc();
    auto* raw = static_cast<std::byte*>(std::malloc(total));
    if (!raw) throw std::bad_alloc();
    const std::size_t behind = reinterpret_cast<std::uintptr_t>(raw + sizeof(Header)) & (align - 1);
    std::byte* p = raw + sizeof(Header) - behind + align;
    const Header header{raw, bytes, head_guard};
    std::memcpy(p - sizeof header, &header, sizeof header);
    std::memcpy(p + bytes, &tail_guard, sizeof tail_guard);
    return p;
}

void aligned_free(void* p) {
    if (!p) return;
    const Header header = read_header(p);
    check_guards(p, header);
    std::free(header.raw);
}

} // namespace zvp

#include "platform/memory.h"

#include "platform/file.h"
#include "platform/file_system.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <linux/capability.h>
#include <sstream>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zvp::platform {

namespace {

std::byte* map_anonymous(std::size_t bytes, int protection, int flags) {
    void* address = mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS | flags, -1, 0);
    return address == MAP_FAILED ? nullptr : static_cast<std::byte*>(address);
}

std::byte* align_up(std::byte* address, std::size_t alignment) {
    const auto value = reinterpret_cast<std::uintptr_t>(address);
    return address + ((0 - value) & (alignment - 1));
}

/// bytes + a + b, the largest value if that overflows: no system maps so much.
std::size_t saturated_sum(std::size_t bytes, std::size_t a, std::size_t b) {
    std::size_t sum;
    if (__builtin_add_overflow(bytes, a, &sum) || __builtin_add_overflow(sum, b, &sum))
        return std::numeric_limits<std::size_t>::max() / 2;
    return sum;
}

/// Calls function(line) for each line of a file of the system.
template <class Function>
void for_each_line(const char* path, Function&& function) {
    std::string content;
    if (read_whole_file(path, content) != 0) return;
    std::istringstream lines(std::move(content));
    for (std::string line; std::getline(lines, line);) function(line.c_str());
}

std::size_t read_large_page_size() {
    std::size_t kilobytes = 0;
    for_each_line("/proc/meminfo", [&](const char* line) {
        std::size_t value;
        if (std::sscanf(line, "Hugepagesize: %zu kB", &value) == 1) kilobytes = value;
    });
    return kilobytes * 1024;
}

bool transparent_pages_enabled() {
    std::string mode;
    return read_whole_file("/sys/kernel/mm/transparent_hugepage/enabled", mode) == 0
           && mode.find("[never]") == std::string::npos;
}

/// Whether the process is exempt from the limit of locked memory.
bool may_lock_without_limit() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3] = {};
    if (syscall(SYS_capget, &header, data) != 0) return false;
    return (data[CAP_TO_INDEX(CAP_IPC_LOCK)].effective & CAP_TO_MASK(CAP_IPC_LOCK)) != 0;
}

std::uint64_t total_memory() {
    return static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

PhysicalMemory physical_memory() { return {total_memory(), file_system().available_memory()}; }

MemorySystem& memory_system() {
    static MemorySystem system;
    return system;
}

std::size_t MemorySystem::page_size() const {
    static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

std::size_t MemorySystem::large_page_size() const {
    static const std::size_t size = read_large_page_size();
    return size;
}

Mapping MemorySystem::map(std::size_t bytes, std::size_t alignment, PageKind kind) {
    if (kind == PageKind::large_pool) {
        const std::size_t extra = alignment > large_page_size() ? alignment : 0;
        const std::size_t mapped = saturated_sum(bytes, extra, 0);
        std::byte* base = map_anonymous(mapped, PROT_READ | PROT_WRITE, MAP_HUGETLB);
        return base ? Mapping{base, mapped, align_up(base, alignment)} : Mapping{};
    }
    const bool large = kind == PageKind::large_transparent;
    if (large && !transparent_pages_enabled()) return {};
    const Mapping mapping = reserve(bytes, large ? std::max(alignment, large_page_size()) : alignment);
    if (!mapping.base) return {};
    const bool advised = !large || madvise(mapping.data, bytes, MADV_HUGEPAGE) == 0;
    if (advised && mprotect(mapping.data, bytes, PROT_READ | PROT_WRITE) == 0) {
        if (!large) madvise(mapping.data, bytes, MADV_NOHUGEPAGE);
        return mapping;
    }
    release(mapping);
    return {};
}

// The range is mapped with a page to spare on both sides: overruns fault, and the region keeps an entry of its own in
// the system's list of mappings, which transparent_large_bytes() reads. An inaccessible private mapping counts for
// nothing; commit() is where the system may refuse to promise the memory.
Mapping MemorySystem::reserve(std::size_t bytes, std::size_t alignment) {
    const std::size_t page = page_size();
    const std::size_t mapped = saturated_sum(bytes, std::max(alignment, page), 2 * page);
    std::byte* base = map_anonymous(mapped, PROT_NONE, 0);
    return base ? Mapping{base, mapped, align_up(base + page, alignment)} : Mapping{};
}

int MemorySystem::commit(std::byte* data, std::size_t bytes) {
    if (mprotect(data, bytes, PROT_READ | PROT_WRITE) != 0) return errno;
    madvise(data, bytes, MADV_NOHUGEPAGE); // each page goes to its own node; a system without large pages refuses
    return 0;
}

void MemorySystem::release(const Mapping& mapping) {
    if (mapping.base) munmap(mapping.base, mapping.mapped_bytes);
}

std::size_t MemorySystem::transparent_large_bytes(const std::byte* data, std::size_t bytes) {
    const auto begin = reinterpret_cast<std::uintptr_t>(data);
    std::size_t total = 0;
    bool inside = false;
    for_each_line("/proc/self/smaps", [&](const char* line) {
        std::uintptr_t first, last;
        std::size_t kilobytes;
        if (std::sscanf(line, "%lx-%lx ", &first, &last) == 2) {
            inside = first >= begin && last <= begin + bytes;
        } else if (inside && std::sscanf(line, "AnonHugePages: %zu kB", &kilobytes) == 1) {
            total += kilobytes * 1024;
        }
    });
    return total;
}

int MemorySystem::lock_pages(std::byte* data, std::size_t bytes) { return mlock(data, bytes) == 0 ? 0 : errno; }

std::optional<bool> MemorySystem::raise_lock_limit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_MEMLOCK, &limit) != 0) return std::nullopt;
    limit.rlim_cur = limit.rlim_max;
    return setrlimit(RLIMIT_MEMLOCK, &limit) == 0;
}

const LockPrivilege& MemorySystem::lock_privilege() {
    std::call_once(privilege_once, [this] { privilege = obtain_lock_privilege(); });
    return privilege;
}

LockPrivilege MemorySystem::obtain_lock_privilege() {
    rlimit limit{};
    if (getrlimit(RLIMIT_MEMLOCK, &limit) != 0) return {false, errno, 0};
    if (may_lock_without_limit()) return {true, 0, 0};
    if (limit.rlim_cur != limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        if (setrlimit(RLIMIT_MEMLOCK, &limit) != 0) return {false, 0, errno};
    }
    return {limit.rlim_max == RLIM_INFINITY || limit.rlim_max >= total_memory(), 0, 0};
}

} // namespace zvp::platform

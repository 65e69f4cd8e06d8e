#include "platform/threads.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <new>
#include <sched.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace zvp::platform {

namespace {

struct CpuSetDeleter {
    void operator()(cpu_set_t* set) const { CPU_FREE(set); }
};
using CpuSet = std::unique_ptr<cpu_set_t, CpuSetDeleter>;

/// The calling thread's cores; returns 0, or errno.
int read_affinity(std::vector<unsigned>& cores) {
    cores.clear();
    // The kernel refuses a set that is smaller than its own: grow until it fits.
    for (unsigned size = 1024; size <= 1u << 20; size *= 2) {
        const CpuSet set{CPU_ALLOC(size)};
        if (!set) return ENOMEM;
        const std::size_t bytes = CPU_ALLOC_SIZE(size);
        if (sched_getaffinity(0, bytes, set.get()) != 0) continue;
        for (unsigned core = 0; core < size; ++core)
            if (CPU_ISSET_S(core, bytes, set.get())) cores.push_back(core);
        return 0;
    }
    return errno;
}

std::vector<unsigned> read_usable_cores() {
    std::vector<unsigned> cores;
    read_affinity(cores);
    if (cores.empty())
        for (unsigned core = 0; core < std::max(1u, std::thread::hardware_concurrency()); ++core) cores.push_back(core);
    return cores;
}

} // namespace

const std::vector<unsigned>& usable_cores() {
    static const std::vector<unsigned> cores = read_usable_cores();
    return cores;
}

int set_thread_affinity(const ThreadAffinity& affinity) {
    if (affinity.group != 0 || affinity.bits.empty()) return EINVAL;
    const unsigned size = *std::max_element(affinity.bits.begin(), affinity.bits.end()) + 1;
    const CpuSet set{CPU_ALLOC(size)};
    if (!set) return ENOMEM;
    const std::size_t bytes = CPU_ALLOC_SIZE(size);
    CPU_ZERO_S(bytes, set.get());
    for (const unsigned bit : affinity.bits) CPU_SET_S(bit, bytes, set.get());
    return sched_setaffinity(0, bytes, set.get()) == 0 ? 0 : errno;
}

int read_thread_affinity(ThreadAffinity& affinity) {
    affinity.group = 0;
    return read_affinity(affinity.bits);
}

int bind_thread_to_core(unsigned core) { return set_thread_affinity({0, {core}}); }

ProcessorPlace current_processor() {
    const int core = sched_getcpu();
    return {0, core < 0 ? 0 : static_cast<unsigned>(core)};
}

int set_thread_nice(int nice) { return setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), nice) == 0 ? 0 : errno; }

struct FaultStack::Storage {
    stack_t before;
    alignas(64) std::byte bytes[65'536];
};

FaultStack::FaultStack() : storage(new (std::nothrow) Storage) {
    if (!storage) return;
    stack_t description{};
    description.ss_sp = storage->bytes;
    description.ss_size = sizeof storage->bytes;
    sigaltstack(&description, &storage->before);
}

FaultStack::~FaultStack() {
    if (storage) sigaltstack(&storage->before, nullptr);
}

} // namespace zvp::platform

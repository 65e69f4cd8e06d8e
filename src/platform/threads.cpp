#include "platform/threads.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <sched.h>
#include <thread>

namespace zvp::platform {

namespace {

struct CpuSetDeleter {
    void operator()(cpu_set_t* set) const { CPU_FREE(set); }
};
using CpuSet = std::unique_ptr<cpu_set_t, CpuSetDeleter>;

std::vector<unsigned> read_usable_cores() {
    std::vector<unsigned> cores;
    // The kernel refuses a set that is smaller than its own: grow until it fits.
    for (unsigned size = 1024; size <= 1u << 20; size *= 2) {
        const CpuSet set{CPU_ALLOC(size)};
        const std::size_t bytes = CPU_ALLOC_SIZE(size);
        if (sched_getaffinity(0, bytes, set.get()) != 0) continue;
        for (unsigned core = 0; core < size; ++core)
            if (CPU_ISSET_S(core, bytes, set.get())) cores.push_back(core);
        break;
    }
    if (cores.empty())
        for (unsigned core = 0; core < std::max(1u, std::thread::hardware_concurrency()); ++core) cores.push_back(core);
    return cores;
}

} // namespace

const std::vector<unsigned>& usable_cores() {
    static const std::vector<unsigned> cores = read_usable_cores();
    return cores;
}

int bind_thread_to_core(unsigned core) {
    const CpuSet set{CPU_ALLOC(core + 1)};
    const std::size_t bytes = CPU_ALLOC_SIZE(core + 1);
    CPU_ZERO_S(bytes, set.get());
    CPU_SET_S(core, bytes, set.get());
    return sched_setaffinity(0, bytes, set.get()) == 0 ? 0 : errno;
}

FaultStack::FaultStack() : stack(new std::byte[bytes]) {
    stack_t description{};
    description.ss_sp = stack.get();
    description.ss_size = bytes;
    sigaltstack(&description, nullptr);
}

FaultStack::~FaultStack() {
    stack_t description{};
    description.ss_flags = SS_DISABLE;
    sigaltstack(&description, nullptr);
}

} // namespace zvp::platform

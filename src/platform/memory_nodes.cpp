#include "platform/memory.h"

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

namespace zvp::platform {

namespace {

// Of <linux/mempolicy.h>, which the C library doesn't wrap.
constexpr int policy_preferred = 1;
constexpr unsigned long flag_allowed_nodes = 4;

bool has_node(const NodePolicy& policy, unsigned node) {
    return node < NodePolicy::node_limit && (policy.nodes[node / 64] >> (node % 64) & 1) != 0;
}

int read_policy(NodePolicy& policy, unsigned long flags) {
    int* mode = flags == 0 ? &policy.mode : nullptr;
    return syscall(SYS_get_mempolicy, mode, policy.nodes.data(), NodePolicy::node_limit, nullptr, flags) == 0 ? 0
                                                                                                              : errno;
}

int write_policy(const NodePolicy& policy) {
    return syscall(SYS_set_mempolicy, policy.mode, policy.nodes.data(), NodePolicy::node_limit) == 0 ? 0 : errno;
}

} // namespace

int MemorySystem::prefer_node(unsigned node, NodePolicy& previous) {
    if (node >= NodePolicy::node_limit - 1) return EINVAL; // the system takes one bit less than it is told
    if (const int error = read_policy(previous, 0)) return error;
    NodePolicy policy;
    policy.mode = policy_preferred;
    policy.nodes[node / 64] |= 1ul << (node % 64);
    return write_policy(policy);
}

void MemorySystem::restore_policy(const NodePolicy& previous) { write_policy(previous); }

int MemorySystem::nodes_of_pages(void* const* pages, int* nodes, std::size_t count) {
    return syscall(SYS_move_pages, 0, count, pages, nullptr, nodes, 0) == 0 ? 0 : errno;
}

bool MemorySystem::node_has_memory(unsigned node) {
    NodePolicy allowed;
    return read_policy(allowed, flag_allowed_nodes) != 0 || has_node(allowed, node);
}

} // namespace zvp::platform

#include "parallel/memory/page_lock.h"

#include "parallel/memory/fake_memory.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace zvp;

constexpr std::size_t kib = 1024;
constexpr std::size_t mib = 1024 * kib;

struct LockCase {
    const char* what;
    std::size_t bytes;
    std::size_t quota; // what can be locked in all
    int error;         // of a lock beyond it
    std::optional<bool> raise;
    std::size_t locked;
    std::vector<std::size_t> calls; // sizes
    std::size_t refused = 0;        // calls that fail before the limit is raised
};

TEST(PageLock, SplitsOnlyOnQuota) {
    const LockCase cases[] = {
        {"fits", 8 * mib, 8 * mib, ENOMEM, true, 8 * mib, {8 * mib}},
        {"fits when the limit is raised", mib, mib, ENOMEM, true, mib, {mib, mib}, 1},
        {"too small to split", 512 * kib, 0, ENOMEM, true, 0, {512 * kib, 512 * kib}},
        {"split once", mib, 0, ENOMEM, true, 0, {mib, mib, 512 * kib, 512 * kib, 512 * kib, 512 * kib}},
        {"largest pieces that fit",
         4 * mib,
         3 * mib,
         ENOMEM,
         true,
         3 * mib,
         {4 * mib, 4 * mib, 2 * mib, 2 * mib, 2 * mib, mib, mib, mib, 512 * kib, 512 * kib, 512 * kib, 512 * kib}},
        {"another error", 4 * mib, 0, EAGAIN, true, 0, {4 * mib, 4 * mib}},
        {"limit stays", 4 * mib, 0, ENOMEM, false, 0, {4 * mib, 4 * mib}},
        {"limit can't be read", 4 * mib, 0, ENOMEM, std::nullopt, 0, {4 * mib}},
        {"odd size",
         mib + 1,
         512 * kib + 1,
         ENOMEM,
         true,
         512 * kib,
         {mib + 1, mib + 1, 512 * kib, 512 * kib + 1, 512 * kib + 1}},
    };
    for (const LockCase& expect : cases) {
        SCOPED_TRACE(expect.what);
        test::FakeMemory system;
        std::vector<std::size_t> calls;
        std::size_t used = 0;
        std::byte* const p = nullptr;
        system.raise = expect.raise;
        system.lock = [&](std::byte* at, std::size_t bytes) {
            calls.push_back(bytes);
            EXPECT_LE(static_cast<std::size_t>(at - p) + bytes, expect.bytes);
            if (calls.size() <= expect.refused || used + bytes > expect.quota) return expect.error;
            used += bytes;
            return 0;
        };
        EXPECT_EQ(lock_region(system, p, expect.bytes), expect.locked);
        EXPECT_EQ(calls, expect.calls);
    }
}

} // namespace

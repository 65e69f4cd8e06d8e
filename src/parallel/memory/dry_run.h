#pragma once
// A computation walked with sizes alone. Its working memory lies at addresses that no process has: the code that runs a
// computation asks for every buffer and every transform as it always does, and whatever would read or write words there
// does nothing instead. So the plan of the memory is tried by the code that will live in it.
//
// What decides sizes by the words of a number takes the larger outcome: no top word is zero, no low word either, no sum
// cancels. Carries are left out, since every operation asks for their room beforehand.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zvp {

/// Whether `p` lies in the working memory of a dry run.
inline bool is_dry(const void* p) { return reinterpret_cast<std::uintptr_t>(p) >> 62 == 1; }

/// One walk, on the thread that made it; its tasks run one after another there (pars.framework is null). A thread has one
/// at a time.
class DryRun {
public:
    /// The most of the working memory, from its start, that something asked for while a phase lasted.
    struct Phase {
        std::string name;
        std::uint64_t bytes = 0;
    };

    /// `bytes` of working memory, below 2^61: InvalidParametersException otherwise.
    explicit DryRun(std::uint64_t bytes_);
    ~DryRun();
    DryRun(const DryRun&) = delete;
    DryRun& operator=(const DryRun&) = delete;

    /// The start of the working memory, a multiple of 4096. It can't be read or written.
    std::byte* memory() const;

    /// What follows belongs to the phase `name`.
    void begin_phase(std::string_view name);

    /// Tells the walk of this thread that everything below `end` is asked for. Nothing for other addresses.
    static void reach(const void* end) {
        if (is_dry(end)) note(reinterpret_cast<std::uintptr_t>(end));
    }

    const std::uint64_t bytes;
    std::vector<Phase> phases; // in the order in which they began

private:
    static void note(std::uintptr_t end);
};

} // namespace zvp

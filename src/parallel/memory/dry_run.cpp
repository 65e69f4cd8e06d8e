#include "parallel/memory/dry_run.h"

#include "app/failure/exceptions.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr std::uintptr_t base = std::uintptr_t{1} << 62;
constexpr std::uint64_t most_bytes = std::uint64_t{1} << 61;

thread_local DryRun* current = nullptr;

} // namespace

DryRun::DryRun(std::uint64_t bytes_) : bytes(bytes_) {
    if (bytes >= most_bytes || current)
        throw InvalidParametersException("DryRun::DryRun()", "More memory than there are addresses.");
    begin_phase("");
    current = this;
}

DryRun::~DryRun() { current = nullptr; }

std::byte* DryRun::memory() const { return reinterpret_cast<std::byte*>(base); }

void DryRun::begin_phase(std::string_view name) { phases.push_back({std::string(name), 0}); }

void DryRun::note(std::uintptr_t end) {
    if (!current) return;
    std::uint64_t& most = current->phases.back().bytes;
    most = std::max<std::uint64_t>(most, end - base);
}

} // namespace zvp

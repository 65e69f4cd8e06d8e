#include "bbp/threaded_sum.h"

#include "app/failure/exceptions.h"
#include "parallel/topology/scheduling_group.h"
#include "parallel/topology/thread_placement.h"
#include "platform/threads.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>

namespace BBPv2 {

namespace {

/// What the threads of one record share.
class RecordSum {
public:
    RecordSum(const TermRecord& record_, std::uint64_t terms, std::size_t words,
              const std::vector<const SummationMode*>& modes_, const ThreadSettings& settings_,
              const std::function<void(std::uint64_t)>& progress_)
        : record(record_), modes(modes_), settings(settings_), progress(progress_), sum(words), cursor(terms) {}

    FractionFloat run() {
        std::vector<std::thread> threads;
        try {
            for (std::uint32_t i = 0; i < settings.threads; ++i) start(threads, i);
        } catch (...) {
            fail(); // those that run must be joined first
        }
        for (std::thread& thread : threads) thread.join();
        if (failure) std::rethrow_exception(failure);
        return sum;
    }

private:
    struct Chunk {
        std::uint64_t begin, end;
    };

    void start(std::vector<std::thread>& threads, std::uint32_t thread) {
        try {
            threads.emplace_back([this, thread] { work(thread); });
        } catch (const std::system_error& error) {
            throw zvp::SystemException("BBPv2::sum_record()",
                                       "Unable to start thread " + std::to_string(thread + 1) + " of "
                                           + std::to_string(settings.threads) + ".",
                                       error.code().value());
        }
    }

    void work(std::uint32_t thread) {
        try {
            const zvp::platform::FaultStack fault_stack;
            place(thread);
            for (Chunk chunk = take_chunk(); chunk.begin != chunk.end; chunk = take_chunk()) sum_chunk(chunk);
        } catch (...) {
            fail();
        }
    }

    /// A refused binding leaves the thread where the scheduler puts it.
    void place(std::uint32_t thread) const {
        if (!settings.pin) return zvp::assign_thread_to_group(thread);
        zvp::SchedulingGroup core;
        core |= static_cast<unsigned>(thread % zvp::core_map().size());
        core.bind_thread();
    }

    Chunk take_chunk() {
        const std::lock_guard lock(mutex);
        if (failure) return {0, 0};
        const std::uint64_t end = cursor;
        cursor -= chunk_terms(cursor, settings.threads);
        return {cursor, end};
    }

    void sum_chunk(const Chunk& chunk) {
        FractionFloat local(sum.length());
        for (const ModeRange& range : SummableRange(modes, record.a, record.b, chunk.begin, chunk.end))
            range.mode->sum_range(local, record.a, record.b, record.step, record.start, range.k0, range.k1);
        const std::lock_guard lock(mutex);
        sum += local;
        done += chunk.end - chunk.begin;
        progress(done);
    }

    void fail() {
        const std::lock_guard lock(mutex);
        if (!failure) failure = std::current_exception();
    }

    const TermRecord& record;
    const std::vector<const SummationMode*>& modes;
    const ThreadSettings& settings;
    const std::function<void(std::uint64_t)>& progress;

    std::mutex mutex; // guards what follows, and the calls of `progress`
    FractionFloat sum;
    std::uint64_t cursor; // terms [0, cursor) haven't been taken
    std::uint64_t done = 0;
    std::exception_ptr failure;
};

} // namespace

std::uint64_t chunk_terms(std::uint64_t remaining, std::uint32_t threads) {
    constexpr std::uint64_t smallest = 10'000, largest_per_thread = 100'000'000;
    if (remaining < smallest) return remaining;
    const std::uint64_t share = remaining / (2 * std::uint64_t{threads}) + 1;
    return std::min(threads * largest_per_thread, std::min(remaining, std::max(smallest, share)));
}

FractionFloat sum_record(const TermRecord& record, std::uint64_t terms, std::size_t words,
                         const std::vector<const SummationMode*>& modes, const ThreadSettings& settings,
                         const std::function<void(std::uint64_t done)>& progress) {
    const ThreadSettings at_least_one{std::max(1u, settings.threads), settings.pin};
    return RecordSum(record, terms, words, modes, at_least_one, progress).run();
}

} // namespace BBPv2

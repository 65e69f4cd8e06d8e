#pragma once
// How a range of tasks is handed out, common to the frameworks that start tasks one by one.

#include "parallel/tasks/parallel_framework.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <new>

namespace zvp {

inline constexpr std::uint32_t min_sequential_dispatch = 4;
inline constexpr std::uint32_t default_sequential_dispatch = 64;

/// Runs a range that is longer than `limit` in two levels: up to `limit` groups of neighbouring tasks, each handed to
/// the framework again. A long range so reaches the threads in a tree that issues at most `limit` tasks in a row.
void fan_out(ParallelFramework& framework, std::uint32_t limit, BasicAction& action, std::uint32_t low,
             std::uint32_t high);

/// The groups of a fan-out.
struct FanOut {
    std::uint32_t groups;
    std::uint32_t block; // tasks of a group
};
FanOut fan_out_groups(std::uint32_t tasks, std::uint32_t limit);

/// Up to 15 records in place, more in one heap block; constructed one after the other, destroyed all together.
template <class Record>
class RecordList {
public:
    explicit RecordList(std::uint32_t capacity) {
        if (capacity > in_place) heap = std::make_unique_for_overwrite<Slot[]>(capacity);
    }
    ~RecordList() {
        while (count > 0) (*this)[--count].~Record();
    }
    RecordList(const RecordList&) = delete;
    RecordList& operator=(const RecordList&) = delete;

    template <class... Arguments>
    Record& add(Arguments&&... arguments) {
        Record* record = new (slot(count)) Record(std::forward<Arguments>(arguments)...);
        ++count;
        return *record;
    }

    std::uint32_t size() const { return count; }
    Record& operator[](std::uint32_t i) { return *std::launder(reinterpret_cast<Record*>(slot(i))); }

private:
    static constexpr std::uint32_t in_place = 15;
    struct Slot {
        alignas(Record) std::byte bytes[sizeof(Record)];
    };

    void* slot(std::uint32_t i) { return heap ? heap[i].bytes : place[i].bytes; }

    std::array<Slot, in_place> place;
    std::unique_ptr<Slot[]> heap;
    std::uint32_t count = 0;
};

/// Runs action.run(i) for i in [low, high): ranges of up to one task on this thread, ranges beyond `limit` by fan_out(),
/// others by one record for each task but the last, which runs here. Record(framework, action, index) starts a task;
/// its finish() waits for it and throws its exception, its destructor waits and drops it. So the lowest index that threw
/// is what the caller sees, except that the last task's own exception comes first.
template <class Record, class Framework>
void dispatch_range(Framework& framework, std::uint32_t limit, BasicAction& action, std::uint32_t low,
                    std::uint32_t high) {
    if (low >= high) return;
    if (high - low == 1) return action.run(low);
    if (high - low > std::max(limit, min_sequential_dispatch)) return fan_out(framework, limit, action, low, high);
    RecordList<Record> records(high - low - 1);
    for (std::uint32_t i = low; i < high - 1; ++i) records.add(framework, action, i);
    action.run(high - 1);
    for (std::uint32_t i = 0; i < records.size(); ++i) records[i].finish();
}

/// A pair as a range of two tasks.
class PairAction final : public BasicAction {
public:
    PairAction(BasicAction& first_, BasicAction& second_) : first(first_), second(second_) {}
    void run(std::uint32_t index) override { (index == 0 ? first : second).run(0); }

private:
    BasicAction& first;
    BasicAction& second;
};

/// Runs first.run(0) here and second.run(0) as a record.
template <class Record, class Framework>
void dispatch_pair(Framework& framework, BasicAction& first, BasicAction& second) {
    Record record(framework, second, 0);
    first.run(0);
    record.finish();
}

} // namespace zvp

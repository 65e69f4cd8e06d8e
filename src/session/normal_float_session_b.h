#pragma once
// A computation in memory.

#include "constants/plan/constant_plan.h"
#include "digits/writer/float_writer.h"
#include "multiply/contract/multiply_tables.h"
#include "parallel/memory/allocator_registry.h"
#include "parallel/tasks/parallelization_settings.h"
#include "session/memory_trial.h"
#include "session/normal_float_session.h"

#include <cstdint>
#include <memory>

namespace zvp {

/// The allocator that a computation uses, shared between the sessions of a mode and the menus.
struct AllocatorHolder {
    std::unique_ptr<MemoryAllocator> allocator = default_allocator();
};

class NormalFloatSessionB final : public NormalFloatSession {
public:
    /// The settings' sizes are made.
    NormalFloatSessionB(std::shared_ptr<ConstantSettings> settings_,
                        std::shared_ptr<ParallelizationSettings> parallelism_,
                        std::shared_ptr<AllocatorHolder> allocator_);
    NormalFloatSessionB();

    void run(StatusSink* sink = nullptr) override;
    bool print() const override;
    void update() override;
    Object to_config() const override;
    Object to_status() const override;
    void menu(bool offer_start) override;
    void load(const Object& object) override;

    /// The bytes that the process takes for a run, beside its code and small parts.
    std::uint64_t total_memory() const { return working_memory + twiddle_memory; }

    std::shared_ptr<ParallelizationSettings> parallelism;
    std::shared_ptr<AllocatorHolder> allocator;
    std::unique_ptr<MultiplyTables> tables; // wished for by update(), built by a run
    std::unique_ptr<ConstantPlanB> plan;    // null if the settings can't run
    std::unique_ptr<FloatWriterB> writer;   // as the plan
    std::vector<DryRun::Phase> phases;      // of a run, with the working memory that each asks for
    std::uint64_t task_scratch = 0;         // bytes of the working memory for each task of the largest product
    std::uint64_t working_memory = 0;       // bytes, without what WorkingMemory adds
    std::uint64_t twiddle_memory = 0;       // bytes

private:
    void make_plans();

    bool has_run = false;
};

} // namespace zvp

#include "session/memory_trial.h"

#include "constants/plan/constant_plan.h"
#include "digits/writer/float_writer.h"
#include "multiply/contract/multiply_tables.h"
#include "parallel/memory/carving.h"

namespace zvp {

namespace {

/// Takes the entries of the log for the beginnings of phases.
class PhaseLog final : public EventLog {
public:
    explicit PhaseLog(DryRun& run_) : run(run_) {}
    void log(std::string_view text) override { run.begin_phase(text); }

private:
    DryRun& run;
};

MemoryTrial walk(const ConstantPlanB& plan, const FloatWriterB& writer, const MultiplyTables& tables,
                 std::uint64_t bytes) {
    DryRun dry(bytes);
    PhaseLog phases(dry);
    const RunReport report{nullptr, &phases};
    MultiplyParameters pars;
    pars.tds = plan.tds;
    pars.tables = &tables;

    AlignedBufferC<64> rest(dry.memory(), bytes);
    const LinearWordBuffer words = rest.spawn_words(padded_words(plan.result_words()));
    BigFloat number(words.pointer, words.words);
    plan.run(pars, report, number, rest);
    DigitResults results;
    writer.write(pars, report, results, number, rest);
    return {bytes, std::move(dry.phases)};
}

} // namespace

MemoryTrial try_memory(const ConstantPlanB& plan, const FloatWriterB& writer, const MultiplyTables& tables,
                       std::uint64_t bytes) {
    constexpr int most_steps = 16;
    for (int step = 0;; ++step) {
        try {
            return walk(plan, writer, tables, bytes);
        } catch (const BufferTooSmallException&) {
            if (step == most_steps) throw;
            bytes += padded_bytes(bytes / 16);
        }
    }
}

} // namespace zvp

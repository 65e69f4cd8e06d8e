// Plans of memory against dry runs, and both against real runs on exactly the memory that was planned.

#include "app/failure/exceptions.h"
#include "constants/catalog/constant_catalog.h"
#include "multiply/hybrid/hybrid_size.h"
#include "parallel/memory/carving.h"
#include "session/normal_float_session_b.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <sys/mman.h>
#include <vector>

namespace zvp {
namespace {

bool large() { return std::getenv("ZORVANE_TEST_LARGE") != nullptr; }

struct Algorithm {
    const char* constant;
    const char* key;
};

constexpr Algorithm algorithms[]{{"pi", "chudnovsky"},        {"pi", "ramanujan"},      {"pi", "chudnovsky-reduced"},
                                 {"pi", "ramanujan-reduced"}, {"e", "exp(1)"},          {"e", "exp(-1)"},
                                 {"sqrt", "newton"},          {"goldenratio", "newton"}};

constexpr std::uint32_t task_counts[]{1,  2,  3,  4,  5,  6,  7,  8,  9,   10,  11,  12,  13,  14,  15,   16,   24,
                                      28, 32, 36, 48, 56, 64, 72, 96, 112, 128, 192, 256, 384, 512, 1024, 4096, 65536};

/// Half of `count` odd sizes in decimal digits spread from 100 to 10^12, the others next to where a longest product of
/// twice the size fills a row of the hybrid transform.
std::vector<std::uint64_t> sizes(std::size_t count) {
    std::vector<std::uint64_t> list;
    const std::size_t spread = count / 2;
    for (std::size_t i = 0; i < spread; ++i)
        list.push_back(static_cast<std::uint64_t>(
                           std::pow(10.0, 2 + 10.0 * static_cast<double>(i) / static_cast<double>(spread - 1)))
                       | 1);
    std::vector<std::uint64_t> capacities;
    for (const auto rows : {hybrid_rows(), long_hybrid_rows()})
        for (const HybridRow& row : rows)
            if (row.capacity_bits() > 1'000'000) capacities.push_back(row.capacity_bits());
    for (std::size_t i = 0; i < count - spread; ++i) {
        const auto bits = static_cast<double>(capacities[i * capacities.size() / (count - spread)]);
        const std::uint64_t digits = static_cast<std::uint64_t>(bits * std::log10(2.0) / (i % 2 == 0 ? 1 : 2));
        list.push_back(digits - 250 + 37 * (i % 7)); // guard digits and words decide on which side it is
    }
    return list;
}

class MemoryTrialTest : public testing::Test {
protected:
    void choose(const Algorithm& algorithm) {
        session.settings->set_constant(make_constant(constant_id(algorithm.constant)));
        if (session.settings->constant->algorithm_key() != algorithm.key)
            session.settings->constant->set_algorithm(algorithm.key);
    }

    void set(std::uint64_t digits, std::uint32_t tasks, bool hexadecimal, bool proof, bool text) {
        ConstantSettings& settings = *session.settings;
        settings.set_decimal_digits(digits);
        settings.size.enable_hexadecimal_digits(hexadecimal);
        settings.verify_output = proof;
        settings.output.format = text ? OutputFormat::text : OutputFormat::none;
        session.parallelism->task_decomposition = tasks;
        session.update();
    }

    /// The plan holds as it was made, or the settings are refused for a size that no multiplication reaches.
    bool holds() const {
        if (!session.plan) return dynamic_cast<const LimitExceededException*>(session.obstacle->cause.get());
        const std::uint64_t planned = std::uint64_t{padded_words(session.plan->result_words())} * sizeof(wtype)
                                      + std::max(session.plan->memory_bytes(), session.writer->buffer_bytes());
        for (const DryRun::Phase& phase : session.phases)
            if (phase.bytes > planned) return false;
        return session.working_memory == planned;
    }

    NormalFloatSessionB session;
};

TEST_F(MemoryTrialTest, EveryPlanHolds) {
    for (const Algorithm& algorithm : algorithms) {
        choose(algorithm);
        for (const std::uint64_t digits : sizes(large() ? 200 : 16))
            for (const std::uint32_t tasks : task_counts)
                for (unsigned output = 0; output < 8; ++output) {
                    if (!large() && output != digits % 8) continue;
                    set(digits, tasks, output & 1, output & 2, output & 4);
                    ASSERT_TRUE(holds()) << algorithm.constant << " " << algorithm.key << ", " << digits << " digits, "
                                         << tasks << " tasks, output " << output << ": "
                                         << (session.obstacle ? session.obstacle->reason : "corrected");
                }
    }
}

TEST_F(MemoryTrialTest, APlanThatIsShortIsCorrectedAndAHopelessOneRefused) {
    choose({"e", "exp(1)"});
    set(1'000'000, 24, true, true, true);
    const std::uint64_t planned = session.working_memory;
    const MemoryTrial trial = try_memory(*session.plan, *session.writer, *session.tables, planned / 2 / 64 * 64);
    EXPECT_GE(trial.bytes, planned);
    EXPECT_LT(trial.bytes, planned + planned / 8);
    std::uint64_t most = 0;
    for (const DryRun::Phase& phase : session.phases) most = std::max(most, phase.bytes);
    EXPECT_LE(most, planned);
    EXPECT_GE(most, planned - planned / 20); // nothing large is planned that nobody asks for
    EXPECT_THROW(try_memory(*session.plan, *session.writer, *session.tables, 4096), BufferTooSmallException);
}

/// Memory whose last byte is followed by a page that can't be touched.
class ExactMemory {
public:
    explicit ExactMemory(std::size_t bytes_) : bytes(bytes_), mapped((bytes + 2 * page - 1) / page * page) {
        base = static_cast<std::byte*>(
            mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
        if (base == MAP_FAILED) throw std::bad_alloc();
        mprotect(base + mapped - page, page, PROT_NONE);
    }
    ~ExactMemory() { munmap(base, mapped); }
    ExactMemory(const ExactMemory&) = delete;
    ExactMemory& operator=(const ExactMemory&) = delete;

    std::byte* data() const { return base + mapped - page - bytes; }

private:
    static constexpr std::size_t page = 4096;
    const std::size_t bytes, mapped;
    std::byte* base;
};

/// The first `count` decimal digits of the session's constant, computed in the memory of its plan and no more.
std::vector<std::uint8_t> digits_of(NormalFloatSessionB& session, const char* framework_key, std::uint64_t count) {
    const ExactMemory working(session.working_memory);
    std::vector<std::byte> tables(session.twiddle_memory + 64);
    session.tables->place(tables.data() + (64 - reinterpret_cast<std::uintptr_t>(tables.data()) % 64) % 64);
    const auto framework = make_framework_config(framework_key)->make_framework();
    MultiplyParameters pars;
    pars.tds = session.parallelism->task_decomposition;
    pars.framework = framework.get();
    pars.tables = session.tables.get();

    AlignedBufferC<64> rest(working.data(), session.working_memory);
    const LinearWordBuffer words = rest.spawn_words(padded_words(session.plan->result_words()));
    BigFloat number(words.pointer, words.words);
    session.plan->run(pars, {}, number, rest);
    EXPECT_TRUE(number.watched); // to the end of the output
    DigitResults results;
    session.writer->write(pars, {}, results, number, rest);
    std::vector<std::uint8_t> digits(count);
    results.decimal_stream->load_digits(digits.data(), nullptr, 0, count, {}, {});
    return digits;
}

class RealRunsTest : public MemoryTrialTest {
protected:
    /// Random settings of up to `most` digits against one run by one task; text files go to a folder of their own.
    void run(int runs, std::uint64_t least, std::uint64_t most) {
        const char* chosen = std::getenv("ZORVANE_TEST_SEED");
        const unsigned seed = chosen ? static_cast<unsigned>(std::atoi(chosen)) : 17;
        std::mt19937_64 random(seed);
        const auto pick = [&](std::uint64_t n) { return random() % n; };
        const std::string folder = testing::TempDir() + "memory_trial";
        std::filesystem::create_directories(folder);
        session.settings->output.set_path(folder);
        for (int i = 0; i < runs; ++i) {
            const Algorithm& algorithm = algorithms[pick(std::size(algorithms))];
            const double scale = static_cast<double>(pick(1'000'000)) * 1e-6;
            const auto digits = static_cast<std::uint64_t>(
                static_cast<double>(least) * std::pow(static_cast<double>(most) / static_cast<double>(least), scale));
            const std::uint32_t tasks = task_counts[pick(std::size(task_counts))];
            const char* const framework = tasks > 512 ? "none" : frameworks[pick(std::size(frameworks))];
            const std::uint64_t output = pick(8);
            choose(algorithm);
            set(digits, tasks, output & 1, output & 2, output & 4);
            SCOPED_TRACE(testing::Message()
                         << algorithm.constant << " " << algorithm.key << ", " << digits << " digits, " << tasks
                         << " tasks, " << framework << ", output " << output << ", seed " << seed);
            ASSERT_TRUE(holds());
            std::vector<std::uint8_t> computed;
            try {
                computed = digits_of(session, framework, digits);
            } catch (const Exception& failure) {
                failure.print();
                FAIL();
            }
            const std::vector<std::uint8_t>& expected = reference(algorithm.constant, most);
            ASSERT_TRUE(std::equal(computed.begin(), computed.end(), expected.begin()));
        }
        std::filesystem::remove_all(folder);
    }

private:
    static constexpr const char* frameworks[]{"none", "spawn", "pushpool", "winpool", "cppasync"};

    const std::vector<std::uint8_t>& reference(const char* constant, std::uint64_t most) {
        std::vector<std::uint8_t>& digits = references[constant];
        if (digits.empty()) {
            for (const Algorithm& algorithm : algorithms)
                if (std::string_view(algorithm.constant) == constant) choose(algorithm); // the last one
            set(most, 1, false, true, false);
            digits = digits_of(session, "none", most);
        }
        return digits;
    }

    std::map<std::string, std::vector<std::uint8_t>> references;
};

TEST_F(RealRunsTest, StayWithinTheirPlansAndAgree) {
    if (large())
        run(2000, 100, 5'000'000);
    else
        run(60, 100, 200'000);
}

TEST_F(RealRunsTest, LongOnesStayWithinTheirPlansAndAgree) {
    if (!large()) GTEST_SKIP() << "set ZORVANE_TEST_LARGE for runs of up to 10^8 digits";
    run(40, 20'000'000, 100'000'000);
}

} // namespace
} // namespace zvp

#include "app/console/linear_console_status.h"
#include "functions/functions_support.h"
#include "support/program.h"

#include <algorithm>

namespace {

using namespace test;

/// What a call throws: type, function and text or sizes.
template <class Call>
std::string failure(Call&& call) {
    const auto told = [](const auto& caught) { return caught.function + ": " + caught.message; };
    try {
        call();
    } catch (const zvp::BufferTooSmallException& caught) {
        return std::string("too small: ") + caught.function;
    } catch (const zvp::ArithmeticException& caught) {
        return "arithmetic: " + told(caught);
    } catch (const zvp::InvalidParametersException& caught) {
        return "parameters: " + told(caught);
    } catch (const zvp::LimitExceededException& caught) {
        return "limit: " + caught.function;
    }
    return "nothing";
}

class Plans : public testing::Test {
protected:
    /// Less by a word, a word and a line than planned fails, and nothing is written before that.
    void expect_exact(const std::string& name, const Planned& planned, const std::vector<std::string>& memory_names) {
        SCOPED_TRACE(name);
        const auto run = [&](std::size_t result, std::size_t words, std::size_t lines) {
            Storage storage(planned, result, words, lines);
            const std::string told = failure([&] { storage.run(planned, products.pars); });
            storage.expect_intact();
            return told;
        };
        EXPECT_EQ(run(0, 0, 0), "nothing");
        EXPECT_EQ(run(1, 0, 0), "too small: " + name);
        const std::string buffer = run(0, 1, 0), memory = run(0, 0, 1);
        EXPECT_TRUE(buffer == "too small: " + name || buffer == "too small: LinearWordBuffer::cut_from_bottom()")
            << buffer;
        EXPECT_NE(std::find(memory_names.begin(), memory_names.end(), memory), memory_names.end()) << memory;
    }

    std::mt19937_64 random{seed()};
    Products products{30'000};
};

TEST_F(Plans, OneWordOrOneLineLessThanPlannedIsRefused) {
    for (const std::size_t p :
         {0u, 1u, 2u, 9u, 10u, 11u, 17u, 18u, 33u, 127u, 185u, 200u, 201u, 1'000u, 1'010u, 1'013u, 5'555u}) {
        for (const std::uint32_t tds : {1u, 2u, 3u}) {
            SCOPED_TRACE(testing::Message() << "p " << p << " tds " << tds);
            products.pars.tds = tds;
            const Number A = random_number(random, p + 2), N = random_number(random, p + 2);
            const Number positive(random_words(random, p + 2), 0);
            const std::string end = p < 10 ? "_E::run()" : "::run()",
                              helper = "too small: TransformHelper::TransformHelper()";
            const auto names = [&](const std::string& name) {
                const std::string large = name.substr(0, name.find("_E")) + "::run()"; // whose plan has the size
                return std::vector{"too small: " + name, "too small: " + large, helper};
            };
            const std::string reciprocal = "Reciprocal_BigFloatR" + end, word = "InvsqrtWord_BigFloatR" + end;
            const std::string square_root = "InvsqrtFloat_BigFloatR" + end, division = "Division_BigFloatR::run()";
            expect_exact(reciprocal, reciprocal_of(A.f, p, tds), names(reciprocal));
            expect_exact(square_root, invsqrt_of(positive.f, p, tds), names(square_root));
            expect_exact(word, invsqrt_of(zvp::wtype{7}, p, tds), names(word));
            expect_exact(division, quotient_of(N.f, A.f, p, tds), names(division));
        }
    }
}

TEST_F(Plans, TellTheirFormulas) {
    for (const std::size_t p : {0u, 7u, 9u, 10u, 11u, 500u, 4'321u}) {
        SCOPED_TRACE(p);
        const auto bytes = [](std::size_t words) {
            std::uint64_t form, scratch;
            return (zvp::algorithm_table<zvp::wtype>().mSBsizes(form, scratch, words, 2) + 63) / 64 * 64;
        };
        const std::size_t h = p / 2, q = h + 1, s = std::min<std::size_t>(p, 10);
        const auto down = [](std::size_t n) { return n / 16 * 16; };
        const zvp::Reciprocal_BigFloatR reciprocal(p, 2);
        EXPECT_EQ(reciprocal.result_words, p + 35);
        EXPECT_EQ(reciprocal.small.result_words, s + 3);
        EXPECT_EQ(reciprocal.small.buffer_words, down(s + 21));
        EXPECT_EQ(reciprocal.buffer_words, std::max(down(h + 19) + down(h + 18), down(s + 21)));
        EXPECT_EQ(reciprocal.memory_bytes, bytes(p + 8));
        const zvp::InvsqrtFloat_BigFloatR square_root(p, 2);
        const zvp::InvsqrtWord_BigFloatR word(p, 2);
        EXPECT_EQ(square_root.result_words, p + 36);
        EXPECT_EQ(square_root.buffer_words, std::max(down(h + 20) + down(h + 18), down(s + 22)));
        EXPECT_EQ(square_root.memory_bytes, bytes(p + q + 8));
        EXPECT_EQ(word.buffer_words, square_root.buffer_words);
        EXPECT_EQ(word.memory_bytes, bytes(p + 8));
        const zvp::Division_BigFloatR division(p, 2);
        EXPECT_EQ(division.x_words, (std::max(p - q + 5, q + 35) + 15) / 16 * 16);
        EXPECT_EQ(division.result_words, p + 2);
    }
}

TEST_F(Plans, RefuseWhatIsBeyondThem) {
    const Number A({5, 7}, 0), zero(Words{}, 0), negative({5}, 0, false);
    for (const std::size_t p : {9u, 50u}) {
        const std::string end = p < 10 ? "_E::run()" : "::run()";
        const auto told = [&](const Planned& planned, std::uint32_t tds) {
            Storage storage(planned);
            products.pars.tds = tds;
            return failure([&] { storage.run(planned, products.pars); });
        };
        const auto higher = [&](auto plan, const std::string& name, auto operand) {
            const Planned planned{p, plan, [=](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                                      plan.run(pars, status, T, operand, plan.p + 1, buffer);
                                  }};
            const std::string run = name + (p < 9 ? "_E::run()" : "::run()");
            EXPECT_EQ(told(planned, 1), "parameters: " + run + ": p is larger than plan.");
        };
        higher(zvp::Reciprocal_BigFloatR(p, 1), "Reciprocal_BigFloatR", A.f);
        higher(zvp::InvsqrtFloat_BigFloatR(p, 1), "InvsqrtFloat_BigFloatR", A.f);
        higher(zvp::InvsqrtWord_BigFloatR(p, 1), "InvsqrtWord_BigFloatR", zvp::wtype{3});
        const std::string tasks = ": tds is larger than plan.";
        EXPECT_EQ(told(reciprocal_of(A.f, p, 1), 2), "parameters: Reciprocal_BigFloatR" + end + tasks);
        EXPECT_EQ(told(invsqrt_of(A.f, p, 1), 2), "parameters: InvsqrtFloat_BigFloatR" + end + tasks);
        EXPECT_EQ(told(invsqrt_of(zvp::wtype{3}, p, 1), 2), "parameters: InvsqrtWord_BigFloatR" + end + tasks);
        EXPECT_EQ(told(quotient_of(A.f, A.f, p, 2), 1),
                  "parameters: Division_BigFloatR<wtype>::run(): Mismatching tds.");
        const std::string by_zero = "arithmetic: Reciprocal_BigFloatR_E::run(): Divide by zero.";
        EXPECT_EQ(told(reciprocal_of(zero.f, p, 1), 1), by_zero);
        EXPECT_EQ(told(quotient_of(A.f, zero.f, p, 1), 1), by_zero);
        const std::string root = "arithmetic: InvsqrtFloat_BigFloatR_E::run(): Square root of negative number.";
        EXPECT_EQ(told(invsqrt_of(zero.f, p, 1), 1), root);
        EXPECT_EQ(told(invsqrt_of(negative.f, p, 1), 1), root);
        EXPECT_EQ(told(invsqrt_of(zvp::wtype{0}, p, 1), 1),
                  "arithmetic: InvsqrtWord_BigFloatR_E::run(): Divide by zero.");

        const Planned nothing = quotient_of(zero.f, zero.f, p, 1);
        Storage storage(nothing);
        storage.run(nothing, products.pars);
        EXPECT_TRUE(storage.result.f.L == 0 && storage.result.f.exp == 0 && !storage.result.f.sign);
    }
}

TEST_F(Plans, ServeEveryLowerPrecisionAndSmallerBuffersOfIt) {
    const zvp::Reciprocal_BigFloatR reciprocal(300, 3);
    const zvp::InvsqrtFloat_BigFloatR square_root(300, 3);
    const zvp::InvsqrtWord_BigFloatR word(300, 3);
    const Number A(random_words(random, 302), 0);
    for (const std::size_t p : {0u, 5u, 9u, 10u, 77u, 299u, 300u}) {
        SCOPED_TRACE(p);
        const zvp::wtype x = 12345;
        const Planned plans[] = {{p + 3, zvp::Reciprocal_BigFloatR(p, 1),
                                  [&](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                                      reciprocal.run(pars, status, T, A.f, p, buffer);
                                  }},
                                 {p + 4, zvp::InvsqrtFloat_BigFloatR(p, 1),
                                  [&](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                                      square_root.run(pars, status, T, A.f, p, buffer);
                                  }},
                                 {p + 4, zvp::InvsqrtWord_BigFloatR(p, 1),
                                  [&](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                                      word.run(pars, status, T, x, p, buffer);
                                  }}};
        for (const Planned& planned : plans) {
            Storage storage(planned);
            products.pars.tds = 1;
            EXPECT_EQ(failure([&] { storage.run(planned, products.pars); }), "nothing");
            storage.expect_intact();
        }
    }
}

TEST_F(Plans, CarveTheirWordsFromAnAlignedBuffer) {
    const Number A({5, 7}, 0);
    const zvp::Reciprocal_BigFloatR plan(50, 1);
    const Planned planned = reciprocal_of(A.f, 50, 1);
    Storage storage(planned), direct(planned);
    zvp::MultiplyParameters pars = products.pars;
    pars.M = storage.memory.p;
    pars.ML = storage.memory.bytes;
    const zvp::AlignedBufferC<64> buffer(storage.buffer.p, storage.buffer.bytes);
    plan.run(pars, nullptr, storage.result.f, A.f, 50, buffer, plan.buffer_words);
    direct.run(planned, products.pars);
    EXPECT_EQ(words_of(storage.result.f), words_of(direct.result.f));
    EXPECT_EQ(failure([&] { plan.run(pars, nullptr, storage.result.f, A.f, 50, buffer, plan.buffer_words - 1); }),
              "parameters: AlignedBufferC::spawn_words(): Size is misaligned.");
}

TEST_F(Plans, TablesForShorterProductsAreRefused) {
    const Number A({5, 7}, 0);
    const Planned planned = reciprocal_of(A.f, 20'000, 1);
    Storage storage(planned);
    const Products few(300);
    EXPECT_EQ(failure([&] { storage.run(planned, few.pars); }), "limit: TransformHelper::TransformHelper()");
}

/// A node that writes down what is pushed, with the depth of its level.
class Recorder final : public zvp::StatusNode {
public:
    Recorder(std::string& log_, std::size_t depth_) : log(log_), depth(depth_) {}

    zvp::Object get_tree() const override { return zvp::Object(); }
    StatusNode& make_node(zvp::StatusCell cell) override {
        log += std::to_string(depth) + cell.color + cell.text + "\n";
        return make_node();
    }
    StatusNode& make_node() override {
        EXPECT_EQ(child, nullptr);
        child = std::make_unique<Recorder>(log, depth + 1);
        return *child;
    }
    zvp::StatusIteration& make_iteration(zvp::StatusCell, std::uint64_t, zvp::IterationMode, bool) override {
        throw zvp::StringException("", "no iterations here");
    }
    void update(bool) override {}
    void pop_frame(const zvp::StatusFrame& frame) override {
        EXPECT_LE(frame.cells, cells);
        cells -= frame.cells;
        if (!frame.children.empty()) child.reset();
    }
    void push_cells(std::vector<zvp::StatusCell> list) override {
        for (auto& cell : list) push_cell(std::move(cell));
    }
    void push_cell(zvp::StatusCell cell) override {
        log += std::to_string(depth) + cell.color + cell.text + "\n";
        ++cells;
    }
    void push_node(std::unique_ptr<StatusNode>) override {}

    std::size_t cells = 0;

private:
    std::string& log;
    const std::size_t depth;
    std::unique_ptr<Recorder> child;
};

TEST_F(Plans, ShowEveryLevelOnce) {
    const Number A({3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47}, 0);
    const auto log_of = [&](const Planned& planned) {
        std::string log;
        Recorder node(log, 0);
        Storage storage(planned);
        storage.run(planned, products.pars, &node);
        EXPECT_EQ(node.cells, 0u);
        // Which side the estimate was on is a matter of the operand.
        for (std::size_t at; (at = log.find(" O")) != std::string::npos;) log[at + 1] = 'U';
        return log;
    };
    EXPECT_EQ(log_of(reciprocal_of(A.f, 20, 1)), "0G0\n1G0\n1w 0M \n1w 24 bytes\n1w U1M \n1w 24 bytes\n"
                                                 "0w 0M \n0w 44 bytes\n0w U1M \n0w 44 bytes\n");
    EXPECT_EQ(log_of(quotient_of(A.f, A.f, 10, 1)), "0G0\n0w 1M \n0w 24 bytes\n0w 2M \n0w 24 bytes\n");
    EXPECT_EQ(log_of(invsqrt_of(A.f, 10, 1)), "0G0\n0w 0S \n0w 24 bytes\n0w 1M \n0w 24 bytes\n0w U2M \n0w 24 bytes\n");
    EXPECT_EQ(log_of(invsqrt_of(zvp::wtype{3}, 10, 1)), "0G0\n0w 0S \n0w 24 bytes\n0w U1M \n0w 24 bytes\n");
}

TEST_F(Plans, RunAsTasksOfASink) {
    const Number A({3, 5}, 0);
    const std::string printed = printed_by([&] {
        zvp::LinearConsoleRoot sink;
        const zvp::Division_BigFloatR division(40, 1);
        const zvp::InvsqrtFloat_BigFloatR square_root(40, 1);
        const zvp::InvsqrtWord_BigFloatR word(40, 1);
        Storage storage(invsqrt_of(A.f, 80, 1));
        zvp::MultiplyParameters pars = products.pars;
        pars.M = storage.memory.p;
        pars.ML = storage.memory.bytes;
        const zvp::LinearWordBuffer buffer = storage.words();
        std::vector<std::uint32_t> words(division.buffer_words);
        division.run_task(pars, &sink, storage.result.f, A.f, A.f, {words.data(), words.size()});
        division.run_task(pars, nullptr, storage.result.f, A.f, A.f, {words.data(), words.size()});
        square_root.run_task(pars, &sink, storage.result.f, A.f, 40, buffer);
        word.run_task(pars, &sink, storage.result.f, 10'005, 40, buffer);
    });
    std::string lines = printed;
    for (std::size_t at; (at = lines.find("Time:")) != std::string::npos;)
        lines.erase(at, lines.find('\n', at) + 1 - at);
    EXPECT_EQ(lines, "Large Division...\nLarge Invsqrt...\nInvSqrt(10005)...\n");
}

} // namespace

#pragma once
// Numbers with known digits, runs on exactly the planned storage, and a sink that lets a test do something between steps.

#include "digits/hash/hash_field.h"
#include "digits/text/text_support.h"
#include "digits/writer/float_reader.h"
#include "digits/writer/float_writer.h"
#include "functions/fault_node.h"
#include "functions/functions_support.h"
#include "multiply/contract/multiply_tables.h"

#include <cmath>
#include <functional>

namespace test {

/// `digits` of |x| behind the point, cut, behind its integer part: "3.14".
inline std::string exact_digits(const BigFloat& x, int radix, std::uint64_t digits) {
    mpz_class power, value = integer(x.T, x.L);
    mpz_ui_pow_ui(power.get_mpz_t(), static_cast<unsigned>(radix), digits);
    value *= power;
    if (x.exp < 0)
        value >>= static_cast<unsigned>(-32 * x.exp);
    else
        value <<= static_cast<unsigned>(32 * x.exp);
    std::string text = value.get_str(radix);
    if (text.size() <= digits) text.insert(0, digits + 1 - text.size(), '0');
    return text.insert(text.size() - digits, ".");
}

/// The top `words` words of a positive value of MPFR's below 2^32, cut.
inline Number number_of(const Real& real, std::size_t words) {
    mpz_class value;
    Real scaled(mpfr_get_prec(real.x));
    mpfr_mul_2ui(scaled.x, real.x, 32 * words, MPFR_RNDD);
    mpfr_get_z(value.get_mpz_t(), scaled.x, MPFR_RNDD);
    Words all(words + 1);
    mpz_export(all.data(), nullptr, -1, sizeof all[0], 0, 0, value.get_mpz_t());
    while (all.back() == 0) all.pop_back();
    return Number(all, -static_cast<std::int64_t>(words));
}

/// Words that hold that many decimal digits with some to spare.
inline std::size_t words_for(std::uint64_t digits) {
    return static_cast<std::size_t>(std::ceil(static_cast<double>(digits) * std::log2(10.0) / 32)) + 3;
}

/// Keeps the lines of tasks; on_task(line) runs before a task begins, on_step() as the task `stepped` shows its `step`.
class HookSink final : public zvp::StatusSink {
public:
    void print_cells(const std::vector<zvp::StatusCell>&) override {}
    void print_line(std::string_view, char) override {}
    void print_pair(std::size_t, std::string_view, const zvp::StatusCell&) override {}
    void print_time(std::string_view, double) override {}
    void report_result(const zvp::ReportObject&) override {}
    void warning(std::string_view text) override { warnings.emplace_back(text); }
    void pause_warning(std::string_view) override {}
    [[noreturn]] void fatal(const zvp::Exception& exception) override {
        exception.fire();
        std::abort();
    }
    void print(std::string_view) override {}
    void print(const zvp::StatusCell&) override {}
    void end_line() override {}
    void update(bool) override {}
    zvp::StatusNode& begin_task(std::string_view line) override {
        lines.emplace_back(line);
        if (on_task) on_task(lines.back());
        node = std::make_unique<FaultNode>(lines.back() == stepped ? step : ~std::size_t{0}, [this] { on_step(); });
        return *node;
    }
    void end_task(double) override {
        if (lines.back() == stepped) steps = node->steps();
        node.reset();
    }

    std::function<void(const std::string&)> on_task;
    std::function<void()> on_step = [] {};
    std::string stepped;
    std::size_t step = ~std::size_t{0};
    std::size_t steps = 0; // that it showed
    std::vector<std::string> lines;
    std::vector<std::string> warnings;

private:
    std::unique_ptr<FaultNode> node;
};

/// A writer with its tables and its buffer of exactly the planned size, less `less_lines` of 64 bytes.
class Writing {
public:
    Writing(const zvp::DigitOutput& output, bool verify, bool partial, std::uint64_t compute, std::uint64_t decimal,
            std::uint64_t hexadecimal, std::uint32_t tasks, std::size_t less_lines = 0)
        : writer(tables, "Pi", "Test", output, verify, partial, compute, decimal, hexadecimal, tasks),
          table_memory(tables.bytes()),
          buffer(writer.buffer_bytes() - 64 * less_lines) {
        tables.place(table_memory.p);
        pars.tds = tasks;
        pars.framework = framework.get();
        pars.tables = &tables;
    }

    void run(const BigFloat& x) { writer.write(pars, {&sink, nullptr}, results, x, span()); }
    std::string fault(const BigFloat& x) {
        return fault_of([&] { run(x); });
    }
    zvp::AlignedBufferC<64> span() const { return {buffer.p, buffer.bytes}; }
    std::uint32_t* radix_words() const { return reinterpret_cast<std::uint32_t*>(buffer.p); }

private:
    zvp::MultiplyTables tables;
    std::unique_ptr<zvp::ParallelFramework> framework = zvp::make_framework_config("pushpool")->make_framework();

public:
    const zvp::FloatWriterB writer;
    zvp::MultiplyParameters pars;
    HookSink sink;

private:
    Scratch table_memory;

public:
    Scratch buffer;
    zvp::DigitResults results;
};

} // namespace test

// The road of digits: words to values with their counts and hash, values to characters in a file, the file read back.
// One and two threads, every kernel set for the conversions. The files go to the folder that ZORVANE_BENCH_FOLDER names,
// or to the working folder; "raw" ones pass by the system's memory.

#include "digits/text/text_reader.h"
#include "digits/text/text_writer.h"
#include "digits/writer/float_reader.h"
#include "parallel/tasks/framework_config.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace zvp;

constexpr std::size_t cached_words = 8'192;
constexpr std::size_t page = 4'096;
constexpr std::size_t file_buffer_bytes = std::size_t{16} << 20;

std::vector<std::uint32_t> random_words(std::size_t n) {
    std::mt19937_64 random(1);
    std::vector<std::uint32_t> words(n);
    for (std::uint32_t& word : words) word = static_cast<std::uint32_t>(random() % 1'000'000'000);
    return words;
}

struct Free {
    void operator()(void* p) const { std::free(p); }
};

/// Memory that is in place already, and a context of that many threads.
struct Setting {
    explicit Setting(const benchmark::State& state) : digits(static_cast<std::size_t>(state.range(0))), values(digits) {
        context.tds = static_cast<std::uint32_t>(state.range(1));
        context.framework = context.tds > 1 ? framework.get() : nullptr;
        std::fill_n(file_buffer.get(), file_buffer_bytes, std::byte{0});
    }

    DigitViewer2::DigitBuffer buffer() const { return {file_buffer.get(), file_buffer_bytes}; }

    const std::size_t digits;
    std::vector<std::uint8_t> values;
    std::unique_ptr<ParallelFramework> framework = make_framework_config("pushpool")->make_framework();
    ParallelContext context;
    std::unique_ptr<std::byte, Free> file_buffer{static_cast<std::byte*>(std::aligned_alloc(page, file_buffer_bytes))};
};

void count_bytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

void run_decoder(benchmark::State& state, WordDecoder decode, std::size_t word_digits) {
    const std::vector<std::uint32_t> words = random_words(cached_words);
    std::vector<std::uint8_t> output(word_digits * words.size());
    for (auto _ : state) {
        decode(output.data(), words.data(), words.size());
        benchmark::ClobberMemory();
    }
    count_bytes(state, output.size());
}

void run_characters(benchmark::State& state, CharacterRoutine routine, std::uint8_t first) {
    std::vector<std::uint8_t> input(9 * cached_words), output(input.size());
    for (std::size_t i = 0; i < input.size(); ++i) input[i] = static_cast<std::uint8_t>(first + i * 7 % 10);
    for (auto _ : state) benchmark::DoNotOptimize(routine(output.data(), input.data(), input.size()));
    count_bytes(state, output.size());
}

/// Words to values, counted and hashed.
void run_load_words(benchmark::State& state) {
    Setting setting(state);
    const std::vector<std::uint32_t> words = random_words(setting.digits / 9 + 1);
    DigitViewer2::FloatReaderB reader(words.data(), words.size(), 3);
    for (auto _ : state) {
        DigitCounts counts(10);
        reader.load_digits(setting.values.data(), &counts, 0, setting.digits, {}, setting.context);
        benchmark::DoNotOptimize(counts);
    }
    count_bytes(state, setting.digits);
}

std::string file_path() {
    const char* folder = std::getenv("ZORVANE_BENCH_FOLDER");
    return std::string(folder ? folder : ".") + "/zorvane digits bench.txt";
}

std::unique_ptr<DigitViewer2::BasicDigitReader> write_file(Setting& setting, bool raw) {
    DigitViewer2::BasicTextWriter writer(file_path(), "3.1", 10, raw);
    writer.store_digits(setting.values.data(), 0, setting.digits, setting.buffer(), setting.context);
    return writer.close_and_get_basic_reader();
}

/// To the end of the sync.
void run_write(benchmark::State& state, bool raw) {
    Setting setting(state);
    for (auto _ : state) write_file(setting, raw);
    count_bytes(state, setting.digits);
    std::remove(file_path().c_str());
}

void run_read_back(benchmark::State& state, bool raw) {
    Setting setting(state);
    const auto reader = write_file(setting, raw);
    for (auto _ : state) {
        DigitCounts counts(10);
        reader->load_stats(counts, 0, setting.digits, setting.buffer(), setting.context);
        benchmark::DoNotOptimize(counts);
    }
    count_bytes(state, setting.digits);
    std::remove(file_path().c_str());
}

template <class... Arguments>
void on_sizes(const std::string& name, Arguments... arguments) {
    benchmark::RegisterBenchmark(name.c_str(), arguments...)
        ->ArgsProduct({{10'000'000, 100'000'000}, {1, 2}})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

} // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    for (const platform::KernelSet set : platform::all_kernel_sets) {
        if (!platform::kernel_set_supported(set)) continue;
        const std::string name(platform::kernel_set_name(set));
        const WordDecoders& decoders = word_decoders(set);
        const CharacterKernels& characters = character_kernels(set);
        benchmark::RegisterBenchmark((name + "/decode/10").c_str(), run_decoder, decoders.decimal, 9);
        benchmark::RegisterBenchmark((name + "/decode/16").c_str(), run_decoder, decoders.hexadecimal, 8);
        benchmark::RegisterBenchmark((name + "/to_text/10").c_str(), run_characters, characters.decimal_to_text, 0);
        benchmark::RegisterBenchmark((name + "/to_text/16").c_str(), run_characters, characters.hexadecimal_to_text, 0);
        benchmark::RegisterBenchmark((name + "/of_text/10").c_str(), run_characters, characters.text_to_decimal, '0');
        benchmark::RegisterBenchmark((name + "/of_text/16").c_str(), run_characters, characters.text_to_hexadecimal,
                                     '0');
    }
    on_sizes("load_words", run_load_words);
    on_sizes("write/raw", run_write, true);
    on_sizes("write/through", run_write, false);
    on_sizes("read_back/raw", run_read_back, true);
    on_sizes("read_back/buffered", run_read_back, false);
    benchmark::RunSpecifiedBenchmarks();
}

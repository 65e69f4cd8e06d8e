// The file layer: checksums of sectors in cache, and transfers of a 256 MiB file in the folder that ZORVANE_BENCH_FOLDER
// names (the working folder if it isn't set), raw or written through, with checksums or without.

#include "farmemory/files/checksummed_file.h"
#include "farmemory/files/raw_file.h"
#include "farmemory/files/sector_checksum.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t sector_bits = 18; // the usual width of a stripe
constexpr std::size_t file_bytes = std::size_t{256} << 20, pass_bytes = std::size_t{64} << 20;

std::string bench_file() {
    const char* folder = std::getenv("ZORVANE_BENCH_FOLDER");
    return std::string(folder ? folder : ".") + "/zorvane-files-bench";
}

void BM_Checksum(benchmark::State& state) {
    std::vector<std::uint64_t> words(static_cast<std::size_t>(state.range(0)) / 8, 0x0123'4567'89AB'CDEF);
    for (auto _ : state) benchmark::DoNotOptimize(FileIO::sector_checksum(1, words.data(), words.size()));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Checksum)->Arg(4096)->Arg(1 << sector_bits);

/// Arguments: raw, checksums, store.
void BM_Transfer(benchmark::State& state) {
    std::vector<std::uint32_t> sums(pass_bytes >> sector_bits);
    const std::unique_ptr<char, decltype(&std::free)> buffer(
        static_cast<char*>(std::aligned_alloc(std::size_t{1} << sector_bits, pass_bytes)), &std::free);
    std::memset(buffer.get(), 0x5A, pass_bytes);
    std::unique_ptr<FileIO::AlignedAccessFile> file;
    const bool raw = state.range(0) != 0;
    if (state.range(1) == 0)
        file = std::make_unique<FileIO::RawFile>(file_bytes, bench_file(), sector_bits, raw);
    else
        file = std::make_unique<FileIO::ChecksummedFile>(file_bytes, bench_file(), sector_bits, raw, 1, sums.data(),
                                                         sums.size() * 4);
    file->set_keep_on_destroy(false);
    for (std::size_t place = 0; place < file_bytes; place += pass_bytes)
        file->store(place, buffer.get(), pass_bytes, sums);
    for (auto _ : state)
        for (std::size_t place = 0; place < file_bytes; place += pass_bytes) {
            if (state.range(2) != 0)
                file->store(place, buffer.get(), pass_bytes, sums);
            else
                file->load(place, buffer.get(), pass_bytes, sums);
        }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file_bytes));
}
BENCHMARK(BM_Transfer)->ArgsProduct({{0, 1}, {0, 1}, {0, 1}})->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

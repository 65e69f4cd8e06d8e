// Text digit files: what opens, what comes back, and stores in any order.

#include "digits/text/text_support.h"

#include <algorithm>
#include <thread>

namespace {

using namespace test;
using DigitViewer2::BasicTextReader;
using DigitViewer2::BasicTextWriter;
using zvp::DigitCounts;

constexpr const char* opening = "BasicTextReader::BasicTextReader()";

struct TextFile : testing::Test {
    std::string put(const std::string& content) const {
        write_file(folder.path / "digits.txt", content);
        return folder.path / "digits.txt";
    }
    TemporaryFolder folder;
};

using TextReader = TextFile;
using TextWriter = TextFile;

TEST_F(TextReader, TellsRadixOffsetAndLength) {
    struct Row {
        std::string content;
        unsigned radix;
        unsigned found; // 0: refused
        std::uint64_t digits;
        std::string fault;
    };
    const std::string none = "A decimal place was not found within the first 63 bytes of the file.";
    const std::string sixty_three(63, '1'), sixty_four(64, '1');
    const std::vector<Row> rows{
        {"3.14", 0, 10, 2, ""},
        {"3.", 0, 10, 0, ""},
        {"3.243f6a", 0, 16, 6, ""},
        {"3.243f6a", 10, 10, 6, ""},
        {"b.504", 0, 16, 3, ""},
        {"1" + std::string(70, '2') + ".5", 0, 0, 0, std::string(opening) + "|" + none},
        {sixty_three + ".5", 0, 10, 1, ""},
        {sixty_three + ".5", 16, 16, 1, ""},
        {sixty_four + ".5", 0, 0, 0, std::string(opening) + "|" + none},
        {sixty_four + ".5", 10, 0, 0, std::string(opening) + "|" + none},
        {"", 0, 0, 0, std::string(opening) + "|" + none},
        {"-3.14", 0, 0, 0, "TextReader::BasicTextReader()|Invalid Digit"},
        {"-3.14", 10, 10, 2, ""},
        {"3.14\n", 0, 0, 0, "TextReader::BasicTextReader()|Invalid Digit"},
        {"3.AB", 0, 0, 0, "TextReader::BasicTextReader()|Invalid Digit"},
        {"3.14", 12, 0, 0, std::string(opening) + "|Invalid Radix"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.content + ", radix " + std::to_string(row.radix));
        const std::string path = put(row.content);
        std::unique_ptr<BasicTextReader> reader;
        const std::string fault =
            fault_of([&] { reader = std::make_unique<BasicTextReader>(path, row.radix % 3 == 0, row.radix); });
        EXPECT_EQ(fault, row.found ? "nothing" : row.fault);
        ASSERT_EQ(reader != nullptr, row.found != 0);
        if (!reader) continue;
        EXPECT_EQ(reader->radix, row.found);
        EXPECT_EQ(reader->stream_end(), row.digits);
        EXPECT_EQ(reader->first_digits(), row.content.substr(0, 64));
    }
}

TEST_F(TextReader, LoadsAnyRangeThroughAnyBuffer) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Contexts contexts;
    for (const unsigned radix : {10u, 16u}) {
        const Values values = random_values(random, 150'001, radix);
        for (const bool raw : {true, false}) {
            BasicTextReader reader(put("271." + text_of(values)), raw, radix);
            for (const zvp::ParallelContext& context : contexts.all()) {
                for (int i = 0; i < 12; ++i) {
                    const std::size_t start = random() % values.size();
                    const std::size_t count =
                        random() % 3 ? random() % 64 % (values.size() - start) : random() % (values.size() - start + 1);
                    const Sectors sectors(4'096 + random() % 100'000);
                    DigitCounts expected(radix, 12'345), stats(radix, 12'345), only_stats(radix, 12'345);
                    expected.add(values.data() + start, count);
                    Values output(count + 1, 0xEE);
                    reader.load_digits(output.data(), &stats, start, count, buffer_of(sectors), context);
                    reader.load_stats(only_stats, start, count, buffer_of(sectors), context);
                    ASSERT_TRUE(std::equal(output.begin(), output.end() - 1, values.data() + start));
                    EXPECT_EQ(output.back(), 0xEE);
                    EXPECT_EQ(stats.hash, expected.hash);
                    EXPECT_EQ(stats.counts, expected.counts);
                    EXPECT_EQ(only_stats.hash, expected.hash);
                    EXPECT_EQ(only_stats.counts, expected.counts);
                }
            }
        }
    }
}

TEST_F(TextReader, RefusesWhatItCannotLoad) {
    const std::string digits = "3." + std::string(8'000, '1');
    const std::string path = put(digits + "f");
    BasicTextReader reader(path, false, 10);
    const Sectors sectors(8'192);
    Values output(9'000);
    DigitCounts stats(10);
    const auto load = [&](std::uint64_t start, std::uint64_t count, std::size_t bytes) {
        return fault_of([&] { reader.load_digits(output.data(), nullptr, start, count, {sectors.data, bytes}, {}); });
    };
    EXPECT_EQ(load(0, 8'000, 8'192), "nothing");
    EXPECT_EQ(load(0, 8'000, 8'191), "nothing"); // in sectors
    EXPECT_EQ(load(0, 8'001, 8'192), "BasicTextReader::process_txt()|Invalid Digit");
    EXPECT_EQ(load(8'001, 0, 8'192), "nothing");
    EXPECT_EQ(load(8'000, 2, 8'192), "BasicTextReader::load_digits()|Out of range.");
    EXPECT_EQ(load(~std::uint64_t{0}, 2, 8'192), "BasicTextReader::load_digits()|Out of range.");
    EXPECT_EQ(load(0, 5, 4'095), "BasicTextReader::load_digits()|4095 of 4096");
    EXPECT_EQ(fault_of([&] { reader.load_stats(stats, 0, 8'002, buffer_of(sectors), {}); }),
              "BasicTextReader::load_stats()|Out of range.");
    std::filesystem::resize_file(path, 5'000); // somebody cuts it
    EXPECT_EQ(load(0, 4'998, 8'192), "nothing");
    EXPECT_EQ(load(0, 4'999, 8'192), "BasicTextReader::load_digits()|Incomplete read.");
}

TEST(TextBuffer, RecommendedSizes) {
    using DigitViewer2::recommended_text_buffer;
    EXPECT_EQ(recommended_text_buffer(0, 0), 4'096u);
    EXPECT_EQ(recommended_text_buffer(1, 1 << 20), 8'192u);
    EXPECT_EQ(recommended_text_buffer(4'097, 1 << 20), 12'288u);
    EXPECT_EQ(recommended_text_buffer(4'097, 9'000), 9'000u);
    EXPECT_EQ(recommended_text_buffer(std::uint64_t{1} << 33, std::size_t{1} << 40), std::size_t{1} << 40);
    EXPECT_EQ(recommended_text_buffer(~std::uint64_t{0}, 5'000), 5'000u);
}

TEST_F(TextWriter, StoresInAnyOrderGiveTheFile) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Contexts contexts;
    for (int round = 0; round < 24; ++round) {
        const unsigned radix = round % 2 ? 16 : 10;
        const bool raw = round % 4 < 2;
        const Values values = random_values(random, 1 + random() % (round % 3 ? 60'000 : 3), radix);
        const std::string front = round % 5 ? "3." : "4294967295.", path = folder.path / "out.txt";
        write_file(path, std::string(100'000, 'x')); // of an earlier run
        std::vector<std::size_t> cuts{0, values.size()};
        for (int i = 0; i < 9; ++i) cuts.push_back(random() % (values.size() + 1));
        std::sort(cuts.begin(), cuts.end());
        std::vector<std::size_t> order(cuts.size() - 1);
        for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
        std::shuffle(order.begin(), order.end(), random);
        BasicTextWriter writer(path, front + "777", radix, raw);
        for (const std::size_t i : order) {
            const Sectors sectors(4'096 + random() % 30'000);
            writer.store_digits(values.data() + cuts[i], cuts[i], cuts[i + 1] - cuts[i], buffer_of(sectors),
                                contexts.all()[random() % 3]);
        }
        const auto reader = writer.close_and_get_basic_reader();
        ASSERT_EQ(read_file(path), front + text_of(values)) << values.size() << " digits, round " << round;
        EXPECT_EQ(reader->radix, radix);
        EXPECT_EQ(reader->stream_end(), values.size());
        EXPECT_EQ(writer.close_and_get_basic_reader(), nullptr);
    }
}

TEST_F(TextWriter, ThreadsThatShareSectorsLoseNothing) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Values values = random_values(random, 40'000, 10);
    BasicTextWriter writer(folder.path / "out.txt", "3.1", 10, false);
    const auto store_every_other = [&](std::size_t first) {
        const Sectors sectors(8'192);
        for (std::size_t start = first; start < values.size(); start += 200)
            writer.store_digits(values.data() + start, start, 100, buffer_of(sectors), {});
    };
    std::thread other([&] { store_every_other(100); });
    store_every_other(0);
    other.join();
    writer.close_and_get_basic_reader();
    EXPECT_EQ(read_file(folder.path / "out.txt"), "3." + text_of(values));
}

TEST_F(TextWriter, WhatNobodyStoredIsZeroBytesAndTheEndIsExact) {
    const Sectors sectors(4'096);
    BasicTextWriter writer(folder.path / "out.txt", "1.0", 10);
    const Values values{5, 6, 7};
    writer.store_digits(values.data(), 5'000, 3, buffer_of(sectors), {});
    writer.close_and_get_basic_reader();
    EXPECT_EQ(read_file(folder.path / "out.txt"), "1." + std::string(5'000, '\0') + "567");
}

TEST_F(TextWriter, RefusesWhatItCannotStore) {
    const std::string path = folder.path / "out.txt";
    const std::string no_point = "TextWriter::TextWriter()|No decimal place was found.";
    for (const char* first : {"3", "3.", "."})
        EXPECT_EQ(fault_of([&] { BasicTextWriter(path, first, 10); }), no_point) << first;
    std::filesystem::remove(path);
    EXPECT_EQ(fault_of([&] { BasicTextWriter(path, "3.1", 12); }), "BasicTextWriter::BasicTextWriter()|Invalid Radix");
    EXPECT_FALSE(std::filesystem::exists(path));

    const Contexts contexts;
    const Sectors sectors(65'536);
    Values values(50'000, 1);
    BasicTextWriter writer(path, "3.1", 10);
    writer.store_digits(values.data(), 0, 20'000, buffer_of(sectors), {});
    values[49'000] = 10;
    for (const zvp::ParallelContext& context : contexts.all())
        EXPECT_EQ(fault_of([&] { writer.store_digits(values.data(), 0, values.size(), buffer_of(sectors), context); }),
                  "BasicTextWriter::store_digits()|Invalid Digit");
    EXPECT_EQ(fault_of([&] {
                  writer.store_digits(values.data(), 0, 1, {sectors.data, 4'095}, {});
              }),
              "BasicTextWriter::store_digits()|4095 of 4096");
    writer.close_and_get_basic_reader();
    EXPECT_EQ(read_file(path), "3." + std::string(20'000, '1')); // what was stored before
    EXPECT_EQ(fault_of([&] { writer.store_digits(values.data(), 0, 1, buffer_of(sectors), {}); }),
              "BasicTextWriter::store_digits()|File is closed.");
}

TEST_F(TextWriter, NoPointNoFront) {
    BasicTextWriter writer(folder.path / "out.txt", "", 10);
    const Sectors sectors(4'096);
    const Values values{3, 1, 4};
    writer.store_digits(values.data(), 0, 3, buffer_of(sectors), {});
    EXPECT_EQ(fault_of([&] { writer.close_and_get_basic_reader(); }).substr(0, 34), opening);
    EXPECT_EQ(read_file(folder.path / "out.txt"), "314");
}

} // namespace

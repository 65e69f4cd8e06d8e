#pragma once

#include "digits/text/text_reader.h"
#include "digits/text/text_writer.h"
#include "farmemory/files/file_support.h"
#include "parallel/tasks/framework_config.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace test {

using Values = std::vector<std::uint8_t>;

inline Values random_values(std::mt19937_64& random, std::size_t n, unsigned radix) {
    Values values(n);
    for (std::uint8_t& value : values) value = static_cast<std::uint8_t>(random() % radix);
    return values;
}

inline char character_of(std::uint8_t value) { return "0123456789abcdef"[value]; }

inline std::string text_of(const Values& values) {
    std::string text;
    for (const std::uint8_t value : values) text += character_of(value);
    return text;
}

/// The reader's or writer's buffer in the memory of `sectors`.
inline DigitViewer2::DigitBuffer buffer_of(const Sectors& sectors) { return {sectors.data, sectors.bytes}; }

/// Contexts without and with threads.
class Contexts {
public:
    std::vector<zvp::ParallelContext> all() const { return {{1, nullptr}, {2, pool.get()}, {7, pool.get()}}; }

private:
    std::unique_ptr<zvp::ParallelFramework> pool = zvp::make_framework_config("pushpool")->make_framework();
};

} // namespace test

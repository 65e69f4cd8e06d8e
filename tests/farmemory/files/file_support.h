#pragma once

#include "app/failure/exceptions.h"
#include "app/failure/file_exceptions.h"
#include "support/fake_files.h"
#include "support/program.h"
#include "support/seed.h"

#include <cstdlib>
#include <memory>
#include <random>

namespace test {

/// What `function` raises, as "<function>|<message>", with "|<code>" for a code other than 0; "nothing" if it returns.
template <class Function>
std::string fault_of(Function&& function) {
    try {
        function();
    } catch (const zvp::PathException& fault) {
        return fault.function + "|" + fault.message
               + (fault.error_code ? "|" + std::to_string(fault.error_code) : std::string());
    } catch (const zvp::StringException& fault) {
        return fault.function + "|" + fault.message;
    } catch (const zvp::BufferTooSmallException& fault) {
        return std::string(fault.function) + "|" + std::to_string(fault.buffer_size) + " of "
               + std::to_string(fault.required_size);
    }
    return "nothing";
}

/// The same with the text of the system.
inline std::string fault(const std::string& function, const std::string& message, const std::string& text, int code) {
    return function + "|" + message + "\n\n" + text + "|" + std::to_string(code);
}

/// Bytes at an address that any sector takes.
struct Sectors {
    explicit Sectors(std::size_t bytes_)
        : bytes(bytes_), data(static_cast<char*>(std::aligned_alloc(65'536, (bytes_ + 65'535) / 65'536 * 65'536))) {}
    ~Sectors() { std::free(data); }
    Sectors(const Sectors&) = delete;
    Sectors& operator=(const Sectors&) = delete;

    /// Random bytes, with runs of zeros and ones.
    void fill(std::mt19937_64& random) {
        for (std::size_t i = 0; i < bytes;) {
            const std::uint64_t kind = random() % 4, run = 1 + random() % 3000;
            for (std::size_t end = std::min<std::size_t>(bytes, i + run); i < end; ++i)
                data[i] = static_cast<char>(kind == 0 ? 0 : kind == 1 ? 0xFF : random());
        }
    }
    std::string text() const { return {data, bytes}; }

    const std::size_t bytes;
    char* const data;
};

} // namespace test

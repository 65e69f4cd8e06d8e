#include "farmemory/files/aligned_access_file.h"

#include "app/failure/exceptions.h"

namespace FileIO {

void AlignedAccessFile::check_alignment(const void* buffer, std::uint64_t offset, std::uint64_t length) const {
    const auto require = [this](std::uint64_t value, const char* message) {
        if ((value & ((std::uint64_t{1} << alignment_bits) - 1)) != 0)
            throw zvp::InvalidParametersException("AlignedAccessFile::check_alignment()", message);
    };
    require(reinterpret_cast<std::uintptr_t>(buffer), "Buffer is misaligned.");
    require(offset, "Offset is misaligned.");
    require(length, "Length is misaligned.");
}

} // namespace FileIO

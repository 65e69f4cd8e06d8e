#pragma once
// Whole small files: configuration, formulas, check digits. Bulk files have a layer of their own.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zvp::platform {

/// The largest file that read_whole_file() takes: a device or a pipe may never end.
inline constexpr std::size_t max_whole_file_bytes = std::size_t{64} << 20;

/// Reads the whole file into `content`. Returns 0, or errno (EISDIR for a folder, EFBIG for one that is too large).
int read_whole_file(const std::string& path, std::string& content);

/// Replaces the file by `content`: written beside it, synced and renamed over it, so that a failure leaves the
/// old file as it was. Returns 0, or errno.
int write_whole_file(const std::string& path, std::string_view content);

bool file_exists(const std::string& path);

/// The bytes that this user's files may still take in the folder `path` (empty: the working folder); nothing if the system
/// doesn't say.
std::optional<std::uint64_t> free_disk_bytes(const std::string& path);

} // namespace zvp::platform

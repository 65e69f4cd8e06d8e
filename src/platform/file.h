#pragma once
// Whole small files: configuration, formulas, check digits. Bulk files have a layer of their own.

#include <string>
#include <string_view>

namespace zvp::platform {

/// Reads the whole file into `content`. Returns 0, or errno (EISDIR for a folder).
int read_whole_file(const std::string& path, std::string& content);

/// Replaces the file by `content`: written beside it, synced and renamed over it, so that a failure leaves the
/// old file as it was. Returns 0, or errno.
int write_whole_file(const std::string& path, std::string_view content);

bool file_exists(const std::string& path);

} // namespace zvp::platform

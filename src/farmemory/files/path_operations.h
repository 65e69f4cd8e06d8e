#pragma once
// Operations on names: whether a folder takes files, renames.

#include "platform/file_system.h"

#include <string>

namespace FileIO {

/// Whether a new file can be made in the folder `path`; an empty path is the working folder. Makes "pathcheck.sf" there and
/// removes it again; while that fails, the user is asked.
bool path_is_writable(const std::string& path, zvp::platform::FileSystem& system = zvp::platform::file_system());

/// Renames a file, in place of one that has the new name already, and tries again with the user until it works. The
/// names are on the disk at the end. A target that stands in the way is removed only where the system refuses to replace
/// it: for any other fault it may be the last good file.
void rename_with_retry(const std::string& old_path, const std::string& new_path,
                       zvp::platform::FileSystem& system = zvp::platform::file_system());

/// One try of the same, for an operation with the label `function`. Raises FileException with the old path; both files are
/// then where they were, unless the target had to be removed first.
void rename_or_throw(const char* function, const std::string& old_path, const std::string& new_path,
                     zvp::platform::FileSystem& system);

} // namespace FileIO

#include "farmemory/files/path_operations.h"

#include "farmemory/files/file_faults.h"

#include <cerrno>

namespace FileIO {

using zvp::platform::FileCaching;
using zvp::platform::FileSystem;
using zvp::platform::OpenedFile;

bool path_is_writable(const std::string& path, FileSystem& system) {
    const std::string name = path + (path.empty() || path.back() == '/' ? "" : "/") + "pathcheck.sf";
    const OpenedFile opened = system.open(name, {true, true, FileCaching::write_through});
    if (opened.error != 0) return false;
    if (system.close(opened.file) != 0) warn_of_file("Unable to close file.", name);
    UserRetry retry(system);
    for (;;) {
        const int error = system.remove(name);
        if (error == 0 || error == ENOENT) return true; // another run may have checked the folder at the same time
        retry.wait("Unable to delete file.\n");
    }
}

void rename_with_retry(const std::string& old_path, const std::string& new_path, FileSystem& system) {
    UserRetry retry(system);
    for (;;) {
        int error = system.rename(old_path, new_path);
        if (error == EEXIST) {
            system.remove(new_path);
            error = system.rename(old_path, new_path);
        }
        if (error == 0) break;
        retry.wait("Unable to rename file.\nError Code: " + std::to_string(error) + "\n");
    }
    system.sync_folder_of(new_path);
}

void rename_or_throw(const char* function, const std::string& old_path, const std::string& new_path,
                     FileSystem& system) {
    int error = system.rename(old_path, new_path);
    if (error == EEXIST) {
        if (const int refused = system.remove(new_path))
            throw_file_fault(function, "Unable to rename file because the existing one can't be deleted.", old_path,
                             refused);
        error = system.rename(old_path, new_path);
    }
    if (error != 0) throw_file_fault(function, "Unable to rename file.", old_path, error);
    system.sync_folder_of(new_path);
}

} // namespace FileIO

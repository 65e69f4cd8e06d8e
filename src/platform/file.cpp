#include "platform/file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace zvp::platform {

namespace {

class Descriptor {
public:
    explicit Descriptor(int number_) : number(number_) {}
    ~Descriptor() {
        if (number >= 0) close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int number;
};

int write_all(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(file, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return fsync(file) == 0 ? 0 : errno;
}

} // namespace

int read_whole_file(const std::string& path, std::string& content) {
    content.clear();
    const Descriptor file{open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    if (file.number < 0) return errno;
    char block[65'536];
    for (;;) {
        const ssize_t got = read(file.number, block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        if (got == 0) return 0;
        if (content.size() + static_cast<std::size_t>(got) > max_whole_file_bytes) return EFBIG;
        content.append(block, static_cast<std::size_t>(got));
    }
}

int write_whole_file(const std::string& path, std::string_view content) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr), &std::free);
    const std::string target = resolved ? resolved.get() : path; // a link stays a link
    const std::string fresh = target + ".new-" + std::to_string(getpid());
    int error;
    {
        const Descriptor file{open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)};
        if (file.number < 0) return errno;
        error = write_all(file.number, content);
    }
    if (error == 0 && rename(fresh.c_str(), target.c_str()) != 0) error = errno;
    if (error != 0) unlink(fresh.c_str());
    return error;
}

bool file_exists(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

std::optional<std::uint64_t> free_disk_bytes(const std::string& path) {
    struct statvfs status;
    if (statvfs(path.empty() ? "." : path.c_str(), &status) != 0 || status.f_blocks == 0) return std::nullopt;
    return std::uint64_t{status.f_bavail} * status.f_frsize;
}

} // namespace zvp::platform

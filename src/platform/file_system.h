#pragma once
// Files as the system gives them: opened by path, read and written at absolute offsets.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace zvp::platform {

enum class FileCaching {
    buffered,      // what is written may stay in memory until sync()
    write_through, // a write returns when its data are on the disk
    direct,        // transfers go past the system's memory: addresses, offsets and lengths are multiples of the sector
};

struct FileOpening {
    bool write = false; // read otherwise
    bool create = false;
    FileCaching caching = FileCaching::buffered;
};

/// An open file of the process; `error` is errno's value when there is none.
struct OpenedFile {
    int file = -1;
    int error = 0;
    bool created = false;        // no file had that name before
    bool direct_refused = false; // the file system has no direct transfers; the file is buffered
};

/// Fewer bytes than were asked for, with no error: the file ended, or the system took no more.
struct MovedBytes {
    std::size_t bytes = 0;
    int error = 0;
};

/// The file calls of the system. A test derives from it and lets a call fail, or answers for a disk that isn't there; all
/// others use file_system(). Any thread may call any member. Errors are errno values, 0 is success; a call that a signal
/// interrupted is repeated.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Opens the file for this process alone, or, for reading, beside other readers (advisory locks, where the file system
    /// has them). `create`: a file that doesn't exist is made; one that does keeps what it holds. EBUSY: somebody else has
    /// it open. EISDIR, ESPIPE: a folder, something that has no offsets.
    OpenedFile open(const std::string& path, const FileOpening& opening);

    int close(int file);

    /// Moves all bytes, in as many calls as the system needs. EINVAL: the offsets aren't possible or, for a direct file,
    /// not aligned to what the disk takes.
    MovedBytes read_at(int file, void* data, std::size_t bytes, std::uint64_t offset);
    MovedBytes write_at(int file, const void* data, std::size_t bytes, std::uint64_t offset);

    /// Cuts the file, or lengthens it by zeros.
    int set_length(int file, std::uint64_t bytes);

    /// The length of an open file. Returns 0 or an error.
    int length(int file, std::uint64_t& bytes);

    /// Takes the space of the file's first `bytes` bytes from the disk, so that later writes find it. What the file
    /// holds stays, unwritten bytes are zeros. EOPNOTSUPP where the file system can't.
    int allocate(int file, std::uint64_t bytes);

    /// Puts the file's data, its length and the disk's own cache to rest.
    int sync(int file);

    /// Gives the file the new name, in one step; a file of that name is replaced.
    int rename(const std::string& old_path, const std::string& new_path);
    int remove(const std::string& path);

    /// Puts the names of a file's folder to rest, as far as the file system does that.
    void sync_folder_of(const std::string& path);

    /// Memory that could be had without swapping, in bytes; 0 if the system doesn't tell.
    virtual std::uint64_t available_memory();

    virtual void sleep(unsigned seconds);

    /// Set by the first file that met the fault; later ones don't tell it again.
    std::atomic<bool> told_allocation_fault{false};
    std::atomic<bool> told_direct_refusal{false};

protected:
    // One system call each; what it returns, or -errno.
    virtual int try_open(const std::string& path, const FileOpening& opening, bool create_new);
    virtual int try_set_direct(int file);
    virtual int try_lock(int file, bool exclusive);
    virtual int try_close(int file);
    virtual std::int64_t try_read(int file, void* data, std::size_t bytes, std::uint64_t offset);
    virtual std::int64_t try_write(int file, const void* data, std::size_t bytes, std::uint64_t offset);
    virtual int try_set_length(int file, std::uint64_t bytes);
    virtual int try_allocate(int file, std::uint64_t bytes);
    virtual int try_sync(int file);
    virtual int try_rename(const std::string& old_path, const std::string& new_path);
    virtual int try_remove(const std::string& path);

private:
    int open_any(const std::string& path, const FileOpening& opening, bool& created);
    int claim(int file, bool exclusive);
    int prepare(OpenedFile& opened, const FileOpening& opening);
};

FileSystem& file_system();

} // namespace zvp::platform

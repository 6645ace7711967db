// The file system of the operating system behind hf::filesystem::FileSystem: plain POSIX
// calls, each failure thrown with the system's error.
#include <platform/hf/filesystem/FileSystem.hpp>

#include <platform/hf/filesystem/detail/ErrorMapping.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hf {
namespace filesystem {

namespace {

using detail::lastSystemError;
using detail::throwFilesystemError;

file_type typeOf(mode_t mode) {
    if (S_ISREG(mode)) {
        return file_type::regular;
    }
    if (S_ISDIR(mode)) {
        return file_type::directory;
    }
    return file_type::other;
}

FileInfo infoOf(const struct stat& status) {
    FileInfo info;
    info.type = typeOf(status.st_mode);
    info.device = static_cast<std::uint64_t>(status.st_dev);
    info.inode = static_cast<std::uint64_t>(status.st_ino);
    info.size = static_cast<std::uint64_t>(status.st_size);
    info.modifiedNs =
        static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec;
    return info;
}

// Closes a descriptor on every way out.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return fd_; }
    // Closes now and reports the close's own failure, which can be the first sign of a write
    // that did not reach the file.
    int close() {
        const int result = ::close(fd_);
        fd_ = -1;
        return result;
    }

private:
    int fd_;
};

class PosixFileLock : public FileLock {
public:
    explicit PosixFileLock(int fd) : fd_(fd) {}
    ~PosixFileLock() override { ::close(fd_); }  // closing the descriptor releases the lock

private:
    int fd_;
};

class PosixFileSystem : public FileSystem {
public:
    void makeFolder(const upath& folder) override {
        if (::mkdir(folder.string().c_str(), 0777) != 0) {
            throwFilesystemError("make folder", folder, lastSystemError());
        }
    }

    std::vector<FolderEntry> listFolder(const upath& folder) override {
        DIR* const dir = ::opendir(folder.string().c_str());
        if (!dir) {
            throwFilesystemError("list folder", folder, lastSystemError());
        }
        std::vector<FolderEntry> entries;
        errno = 0;
        while (const dirent* entry = ::readdir(dir)) {
            if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) {
                continue;
            }
            FolderEntry listed{entry->d_name, file_type::other};
            if (entry->d_type == DT_REG) {
                listed.type = file_type::regular;
            } else if (entry->d_type == DT_DIR) {
                listed.type = file_type::directory;
            } else if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
                // Only links and file systems that do not say need a look at the target.
                struct stat status;
                listed.isLink =
                    entry->d_type == DT_LNK ||
                    (::fstatat(::dirfd(dir), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                     S_ISLNK(status.st_mode));
                listed.type = ::fstatat(::dirfd(dir), entry->d_name, &status, 0) == 0
                                  ? typeOf(status.st_mode)
                                  : file_type::not_found;
            }
            entries.push_back(std::move(listed));
            errno = 0;
        }
        const int error = errno;
        ::closedir(dir);
        if (error != 0) {
            throwFilesystemError("list folder", folder, {error, std::generic_category()});
        }
        return entries;
    }

    FileInfo examine(const upath& path) override {
        struct stat status;
        if (::stat(path.string().c_str(), &status) != 0) {
            const int error = errno;
            if (error == ENOENT || error == ENOTDIR) {
                return FileInfo();
            }
            throwFilesystemError("examine", path, {error, std::generic_category()});
        }
        return infoOf(status);
    }

    std::string readFile(const upath& file, FileInfo* info, std::uint64_t limit) override {
        // Not blocking on the open: a FIFO in place of a file would wait for a writer for ever.
        Descriptor fd(::open(file.string().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        if (fd.get() < 0) {
            throwFilesystemError("read", file, lastSystemError());
        }
        struct stat status;
        if (::fstat(fd.get(), &status) != 0) {
            throwFilesystemError("read", file, lastSystemError());
        }
        if (!S_ISREG(status.st_mode)) {
            throwFilesystemError(
                "read", file,
                std::make_error_code(S_ISDIR(status.st_mode) ? std::errc::is_a_directory
                                                             : std::errc::invalid_argument));
        }
        if (static_cast<std::uint64_t>(status.st_size) > limit) {
            throwFilesystemError("read", file, std::make_error_code(std::errc::file_too_large));
        }
        std::string content;
        content.reserve(static_cast<std::size_t>(status.st_size));
        char buffer[65536];
        for (;;) {
            const ssize_t got = ::read(fd.get(), buffer, sizeof buffer);
            if (got < 0) {
                if (errno == EINTR) {
                    continue;
                }
                throwFilesystemError("read", file, lastSystemError());
            }
            if (got == 0) {
                break;
            }
            if (content.size() + static_cast<std::size_t>(got) > limit) {  // it grew meanwhile
                throwFilesystemError("read", file, std::make_error_code(std::errc::file_too_large));
            }
            content.append(buffer, static_cast<std::size_t>(got));
        }
        if (info) {
            *info = infoOf(status);
        }
        return content;
    }

    FileInfo writeFile(const upath& file, const std::string& data, bool sync) override {
        Descriptor fd(
            ::open(file.string().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        if (fd.get() < 0) {
            throwFilesystemError("write", file, lastSystemError());
        }
        const char* next = data.data();
        std::size_t left = data.size();
        while (left > 0) {
            const ssize_t written = ::write(fd.get(), next, left);
            if (written < 0) {
                if (errno == EINTR) {
                    continue;
                }
                throwFilesystemError("write", file, lastSystemError());
            }
            next += written;
            left -= static_cast<std::size_t>(written);
        }
        if (sync && ::fdatasync(fd.get()) != 0) {
            throwFilesystemError("sync", file, lastSystemError());
        }
        struct stat status;
        if (::fstat(fd.get(), &status) != 0) {
            throwFilesystemError("write", file, lastSystemError());
        }
        if (fd.close() != 0) {
            throwFilesystemError("write", file, lastSystemError());
        }
        return infoOf(status);
    }

    void rename(const upath& from, const upath& to) override {
        if (::rename(from.string().c_str(), to.string().c_str()) != 0) {
            throwFilesystemError("rename", from, to, lastSystemError());
        }
    }

    bool remove(const upath& path) override {
        if (::remove(path.string().c_str()) == 0) {
            return true;
        }
        if (errno == ENOENT) {
            return false;
        }
        throwFilesystemError("remove", path, lastSystemError());
    }

    void syncFolder(const upath& folder) override {
        Descriptor fd(::open(folder.string().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (fd.get() < 0 || ::fsync(fd.get()) != 0) {
            throwFilesystemError("sync folder", folder, lastSystemError());
        }
    }

    std::error_code checkWritable(const upath& file) override {
        const int fd = ::open(file.string().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        if (fd >= 0) {
            ::close(fd);
            return {};
        }
        return errno == ENOENT ? std::error_code() : lastSystemError();
    }

    std::unique_ptr<FileLock> lockFile(const upath& lockFile,
                                       std::chrono::milliseconds patience) override {
        int fd = ::open(lockFile.string().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (fd < 0) {
            // A lock file made by another user may still be read; flock does not need more.
            fd = ::open(lockFile.string().c_str(), O_RDONLY | O_CLOEXEC);
        }
        if (fd < 0) {
            throwFilesystemError("lock", lockFile, lastSystemError());
        }
        std::unique_ptr<FileLock> lock(new PosixFileLock(fd));
        const auto deadline = std::chrono::steady_clock::now() + patience;
        std::chrono::microseconds pause(200);
        while (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK && errno != EINTR) {
                throwFilesystemError("lock", lockFile, lastSystemError());
            }
            if (std::chrono::steady_clock::now() >= deadline) {
                return nullptr;
            }
            // Holders keep the lock for one save, a millisecond or so: short pauses at first.
            std::this_thread::sleep_for(pause);
            pause = std::min(pause * 2, std::chrono::microseconds(20000));
        }
        return lock;
    }
};

}  // namespace

FileSystem& FileSystem::posix() {
    static PosixFileSystem fileSystem;
    return fileSystem;
}

}  // namespace filesystem
}  // namespace hf

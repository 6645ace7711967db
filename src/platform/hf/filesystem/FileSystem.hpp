// hf::filesystem::FileSystem: the one seam through which the settings core reaches its files.
// Loading, saving, export, migration and the listing of products all go through the file
// system in force (FileSystem::current()): the POSIX one, or one a test put in place (one that
// fails a chosen call, one that simulates a power cut).
//
// Failures throw FsysExceptionBase, or its refinements FileExistsError and AccessDenied
// (FilesystemError.hpp), naming the operation, the path and the system's error. Every
// operation may be called from any thread; an implementation guards its own state.
//
// Durability is explicit: a file's data reaches the disk only through writeFile(..., sync) and
// a folder's entries (a new file, a rename, a new folder) only through syncFolder of that
// folder. What a crash keeps of anything else is unspecified: the power-cut simulation of the
// tests keeps as little of it as the rules allow.
#pragma once

#include <platform/hf/filesystem/Path.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace hf {
namespace filesystem {

// What is at a path, links followed; not_found for nothing (or a dangling link).
enum class file_type { not_found, regular, directory, other };

// What the file system tells of a file or folder; links are followed.
struct FileInfo {
    file_type type = file_type::not_found;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t modifiedNs = 0;  // modification time, nanoseconds since the epoch

    bool exists() const { return type != file_type::not_found; }
};

// Whether `a` and `b` describe one version of one file: same device, inode, size and
// modification time. A file replaced by rename, or changed in place, differs in one of them.
bool isSameVersion(const FileInfo& a, const FileInfo& b);

struct FolderEntry {
    std::string name;
    // Links followed; not_found for a dangling link or an entry gone while it was listed.
    file_type type = file_type::not_found;
    bool isLink = false;  // the entry itself is a symbolic link
};

// An exclusive advisory lock on a file, held until this object goes.
class FileLock {
public:
    virtual ~FileLock();
};

class FileSystem {
public:
    virtual ~FileSystem();

    // Creates the folder `folder`, whose parent must exist. FileExistsError when something is
    // there already.
    virtual void makeFolder(const upath& folder) = 0;
    // The entries of `folder` (never "." or ".."), in no particular order.
    virtual std::vector<FolderEntry> listFolder(const upath& folder) = 0;
    // What is at `path`; type not_found when nothing is (never throws for that).
    virtual FileInfo examine(const upath& path) = 0;
    // The whole content of the regular file `file`; its FileInfo, taken from the same open
    // file, into `info` when given. Anything but a regular file is refused without waiting on
    // it (a FIFO, a device, a folder), and so is a file of more than `limit` bytes (EFBIG),
    // before anything is read.
    virtual std::string readFile(const upath& file, FileInfo* info,
                                 std::uint64_t limit = UINT64_MAX) = 0;
    // Creates or truncates `file` and writes `data` in full; with `sync` the data reaches the
    // disk before this returns. Throws at the first failure, the file then being short. The
    // written file's FileInfo.
    virtual FileInfo writeFile(const upath& file, const std::string& data, bool sync) = 0;
    // POSIX rename: an existing target file is replaced atomically.
    virtual void rename(const upath& from, const upath& to) = 0;
    // Removes a file or an empty folder; false when nothing was there.
    virtual bool remove(const upath& path) = 0;
    // Makes the entries of `folder` (created, renamed, removed) reach the disk.
    virtual void syncFolder(const upath& folder) = 0;
    // Why `file` could not be opened for writing; none (an empty code) when it could, or when
    // it does not exist yet. Changes nothing.
    virtual std::error_code checkWritable(const upath& file) = 0;
    // Takes an exclusive advisory lock on `lockFile`, made (empty) when absent; other
    // processes taking the same lock wait. Null when the lock was not had within `patience`.
    virtual std::unique_ptr<FileLock> lockFile(const upath& lockFile,
                                               std::chrono::milliseconds patience) = 0;

    // The file system in force: the POSIX one unless a test put another in place.
    static FileSystem& current();
    // Puts `fileSystem` in force (null: the POSIX one) and returns the one it replaced. Meant
    // for tests, between operations: a call in flight finishes with the one it started with.
    static FileSystem* use(FileSystem* fileSystem);
    // The file system of the operating system.
    static FileSystem& posix();
};

// Helpers over any file system.

// Creates `folder` and its missing parents, outermost first; the folders created. With
// `durable` each new folder's parent is synced after the folder was made, so that a power cut
// cannot lose the folder with what is later written into it. Only one of several concurrent
// callers makes a folder; a folder that is there is no failure.
std::vector<upath> makeFolders(FileSystem& fileSystem, const upath& folder, bool durable);

// Removes `path` and everything below it; nothing when it is absent. Links are removed, never
// followed.
void removeTree(FileSystem& fileSystem, const upath& path);

}  // namespace filesystem
}  // namespace hf

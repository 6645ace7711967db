#include <platform/hf/filesystem/FileSystem.hpp>

#include <platform/hf/filesystem/FilesystemError.hpp>

#include <atomic>

namespace hf {
namespace filesystem {

namespace {

std::atomic<FileSystem*>& inForce() {
    static std::atomic<FileSystem*> fileSystem{nullptr};
    return fileSystem;
}

}  // namespace

bool isSameVersion(const FileInfo& a, const FileInfo& b) {
    return a.type == b.type && a.device == b.device && a.inode == b.inode && a.size == b.size &&
           a.modifiedNs == b.modifiedNs;
}

FileLock::~FileLock() = default;

FileSystem::~FileSystem() = default;

FileSystem& FileSystem::current() {
    FileSystem* const fileSystem = inForce().load(std::memory_order_acquire);
    return fileSystem ? *fileSystem : posix();
}

FileSystem* FileSystem::use(FileSystem* fileSystem) {
    FileSystem* const previous = inForce().exchange(fileSystem, std::memory_order_acq_rel);
    return previous ? previous : &posix();
}

std::vector<upath> makeFolders(FileSystem& fileSystem, const upath& folder, bool durable) {
    std::vector<upath> created;
    if (folder.empty() || fileSystem.examine(folder).type == file_type::directory) {
        return created;
    }
    const upath parent = folder.parent_path();
    if (!parent.empty() && parent != folder) {
        created = makeFolders(fileSystem, parent, durable);
    }
    try {
        fileSystem.makeFolder(folder);
    } catch (const FileExistsError&) {
        // Made meanwhile by another thread or process: what counts is that it is a folder,
        // and that is for the caller's next step to find out.
        return created;
    }
    created.push_back(folder);
    if (durable && !parent.empty()) {
        fileSystem.syncFolder(parent);
    }
    return created;
}

void removeTree(FileSystem& fileSystem, const upath& path) {
    if (fileSystem.examine(path).type == file_type::directory) {
        for (const FolderEntry& entry : fileSystem.listFolder(path)) {
            const upath inner = path / upath(entry.name);
            if (entry.type == file_type::directory && !entry.isLink) {
                removeTree(fileSystem, inner);
            } else {
                fileSystem.remove(inner);
            }
        }
    }
    fileSystem.remove(path);
}

}  // namespace filesystem
}  // namespace hf

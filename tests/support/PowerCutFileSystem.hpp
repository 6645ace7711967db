// An in-memory file system for tests that simulates a power cut. It keeps, for every file, the
// data as last synced (writeFile with sync) and, for every folder, its entries as last synced
// (syncFolder). After the cut every call fails; restart() then leaves only what the rules let a
// real disk keep: a file's unsynced data may be lost, cut short or kept whole, and a folder's
// unsynced entries (new files and folders, renames, removals) may be undone.
// One process only: lockFile always grants the lock.
#pragma once

#include <platform/hf/filesystem/FileSystem.hpp>

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace testsupport {

class PowerCutFileSystem : public hf::filesystem::FileSystem {
public:
    enum class UnsyncedData { lost, halved, whole };

    struct Node;
    using Image = std::shared_ptr<Node>;

    PowerCutFileSystem();
    ~PowerCutFileSystem() override;

    // The calls made so far; cutAfter counts from the same start.
    int calls() const;
    // The power goes after `k` more calls: call k + 1 and every later one fail (EIO).
    void cutAfter(int k);
    // The power comes back. Files not synced since their last write keep `data` of it; folders
    // not synced since their last change keep their synced entries, unless `renamesKept`.
    void restart(UnsyncedData data, bool renamesKept);
    // A copy of everything as it stands, and putting one back (the power on, no cut planned).
    Image snapshot() const;
    void restore(const Image& image);

    void makeFolder(const hf::filesystem::upath& folder) override;
    std::vector<hf::filesystem::FolderEntry> listFolder(const hf::filesystem::upath& f) override;
    hf::filesystem::FileInfo examine(const hf::filesystem::upath& path) override;
    std::string readFile(const hf::filesystem::upath& file, hf::filesystem::FileInfo* info,
                         std::uint64_t limit) override;
    hf::filesystem::FileInfo writeFile(const hf::filesystem::upath& file, const std::string& data,
                                       bool sync) override;
    void rename(const hf::filesystem::upath& from, const hf::filesystem::upath& to) override;
    bool remove(const hf::filesystem::upath& path) override;
    void syncFolder(const hf::filesystem::upath& folder) override;
    std::error_code checkWritable(const hf::filesystem::upath& file) override;
    std::unique_ptr<hf::filesystem::FileLock> lockFile(const hf::filesystem::upath& lockFile,
                                                       std::chrono::milliseconds patience) override;

private:
    // Counts the call; throws EIO once the power is gone.
    void enter(const char* operation, const hf::filesystem::upath& path);
    // The node at `path`; null when absent. `parent` gets the folder holding it.
    std::shared_ptr<Node> find(const hf::filesystem::upath& path, std::shared_ptr<Node>* parent);
    hf::filesystem::FileInfo infoOf(const Node& node) const;

    mutable std::mutex mutex_;
    std::shared_ptr<Node> root_;
    int calls_ = 0;
    int cutAt_ = -1;  // the last call that still works; -1: no cut planned
    std::uint64_t nextInode_ = 2;
    std::int64_t clock_ = 0;
};

}  // namespace testsupport

// A file system for tests that passes every call to another one (the POSIX one by default),
// records each call, and fails the k-th one on request: only that call, or that call and
// every later one, optionally counting only calls of one operation. Installed for the life of
// a FileSystemInUse guard.
#pragma once

#include <platform/hf/filesystem/FileSystem.hpp>

#include <mutex>
#include <string>
#include <system_error>
#include <vector>

namespace testsupport {

class FailingFileSystem : public hf::filesystem::FileSystem {
public:
    struct Call {
        std::string operation;  // "makeFolder", "listFolder", "examine", "readFile", "writeFile",
                                // "rename", "remove", "syncFolder", "checkWritable", "lockFile"
        std::string path;       // the first path
        bool failed;
    };

    explicit FailingFileSystem(hf::filesystem::FileSystem& inner = FileSystem::posix());

    // Fails call `k` (1 = the next call counted from now) with `error`: only that one, or
    // that one and every later one. With `operation`, only calls of that operation count.
    void failCall(int k, bool everyLater, std::errc error = std::errc::io_error,
                  const std::string& operation = std::string());
    void failNothing();
    std::vector<Call> calls() const;
    void forgetCalls();

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
    // Records the call; throws the planned failure when it is this call's turn.
    void enter(const char* operation, const hf::filesystem::upath& path);

    hf::filesystem::FileSystem& inner_;
    mutable std::mutex mutex_;
    std::vector<Call> calls_;
    int counted_ = 0;
    int failAt_ = 0;  // 0: nothing fails
    bool everyLater_ = false;
    std::errc error_ = std::errc::io_error;
    std::string operation_;
};

// Puts a file system in force for its lifetime and the previous one back after.
class FileSystemInUse {
public:
    explicit FileSystemInUse(hf::filesystem::FileSystem& fileSystem)
        : previous_(hf::filesystem::FileSystem::use(&fileSystem)) {}
    ~FileSystemInUse() { hf::filesystem::FileSystem::use(previous_); }
    FileSystemInUse(const FileSystemInUse&) = delete;
    FileSystemInUse& operator=(const FileSystemInUse&) = delete;

private:
    hf::filesystem::FileSystem* previous_;
};

}  // namespace testsupport

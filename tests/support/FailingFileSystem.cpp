#include <support/FailingFileSystem.hpp>

#include <platform/hf/filesystem/detail/ErrorMapping.hpp>

namespace testsupport {

namespace fs = hf::filesystem;

FailingFileSystem::FailingFileSystem(fs::FileSystem& inner) : inner_(inner) {}

void FailingFileSystem::failCall(int k, bool everyLater, std::errc error,
                                 const std::string& operation) {
    std::lock_guard<std::mutex> guard(mutex_);
    counted_ = 0;
    failAt_ = k;
    everyLater_ = everyLater;
    error_ = error;
    operation_ = operation;
}

void FailingFileSystem::failNothing() {
    failCall(0, false);
}

std::vector<FailingFileSystem::Call> FailingFileSystem::calls() const {
    std::lock_guard<std::mutex> guard(mutex_);
    return calls_;
}

void FailingFileSystem::forgetCalls() {
    std::lock_guard<std::mutex> guard(mutex_);
    calls_.clear();
}

void FailingFileSystem::enter(const char* operation, const fs::upath& path) {
    std::lock_guard<std::mutex> guard(mutex_);
    bool fails = false;
    if (failAt_ > 0 && (operation_.empty() || operation_ == operation)) {
        ++counted_;
        fails = counted_ == failAt_ || (everyLater_ && counted_ > failAt_);
    }
    calls_.push_back({operation, path.string(), fails});
    if (fails) {
        fs::detail::throwFilesystemError(operation, path, std::make_error_code(error_));
    }
}

void FailingFileSystem::makeFolder(const fs::upath& folder) {
    enter("makeFolder", folder);
    inner_.makeFolder(folder);
}
std::vector<fs::FolderEntry> FailingFileSystem::listFolder(const fs::upath& folder) {
    enter("listFolder", folder);
    return inner_.listFolder(folder);
}
fs::FileInfo FailingFileSystem::examine(const fs::upath& path) {
    enter("examine", path);
    return inner_.examine(path);
}
std::string FailingFileSystem::readFile(const fs::upath& file, fs::FileInfo* info,
                                        std::uint64_t limit) {
    enter("readFile", file);
    return inner_.readFile(file, info, limit);
}
fs::FileInfo FailingFileSystem::writeFile(const fs::upath& file, const std::string& data,
                                          bool sync) {
    enter("writeFile", file);
    return inner_.writeFile(file, data, sync);
}
void FailingFileSystem::rename(const fs::upath& from, const fs::upath& to) {
    enter("rename", to);
    inner_.rename(from, to);
}
bool FailingFileSystem::remove(const fs::upath& path) {
    enter("remove", path);
    return inner_.remove(path);
}
void FailingFileSystem::syncFolder(const fs::upath& folder) {
    enter("syncFolder", folder);
    inner_.syncFolder(folder);
}
std::error_code FailingFileSystem::checkWritable(const fs::upath& file) {
    enter("checkWritable", file);
    return inner_.checkWritable(file);
}
std::unique_ptr<fs::FileLock> FailingFileSystem::lockFile(const fs::upath& lockFile,
                                                          std::chrono::milliseconds patience) {
    enter("lockFile", lockFile);
    return inner_.lockFile(lockFile, patience);
}

}  // namespace testsupport

#include <settingscore/core/storage/detail/SaveFileOperations.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>

#include <platform/hf/filesystem/Operations.hpp>

#include <atomic>
#include <fstream>

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>

namespace settings {
namespace core {
namespace detail {

namespace {

bool writeSettingsToFileDefault(const SettingsLevel* level, SettingsPtr& object,
                                const ReadAccess& lock, const hf::filesystem::upath& file) {
    {
        std::ofstream stream(hf::filesystem::detail::make_native_access_form(file),
                             std::ios::out | std::ios::trunc);
        if (!stream) {
            return false;
        }
        SettingsImpl::implOf(object)->writeSettings(lock, stream, level->levelName());
        stream.flush();
        stream.close();
        if (stream.fail()) {
            return false;  // a full disk, a write error: the file is short
        }
    }
    return !isDurableSaving() || syncFileData(file);
}

void renameDefault(const hf::filesystem::upath& from, const hf::filesystem::upath& to) {
    hf::filesystem::rename(from, to);
}

std::atomic<WriteSettingsToFile> writeOperation{&writeSettingsToFileDefault};
std::atomic<RenameFile> tempToTarget{&renameDefault};
std::atomic<RenameFile> targetToPrevious{&renameDefault};
std::atomic<RenameFile> previousToTarget{&renameDefault};

}  // namespace

WriteSettingsToFile SaveFileOperations::writeSettingsToFile() {
    return writeOperation.load();
}
RenameFile SaveFileOperations::renameTempToTarget() {
    return tempToTarget.load();
}
RenameFile SaveFileOperations::renameTargetToPrevious() {
    return targetToPrevious.load();
}
RenameFile SaveFileOperations::renamePreviousToTarget() {
    return previousToTarget.load();
}

WriteSettingsToFile SaveFileOperations::setWriteSettingsToFile(WriteSettingsToFile operation) {
    return writeOperation.exchange(operation ? operation : &writeSettingsToFileDefault);
}
RenameFile SaveFileOperations::setRenameTempToTarget(RenameFile operation) {
    return tempToTarget.exchange(operation ? operation : &renameDefault);
}
RenameFile SaveFileOperations::setRenameTargetToPrevious(RenameFile operation) {
    return targetToPrevious.exchange(operation ? operation : &renameDefault);
}
RenameFile SaveFileOperations::setRenamePreviousToTarget(RenameFile operation) {
    return previousToTarget.exchange(operation ? operation : &renameDefault);
}

bool isTargetWritable(const hf::filesystem::upath& target) {
    const int fd =
        ::open(hf::filesystem::detail::make_native_access_form(target).c_str(), O_WRONLY);
    if (fd >= 0) {
        ::close(fd);
        return true;
    }
    return errno == ENOENT;
}

bool syncFileData(const hf::filesystem::upath& file) {
    const int fd = ::open(hf::filesystem::detail::make_native_access_form(file).c_str(), O_RDONLY);
    if (fd < 0) {
        return false;
    }
    const bool synced = ::fdatasync(fd) == 0;
    return ::close(fd) == 0 && synced;
}

bool syncFolder(const hf::filesystem::upath& folder) {
    const int fd = ::open(hf::filesystem::detail::make_native_access_form(folder).c_str(),
                          O_RDONLY | O_DIRECTORY);
    if (fd < 0) {
        return false;
    }
    const bool synced = ::fsync(fd) == 0;
    return ::close(fd) == 0 && synced;
}

}  // namespace detail
}  // namespace core
}  // namespace settings

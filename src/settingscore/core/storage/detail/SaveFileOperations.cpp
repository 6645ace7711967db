#include <settingscore/core/storage/detail/SaveFileOperations.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/xml/detail/NodeWriter.hpp>

#include <platform/hf/filesystem/Operations.hpp>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <string>

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>

namespace settings {
namespace core {
namespace detail {

namespace {

// Writes all of `text` to `fd`, going on after short writes and interruptions.
bool writeAll(int fd, const std::string& text) {
    const char* next = text.data();
    std::size_t left = text.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, next, left);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        next += written;
        left -= static_cast<std::size_t>(written);
    }
    return true;
}

// The product's text is built in memory first and goes out in one write call; with durable
// saving its data is flushed through the same descriptor before the close.
bool writeSettingsToFileDefault(const SettingsLevel* level, SettingsPtr& object,
                                const ReadAccess& lock, const hf::filesystem::upath& file) {
    std::string text;
    NodeWriter::writeDocument(lock, *SettingsImpl::implOf(object), level->levelName(), text);
    const int fd = ::open(hf::filesystem::detail::make_native_access_form(file).c_str(),
                          O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) {
        return false;
    }
    // A full disk, a write error: the file is short.
    const bool complete = writeAll(fd, text) && (!isDurableSaving() || ::fdatasync(fd) == 0);
    return ::close(fd) == 0 && complete;
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

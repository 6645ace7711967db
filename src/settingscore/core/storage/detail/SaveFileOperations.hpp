// The file operations of the save sequence, each behind a replaceable function pointer so that
// a test can make the Nth one fail; and the small system calls around them.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/detail/TreeLock.hpp>

#include <platform/hf/filesystem/Path.hpp>

namespace settings {
namespace core {

class SettingsLevel;

namespace detail {

// Writes `object`'s product text for `level` to `file`. True when every byte reached the file
// and it was closed without error (and, with durable saving, flushed to the disk).
using WriteSettingsToFile = bool (*)(const SettingsLevel* level, SettingsPtr& object,
                                     const ReadAccess& lock, const hf::filesystem::upath& file);
// A rename; throws hf::filesystem::FsysExceptionBase on failure.
using RenameFile = void (*)(const hf::filesystem::upath& from, const hf::filesystem::upath& to);

struct SaveFileOperations {
    static WriteSettingsToFile writeSettingsToFile();
    static RenameFile renameTempToTarget();
    static RenameFile renameTargetToPrevious();
    // Puts the old file back when a save gives up after moving it aside.
    static RenameFile renamePreviousToTarget();

private:
    friend struct SaveFileOperationsAccess;
    // Each setter stores a new operation and returns the one it replaced.
    static WriteSettingsToFile setWriteSettingsToFile(WriteSettingsToFile operation);
    static RenameFile setRenameTempToTarget(RenameFile operation);
    static RenameFile setRenameTargetToPrevious(RenameFile operation);
    static RenameFile setRenamePreviousToTarget(RenameFile operation);
};

// Whether `target` could be written: it opens for writing, or it does not exist yet (a first
// save). The file is not changed.
bool isTargetWritable(const hf::filesystem::upath& target);

// Flushes the data of `file` / the entries of `folder` to the disk; false on failure.
bool syncFileData(const hf::filesystem::upath& file);
bool syncFolder(const hf::filesystem::upath& folder);

bool isDurableSaving();
bool isSettingsSavingOn();

}  // namespace detail
}  // namespace core
}  // namespace settings

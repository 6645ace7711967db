// The save of one product file at one level: the target of every change that reaches a file.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/detail/TreeLock.hpp>

#include <platform/hf/filesystem/Path.hpp>

namespace settings {
namespace core {

class SettingsLevel;
class SettingsImpl;

namespace detail {

// Rewrites the file of `object`'s product at `level`: a fresh "temp<id>" folder beside the
// target, the text written there, a writability test of the target, then the replace by
// rename. Silent when the level has no file, when no temporary folder can be made, when the
// target cannot be written, when the text could not be written in full, and when the rename
// keeps failing: the file then stays as it was and memory is ahead of it.
// CantModifyValuesOnReadOnlyLevel for a level whose values cannot change;
// NoWritePermissionOnDirectory when the level's folder refuses a temporary folder.
// REQUIRES: the root mutex held, witnessed by `lock`.
void saveSettingsAtLevel(const SettingsLevel* level, SettingsPtr object, const ReadAccess& lock);

// A new "temp<id>" folder in `folder`. CanNotCreateTempDirectory after 1000 attempts;
// NoWritePermissionOnDirectory when the folder refuses.
hf::filesystem::upath createSaveTempDirectory(const hf::filesystem::upath& folder);

}  // namespace detail
}  // namespace core
}  // namespace settings

// The save of one product file at one level: the target of every change that reaches a file.
#pragma once

#include <settingscore/core/detail/TreeLock.hpp>

#include <platform/hf/filesystem/FileSystem.hpp>

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

class SettingsLevel;
class SettingsImpl;
class SettingsImplRoot;

namespace detail {
class ProductFileState;
}

namespace detail {

// Rewrites the file of `node`'s product at `level`, holding the product's lock file against
// other processes: first the changes another process saved since this one last read or wrote
// the file are taken in (this process's own changes win key by key), then a fresh "temp<id>"
// folder beside the target gets the text, the target's writability is tested, and the text
// replaces the target by rename.
// Nothing is thrown where the save cannot be done (no temporary folder, a target that cannot
// be written, a short write, a rename that keeps failing, an unreadable target that cannot be
// kept aside): the old file stays, memory is ahead of it, and the failure is recorded for the
// product and level (Settings::getProductFileStatus) until a save there succeeds.
// CantModifyValuesOnReadOnlyLevel for a level whose values cannot change;
// NoWritePermissionOnDirectory when the level's folder refuses a temporary folder; other
// failures of the level's folder itself pass through.
// Nothing happens for a level without files, with saving off, or for a node on no tree.
// REQUIRES: the root mutex held in upgrade mode, by `lock` (the changes taken in are stored
// under an exclusive hold from it).
void saveSettingsAtLevel(UpgradeLock& lock, const SettingsLevel* level, const SettingsImpl& node);

// A new "temp<id>" folder in `folder`. CanNotCreateTempDirectory after 1000 attempts;
// NoWritePermissionOnDirectory when the folder refuses.
hf::filesystem::upath createSaveTempDirectory(hf::filesystem::FileSystem& files,
                                              const hf::filesystem::upath& folder);

// Deletes the files of `product`, which was just removed from below `root`, at each level of
// `levels`, under the product's lock file; `state` is the state its files had. Nothing while
// saving is off.
void deleteProductFiles(const SettingsImpl& product, ProductFileState& state,
                        const boost::shared_ptr<SettingsImplRoot>& root,
                        const std::vector<const SettingsLevel*>& levels);

}  // namespace detail
}  // namespace core
}  // namespace settings

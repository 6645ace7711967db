// Taking in what another process saved: a product's file read again, and the values another
// process changed there brought into this process's tree.
#pragma once

#include <settingscore/core/detail/TreeLock.hpp>

#include <platform/hf/filesystem/FileSystem.hpp>

#include <cstddef>
#include <string>

namespace settings {
namespace core {

class SettingsImpl;
class SettingsLevel;

namespace detail {

struct TakeInResult {
    std::size_t changedValues = 0;  // values of the tree that changed
    // False when the file must not be replaced: it is there, could not be read or parsed, and
    // no copy of it could be kept. `refusal` says why.
    bool mayReplace = true;
    std::string refusal;
};

// When `product`'s file at `level` (`folder`/its file name) is not the version this process
// last read or wrote, reads it and takes in every key value that another process changed there
// and this process did not change since: stored at `level` (a value absent from the file is
// removed there), with value events where the effective value changes; a value that fails its
// key's checks (type, array size, range, choices) is held back instead, as at load; nodes the
// file has and the tree lacks are added, with their events. This process's own changes win key
// by key. A file that does not parse is kept aside first (LevelFiles.hpp) and nothing is taken
// from it. The product's file state then records the version read.
// REQUIRES: the root mutex held in upgrade mode by `lock`; `product` loaded.
TakeInResult takeInFileChanges(UpgradeLock& lock, SettingsImpl& product, const SettingsLevel& level,
                               hf::filesystem::FileSystem& files,
                               const hf::filesystem::upath& folder, bool durable);

}  // namespace detail
}  // namespace core
}  // namespace settings

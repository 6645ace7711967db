// The makers of the tree's change events. The tree calls one after each change, with the root
// mutex still held: each maker stays silent off the tree, and otherwise builds the event with
// its tags and the root's instance and hands it to the root, which records and publishes it.
#pragma once

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

// The effective value of `key` changed. Silent when `key` is not on a tree.
// REQUIRES: the root mutex, held by `lock`.
template <class Lock>
void publishValueChange(const Lock& lock, const SettingsImpl& key);

// `child` was attached under `parent`. Silent when `parent` is not on a tree.
// REQUIRES: the root mutex, held by `lock`.
template <class Lock>
void publishNodeAdded(const Lock& lock, const SettingsImpl& parent, const SettingsImpl& child);

// `child` was detached from `parent` (and so is no longer on the tree itself). Silent when
// `parent` is not on a tree.
// REQUIRES: the root mutex, held by `lock`.
template <class Lock>
void publishNodeRemoved(const Lock& lock, const SettingsImpl& parent, const SettingsImpl& child);

}  // namespace detail
}  // namespace core
}  // namespace settings

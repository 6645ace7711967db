// How one merge of a standalone tree into a node goes. There is one merge algorithm
// (SettingsImpl::mergeNode): the rules of definitions, children by name and values at one
// level are the same for a product's files, the files a file names, mergeWith and a file taken
// in again; what differs between them is said here.
#pragma once

#include <settingscore/core/storage/detail/ProductFileState.hpp>

#include <string>

namespace settings {
namespace core {
namespace detail {

struct MergePolicy {
    // Nodes of the source that the target lacks are moved over from the source, their values
    // and run-time defaults moved to the level, instead of being copied: for a file's tree,
    // which is read for this merge only.
    bool takeOver = false;
    // Each node of the target that the merge changes is copied first and the copy put in its
    // place, so that the tree the target was copied from stays as it was (copyForMerge).
    bool copyOnWrite = false;
    // Whether a merged value meets its key's validation function, or only its type, array
    // size, range and choices (files: a missing library or an engine not ready at load must not
    // cost values; the function ran when the value was written).
    bool runValidators = true;
    // A product's file may spell the product in another case (product names are told apart
    // without it): the top nodes' names are then compared ignoring case.
    bool topNameIgnoresCase = false;
    // When set, a node below the top that cannot be merged (a key where the target has a group,
    // a second run-time default, a value that fails its key's checks) is left out, recorded
    // here by its full name with `file` and the reason, and the merge goes on; otherwise the
    // failure ends the merge. Requires copyOnWrite: the failed node's copy is dropped and the
    // original stays.
    HeldBackMap* holdBack = nullptr;
    std::wstring file;
};

}  // namespace detail
}  // namespace core
}  // namespace settings

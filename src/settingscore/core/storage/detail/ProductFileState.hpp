// What this process knows of one product's files, level by level: the file's name on disk and
// the version of it last read or written, the keys changed here since, the values of the file
// that the tree could not take (held back), a file that could not be read, and the last failed
// save. One state per product node, made on first use (SettingsImpl::fileState).
//
// Locks: the state's own mutex, a leaf, guards all of it. Changes come from the product's load
// (once) and from threads that hold the root mutex in upgrade mode (writes, saves, re-reads),
// so they never race each other; the mutex keeps readers of the status (under a shared hold)
// safe from them.
#pragma once

#include <settingscore/core/ProductFileStatus.hpp>

#include <platform/hf/filesystem/FileSystem.hpp>

#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

// A node of a file that the tree could not take: kept as the file had it and written back in
// place of its counterpart on the tree while that holds nothing at the level.
struct HeldBack {
    boost::shared_ptr<SettingsImpl> fileNode;  // standalone, its values at level "user" as read
    std::wstring file;
    std::wstring reason;
};

// By full name, product first.
using HeldBackMap = std::map<std::string, HeldBack>;

struct LevelFile {
    // The name the file has on disk, which may differ in case from the product's; empty until
    // a file was found or written (then "<product>.settings").
    std::string fileName;
    // `version` was taken, by the last read or write of this process.
    bool seen = false;
    hf::filesystem::FileInfo version;  // not_found: there was no file
    // The file as last seen could not be read, or did not parse: why. It is replaced only once
    // a copy of it is kept.
    boost::optional<std::wstring> unreadable;
    bool copyKept = false;
    // The full names this process changed at the level since the file was last read or
    // written: they win over the file's, key by key.
    std::set<std::string> changed;
    HeldBackMap heldBack;
    boost::optional<SaveFailure> failure;
};

class ProductFileState {
public:
    // Runs `f(LevelFile&)` for `level` under the state's mutex and returns what it returns.
    // `f` must not call back into the tree.
    template <class F>
    auto access(const std::string& level, F&& f) {
        std::lock_guard<std::mutex> guard(mutex_);
        return f(levels_[level]);
    }

    // `path` was changed here at `level`: it wins over the file from now on, and what was held
    // back at, below or above it is dropped (the change supersedes it).
    void markChanged(const std::string& level, const std::string& path);

    // A copy of every level's state, for reports.
    std::vector<std::pair<std::string, LevelFile>> snapshot() const;

private:
    mutable std::mutex mutex_;
    std::map<std::string, LevelFile> levels_;
};

// Whether `path` lies at or below one of the names in `changed`.
bool isChangedPath(const std::set<std::string>& changed, const std::string& path);

// Whether `inner` is `outer` or a name below it ("a.b" is below "a", "ab" is not).
bool isAtOrBelow(const std::string& inner, const std::string& outer);

}  // namespace detail
}  // namespace core
}  // namespace settings

// Migration between releases: the previous release's preference tree copied into a new
// preference directory, file by file, leaving out the names that must not survive a change
// of release.
#pragma once

#include <string>

namespace settings {
namespace core {
namespace detail {

// Copies the tree `fromDir` into `toDir`. Nothing to do (true) when the two are the same
// text, when `fromDir` is empty or does not exist. Throws PreferenceDirectoryNotExist when
// `toDir` does not exist. Otherwise the result of copyPreferenceTree.
bool migratePreferences(const std::wstring& fromDir, const std::wstring& toDir, bool overwrite);

// Walks `fromDir` in directory order: every folder is recreated below `toDir` and walked,
// every other entry copied unless excluded. Stops at the first failed copy with false; no
// rollback. Failures of the walk itself and of folder creation pass up as thrown.
bool copyPreferenceTree(const std::wstring& fromDir, const std::wstring& toDir, bool overwrite);

// Copies `fromFile` into `toDir` under its own name. True when copied or when `fromFile` is
// gone; false, after a message on the console, when the copy fails (with `overwrite`, after a
// second attempt that replaces the target); false for an empty path.
bool copyPreferenceFile(const std::wstring& fromFile, const std::wstring& toDir, bool overwrite);

// Whether the file name `fileName` contains one of the excluded strings (case counts).
bool isExcludedFromMigration(const std::wstring& fileName);

}  // namespace detail
}  // namespace core
}  // namespace settings

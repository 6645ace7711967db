// The steps of preference directory resolution below the public functions: the directory of
// a release, its creation with a three-way answer, the completion of a new directory, and the
// replacement of the installation root.
#pragma once

#include <string>

namespace settings {
namespace core {
namespace detail {

// What createPreferencesDirectory found.
enum PrefDirStatus : int {
    prefDirNotCreated = -1,  // `dir` empty, or creation failed
    prefDirCreatedNow = 0,
    prefDirExisted = 1,
};

// The roaming folder without final separators, joined with the suffix of `release`.
std::wstring prefDirForRelease(const std::wstring& release);

// Creates `dir` and its parents; one of PrefDirStatus. Never throws.
int createPreferencesDirectory(const std::wstring& dir);

// The step after creation. Not created: a warning on the console, and `dir` becomes empty.
// Created now: the previous release's preferences are copied in and the timestamp file is
// made (failures throw). Existed: nothing, not even a missing timestamp file is made good.
// A `dir` that is empty here with a non-negative status gets a warning of its own.
void completePreferencesDirectory(int status, std::wstring& dir);

// Replaces the installation root that tolvanRootUStr answers (empty: the real one) and
// returns the replacement that was in force.
std::wstring setTolvanRootOverride(const std::wstring& root);

}  // namespace detail
}  // namespace core
}  // namespace settings

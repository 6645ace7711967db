// Process-wide switches of the save that follows every change: saving itself (off keeps every
// change in memory only), and the durable replace (off skips the flushes to the disk that make
// a replaced settings file survive a power cut; for test suites that want speed). Both are
// plain flags, read at the start of each save.
#pragma once

namespace settings {
namespace core {

// From the next change on, no change reaches a file, until turnOnSettingsSaving.
void turnOffSettingsSaving();
void turnOnSettingsSaving();

// Durable replace, on by default: the new file's data is flushed to the disk before it
// replaces the old one, and the folder after the replace.
void turnOffDurableSaving();
void turnOnDurableSaving();

namespace detail {

bool isSettingsSavingOn();
bool isDurableSaving();

// Whether a save holds the product's lock file and first takes in what another process saved
// (on). Off only to measure what that costs: two processes would then lose each other's
// changes.
void setSharedFileSaving(bool on);
bool isSharedFileSaving();

}  // namespace detail
}  // namespace core
}  // namespace settings

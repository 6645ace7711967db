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

}  // namespace detail
}  // namespace core
}  // namespace settings

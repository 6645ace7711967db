// The preference directory of the user level: which directory is in force (the value set
// here, else TOLVAN_PREFDIR, else this release's standard directory), its creation with the
// migration of the previous release's preferences, the machine-local settings directory, the
// installation root, and the small path helpers around them.
#pragma once

#include <string>

namespace settings {
namespace core {

// The release words of this build: the current and the previous release. A release's
// preference directory is "<roaming folder>/Lindqvare/TOLVAN/<release word>".
inline constexpr char currentReleaseName[] = "V2041b";
inline constexpr char previousReleaseName[] = "V2041a";

// The preference directory in force: the value of setPreferencesDirectoryUStr, else
// getDefaultPreferencesDirectoryUStr(). A relative path throws RelativePathIsNotSupported.
// With createIfAbsent false the disk is not touched and the directory need not exist. With
// true it is created when absent, and only when this call created it are the previous
// release's preferences copied in and the timestamp file made; a directory that cannot be
// created gives a warning on the console and an empty path. Serialised with every other get
// and set, migration included.
std::wstring getPreferencesDirectoryUStr(bool createIfAbsent);

// TOLVAN_PREFDIR, or when that is unset or empty the standard directory; resolved once in the
// life of the process.
std::wstring getDefaultPreferencesDirectoryUStr();

// The directory of the current release below the roaming folder, ignoring every override.
std::wstring getStandardPreferencesDirectoryUStr();

// The value of setUnitTestPreviousPrefDir when not empty, else the previous release's
// directory below the roaming folder.
std::wstring getPreviousPreferencesDirectoryUStr();

// The current release's directory below the local (machine-specific) folder, created when
// absent. No override, no check, no migration.
std::wstring getLocalSettingsDirectoryUStr();

// setPreferencesDirectoryUStr of `dir` read as UTF-8.
void setPreferencesDirectory(const char* const dir);

// Overrides the preference directory for the next gets; empty returns to the default.
// Nothing is checked here: a relative path is refused by the next get.
void setPreferencesDirectoryUStr(const std::wstring& dir);

// Overrides the previous release's directory, the source of migration; empty restores it.
void setUnitTestPreviousPrefDir(std::wstring dir);

// tolvanRootUStr as UTF-8. The text stays valid until the calling thread's next call.
const char* tolvanRoot();

// The installation root.
std::wstring tolvanRootUStr();

// The user's roaming application data folder ($XDG_CONFIG_HOME, else $HOME/.config), created
// when absent; empty when neither variable is set.
std::wstring tolvanDefaultPrefDirPrefixUStr();

// The user's local application data folder ($XDG_DATA_HOME, else $HOME/.local/share), created
// when absent; empty when neither variable is set.
std::wstring tolvanLocalSettingsDirPrefixUStr();

// "Lindqvare/TOLVAN/" followed by `release`.
std::wstring tolvanDefaultPrefDirSuffixUStr(const std::wstring& release);

// `path` without its final separators; a path of separators only becomes empty.
std::string StripFinalPathNameSep(const std::string& path);
std::wstring stripFinalPathNameSepUStr(const std::wstring& path);

// "creation.timestamp", the empty file that marks a completed preference directory.
std::wstring getTimestampFileNameUStr();

}  // namespace core
}  // namespace settings

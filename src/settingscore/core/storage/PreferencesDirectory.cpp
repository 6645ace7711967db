// Locks: prefDirMutex covers the whole of getPreferencesDirectoryUStr, creation and migration
// included, and every set of the override; no lock of the tree is taken under it. The overrides
// of the previous directory and of the installation root sit behind a leaf lock of their own
// (overridesMutex), which is never held while anything else is called.

#include <settingscore/core/storage/PreferencesDirectory.hpp>

#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/storage/detail/Migration.hpp>
#include <settingscore/core/storage/detail/PreferencesDirectoryDetail.hpp>

#include <platform/hlu/hlu.h>
#include <settingscore/core/storage/SettingsSaving.hpp>

#include <platform/hf/filesystem/FileSystem.hpp>
#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/InstallPath.hpp>
#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/i18n/Conversion.hpp>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/once.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace settings {
namespace core {
namespace {

namespace fs = hf::filesystem;

// Process-wide state of this file, reached through a function so that it exists whenever a
// caller comes, static initialisers of other units included.
struct PrefDirState {
    std::wstring prefDirOverride;
    boost::mutex prefDirMutex;
    std::wstring defaultPrefDir;
    boost::once_flag defaultPrefDirOnce = BOOST_ONCE_INIT;
    std::wstring previousPrefDirOverride;
    std::wstring tolvanRootOverride;
    boost::mutex overridesMutex;
};

PrefDirState& state() {
    static PrefDirState instance;
    return instance;
}

// One copy per thread, so that the text a caller got stays valid until that same thread asks
// again, whatever other threads do meanwhile.
thread_local std::string tolvanRootNarrow;

// The folder named by `variable`, else `homeRelative` below $HOME, created when absent. Empty
// when neither variable is set: every default path is then relative, and the next get refuses
// it.
std::wstring applicationDataFolder(const wchar_t* variable, const wchar_t* homeRelative) {
    fs::upath folder;
    const std::wstring own = hf::i18n::getenv(variable);
    if (!own.empty()) {
        folder = fs::upath(own);
    } else {
        const std::wstring home = hf::i18n::getenv(L"HOME");
        if (home.empty()) {
            return std::wstring();
        }
        folder = fs::upath(home) / fs::upath(homeRelative);
    }
    // Like the host's folder look-up with its create flag: make it when missing and ignore
    // the outcome. A folder that cannot be made still gives its path, so that the failure
    // shows with that path when the preference directory below it is created.
    try {
        fs::makeFolders(fs::FileSystem::current(), folder, false);
    } catch (...) {
    }
    return folder.wstring();
}

void defaultPrefDirOnce() {
    PrefDirState& s = state();
    s.defaultPrefDir = hf::i18n::getenv(L"TOLVAN_PREFDIR");
    if (s.defaultPrefDir.empty()) {
        s.defaultPrefDir = getStandardPreferencesDirectoryUStr();
    }
}

std::wstring widen(const char* releaseWord) {
    return hf::i18n::codecvt_ascii_to_ustring(releaseWord);
}

// `prefix` without final separators, then the suffix of `release`: no doubled separator
// whatever the folder's path ends in.
std::wstring releaseDirBelow(const std::wstring& prefix, const std::wstring& release) {
    const std::wstring suffix = tolvanDefaultPrefDirSuffixUStr(release);
    fs::upath path(stripFinalPathNameSepUStr(prefix));
    if (!suffix.empty()) {
        path /= fs::upath(suffix);
    }
    return path.wstring();
}

// Migrates into the directory that was just made, then marks it with an empty timestamp file
// (truncating one that came across from the previous release).
void migrateAndStamp(const std::wstring& dir) {
    if (!detail::migratePreferences(getPreviousPreferencesDirectoryUStr(), dir, false)) {
        throw makeMessageException<TOLVAN::settings::core::ErrorMigratePrefsBetweenReleases>(
            widen(previousReleaseName), widen(currentReleaseName));
    }
    const fs::upath timestamp = fs::upath(dir) / fs::upath(getTimestampFileNameUStr());
    try {
        fs::FileSystem::current().writeFile(timestamp, std::string(), false);
    } catch (const fs::FsysExceptionBase& e) {
        throw makeMessageException<TOLVAN::settings::core::ErrorCreatePreferenceDirectoryTimeStamp>(
            timestamp.wstring(), e.code().message());
    }
}

}  // namespace

namespace detail {

std::wstring prefDirForRelease(const std::wstring& release) {
    return releaseDirBelow(tolvanDefaultPrefDirPrefixUStr(), release);
}

int createPreferencesDirectory(const std::wstring& dir) {
    if (dir.empty()) {
        return prefDirNotCreated;
    }
    // The folder itself is made by one call of its own, whose FileExistsError tells "was
    // there" exactly, even when processes race for it: only one of them migrates. With durable
    // saving every folder made is synced into its parent, so that a power cut cannot lose it
    // with the files later saved into it.
    fs::FileSystem& files = fs::FileSystem::current();
    const fs::upath folder(stripFinalPathNameSepUStr(dir));
    try {
        if (files.examine(folder).type == fs::file_type::directory) {
            return prefDirExisted;
        }
        fs::makeFolders(files, folder.parent_path(), isDurableSaving());
        files.makeFolder(folder);
        if (isDurableSaving()) {
            files.syncFolder(folder.parent_path());
        }
        return prefDirCreatedNow;
    } catch (const fs::FileExistsError&) {
        return files.examine(folder).type == fs::file_type::directory ? prefDirExisted
                                                                      : prefDirNotCreated;
    } catch (...) {
        return prefDirNotCreated;
    }
}

void completePreferencesDirectory(int status, std::wstring& dir) {
    if (status < 0) {
        hluPrintf(
            "Warning: failed to create preference directory %s.\nCheck directory permissions.",
            hf::i18n::to_string(dir).c_str());
        dir.clear();
    } else if (dir.empty()) {
        hluPrintf("Warning: failed to create NULL preference directory. \n");
    } else if (status == prefDirCreatedNow) {
        // Migration depends on this one fact: this call made the directory. An existing one
        // is left as it is, even if an earlier migration into it failed half way.
        migrateAndStamp(dir);
    }
}

std::wstring setTolvanRootOverride(const std::wstring& root) {
    PrefDirState& s = state();
    boost::lock_guard<boost::mutex> lock(s.overridesMutex);
    std::wstring previous = root;
    s.tolvanRootOverride.swap(previous);
    return previous;
}

}  // namespace detail

std::wstring getPreferencesDirectoryUStr(bool createIfAbsent) {
    PrefDirState& s = state();
    // Held to the end, through creation and migration: a second first call waits here and
    // then finds the directory complete.
    boost::lock_guard<boost::mutex> lock(s.prefDirMutex);
    std::wstring dir = s.prefDirOverride;
    if (dir.empty()) {
        dir = getDefaultPreferencesDirectoryUStr();
    }
    if (!fs::detail::is_absolute(fs::upath(dir))) {
        throw makeMessageException<TOLVAN::settings::core::RelativePathIsNotSupported>(dir);
    }
    if (!createIfAbsent) {
        return dir;
    }
    const int status = detail::createPreferencesDirectory(dir);
    detail::completePreferencesDirectory(status, dir);
    return dir;
}

std::wstring getDefaultPreferencesDirectoryUStr() {
    PrefDirState& s = state();
    boost::call_once(s.defaultPrefDirOnce, &defaultPrefDirOnce);
    return s.defaultPrefDir;
}

std::wstring getStandardPreferencesDirectoryUStr() {
    return detail::prefDirForRelease(widen(currentReleaseName));
}

std::wstring getPreviousPreferencesDirectoryUStr() {
    PrefDirState& s = state();
    {
        boost::lock_guard<boost::mutex> lock(s.overridesMutex);
        if (!s.previousPrefDirOverride.empty()) {
            return s.previousPrefDirOverride;
        }
    }
    return detail::prefDirForRelease(widen(previousReleaseName));
}

std::wstring getLocalSettingsDirectoryUStr() {
    const std::wstring dir =
        releaseDirBelow(tolvanLocalSettingsDirPrefixUStr(), widen(currentReleaseName));
    detail::createPreferencesDirectory(dir);  // the answer does not matter here
    return dir;
}

void setPreferencesDirectory(const char* const dir) {
    setPreferencesDirectoryUStr(hf::i18n::to_ustring(dir ? dir : ""));
}

void setPreferencesDirectoryUStr(const std::wstring& dir) {
    PrefDirState& s = state();
    boost::lock_guard<boost::mutex> lock(s.prefDirMutex);
    s.prefDirOverride = dir;
}

void setUnitTestPreviousPrefDir(std::wstring dir) {
    PrefDirState& s = state();
    boost::lock_guard<boost::mutex> lock(s.overridesMutex);
    s.previousPrefDirOverride = std::move(dir);
}

const char* tolvanRoot() {
    tolvanRootNarrow = hf::i18n::to_string(tolvanRootUStr());
    return tolvanRootNarrow.c_str();
}

std::wstring tolvanRootUStr() {
    PrefDirState& s = state();
    {
        boost::lock_guard<boost::mutex> lock(s.overridesMutex);
        if (!s.tolvanRootOverride.empty()) {
            return s.tolvanRootOverride;
        }
    }
    return fs::get_install_path().wstring();
}

std::wstring tolvanDefaultPrefDirPrefixUStr() {
    return applicationDataFolder(L"XDG_CONFIG_HOME", L".config");
}

std::wstring tolvanLocalSettingsDirPrefixUStr() {
    return applicationDataFolder(L"XDG_DATA_HOME", L".local/share");
}

std::wstring tolvanDefaultPrefDirSuffixUStr(const std::wstring& release) {
    return L"Lindqvare/TOLVAN/" + release;
}

std::string StripFinalPathNameSep(const std::string& path) {
    return hf::i18n::to_string(stripFinalPathNameSepUStr(hf::i18n::to_ustring(path)));
}

std::wstring stripFinalPathNameSepUStr(const std::wstring& path) {
    const std::wstring::size_type last =
        path.find_last_not_of(fs::upath_constant::PATHNAME_SEPARATOR);
    return last == std::wstring::npos ? std::wstring() : path.substr(0, last + 1);
}

std::wstring getTimestampFileNameUStr() {
    return hf::i18n::codecvt_ascii_to_ustring("creation.timestamp");
}

}  // namespace core
}  // namespace settings

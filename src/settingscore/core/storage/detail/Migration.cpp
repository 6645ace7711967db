#include <settingscore/core/storage/detail/Migration.hpp>

#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>

#include <platform/hlu/hlu.h>
#include <platform/hf/filesystem/FileSystem.hpp>
#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <cerrno>
#include <cstring>
#include <exception>

namespace settings {
namespace core {
namespace detail {
namespace {

namespace fs = hf::filesystem;

// Names that must not survive a change of release: option files of build tools, caches and
// the shortcut definitions. Matched as substrings, so versioned and backup copies go too.
const wchar_t excludedFromMigration[7][20] = {
    L"extbopts",  L"compopts",      L"pkgbuildopts",     L"toolbox_cache",
    L"pkc.cache", L"shortcuts.xml", L"shortcuts_ja.xml",
};

// A copy failure is told on the host's console, not thrown: the false result stops the walk
// and the caller throws for the migration as a whole.
void reportOnConsole(const hf::resource::BaseMsgID& message) {
    const std::wstring text =
        hf::i18n::MessageCatalog::get_message(message, hf::i18n::HfLocale::global());
    hluPutsn(hf::i18n::to_string(text).c_str());
}

// Copies one file through the file system in force; with durable saving its data reaches the
// disk, since the new directory is never migrated again.
void copyOneFile(const fs::upath& from, const fs::upath& to, bool overwrite) {
    fs::FileSystem& files = fs::FileSystem::current();
    if (!overwrite && files.examine(to).exists()) {
        throw fs::FileExistsError("copy", from, to, std::make_error_code(std::errc::file_exists));
    }
    files.writeFile(to, files.readFile(from, nullptr), isDurableSaving());
}

}  // namespace

bool isExcludedFromMigration(const std::wstring& fileName) {
    for (const wchar_t* excluded : excludedFromMigration) {
        if (fileName.find(excluded) != std::wstring::npos) {
            return true;
        }
    }
    return false;
}

bool migratePreferences(const std::wstring& fromDir, const std::wstring& toDir, bool overwrite) {
    // The order of these tests is part of the behaviour: a previous directory equal to the
    // new one, or absent, is no failure even when the new directory is missing.
    if (fromDir == toDir) {
        return true;
    }
    if (fromDir.empty()) {
        return true;
    }
    fs::FileSystem& files = fs::FileSystem::current();
    if (!files.examine(fromDir).exists()) {
        return true;
    }
    if (!files.examine(toDir).exists()) {
        const int error = errno;
        throw makeMessageException<TOLVAN::settings::core::PreferenceDirectoryNotExist>(
            toDir, std::strerror(error));
    }
    return copyPreferenceTree(fromDir, toDir, overwrite);
}

bool copyPreferenceTree(const std::wstring& fromDir, const std::wstring& toDir, bool overwrite) {
    fs::FileSystem& files = fs::FileSystem::current();
    for (const fs::FolderEntry& entry : files.listFolder(fromDir)) {
        const fs::upath name(entry.name);
        if (name == fs::upath(fs::upath_constant::CURRENT_DIRECTORY) ||
            name == fs::upath(fs::upath_constant::PARENT_DIRECTORY)) {
            continue;
        }
        const std::wstring fullPath = (fs::upath(fromDir) / name).wstring();
        if (entry.type == fs::file_type::directory) {
            // Every folder is recreated, whatever it is called; only files are excluded.
            const fs::upath sub = fs::upath(toDir) / name;
            fs::makeFolders(files, sub, isDurableSaving());
            if (!copyPreferenceTree(fullPath, sub.wstring(), overwrite)) {
                return false;
            }
        } else if (!isExcludedFromMigration(name.wstring())) {
            if (!copyPreferenceFile(fullPath, toDir, overwrite)) {
                return false;
            }
        }
    }
    if (isDurableSaving()) {
        files.syncFolder(toDir);  // the copies' names reach the disk with their data
    }
    return true;
}

bool copyPreferenceFile(const std::wstring& fromFile, const std::wstring& toDir, bool overwrite) {
    if (fromFile.empty() || toDir.empty()) {
        return false;
    }
    if (!fs::FileSystem::current().examine(fromFile).exists()) {
        return true;  // went away during the walk
    }
    const fs::upath dest = fs::upath(toDir) / fs::upath(fromFile).filename();
    try {
        copyOneFile(fromFile, dest, false);
        return true;
    } catch (...) {
    }
    // The migration itself never passes overwrite, and its target holds only what the walk
    // copied, so in practice every failure, whatever its cause, is told with this wording.
    if (!overwrite) {
        reportOnConsole(TOLVAN::settings::core::ErrorOverwriteFileInPrefDir(dest.wstring()));
        return false;
    }
    try {
        copyOneFile(fromFile, dest, true);
        return true;
    } catch (const std::exception& e) {
        reportOnConsole(TOLVAN::settings::core::ErrorCopyFileInPrefDir(
            fromFile, dest.wstring(), hf::i18n::to_ustring(e.what())));
    } catch (...) {
        reportOnConsole(
            TOLVAN::settings::core::ErrorCopyFileInPrefDir(fromFile, dest.wstring(), L"Unknown"));
    }
    return false;
}

}  // namespace detail
}  // namespace core
}  // namespace settings

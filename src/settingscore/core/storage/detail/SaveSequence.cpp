// The save sequence. It runs on the thread that made the change, under that thread's hold of
// the root mutex (shared, or upgrade during setValues), so the tree cannot change while it is
// written and readers go on meanwhile. Two saves of one product meet only at the renames.
#include <settingscore/core/storage/detail/SaveSequence.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/detail/FileLayerHooks.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/LevelDirectories.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include <settingscore/core/storage/detail/SaveFileOperations.hpp>

#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/log/DiagnosticLogger.hpp>
#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include <boost/thread/thread.hpp>

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace settings {
namespace core {
namespace detail {

namespace {

const hf::log::basic_diagnostic_logger<char>& saveLogger() {
    static const hf::log::basic_diagnostic_logger<char> logger("settings::core");
    return logger;
}

// Removes the temporary folder, and whatever is left in it, on every way out of a save, unless
// told to keep it (it then holds the only copy of the old file).
class TempDirectoryGuard {
public:
    explicit TempDirectoryGuard(hf::filesystem::upath folder) : folder_(std::move(folder)) {}
    ~TempDirectoryGuard() {
        if (kept_) {
            return;
        }
        try {
            if (hf::filesystem::exists(folder_)) {
                hf::filesystem::remove_all(folder_);
            }
        } catch (...) {
        }
    }
    TempDirectoryGuard(const TempDirectoryGuard&) = delete;
    TempDirectoryGuard& operator=(const TempDirectoryGuard&) = delete;

    void keep() { kept_ = true; }

private:
    hf::filesystem::upath folder_;
    bool kept_ = false;
};

// After a give-up: the old file, if the loop moved it aside, goes back where it was. Nothing
// replaced it, and a save that changes nothing on disk must not lose what was there. False when
// it is still aside (the move back failed too).
bool restoreTarget(const hf::filesystem::upath& target, const hf::filesystem::upath& previous) {
    try {
        if (!hf::filesystem::exists(previous) || hf::filesystem::exists(target)) {
            return true;
        }
        SaveFileOperations::renamePreviousToTarget()(previous, target);
        return true;
    } catch (const hf::filesystem::FsysExceptionBase&) {
        return false;
    }
}

// Replaces `target` by `tmp`. A rename that refuses an existing target is answered by moving
// the target aside and trying again at once; competing writers meet pauses after passes 333,
// 666 and 999; after 1000 passes the save gives up without a word (restoreTarget then puts a
// target that was moved aside back). True when replaced.
bool replaceTarget(const hf::filesystem::upath& tmp, const hf::filesystem::upath& target,
                   const hf::filesystem::upath& previous) {
    for (int attempts = 1;; ++attempts) {
        try {
            SaveFileOperations::renameTempToTarget()(tmp, target);
            return true;
        } catch (const hf::filesystem::FsysExceptionBase&) {
            try {
                SaveFileOperations::renameTargetToPrevious()(target, previous);
            } catch (const hf::filesystem::FsysExceptionBase&) {
            }
        }
        if (attempts % 333 == 0) {
            std::srand(static_cast<unsigned>(std::time(nullptr)));
            boost::this_thread::sleep_for(boost::chrono::milliseconds(std::rand() % 1000 + 1001));
        } else if (attempts == 1000) {
            return false;
        }
    }
}

}  // namespace

hf::filesystem::upath createSaveTempDirectory(const hf::filesystem::upath& folder) {
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const hf::filesystem::upath candidate =
            folder /
            hf::filesystem::upath("temp" + hostsvc::msg_svc::exchange::IDType().toString());
        try {
            hf::filesystem::create_directories(candidate);
        } catch (const hf::filesystem::FileExistsError&) {
            continue;  // another save's folder: never share one
        } catch (const hf::filesystem::AccessDenied& e) {
            if (!hf::filesystem::exists(candidate)) {
                throw makeMessageException<TOLVAN::settings::core::NoWritePermissionOnDirectory>(
                    folder.wstring(), e.what());
            }
            continue;
        } catch (const hf::filesystem::FsysExceptionBase&) {
            // Another save's folder that vanished between our attempt and the check of what
            // stood there: taken all the same, try the next name. Anything else (the level's
            // folder is no folder, say) is the caller's to hear.
            std::error_code ignored;
            if (!std::filesystem::is_directory(
                    hf::filesystem::detail::make_native_access_form(folder), ignored)) {
                throw;
            }
            continue;
        }
        if (hf::filesystem::exists(candidate)) {
            return candidate;
        }
    }
    throw makeMessageException<TOLVAN::settings::core::CanNotCreateTempDirectory>(folder.wstring());
}

void saveSettingsAtLevel(const SettingsLevel* level, SettingsPtr object, const ReadAccess& lock) {
    if (!level->canHaveFile()) {
        return;
    }
    if (!level->canBeModified()) {
        throw exception::CantModifyValuesOnReadOnlyLevel(object, level->levelName());
    }
    const auto node = SettingsImpl::implOf(object);
    if (!node) {
        return;
    }
    SettingsPtr saveObj = node->productNodeOf(lock);
    if (saveLogger().is_enabled(1)) {
        saveLogger().log(1, "SaveObj : " + saveObj->getName() + " Level : " + level->levelName());
    }
    const auto root = boost::dynamic_pointer_cast<SettingsImplRoot>(
        SettingsImpl::implOf(saveObj)->getParentImpl(lock));
    const hf::filesystem::upath folder(resolveLevelDirectory(*level, root));
    if (folder.empty()) {
        return;
    }

    hf::filesystem::upath tempDir;
    try {
        tempDir = createSaveTempDirectory(folder);
    } catch (const MessageException<TOLVAN::settings::core::CanNotCreateTempDirectory>&) {
        return;
    }
    TempDirectoryGuard guard(tempDir);
    const std::string fileName = saveObj->getName() + Settings::settingsExtension;
    const hf::filesystem::upath target = folder / hf::filesystem::upath(fileName);
    const hf::filesystem::upath tmp = tempDir / hf::filesystem::upath(fileName + ".tmp");
    if (!SaveFileOperations::writeSettingsToFile()(level, saveObj, lock, tmp)) {
        // Never let a short file replace a whole one: the old file stays, memory is ahead.
        saveLogger().log(1, "SaveObj : " + saveObj->getName() + " Level : " + level->levelName() +
                                " not saved: the temporary file could not be written in full");
        return;
    }
    const hf::filesystem::upath previous = tempDir / hf::filesystem::upath(fileName + ".previous");
    if (!isTargetWritable(target)) {
        return;
    }
    if (replaceTarget(tmp, target, previous)) {
        if (isDurableSaving()) {
            syncFolder(folder);  // the rename itself reaches the disk
        }
    } else if (!restoreTarget(target, previous)) {
        // The old file could be neither replaced nor put back: its folder stays, so that the
        // only copy survives, and the log says where.
        guard.keep();
        saveLogger().log(1, "SaveObj : " + saveObj->getName() + " Level : " + level->levelName() +
                                " not saved: the previous file is kept at " + previous.string());
    }
}

}  // namespace detail

namespace {

std::atomic<bool> savingOn{true};
std::atomic<bool> durableSaving{true};

void saveNothing(const SettingsLevel*, SettingsPtr, const detail::ReadAccess&) {}

}  // namespace

bool detail::isDurableSaving() {
    return durableSaving.load();
}
bool detail::isSettingsSavingOn() {
    return savingOn.load();
}

void turnOffSettingsSaving() {
    savingOn = false;
    levelSaver = &saveNothing;
}

void turnOnSettingsSaving() {
    savingOn = true;
    levelSaver = &detail::saveSettingsAtLevel;
}

void turnOffDurableSaving() {
    durableSaving = false;
}
void turnOnDurableSaving() {
    durableSaving = true;
}

}  // namespace core
}  // namespace settings

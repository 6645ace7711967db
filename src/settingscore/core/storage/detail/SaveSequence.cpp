// The save sequence. It runs on the thread that made the change, under that thread's upgrade
// hold of the root mutex, so the tree cannot change under it (but for what the save itself takes
// in) and readers go on meanwhile; within the process one save runs at a time. Across processes
// the product's lock file orders the saves. Every file operation goes through the file system
// in force (hf::filesystem::FileSystem), so a test can fail any one of them or cut the power
// after it.
#include <settingscore/core/storage/detail/SaveSequence.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/LevelDirectories.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include <settingscore/core/storage/detail/FileTakeIn.hpp>
#include <settingscore/core/storage/detail/Leftovers.hpp>
#include <settingscore/core/storage/detail/LevelFiles.hpp>
#include <settingscore/core/storage/detail/ProductFileState.hpp>
#include <settingscore/core/xml/SettingsFileParser.hpp>
#include <settingscore/core/xml/detail/NodeWriter.hpp>

#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/log/DiagnosticLogger.hpp>
#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include <boost/thread/thread.hpp>

#include <atomic>
#include <cstdlib>
#include <ctime>

namespace settings {
namespace core {
namespace detail {

namespace {

namespace fs = hf::filesystem;

const hf::log::basic_diagnostic_logger<char>& saveLogger() {
    static const hf::log::basic_diagnostic_logger<char> logger("settings::core");
    return logger;
}

// How long a save waits for another process's save of the same product before it goes on
// without the lock.
constexpr std::chrono::seconds lockPatience(5);

// One save: where things are, and what this process knows of the file.
struct SaveJob {
    fs::FileSystem& files;
    SettingsImpl& product;
    const SettingsLevel& level;
    ProductFileState& state;
    fs::upath folder;
    std::string fileName;
    fs::upath target;
    bool durable;
};

// The save could not be done: remembered for the product and level until a save there works,
// and logged when it is news (not again for each save that fails the same way).
void recordFailure(const SaveJob& job, const std::string& step, const fs::upath& file,
                   const std::string& error) {
    const bool news = job.state.access(job.level.levelName(), [&](LevelFile& level) {
        const bool same = level.failure && level.failure->step == step &&
                          level.failure->error == error && level.failure->file == file.wstring();
        level.failure = SaveFailure{job.level.levelName(), file.wstring(), step, error,
                                    std::chrono::system_clock::now()};
        return !same;
    });
    if (news) {
        saveLogger().log(1, "SaveObj : " + job.product.getName() +
                                " Level : " + job.level.levelName() + " not saved: " + step +
                                " failed for " + file.string() + ": " + error);
    }
}

void recordFailure(const SaveJob& job, const std::string& step, const fs::FsysExceptionBase& e) {
    recordFailure(job, step, e.path1(), e.code().message());
}

// Waits for other processes' saves of the product. A lock that cannot be had in time, or at
// all, is logged and the save goes on without it, as a save did before there was one.
std::unique_ptr<fs::FileLock> lockProductFile(const SaveJob& job) {
    const fs::upath lockFile = job.folder / fs::upath(lockFileNameOf(job.product.getName()));
    std::string problem = "no lock within " + std::to_string(lockPatience.count()) + " seconds";
    try {
        if (auto lock = job.files.lockFile(lockFile, lockPatience)) {
            return lock;
        }
    } catch (const fs::FsysExceptionBase& e) {
        problem = e.what();
    }
    saveLogger().log(1, "SaveObj : " + job.product.getName() + " Level : " + job.level.levelName() +
                            " saved without its lock file: " + problem);
    return nullptr;
}

// Removes the temporary folder, and whatever is left in it, on every way out of a save, unless
// told to keep it (it then holds the only copy of the old file).
class TempDirectoryGuard {
public:
    TempDirectoryGuard(fs::FileSystem& files, fs::upath folder)
        : files_(files), folder_(std::move(folder)) {}
    ~TempDirectoryGuard() {
        if (kept_) {
            return;
        }
        // A second try for a passing failure; what still stays is swept by a later save.
        for (int attempt = 0; attempt < 2; ++attempt) {
            try {
                fs::removeTree(files_, folder_);
                return;
            } catch (...) {
            }
        }
    }
    TempDirectoryGuard(const TempDirectoryGuard&) = delete;
    TempDirectoryGuard& operator=(const TempDirectoryGuard&) = delete;

    void keep() { kept_ = true; }

private:
    fs::FileSystem& files_;
    fs::upath folder_;
    bool kept_ = false;
};

// After a give-up: the old file, if the loop moved it aside, goes back where it was. Nothing
// replaced it, and a save that changes nothing on disk must not lose what was there. False when
// it is still aside (the move back failed too).
bool restoreTarget(fs::FileSystem& files, const fs::upath& target, const fs::upath& previous) {
    try {
        if (!files.examine(previous).exists() || files.examine(target).exists()) {
            return true;
        }
        files.rename(previous, target);
        return true;
    } catch (const fs::FsysExceptionBase&) {
        return false;
    }
}

// Whether trying a failed rename again can help: a target held or refused for the moment can
// be free on the next pass, a broken disk, a full or read-only file system, a folder in the
// way or a missing source cannot.
bool mayPass(const std::error_code& refusal) {
    for (const std::errc hopeless :
         {std::errc::io_error, std::errc::read_only_file_system, std::errc::no_space_on_device,
          std::errc::cross_device_link, std::errc::no_such_file_or_directory,
          std::errc::not_a_directory, std::errc::is_a_directory, std::errc::filename_too_long,
          std::errc::too_many_symbolic_link_levels}) {
        if (refusal == hopeless) {
            return false;
        }
    }
    return true;
}

// Replaces `target` by `tmp`. A rename that refuses an existing target is answered by moving
// the target aside and trying again at once; competing writers meet pauses after passes 333,
// 666 and 999; after 1000 passes, or at once for a refusal that no retry can cure, the save
// gives up (restoreTarget then puts a target that was moved aside back). The last refusal's
// text when it gave up, else none.
boost::optional<std::string> replaceTarget(fs::FileSystem& files, const fs::upath& tmp,
                                           const fs::upath& target, const fs::upath& previous) {
    for (int attempts = 1;; ++attempts) {
        try {
            files.rename(tmp, target);
            return boost::none;
        } catch (const fs::FsysExceptionBase& refused) {
            try {
                files.rename(target, previous);
            } catch (const fs::FsysExceptionBase&) {
            }
            if (!mayPass(refused.code())) {
                return std::string(refused.code().message());
            }
            if (attempts % 333 == 0) {
                std::srand(static_cast<unsigned>(std::time(nullptr)));
                boost::this_thread::sleep_for(
                    boost::chrono::milliseconds(std::rand() % 1000 + 1001));
            } else if (attempts == 1000) {
                return std::string(refused.code().message());
            }
        }
    }
}

// The steps after the level's folder is there and the lock is held.
void writeAndReplace(UpgradeLock& lock, SaveJob& job) {
    sweepLeftovers(job.files, job.folder);

    const TakeInResult takenIn =
        isSharedFileSaving()
            ? takeInFileChanges(lock, job.product, job.level, job.files, job.folder, job.durable)
            : TakeInResult();
    // The read may have found the file under another spelling of the product's name.
    job.fileName =
        job.state.access(job.level.levelName(), [](LevelFile& file) { return file.fileName; });
    if (job.fileName.empty()) {
        job.fileName = defaultFileNameOf(job.product.getName());
    }
    job.target = job.folder / fs::upath(job.fileName);
    if (!takenIn.mayReplace) {
        recordFailure(job, "keep a copy of the unreadable file", job.target, takenIn.refusal);
        return;
    }

    fs::upath tempDir;
    try {
        tempDir = createSaveTempDirectory(job.files, job.folder);
    } catch (const MessageException<TOLVAN::settings::core::CanNotCreateTempDirectory>&) {
        recordFailure(job, "make a temporary folder", job.folder, "1000 attempts failed");
        return;
    } catch (const MessageException<TOLVAN::settings::core::NoWritePermissionOnDirectory>&) {
        recordFailure(job, "make a temporary folder", job.folder, "permission denied");
        throw;
    }
    TempDirectoryGuard guard(job.files, tempDir);
    const fs::upath tmp = tempDir / fs::upath(job.fileName + ".tmp");
    const fs::upath previous = tempDir / fs::upath(job.fileName + ".previous");

    std::string text;
    HeldBackMap heldBack =
        job.state.access(job.level.levelName(), [](LevelFile& level) { return level.heldBack; });
    NodeWriter::writeDocument(lock, job.product, job.level.levelName(), text, &heldBack);
    if (text.size() > SettingsFileParser::maxFileSize) {
        // A file the reader would refuse would cost every value in it at the next start.
        recordFailure(job, "write the temporary file", tmp,
                      "the file would be larger than the " +
                          std::to_string(SettingsFileParser::maxFileSize >> 20) +
                          " MiB a settings file can have");
        return;
    }
    fs::FileInfo written;
    try {
        written = job.files.writeFile(tmp, text, job.durable);
    } catch (const fs::FsysExceptionBase& e) {
        // Never let a short file replace a whole one: the old file stays, memory is ahead.
        recordFailure(job, "write the temporary file", e);
        return;
    }
    if (const std::error_code refused = job.files.checkWritable(job.target)) {
        recordFailure(job, "open the file for writing", job.target, refused.message());
        return;
    }
    if (const auto gaveUp = replaceTarget(job.files, tmp, job.target, previous)) {
        recordFailure(job, "replace the file", job.target, *gaveUp);
        if (!restoreTarget(job.files, job.target, previous)) {
            // The old file could be neither replaced nor put back: its folder stays, so that
            // the only copy survives, and the log says where.
            guard.keep();
            saveLogger().log(1, "SaveObj : " + job.product.getName() +
                                    " Level : " + job.level.levelName() +
                                    " the previous file is kept at " + previous.string());
        }
        return;
    }
    if (job.durable) {
        try {
            job.files.syncFolder(job.folder);  // the rename itself reaches the disk
        } catch (const fs::FsysExceptionBase& e) {
            recordFailure(job, "sync the folder", e);
            return;
        }
    }
    job.state.access(job.level.levelName(), [&](LevelFile& level) {
        level.fileName = job.fileName;
        level.seen = true;
        level.version = written;  // a rename keeps the file's identity and time
        level.unreadable.reset();
        level.copyKept = false;
        level.changed.clear();
        level.failure.reset();
    });
}

}  // namespace

fs::upath createSaveTempDirectory(fs::FileSystem& files, const fs::upath& folder) {
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const fs::upath candidate =
            folder / fs::upath("temp" + hostsvc::msg_svc::exchange::IDType().toString());
        try {
            files.makeFolder(candidate);
            return candidate;
        } catch (const fs::FileExistsError&) {
            continue;  // another save's folder: never share one
        } catch (const fs::AccessDenied& e) {
            throw makeMessageException<TOLVAN::settings::core::NoWritePermissionOnDirectory>(
                folder.wstring(), e.what());
        }
        // Anything else (the level's folder is no folder, say) is the caller's to hear.
    }
    throw makeMessageException<TOLVAN::settings::core::CanNotCreateTempDirectory>(folder.wstring());
}

void saveSettingsAtLevel(UpgradeLock& lock, const SettingsLevel* level, const SettingsImpl& node) {
    requireUpgradeLock(lock);
    if (!level->canHaveFile()) {
        return;
    }
    if (!level->canBeModified()) {
        throw exception::CantModifyValuesOnReadOnlyLevel(node.shared_from_this(),
                                                         level->levelName());
    }
    if (!isSettingsSavingOn()) {
        return;
    }
    const auto product = node.productNodeOf(lock);
    const auto root = boost::dynamic_pointer_cast<SettingsImplRoot>(product->getParentImpl(lock));
    if (!root) {
        return;  // a standalone tree has no files
    }
    if (saveLogger().is_enabled(1)) {
        saveLogger().log(1, "SaveObj : " + product->getName() + " Level : " + level->levelName());
    }
    const fs::upath folder(resolveLevelDirectory(*level, root));
    if (folder.empty()) {
        return;
    }
    const std::shared_ptr<ProductFileState> stateHeld = product->fileState();
    ProductFileState& state = *stateHeld;
    const std::string fileName = defaultFileNameOf(product->getName());  // until the file is read
    SaveJob job{fs::FileSystem::current(),    *product,         *level, state, folder, fileName,
                folder / fs::upath(fileName), isDurableSaving()};
    try {
        makeFolders(job.files, folder, job.durable);
    } catch (const fs::AccessDenied& e) {
        recordFailure(job, "make the level's folder", e);
        throw makeMessageException<TOLVAN::settings::core::NoWritePermissionOnDirectory>(
            folder.wstring(), e.what());
    } catch (const fs::FsysExceptionBase& e) {
        recordFailure(job, "make the level's folder", e);
        throw;
    }
    const std::unique_ptr<fs::FileLock> held =
        isSharedFileSaving() ? lockProductFile(job) : nullptr;
    try {
        writeAndReplace(lock, job);
    } catch (const fs::FsysExceptionBase& e) {
        recordFailure(job, e.operation(), e);
        throw;
    }
}

void deleteProductFiles(const SettingsImpl& product, ProductFileState& state,
                        const boost::shared_ptr<SettingsImplRoot>& root,
                        const std::vector<const SettingsLevel*>& levels) {
    if (!isSettingsSavingOn()) {
        return;
    }
    fs::FileSystem& files = fs::FileSystem::current();
    for (const SettingsLevel* level : levels) {
        const fs::upath folder(resolveLevelDirectory(*level, root));
        if (folder.empty()) {
            continue;
        }
        std::string fileName =
            state.access(level->levelName(), [](LevelFile& file) { return file.fileName; });
        if (fileName.empty()) {
            fileName = findProductFile(files, folder, product.getName())
                           .value_or(defaultFileNameOf(product.getName()));
        }
        std::unique_ptr<fs::FileLock> held;
        try {
            held =
                files.lockFile(folder / fs::upath(lockFileNameOf(product.getName())), lockPatience);
        } catch (const fs::FsysExceptionBase&) {
        }
        files.remove(folder / fs::upath(fileName));
    }
}

}  // namespace detail

namespace {

std::atomic<bool> savingOn{true};
std::atomic<bool> durableSaving{true};
std::atomic<bool> sharedFileSaving{true};

}  // namespace

bool detail::isDurableSaving() {
    return durableSaving.load();
}
bool detail::isSettingsSavingOn() {
    return savingOn.load();
}
void detail::setSharedFileSaving(bool on) {
    sharedFileSaving = on;
}
bool detail::isSharedFileSaving() {
    return sharedFileSaving.load();
}

void turnOffSettingsSaving() {
    savingOn = false;
}
void turnOnSettingsSaving() {
    savingOn = true;
}
void turnOffDurableSaving() {
    durableSaving = false;
}
void turnOnDurableSaving() {
    durableSaving = true;
}

}  // namespace core
}  // namespace settings

// SettingsImpl: the lazy load of a product node, run once per node on its first touch.
//
// Loading never turns a readable user value into a lost one. The factory files are merged as
// they always were: each defines what it holds, a bad one is skipped with a line in the error
// text. The file of a level that this library writes (the user's) is read through the file
// state of the product: a value in it that fails its key's checks is held back (kept and
// written back by every save, not served) while the rest loads, and a file that cannot be read
// as settings at all is copied aside before anything can replace it.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/detail/MergePolicy.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/LevelDirectories.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include <settingscore/core/storage/detail/LevelFiles.hpp>
#include <settingscore/core/storage/detail/ProductFileState.hpp>
#include <settingscore/core/xml/SettingsFileReading.hpp>

#include <platform/hf/i18n/Conversion.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

namespace {

namespace fs = hf::filesystem;

// The file of `level` that the library writes, read into `accumulator` with nothing lost: see
// the head of this file. Records what was read in the product's file state.
void loadWrittenLevelFile(const SettingsImpl& product, const SettingsLevel& level,
                          const boost::shared_ptr<SettingsImplRoot>& root,
                          boost::shared_ptr<SettingsImpl>& accumulator, bool& firstMerged,
                          std::wstring& errors) {
    const std::wstring dir = resolveLevelDirectory(level, root);
    if (dir.empty()) {
        return;
    }
    fs::FileSystem& files = fs::FileSystem::current();
    const fs::upath folder(dir);
    detail::ProductFileState& state = *product.fileState();
    const auto fileName = detail::findProductFile(files, folder, product.getName());
    if (!fileName) {
        state.access(level.levelName(), [](detail::LevelFile& file) {
            file.seen = true;
            file.version = fs::FileInfo();
        });
        return;
    }
    const bool durable = detail::isDurableSaving();
    detail::LevelFileRead read = detail::readLevelFile(files, folder, *fileName, durable);
    const std::wstring file = (folder / fs::upath(*fileName)).wstring();
    detail::HeldBackMap heldBack;
    if (read.tree) {
        detail::MergePolicy policy;
        policy.takeOver = true;
        policy.copyOnWrite = true;
        policy.runValidators = false;
        policy.topNameIgnoresCase = true;
        policy.holdBack = &heldBack;
        policy.file = file;
        try {
            accumulator = detail::mergeFileTree(accumulator, read.tree, level.levelName(),
                                                firstMerged, errors, file, policy);
        } catch (...) {
            // The file as a whole does not fit the product (another product's file, say):
            // nothing of it is taken, and it is kept as one that cannot be read.
            read.failure = detail::failureTextInFlight();
            try {
                read.keptCopy =
                    detail::keepUnreadableCopy(files, folder, *fileName, read.content, durable)
                        .wstring();
            } catch (const std::exception& e) {
                read.keepFailure = hf::i18n::to_ustring(e.what());
            }
        }
    }
    state.access(level.levelName(), [&](detail::LevelFile& level) {
        level.fileName = *fileName;
        level.seen = true;
        level.version = read.version;
        level.unreadable = read.failure;
        level.copyKept = read.keptCopy.has_value();
        level.heldBack = heldBack;
    });
    if (read.failure) {
        errors += file + L"\t" + *read.failure;
        if (read.keptCopy) {
            errors += L" The file is kept as " + *read.keptCopy + L".";
        } else if (read.keepFailure) {
            errors +=
                L" No copy of it could be kept (" + *read.keepFailure + L"): it is not replaced.";
        }
        errors += L"\n";
    }
    for (const auto& held : heldBack) {
        errors += file + L"\t" + hf::i18n::to_ustring(held.first) +
                  L" is held back, kept in the file but not used: " + held.second.reason + L"\n";
    }
}

}  // namespace

void SettingsImpl::ensureLoaded() const {
    // REQUIRES: no lock of the tree held; the load takes the root mutex for its merge.
    // The flag is checked before call_once so that the common case, a node loaded long ago,
    // costs one atomic read.
    if (loadAttempted_.load(std::memory_order_acquire)) {
        return;
    }
    std::wstring errors;
    boost::call_once(loadOnce_, [this, &errors] {
        // A failed load is not repeated: later callers go on with the node as it stands.
        const_cast<SettingsImpl&>(*this).loadProductNode(errors);
        loadAttempted_.store(true, std::memory_order_release);
    });
    if (!errors.empty()) {
        throw exception::ErrorReadingSettingsData(
            exception::ErrorReadingSettingsData::ProductNodeLoadingFailed, errors);
    }
}

void SettingsImpl::loadProductNode(std::wstring& errors) {
    if (!isProductNode()) {
        return;
    }
    const auto root = boost::dynamic_pointer_cast<SettingsImplRoot>(getParent());
    auto accumulator =
        boost::make_shared<SettingsImpl>(name_, isKey_, boost::optional<bool>(), ValidatorVariant(),
                                         boost::shared_ptr<SettingsImpl>());
    bool firstMerged = false;
    detail::MergePolicy factoryPolicy;
    factoryPolicy.takeOver = true;
    factoryPolicy.copyOnWrite = true;
    factoryPolicy.runValidators = false;
    // Factory files first, so that they define everything; the user file then adds values,
    // and defines only what the factory does not know.
    const auto& levels = SettingsLevelManager::getSettingsLevelObjs();
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        if (!level->canHaveFile()) {
            continue;
        }
        if (level->canBeModified()) {
            loadWrittenLevelFile(*this, *level, root, accumulator, firstMerged, errors);
            continue;
        }
        for (const std::wstring& file : productSettingsFilesAtLevel(name_, *level, root)) {
            try {
                const auto tree = detail::loadSettingsFile(file);
                if (tree) {
                    accumulator = detail::mergeFileTree(accumulator, tree, level->levelName(),
                                                        firstMerged, errors, file, factoryPolicy);
                }
            } catch (...) {
                errors += file + L"\t" + detail::failureTextInFlight() + L"\n";
            }
        }
    }

    detail::UpgradeLock lock(detail::rootMutex());
    if (!accumulator->visible_) {
        // No file contributed.
        if (!visible_) {
            errors += L"There is no Settings files associated with this product node: " +
                      hf::i18n::to_ustring(name_) +
                      L". The Settings files may be deleted after TOLVAN started up. Please "
                      L"restart TOLVAN to fully solve this issue.\n";
        }
        return;
    }
    detail::UniqueFromUpgrade exclusive(lock);
    children_.swap(accumulator->children_);
    for (auto& child : children_) {
        child.second->parent_ = shared_from_this();
    }
    if (!version_) {
        version_ = accumulator->version_;
    }
    if (!visible_) {
        visible_ = accumulator->visible_;
    }
}

}  // namespace core
}  // namespace settings

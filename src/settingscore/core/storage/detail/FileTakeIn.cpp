// Taking in a product's file that another process saved. The walk compares the tree with the
// file key by key at one level; what this process changed since it last read or wrote the file
// is left alone, so its own changes win. Changes are stored under short exclusive holds from
// the caller's upgrade hold, and their events go out under the upgrade hold, as for setAny.
#include <settingscore/core/storage/detail/FileTakeIn.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/detail/MergePolicy.hpp>
#include <settingscore/core/events/detail/EventPublishing.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/storage/detail/LevelFiles.hpp>
#include <settingscore/core/storage/detail/ProductFileState.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <platform/hf/i18n/Conversion.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {
namespace detail {

namespace fs = hf::filesystem;

// A friend of SettingsImpl: the walk reads and changes values and children directly.
class FileTakeIn {
public:
    struct Walk {
        UpgradeLock& lock;
        const std::string& level;
        const std::set<std::string>& changed;
        std::wstring file;
        HeldBackMap heldBack;
        std::size_t changedValues = 0;
    };

    static void takeGroup(Walk& walk, SettingsImpl& live, const SettingsImpl* disk,
                          const std::string& path) {
        std::vector<boost::shared_ptr<SettingsImpl>> children;
        for (const auto& child : live.children_) {
            children.push_back(child.second);
        }
        for (const auto& child : children) {
            const std::string childPath = path + "." + child->name_;
            if (isChangedPath(walk.changed, childPath)) {
                continue;  // changed here since: this process's own wins
            }
            const SettingsImpl* diskChild =
                disk ? disk->lookupChild(walk.lock, child->name_) : nullptr;
            if (diskChild && diskChild->isKey_ != child->isKey_) {
                // The file's node cannot be taken beside ours: kept, and ours loses what the
                // file no longer has for it.
                walk.heldBack[childPath] = HeldBack{
                    boost::const_pointer_cast<SettingsImpl>(diskChild->shared_from_this()),
                    walk.file,
                    diskChild->isKey_ ? L"the file has a key where the product has a group"
                                      : L"the file has a group where the product has a key"};
                diskChild = nullptr;
            }
            if (child->isKey_) {
                takeKey(walk, *child, diskChild, childPath);
            } else {
                takeGroup(walk, *child, diskChild, childPath);
            }
        }
        if (!disk) {
            return;
        }
        for (const auto& entry : disk->children_) {
            const std::string childPath = path + "." + entry.first;
            if (live.lookupChild(walk.lock, entry.first) ||
                isChangedPath(walk.changed, childPath)) {
                continue;
            }
            addNode(walk, live, entry.second, childPath);
        }
    }

    static void takeKey(Walk& walk, SettingsImpl& key, const SettingsImpl* disk,
                        const std::string& path) {
        boost::any value;
        if (disk) {
            value = disk->effectiveValue(walk.lock, false);
        }
        const bool holdsOther = std::any_of(
            key.values_.begin(), key.values_.end(),
            [&](const auto& entry) { return entry.first != walk.level && !entry.second.empty(); });
        if (!value.empty() && holdsOther) {
            // The checks of a load: type, array size, range and choices, no function.
            try {
                key.validateCore(walk.lock, value);
            } catch (const std::exception&) {
                walk.heldBack[path] =
                    HeldBack{boost::const_pointer_cast<SettingsImpl>(disk->shared_from_this()),
                             walk.file, failureTextInFlight()};
                value = boost::any();
            }
        }
        const auto current = key.values_.find(walk.level);
        const boost::any here = current == key.values_.end() ? boost::any() : current->second;
        if (treestore::boostany::isEqual(here, value)) {
            return;
        }
        const boost::any before = key.effectiveValue(walk.lock, true);
        {
            UniqueFromUpgrade exclusive(walk.lock);
            if (value.empty()) {
                key.values_.erase(walk.level);
            } else {
                key.values_[walk.level] = value;
            }
        }
        ++walk.changedValues;
        if (!treestore::boostany::isEqual(before, key.effectiveValue(walk.lock, true))) {
            publishValueChange(walk.lock, key);
        }
    }

    // A node the file has and the tree lacks, made as a merge makes a new node.
    static void addNode(Walk& walk, SettingsImpl& parent,
                        const boost::shared_ptr<SettingsImpl>& disk, const std::string& path) {
        auto created =
            boost::make_shared<SettingsImpl>(disk->name_, disk->isKey_, disk->visible_,
                                             ValidatorVariant(), boost::shared_ptr<SettingsImpl>());
        MergePolicy policy;
        policy.runValidators = false;
        try {
            created->mergeNode(walk.lock, disk, walk.level, true, true, policy);
        } catch (const std::exception&) {
            walk.heldBack[path] = HeldBack{disk, walk.file, failureTextInFlight()};
            return;
        }
        {
            UniqueFromUpgrade exclusive(walk.lock);
            parent.insertChild(exclusive, created);
            created->parent_ = parent.shared_from_this();
        }
        ++walk.changedValues;
        publishNodeAdded(walk.lock, parent, *created);
    }
};

TakeInResult takeInFileChanges(UpgradeLock& lock, SettingsImpl& product, const SettingsLevel& level,
                               fs::FileSystem& files, const fs::upath& folder, bool durable) {
    requireUpgradeLock(lock);
    TakeInResult result;
    const std::shared_ptr<ProductFileState> held = product.fileState();
    ProductFileState& state = *held;
    const std::string levelName = level.levelName();
    // What is known of the file, without copying what only a read needs.
    std::string fileName;
    bool seen = false, mustKeepCopy = false;
    fs::FileInfo version;
    state.access(levelName, [&](LevelFile& known) {
        fileName = known.fileName;
        seen = known.seen;
        version = known.version;
        mustKeepCopy = known.unreadable && !known.copyKept;
    });
    if (fileName.empty()) {
        fileName = findProductFile(files, folder, product.getName())
                       .value_or(defaultFileNameOf(product.getName()));
    }
    const fs::upath file = folder / fs::upath(fileName);
    const fs::FileInfo now = files.examine(file);
    if (seen && !mustKeepCopy && isSameVersion(now, version)) {
        return result;  // nobody else wrote it since
    }
    if (now.exists() && now.type != fs::file_type::regular) {
        // A folder or a device where the file belongs holds no settings to take in or keep;
        // the save's own steps refuse to replace it, with their own reasons.
        return result;
    }
    const LevelFileRead read = readLevelFile(files, folder, fileName, durable);
    if (read.failure) {
        state.access(levelName, [&](LevelFile& level) {
            level.fileName = fileName;
            level.seen = true;
            level.version = read.version;
            level.unreadable = read.failure;
            level.copyKept = read.keptCopy.has_value();
        });
        if (!read.keptCopy) {
            result.mayReplace = false;
            result.refusal = hf::i18n::to_string(
                L"the file could not be read as settings (" + *read.failure +
                L") and no copy of it could be kept" +
                (read.keepFailure ? L" (" + *read.keepFailure + L")" : std::wstring()));
        }
        return result;
    }
    const std::set<std::string> changed =
        state.access(levelName, [](LevelFile& known) { return known.changed; });
    FileTakeIn::Walk walk{lock, levelName, changed, file.wstring(), {}, 0};
    FileTakeIn::takeGroup(walk, product, read.tree.get(), product.getFullName(lock));
    state.access(levelName, [&](LevelFile& level) {
        level.fileName = read.version.exists() ? fileName : level.fileName;
        level.seen = true;
        level.version = read.version;
        level.unreadable.reset();
        level.copyKept = false;
        for (auto entry = level.heldBack.begin(); entry != level.heldBack.end();) {
            entry = isChangedPath(level.changed, entry->first) ? std::next(entry)
                                                               : level.heldBack.erase(entry);
        }
        for (auto& held : walk.heldBack) {
            level.heldBack.insert(std::move(held));
        }
    });
    result.changedValues = walk.changedValues;
    return result;
}

}  // namespace detail
}  // namespace core
}  // namespace settings

// SettingsImpl: changing the tree's shape. Attaching a standalone node under a parent,
// detaching a child, and the levels whose files such a change has to rewrite.
//
// Locks: the checks run under the root mutex in upgrade mode, the map change under a short
// exclusive hold taken from that upgrade, the saves afterwards under the same upgrade hold.
// Nothing changes before every check has passed.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/detail/LockInstantiation.hpp>
#include <settingscore/core/events/detail/EventPublishing.hpp>
#include <settingscore/core/exception/ExportAndMergeExceptions.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>
#include <settingscore/core/storage/LevelDirectories.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/core/storage/detail/SaveSequence.hpp>

#include <platform/hf/filesystem/Operations.hpp>

#include <strings.h>

#include <type_traits>

namespace settings {
namespace core {

namespace {

std::string joinLevelNames(const std::vector<const SettingsLevel*>& levels) {
    std::string joined;
    for (const auto* level : levels) {
        if (!joined.empty()) {
            joined += ", ";
        }
        joined += level->levelName();
    }
    return joined;
}

}  // namespace

template <class Lock>
void SettingsImpl::collectValueLevels(const Lock& lock, std::set<std::string>& levels) const {
    detail::requireTreeLock(lock);
    for (const auto& value : values_) {
        if (!value.second.empty()) {
            levels.insert(value.first);
        }
    }
    for (const auto& child : children_) {
        child.second->collectValueLevels(lock, levels);
    }
}

template <class Lock>
std::vector<const SettingsLevel*> SettingsImpl::fileLevelsOf(const Lock& lock,
                                                             bool refuseReadOnly) const {
    std::set<std::string> names;
    collectValueLevels(lock, names);
    names.insert("user");

    const auto manager = SettingsLevelManager::getSettingsLevelManagerInstance();
    std::vector<const SettingsLevel*> withFile;
    for (const auto& name : names) {
        const SettingsLevel* level = manager->getSettingsLevelByName(name);
        if (level && level->canHaveFile()) {
            withFile.push_back(level);
        }
    }
    if (!refuseReadOnly) {
        return withFile;
    }
    std::vector<const SettingsLevel*> modifiable;
    for (const auto* level : withFile) {
        if (level->canBeModified()) {
            modifiable.push_back(level);
        }
    }
    if (modifiable.size() != withFile.size()) {
        throw exception::NoFileWritePermissionOnMultipleLevels(
            shared_from_this(), joinLevelNames(withFile), joinLevelNames(modifiable));
    }
    return modifiable;
}

#define SETTINGSCORE_INSTANTIATE_STRUCTURE(Lock)                                               \
    template void SettingsImpl::collectValueLevels(const Lock&, std::set<std::string>&) const; \
    template std::vector<const SettingsLevel*> SettingsImpl::fileLevelsOf(const Lock&, bool) const;
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_STRUCTURE)
#undef SETTINGSCORE_INSTANTIATE_STRUCTURE

template <class Lock>
void SettingsImpl::checkValuesAgainst(const Lock& lock, const ValidatorVariant& validator,
                                      const boost::shared_ptr<const SettingsImpl>& parent) const {
    detail::requireTreeLock(lock);
    if (isKey_) {
        for (const auto& value : values_) {
            if (!value.second.empty()) {
                detail::invokeValidator(validator, parent, name_, value.second);
            }
        }
        return;
    }
    for (const auto& child : children_) {
        if (child.second->validator_.which() == 0) {
            child.second->checkValuesAgainst(lock, validator, shared_from_this());
        }
    }
}

template void SettingsImpl::checkValuesAgainst(const detail::UpgradeLock&, const ValidatorVariant&,
                                               const boost::shared_ptr<const SettingsImpl>&) const;

void SettingsImpl::insertChild(detail::UniqueFromUpgrade& lock,
                               const boost::shared_ptr<SettingsImpl>& child) {
    detail::requireTreeLock(lock);
    if (isRootImpl()) {
        // Product names may not differ by case alone: each names a file, and file names
        // are not told apart by case everywhere.
        for (const auto& existing : children_) {
            if (::strcasecmp(existing.first.c_str(), child->name_.c_str()) == 0) {
                throw exception::ErrorAddingTopLevelNode(child->name_, existing.first);
            }
        }
    }
    if (!children_.emplace(child->name_, child).second) {
        if (isRootImpl()) {
            throw exception::ErrorAddingTopLevelNode(child->name_, child->name_);
        }
        throw exception::ErrorAddingChildNodeOrKey(shared_from_this(), child->name_);
    }
}

template <class Lock>
void SettingsImpl::attachToParent(Lock& lock, const boost::shared_ptr<SettingsImpl>& parent,
                                  bool checkValues) {
    detail::requireUpgradeLock(lock);

    // A node has one place in one tree: a node that hangs somewhere already, or a root, is not
    // standalone and cannot be given a parent.
    if (const auto current = getParentImpl(lock)) {
        throw exception::ErrorAddingChildNodeOrKey(current, name_);
    }
    if (isRootImpl()) {
        throw exception::ErrorAddingChildNodeOrKey(parent, name_);
    }
    // Hanging a node below itself would make a ring that nothing could free or walk.
    for (auto ancestor = parent; ancestor; ancestor = ancestor->getParentImpl(lock)) {
        if (ancestor.get() == this) {
            throw exception::CannotAttachNodeBelowItself(shared_from_this(), parent);
        }
    }
    if (parent->isOnTree() && parent->isReadOnly(lock)) {
        throw exception::CannotAddRemoveNodeUnderReadOnlyParent(parent, shared_from_this());
    }
    if (isKey_ && parent->isRoot()) {
        throw exception::CanNotAddKeyToRootException(shared_from_this());
    }
    if (checkValues && validator_.which() == 0) {
        // Values that met no validator so far meet the one they are about to inherit.
        for (auto node = parent; node; node = node->getParentImpl(lock)) {
            if (node->validator_.which() != 0) {
                checkValuesAgainst(lock, node->validator_, parent);
                break;
            }
        }
    }

    if constexpr (std::is_same<Lock, detail::UniqueFromUpgrade>::value) {
        parent->insertChild(lock, shared_from_this());
    } else {
        detail::UniqueFromUpgrade exclusive(lock);
        parent->insertChild(exclusive, shared_from_this());
    }
    parent_ = parent;
}

template void SettingsImpl::attachToParent(detail::UpgradeLock&,
                                           const boost::shared_ptr<SettingsImpl>&, bool);
template void SettingsImpl::attachToParent(detail::UniqueFromUpgrade&,
                                           const boost::shared_ptr<SettingsImpl>&, bool);

void SettingsImpl::setParent(const boost::shared_ptr<Settings>& parent) {
    const auto parentImpl = implOf(parent);
    if (!parentImpl) {
        return;
    }
    parentImpl->ensureLoaded();
    detail::UpgradeLock lock(detail::rootMutex());
    attachToParent(lock, parentImpl, true);
    detail::publishNodeAdded(lock, *parentImpl, *this);
    if (isOnTree()) {
        const std::vector<const SettingsLevel*> levels = fileLevelsOf(lock, false);
        for (const auto* level : levels) {
            markChanged(lock, *this, level->levelName());
        }
        for (const auto* level : levels) {
            detail::saveSettingsAtLevel(lock, level, *this);
        }
    }
}

void SettingsImpl::removeNode(const std::string& name) {
    ensureLoaded();
    boost::shared_ptr<SettingsImpl> child;
    {
        detail::SharedLock lock(detail::rootMutex());
        child = findChild(lock, name);
    }
    if (!child) {
        throw exception::NoSuchNode(shared_from_this(), name);
    }
    if (child->isKey_) {
        throw exception::NotANodeName(shared_from_this(), name);
    }
    detachChild(child);
}

void SettingsImpl::removeKey(const std::string& name) {
    ensureLoaded();
    boost::shared_ptr<SettingsImpl> child;
    {
        detail::SharedLock lock(detail::rootMutex());
        child = findChild(lock, name);
    }
    if (!child) {
        throw exception::NoSuchKey(shared_from_this(), name);
    }
    if (!child->isKey_) {
        throw exception::NotAKeyName(shared_from_this(), name);
    }
    detachChild(child);
}

void SettingsImpl::detachChild(const boost::shared_ptr<SettingsImpl>& child) {
    const bool onTree = isOnTree();
    detail::UpgradeLock lock(detail::rootMutex());
    if (onTree && isReadOnly(lock)) {
        throw exception::CannotAddRemoveNodeUnderReadOnlyParent(shared_from_this(), child);
    }
    const bool wasProduct = child->isProductNode(lock);
    std::vector<const SettingsLevel*> levels;
    if (onTree) {
        // The one check that can refuse: every level to be rewritten must be modifiable.
        levels = child->fileLevelsOf(lock, true);
    }
    const auto found = children_.find(child->name_);
    if (found == children_.end() || found->second != child) {
        // Another thread detached it first: its removal did the saving.
        return;
    }
    if (onTree && !wasProduct) {
        // Marked while the child still hangs here: its name is its path in the file.
        for (const auto* level : levels) {
            markChanged(lock, *child, level->levelName());
        }
    }
    // A removed product takes the state of its files with it.
    const auto fileState = wasProduct ? child->fileState() : nullptr;
    {
        detail::UniqueFromUpgrade exclusive(lock);
        children_.erase(found);
        child->parent_.reset();
    }
    if (wasProduct) {
        boost::static_pointer_cast<SettingsImplRoot>(shared_from_this())->dropFileStateOf(*child);
    }
    detail::publishNodeRemoved(lock, *this, *child);
    if (!onTree) {
        return;
    }
    if (wasProduct) {
        detail::deleteProductFiles(*child, *fileState,
                                   boost::static_pointer_cast<SettingsImplRoot>(shared_from_this()),
                                   levels);
        return;
    }
    for (const auto* level : levels) {
        detail::saveSettingsAtLevel(lock, level, *this);
    }
}

}  // namespace core
}  // namespace settings

// SettingsImpl: merging a standalone tree into a node. mergeNode is the merge that settings
// files and mergeWith share (definitions, children by name, a key's value at one level);
// mergeWith runs it first on a private copy, so that a failure leaves the live tree untouched,
// then repeats the outcome on the live tree without further checks.
//
// Locks: mergeNode and its parts run on standalone trees under an upgrade hold of whatever
// mutex guards them (the dry run's private mutex); field and map changes take the exclusive
// hold from it. The live merge holds the root mutex exclusively (from upgrade) throughout.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/callouts/detail/BelongingLevel.hpp>
#include <settingscore/core/detail/FileLayerHooks.hpp>
#include <settingscore/core/detail/LockInstantiation.hpp>
#include <settingscore/core/events/detail/EventPublishing.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <boost/make_shared.hpp>

#include <shared_mutex>

namespace settings {
namespace core {

namespace {

bool isNone(const RunTimeDefaultVariant& runTimeDefault) {
    return runTimeDefault.which() == 0;
}

}  // namespace

template <class Lock>
boost::shared_ptr<SettingsImpl> SettingsImpl::deepCopySubtree(const Lock& lock) const {
    detail::requireTreeLock(lock);
    auto copy = boost::make_shared<SettingsImpl>(*this);
    copy->values_ = values_;
    for (const auto& child : children_) {
        auto childCopy = child.second->deepCopySubtree(lock);
        childCopy->parent_ = copy;
        copy->children_.emplace(child.first, childCopy);
    }
    return copy;
}

template boost::shared_ptr<SettingsImpl> SettingsImpl::deepCopySubtree(
    const detail::SharedLock&) const;
template boost::shared_ptr<SettingsImpl> SettingsImpl::deepCopySubtree(
    const detail::UpgradeLock&) const;
template boost::shared_ptr<SettingsImpl> SettingsImpl::deepCopySubtree(
    const detail::UniqueFromUpgrade&) const;

template <class Lock>
void SettingsImpl::checkNodeAttributes(const Lock& lock, const SettingsImpl& other,
                                       bool compareNames, bool isFactoryLevel,
                                       bool takeDefinition) {
    detail::requireTreeLock(lock);
    std::wstring differences;
    if (isFactoryLevel || takeDefinition) {
        if (!other.visible_) {
            differences += L"visible,";
        }
        if (!visible_) {
            visible_ = other.visible_;
        }
    }
    if (isKey_ != other.isKey_) {
        differences += L"isLeaf,";
    }
    if (compareNames && name_ != other.name_) {
        differences += L"name,";
    }
    if (!differences.empty()) {
        throw exception::ErrorMergingNodesWithDiffAttr(shared_from_this(), other.shared_from_this(),
                                                       differences);
    }
}

template <class Lock>
void SettingsImpl::copyDefinitionFrom(const Lock& lock, const SettingsImpl& other) {
    detail::requireTreeLock(lock);
    std::unique_lock<std::shared_mutex> caches(detail::keyCacheMutex());
    typeConformer_ = other.typeConformer_;
    arraySizeBounds_ = other.arraySizeBounds_;
    valueWriter_ = other.valueWriter_;
    typeCode_ = other.typeCode_;
    metaData_ = other.metaData_;
    version_ = other.version_;
    readOnlyState_ = other.readOnlyState_;
}

void SettingsImpl::mergeNode(detail::UpgradeLock& lock,
                             const boost::shared_ptr<SettingsImpl>& other,
                             const std::string& levelName, bool takeDefinition, bool compareNames) {
    detail::requireUpgradeLock(lock);
    const bool isFactoryLevel = levelName == SettingsLevelManager::getLastLevelName();
    {
        detail::UniqueFromUpgrade exclusive(lock);
        checkNodeAttributes(exclusive, *other, compareNames, isFactoryLevel, takeDefinition);
        if (isFactoryLevel || takeDefinition) {
            validator_ = other->validator_;
            copyDefinitionFrom(exclusive, *other);
        }
    }
    if (isKey_) {
        mergeKey(lock, other, levelName, compareNames);
    } else {
        mergeChildren(lock, other, levelName, compareNames);
    }
}

void SettingsImpl::mergeChildren(detail::UpgradeLock& lock,
                                 const boost::shared_ptr<SettingsImpl>& other,
                                 const std::string& levelName, bool compareNames) {
    for (const auto& entry : other->children_) {
        const auto& otherChild = entry.second;
        if (const auto mine = findChild(lock, entry.first)) {
            mine->mergeNode(lock, otherChild, levelName, false, compareNames);
            continue;
        }
        // The first tree that mentions a node defines it.
        auto created = boost::make_shared<SettingsImpl>(otherChild->name_, otherChild->isKey_,
                                                        otherChild->visible_, ValidatorVariant(),
                                                        boost::shared_ptr<SettingsImpl>());
        created->mergeNode(lock, otherChild, levelName, true, compareNames);
        detail::UniqueFromUpgrade exclusive(lock);
        insertChild(exclusive, created);
        created->parent_ = shared_from_this();
    }
}

void SettingsImpl::mergeKey(detail::UpgradeLock& lock, const boost::shared_ptr<SettingsImpl>& other,
                            const std::string& levelName, bool) {
    if (!isNone(other->runTimeDefault_)) {
        if (!isNone(runTimeDefault_)) {
            throw exception::MultipleRuntimeFuncError(shared_from_this());
        }
        detail::UniqueFromUpgrade exclusive(lock);
        runTimeDefault_ = other->runTimeDefault_;
        detail::setBelongingLevel(runTimeDefault_, levelName);
    }
    boost::any value = other->effectiveValue(lock, false);
    if (value.empty()) {
        return;
    }
    const bool holdsValue = std::any_of(values_.begin(), values_.end(),
                                        [](const auto& entry) { return !entry.second.empty(); });
    if (holdsValue) {
        validateValue(lock, value, nullptr);
    }
    detail::UniqueFromUpgrade exclusive(lock);
    values_[levelName] = value;  // where a value read from a file gets its true level
}

void SettingsImpl::mergeLive(const detail::UniqueFromUpgrade& lock, const SettingsImpl& merged,
                             const SettingsImpl& other, const std::string& levelName) {
    if (isKey_) {
        const auto value = merged.values_.find(levelName);
        if (value == merged.values_.end()) {
            return;
        }
        // No run-time default runs under the exclusive hold: one that read the tree would wait
        // for this very thread.
        const boost::any before = effectiveValue(lock, false);
        values_[levelName] = value->second;
        if (!treestore::boostany::isEqual(before, effectiveValue(lock, false))) {
            detail::publishValueChange(lock, *this);
        }
        return;
    }
    for (const auto& entry : other.children_) {
        const auto mergedChild = merged.findChild(lock, entry.first);
        if (!mergedChild) {
            continue;  // the dry run made every node of `other`; nothing to take otherwise
        }
        if (const auto mine = findChild(lock, entry.first)) {
            mine->mergeLive(lock, *mergedChild, *entry.second, levelName);
            continue;
        }
        auto added = mergedChild->deepCopySubtree(lock);
        children_.emplace(added->name_, added);
        added->parent_ = shared_from_this();
        detail::publishNodeAdded(lock, *this, *added);
    }
}

void SettingsImpl::mergeWith(const boost::shared_ptr<Settings>& other, const std::string& level) {
    checkLevelKnown(level);
    checkLevelModifiable(level);
    ensureLoaded();
    const auto source = implOf(other);
    boost::shared_ptr<SettingsImpl> copy;
    {
        detail::SharedLock lock(detail::rootMutex());
        if (isRootImpl()) {
            throw exception::CannotMergeWithSettingsRoot(other);
        }
        for (auto node = shared_from_this(); node; node = node->getParentImpl(lock)) {
            if (node == source) {
                throw exception::ErrorMergingWithCircularReference(shared_from_this(), other);
            }
        }
        if (!source || source->isOnTree()) {
            throw exception::CanOnlyMergeTreeNodeWithStandaloneNode(shared_from_this(), other);
        }
        // The dry run works on a copy that has no parents to inherit a validator from: it is
        // given the one this node would apply.
        copy = deepCopySubtree(lock);
        for (auto node = shared_from_this(); node; node = node->getParentImpl(lock)) {
            if (node->validator_.which() != 0) {
                copy->validator_ = node->validator_;
                break;
            }
        }
    }
    {
        boost::shared_mutex privateMutex;
        detail::UpgradeLock lock(privateMutex);
        copy->mergeNode(lock, source, level, false, false);
    }
    {
        detail::UpgradeLock upgrade(detail::rootMutex());
        detail::UniqueFromUpgrade exclusive(upgrade);
        mergeLive(exclusive, *copy, *source, level);
    }
    const SettingsLevel* levelObject =
        SettingsLevelManager::getSettingsLevelManagerInstance()->getSettingsLevelByName(level);
    if (isOnTree() && levelObject->canHaveFile()) {
        detail::SharedLock lock(detail::rootMutex());
        levelSaver(levelObject, shared_from_this(), lock);
    }
}

}  // namespace core
}  // namespace settings

// SettingsImpl: merging a standalone tree into a node, the one algorithm behind a product's
// files, the files a file names, mergeWith and a file taken in again. mergeNode holds the
// rules (definitions, children by name, a key's value at one level); a MergePolicy says how
// the nodes are had: copied or taken over from the source, changed in place or copied first,
// with or without validation functions, failures ending the merge or held back.
//
// Locks: mergeNode and its parts run under an upgrade hold of the mutex that guards the trees
// involved (a private mutex for trees read from files, the root mutex for mergeWith, whose
// changes all go to private copies until applyMerged); field and map changes take the
// exclusive hold from it.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/callouts/detail/BelongingLevel.hpp>
#include <settingscore/core/detail/MergePolicy.hpp>
#include <settingscore/core/events/detail/EventPublishing.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/core/storage/detail/LevelFiles.hpp>
#include <settingscore/core/storage/detail/SaveSequence.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <boost/make_shared.hpp>

#include <shared_mutex>

#include <strings.h>

namespace settings {
namespace core {

namespace {

bool isNone(const RunTimeDefaultVariant& runTimeDefault) {
    return runTimeDefault.which() == 0;
}

bool isLevelName(const std::string& name) {
    for (const auto& known : SettingsLevelManager::getSettingsLevelObjs()) {
        if (known.levelName() == name) {
            return true;
        }
    }
    return false;
}

}  // namespace

template <class Lock>
void SettingsImpl::checkNodeAttributes(const Lock& lock, const SettingsImpl& other,
                                       bool compareNames, bool isFactoryLevel, bool takeDefinition,
                                       bool nameIgnoresCase) {
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
    const bool namesDiffer = nameIgnoresCase ? ::strcasecmp(name_.c_str(), other.name_.c_str()) != 0
                                             : name_ != other.name_;
    if (compareNames && namesDiffer) {
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

boost::shared_ptr<SettingsImpl> SettingsImpl::copyForMerge(detail::UpgradeLock& lock,
                                                           const SettingsImpl& original) {
    detail::requireUpgradeLock(lock);
    auto copy = boost::make_shared<SettingsImpl>(original);
    copy->values_ = original.values_;
    copy->children_ = original.children_;
    // The copy's bounds are its own: bounds naming the original would keep its memory.
    std::unique_lock<std::shared_mutex> caches(detail::keyCacheMutex());
    if (copy->arraySizeBounds_) {
        copy->arraySizeBounds_ = ArraySizeBounds(copy, copy->arraySizeBounds_->getMinArraySize(),
                                                 copy->arraySizeBounds_->getMaxArraySize());
    }
    return copy;
}

void SettingsImpl::claimSharedChildren(detail::UpgradeLock& lock,
                                       const boost::shared_ptr<SettingsImpl>& copy) {
    detail::requireUpgradeLock(lock);
    detail::UniqueFromUpgrade exclusive(lock);
    copy->claimChildren(exclusive);
}

void SettingsImpl::claimChildren(const detail::UniqueFromUpgrade& lock) {
    const boost::shared_ptr<SettingsImpl> self = shared_from_this();
    for (const auto& child : children_) {
        if (child.second->parent_.lock() == self) {
            child.second->claimChildren(lock);  // copied or made by the merge
        } else {
            child.second->parent_ = self;  // shared with the original: its own subtree is in order
        }
    }
}

// What the merge would do to a node it makes from this one, done to this node itself: its
// values and run-time default move to `level`, and a key keeps no children (a merge never
// takes keys nested in keys).
void SettingsImpl::takeOverAtLevel(const detail::UniqueFromUpgrade& lock,
                                   const std::string& level) {
    if (!isKey_) {
        for (const auto& child : children_) {
            child.second->takeOverAtLevel(lock, level);
        }
        return;
    }
    children_.clear();
    detail::setBelongingLevel(runTimeDefault_, level);
    if (values_.size() == 1) {
        // A file's key holds at most the one value it was read with: its map entry is renamed
        // to `level` in place, without building a new one.
        auto entry = values_.extract(values_.begin());
        if (!entry.mapped().empty() && isLevelName(entry.key())) {
            entry.key() = level;
            values_.insert(std::move(entry));
        }
        return;
    }
    boost::any value = effectiveValue(lock, false);
    values_.clear();
    if (!value.empty()) {
        values_[level] = std::move(value);
    }
}

void SettingsImpl::mergeNode(detail::UpgradeLock& lock,
                             const boost::shared_ptr<SettingsImpl>& other,
                             const std::string& levelName, bool takeDefinition, bool compareNames,
                             const detail::MergePolicy& policy) {
    detail::requireUpgradeLock(lock);
    const bool isFactoryLevel = levelName == SettingsLevelManager::getLastLevelName();
    {
        detail::UniqueFromUpgrade exclusive(lock);
        checkNodeAttributes(exclusive, *other, compareNames, isFactoryLevel, takeDefinition,
                            policy.topNameIgnoresCase);
        if (isFactoryLevel || takeDefinition) {
            validator_ = other->validator_;
            copyDefinitionFrom(exclusive, *other);
        }
    }
    detail::MergePolicy below = policy;
    below.topNameIgnoresCase = false;
    if (isKey_) {
        mergeKey(lock, other, levelName, below);
    } else {
        mergeChildren(lock, other, levelName, compareNames, below);
    }
}

void SettingsImpl::mergeChildren(detail::UpgradeLock& lock,
                                 const boost::shared_ptr<SettingsImpl>& other,
                                 const std::string& levelName, bool compareNames,
                                 const detail::MergePolicy& policy) {
    const boost::shared_ptr<SettingsImpl> self = shared_from_this();
    for (const auto& entry : other->children_) {
        const boost::shared_ptr<SettingsImpl> otherChild = entry.second;
        const boost::shared_ptr<SettingsImpl> mine = findChild(lock, entry.first);
        try {
            if (mine) {
                boost::shared_ptr<SettingsImpl> target = mine;
                if (policy.copyOnWrite) {
                    target = copyForMerge(lock, *mine);
                    detail::UniqueFromUpgrade exclusive(lock);
                    target->parent_ = self;
                    children_[entry.first] = target;
                }
                try {
                    target->mergeNode(lock, otherChild, levelName, false, compareNames, policy);
                } catch (...) {
                    if (target != mine) {
                        detail::UniqueFromUpgrade exclusive(lock);
                        children_[entry.first] = mine;  // the original stays as it was
                    }
                    throw;
                }
            } else if (policy.takeOver) {
                // The source is dropped after the merge: its node is taken as it is, and being
                // new here, it defines itself, as a made copy would.
                detail::UniqueFromUpgrade exclusive(lock);
                otherChild->takeOverAtLevel(exclusive, levelName);
                insertChild(exclusive, otherChild);
                otherChild->parent_ = self;
            } else {
                // The first tree that mentions a node defines it.
                auto created = boost::make_shared<SettingsImpl>(
                    otherChild->name_, otherChild->isKey_, otherChild->visible_, ValidatorVariant(),
                    boost::shared_ptr<SettingsImpl>());
                created->mergeNode(lock, otherChild, levelName, true, compareNames, policy);
                detail::UniqueFromUpgrade exclusive(lock);
                insertChild(exclusive, created);
                created->parent_ = self;
            }
        } catch (const std::exception&) {
            if (!policy.holdBack) {
                throw;
            }
            (*policy.holdBack)[getFullName(lock) + "." + entry.first] =
                detail::HeldBack{otherChild, policy.file, detail::failureTextInFlight()};
        }
    }
}

void SettingsImpl::mergeKey(detail::UpgradeLock& lock, const boost::shared_ptr<SettingsImpl>& other,
                            const std::string& levelName, const detail::MergePolicy& policy) {
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
        if (policy.runValidators) {
            validateValue(lock, value, nullptr);
        } else {
            validateCore(lock, value);
        }
    }
    detail::UniqueFromUpgrade exclusive(lock);
    values_[levelName] = value;  // where a value read from a file gets its true level
}

void SettingsImpl::applyMerged(const detail::UniqueFromUpgrade& lock, const SettingsImpl& merged,
                               const SettingsImpl& other, const std::string& levelName,
                               MergeOutcome& outcome) {
    if (isKey_) {
        runTimeDefault_ = merged.runTimeDefault_;
        const auto value = merged.values_.find(levelName);
        if (value != merged.values_.end() && !other.effectiveValue(lock, false).empty()) {
            values_[levelName] = value->second;
            outcome.mergedKeys.push_back(shared_from_this());
        }
        return;
    }
    for (const auto& entry : other.children_) {
        const auto mergedChild = merged.findChild(lock, entry.first);
        if (!mergedChild) {
            continue;  // the dry run made every node of `other`; nothing to take otherwise
        }
        if (const auto mine = findChild(lock, entry.first)) {
            if (mine != mergedChild) {
                mine->applyMerged(lock, *mergedChild, *entry.second, levelName, outcome);
            }
            continue;
        }
        // Made by the dry run from `other`, and nobody else's: it moves over as it is.
        children_.emplace(entry.first, mergedChild);
        mergedChild->parent_ = shared_from_this();
        outcome.addedNodes.push_back(mergedChild);
    }
}

void SettingsImpl::mergeWith(const boost::shared_ptr<Settings>& other, const std::string& level) {
    checkLevelKnown(level);
    checkLevelModifiable(level);
    ensureLoaded();
    const auto source = implOf(other);
    // One upgrade hold from the checks to the save: no other write slips in between the dry run
    // and the changes it decided.
    detail::UpgradeLock lock(detail::rootMutex());
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
    // The dry run works on copies of the nodes it changes, all with every check and validator;
    // a failure leaves this tree untouched. The copies have no parents to inherit a validator
    // from: the top one is given the one this node would apply.
    const auto copy = copyForMerge(lock, *this);
    for (auto node = shared_from_this(); node; node = node->getParentImpl(lock)) {
        if (node->validator_.which() != 0) {
            copy->validator_ = node->validator_;
            break;
        }
    }
    detail::MergePolicy dryRun;
    dryRun.copyOnWrite = true;
    copy->mergeNode(lock, source, level, false, false, dryRun);

    MergeOutcome outcome;
    {
        detail::UniqueFromUpgrade exclusive(lock);
        applyMerged(exclusive, *copy, *source, level, outcome);
    }
    // Listeners hear of the changes with the mutex back in upgrade mode, so they may read.
    const bool onTree = isOnTree();
    for (const auto& key : outcome.mergedKeys) {
        if (onTree) {
            markChanged(lock, *key, level);
        }
        detail::publishValueChange(lock, *key);
    }
    for (const auto& added : outcome.addedNodes) {
        if (onTree) {
            markChanged(lock, *added, level);
        }
        detail::publishNodeAdded(lock, *added->getParentImpl(lock), *added);
    }
    const SettingsLevel* levelObject =
        SettingsLevelManager::getSettingsLevelManagerInstance()->getSettingsLevelByName(level);
    if (onTree && levelObject->canHaveFile()) {
        detail::saveSettingsAtLevel(lock, levelObject, *this);
    }
}

}  // namespace core
}  // namespace settings

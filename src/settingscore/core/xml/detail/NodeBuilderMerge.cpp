// NodeBuilder: the merges of a file's tree that spare the copies of a plain merge. Both reach
// the outcome of SettingsImpl::mergeNode by running it on the top nodes only (their children
// stepped aside) and doing the rest themselves.
#include <settingscore/core/xml/detail/NodeBuilder.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/callouts/detail/BelongingLevel.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include <boost/make_shared.hpp>
#include <boost/thread/locks.hpp>

#include <shared_mutex>
#include <type_traits>

namespace settings {
namespace core {
namespace detail {

namespace {

bool isLevelName(const std::string& name) {
    for (const auto& known : SettingsLevelManager::getSettingsLevelObjs()) {
        if (known.levelName() == name) {
            return true;
        }
    }
    return false;
}

static_assert(
    std::is_same<SettingsImpl::ChildMap,
                 std::map<std::string, boost::shared_ptr<SettingsImpl>, std::less<>>>::value,
    "NodeBuilder::ChildMap must be the node's own");

}  // namespace

void NodeBuilder::mergeTopOnly(UpgradeLock& lock, SettingsImpl& into,
                               const boost::shared_ptr<SettingsImpl>& from,
                               const std::string& level, bool takeDefinition,
                               ChildMap& fromChildren) {
    {
        UniqueFromUpgrade exclusive(lock);
        fromChildren.swap(from->children_);
    }
    try {
        into.mergeNode(lock, from, level, takeDefinition, true);
    } catch (...) {
        UniqueFromUpgrade exclusive(lock);
        from->children_.swap(fromChildren);
        throw;
    }
}

// What the merge does to a node that it creates from `node`, done to `node` itself.
void NodeBuilder::takeOverAtLevel(const UniqueFromUpgrade& lock, SettingsImpl& node,
                                  const std::string& level) {
    if (!node.isKey_) {
        for (const auto& child : node.children_) {
            takeOverAtLevel(lock, *child.second, level);
        }
        return;
    }
    setBelongingLevel(node.runTimeDefault_, level);
    if (node.values_.size() == 1) {
        // A file's key holds at most the one value it was read with: its map entry is renamed
        // to `level` in place, without building a new one.
        auto entry = node.values_.extract(node.values_.begin());
        if (!entry.mapped().empty() && isLevelName(entry.key())) {
            entry.key() = level;
            node.values_.insert(std::move(entry));
        }
        return;
    }
    boost::any value = node.effectiveValue(lock, false);
    node.values_.clear();
    if (!value.empty()) {
        node.values_[level] = std::move(value);
    }
}

bool NodeBuilder::mergeIntoEmptyGroup(UpgradeLock& lock, SettingsImpl& into,
                                      const boost::shared_ptr<SettingsImpl>& from,
                                      const std::string& level, bool takeDefinition) {
    requireUpgradeLock(lock);
    if (into.isKey_ || from->isKey_ || !into.children_.empty()) {
        return false;
    }
    ChildMap children;
    mergeTopOnly(lock, into, from, level, takeDefinition, children);
    UniqueFromUpgrade exclusive(lock);
    const boost::shared_ptr<SettingsImpl> parent = into.shared_from_this();
    for (const auto& child : children) {
        takeOverAtLevel(exclusive, *child.second, level);
        child.second->parent_ = parent;
    }
    into.children_.swap(children);
    return true;
}

boost::shared_ptr<SettingsImpl> NodeBuilder::copyForMerge(UpgradeLock& lock,
                                                          const SettingsImpl& original) {
    requireUpgradeLock(lock);
    auto copy = boost::make_shared<SettingsImpl>(original);
    copy->values_ = original.values_;
    copy->children_ = original.children_;
    // The copy's bounds are its own: bounds naming the original would keep its memory.
    std::unique_lock<std::shared_mutex> caches(keyCacheMutex());
    if (copy->arraySizeBounds_) {
        copy->arraySizeBounds_ = ArraySizeBounds(copy, copy->arraySizeBounds_->getMinArraySize(),
                                                 copy->arraySizeBounds_->getMaxArraySize());
    }
    return copy;
}

void NodeBuilder::mergeCopyingPath(UpgradeLock& lock, const boost::shared_ptr<SettingsImpl>& copy,
                                   const boost::shared_ptr<SettingsImpl>& from,
                                   const std::string& level, bool takeDefinition) {
    requireUpgradeLock(lock);
    if (copy->isKey_ || from->isKey_) {
        // A key has no children to spare, and a key against a group fails the same way here.
        copy->mergeNode(lock, from, level, takeDefinition, true);
        return;
    }
    ChildMap fromChildren;
    mergeTopOnly(lock, *copy, from, level, takeDefinition, fromChildren);
    {
        UniqueFromUpgrade exclusive(lock);
        from->children_.swap(fromChildren);
    }
    // As mergeChildren does it, in the same order, but a child that both have is copied before
    // it is merged into, and the copy takes its place below `copy`.
    for (const auto& entry : from->children_) {
        const auto& fromChild = entry.second;
        const auto mine = copy->children_.find(entry.first);
        if (mine != copy->children_.end()) {
            const auto childCopy = copyForMerge(lock, *mine->second);
            {
                UniqueFromUpgrade exclusive(lock);
                childCopy->parent_ = copy;
                mine->second = childCopy;
            }
            mergeCopyingPath(lock, childCopy, fromChild, level, false);
            continue;
        }
        auto created = boost::make_shared<SettingsImpl>(fromChild->name_, fromChild->isKey_,
                                                        fromChild->visible_, ValidatorVariant(),
                                                        boost::shared_ptr<SettingsImpl>());
        created->mergeNode(lock, fromChild, level, true, true);
        UniqueFromUpgrade exclusive(lock);
        copy->insertChild(exclusive, created);
        created->parent_ = copy;
    }
}

void NodeBuilder::claimSharedChildren(UpgradeLock& lock,
                                      const boost::shared_ptr<SettingsImpl>& copy) {
    requireUpgradeLock(lock);
    UniqueFromUpgrade exclusive(lock);
    claimSharedChildren(exclusive, copy);
}

void NodeBuilder::claimSharedChildren(const UniqueFromUpgrade& lock,
                                      const boost::shared_ptr<SettingsImpl>& node) {
    for (const auto& child : node->children_) {
        if (child.second->parent_.lock() == node) {
            claimSharedChildren(lock, child.second);  // copied or created by the merge
        } else {
            child.second->parent_ = node;  // shared: its own subtree is in order
        }
    }
}

}  // namespace detail
}  // namespace core
}  // namespace settings

#include <settingscore/core/xml/detail/NodeBuilder.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/detail/TreeLock.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <boost/thread/locks.hpp>

#include <shared_mutex>

namespace settings {
namespace core {
namespace detail {

namespace {

using CacheWrite = std::unique_lock<std::shared_mutex>;
using CacheRead = std::shared_lock<std::shared_mutex>;

// Runs `change` with the root mutex held exclusively, taken the way the tree takes it: upgrade
// first, then exclusive from upgrade.
template <class Change>
void underExclusiveRootHold(Change&& change) {
    UpgradeLock lock(rootMutex());
    UniqueFromUpgrade exclusive(lock);
    change();
}

}  // namespace

boost::optional<int> NodeBuilder::getTypeCode(const SettingsImpl& node) {
    CacheRead lock(keyCacheMutex());
    return node.typeCode_;
}

boost::optional<ArraySizeBounds> NodeBuilder::getArraySizeBounds(const SettingsImpl& node) {
    CacheRead lock(keyCacheMutex());
    return node.arraySizeBounds_;
}

TypeConformer NodeBuilder::getTypeConformer(const SettingsImpl& node) {
    CacheRead lock(keyCacheMutex());
    return node.typeConformer_;
}

ValueWriter NodeBuilder::getValueWriter(const SettingsImpl& node) {
    CacheRead lock(keyCacheMutex());
    return node.valueWriter_;
}

void NodeBuilder::declareType(UniqueFromUpgrade* build, SettingsImpl& node, int typeCode,
                              const ArraySizeBounds& bounds, TypeConformer conformer) {
    const auto declare = [&] {
        node.typeCode_ = typeCode;
        node.arraySizeBounds_ = bounds;
        node.typeConformer_ = conformer;
    };
    if (build) {
        declare();
        return;
    }
    CacheWrite lock(keyCacheMutex());
    declare();
}

bool NodeBuilder::settleKey(UniqueFromUpgrade* build, SettingsImpl& node, bool anyType,
                            ValueWriter writer, boost::any& value, const std::string& level) {
    boost::any replaced;  // what the level held before, if anything: dies after the locks
    const auto settle = [&] {
        if (!node.typeCode_ && !anyType) {
            return false;
        }
        if (anyType) {
            node.typeCode_ = treestore::boostany::VoidTypeCode;
        }
        node.valueWriter_ = writer;
        if (node.runTimeDefault_.which() == 0) {
            node.values_[level].swap(value);
            replaced.swap(value);
        }
        return true;
    };
    if (build) {
        return settle();
    }
    // The root mutex before the cache mutex, the order every holder of both keeps.
    UpgradeLock lock(rootMutex());
    UniqueFromUpgrade exclusive(lock);
    CacheWrite caches(keyCacheMutex());
    return settle();
}

void NodeBuilder::attach(UniqueFromUpgrade* build, SettingsImpl& child,
                         const boost::shared_ptr<SettingsImpl>& parent) {
    if (!build) {
        child.setParent(parent);
        return;
    }
    // No validation function runs while a file is read: the values passed them when they were
    // written, and a library that is missing now must not cost them.
    child.attachToParent(*build, parent, false);
}

void NodeBuilder::setMetaData(UniqueFromUpgrade* build, SettingsImpl& node,
                              const SettingsKeyMetaData<boost::any>& metaData) {
    if (build) {
        node.metaData_ = metaData;
        return;
    }
    underExclusiveRootHold([&] { node.metaData_ = metaData; });
}

void NodeBuilder::setValidator(UniqueFromUpgrade* build, SettingsImpl& node,
                               const ValidatorVariant& validator) {
    if (build) {
        node.validator_ = validator;
        return;
    }
    node.setValidator(validator);
}

SettingsKeyMetaData<boost::any> NodeBuilder::getMetaData(const SettingsImpl& node) {
    SharedLock lock(rootMutex());
    return node.metaData_;
}

void NodeBuilder::setRunTimeDefault(UniqueFromUpgrade* build, SettingsImpl& node,
                                    const RunTimeDefaultVariant& runTimeDefault) {
    if (build) {
        node.runTimeDefault_ = runTimeDefault;
        return;
    }
    RunTimeDefaultVariant replaced = runTimeDefault;
    underExclusiveRootHold([&] { node.runTimeDefault_.swap(replaced); });
    // `replaced` now holds the old default and dies here, after the lock is gone.
}

RunTimeDefaultVariant NodeBuilder::getRunTimeDefault(const SettingsImpl& node) {
    SharedLock lock(rootMutex());
    return node.runTimeDefault_;
}

boost::optional<boost::any> NodeBuilder::getStoredValue(const SettingsImpl& node,
                                                        const std::string& level) {
    SharedLock lock(rootMutex());
    const auto found = node.values_.find(level);
    if (found == node.values_.end()) {
        return boost::none;
    }
    return found->second;
}

}  // namespace detail
}  // namespace core
}  // namespace settings

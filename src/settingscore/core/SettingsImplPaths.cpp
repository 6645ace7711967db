// SettingsImpl: finding nodes (by name, by dotted path, up to the product and the root) and the
// inherited answers that depend on a node's place in the tree (read-only state, full name,
// instance, product version).
//
// Locks: public operations take the root mutex shared after ensureLoaded; the internal forms
// run under the caller's lock and never lock again.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/detail/LockInstantiation.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>

#include <boost/container/small_vector.hpp>

#include <shared_mutex>

namespace settings {
namespace core {

using tvutil::contextmgr::InstanceID;
using tvutil::contextmgr::UndefinedInstanceID;

// --- Internal forms ---

template <class Lock>
boost::shared_ptr<SettingsImpl> SettingsImpl::findChild(const Lock& lock,
                                                        const std::string& name) const {
    detail::requireTreeLock(lock);
    const auto found = children_.find(name);
    return found == children_.end() ? boost::shared_ptr<SettingsImpl>() : found->second;
}

template <class Lock>
SettingsImpl* SettingsImpl::lookupChild(const Lock& lock, std::string_view name) const {
    detail::requireTreeLock(lock);
    const auto found = children_.find(name);
    return found == children_.end() ? nullptr : found->second.get();
}

template <class Lock>
boost::shared_ptr<SettingsImpl> SettingsImpl::getParentImpl(const Lock& lock) const {
    detail::requireTreeLock(lock);
    return parent_.lock();
}

template <class Lock>
bool SettingsImpl::isProductNode(const Lock& lock) const {
    const auto parent = getParentImpl(lock);
    return parent && parent->isRootImpl();
}

template <class Lock>
bool SettingsImpl::isStandalone(const Lock& lock) const {
    return !getParentImpl(lock) && !isRootImpl();
}

template <class Lock>
boost::shared_ptr<SettingsImpl> SettingsImpl::productNodeOf(const Lock& lock) const {
    auto node = boost::const_pointer_cast<SettingsImpl>(shared_from_this());
    while (!node->isProductNode(lock)) {
        auto parent = node->getParentImpl(lock);
        if (!parent) {
            break;
        }
        node = parent;
    }
    return node;
}

template <class Lock>
bool SettingsImpl::isReadOnly(const Lock& lock) const {
    detail::requireTreeLock(lock);
    if (readOnlyState_ != InheritReadOnly) {
        return readOnlyState_ == ReadOnly;
    }
    if (isKey_) {
        return false;  // a key does not inherit
    }
    for (auto ancestor = getParentImpl(lock); ancestor; ancestor = ancestor->getParentImpl(lock)) {
        if (ancestor->isRootImpl()) {
            return false;
        }
        if (ancestor->readOnlyState_ != InheritReadOnly) {
            return ancestor->readOnlyState_ == ReadOnly;
        }
    }
    return false;
}

template <class Lock>
std::string SettingsImpl::getFullName(const Lock& lock) const {
    const auto parent = getParentImpl(lock);
    if (!parent) {
        return isRootImpl() ? std::string() : name_;
    }
    std::string full = parent->getFullName(lock);
    if (!full.empty()) {
        full += '.';
    }
    return full + name_;
}

template <class Lock>
InstanceID SettingsImpl::getInstanceId(const Lock& lock) const {
    const SettingsImpl* top = this;
    for (auto parent = getParentImpl(lock); parent; parent = parent->getParentImpl(lock)) {
        top = parent.get();
    }
    return top->isRootImpl() ? static_cast<const SettingsImplRoot*>(top)->getInstanceId()
                             : UndefinedInstanceID;
}

#define SETTINGSCORE_INSTANTIATE_PATHS(Lock)                                                    \
    template boost::shared_ptr<SettingsImpl> SettingsImpl::findChild(const Lock&,               \
                                                                     const std::string&) const; \
    template SettingsImpl* SettingsImpl::lookupChild(const Lock&, std::string_view) const;      \
    template boost::shared_ptr<SettingsImpl> SettingsImpl::getParentImpl(const Lock&) const;    \
    template bool SettingsImpl::isProductNode(const Lock&) const;                               \
    template bool SettingsImpl::isStandalone(const Lock&) const;                                \
    template boost::shared_ptr<SettingsImpl> SettingsImpl::productNodeOf(const Lock&) const;    \
    template bool SettingsImpl::isReadOnly(const Lock&) const;                                  \
    template std::string SettingsImpl::getFullName(const Lock&) const;                          \
    template InstanceID SettingsImpl::getInstanceId(const Lock&) const;
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_PATHS)
#undef SETTINGSCORE_INSTANTIATE_PATHS

// --- Public operations ---

boost::shared_ptr<Settings> SettingsImpl::getChild(const std::string& name) {
    ensureLoaded();
    detail::SharedLock lock(detail::rootMutex());
    return findChild(lock, name);
}

boost::shared_ptr<const Settings> SettingsImpl::getChild(const std::string& name) const {
    return const_cast<SettingsImpl*>(this)->getChild(name);
}

std::vector<boost::shared_ptr<Settings>> SettingsImpl::getChildren() {
    ensureLoaded();
    detail::SharedLock lock(detail::rootMutex());
    std::vector<boost::shared_ptr<Settings>> children;
    children.reserve(children_.size());
    for (const auto& entry : children_) {
        children.push_back(entry.second);
    }
    return children;
}

std::vector<boost::shared_ptr<const Settings>> SettingsImpl::getChildren() const {
    const auto children = const_cast<SettingsImpl*>(this)->getChildren();
    return std::vector<boost::shared_ptr<const Settings>>(children.begin(), children.end());
}

boost::shared_ptr<Settings> SettingsImpl::getParent() {
    detail::SharedLock lock(detail::rootMutex());
    return getParentImpl(lock);
}

boost::shared_ptr<const Settings> SettingsImpl::getParent() const {
    return const_cast<SettingsImpl*>(this)->getParent();
}

bool SettingsImpl::isOnTree() const {
    // No lock: the weak pointer's atomic count makes the read safe, and this is asked from
    // under every kind of hold of the root mutex.
    const auto parent = parent_.lock();
    return parent && parent->isOnTree();
}

bool SettingsImpl::isProductNode() const {
    detail::SharedLock lock(detail::rootMutex());
    return isProductNode(lock);
}

bool SettingsImpl::isReadOnly() const {
    ensureLoaded();  // an untouched product answers from its files
    detail::SharedLock lock(detail::rootMutex());
    return isReadOnly(lock);
}

std::string SettingsImpl::getFullName() const {
    detail::SharedLock lock(detail::rootMutex());
    return getFullName(lock);
}

InstanceID SettingsImpl::getInstanceId() const {
    detail::SharedLock lock(detail::rootMutex());
    return getInstanceId(lock);
}

boost::optional<unsigned> SettingsImpl::getProductVersion() const {
    boost::shared_ptr<SettingsImpl> product;
    {
        detail::SharedLock lock(detail::rootMutex());
        product = productNodeOf(lock);
    }
    product->ensureLoaded();  // an untouched product answers from its files
    detail::SharedLock lock(detail::rootMutex());
    return product->version_;
}

boost::optional<int> SettingsImpl::getKeyType(const std::string& name) const {
    ensureLoaded();
    detail::SharedLock lock(detail::rootMutex());
    const auto child = findChild(lock, name);
    if (!child) {
        throw exception::NoSuchKey(shared_from_this(), name);
    }
    if (!child->isKey_) {
        throw exception::NotAKeyName(shared_from_this(), name);
    }
    std::shared_lock<std::shared_mutex> caches(detail::keyCacheMutex());
    return child->typeCode_;
}

namespace {

template <class Lock>
const SettingsImpl& keyOf(const Lock& lock, const SettingsImpl& group, const std::string& name) {
    const SettingsImpl* key = group.lookupChild(lock, name);
    if (!key) {
        throw exception::NoSuchKey(group.getSharedThis(), name);
    }
    if (!key->isKey()) {
        throw exception::NotAKeyName(group.getSharedThis(), name);
    }
    return *key;
}

}  // namespace

boost::optional<ArraySizeBounds> SettingsImpl::getArraySizeBounds(const std::string& name) const {
    ensureLoaded();
    detail::SharedLock lock(detail::rootMutex());
    const SettingsImpl& key = keyOf(lock, *this, name);
    std::shared_lock<std::shared_mutex> caches(detail::keyCacheMutex());
    return key.arraySizeBounds_;
}

RunTimeDefaultVariant SettingsImpl::getRunTimeDefault(const std::string& name) const {
    ensureLoaded();
    detail::SharedLock lock(detail::rootMutex());
    return keyOf(lock, *this, name).runTimeDefault_;
}

boost::shared_ptr<Settings> SettingsImpl::getNodeByPath(const std::string& path) {
    // Parts are the runs between dots: runs of dots and dots at either end give no empty
    // parts, and an empty path gives none at all. The parts point into `path`; nothing is
    // copied on the way down.
    boost::container::small_vector<std::string_view, 8> parts;
    const std::string_view text(path);
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('.', start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        if (end > start) {
            parts.push_back(text.substr(start, end - start));
        }
        start = end + 1;
    }
    return walkPath(parts);
}

boost::shared_ptr<Settings> SettingsImpl::getNodeByPath(const std::vector<std::string>& parts) {
    return walkPath(parts);
}

template <class Parts>
boost::shared_ptr<Settings> SettingsImpl::walkPath(const Parts& parts) {
    if (parts.empty()) {
        return {};
    }
    if (isRootImpl()) {
        ensureLoaded();
    }
    detail::SharedLock lock(detail::rootMutex());
    // The product concerned is loaded before the walk, so that the walk sees its content.
    boost::shared_ptr<const SettingsImpl> unloaded;
    if (isRootImpl()) {
        const SettingsImpl* product = lookupChild(lock, parts.front());
        if (!product) {
            return {};
        }
        if (!product->isLoadAttempted()) {
            unloaded = product->shared_from_this();
        }
    } else {
        const auto product = productNodeOf(lock);
        if (!product->isLoadAttempted()) {
            unloaded = product;
        }
    }
    if (unloaded) {
        // The load takes the root mutex itself: let go for it, then walk afresh.
        lock.unlock();
        unloaded->ensureLoaded();
        lock.lock();
    }
    const SettingsImpl* node = this;
    for (const auto& part : parts) {
        if (part.empty()) {
            return {};
        }
        node = node->lookupChild(lock, part);
        if (!node) {
            return {};
        }
    }
    return boost::const_pointer_cast<SettingsImpl>(node->shared_from_this());
}

}  // namespace core
}  // namespace settings

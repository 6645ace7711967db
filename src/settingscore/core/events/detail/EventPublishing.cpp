// Locks: the caller holds the root mutex in whatever mode its change left it in (upgrade after
// setValues, setParent and the removals, exclusive during a merge's live walk). Publishing runs
// the listeners under that hold; the root's publishEvent takes only its queue's leaf mutex.
#include <settingscore/core/events/detail/EventPublishing.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/detail/LockInstantiation.hpp>
#include <settingscore/core/events/SettingsAddNodeEvent.hpp>
#include <settingscore/core/events/SettingsRemoveNodeEvent.hpp>
#include <settingscore/core/events/SettingsValueChangeEvent.hpp>
#include <settingscore/core/events/detail/EventTags.hpp>

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

namespace settings {
namespace core {
namespace detail {

namespace {

// The root at the top of `node`'s chain of parents; null when the chain ends elsewhere.
template <class Lock>
boost::shared_ptr<SettingsImplRoot> rootAbove(const Lock& lock, const SettingsImpl& node) {
    auto top = boost::const_pointer_cast<SettingsImpl>(node.shared_from_this());
    for (auto parent = top->getParentImpl(lock); parent; parent = parent->getParentImpl(lock)) {
        top = parent;
    }
    if (!top->isRootImpl()) {
        return {};
    }
    return boost::static_pointer_cast<SettingsImplRoot>(top);
}

// The add and remove events differ only in class: both are addressed through the parent.
template <class Event, class Lock>
void publishStructureChange(const Lock& lock, const SettingsImpl& parent,
                            const SettingsImpl& child) {
    requireTreeLock(lock);
    if (!parent.isOnTree()) {
        return;
    }
    const auto root = rootAbove(lock, parent);
    if (!root) {
        return;
    }
    root->publishEvent(boost::make_shared<const Event>(
        parent.shared_from_this(), child.shared_from_this(),
        collectEventTags(lock, parent, Event::typeName()), root->getInstanceId()));
}

}  // namespace

template <class Lock>
void publishValueChange(const Lock& lock, const SettingsImpl& key) {
    requireTreeLock(lock);
    if (!key.isOnTree()) {
        return;
    }
    // isOnTree looks without the lock; the walk under it is what decides. The two agree
    // unless a caller broke the rule that the tree changes only under the held mutex.
    const auto root = rootAbove(lock, key);
    if (!root) {
        return;
    }
    root->publishEvent(boost::make_shared<const SettingsValueChangeEvent>(
        key.shared_from_this(), collectEventTags(lock, key, SettingsValueChangeEvent::typeName()),
        root->getInstanceId()));
}

template <class Lock>
void publishNodeAdded(const Lock& lock, const SettingsImpl& parent, const SettingsImpl& child) {
    publishStructureChange<SettingsAddNodeEvent>(lock, parent, child);
}

template <class Lock>
void publishNodeRemoved(const Lock& lock, const SettingsImpl& parent, const SettingsImpl& child) {
    publishStructureChange<SettingsRemoveNodeEvent>(lock, parent, child);
}

#define SETTINGSCORE_INSTANTIATE_EVENT_MAKERS(Lock)                                        \
    template void publishValueChange(const Lock&, const SettingsImpl&);                    \
    template void publishNodeAdded(const Lock&, const SettingsImpl&, const SettingsImpl&); \
    template void publishNodeRemoved(const Lock&, const SettingsImpl&, const SettingsImpl&);
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_EVENT_MAKERS)
#undef SETTINGSCORE_INSTANTIATE_EVENT_MAKERS

}  // namespace detail
}  // namespace core
}  // namespace settings

#include <settingscore/core/events/detail/EventTags.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/detail/LockInstantiation.hpp>

namespace settings {
namespace core {
namespace detail {

std::wstring eventTag(const std::wstring& typeName,
                      const hostsvc::msg_svc::exchange::IDType& nodeId) {
    // The id's text is plain ASCII digits: widened as it is appended.
    std::wstring tag;
    tag.reserve(typeName.size() + 32);
    tag += typeName;
    nodeId.appendTo(tag);
    return tag;
}

template <class Lock>
std::vector<std::wstring> collectEventTags(const Lock& lock, const SettingsImpl& start,
                                           const std::wstring& typeName) {
    requireTreeLock(lock);
    std::vector<std::wstring> tags;
    tags.push_back(eventTag(typeName, start.getNodeId()));
    for (auto ancestor = start.getParentImpl(lock); ancestor;
         ancestor = ancestor->getParentImpl(lock)) {
        tags.push_back(eventTag(typeName, ancestor->getNodeId()));
    }
    return tags;
}

#define SETTINGSCORE_INSTANTIATE_EVENT_TAGS(Lock)                                         \
    template std::vector<std::wstring> collectEventTags(const Lock&, const SettingsImpl&, \
                                                        const std::wstring&);
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_EVENT_TAGS)
#undef SETTINGSCORE_INSTANTIATE_EVENT_TAGS

}  // namespace detail
}  // namespace core
}  // namespace settings

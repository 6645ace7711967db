// The tags that address a settings event: one per node from the node concerned up to the root,
// each the event's type name immediately followed by the node's id.
#pragma once

#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

// `typeName` followed by the text of `nodeId`, with no separator. A listener on a node
// subscribes with exactly this tag, so that it and the event's tag match by plain equality.
std::wstring eventTag(const std::wstring& typeName,
                      const hostsvc::msg_svc::exchange::IDType& nodeId);

// The tag of `start`, then of its parent, and so on up to the top of its tree (the root when it
// is on one): nearest first, one tag per step of the ancestry.
// REQUIRES: the root mutex, held by `lock`.
template <class Lock>
std::vector<std::wstring> collectEventTags(const Lock& lock, const SettingsImpl& start,
                                           const std::wstring& typeName);

}  // namespace detail
}  // namespace core
}  // namespace settings

// Event classes for the event manager tests, shaped like a tree's change events: a node event
// with a value-change event below it, addressed by per-node tags.
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/DerivedTypeInformation.hpp>
#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include <boost/make_shared.hpp>

#include <string>
#include <vector>

namespace eventtest {

namespace em = hostsvc::msg_svc::eventmgr;

class NodeEvent : public em::BaseEvent {
public:
    using base_type = em::BaseEvent;
    static const std::wstring& typeName() {
        static const std::wstring name = L"test::NodeEvent";
        return name;
    }
    explicit NodeEvent(const std::vector<std::wstring>& tags)
        : NodeEvent(boost::make_shared<em::detail::DerivedTypeInformation<NodeEvent>>(tags)) {}

protected:
    explicit NodeEvent(const boost::shared_ptr<em::TypeInformation>& type) : BaseEvent(type) {}
};

class ValueEvent : public NodeEvent {
public:
    using base_type = NodeEvent;
    static const std::wstring& typeName() {
        static const std::wstring name = L"test::ValueEvent";
        return name;
    }
    explicit ValueEvent(const std::vector<std::wstring>& tags)
        : NodeEvent(boost::make_shared<em::detail::DerivedTypeInformation<ValueEvent>>(tags)) {}
};

// A node of a pretend tree. The tag of an event kind for a node is the kind's type name followed
// by the node's id; an event carries the tags of its node and of every ancestor, nearest first.
struct Node {
    explicit Node(const Node* parentNode = nullptr) : parent(parentNode) {}

    template <class E>
    std::wstring tag() const {
        std::wstring text = E::typeName();
        id.appendTo(text);
        return text;
    }
    template <class E>
    std::vector<std::wstring> ancestryTags() const {
        std::vector<std::wstring> tags;
        for (const Node* node = this; node != nullptr; node = node->parent) {
            tags.push_back(node->tag<E>());
        }
        return tags;
    }

    const Node* parent;
    hostsvc::msg_svc::exchange::IDType id;
};

}  // namespace eventtest

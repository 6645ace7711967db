// Event classes for the event manager tests, shaped like a tree's change events: a node event
// with a value-change and a removal event below it, addressed by per-node tags.
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/DerivedTypeInformation.hpp>
#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include <boost/make_shared.hpp>

#include <string>
#include <vector>

namespace eventtest {

namespace em = hostsvc::msg_svc::eventmgr;

// An event class Self directly below Base, named `name`, carrying a number.
template <class Self, class Base, const wchar_t* name>
class TestEvent : public Base {
public:
    using base_type = Base;
    static const std::wstring& typeName() {
        static const std::wstring text = name;
        return text;
    }
    explicit TestEvent(const std::vector<std::wstring>& tags, int payload = 0)
        : Base(boost::make_shared<em::detail::DerivedTypeInformation<Self>>(tags)),
          payload_(payload) {}
    em::BaseEvent* clone() const override { return new Self(static_cast<const Self&>(*this)); }
    int payload() const { return payload_; }

protected:
    // For the class below: its own type information.
    explicit TestEvent(const boost::shared_ptr<em::TypeInformation>& type) : Base(type) {}

private:
    int payload_ = 0;
};

inline constexpr wchar_t nodeEventName[] = L"test::NodeEvent";
inline constexpr wchar_t valueEventName[] = L"test::ValueEvent";
inline constexpr wchar_t removeEventName[] = L"test::RemoveEvent";

struct NodeEvent : TestEvent<NodeEvent, em::BaseEvent, nodeEventName> {
    using TestEvent::TestEvent;
};
struct ValueEvent : TestEvent<ValueEvent, NodeEvent, valueEventName> {
    using TestEvent::TestEvent;
};
struct RemoveEvent : TestEvent<RemoveEvent, NodeEvent, removeEventName> {
    using TestEvent::TestEvent;
};

// A node of a pretend tree. The tag of an event kind for a node is the kind's type name followed
// by the node's id; an event carries the tags of its node and of every ancestor, nearest first.
struct Node {
    explicit Node(const Node* parentNode = nullptr) : parent(parentNode) {}

    template <class E>
    std::wstring tag() const {
        const std::string text = id.toString();
        return E::typeName() + std::wstring(text.begin(), text.end());
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

// The event classes: copies by clone, the chain of type names, and the tags by which an event
// finds the listeners of its node and of every ancestor.
#include "EventsFixture.hpp"

#include <memory>
#include <sstream>
#include <typeinfo>
#include <utility>

namespace eventstest {
namespace {

using hostsvc::msg_svc::eventmgr::BaseEvent;

// `event` cloned through its base: same class, node, instance and tags, and a copy of its own.
template <class Event>
std::unique_ptr<BaseEvent> checkClone(const SettingsEvent& event) {
    std::unique_ptr<BaseEvent> copy(event.clone());
    EXPECT_EQ(typeid(Event), typeid(*copy));
    const auto& settingsCopy = dynamic_cast<const SettingsEvent&>(*copy);
    EXPECT_NE(&event, &settingsCopy);
    EXPECT_EQ(event.getObj(), settingsCopy.getObj());
    EXPECT_EQ(event.getInstanceId(), settingsCopy.getInstanceId());
    EXPECT_EQ(event.getTypeInformation()->getTags(), copy->getTypeInformation()->getTags());
    EXPECT_TRUE(*copy == event);
    return copy;
}

TEST_F(EventsTest, CloneKeepsClassNodeInstanceAndTags) {
    const std::vector<std::wstring> tags{L"first", L"second"};
    const tvutil::contextmgr::InstanceID instance(3);
    const SettingsValueChangeEvent change(key_, tags, instance);
    checkClone<SettingsValueChangeEvent>(change);
    checkClone<SettingsEvent>(SettingsEvent(key_, tags, instance));
    const SettingsRemoveNodeEvent removal(b_, key_, tags, instance);
    const auto removed = checkClone<SettingsRemoveNodeEvent>(removal);
    EXPECT_EQ(b_, dynamic_cast<const SettingsRemoveNodeEvent&>(*removed).getParentObj());
    const SettingsAddNodeEvent addition(a_, b_, tags, instance);
    const auto added = checkClone<SettingsAddNodeEvent>(addition);
    EXPECT_EQ(a_, dynamic_cast<const SettingsAddNodeEvent&>(*added).getParentObj());
    EXPECT_EQ(b_, addition.getObj());

    // Same tags but another class, or same class but other tags: not equal.
    EXPECT_FALSE(addition == removal);
    EXPECT_FALSE(change == SettingsEvent(key_, tags, instance));
    EXPECT_FALSE(change == SettingsValueChangeEvent(key_, {L"first"}, instance));
}

// The chain's end and isKindOf itself are the event manager's; here each class's place in it.
TEST_F(EventsTest, TypeChainsRunThroughSettingsEventToBaseEvent) {
    const std::wstring settingsEvent = L"settings::core::SettingsEvent";
    const SettingsRemoveNodeEvent removal(b_, key_, {}, BlessedInstanceID);
    const SettingsAddNodeEvent addition(b_, key_, {}, BlessedInstanceID);
    const SettingsValueChangeEvent change(key_, {}, BlessedInstanceID);
    const std::pair<const SettingsEvent*, const wchar_t*> cases[] = {
        {&removal, L"settings::core::SettingsRemoveNodeEvent"},
        {&addition, L"settings::core::SettingsAddNodeEvent"},
        {&change, L"settings::core::SettingsValueChangeEvent"},
    };
    for (const auto& [event, name] : cases) {
        const auto& chain = *event->getTypeInformation();
        EXPECT_EQ(name, chain.getTypeName(0));
        EXPECT_EQ(settingsEvent, chain.getTypeName(1));
        EXPECT_EQ(L"hostsvc::msg_svc::eventmgr::BaseEvent", chain.getTypeName(2));
        EXPECT_TRUE(event->isKindOf(settingsEvent));
    }
    EXPECT_FALSE(removal.isKindOf(L"settings::core::SettingsValueChangeEvent"));
    // The inherited writer names the event's own class.
    std::wostringstream text;
    removal.fillStream(text);
    EXPECT_EQ(L"settings::core::SettingsRemoveNodeEvent", text.str());
}

// The tag of `node` for events named `typeName`, spelled out from its parts.
std::wstring tagOf(const std::wstring& typeName, const SettingsPtr& node) {
    const std::string id = node->getNodeId().toString();
    return typeName + std::wstring(id.begin(), id.end());
}

TEST_F(EventsTest, TagsNameTheStartNodeAndEachAncestorNearestFirst) {
    const std::wstring change = SettingsValueChangeEvent::typeName();
    const auto top = node("top", false);
    const auto below = attach(top, "below", true);
    {
        detail::SharedLock lock(detail::rootMutex());
        EXPECT_EQ(
            (std::vector<std::wstring>{tagOf(change, key_), tagOf(change, b_), tagOf(change, a_),
                                       tagOf(change, product_), tagOf(change, r_)}),
            detail::collectEventTags(lock, impl(key_), change));
        // A standalone tree ends at its own top.
        EXPECT_EQ((std::vector<std::wstring>{tagOf(L"t", below), tagOf(L"t", top)}),
                  detail::collectEventTags(lock, impl(below), L"t"));
    }
    // A value change is addressed from the key, a removal from the parent.
    r_->setRecordEvents(true);
    announceChange(key_);
    a_->removeNode("b");
    auto queue = drain();
    ASSERT_EQ(2u, queue.size());
    EXPECT_EQ(5u, queue.front()->getTypeInformation()->getTags().size());
    EXPECT_EQ(tagOf(change, key_), queue.front()->getTypeInformation()->getTags().front());
    queue.pop();
    const std::wstring removal = SettingsRemoveNodeEvent::typeName();
    EXPECT_EQ((std::vector<std::wstring>{tagOf(removal, a_), tagOf(removal, product_),
                                         tagOf(removal, r_)}),
              queue.front()->getTypeInformation()->getTags());
}

}  // namespace
}  // namespace eventstest

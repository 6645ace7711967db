// The event classes: copies by clone, the chain of type names, and the tags by which an event
// finds the listeners of its node and of every ancestor.
#include "EventsFixture.hpp"

#include <memory>
#include <sstream>
#include <stdexcept>
#include <typeinfo>

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

TEST_F(EventsTest, TypeChainsEndAtBaseEventAndDecideIsKindOf) {
    const SettingsRemoveNodeEvent removal(b_, key_, {}, BlessedInstanceID);
    const auto& chain = *removal.getTypeInformation();
    EXPECT_EQ(L"settings::core::SettingsRemoveNodeEvent", chain.getTypeName(0));
    EXPECT_EQ(L"settings::core::SettingsEvent", chain.getTypeName(1));
    EXPECT_EQ(L"hostsvc::msg_svc::eventmgr::BaseEvent", chain.getTypeName(2));
    try {
        chain.getTypeName(3);
        FAIL() << "a step beyond BaseEvent was answered";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ("eventmgr::BaseEvent has no base types.", e.what());
    }
    EXPECT_TRUE(removal.isKindOf(L"settings::core::SettingsEvent"));
    EXPECT_FALSE(removal.isKindOf(L"settings::core::SettingsValueChangeEvent"));
    const SettingsValueChangeEvent change(key_, {}, BlessedInstanceID);
    EXPECT_TRUE(change.isKindOf(L"settings::core::SettingsValueChangeEvent"));
    EXPECT_TRUE(change.isKindOf(L"hostsvc::msg_svc::eventmgr::BaseEvent"));
    EXPECT_EQ(
        L"settings::core::SettingsAddNodeEvent",
        SettingsAddNodeEvent(b_, key_, {}, BlessedInstanceID).getTypeInformation()->getTypeName(0));
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
    // The type name and the id's 32 hex digits, with nothing between.
    const auto tag = tagOf(change, key_);
    EXPECT_EQ(change.size() + 32, tag.size());
    EXPECT_EQ(std::wstring::npos, tag.find_first_not_of(L"0123456789abcdef", change.size()));

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

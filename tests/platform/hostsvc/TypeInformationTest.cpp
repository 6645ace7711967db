#include "TestEvents.hpp"

#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace {

using namespace eventtest;
using em::detail::DerivedTypeInformation;

const std::wstring baseName = L"hostsvc::msg_svc::eventmgr::BaseEvent";

void expectNoBaseTypes(const em::TypeInformation& type, std::size_t step) {
    try {
        type.getTypeName(step);
        ADD_FAILURE() << "step " << step << " should be past the end of the chain";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ("eventmgr::BaseEvent has no base types.", e.what());
    }
}

TEST(TypeInformationTest, ChainRunsUpToBaseEventAndNoFurther) {
    const DerivedTypeInformation<ValueEvent> value({L"a"});
    EXPECT_EQ(L"test::ValueEvent", value.getTypeName(0));
    EXPECT_EQ(L"test::NodeEvent", value.getTypeName(1));
    EXPECT_EQ(baseName, value.getTypeName(2));
    expectNoBaseTypes(value, 3);
    const DerivedTypeInformation<em::BaseEvent> base;
    EXPECT_EQ(baseName, base.getTypeName(0));
    expectNoBaseTypes(base, 1);
    // A subscription's count object answers the chain of its event type.
    const em::detail::SubscriptionCountByTypedInstance<RemoveEvent> count({L"t"});
    EXPECT_EQ(L"test::NodeEvent", count.getTypeName(1));
    expectNoBaseTypes(count, 3);

    EXPECT_TRUE(value.isKindOf(L"test::NodeEvent"));
    EXPECT_TRUE(value.isKindOf(baseName));
    EXPECT_FALSE(value.isKindOf(L"test::RemoveEvent"));
    EXPECT_FALSE(value.isKindOf(L"test::Value"));  // whole names only
    EXPECT_FALSE(base.isKindOf(L"test::NodeEvent"));
}

// Events compare by dynamic type and tags, never by payload; a clone keeps the dynamic class.
TEST(TypeInformationTest, EqualityNeedsTheSameDynamicTypeAndTags) {
    const DerivedTypeInformation<ValueEvent> value({L"a", L"b"});
    const DerivedTypeInformation<RemoveEvent> remove({L"a", L"b"});
    EXPECT_TRUE(value == DerivedTypeInformation<ValueEvent>({L"a", L"b"}));
    EXPECT_FALSE(value == DerivedTypeInformation<ValueEvent>({L"b", L"a"}));
    EXPECT_TRUE(value.equals(remove));  // tags alone
    EXPECT_TRUE(value != remove);

    const ValueEvent event({L"x", L"y"}, 42);
    const std::unique_ptr<em::BaseEvent> copy(event.clone());
    const auto* copiedValue = dynamic_cast<const ValueEvent*>(copy.get());
    ASSERT_NE(nullptr, copiedValue);
    EXPECT_EQ(42, copiedValue->payload());
    EXPECT_TRUE(event == ValueEvent({L"x", L"y"}, 7));
    EXPECT_FALSE(event == RemoveEvent({L"x", L"y"}, 42));
    EXPECT_THROW(em::BaseEvent(boost::shared_ptr<em::TypeInformation>()), std::invalid_argument);
}

}  // namespace

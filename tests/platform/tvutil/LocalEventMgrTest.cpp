#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/DerivedTypeInformation.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>
#include <platform/tvutil/eventmgr/LocalEventMgr.hpp>

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <set>
#include <thread>
#include <vector>

namespace {

namespace em = hostsvc::msg_svc::eventmgr;
using tvutil::eventmgr::createLocalEventMgr;

class PingEvent : public em::BaseEvent {
public:
    using base_type = em::BaseEvent;
    static const std::wstring& typeName() {
        static const std::wstring name = L"test::PingEvent";
        return name;
    }
    PingEvent()
        : em::BaseEvent(boost::make_shared<em::detail::DerivedTypeInformation<PingEvent>>()) {}
};

// Threads asking at once for the first time all get the one manager, and a subscription made
// through one answer hears what is published through another, on the publisher's thread.
TEST(LocalEventMgrTest, OneManagerForTheProcessDeliveringOnThePublishingThread) {
    std::vector<em::EventMgr*> seen(8, nullptr);
    std::vector<std::thread> threads;
    for (auto& answer : seen) {
        threads.emplace_back([&answer] { answer = createLocalEventMgr().get(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    seen.push_back(createLocalEventMgr().get());
    ASSERT_NE(nullptr, seen[0]);
    EXPECT_EQ(1u, std::set<em::EventMgr*>(seen.begin(), seen.end()).size());

    std::vector<std::thread::id> heardOn;
    auto connection = createLocalEventMgr()->subscribe(
        [&heardOn](const em::BaseEvent&) { heardOn.push_back(std::this_thread::get_id()); },
        &em::detail::SubscriptionCountByType<PingEvent>::create, {});
    std::thread::id publisherId;
    std::thread([&publisherId] {
        publisherId = std::this_thread::get_id();
        createLocalEventMgr()->publish(PingEvent(), PingEvent::typeName(), false);
    }).join();
    ASSERT_EQ(1u, heardOn.size());
    EXPECT_EQ(publisherId, heardOn[0]);

    connection.reset();
    createLocalEventMgr()->publish(PingEvent(), PingEvent::typeName(), true);
    EXPECT_EQ(1u, heardOn.size());
}

}  // namespace

#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>
#include <platform/tvutil/eventmgr/LocalEventMgr.hpp>

#include "platform/hf/Threads.hpp"
#include "platform/hostsvc/TestEvents.hpp"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

using namespace eventtest;
using tvutil::eventmgr::createLocalEventMgr;

// Threads asking at once for the first time all get the one manager, and a subscription made
// through one answer hears what is published through another, on the publisher's thread.
TEST(LocalEventMgrTest, OneManagerForTheProcessDeliveringOnThePublishingThread) {
    std::vector<em::EventMgr*> seen(8, nullptr);
    hftest::onThreads(8, [&seen](int t) { seen[t] = createLocalEventMgr().get(); });
    EXPECT_EQ(std::set<em::EventMgr*>{createLocalEventMgr().get()},
              std::set<em::EventMgr*>(seen.begin(), seen.end()));
    std::vector<std::thread::id> heardOn;
    const auto connection = createLocalEventMgr()->subscribe(
        [&heardOn](const em::BaseEvent&) { heardOn.push_back(std::this_thread::get_id()); },
        &em::detail::SubscriptionCountByType<NodeEvent>::create, {});
    std::thread publisher([] {
        createLocalEventMgr()->publish(NodeEvent(std::vector<std::wstring>()),
                                       NodeEvent::typeName(), false);
    });
    const std::thread::id publisherId = publisher.get_id();
    publisher.join();
    EXPECT_EQ(std::vector<std::thread::id>{publisherId}, heardOn);
}

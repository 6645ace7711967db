#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>
#include <platform/tvutil/eventmgr/LocalEventMgr.hpp>

#include "platform/hf/Threads.hpp"
#include "platform/hostsvc/TestEvents.hpp"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace {

using namespace eventtest;
using tvutil::eventmgr::createLocalEventMgr;

// Threads asking at once for the first time all get the one manager, and a subscription made
// through one answer hears what is published through another, on the publisher's thread.
TEST(LocalEventMgrTest, OneManagerForTheProcessDeliveringOnThePublishingThread) {
    std::vector<em::EventMgr*> seen(8, nullptr);
    hftest::onThreads(8, [&seen](int t) { seen[t] = createLocalEventMgr().get(); });
    seen.push_back(createLocalEventMgr().get());
    ASSERT_NE(nullptr, seen[0]);
    EXPECT_EQ(1u, std::set<em::EventMgr*>(seen.begin(), seen.end()).size());

    std::vector<std::thread::id> heardOn;
    auto connection = createLocalEventMgr()->subscribe(
        [&heardOn](const em::BaseEvent&) { heardOn.push_back(std::this_thread::get_id()); },
        &em::detail::SubscriptionCountByType<NodeEvent>::create, {});
    std::thread::id publisherId;
    std::thread([&publisherId] {
        publisherId = std::this_thread::get_id();
        createLocalEventMgr()->publish(NodeEvent(std::vector<std::wstring>()),
                                       NodeEvent::typeName(), false);
    }).join();
    ASSERT_EQ(1u, heardOn.size());
    EXPECT_EQ(publisherId, heardOn[0]);

    connection.reset();
    createLocalEventMgr()->publish(NodeEvent(std::vector<std::wstring>()), NodeEvent::typeName(),
                                   true);
    EXPECT_EQ(1u, heardOn.size());
}

}  // namespace

#include <platform/hostsvc/msg_svc/threadutil/ConcurrentMap.hpp>
#include <platform/hostsvc/msg_svc/threadutil/ConcurrentTBBHashMap.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include "platform/hf/Threads.hpp"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <atomic>
#include <vector>

namespace {

using tvutil::contextmgr::InstanceID;

// Shaped as the settings library uses it: const key, shared-pointer value.
using State = int;
using StateMap =
    hostsvc::msg_svc::threadutil::ConcurrentMap<const InstanceID, boost::shared_ptr<State>>;
using TBBStateMap = hostsvc::msg_svc::threadutil::ConcurrentTBBHashMap<StateMap>;

boost::shared_ptr<State> state(int tag) {
    return boost::make_shared<State>(tag);
}

TEST(ConcurrentTBBHashMapTest, SingleEntryAndWholeTableOperations) {
    TBBStateMap concrete;
    StateMap& map = concrete;  // every call through the interface
    const auto first = state(10), second = state(20);
    EXPECT_TRUE(map.insert(InstanceID(1), first));
    EXPECT_FALSE(map.insert(InstanceID(1), state(11)));  // the first value stays
    EXPECT_EQ(second, map.findOrInsert(InstanceID(2), second));
    EXPECT_EQ(2u, map.size());
    EXPECT_TRUE(map.erase(InstanceID(1)));
    EXPECT_FALSE(map.erase(InstanceID(1)));
    boost::shared_ptr<State> out = second;
    EXPECT_FALSE(map.find(InstanceID(1), out));
    EXPECT_EQ(second, out);  // untouched on a miss

    // Values leave the map outside its lock: a destructor that uses the map would deadlock
    // under the exclusive lock of erase or clear.
    int destroyed = 0;
    const auto reentrant = [&](int tag) {
        return boost::shared_ptr<State>(new State(tag), [&](State* s) {
            destroyed += map.find(InstanceID(*s), out) ? 100 : 1;  // gone before destruction
            delete s;
        });
    };
    map.insert(InstanceID(3), reentrant(3));
    EXPECT_TRUE(map.erase(InstanceID(3)));
    map.insert(InstanceID(4), reentrant(4));
    map.clear();
    EXPECT_EQ(0u, map.size());
    EXPECT_EQ(2, destroyed);
}

// Every thread offers its own value for every key: one offer per key gets in, by insert or by
// findOrInsert, and it is the one the map keeps.
TEST(ConcurrentTBBHashMapTest, ConcurrentInsertsHaveOneWinnerPerKey) {
    constexpr int threadCount = 6, keyCount = 2000;
    TBBStateMap map;
    std::vector<std::atomic<int>> wins(keyCount);
    std::vector<boost::shared_ptr<State>> winner(keyCount);
    hftest::onThreads(threadCount, [&](int t) {
        for (int k = 0; k < keyCount; ++k) {
            const auto mine = state(t);
            if (t % 2 == 0 ? map.insert(InstanceID(k), mine)
                           : map.findOrInsert(InstanceID(k), mine) == mine) {
                ++wins[k];
                winner[k] = mine;
            }
        }
    });
    EXPECT_EQ(static_cast<std::size_t>(keyCount), map.size());
    for (int k = 0; k < keyCount; ++k) {
        boost::shared_ptr<State> stored;
        ASSERT_TRUE(map.find(InstanceID(k), stored));
        ASSERT_EQ(1, wins[k].load()) << "key " << k;
        ASSERT_EQ(winner[k], stored) << "key " << k;
    }
}

}  // namespace

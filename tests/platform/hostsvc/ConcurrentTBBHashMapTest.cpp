#include <platform/hostsvc/msg_svc/threadutil/ConcurrentMap.hpp>
#include <platform/hostsvc/msg_svc/threadutil/ConcurrentTBBHashMap.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include "platform/hf/Threads.hpp"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <atomic>
#include <map>
#include <vector>

namespace {

using hftest::onThreads;
using hostsvc::msg_svc::threadutil::ConcurrentMap;
using tvutil::contextmgr::InstanceID;

// Shaped as the settings library uses it: const key, shared-pointer value.
struct State {
    explicit State(int tag) : tag(tag) {}
    int tag;
};
using StateMap = ConcurrentMap<const InstanceID, boost::shared_ptr<State>>;
using TBBStateMap = hostsvc::msg_svc::threadutil::ConcurrentTBBHashMap<StateMap>;
using Snapshot = std::map<InstanceID, boost::shared_ptr<State>>;

boost::shared_ptr<State> state(int tag) {
    return boost::make_shared<State>(tag);
}

TEST(ConcurrentTBBHashMapTest, SingleEntryAndWholeTableOperations) {
    TBBStateMap concrete;
    StateMap& map = concrete;  // every call through the interface
    const InstanceID one(1), two(2);
    const auto first = state(10), second = state(20);
    EXPECT_TRUE(map.insert(one, first));
    EXPECT_FALSE(map.insert(one, state(11)));  // the first value stays
    EXPECT_EQ(first, map.findOrInsert(one, state(12)));
    EXPECT_EQ(second, map.findOrInsert(two, second));
    const Snapshot snapshot = map.copy();
    EXPECT_EQ((Snapshot{{one, first}, {two, second}}), snapshot);
    EXPECT_TRUE(map.erase(one));
    EXPECT_FALSE(map.erase(one));
    boost::shared_ptr<State> out = second;
    EXPECT_FALSE(map.find(one, out));
    EXPECT_EQ(second, out);          // untouched on a miss
    EXPECT_EQ(2u, snapshot.size());  // a snapshot is not a view

    // Values leave the map outside its lock: a destructor that uses the map would deadlock
    // under the exclusive lock of clear or assign.
    int destroyed = 0;
    const auto reentrant = [&](int tag) {
        return boost::shared_ptr<State>(new State(tag), [&](State* s) {
            destroyed += map.find(InstanceID(s->tag), out) ? 100 : 1;  // gone before destruction
            delete s;
        });
    };
    map.insert(InstanceID(3), reentrant(3));
    EXPECT_TRUE(map.erase(InstanceID(3)));
    map.insert(InstanceID(4), reentrant(4));
    map.clear();
    EXPECT_TRUE(map.copy().empty());
    map.insert(InstanceID(5), reentrant(5));
    map.assign({{InstanceID(6), state(6)}});
    EXPECT_EQ(1u, map.size());
    EXPECT_EQ(3, destroyed);
}

// Every thread asks for every key with its own candidate: one candidate per key gets in, and
// every thread sees that one.
TEST(ConcurrentTBBHashMapTest, ConcurrentFindOrInsertHasOneWinnerPerKey) {
    constexpr int threadCount = 6, keyCount = 2000;
    TBBStateMap map;
    std::vector<std::vector<boost::shared_ptr<State>>> seen(threadCount);
    onThreads(threadCount, [&](int t) {
        for (int k = 0; k < keyCount; ++k) {
            seen[t].push_back(map.findOrInsert(InstanceID(k), state(t)));
        }
    });
    EXPECT_EQ(static_cast<std::size_t>(keyCount), map.size());
    for (int k = 0; k < keyCount; ++k) {
        boost::shared_ptr<State> stored;
        ASSERT_TRUE(map.find(InstanceID(k), stored));
        for (int t = 0; t < threadCount; ++t) {
            ASSERT_EQ(stored, seen[t][k]) << "key " << k << " thread " << t;
        }
    }
}

// assign swaps whole generations of the table while others look: a lookup never misses (each
// generation has every key) and a snapshot never mixes two generations.
TEST(ConcurrentTBBHashMapTest, AssignAndCopyAreWholeTableSteps) {
    constexpr int keyCount = 100;
    const auto generation = [](int g) {
        Snapshot content;
        for (int k = 0; k < keyCount; ++k) {
            content.emplace(InstanceID(k), state(g));
        }
        return content;
    };
    TBBStateMap map;
    map.assign(generation(0));
    std::atomic<bool> assigning{true};
    std::atomic<int> misses{0}, mixed{0}, snapshots{0};
    onThreads(3, [&](int t) {
        if (t == 0) {
            for (int g = 1; g <= 300; ++g) {
                map.assign(generation(g));
            }
            assigning.store(false);
        } else if (t == 1) {
            for (int k = 0; assigning.load(); k = (k + 7) % keyCount) {
                boost::shared_ptr<State> out;
                misses += map.find(InstanceID(k), out) && out ? 0 : 1;
            }
        } else {
            while (assigning.load() || snapshots.load() == 0) {
                const Snapshot snapshot = map.copy();
                ++snapshots;
                for (const auto& entry : snapshot) {
                    mixed += entry.second->tag != snapshot.begin()->second->tag ? 1 : 0;
                }
                mixed += snapshot.size() != keyCount ? 1 : 0;
            }
        }
    });
    EXPECT_EQ(0, misses.load());
    EXPECT_EQ(0, mixed.load());
}

}  // namespace

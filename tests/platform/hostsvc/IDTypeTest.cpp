#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include "platform/hf/Threads.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

using hostsvc::msg_svc::exchange::IDType;

// Each thread has its own generator: ids from 8 threads at once must never repeat, as they
// would if two threads' generators started from the same seed. Text, hash and order must all
// tell them apart.
TEST(IDTypeTest, ManyThreadsMakeDistinctIdsOfThirtyTwoHexDigits) {
    constexpr std::size_t threadCount = 8, perThread = 10000;
    std::vector<std::vector<IDType>> made(threadCount);
    hftest::onThreads(threadCount, [&made](int t) { made[t].resize(perThread); });
    std::unordered_set<std::string> texts;
    std::unordered_set<IDType> hashed;
    std::set<IDType> ordered;
    for (const std::vector<IDType>& ids : made) {
        for (const IDType& id : ids) {
            const std::string text = id.toString();
            ASSERT_EQ(32u, text.size()) << text;
            ASSERT_EQ(std::string::npos, text.find_first_not_of("0123456789abcdef")) << text;
            std::wstring wide = L"tag";
            id.appendTo(wide);
            ASSERT_EQ(L"tag" + std::wstring(text.begin(), text.end()), wide);
            texts.insert(text);
            hashed.insert(id);
            ordered.insert(id);
        }
    }
    EXPECT_EQ(threadCount * perThread, texts.size());
    EXPECT_EQ(threadCount * perThread, hashed.size());
    EXPECT_EQ(threadCount * perThread, ordered.size());
    const IDType copy = made[0][0];
    EXPECT_TRUE(copy == made[0][0] && !(copy != made[0][0]) && !(copy < made[0][0]));
}

}  // namespace

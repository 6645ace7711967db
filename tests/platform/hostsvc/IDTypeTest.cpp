#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include "platform/hf/Threads.hpp"

#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace {

using hostsvc::msg_svc::exchange::IDType;

// Each thread has its own generator: ids made on 8 threads at once must never repeat, as they
// would if two generators started from the same seed.
TEST(IDTypeTest, ManyThreadsMakeDistinctIdsOfThirtyTwoHexDigits) {
    constexpr std::size_t threadCount = 8, perThread = 10000;
    std::vector<std::vector<IDType>> made(threadCount);
    hftest::onThreads(threadCount, [&made](int t) { made[t].resize(perThread); });
    std::unordered_set<std::string> texts;
    for (const std::vector<IDType>& ids : made) {
        for (const IDType& id : ids) {
            const std::string text = id.toString();
            ASSERT_EQ(std::string::npos, text.find_first_not_of("0123456789abcdef")) << text;
            std::wstring wide = L"tag";
            id.appendTo(wide);
            ASSERT_EQ(L"tag" + std::wstring(text.begin(), text.end()), wide);
            texts.insert(text);
        }
    }
    EXPECT_EQ(32u, made[0][0].toString().size());
    EXPECT_EQ(threadCount * perThread, texts.size());
    const IDType copy = made[1][0];  // a copy is the same id, never a fresh one
    EXPECT_TRUE(copy == made[1][0] && copy.toString() == made[1][0].toString());
}

}  // namespace

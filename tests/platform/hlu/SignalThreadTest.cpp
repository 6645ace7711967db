#include <platform/hlu/hlu.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

int answerOnAnotherThread() {
    int answer = -1;
    std::thread([&answer] { answer = hluIsSignalThread(); }).join();
    return answer;
}

}  // namespace

TEST(SignalThread, OnlyTheNamedThreadIsTheSignalThreadWhoeverNamedIt) {
    EXPECT_EQ(0, hluIsSignalThread());
    hluSetSignalThread(1);
    EXPECT_NE(0, hluIsSignalThread());
    EXPECT_EQ(0, answerOnAnotherThread());
    hluSetSignalThread(0);
    EXPECT_EQ(0, hluIsSignalThread());

    // A worker names itself; while it holds the name, neither this thread nor a third one has
    // it, and clearing from a thread that is not the signal thread clears all the same.
    std::mutex mutex;
    std::condition_variable changed;
    int step = 0;
    int workerAnswer = -1, workerAnswerAfterClear = -1;
    std::thread worker([&] {
        hluSetSignalThread(7);  // any non-zero value names the caller
        workerAnswer = hluIsSignalThread();
        std::unique_lock<std::mutex> lock(mutex);
        step = 1;
        changed.notify_all();
        changed.wait(lock, [&] { return step == 2; });
        workerAnswerAfterClear = hluIsSignalThread();
    });
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return step == 1; });
        EXPECT_EQ(0, hluIsSignalThread());
        EXPECT_EQ(0, answerOnAnotherThread());
        hluSetSignalThread(0);
        step = 2;
        changed.notify_all();
    }
    worker.join();
    EXPECT_NE(0, workerAnswer);
    EXPECT_EQ(0, workerAnswerAfterClear);
}

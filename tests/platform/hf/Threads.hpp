// Runs work on several threads released together, so that they overlap as much as they can.
// Shared by the concurrency tests of every layer.
#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace hftest {

// Runs `work(t)` for t = 0 .. count-1, each on a thread of its own, and waits for all.
template <class Work>
void onThreads(int count, Work work) {
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t) {
        threads.emplace_back([&, t] {
            while (!go.load()) {
                std::this_thread::yield();
            }
            work(t);
        });
    }
    go.store(true);
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace hftest

// The host's signal thread: one thread id, or none (the default id) until the host names one.

#include <platform/hlu/hlu.h>

#include <atomic>
#include <thread>

namespace {

std::atomic<std::thread::id>& signalThread() {
    static std::atomic<std::thread::id> id{std::thread::id()};
    return id;
}

}  // namespace

int hluIsSignalThread(void) {
    const std::thread::id named = signalThread().load();
    return named != std::thread::id() && named == std::this_thread::get_id() ? 1 : 0;
}

void hluSetSignalThread(int callingThreadIsSignalThread) {
    signalThread().store(callingThreadIsSignalThread ? std::this_thread::get_id()
                                                     : std::thread::id());
}

// Crash safety of the save, measured with real kills: a child process saves one product in a
// loop (durable saving on) and is killed with SIGKILL at a random moment; after every kill the
// user file must parse and hold one of the two values the child alternates between.
// SETTINGSCORE_CRASH_KILLS sets the number of kills (200 by default; scripts/crash-safety.sh
// runs 10,000).
#include "SavedValue.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <random>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace savingtest {
namespace {

using std::chrono::microseconds;

TEST_F(SavingTest, KilledSavesLeaveTheOldOrTheNewFileAndTheirLeftoversHarmNoLaterSave) {
    const char* configured = std::getenv("SETTINGSCORE_CRASH_KILLS");
    const int kills = configured ? std::atoi(configured) : 200;
    const std::wstring values[] = {L"the first of two values", L"the second of two values"};
    // A long constant value spreads the file over several blocks: kills land inside its write,
    // and a short file cannot pass for a whole one.
    const std::wstring filler(8000, L'f');
    sc::turnOnDurableSaving();
    auto group = mountProduct();
    group->setAny("b", filler, "user");
    group->setAny("a", values[1], "user");  // a first save completed

    // Forks a child that saves on a thread of its own, whose id engine is seeded afresh as in a
    // new process (otherwise every child would draw the temporary folder names of the last).
    // When `timed` it makes one save and reports its length in us through `channel` (the first
    // save of a child is the slow one: it copies the pages it touches); else it closes `channel`
    // as it starts and saves until killed.
    const auto forkSaver = [&](int(&channel)[2], bool timed) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::thread saver([&] {
                try {
                    ::close(channel[0]);
                    if (!timed) {
                        ::close(channel[1]);
                        for (int i = 0;; ++i) {
                            group->setAny("a", values[i % 2], "user");
                        }
                    }
                    const auto start = std::chrono::steady_clock::now();
                    group->setAny("a", values[0], "user");
                    const long length = std::chrono::duration_cast<microseconds>(
                                            std::chrono::steady_clock::now() - start)
                                            .count();
                    ::_exit(::write(channel[1], &length, sizeof length) == sizeof length ? 0 : 1);
                } catch (...) {
                }
            });
            saver.join();
            ::_exit(1);  // only a save that threw gets here
        }
        ::close(channel[1]);
        return child;
    };
    int channel[2];
    ASSERT_EQ(0, ::pipe(channel));
    long perSave = 0;
    const pid_t timer = forkSaver(channel, true);
    ASSERT_EQ(static_cast<ssize_t>(sizeof perSave), ::read(channel[0], &perSave, sizeof perSave));
    ::close(channel[0]);
    ASSERT_EQ(timer, ::waitpid(timer, nullptr, 0));

    // Delays span a little more than one save (most of it the flush), so kills fall inside the
    // first save of a child as well as after it; at most 10 ms to keep the suite quick, but
    // doubled every 50 kills for as long as no completed save has been seen (a slow disk).
    long span = std::clamp<long>(perSave * 3 / 2, 2000, 10000);
    const unsigned seed = 20240611;
    std::mt19937 random(seed);
    std::cout << "crash safety: " << kills << " kills, seed " << seed << ", delays 0.." << span
              << " us (one save " << perSave << " us)" << std::endl;

    std::wstring last = savedValue(userFile(), filler).value_or(L"");
    int changes = 0;
    for (int n = 0; n < kills; ++n) {
        ASSERT_EQ(0, ::pipe(channel));
        const pid_t child = forkSaver(channel, false);
        ASSERT_NE(-1, child);
        char none;  // the delay starts when the child's saves do, not at the fork
        ASSERT_EQ(0, ::read(channel[0], &none, 1));
        ::close(channel[0]);
        if (n % 50 == 49 && changes == 0) {
            span *= 2;
        }
        std::this_thread::sleep_for(
            microseconds(std::uniform_int_distribution<long>(0, span)(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(child, ::waitpid(child, &status, 0));
        ASSERT_TRUE(WIFSIGNALED(status)) << "kill " << n << ": the child's save threw";
        const auto saved = savedValue(userFile(), filler);
        ASSERT_TRUE(saved == values[0] || saved == values[1])
            << "kill " << n << " (seed " << seed << "): the user file is missing, short or "
            << "unreadable; "
            << (std::filesystem::exists(userFile())
                    ? std::to_string(std::filesystem::file_size(userFile()))
                    : std::string("no"))
            << " bytes";
        changes += *saved != last;
        last = *saved;
    }
    const long left = leftovers();
    std::cout << "crash safety: " << kills << " kills, " << changes
              << " changes of the saved value seen, " << left
              << " temporary folders left over, delays at last 0.." << span << " us" << std::endl;
    EXPECT_GT(changes, 0) << "no child completed a save: the kills measured nothing";

    // The leftovers are passed over: the next save replaces the file and cleans up after itself,
    // and a restart reads it.
    group->setAny("a", std::wstring(L"after the kills"), "user");
    EXPECT_EQ(L"after the kills", savedValue(userFile(), filler).value_or(L"(broken)"));
    EXPECT_EQ(left, leftovers());
    sc::TSettings::reset(AnyInstanceID);
    EXPECT_EQ(L"after the kills",
              boost::any_cast<std::wstring>(root()->getNodeByPath("p.g")->getAny("a", "user")));
}

}  // namespace
}  // namespace savingtest

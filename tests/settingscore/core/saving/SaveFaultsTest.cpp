// Faults of the save, measured. Each case is one save replacing a good file, made by a forked
// child of its own product (the give-ups pause for seconds: the cases run side by side):
//  - the k-th file operation of the save fails, for every k the save reaches: only that call,
//    that call and every later one, or that call and every later call of the same operation
//    (a rename into place that keeps being refused while the move aside works);
//  - the disk fills up: the child's file size limit cuts the temporary file short.
// After each save: the target is the whole old file or the whole new one, memory holds the new
// value, and neither a temporary folder nor a .previous file is left behind.
#include "SavedValue.hpp"

#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Operations.hpp>

#include <csignal>
#include <iostream>
#include <map>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace savingtest {
namespace {

using hf::filesystem::upath;

enum Mode { onlyThatCall, everyLaterCall, sameOperationLater, diskFull };
const char* const modeNames[] = {"only call k fails", "calls k.. fail",
                                 "call k and later calls of its operation fail", "disk full"};
const int maxK = 4;  // more than any save here needs: the range check below says so

// The plan of the one save a child makes. Operations: 0 write, 1 rename into place, 2 move aside.
struct Plan {
    Mode mode = onlyThatCall;
    int failAt = 0;  // 0: no fault
    int calls = 0;
    int failedOperation = -1;  // set when call k is made: the save met its failure
} plan;
sc::detail::WriteSettingsToFile realWrite;

bool failsNow(int operation) {
    const int call = ++plan.calls;
    if (call == plan.failAt) {
        plan.failedOperation = operation;
        return true;
    }
    return call > plan.failAt && plan.failAt > 0 &&
           (plan.mode == everyLaterCall ||
            (plan.mode == sameOperationLater && operation == plan.failedOperation));
}

bool faultyWrite(const sc::SettingsLevel* level, sc::SettingsPtr& object,
                 const sc::detail::ReadAccess& lock, const upath& file) {
    if (!failsNow(0)) {
        return realWrite(level, object, lock, file);
    }
    realWrite(level, object, lock, file);  // a write that stopped half way
    std::filesystem::resize_file(file.string(), std::filesystem::file_size(file.string()) / 2);
    return false;
}

template <int operation>
void faultyRename(const upath& from, const upath& to) {
    if (failsNow(operation)) {
        throw hf::filesystem::FsysExceptionBase("rename", from, to,
                                                std::error_code(EIO, std::generic_category()));
    }
    hf::filesystem::rename(from, to);
}

TEST_F(SavingTest, EveryFailingFileOperationAndAFullDiskLeaveAWholeFileAndTheNewValueInMemory) {
    realWrite = write_;
    Access::setWrite(&faultyWrite);
    Access::setTempToTarget(&faultyRename<1>);
    Access::setTargetToPrevious(&faultyRename<2>);
    const std::wstring filler(2000, L'f'), oldValue = L"old value", newValue = L"new value";

    struct Case {
        Mode mode;
        int k;
        boost::shared_ptr<sc::TSettings> group;
        std::filesystem::path file;
        std::string good;  // the whole old file
        pid_t child;
    };
    std::vector<Case> cases;
    for (const Mode mode : {onlyThatCall, everyLaterCall, sameOperationLater, diskFull}) {
        for (int k = 1; k <= (mode == diskFull ? 1 : maxK); ++k) {
            const std::string name = "m" + std::to_string(mode) + "k" + std::to_string(k);
            auto product = node(name, false);
            auto group = node("g", false, product);
            node("a", true, group);
            node("b", true, group);
            product->setParent(root());
            group->setAny("b", filler, "user");
            group->setAny("a", oldValue, "user");
            const auto file = dir_.path() / "user" / (name + ".settings");
            cases.push_back({mode, k, group, file, testsupport::readFile(file), 0});
        }
    }
    for (Case& c : cases) {
        c.child = ::fork();
        ASSERT_NE(-1, c.child);
        if (c.child == 0) {
            if (c.mode == diskFull) {
                std::signal(SIGXFSZ, SIG_IGN);
                const rlim_t limit = c.good.size() / 2;
                const rlimit size{limit, limit};
                ::setrlimit(RLIMIT_FSIZE, &size);
            } else {
                plan = Plan{c.mode, c.k};
            }
            // Exit code: 1 the new value in memory, 2 another one, 3 the save threw; +8 when
            // the save met its failure. The save runs on a thread of its own, whose id engine is
            // seeded afresh: children of one parent would otherwise race for the same
            // temporary folder names.
            int code = 3;
            std::thread([&] {
                try {
                    c.group->setAny("a", newValue, "user");
                    const auto now = boost::any_cast<std::wstring>(c.group->getAny("a", "user"));
                    code = now == newValue ? 1 : 2;
                } catch (...) {
                }
            }).join();
            ::_exit(code + (plan.failedOperation >= 0 ? 8 : 0));
        }
    }

    std::map<Mode, int> completedAt;  // the first k whose save completed without its failure
    for (const Case& c : cases) {
        const std::string what = std::string(modeNames[c.mode]) + ", k=" + std::to_string(c.k);
        int status = 0;
        ASSERT_EQ(c.child, ::waitpid(c.child, &status, 0));
        ASSERT_TRUE(WIFEXITED(status)) << what;
        EXPECT_EQ(1, WEXITSTATUS(status) & 7)
            << what << ": the save threw (3) or memory lost the new value (2)";
        if (c.mode != diskFull && (WEXITSTATUS(status) & 8) == 0 && !completedAt.count(c.mode)) {
            completedAt[c.mode] = c.k;
        }
        if (!std::filesystem::exists(c.file)) {
            ADD_FAILURE() << "FAIL: " << what << ": the good file " << c.file.filename()
                          << " is gone, and with it every user value of its product (nothing of it"
                          << " is left in the folder unless listed below)";
        } else if (testsupport::readFile(c.file) != c.good) {
            EXPECT_NE(diskFull, c.mode) << what << ": the limit did not cut the temporary file";
            EXPECT_EQ(newValue, savedValue(c.file, filler).value_or(L"(a broken file)")) << what;
        }
    }
    for (const Mode mode : {onlyThatCall, everyLaterCall, sameOperationLater}) {
        ASSERT_TRUE(completedAt.count(mode)) << modeNames[mode] << ": raise maxK";
        std::cout << modeNames[mode] << ": k=1.." << completedAt[mode] - 1
                  << " met their failure, k=" << completedAt[mode] << " completed" << std::endl;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir_.path() / "user")) {
        EXPECT_EQ(".settings", entry.path().extension()) << "left behind: " << entry.path();
    }
}

}  // namespace
}  // namespace savingtest

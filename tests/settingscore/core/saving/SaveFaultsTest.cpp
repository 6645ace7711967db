// Faults of the file operations, measured through the file system seam. A save replacing a good
// file meets a failure at each call it makes in turn: only that call, that call and every later
// one, or (per operation) the j-th call of one operation and every later call of it. An export
// meets the same. Each save runs in a forked child of its own product, since the give-ups pause
// for seconds. After each: the target is the whole old file or the whole new one, memory holds
// the new value, no temporary folder is left, and a save that left the old file is recorded.
#include "SavedValue.hpp"

#include <settingscore/core/exception/Exceptions.hpp>

#include <iostream>
#include <map>
#include <set>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace savingtest {
namespace {

struct Fault {
    int k;
    bool everyLater;
    std::string operation;  // empty: every call counts
    std::string describe() const {
        return (operation.empty() ? "call " : operation + " call ") + std::to_string(k) +
               (everyLater ? " and later" : " only");
    }
};

TEST_F(SavingTest, EveryFailingFileOperationLeavesAWholeFileTheNewValueInMemoryAndARecord) {
    const std::wstring filler(2000, L'f'), oldValue = L"old value", newValue = L"new value";
    // One clean save, watched: its calls, by position and by operation.
    auto probe = mountProduct();
    files_.forgetCalls();
    probe->setAny("a", oldValue, "user");
    const auto sequence = files_.calls();
    ASSERT_GT(sequence.size(), 5u);
    std::map<std::string, int> perOperation;
    std::vector<Fault> faults;
    for (std::size_t k = 1; k <= sequence.size(); ++k) {
        faults.push_back({static_cast<int>(k), false, ""});
        faults.push_back({static_cast<int>(k), true, ""});
        const int j = ++perOperation[sequence[k - 1].operation];
        faults.push_back({j, true, sequence[k - 1].operation});
    }

    struct Case {
        Fault fault;
        boost::shared_ptr<sc::TSettings> group;
        std::filesystem::path file;
    };
    std::vector<Case> cases;
    for (const Fault& fault : faults) {
        const std::string name = "c" + std::to_string(cases.size());
        auto product = node(name, false);
        auto group = node("g", false, product);
        node("a", true, group);
        node("b", true, group);
        product->setParent(root());
        group->setAny("b", filler, "user");
        group->setAny("a", oldValue, "user");
        cases.push_back({fault, group, dir_.path() / "user" / (name + ".settings")});
    }
    // Exit code of a child: 1 the new value in memory and a record of a failed save, 2 the new
    // value and no record, 3 memory lost the value. The save runs on a thread of its own, whose
    // ids are drawn afresh as in a new process.
    const auto runInChild = [&](const Case& c) {
        int code = 3;
        std::thread([&] {
            files_.failCall(c.fault.k, c.fault.everyLater, std::errc::io_error, c.fault.operation);
            try {
                c.group->setAny("a", newValue, "user");
            } catch (...) {  // failures of the level's folder pass to the caller
            }
            files_.failNothing();
            const bool kept =
                boost::any_cast<std::wstring>(c.group->getAny("a", "user")) == newValue;
            code = !kept ? 3 : saveFailure(c.file.stem().string()).empty() ? 2 : 1;
        }).join();
        ::_exit(code);
    };
    int recordedFailures = 0;
    // Faults of one call first, then those that go on, which may keep even the temporary
    // folder from being removed (later saves sweep it once it is old).
    for (const bool everyLater : {false, true}) {
        std::vector<std::pair<const Case*, pid_t>> children;
        for (const Case& c : cases) {
            if (c.fault.everyLater == everyLater) {
                const pid_t child = ::fork();
                ASSERT_NE(-1, child);
                if (child == 0) {
                    runInChild(c);
                }
                children.emplace_back(&c, child);
            }
        }
        for (const auto& [c, child] : children) {
            const std::string what = c->fault.describe();
            int status = 0;
            ASSERT_EQ(child, ::waitpid(child, &status, 0));
            ASSERT_TRUE(WIFEXITED(status)) << what;
            const int code = WEXITSTATUS(status);
            EXPECT_NE(3, code) << what << ": memory lost the new value";
            const auto saved = savedValue(c->file, filler);
            ASSERT_TRUE(saved == oldValue || saved == newValue)
                << what << ": the file is gone or broken, and with it the product's user values";
            EXPECT_TRUE(saved == newValue || code == 1)
                << what << ": the old file stayed and nobody can learn why";
            recordedFailures += code == 1;
        }
        if (!everyLater) {
            EXPECT_EQ(0, leftovers()) << "a fault of one call left a temporary folder";
        }
    }
    EXPECT_GT(recordedFailures, 0);
    std::cout << faults.size() << " faulted saves of " << sequence.size() << " calls each, "
              << recordedFailures << " recorded as failed" << std::endl;
}

TEST_F(SavingTest, AnExportThatMeetsAFaultIsReportedAndAFullDiskOrSizeLimitIsRecorded) {
    auto group = mountProduct();
    group->setAny("a", std::wstring(L"exported"), "user");
    const auto target = dir_.path() / "export.settings";
    int round = 0;
    for (const std::errc error : {std::errc::no_space_on_device, std::errc::file_too_large}) {
        files_.failCall(1, false, error, "writeFile");
        EXPECT_THROW(sc::Settings::exportSettings({group}, target.wstring(), "user"),
                     sc::exception::ErrorSaveSettingsDueToFileIOError);
        files_.failCall(1, false, error, "writeFile");
        const std::string before = testsupport::readFile(userFile());
        EXPECT_NO_THROW(group->setAny("a", L"not saved " + std::to_wstring(++round), "user"));
        EXPECT_EQ(before, testsupport::readFile(userFile()));
        EXPECT_EQ("write the temporary file: " + std::make_error_code(error).message(),
                  saveFailure());
    }
    files_.failNothing();
    sc::Settings::exportSettings({group}, target.wstring(), "user");
    const auto exported = sc::Settings::importAsStandaloneObject(target.wstring());
    EXPECT_EQ(L"not saved 2",
              boost::any_cast<std::wstring>(exported->getNodeByPath("g")->getAny("a", "user")));
}

}  // namespace
}  // namespace savingtest

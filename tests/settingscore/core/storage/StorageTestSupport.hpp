// Helpers of the storage tests: a fixture that keeps every folder the code may compute in a
// fresh temporary folder and resets the process-wide directory overrides, and checks in a
// forked child for what needs fresh process state.
#pragma once

#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/detail/PreferencesDirectoryDetail.hpp>

#include "platform/hf/ChildProcess.hpp"

#include <support/EnvVarGuard.hpp>
#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>

namespace storagetest {

// Roaming, local and home folders inside the test's temporary folder (the real home is never
// touched), no directory variables; the overrides, which outlive a test, reset at the end.
class StorageTest : public ::testing::Test {
protected:
    ~StorageTest() override {
        settings::core::setPreferencesDirectoryUStr(L"");
        settings::core::setUnitTestPreviousPrefDir(L"");
        settings::core::detail::setTolvanRootOverride(L"");
    }
    std::filesystem::path at(const std::string& relative) const { return temp_.path() / relative; }
    std::wstring wat(const std::string& relative) const { return temp_.wpath(relative); }

    testsupport::TempDir temp_;

private:
    using Env = testsupport::EnvVarGuard;
    Env config_{"XDG_CONFIG_HOME", at("config").string()};
    Env data_{"XDG_DATA_HOME", at("data").string()};
    Env home_{"HOME", at("home").string()};
    Env prefDir_{"TOLVAN_PREFDIR", std::nullopt}, userDir_{"SETTINGS_USERDIR", std::nullopt};
    Env factoryDir_{"SETTINGS_FACTORYDIR", std::nullopt};
    Env workgroupDir_{"SETTINGS_WORKGROUPDIR", std::nullopt};
};

// A check in a forked child: a failure is told on standard error and counted.
#define STORAGE_CHILD_CHECK(failures, condition)                                              \
    ((condition) ? (void)0                                                                    \
                 : (void)(++(failures), std::fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, \
                                                     __LINE__, #condition)))

// Runs `body` in a forked child: it starts from this process's state and changes nothing
// here (the one-time default of the preference directory above all). Failed checks, an
// escaped exception or an abnormal end of the child fail the calling test.
inline void expectInChild(const std::function<void(int& failures)>& body) {
    const int status = hftest::runInChild([&] {
        int failures = 0;
        try {
            body(failures);
        } catch (const std::exception& e) {
            std::fprintf(stderr, "exception in a child: %s\n", e.what());
            ++failures;
        }
        return failures == 0 ? 0 : 1;
    });
    EXPECT_EQ(0, status) << "failed checks in a child, told above";
}

}  // namespace storagetest

// Helpers of the storage tests: a fixture that keeps every folder the code may compute in a
// temporary folder and resets the directory overrides, and checks in a forked child.
#pragma once

#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/detail/PreferencesDirectoryDetail.hpp>

#include "platform/hf/ChildProcess.hpp"

#include <support/EnvVarGuard.hpp>
#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>

namespace storagetest {

// Roaming, local and home folders inside the temporary folder (the real home is never touched),
// no directory variables; the overrides, which outlive a test, reset at the end.
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

// Runs `body` in a forked child, which changes nothing here (the one-time default of the
// preference directory above all); failed checks, an exception or a crash fail the test.
inline void expectInChild(const std::function<void(int& failures)>& body) {
    EXPECT_EQ(0, hftest::runInChild([&] {
                  int failures = 0;
                  body(failures);
                  return failures;
              }))
        << "failed checks in a child, told above (126: an exception)";
}

}  // namespace storagetest

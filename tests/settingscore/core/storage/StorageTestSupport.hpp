// Helpers of the storage tests: a fixture that keeps every folder the code may compute in a
// fresh temporary folder and resets the process-wide directory overrides, a capture of
// standard output, and a forked child for what needs fresh process state.
#pragma once

#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/detail/PreferencesDirectoryDetail.hpp>

#include <support/EnvVarGuard.hpp>
#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

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

// Standard output (descriptor 1, where the console goes) into `file` until text() is asked.
class StdoutCapture {
public:
    explicit StdoutCapture(std::filesystem::path file) : file_(std::move(file)) {
        std::fflush(stdout);
        const int fd = ::open(file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(fd, 1);
        ::close(fd);
    }
    ~StdoutCapture() { text(); }
    std::string text() {
        if (saved_ >= 0) {
            std::fflush(stdout);
            ::dup2(saved_, 1);
            ::close(saved_);
            saved_ = -1;
        }
        return testsupport::readFile(file_);
    }

private:
    std::filesystem::path file_;
    int saved_ = ::dup(1);
};

// The failed checks of a child, one line each.
struct ChildReport {
    std::string text;
    void fail(int line, const std::string& what) {
        text += "line " + std::to_string(line) + ": " + what + "\n";
    }
};
#define STORAGE_CHILD_CHECK(report, condition) \
    ((condition) ? (void)0 : (report).fail(__LINE__, #condition))

// Runs `body` in a forked child: it starts from this process's state and changes nothing
// here (the one-time default of the preference directory above all). Failed checks, an
// escaped exception or an abnormal end of the child fail the calling test.
inline void expectInChild(const std::function<void(ChildReport&)>& body) {
    int channel[2];
    ASSERT_EQ(0, ::pipe(channel));
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        ChildReport report;
        try {
            body(report);
        } catch (const std::exception& e) {
            report.fail(0, std::string("exception: ") + e.what());
        }
        const ssize_t written = ::write(channel[1], report.text.data(), report.text.size());
        ::_exit(written == static_cast<ssize_t>(report.text.size()) ? 0 : 1);
    }
    ::close(channel[1]);
    std::string failures;
    char buffer[512];
    for (ssize_t n; (n = ::read(channel[0], buffer, sizeof buffer)) > 0;) {
        failures.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(channel[0]);
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status)) {
        failures += "the child did not end normally\n";
    }
    EXPECT_EQ("", failures) << "in a child";
}

}  // namespace storagetest

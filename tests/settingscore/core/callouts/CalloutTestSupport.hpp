// Helpers of the callout tests: the fixture library, running this test program again as a
// child with another loader path, and putting the class-wide proxies back after a test.
#pragma once

#include <platform/hlu/hlu.h>
#include <platform/hf/i18n/Conversion.hpp>
#include <settingscore/core/callouts/TRunTimeDefault.hpp>
#include <settingscore/core/callouts/TValidator.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include <sys/wait.h>

namespace callouttest {

constexpr const char* fixturePackage = "calloutfixture_functions";

// Loads the fixture by its path. Its soname is its file name, so from then on the package
// name finds it among the loaded libraries without a loader path.
inline void preloadFixture() {
    int status = -1;
    hluLoadLibrary(SETTINGSCORE_TEST_FIXTURE_DIR "/calloutfixture_functions.so", &status);
    ASSERT_EQ(0, status) << hluLastLibraryError();
}

// The error text of the Error that `invoke` raises, narrowed; "(no failure)" when it returns.
template <class Error, class Invoke>
std::string errorText(Invoke invoke) {
    try {
        invoke();
    } catch (const Error& e) {
        return hf::i18n::to_string(e.getErrorMsg());
    }
    return "(no failure)";
}

struct ChildResult {
    int exitCode;
    std::string output;
};

// Runs the tests matching `filter` of this program in a new process, with `environment`
// ("NAME=value ...") before it: LD_LIBRARY_PATH counts only when a process starts.
inline ChildResult runThisProgram(const std::string& filter, const std::string& environment) {
    const std::string command = environment + " '" +
                                std::filesystem::read_symlink("/proc/self/exe").string() +
                                "' --gtest_filter='" + filter + "' 2>&1";
    ChildResult result{-1, ""};
    FILE* child = ::popen(command.c_str(), "r");
    char buffer[4096];
    for (std::size_t n; child && (n = std::fread(buffer, 1, sizeof buffer, child)) > 0;) {
        result.output.append(buffer, n);
    }
    const int status = child ? ::pclose(child) : -1;
    result.exitCode = status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

// Puts back the host-language proxies and names no signal thread at scope exit.
class HostProxiesGuard {
public:
    HostProxiesGuard()
        : loadConfig_(settings::core::TOLVANFunctionInvoker::getLoadConfigProxy()),
          validator_(settings::core::TValidator::getTOLVANValFuncInvokingProxyName()),
          runtime_(settings::core::TRunTimeDefault::getTRunTimeProxyFname()) {}
    ~HostProxiesGuard() {
        settings::core::TOLVANFunctionInvoker::setLoadConfigProxy(loadConfig_);
        settings::core::TValidator::setTOLVANValFuncInvokingProxyName(validator_);
        settings::core::TRunTimeDefault::setTRunTimeProxyFname(runtime_);
        hluSetSignalThread(0);
    }
    HostProxiesGuard(const HostProxiesGuard&) = delete;
    HostProxiesGuard& operator=(const HostProxiesGuard&) = delete;

private:
    boost::function<void()> loadConfig_;
    settings::core::TValidator::ProxyFunction validator_;
    settings::core::TRunTimeDefault::ProxyFunction runtime_;
};

}  // namespace callouttest

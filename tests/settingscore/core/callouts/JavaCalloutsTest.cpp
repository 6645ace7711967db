#include "CalloutTestSupport.hpp"
#include "platform/hf/Threads.hpp"

#include <settingscore/core/callouts/JRunTimeDefault.hpp>
#include <settingscore/core/callouts/JValidator.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/SettingsException.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

using namespace settings::core;
using testing::HasSubstr;

namespace {

// Leaves the Java side gone, as at start.
struct JavaBridgeGuard {
    JavaBridgeGuard() { JValidator::clearFunctions(); }
    ~JavaBridgeGuard() {
        JValidator::clearFunctions();
        JRunTimeDefault::setJRuntimeDefaultProxy(JRunTimeDefault::ProxyFunction());
    }
};

const JValidator validator("pkg", "fn");

std::string validationFailure() {
    return callouttest::errorText<exception::ValidationFunctionInvokingError>(
        [] { validator.invokeValidationFunction(nullptr, "key", 1); });
}

}  // namespace

TEST(JavaCallouts, InitialiserRunsLazilyOnceUnderTheLockAndReportsItsFailureText) {
    JavaBridgeGuard guard;
    const char* const jvmNotReady = "Java virtual machine is not ready";
    EXPECT_THAT(validationFailure(), HasSubstr(jvmNotReady));
    // A failure text fails the call even when the initialiser did install the proxy.
    JValidator::setJValInitializer([] {
        JValidator::setJValProxy([](auto&&...) {});
        return std::wstring(L"no JVM here");
    });
    EXPECT_THAT(validationFailure(), HasSubstr("could not be initialized: no JVM here"));
    JValidator::clearFunctions();
    JValidator::setJValInitializer([] { return std::wstring(); });
    EXPECT_THAT(validationFailure(), HasSubstr("could not be initialized: "));

    // Threads at once: one runs the initialiser, all get through, one at a time.
    std::atomic<int> initialisations{0}, calls{0}, inside{0}, overlaps{0}, failures{0};
    JValidator::clearFunctions();
    JValidator::setJValInitializer([&] {
        ++initialisations;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        JValidator::setJValProxy([&](auto&&...) {
            overlaps += inside++ > 0 ? 1 : 0;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            --inside;
            ++calls;
        });
        return std::wstring();
    });
    hftest::onThreads(6, [&](int) { failures += validationFailure() == "(no failure)" ? 0 : 1; });
    EXPECT_EQ(1, initialisations);
    EXPECT_EQ(6, calls);
    EXPECT_EQ(0, failures);
    EXPECT_EQ(0, overlaps);
    JValidator::clearFunctions();
    EXPECT_THAT(validationFailure(), HasSubstr(jvmNotReady));
}

TEST(JavaCallouts, ProxyFailuresAreTranslatedOnceAndRecursionOnOneThreadWorks) {
    JavaBridgeGuard guard;
    std::function<void(const std::string&, const boost::any&)> body;
    JValidator::setJValProxy([&](const std::string&, const std::string&, const ConstSettingsPtr&,
                                 const std::string& key,
                                 const boost::any& value) { body(key, value); });
    // A Java validator validates a further Java-validated key on its thread; the inner refusal
    // reaches the outer caller as the inner built it.
    body = [&](const std::string& key, const boost::any& value) {
        if (key == "outer") {
            JValidator("pkg", "inner").invokeValidationFunction(nullptr, "inner", value);
        } else if (boost::any_cast<int>(value) > 3) {
            throw SettingsException("id", "too big", key);
        }
    };
    validator.invokeValidationFunction(nullptr, "outer", 2);
    try {
        validator.invokeValidationFunction(nullptr, "outer", 4);
        FAIL() << "refusal lost";
    } catch (const exception::ExceptionFromValidationFunction& e) {
        EXPECT_EQ(L"too big", e.getErrorMsg());
        EXPECT_EQ("inner", e.getKeyName());
        EXPECT_EQ("inner", e.getFunctionName());
    }
    body = [](auto&&...) { throw exception::ValidationFunctionInvokingError("f", "p", L"own"); };
    EXPECT_EQ("own", validationFailure());
    body = [](auto&&...) { throw std::runtime_error("plain"); };
    EXPECT_EQ("Unknown", validationFailure());
}

TEST(JavaCallouts, RunTimeDefaultTranslatesNothing) {
    JavaBridgeGuard guard;
    const JRunTimeDefault runTime("pkg", "fn");
    EXPECT_THROW(runTime(), boost::bad_function_call);
    JRunTimeDefault::setJRuntimeDefaultProxy(
        [](const std::string& package, const std::string& function) -> boost::any {
            if (function == "fn") {
                return std::wstring(package.begin(), package.end());
            }
            throw SettingsException("id", "from Java", "");
        });
    EXPECT_EQ(L"pkg", boost::any_cast<std::wstring>(runTime()));
    EXPECT_THROW(JRunTimeDefault("pkg", "other")(), SettingsException);
}

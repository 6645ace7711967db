#include "CalloutTestSupport.hpp"

#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/SettingsException.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>

using namespace settings::core;
using callouttest::errorText;
using testing::HasSubstr;

namespace {

const char* const notReady = "execution engine is not ready";
const char* const wrongThread = "only be invoked from the thread of the execution engine";

std::string validationFailure(const TValidator& validator, const boost::any& value = 1) {
    return errorText<exception::ValidationFunctionInvokingError>(
        [&] { validator.invokeValidationFunction(nullptr, "key", value); });
}

std::string runTimeFailure(const TRunTimeDefault& runTime) {
    return errorText<exception::RunTimeFuncInvokingError>([&] { runTime(); });
}

}  // namespace

TEST(HostLanguageCallouts, ValidatorStartsTheLanguageLazilyAndTestsTheThreadLast) {
    callouttest::HostProxiesGuard guard;
    const TValidator validator("pkg", "fn");
    TValidator::setTOLVANValFuncInvokingProxyName(TValidator::ProxyFunction());
    TOLVANFunctionInvoker::setLoadConfigProxy(boost::function<void()>());
    EXPECT_THAT(validationFailure(validator), HasSubstr(notReady));
    EXPECT_THROW(
        validator.checkConditions(),
        MessageException<TOLVAN::settings::core::ExecEngineNotReadyForProcessingTFunction>);
    int loads = 0;
    TOLVANFunctionInvoker::setLoadConfigProxy([&] { ++loads; });
    EXPECT_THAT(validationFailure(validator), HasSubstr(notReady));
    EXPECT_EQ(1, loads);

    // The load-configuration proxy installs the validator proxy; the thread test comes after
    // it, so a call off the signal thread still starts the language before it fails.
    std::vector<std::string> seen;
    TOLVANFunctionInvoker::setLoadConfigProxy([&] {
        ++loads;
        TValidator::setTOLVANValFuncInvokingProxyName(
            [&](const std::string& package, const std::string& function, const ConstSettingsPtr&,
                const std::string& key, const boost::any& value) {
                seen = {package, function, key, std::to_string(boost::any_cast<int>(value))};
            });
    });
    EXPECT_THAT(validationFailure(validator), HasSubstr(wrongThread));
    EXPECT_EQ(2, loads);
    EXPECT_TRUE(seen.empty());
    hluSetSignalThread(1);
    EXPECT_EQ("(no failure)", validationFailure(validator, 5));
    EXPECT_EQ((std::vector<std::string>{"pkg", "fn", "key", "5"}), seen);
    EXPECT_EQ(2, loads);  // the proxy is there: no more loading
}

TEST(HostLanguageCallouts, OnlyTheSignalThreadMayCall) {
    callouttest::HostProxiesGuard guard;
    int calls = 0;
    TValidator::setTOLVANValFuncInvokingProxyName([&](auto&&...) { ++calls; });
    TRunTimeDefault::setTRunTimeProxyFname(
        [&](const std::string&, const std::string&, boost::any* result) { *result = 9; });
    const TValidator validator("pkg", "fn");
    const TRunTimeDefault runTime("pkg", "fn");

    hluSetSignalThread(1);  // this thread; the other is refused
    std::string otherValidator, otherRunTime;
    std::thread([&] {
        otherValidator = validationFailure(validator);
        otherRunTime = runTimeFailure(runTime);
    }).join();
    EXPECT_THAT(otherValidator, HasSubstr(wrongThread));
    EXPECT_THAT(otherRunTime, HasSubstr(wrongThread));
    EXPECT_EQ("(no failure)", validationFailure(validator));
    EXPECT_EQ(9, boost::any_cast<int>(runTime()));

    std::thread([&] {
        hluSetSignalThread(1);  // the other thread; now this one is refused
        otherValidator = validationFailure(validator);
    }).join();
    EXPECT_EQ("(no failure)", otherValidator);
    EXPECT_THAT(validationFailure(validator), HasSubstr(wrongThread));
    EXPECT_THROW(validator.checkThreadToRun(),
                 MessageException<TOLVAN::settings::core::TOLVANFuncMustBeInvokedByExecEngine>);
    EXPECT_EQ(2, calls);
}

TEST(HostLanguageCallouts, FailuresOfTheProxiesAreTranslated) {
    callouttest::HostProxiesGuard guard;
    hluSetSignalThread(1);
    std::function<void()> raise;
    TValidator::setTOLVANValFuncInvokingProxyName([&](auto&&...) { raise(); });
    TRunTimeDefault::setTRunTimeProxyFname([&](auto&&...) { raise(); });
    const TValidator validator("pkg", "fn");
    const TRunTimeDefault runTime("pkg", "fn");

    raise = [] { throw SettingsException("id", "refused here", "key"); };
    EXPECT_EQ("refused here", errorText<exception::ExceptionFromValidationFunction>(
                                  [&] { validator.invokeValidationFunction(nullptr, "key", 1); }));
    EXPECT_EQ("refused here", runTimeFailure(runTime));
    raise = [] {
        throw exception::RuntimeFuncErrorConvertingTvArrayToAny("fn", "pkg", typeid(char));
    };
    EXPECT_THAT(runTimeFailure(runTime), HasSubstr("not convertible to a supported type"));
    raise = [] { throw std::runtime_error("plain"); };
    EXPECT_EQ("Unknown", validationFailure(validator));
    EXPECT_EQ("Unknown", runTimeFailure(runTime));

    TRunTimeDefault::setTRunTimeProxyFname(TRunTimeDefault::ProxyFunction());
    TOLVANFunctionInvoker::setLoadConfigProxy(boost::function<void()>());
    EXPECT_THAT(runTimeFailure(runTime), HasSubstr(notReady));
}

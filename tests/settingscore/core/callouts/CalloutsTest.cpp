// C callouts through real dlopen (the fixture library; the three-name search and the library's
// self-test callouts in a new process, as the loader path only counts when a process starts),
// how the variants compare, and callouts through the host's proxies: the host language (lazy
// start, signal thread) and Java (lazy initialiser under its lock); every failure translation.
#include "platform/hf/Threads.hpp"

#include <platform/hlu/hlu.h>
#include <platform/hf/i18n/Conversion.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/callouts/CalloutVariants.hpp>
#include <settingscore/core/callouts/JRunTimeDefault.hpp>
#include <settingscore/core/callouts/JValidator.hpp>
#include <settingscore/core/callouts/SelfTestCallouts.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/SettingsException.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>
#include <settingscore/treestore/boostany/Equality.hpp>
#include <settingscore/treestore/boostany/Exceptions.hpp>

#include <support/TempDir.hpp>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <tuple>

#include <sys/wait.h>

using namespace settings::core;
using testing::HasSubstr;

namespace {

constexpr const char* fixturePackage = "calloutfixture_functions";

// Loads the fixture by its path. Its soname is its file name, so from then on the package
// name finds it among the loaded libraries without a loader path.
void preloadFixture() {
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

constexpr const char* childVariable = "CALLOUTTEST_CHILD";
const std::string selfTest = "tvutil_settings_unittest_only_";

// The message of the ExceptionFromValidationFunction `function` raises for (parent, key, value).
std::wstring refusal(const std::string& function, const ConstSettingsPtr& parent,
                     const std::string& key, const boost::any& value) {
    try {
        CValidator("settingscore", function).invokeValidationFunction(parent, key, value);
    } catch (const exception::ExceptionFromValidationFunction& e) {
        return e.getErrorMsg();
    }
    return L"(accepted)";
}

const char* const notReady = "execution engine is not ready";
const char* const wrongThread = "only be invoked from the thread of the execution engine";

// The text of the ValidationFunctionInvokingError `validator` raises, or "(no failure)".
template <class V>
std::string validationFailure(const V& validator, const boost::any& value = 1) {
    return errorText<exception::ValidationFunctionInvokingError>(
        [&] { validator.invokeValidationFunction(nullptr, "key", value); });
}
std::string runTimeFailure(const TRunTimeDefault& runTime) {
    return errorText<exception::RunTimeFuncInvokingError>([&] { runTime(); });
}

// Every proxy empty and no signal thread, as at start, before and after a test.
struct ProxiesGuard {
    ProxiesGuard() { clear(); }
    ~ProxiesGuard() { clear(); }
    static void clear() {
        TOLVANFunctionInvoker::setLoadConfigProxy({});
        TValidator::setTOLVANValFuncInvokingProxyName({});
        TRunTimeDefault::setTRunTimeProxyFname({});
        JValidator::clearFunctions();
        JRunTimeDefault::setJRuntimeDefaultProxy({});
        hluSetSignalThread(0);
    }
};

}  // namespace

TEST(CalloutLibrarySearch, FindsPackagesUnderEachOfTheThreeNamesOnTheLoaderPath) {
    testsupport::TempDir temp;
    const std::filesystem::path fixture =
        std::filesystem::path(SETTINGSCORE_TEST_FIXTURE_DIR) / "calloutfixture_functions.so";
    for (const char* name : {"first.so", "libtvfirst.so", "libfirst.so", "libtvsecond.so",
                             "libsecond.so", "libthird.so"}) {
        std::filesystem::copy_file(fixture, temp.path() / name);
    }
    const std::filesystem::path output = temp.path() / "child.txt";
    const int status =
        std::system((std::string(childVariable) + "=1 LD_LIBRARY_PATH='" + temp.path().string() +
                     ":" + SETTINGSCORE_BUILD_ROOT + "/lib' '" +
                     std::filesystem::read_symlink("/proc/self/exe").string() +
                     "' --gtest_filter='CalloutChild.*' >'" + output.string() + "' 2>&1")
                        .c_str());
    const std::string text = testsupport::readFile(output);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << text;
    // Guards against a filter that matches nothing and so passes.
    EXPECT_THAT(text, HasSubstr("[  PASSED  ] 2 tests")) << text;
}

TEST(CalloutChild, ThreeNamesAreTriedInOrder) {
    if (!std::getenv(childVariable)) {
        GTEST_SKIP() << "runs in the child of CalloutLibrarySearch";
    }
    for (const auto& [package, file] : {std::pair{"elsewhere/first", "first.so"},
                                        {"second", "libtvsecond.so"},
                                        {"third", "libthird.so"}}) {
        const boost::any path = CRunTimeDefault(package, "calloutfixture_whereAmI")();
        EXPECT_EQ(file,
                  std::filesystem::path(boost::any_cast<std::wstring>(path)).filename().string());
    }
}

TEST(CalloutChild, SelfTestFunctionsAreReachedByPackageSettingscore) {
    if (!std::getenv(childVariable)) {
        GTEST_SKIP() << "runs in the child of CalloutLibrarySearch";
    }
    // The package resolves to the settings core this program already runs, not a copy; the
    // loaded function keeps its library's handle.
    const auto loaded =
        CFunctionInvoker<CValidatorSignature>("settingscore", selfTest + "colorValidator")
            .loadCFunction();
    const auto* guard = loaded.target<FuncToRunWithLibHandleGuard<CValidatorSignature>>();
    ASSERT_TRUE(guard);
    EXPECT_EQ(&tvutil_settings_unittest_only_colorValidator, guard->getFunction());
    EXPECT_EQ(hluLoadLibrary("libsettingscore.so", nullptr), guard->getLibraryHandle());

    const std::pair<const char*, boost::any> runTimes[] = {
        {"positive_red_color", std::wstring(L"red")},
        {"positive_blue_color", std::wstring(L"blue")},
        {"ConvertibleArraySize", std::wstring(L"I am a scalar")},
        {"negative_wrongArraySize", std::vector<std::wstring>{L"one", L"two", L"three"}},
        {"negative_wrongType", 5.99998999f}};  // bits 0x40BFFFEB
    for (const auto& [name, expected] : runTimes) {
        const boost::any result = CRunTimeDefault("settingscore", selfTest + "RunTime_" + name)();
        EXPECT_TRUE(treestore::boostany::isEqual(expected, result)) << name;
    }

    const ConstSettingsPtr tolvan =
        TSettings::createSettingsNode("TOLVAN", false, true, ValidatorVariant(), false);
    const ConstSettingsPtr other =
        TSettings::createSettingsNode("OTHER", false, true, ValidatorVariant(), false);
    const boost::any black = std::wstring(L"BLACK"), one = std::vector<int>{1, 7};
    const std::wstring badParent =
        L"Passed value for parent name and Expected value of parent name found unequal \n";
    const std::wstring badValue = L"Passed value and Expected value found unequal \n";
    const std::tuple<const char*, ConstSettingsPtr, const char*, boost::any, std::wstring> cases[] =
        {{"MruNumValidator", nullptr, "k", boost::any(), L"(accepted)"},
         {"colorValidator", nullptr, "k", black, L"Intentional CValidator Error Thrown\n"},
         {"prohibitBlackColorValidator", nullptr, "k", black, L"Invalid color choice: BLACK\n"},
         {"prohibitYellowColorValidator", nullptr, "k", std::wstring(L"yellow"),
          L"Invalid color choice: yellow\n"},
         {"limitMaxFontSizeTo30Validator", nullptr, "k", 31u, L"Font size is too big: 31 \n\n"},
         {"fontValidator", tolvan, "fontSizes", one, L"(accepted)"},
         {"fontValidator", other, "fontSizes", one, badParent},
         {"fontValidator", tolvan, "fontSizes", std::vector<int>{2}, badValue},
         {"fontValidator", tolvan, "fontSizes", std::vector<int>{}, badValue},
         {"fontValidator", tolvan, "fontSize", one,
          L"Passed name of key and Expected name of key found unequal\n"}};
    for (const auto& [function, parent, key, value, expected] : cases) {
        EXPECT_EQ(expected, refusal(selfTest + function, parent, key, value)) << function;
    }
    // The strict read's failure is no host exception: it passes the frame unchanged.
    EXPECT_THROW(refusal(selfTest + "limitMaxFontSizeTo30Validator", nullptr, "k", 30),
                 treestore::boostany::detail::TypeNotMatch);
}

TEST(CCallouts, ValidatorAndRunTimeDefaultResultsAndTheTranslationOfEachFailure) {
    preloadFixture();
    // A directory part of the package name is dropped.
    CValidator("some/folder/calloutfixture_functions", "calloutfixture_acceptEven")
        .invokeValidationFunction(nullptr, "count", 2);
    try {
        CValidator(fixturePackage, "calloutfixture_acceptEven")
            .invokeValidationFunction(nullptr, "count", 3);
        FAIL() << "odd value accepted";
    } catch (const exception::ExceptionFromValidationFunction& e) {
        EXPECT_EQ(L"odd value for count", e.getErrorMsg());
        EXPECT_EQ(3, boost::any_cast<int>(e.getValue()));
        EXPECT_EQ("count calloutfixture_acceptEven calloutfixture_functions",
                  e.getKeyName() + " " + e.getFunctionName() + " " + e.getPackageName());
    }

    const auto validate = [&](const std::string& package, const std::string& function) {
        return [=] { CValidator(package, function).invokeValidationFunction(nullptr, "k", 2); };
    };
    using Invoking = exception::ValidationFunctionInvokingError;
    // A message-id failure is an hf::except::IException: its `what` is its error id.
    EXPECT_THAT(errorText<exception::ExceptionFromValidationFunction>(
                    validate(fixturePackage, "calloutfixture_throwMessageId")),
                HasSubstr("DataTypeNotMatch"));
    // Missing function: catalogue text; missing library: the loader's text of the last name.
    EXPECT_THAT(errorText<Invoking>(validate(fixturePackage, "calloutfixture_none")),
                HasSubstr("The function calloutfixture_none cannot be found in the library "
                          "calloutfixture_functions"));
    EXPECT_THAT(errorText<Invoking>(validate("calloutfixture_absent", "f")),
                HasSubstr("libcalloutfixture_absent.so"));
    // Whoever raises CFunctionNotFound, the frame takes it for a missing function.
    EXPECT_THAT(
        errorText<Invoking>(validate(fixturePackage, "calloutfixture_throwFunctionNotFound")),
        HasSubstr("innerFunction"));
    // Failures outside the host's family pass unchanged.
    EXPECT_THROW(validate(fixturePackage, "calloutfixture_throwStdException")(),
                 std::runtime_error);
    EXPECT_THROW(validate("", "")(), boost::bad_function_call);

    // A run-time default gives its answer and turns every failure into one error.
    EXPECT_EQ(L"from C", boost::any_cast<std::wstring>(
                             CRunTimeDefault(fixturePackage, "calloutfixture_defaultText")()));
    EXPECT_TRUE(CRunTimeDefault(fixturePackage, "calloutfixture_defaultNothing")().empty());

    const auto fail = [](const std::string& package, const std::string& function) {
        return errorText<exception::RunTimeFuncInvokingError>(
            [=] { CRunTimeDefault(package, function)(); });
    };
    EXPECT_EQ("Unknown", fail(fixturePackage, "calloutfixture_defaultThrows"));
    EXPECT_THAT(fail(fixturePackage, "calloutfixture_none"), HasSubstr("calloutfixture_none"));
    EXPECT_THAT(fail("calloutfixture_absent", "f"), HasSubstr("libcalloutfixture_absent.so"));
}

TEST(CCallouts, VariantsCompareByKindNamesAndBelongingLevel) {
    CRunTimeDefault declared("p", "f"), user = declared;
    user.setBelongingLevel("user");
    EXPECT_FALSE(RunTimeDefaultVariant(declared) == RunTimeDefaultVariant(user));
    EXPECT_TRUE(RunTimeDefaultVariant() == RunTimeDefaultVariant());
    EXPECT_FALSE(RunTimeDefaultVariant() == RunTimeDefaultVariant(JRunTimeDefault("p", "f")));
    EXPECT_TRUE(ValidatorVariant(CValidator("p", "f")) == ValidatorVariant(CValidator("p", "f")));
    EXPECT_FALSE(ValidatorVariant(CValidator("p", "f")) == ValidatorVariant(TValidator("p", "f")));
    EXPECT_FALSE(ValidatorVariant(JValidator("p", "f")) == ValidatorVariant(JValidator("q", "f")));
}

TEST(HostLanguageCallouts, ValidatorStartsTheLanguageLazilyAndTestsTheThreadLast) {
    ProxiesGuard guard;
    const TValidator validator("pkg", "fn");
    EXPECT_THAT(validationFailure(validator), HasSubstr(notReady));
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
    EXPECT_TRUE(loads == 2 && seen.empty());
    hluSetSignalThread(1);
    EXPECT_EQ("(no failure)", validationFailure(validator, 5));
    EXPECT_EQ((std::vector<std::string>{"pkg", "fn", "key", "5"}), seen);
    EXPECT_EQ(2, loads);  // the proxy is there: no more loading
}

TEST(HostLanguageCallouts, OnlyTheSignalThreadCallsAndProxyFailuresAreTranslated) {
    ProxiesGuard guard;
    std::function<void()> raise = [] {};
    TValidator::setTOLVANValFuncInvokingProxyName([&](auto&&...) { raise(); });
    TRunTimeDefault::setTRunTimeProxyFname(
        [&](const std::string&, const std::string&, boost::any* result) {
            raise();
            *result = 9;
        });
    const TValidator validator("pkg", "fn");
    const TRunTimeDefault runTime("pkg", "fn");
    hluSetSignalThread(1);  // this thread; another is refused
    std::string otherValidator, otherRunTime;
    std::thread([&] {
        otherValidator = validationFailure(validator);
        otherRunTime = runTimeFailure(runTime);
    }).join();
    EXPECT_THAT(otherValidator, HasSubstr(wrongThread));
    EXPECT_THAT(otherRunTime, HasSubstr(wrongThread));
    EXPECT_EQ(9, boost::any_cast<int>(runTime()));

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
    TRunTimeDefault::setTRunTimeProxyFname({});
    EXPECT_THAT(runTimeFailure(runTime), HasSubstr(notReady));
}

TEST(JavaCallouts, InitialiserRunsLazilyOnceUnderTheLockAndReportsItsFailureText) {
    ProxiesGuard guard;
    const JValidator validator("pkg", "fn");
    EXPECT_THAT(validationFailure(validator), HasSubstr("Java virtual machine is not ready"));
    // A failure text fails the call even when the initialiser did install the proxy.
    JValidator::setJValInitializer([] {
        JValidator::setJValProxy([](auto&&...) {});
        return std::wstring(L"no JVM here");
    });
    EXPECT_THAT(validationFailure(validator), HasSubstr("could not be initialized: no JVM here"));

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
    hftest::onThreads(6, [&](int) { failures += validationFailure(validator) != "(no failure)"; });
    EXPECT_EQ(1, initialisations);
    EXPECT_EQ(6, calls);
    EXPECT_EQ(0, failures + overlaps);
}

TEST(JavaCallouts, ProxyFailuresAreTranslatedOnceAndRecursionOnOneThreadWorks) {
    ProxiesGuard guard;
    const JValidator validator("pkg", "fn");
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
    EXPECT_EQ("too big", errorText<exception::ExceptionFromValidationFunction>(
                             [&] { validator.invokeValidationFunction(nullptr, "outer", 4); }));
    body = [](auto&&...) { throw exception::ValidationFunctionInvokingError("f", "p", L"own"); };
    EXPECT_EQ("own", validationFailure(validator));
    body = [](auto&&...) { throw std::runtime_error("plain"); };
    EXPECT_EQ("Unknown", validationFailure(validator));

    // The run-time default translates nothing.
    const JRunTimeDefault runTime("pkg", "fn");
    EXPECT_THROW(runTime(), boost::bad_function_call);
    JRunTimeDefault::setJRuntimeDefaultProxy(
        [](const std::string&, const std::string&) -> boost::any {
            throw SettingsException("id", "from Java", "");
        });
    EXPECT_THROW(runTime(), SettingsException);
}

#include "CalloutTestSupport.hpp"

#include <settingscore/core/callouts/CalloutVariants.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <gmock/gmock.h>

#include <stdexcept>

using namespace settings::core;
using callouttest::errorText;
using callouttest::fixturePackage;
using testing::HasSubstr;

TEST(CCallouts, ValidatorAcceptsRefusesAndTranslatesEachFailureOfTheChain) {
    callouttest::preloadFixture();
    // A directory part of the package name is dropped.
    CValidator("some/folder/calloutfixture_functions", "calloutfixture_acceptEven")
        .invokeValidationFunction(nullptr, "count", 2);
    try {
        CValidator(fixturePackage, "calloutfixture_acceptEven")
            .invokeValidationFunction(nullptr, "count", 3);
        FAIL() << "odd value accepted";
    } catch (const exception::ExceptionFromValidationFunction& e) {
        EXPECT_EQ(L"odd value for count", e.getErrorMsg());
        EXPECT_EQ("count", e.getKeyName());
        EXPECT_EQ(3, boost::any_cast<int>(e.getValue()));
        EXPECT_EQ("calloutfixture_acceptEven", e.getFunctionName());
        EXPECT_EQ(fixturePackage, e.getPackageName());
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
    EXPECT_THROW(validate(fixturePackage, "calloutfixture_throwInt")(), int);
    EXPECT_THROW(validate("", "")(), boost::bad_function_call);
}

TEST(CCallouts, RunTimeDefaultGivesTheAnswerAndTurnsEveryFailureIntoOneError) {
    callouttest::preloadFixture();
    EXPECT_EQ(L"from C", boost::any_cast<std::wstring>(
                             CRunTimeDefault(fixturePackage, "calloutfixture_defaultText")()));
    EXPECT_TRUE(CRunTimeDefault(fixturePackage, "calloutfixture_defaultNothing")().empty());

    const auto fail = [](const std::string& package, const std::string& function) {
        return errorText<exception::RunTimeFuncInvokingError>(
            [=] { CRunTimeDefault(package, function)(); });
    };
    EXPECT_EQ("Unknown", fail(fixturePackage, "calloutfixture_defaultThrows"));
    EXPECT_EQ("Unknown", fail("", ""));
    EXPECT_THAT(fail(fixturePackage, "calloutfixture_none"), HasSubstr("calloutfixture_none"));
    EXPECT_THAT(fail("calloutfixture_absent", "f"), HasSubstr("libcalloutfixture_absent.so"));
}

TEST(CCallouts, LoadCFunctionKeepsTheLibraryHandleAndLoadsAfreshEachTime) {
    callouttest::preloadFixture();
    void* handle =
        hluLoadLibrary(SETTINGSCORE_TEST_FIXTURE_DIR "/calloutfixture_functions.so", nullptr);
    const CFunctionInvoker<CRunTimeDefaultSignature> invoker(fixturePackage,
                                                             "calloutfixture_defaultText");
    const auto first = invoker.loadCFunction(), second = invoker.loadCFunction();
    const auto* guard = first.target<FuncToRunWithLibHandleGuard<CRunTimeDefaultSignature>>();
    ASSERT_NE(nullptr, guard);
    EXPECT_EQ(handle, guard->getLibraryHandle());
    EXPECT_EQ(hluFindSymbolInLibrary(handle, "calloutfixture_defaultText"),
              reinterpret_cast<void*>(guard->getFunction()));
    boost::any result;
    second(&result);
    EXPECT_EQ(L"from C", boost::any_cast<std::wstring>(result));
    EXPECT_TRUE(CFunctionInvoker<CValidatorSignature>("", "").loadCFunction().empty());
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

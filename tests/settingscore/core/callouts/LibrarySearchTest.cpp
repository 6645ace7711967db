// The three-name library search and the library's own callouts, with packages found through
// the loader path. The path only counts when a process starts, so a parent test prepares the
// folders and runs the CalloutChild tests in a new process of this program.
#include "CalloutTestSupport.hpp"

#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/callouts/CRunTimeDefault.hpp>
#include <settingscore/core/callouts/CValidator.hpp>
#include <settingscore/core/callouts/SelfTestCallouts.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <support/TempDir.hpp>

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <filesystem>

using namespace settings::core;

namespace {

constexpr const char* childVariable = "CALLOUTTEST_CHILD";

std::string fileNameOf(const boost::any& path) {
    return std::filesystem::path(boost::any_cast<std::wstring>(path)).filename().string();
}

// The message of the ExceptionFromValidationFunction `validator` raises for (parent, key, value).
std::wstring refusal(const std::string& function, const ConstSettingsPtr& parent,
                     const std::string& key, const boost::any& value) {
    try {
        CValidator("settingscore", function).invokeValidationFunction(parent, key, value);
    } catch (const exception::ExceptionFromValidationFunction& e) {
        return e.getErrorMsg();
    }
    return L"(accepted)";
}

}  // namespace

TEST(CalloutLibrarySearch, FindsPackagesUnderEachOfTheThreeNamesOnTheLoaderPath) {
    testsupport::TempDir temp;
    const std::filesystem::path fixture =
        std::filesystem::path(SETTINGSCORE_TEST_FIXTURE_DIR) / "calloutfixture_functions.so";
    for (const char* name : {"first.so", "libtvfirst.so", "libfirst.so", "libtvsecond.so",
                             "libsecond.so", "libthird.so"}) {
        std::filesystem::copy_file(fixture, temp.path() / name);
    }
    const callouttest::ChildResult child = callouttest::runThisProgram(
        "CalloutChild.*", std::string(childVariable) + "=1 LD_LIBRARY_PATH='" +
                              temp.path().string() + ":" + SETTINGSCORE_BUILD_ROOT + "/lib'");
    EXPECT_EQ(0, child.exitCode) << child.output;
    // Guards against a filter that matches nothing and so passes.
    EXPECT_THAT(child.output, testing::HasSubstr("[  PASSED  ] 2 tests")) << child.output;
}

TEST(CalloutChild, ThreeNamesAreTriedInOrder) {
    if (!std::getenv(childVariable)) {
        GTEST_SKIP() << "runs in the child of CalloutLibrarySearch";
    }
    const auto whereIs = [](const std::string& package) {
        return fileNameOf(CRunTimeDefault(package, "calloutfixture_whereAmI")());
    };
    EXPECT_EQ("first.so", whereIs("elsewhere/first"));
    EXPECT_EQ("libtvsecond.so", whereIs("second"));
    EXPECT_EQ("libthird.so", whereIs("third"));
    try {
        CValidator("fourth", "f").invokeValidationFunction(nullptr, "k", boost::any());
        FAIL() << "a missing package loaded";
    } catch (const exception::ValidationFunctionInvokingError& e) {
        EXPECT_NE(std::wstring::npos, e.getErrorMsg().find(L"libfourth.so"));
    }
}

TEST(CalloutChild, SelfTestFunctionsAreReachedByPackageSettingscore) {
    if (!std::getenv(childVariable)) {
        GTEST_SKIP() << "runs in the child of CalloutLibrarySearch";
    }
    // The package resolves to the settings core this program already runs, not a copy.
    const auto loaded = CFunctionInvoker<CValidatorSignature>(
                            "settingscore", "tvutil_settings_unittest_only_colorValidator")
                            .loadCFunction();
    ASSERT_TRUE(loaded.target<FuncToRunWithLibHandleGuard<CValidatorSignature>>());
    EXPECT_EQ(&tvutil_settings_unittest_only_colorValidator,
              loaded.target<FuncToRunWithLibHandleGuard<CValidatorSignature>>()->getFunction());

    const auto runTime = [](const std::string& name) {
        return CRunTimeDefault("settingscore", "tvutil_settings_unittest_only_RunTime_" + name)();
    };
    EXPECT_EQ(L"red", boost::any_cast<std::wstring>(runTime("positive_red_color")));
    EXPECT_EQ(L"blue", boost::any_cast<std::wstring>(runTime("positive_blue_color")));
    EXPECT_EQ(L"I am a scalar", boost::any_cast<std::wstring>(runTime("ConvertibleArraySize")));
    EXPECT_EQ((std::vector<std::wstring>{L"one", L"two", L"three"}),
              boost::any_cast<std::vector<std::wstring>>(runTime("negative_wrongArraySize")));
    const float wrongType = boost::any_cast<float>(runTime("negative_wrongType"));
    std::uint32_t bits = 0;
    std::memcpy(&bits, &wrongType, sizeof bits);
    EXPECT_EQ(0x40BFFFEBu, bits);

    const std::string prefix = "tvutil_settings_unittest_only_";
    const boost::any black = std::wstring(L"BLACK"), yellow = std::wstring(L"yellow");
    EXPECT_EQ(L"(accepted)", refusal(prefix + "MruNumValidator", nullptr, "k", boost::any()));
    EXPECT_EQ(L"Intentional CValidator Error Thrown\n",
              refusal(prefix + "colorValidator", nullptr, "k", black));
    EXPECT_EQ(L"Invalid color choice: BLACK\n",
              refusal(prefix + "prohibitBlackColorValidator", nullptr, "k", black));
    EXPECT_EQ(L"(accepted)", refusal(prefix + "prohibitBlackColorValidator", nullptr, "k",
                                     std::wstring(L"black")));
    EXPECT_EQ(L"(accepted)", refusal(prefix + "prohibitYellowColorValidator", nullptr, "k", black));
    EXPECT_EQ(L"Invalid color choice: yellow\n",
              refusal(prefix + "prohibitYellowColorValidator", nullptr, "k", yellow));
    EXPECT_EQ(L"(accepted)", refusal(prefix + "limitMaxFontSizeTo30Validator", nullptr, "k", 30u));
    EXPECT_EQ(L"Font size is too big: 31 \n\n",
              refusal(prefix + "limitMaxFontSizeTo30Validator", nullptr, "k", 31u));
    // The strict read's failure is no host exception: it passes the frame unchanged.
    try {
        refusal(prefix + "limitMaxFontSizeTo30Validator", nullptr, "k", 30);
        FAIL() << "an int read as unsigned";
    } catch (const std::exception& e) {
        EXPECT_EQ(nullptr, dynamic_cast<const hf::except::IException*>(&e));
    }

    const ConstSettingsPtr tolvan =
        TSettings::createSettingsNode("TOLVAN", false, true, ValidatorVariant(), false);
    const ConstSettingsPtr other =
        TSettings::createSettingsNode("OTHER", false, true, ValidatorVariant(), false);
    const std::string font = prefix + "fontValidator";
    const boost::any one = std::vector<int>{1, 7}, two = std::vector<int>{2};
    EXPECT_EQ(L"(accepted)", refusal(font, tolvan, "fontSizes", one));
    EXPECT_THAT(refusal(font, other, "fontSizes", one), testing::HasSubstr(L"parent name"));
    EXPECT_THAT(refusal(font, nullptr, "fontSizes", one), testing::HasSubstr(L"parent name"));
    EXPECT_THAT(refusal(font, tolvan, "fontSizes", two), testing::HasSubstr(L"Passed value and"));
    EXPECT_THAT(refusal(font, tolvan, "fontSizes", std::vector<int>{}),
                testing::HasSubstr(L"Passed value and"));
    EXPECT_EQ(L"Passed name of key and Expected name of key found unequal\n",
              refusal(font, tolvan, "fontSize", one));
}

// Product nodes filled from their files on first touch: factory files then the user file, the
// files a file names, the merge rules between files, and bad files skipped with one report.
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>

#include "support/EnvVarGuard.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace loadingtest {
namespace {

namespace sc = settings::core;
using namespace sc::exception;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;

std::string document(const std::string& product, const std::string& body,
                     const std::string& attributes = " visible=\"true\"") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"" + product + "\"" +
           attributes +
           " xmlns=\"urn:lindqvare.tolvan.settings\" xsi:schemaLocation=\"urn:lindqvare.tolvan."
           "settings settings.xsd\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n" +
           body + "</settings>\n";
}

std::string intKey(const std::string& name, int value, const std::string& extra = "") {
    return "<key name=\"" + name + "\" visible=\"true\"><int32" + extra + "><value>" +
           std::to_string(value) + "</value></int32></key>\n";
}

class LoadingTest : public ::testing::Test {
protected:
    LoadingTest()
        : factoryEnv_("SETTINGS_FACTORYDIR", (dir_.path() / "factory").string()),
          userEnv_("SETTINGS_USERDIR", (dir_.path() / "user").string()) {
        std::filesystem::create_directories(dir_.path() / "user");
        sc::TSettings::reset(AnyInstanceID);
        sc::turnOffDurableSaving();
    }
    ~LoadingTest() override {
        sc::turnOnDurableSaving();
        sc::TSettings::reset(AnyInstanceID);
    }
    void factory(const std::string& relative, const std::string& text) {
        testsupport::writeFile(dir_.path() / "factory" / relative, text);
    }
    void user(const std::string& product, const std::string& text) {
        testsupport::writeFile(dir_.path() / "user" / (product + ".settings"), text);
    }
    boost::shared_ptr<sc::Settings> root() {
        return sc::Settings::getSettingsRoot(BlessedInstanceID);
    }
    int intAt(const std::string& path, const std::string& level) {
        const auto split = path.rfind('.');
        return boost::any_cast<int>(
            root()->getNodeByPath(path.substr(0, split))->getAny(path.substr(split + 1), level));
    }

    testsupport::TempDir dir_;
    testsupport::EnvVarGuard factoryEnv_;
    testsupport::EnvVarGuard userEnv_;
};

TEST_F(LoadingTest, FactoryDefinesUserAddsAndNamedFilesAreReadOnceRelativeToTheFirst) {
    // The first file names two more, one in a sub folder; that one names the first again and
    // a third, relative to the FIRST file's folder.
    factory("p/p.settings", document("p",
                                     "<additionalpath>inc/a.settings</additionalpath>\n"
                                     "<additionalpath>b.settings</additionalpath>\n" +
                                         intKey("base", 1, " maxArraySize=\"1\"")));
    factory("p/inc/a.settings", document("p",
                                         "<additionalpath>p.settings</additionalpath>\n"
                                         "<additionalpath>c.settings</additionalpath>\n" +
                                             intKey("fromA", 2)));
    factory("p/b.settings", document("p", intKey("fromB", 3)));
    factory("p/c.settings", document("p", intKey("fromC", 4)));
    factory("p/second.settings",
            document("p",
                     "<key name=\"twice\" visible=\"true\"><int32><value>10</value>"
                     "<metadata><max>10</max></metadata></int32></key>\n"));
    factory("p/first.settings",
            document("p",
                     "<key name=\"twice\" visible=\"true\"><int32><value>1</value>"
                     "<metadata><max>1</max></metadata></int32></key>\n"));
    user("p", document("p", intKey("base", 20) + intKey("userOnly", 30)));

    EXPECT_EQ(2, intAt("p.fromA", "factory"));
    EXPECT_EQ(3, intAt("p.fromB", "factory"));
    EXPECT_EQ(4, intAt("p.fromC", "factory"));
    // Two factory files define one key: the one read last (in folder order) gives both the
    // value and the definition (here its maximum).
    const int twice = intAt("p.twice", "factory");
    ASSERT_TRUE(twice == 1 || twice == 10);
    auto product = root()->getChild("p");
    if (twice == 10) {
        EXPECT_NO_THROW(product->setAny("twice", 10, "user"));
    } else {
        EXPECT_THROW(product->setAny("twice", 10, "user"), ValueIsNotInRange);
    }
    EXPECT_EQ(1, intAt("p.base", "factory"));
    EXPECT_EQ(20, intAt("p.base", "user"));
    EXPECT_EQ(20, intAt("p.base", ""));
    EXPECT_EQ(30, intAt("p.userOnly", "user")) << "a key only the user file knows is added";
    EXPECT_TRUE(root()->getChild("p")->isVisible());
}

TEST_F(LoadingTest, BadFilesAreSkippedAndReportedOnceWhileGoodOnesLoad) {
    factory("p/good.settings", document("p", intKey("k", 1) + "<settings name=\"g\"/>\n"));
    factory("p/broken.settings", "<settings name=\"p\"><unclosed>");
    factory("p/empty.settings", "");
    user("p", document("p", "<settings name=\"k\" visible=\"true\"/>\n" + intKey("u", 5)));

    auto product = root()->getChild("p");
    try {
        product->getChildren();
        FAIL() << "bad files went unreported";
    } catch (const ErrorReadingSettingsData& e) {
        EXPECT_EQ(ErrorReadingSettingsData::ProductNodeLoadingFailed, e.getErrorCode());
        const std::wstring text = e.getDetailErrorMsg();
        EXPECT_NE(std::wstring::npos, text.find(L"broken.settings\t"));
        EXPECT_NE(std::wstring::npos, text.find(L"empty.settings\t"));
        EXPECT_NE(std::wstring::npos, text.find(L"p.settings\t")) << "the user file clashes";
        EXPECT_EQ(std::wstring::npos, text.find(L"good.settings"));
    }
    // Once only; the good factory file's tree stands, the clashing user file is dropped whole.
    EXPECT_NO_THROW(product->getChildren());
    EXPECT_EQ(1, intAt("p.k", ""));
    EXPECT_FALSE(product->getChild("u"));
}

TEST_F(LoadingTest, TwoRunTimeDefaultsKeepWhatWasMergedAndMissingFilesAskForARestart) {
    const std::string withDefault =
        "<key name=\"d\" visible=\"true\"><string><runtimedefault type='C' "
        "packagename='settingscore' "
        "functionname='tvutil_settings_unittest_only_RunTime_positive_red_color'/></string></"
        "key>\n";
    factory("p/a.settings", document("p", withDefault));
    user("p", document("p", intKey("aExtra", 7) + withDefault));  // merged before the clash
    auto product = root()->getChild("p");
    EXPECT_THROW(product->getChildren(), ErrorReadingSettingsData);
    EXPECT_EQ(L"red", boost::any_cast<std::wstring>(product->getAny("d", "")));
    EXPECT_EQ(7, intAt("p.aExtra", "user")) << "the half-merged user file is kept";

    // A product whose files went away after the root was built.
    factory("gone/gone.settings", document("gone", intKey("k", 1)));
    sc::TSettings::reset(AnyInstanceID);
    auto gone = root()->getChild("gone");
    std::filesystem::remove_all(dir_.path() / "factory" / "gone");
    try {
        gone->getChildren();
        FAIL();
    } catch (const ErrorReadingSettingsData& e) {
        EXPECT_NE(std::wstring::npos, e.getDetailErrorMsg().find(L"Please restart TOLVAN"));
    }
    EXPECT_NO_THROW(gone->getChildren());
}

TEST_F(LoadingTest, TheSampleProductsLoadWithoutAComplaint) {
    sc::TSettings::setSettingsFileLocation(
        BlessedInstanceID, std::wstring(SETTINGSCORE_SOURCE_ROOT L"/examples/factory"), boost::none,
        dir_.wpath("user"));
    std::filesystem::copy(SETTINGSCORE_SOURCE_ROOT "/examples/user", dir_.path() / "user",
                          std::filesystem::copy_options::overwrite_existing);
    const auto products = root()->getChildren();
    ASSERT_GE(products.size(), 3u);
    for (const auto& product : products) {
        EXPECT_NO_THROW(product->getChildren()) << product->getName();
        EXPECT_FALSE(product->getChildren().empty()) << product->getName();
    }
}

}  // namespace
}  // namespace loadingtest

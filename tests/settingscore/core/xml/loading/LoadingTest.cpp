// Product nodes filled from their files on first touch: factory files then the user file, the
// files a file names, the merge rules between files, and bad files skipped with one report.
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>

#include "support/EnvVarGuard.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

namespace loadingtest {
namespace {

namespace sc = settings::core;
using namespace sc::exception;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;

std::string document(const std::string& product, const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"" + product +
           "\" visible=\"true\" xmlns=\"urn:lindqvare.tolvan.settings\">\n" + body +
           "</settings>\n";
}

std::string intKey(const std::string& name, int value, const std::string& metadata = "") {
    return "<key name=\"" + name + "\" visible=\"true\"><int32><value>" + std::to_string(value) +
           "</value>" + metadata + "</int32></key>\n";
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
    void file(const std::string& relative, const std::string& text) {
        testsupport::writeFile(dir_.path() / relative, text);
    }
    boost::shared_ptr<sc::Settings> product(const std::string& name) {
        return sc::Settings::getSettingsRoot(BlessedInstanceID)->getChild(name);
    }
    int intAt(const std::string& key, const std::string& level) {
        return boost::any_cast<int>(product("p")->getAny(key, level));
    }
    // "<code>: <detail>" of the failure of the product's first touch, "" when there is none.
    std::wstring firstTouchFailure(const std::string& name) {
        try {
            product(name)->getChildren();
        } catch (const ErrorReadingSettingsData& e) {
            return std::to_wstring(e.getErrorCode()) + L": " + e.getDetailErrorMsg();
        }
        return L"";
    }

    testsupport::TempDir dir_;
    testsupport::EnvVarGuard factoryEnv_;
    testsupport::EnvVarGuard userEnv_;
};

TEST_F(LoadingTest, FactoryDefinesUserAddsAndNamedFilesAreReadOnceRelativeToTheFirst) {
    // The first file names two more, one in a sub folder; that one names the first again and
    // a third, relative to the FIRST file's folder.
    const auto named = [](const std::string& path) {
        return "<additionalpath>" + path + "</additionalpath>\n";
    };
    file("factory/p/p.settings",
         document("p", named("inc/a.settings") + named("b.settings") + intKey("base", 1)));
    file("factory/p/inc/a.settings",
         document("p", named("p.settings") + named("c.settings") + intKey("fromA", 2)));
    file("factory/p/b.settings", document("p", intKey("fromB", 3)));
    file("factory/p/c.settings", document("p", intKey("fromC", 4)));
    file("factory/p/first.settings",
         document("p", intKey("twice", 1, "<metadata><max>1</max></metadata>")));
    file("factory/p/second.settings",
         document("p", intKey("twice", 10, "<metadata><max>10</max></metadata>")));
    file("user/p.settings", document("p", intKey("base", 20) + intKey("userOnly", 30)));

    EXPECT_EQ(2, intAt("fromA", "factory"));
    EXPECT_EQ(3, intAt("fromB", "factory"));
    EXPECT_EQ(4, intAt("fromC", "factory"));
    // Two factory files define one key: the one read last (in folder order) gives both the
    // value and the definition, whose maximum is that value.
    int twice = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir_.path() / "factory/p")) {
        const std::string name = entry.path().filename().string();
        twice = name == "first.settings" ? 1 : name == "second.settings" ? 10 : twice;
    }
    EXPECT_EQ(twice, intAt("twice", "factory"));
    EXPECT_NO_THROW(product("p")->setAny("twice", twice, "user"));
    EXPECT_THROW(product("p")->setAny("twice", twice + 1, "user"), ValueIsNotInRange);
    EXPECT_EQ(1, intAt("base", "factory"));
    EXPECT_EQ(20, intAt("base", ""));
    EXPECT_EQ(30, intAt("userOnly", "user")) << "a key only the user file knows is added";
    EXPECT_TRUE(product("p")->isVisible());
}

TEST_F(LoadingTest, BadFilesAreReportedOnceWhileWhatLoadedStays) {
    file("factory/p/good.settings", document("p", intKey("k", 1) + "<settings name=\"g\"/>\n"));
    file("factory/p/broken.settings", "<settings name=\"p\"><unclosed>");
    file("factory/p/empty.settings", "");
    // The user file's "k" is a group: it clashes and is held back; the rest of the file loads.
    file("user/p.settings",
         document("p", "<settings name=\"k\" visible=\"true\"/>\n" + intKey("u", 5)));
    const std::wstring report = firstTouchFailure("p");
    EXPECT_EQ(report.find(L"7: "), 0u) << report;
    for (const wchar_t* line : {L"broken.settings\t", L"empty.settings\t", L"p.settings\t"}) {
        EXPECT_NE(std::wstring::npos, report.find(line)) << line;
    }
    EXPECT_EQ(std::wstring::npos, report.find(L"good.settings"));
    EXPECT_EQ(firstTouchFailure("p"), L"");  // reported once
    EXPECT_EQ(1, intAt("k", ""));
    EXPECT_EQ(5, intAt("u", "user"));
    EXPECT_NE(std::wstring::npos, report.find(L"p.k is held back")) << report;

    // A product whose files went away after the root was built.
    file("factory/gone/gone.settings", document("gone", intKey("k", 1)));
    sc::TSettings::reset(AnyInstanceID);
    const auto gone = product("gone");
    std::filesystem::remove_all(dir_.path() / "factory" / "gone");
    EXPECT_NE(std::wstring::npos, firstTouchFailure("gone").find(L"Please restart TOLVAN"));
    EXPECT_EQ(firstTouchFailure("gone"), L"");

    // A second run-time default for a key: that key is held back, the rest of the file loads.
    const std::string withDefault =
        "<key name=\"d\" visible=\"true\"><string><runtimedefault type='C' packagename="
        "'settingscore' functionname='tvutil_settings_unittest_only_RunTime_positive_red_color'/>"
        "</string></key>\n";
    file("factory/q/a.settings", document("q", withDefault));
    file("user/q.settings", document("q", intKey("aExtra", 7) + withDefault));
    sc::TSettings::reset(AnyInstanceID);
    EXPECT_NE(firstTouchFailure("q"), L"");
    EXPECT_EQ(L"red", boost::any_cast<std::wstring>(product("q")->getAny("d", "")));
    EXPECT_EQ(7, boost::any_cast<int>(product("q")->getAny("aExtra", "user")));
}

// Each way a user file used to be lost at load: load, change one unrelated key (which saves the
// product's file), restart; every earlier user value is still served, or held back and kept in
// the file, or, for a file that does not parse, in a kept copy.
TEST_F(LoadingTest, LoadingNeverCostsAUserValue) {
    // A validator whose library is gone, and a range a newer factory file narrowed.
    file("factory/p/p.settings",
         document("p", "<validationfunc type='C' packagename='removedAddOn' functionname='f'/>" +
                           intKey("checked", 1) +
                           intKey("narrowed", 5,
                                  "<metadata><max>10</max>"
                                  "</metadata>") +
                           intKey("other", 0) + intKey("spare", 0)));
    file("user/p.settings", document("p", intKey("checked", 2) + intKey("narrowed", 50) +
                                              intKey("other", 1) + intKey("spare", 1)));
    // A file that does not parse (cut short by a crash of an older writer).
    file("factory/q/q.settings", document("q", intKey("k", 0) + intKey("other", 0)));
    const std::string truncated = document("q", intKey("k", 3)).substr(0, 120);
    file("user/q.settings", truncated);
    for (int start = 0; start < 2; ++start) {
        const std::wstring report = firstTouchFailure("p");
        EXPECT_NE(std::wstring::npos, report.find(L"p.narrowed is held back")) << report;
        EXPECT_EQ(2, intAt("checked", "user")) << "no validation function runs at load";
        EXPECT_EQ(5, intAt("narrowed", "")) << "a held-back value is not served";
        const auto status = product("p")->getProductFileStatus();
        ASSERT_EQ(1u, status.heldBack.size());
        EXPECT_EQ("p.narrowed", status.heldBack[0].path);
        product("p")->removeValue(start == 0 ? "other" : "spare", "user");  // saves the file
        EXPECT_EQ(start == 0, firstTouchFailure("q").find(L" is kept as ") != std::wstring::npos);
        product("q")->setAny("other", 4 + start, "user");
        sc::TSettings::reset(AnyInstanceID);
    }
    const std::string userText = testsupport::readFile(dir_.path() / "user/p.settings");
    EXPECT_NE(std::string::npos, userText.find("<value>50</value>")) << userText;
    const auto copies = product("q")->getProductFileStatus().keptCopies;
    ASSERT_EQ(1u, copies.size()) << "the same unreadable bytes are kept once";
    EXPECT_EQ(truncated, testsupport::readFile(copies[0]));
    EXPECT_EQ(5, boost::any_cast<int>(product("q")->getAny("other", "user")));
    // Resetting the held-back key drops what was held back.
    EXPECT_NE(L"", firstTouchFailure("p"));
    product("p")->removeValue("narrowed", "user");
    sc::TSettings::reset(AnyInstanceID);
    EXPECT_EQ(L"", firstTouchFailure("p"));
    EXPECT_EQ(5, intAt("narrowed", ""));
}

TEST_F(LoadingTest, RelativeLevelFoldersAreTakenAgainstTheFirstWorkingDirectory) {
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(dir_.path());
    file("factory/p/p.settings", document("p", intKey("k", 1)));
    {
        const testsupport::EnvVarGuard factory("SETTINGS_FACTORYDIR", "factory");
        const testsupport::EnvVarGuard user("SETTINGS_USERDIR", "./user");
        sc::TSettings::reset(AnyInstanceID);
        product("p")->setAny("k", 2, "user");
        std::filesystem::current_path(here);  // a later change of folder moves nothing
        sc::TSettings::reset(AnyInstanceID);
        EXPECT_EQ(2, intAt("k", ""));
    }
    EXPECT_TRUE(std::filesystem::exists(dir_.path() / "user/p.settings"));
}

TEST_F(LoadingTest, TheSampleProductsLoadWithoutAComplaint) {
    sc::TSettings::setSettingsFileLocation(
        BlessedInstanceID, std::wstring(SETTINGSCORE_SOURCE_ROOT L"/examples/factory"), boost::none,
        dir_.wpath("user"));
    std::filesystem::copy(SETTINGSCORE_SOURCE_ROOT "/examples/user", dir_.path() / "user",
                          std::filesystem::copy_options::overwrite_existing);
    const auto products = sc::Settings::getSettingsRoot(BlessedInstanceID)->getChildren();
    ASSERT_GE(products.size(), 3u);
    for (const auto& product : products) {
        EXPECT_NO_THROW(EXPECT_FALSE(product->getChildren().empty())) << product->getName();
    }
}

}  // namespace
}  // namespace loadingtest

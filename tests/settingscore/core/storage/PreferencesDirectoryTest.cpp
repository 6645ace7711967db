#include <settingscore/core/storage/PreferencesDirectory.hpp>

#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/storage/detail/PreferencesDirectoryDetail.hpp>

#include "StorageTestSupport.hpp"
#include "platform/hf/Threads.hpp"
#include "platform/hlu/StdoutCapture.hpp"

#include <platform/hf/i18n/Conversion.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <utility>
#include <vector>

using namespace settings::core;
using hlutest::StdoutCapture;
using storagetest::expectInChild;
using storagetest::StorageTest;
using testsupport::EnvVarGuard;
namespace stdfs = std::filesystem;

namespace {

// The argument of the RelativePathIsNotSupported that a get throws, or "no failure".
std::wstring refusedPath(bool createIfAbsent) {
    try {
        getPreferencesDirectoryUStr(createIfAbsent);
    } catch (const MessageException<TOLVAN::settings::core::RelativePathIsNotSupported>& e) {
        return e.getMessage().getArgs().at(0);
    }
    return L"no failure";
}

bool isEmptyFolder(const stdfs::path& folder) {
    return stdfs::is_directory(folder) && stdfs::is_empty(folder);
}

}  // namespace

// Each case in a child of its own: TOLVAN_PREFDIR is read once in a process's life.
TEST_F(StorageTest, SourcesAreOverrideThenEnvironmentReadOnceThenStandard) {
    const std::wstring standard = wat("config/Lindqvare/TOLVAN/V2041b");
    stdfs::create_directories(at("config"));
    expectInChild([&](int& r) {
        // Final separators of the roaming folder do not double up; a get without creation
        // makes nothing.
        EnvVarGuard slashes("XDG_CONFIG_HOME", at("config").string() + "//");
        STORAGE_CHILD_CHECK(r, getPreferencesDirectoryUStr(false) == standard);
        STORAGE_CHILD_CHECK(r, isEmptyFolder(at("config")));
        EnvVarGuard late("TOLVAN_PREFDIR", at("late").string());  // too late: ignored
        STORAGE_CHILD_CHECK(r, getDefaultPreferencesDirectoryUStr() == standard);
        setPreferencesDirectoryUStr(wat("override"));
        STORAGE_CHILD_CHECK(r, getPreferencesDirectoryUStr(false) == wat("override"));
        STORAGE_CHILD_CHECK(r, !stdfs::exists(at("override")));
        setPreferencesDirectoryUStr(L"");
        STORAGE_CHILD_CHECK(r, getPreferencesDirectoryUStr(false) == standard);
        // A relative value is taken by the set and refused by every later get.
        setPreferencesDirectory("relative/prefs");
        STORAGE_CHILD_CHECK(r, refusedPath(false) == L"relative/prefs");
        STORAGE_CHILD_CHECK(r, refusedPath(true) == L"relative/prefs");
        STORAGE_CHILD_CHECK(r, !stdfs::exists("relative"));
    });
    expectInChild([&](int& r) {
        // Set before the first get, the variable wins over the standard directory, keeps its
        // first value and yields to the override.
        EnvVarGuard env("TOLVAN_PREFDIR", at("env").string());
        STORAGE_CHILD_CHECK(r, getPreferencesDirectoryUStr(false) == wat("env"));
        EnvVarGuard changed("TOLVAN_PREFDIR", at("changed").string());
        setPreferencesDirectory(at("override").c_str());
        STORAGE_CHILD_CHECK(r, getPreferencesDirectoryUStr(false) == wat("override"));
        setPreferencesDirectoryUStr(L"");
        STORAGE_CHILD_CHECK(r, getPreferencesDirectoryUStr(false) == wat("env"));
    });
    expectInChild([&](int& r) {
        EnvVarGuard relative("TOLVAN_PREFDIR", "prefs");
        STORAGE_CHILD_CHECK(r, refusedPath(false) == L"prefs");
    });
    expectInChild([&](int& r) {
        // No XDG_CONFIG_HOME: .config below HOME, made on the way; an empty TOLVAN_PREFDIR
        // counts as unset.
        EnvVarGuard config("XDG_CONFIG_HOME", std::nullopt), env("TOLVAN_PREFDIR", "");
        STORAGE_CHILD_CHECK(
            r, getPreferencesDirectoryUStr(false) == wat("home/.config/Lindqvare/TOLVAN/V2041b"));
        STORAGE_CHILD_CHECK(r, isEmptyFolder(at("home/.config")));
    });
    expectInChild([&](int& r) {
        EnvVarGuard config("XDG_CONFIG_HOME", std::nullopt), home("HOME", std::nullopt);
        STORAGE_CHILD_CHECK(r, refusedPath(false) == L"Lindqvare/TOLVAN/V2041b");
    });
    // A TOLVAN_PREFDIR that is not there yet is made and migrated into: the trigger is the
    // creation, not where the path came from.
    testsupport::writeFile(at("previous/a.settings"), "A");
    expectInChild([&](int& r) {
        EnvVarGuard env("TOLVAN_PREFDIR", at("fresh/prefs").string());
        setUnitTestPreviousPrefDir(wat("previous"));
        STORAGE_CHILD_CHECK(r, getPreferencesDirectoryUStr(true) == wat("fresh/prefs"));
        STORAGE_CHILD_CHECK(r, testsupport::readFile(at("fresh/prefs/a.settings")) == "A");
    });
}

TEST_F(StorageTest, ReleaseDirectoriesLocalDirectoryAndRoot) {
    setPreferencesDirectoryUStr(wat("override"));  // ignored by the standard directory
    EXPECT_EQ(wat("config/Lindqvare/TOLVAN/V2041b"), getStandardPreferencesDirectoryUStr());
    EXPECT_EQ(wat("config/Lindqvare/TOLVAN/V2041a"), getPreviousPreferencesDirectoryUStr());
    EXPECT_TRUE(isEmptyFolder(at("config")));  // the roaming folder is made, nothing below
    setUnitTestPreviousPrefDir(wat("elsewhere"));
    EXPECT_EQ(wat("elsewhere"), getPreviousPreferencesDirectoryUStr());
    setUnitTestPreviousPrefDir(L"");
    EXPECT_EQ(wat("config/Lindqvare/TOLVAN/V2041a"), getPreviousPreferencesDirectoryUStr());

    // The local directory is made at once, and nothing is migrated into it.
    setUnitTestPreviousPrefDir(wat("previous"));
    testsupport::writeFile(at("previous/a.settings"), "A");
    EXPECT_EQ(wat("data/Lindqvare/TOLVAN/V2041b"), getLocalSettingsDirectoryUStr());
    EXPECT_TRUE(isEmptyFolder(at("data/Lindqvare/TOLVAN/V2041b")));

    const std::wstring installed = tolvanRootUStr();
    EXPECT_TRUE(stdfs::equivalent(stdfs::path(installed), SETTINGSCORE_BUILD_ROOT));
    EXPECT_EQ(L"", detail::setTolvanRootOverride(L"/opt/r\u00E9"));
    EXPECT_EQ(std::string("/opt/r\xC3\xA9"), tolvanRoot());
    EXPECT_EQ(L"/opt/r\u00E9", detail::setTolvanRootOverride(L""));
    EXPECT_EQ(installed, tolvanRootUStr());
}

TEST_F(StorageTest, CreationStatusAndWhatFollowsIt) {
    testsupport::writeFile(at("previous/a.settings"), "A");
    testsupport::writeFile(at("file"), "not a folder");
    setUnitTestPreviousPrefDir(wat("previous"));
    EXPECT_EQ(-1, detail::createPreferencesDirectory(L""));
    EXPECT_EQ(-1, detail::createPreferencesDirectory(wat("file/sub")));
    EXPECT_EQ(-1, detail::createPreferencesDirectory(wat("file")));
    EXPECT_EQ(0, detail::createPreferencesDirectory(wat("made/deep")));
    EXPECT_EQ(1, detail::createPreferencesDirectory(wat("made/deep/")));

    // Only a directory that this get made is migrated into: an existing one, empty and
    // without a timestamp file, stays so, and a half-done one is not made good.
    stdfs::create_directories(at("existing"));
    setPreferencesDirectoryUStr(wat("existing"));
    EXPECT_EQ(wat("existing"), getPreferencesDirectoryUStr(true));
    EXPECT_TRUE(isEmptyFolder(at("existing")));
    setPreferencesDirectoryUStr(wat("new/prefs"));
    EXPECT_EQ(wat("new/prefs"), getPreferencesDirectoryUStr(true));
    EXPECT_EQ("A", testsupport::readFile(at("new/prefs/a.settings")));
    stdfs::remove(at("new/prefs/creation.timestamp"));
    testsupport::writeFile(at("previous/b.settings"), "B");
    EXPECT_EQ(wat("new/prefs"), getPreferencesDirectoryUStr(true));
    EXPECT_FALSE(stdfs::exists(at("new/prefs/b.settings")) ||
                 stdfs::exists(at("new/prefs/creation.timestamp")));

    // Cannot be made: a warning, an empty answer, no failure; without creation just the path.
    setPreferencesDirectoryUStr(wat("file/prefs"));
    StdoutCapture capture;
    EXPECT_EQ(L"", getPreferencesDirectoryUStr(true));
    EXPECT_EQ("Warning: failed to create preference directory " + at("file/prefs").string() +
                  ".\nCheck directory permissions.",
              capture.text());
    EXPECT_EQ(wat("file/prefs"), getPreferencesDirectoryUStr(false));

    // An empty directory without a failed creation: the other warning, and no migration.
    for (int status : {0, 1}) {
        StdoutCapture nullWarning;
        std::wstring dir;
        EXPECT_NO_THROW(detail::completePreferencesDirectory(status, dir));
        EXPECT_EQ("Warning: failed to create NULL preference directory. \n", nullWarning.text());
    }
}

TEST_F(StorageTest, FirstGetsAtOnceAllSeeOneCompleteMigration) {
    for (int i = 0; i < 200; ++i) {
        testsupport::writeFile(
            at("previous/sub" + std::to_string(i % 7) + "/f" + std::to_string(i) + ".settings"),
            std::string(1000, 'x'));
    }
    setUnitTestPreviousPrefDir(wat("previous"));
    setPreferencesDirectoryUStr(wat("prefs"));
    // Whichever get made the directory, the others wait for its copy instead of returning a
    // directory that exists but is half filled.
    std::atomic<int> complete{0};
    hftest::onThreads(4, [&](int) {
        const stdfs::path dir(getPreferencesDirectoryUStr(true));
        complete +=
            stdfs::exists(dir / "creation.timestamp") && stdfs::exists(dir / "sub3/f199.settings");
    });
    EXPECT_EQ(4, complete.load());
}

TEST(PrefDirPathHelpers, FinalSeparatorsGoAllOfThem) {
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L"/a/b", L"/a/b"}, {L"/a/b///", L"/a/b"},   {L"/", L""}, {L"///", L""}, {L"", L""},
        {L"a//b", L"a//b"}, {L"\u00E9/", L"\u00E9"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.second, stripFinalPathNameSepUStr(c.first));
        EXPECT_EQ(hf::i18n::to_string(c.second),
                  StripFinalPathNameSep(hf::i18n::to_string(c.first)));
    }
}

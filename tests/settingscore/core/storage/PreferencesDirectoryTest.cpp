// The preference directory: where it comes from, its creation and the warnings, gets racing
// for its first creation, and the migration of the previous release's preferences into it.
#include <settingscore/core/storage/PreferencesDirectory.hpp>

#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/storage/detail/Migration.hpp>

#include "StorageTestSupport.hpp"
#include "platform/hf/Threads.hpp"
#include "platform/hlu/StdoutCapture.hpp"

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <numeric>
#include <set>
#include <string>
#include <utility>

#include <sys/stat.h>

using namespace settings::core;
using hlutest::StdoutCapture;
using storagetest::expectInChild;
using storagetest::StorageTest;
using testsupport::EnvVarGuard;
using testsupport::readFile;
using testsupport::writeFile;
namespace stdfs = std::filesystem;
namespace msg = TOLVAN::settings::core;

namespace {

// The argument of the RelativePathIsNotSupported that a get throws, or "no failure".
std::wstring refusedPath(bool createIfAbsent) {
    try {
        getPreferencesDirectoryUStr(createIfAbsent);
    } catch (const MessageException<msg::RelativePathIsNotSupported>& e) {
        return e.getMessage().getArgs().at(0);
    }
    return L"no failure";
}

bool isEmptyFolder(const stdfs::path& folder) {
    return stdfs::is_directory(folder) && stdfs::is_empty(folder);
}

// Every entry below `root`, relative, folders with a final "/", sorted, each with a space.
std::string treeOf(const stdfs::path& root) {
    std::set<std::string> entries;
    for (const auto& entry : stdfs::recursive_directory_iterator(root)) {
        entries.insert(entry.path().lexically_relative(root).string() +
                       (entry.is_directory() ? "/ " : " "));
    }
    return std::accumulate(entries.begin(), entries.end(), std::string());
}

}  // namespace

// Each case in a child of its own: TOLVAN_PREFDIR is read once in a process's life.
TEST_F(StorageTest, SourcesAreOverrideThenEnvironmentReadOnceThenStandard) {
    const std::wstring standard = wat("config/Lindqvare/TOLVAN/V2041b");
    stdfs::create_directories(at("config"));
    expectInChild([&](int& r) {
        // Final separators do not double up; a get without creation makes nothing.
        EnvVarGuard slashes("XDG_CONFIG_HOME", at("config").string() + "//");
        STORAGE_CHILD_CHECK(r, getPreferencesDirectoryUStr(false) == standard);
        STORAGE_CHILD_CHECK(r, isEmptyFolder(at("config")));
        // A relative value is taken by the set and refused by every later get.
        setPreferencesDirectory("relative/prefs");
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
        // No XDG_CONFIG_HOME: .config below HOME; an empty TOLVAN_PREFDIR counts as unset.
        EnvVarGuard config("XDG_CONFIG_HOME", std::nullopt), env("TOLVAN_PREFDIR", "");
        STORAGE_CHILD_CHECK(
            r, getPreferencesDirectoryUStr(false) == wat("home/.config/Lindqvare/TOLVAN/V2041b"));
    });
    expectInChild([&](int& r) {
        EnvVarGuard config("XDG_CONFIG_HOME", std::nullopt), home("HOME", std::nullopt);
        STORAGE_CHILD_CHECK(r, refusedPath(false) == L"Lindqvare/TOLVAN/V2041b");
    });
}

TEST_F(StorageTest, CreationStatusAndWhatFollowsIt) {
    // The local directory is made at once, and the previous release's is not migrated into it.
    EXPECT_EQ(wat("config/Lindqvare/TOLVAN/V2041a"), getPreviousPreferencesDirectoryUStr());
    writeFile(at("config/Lindqvare/TOLVAN/V2041a/a.settings"), "A");
    EXPECT_TRUE(isEmptyFolder(getLocalSettingsDirectoryUStr()));
    EXPECT_EQ(wat("data/Lindqvare/TOLVAN/V2041b"), getLocalSettingsDirectoryUStr());
    writeFile(at("previous/a.settings"), "A");
    writeFile(at("file"), "not a folder");
    setUnitTestPreviousPrefDir(wat("previous"));
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
    EXPECT_EQ("A", readFile(at("new/prefs/a.settings")));
    stdfs::remove(at("new/prefs/creation.timestamp"));
    writeFile(at("previous/b.settings"), "B");
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
    StdoutCapture nullWarning;
    std::wstring dir;
    EXPECT_NO_THROW(detail::completePreferencesDirectory(0, dir));
    EXPECT_EQ("Warning: failed to create NULL preference directory. \n", nullWarning.text());
}

TEST_F(StorageTest, FirstGetsAtOnceAllSeeOneCompleteMigration) {
    for (int i = 0; i < 200; ++i) {
        writeFile(
            at("previous/sub" + std::to_string(i % 7) + "/f" + std::to_string(i) + ".settings"),
            std::string(1000, 'x'));
    }
    setUnitTestPreviousPrefDir(wat("previous"));
    setPreferencesDirectoryUStr(wat("prefs"));
    // Whichever get made the directory, the others wait for its copy to be complete.
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
        {L"/a/b///", L"/a/b"}, {L"///", L""}, {L"a//b", L"a//b"}, {L"\u00E9/", L"\u00E9"}};
    for (const auto& [path, stripped] : cases) {
        EXPECT_EQ(stripped, stripFinalPathNameSepUStr(path));
        EXPECT_EQ(hf::i18n::to_string(stripped), StripFinalPathNameSep(hf::i18n::to_string(path)));
    }
}

TEST_F(StorageTest, NewDirectoryGetsThePreviousTreeWithoutExcludedFiles) {
    const std::string bytes("<?xml?>\r\n\0\xFF binary", 19);
    writeFile(at("prev/Product.settings"), bytes);
    writeFile(at("prev/creation.timestamp"), "old stamp");
    for (const char* name :
         {"sub/toolbox_cache_v2.mat", "shortcuts.xml.bak", "pkc.cache.3", "my_shortcuts_ja.xml",
          "onlyexcluded/compopts.xml", "extbopts.bat", "pkgbuildopts.v2"}) {
        writeFile(at("prev") / name, "excluded");
    }
    for (const char* name : {"sub/kept.txt", "toolbox_cache/keep.txt", "Shortcuts.xml",
                             "COMPOPTS.bat", "a/b/c/deep.settings"}) {
        writeFile(at("prev") / name, "kept");
    }
    stdfs::create_directories(at("prev/emptydir"));
    // A dangling link has gone away as far as the copy can tell: skipped, no failure.
    stdfs::create_symlink(at("nowhere"), at("prev/gone.settings"));
    setUnitTestPreviousPrefDir(wat("prev"));
    setPreferencesDirectoryUStr(wat("new/prefs"));

    ASSERT_EQ(wat("new/prefs"), getPreferencesDirectoryUStr(true));
    EXPECT_EQ(
        "COMPOPTS.bat Product.settings Shortcuts.xml a/ a/b/ a/b/c/ a/b/c/deep.settings "
        "creation.timestamp emptydir/ onlyexcluded/ sub/ sub/kept.txt toolbox_cache/ "
        "toolbox_cache/keep.txt ",
        treeOf(at("new/prefs")));
    EXPECT_EQ(bytes, readFile(at("new/prefs/Product.settings")));
    EXPECT_EQ("", readFile(at("new/prefs/creation.timestamp")));  // truncated after the copy

    // Nothing to copy: stamped all the same.
    setUnitTestPreviousPrefDir(wat("never-there"));
    setPreferencesDirectoryUStr(wat("fresh"));
    EXPECT_EQ(wat("fresh"), getPreferencesDirectoryUStr(true));
    EXPECT_EQ("creation.timestamp ", treeOf(at("fresh")));
    // The order of the checks: nothing to copy comes before a missing target.
    EXPECT_TRUE(detail::migratePreferences(wat("never-there"), wat("missing"), false));
    EXPECT_THROW(detail::migratePreferences(wat("prev"), wat("missing"), false),
                 MessageException<msg::PreferenceDirectoryNotExist>);
}

// A FIFO fails its copy deterministically, for root too. Whatever the walk's order, the
// migration stops there, says so on the console, throws, and is never tried again.
TEST_F(StorageTest, FailedMigrationIsToldThrownAndNotRetried) {
    writeFile(at("prev/a.settings"), "A");
    ASSERT_EQ(0, ::mkfifo(at("prev/pipe.settings").c_str(), 0600));
    setUnitTestPreviousPrefDir(wat("prev"));
    setPreferencesDirectoryUStr(wat("prefs"));

    StdoutCapture capture;
    try {
        getPreferencesDirectoryUStr(true);
        ADD_FAILURE() << "the failed migration went unnoticed";
    } catch (const MessageException<msg::ErrorMigratePrefsBetweenReleases>& e) {
        EXPECT_EQ((std::vector<std::wstring>{L"V2041a", L"V2041b"}), e.getMessage().getArgs());
    }
    const auto told = hf::i18n::MessageCatalog::get_message(
        msg::ErrorOverwriteFileInPrefDir(wat("prefs/pipe.settings")), hf::i18n::HfLocale::global());
    EXPECT_EQ(hf::i18n::to_string(told) + "\n", capture.text());
    EXPECT_FALSE(stdfs::exists(at("prefs/creation.timestamp")));

    stdfs::remove(at("prefs/a.settings"));
    EXPECT_EQ(wat("prefs"), getPreferencesDirectoryUStr(true));
    EXPECT_TRUE(stdfs::is_empty(at("prefs")));

    // A timestamp that cannot be made fails after the copy.
    writeFile(at("prev2/creation.timestamp/inside"), "a folder of the timestamp's name");
    writeFile(at("prev2/a.settings"), "A");
    setUnitTestPreviousPrefDir(wat("prev2"));
    setPreferencesDirectoryUStr(wat("prefs2"));
    EXPECT_THROW(getPreferencesDirectoryUStr(true),
                 MessageException<msg::ErrorCreatePreferenceDirectoryTimeStamp>);
    EXPECT_EQ("A", readFile(at("prefs2/a.settings")));
}

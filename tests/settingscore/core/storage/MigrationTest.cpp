#include <settingscore/core/storage/detail/Migration.hpp>

#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>

#include "StorageTestSupport.hpp"
#include "platform/hlu/StdoutCapture.hpp"

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include <sys/stat.h>

using namespace settings::core;
using hlutest::StdoutCapture;
using storagetest::StorageTest;
using testsupport::readFile;
using testsupport::writeFile;
namespace stdfs = std::filesystem;
namespace msg = TOLVAN::settings::core;

namespace {

// Every entry below `root` as a relative path, folders with a final "/", sorted, each
// followed by a space.
std::string treeOf(const stdfs::path& root) {
    std::set<std::string> entries;
    for (const auto& entry : stdfs::recursive_directory_iterator(root)) {
        entries.insert(entry.path().lexically_relative(root).string() +
                       (entry.is_directory() ? "/" : ""));
    }
    std::string tree;
    for (const std::string& entry : entries) {
        tree += entry + " ";
    }
    return tree;
}

// The line the console shows for `message`.
std::string consoleLine(const hf::resource::BaseMsgID& message) {
    return hf::i18n::to_string(
               hf::i18n::MessageCatalog::get_message(message, hf::i18n::HfLocale::global())) +
           "\n";
}

}  // namespace

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
    EXPECT_EQ("kept", readFile(at("new/prefs/a/b/c/deep.settings")));
    EXPECT_EQ("", readFile(at("new/prefs/creation.timestamp")));  // truncated after the copy
}

TEST_F(StorageTest, NothingToMigrateStillStampsTheDirectory) {
    // The previous directory is the new one, as text: no copy, a timestamp all the same.
    setUnitTestPreviousPrefDir(wat("same"));
    setPreferencesDirectoryUStr(wat("same"));
    EXPECT_EQ(wat("same"), getPreferencesDirectoryUStr(true));
    EXPECT_EQ("creation.timestamp ", treeOf(at("same")));
    setUnitTestPreviousPrefDir(wat("never-there"));
    setPreferencesDirectoryUStr(wat("fresh"));
    EXPECT_EQ(wat("fresh"), getPreferencesDirectoryUStr(true));
    EXPECT_EQ("creation.timestamp ", treeOf(at("fresh")));

    // The order of the checks: nothing to copy comes before a missing target.
    writeFile(at("source/a.settings"), "A");
    EXPECT_TRUE(detail::migratePreferences(wat("x"), wat("x"), false));
    EXPECT_TRUE(detail::migratePreferences(L"", wat("missing"), false));
    EXPECT_TRUE(detail::migratePreferences(wat("never-there"), wat("missing"), false));
    try {
        detail::migratePreferences(wat("source"), wat("missing"), false);
        ADD_FAILURE() << "no failure for a missing target";
    } catch (const MessageException<msg::PreferenceDirectoryNotExist>& e) {
        EXPECT_EQ(wat("missing"), e.getMessage().getArgs().at(0));
    }
    EXPECT_FALSE(stdfs::exists(at("missing")));
}

// A FIFO fails its copy deterministically, for root too: only regular files are copied.
// Whatever the walk's order, the migration stops there, says so on the console, throws, and
// is never tried again for that directory.
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
    EXPECT_EQ(consoleLine(msg::ErrorOverwriteFileInPrefDir(wat("prefs/pipe.settings"))),
              capture.text());
    EXPECT_FALSE(stdfs::exists(at("prefs/creation.timestamp")));

    stdfs::remove(at("prefs/a.settings"));
    EXPECT_EQ(wat("prefs"), getPreferencesDirectoryUStr(true));
    EXPECT_TRUE(stdfs::is_empty(at("prefs")));
}

TEST_F(StorageTest, TimestampThatCannotBeMadeFailsAfterTheCopy) {
    writeFile(at("prev/creation.timestamp/inside"), "a folder of the timestamp's name");
    writeFile(at("prev/a.settings"), "A");
    setUnitTestPreviousPrefDir(wat("prev"));
    setPreferencesDirectoryUStr(wat("prefs"));
    try {
        getPreferencesDirectoryUStr(true);
        ADD_FAILURE() << "no failure for the timestamp file";
    } catch (const MessageException<msg::ErrorCreatePreferenceDirectoryTimeStamp>& e) {
        EXPECT_EQ((std::vector<std::wstring>{wat("prefs/creation.timestamp"),
                                             hf::i18n::to_ustring(std::strerror(EISDIR))}),
                  e.getMessage().getArgs());
    }
    EXPECT_EQ("A", readFile(at("prefs/a.settings")));
}

TEST_F(StorageTest, CopyOfOneFileWithAndWithoutOverwrite) {
    writeFile(at("from/a.settings"), "new");
    writeFile(at("to/a.settings"), "old");
    ASSERT_EQ(0, ::mkfifo(at("from/pipe").c_str(), 0600));
    EXPECT_FALSE(detail::copyPreferenceFile(L"", wat("to"), false));
    EXPECT_FALSE(detail::copyPreferenceFile(wat("from/a.settings"), L"", false));
    EXPECT_TRUE(detail::copyPreferenceFile(wat("from/missing"), wat("to"), false));

    StdoutCapture refused;
    EXPECT_FALSE(detail::copyPreferenceFile(wat("from/a.settings"), wat("to"), false));
    EXPECT_EQ(consoleLine(msg::ErrorOverwriteFileInPrefDir(wat("to/a.settings"))), refused.text());
    EXPECT_EQ("old", readFile(at("to/a.settings")));

    StdoutCapture replaced;
    EXPECT_TRUE(detail::copyPreferenceFile(wat("from/a.settings"), wat("to"), true));
    EXPECT_EQ("", replaced.text());
    EXPECT_EQ("new", readFile(at("to/a.settings")));

    // The second attempt fails as well: the longer message, with the failure's own text.
    StdoutCapture failed;
    EXPECT_FALSE(detail::copyPreferenceFile(wat("from/pipe"), wat("to"), true));
    const std::string text = failed.text();
    const std::size_t what = text.find("copy_file failed for");
    ASSERT_NE(std::string::npos, what) << text;
    EXPECT_EQ(consoleLine(msg::ErrorCopyFileInPrefDir(
                  wat("from/pipe"), wat("to/pipe"),
                  hf::i18n::to_ustring(text.substr(what, text.size() - what - 1)))),
              text);
}

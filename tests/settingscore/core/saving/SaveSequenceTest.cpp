// The save sequence on real files: first saves, the replace by rename with its move aside, the
// give-ups that leave the old file whole and are recorded for the product, and what each change
// writes.
#include "SavingFixture.hpp"

#include "platform/hf/ChildProcess.hpp"

namespace savingtest {
namespace {

TEST_F(SavingTest, ReplaceMovesTheOldFileAsideAndGiveUpsLeaveItWholeAndRecorded) {
    auto group = mountProduct();  // the first save: no target yet, one rename
    ASSERT_TRUE(std::filesystem::exists(userFile()));
    EXPECT_EQ(1, callsOf("rename"));

    // A rename that refuses an existing target: rename, fail, move aside, rename.
    files_.forgetCalls();
    files_.failCall(1, false, std::errc::file_exists, "rename");
    group->setAny("a", std::wstring(L"new text"), "user");
    EXPECT_EQ(3, callsOf("rename"));
    EXPECT_NE(std::string::npos, testsupport::readFile(userFile()).find("new text"));
    EXPECT_EQ(0, leftovers()) << "no .previous and no temp folder remain";
    EXPECT_EQ("", saveFailure());

    group->setAny("b", 1, "user");
    const std::string saved = testsupport::readFile(userFile());
    const auto expectOldFileAnd = [&](int inMemory, const std::string& failure) {
        EXPECT_EQ(saved, testsupport::readFile(userFile()));
        EXPECT_EQ(inMemory, boost::any_cast<int>(group->getAny("b", "")));
        EXPECT_EQ(0, leftovers());
        EXPECT_EQ(failure, saveFailure());
    };
    // A full disk half way through the temporary file never replaces a whole one.
    files_.failCall(1, false, std::errc::no_space_on_device, "writeFile");
    EXPECT_NO_THROW(group->setAny("b", 2, "user"));
    expectOldFileAnd(2, "write the temporary file: No space left on device");

    // A rename that never succeeds: 1000 passes (with their pauses), then the old file stays.
    files_.forgetCalls();
    files_.failCall(1, true, std::errc::device_or_resource_busy, "rename");
    EXPECT_NO_THROW(group->setAny("b", 3, "user"));
    EXPECT_EQ(2000, callsOf("rename"));
    expectOldFileAnd(3, "replace the file: Device or resource busy");
    files_.failNothing();

    // The next good save clears the record.
    group->setAny("b", 4, "user");
    EXPECT_EQ("", saveFailure());

    // A target that cannot be opened for writing (a folder in its place).
    std::filesystem::remove(userFile());
    std::filesystem::create_directory(userFile());
    EXPECT_NO_THROW(group->setAny("b", 5, "user"));
    EXPECT_TRUE(std::filesystem::is_directory(userFile()));
    EXPECT_EQ(5, boost::any_cast<int>(group->getAny("b", "")));
    EXPECT_EQ("open the file for writing: Is a directory", saveFailure());
    EXPECT_EQ(0, leftovers());

    // A read-only file, for a user who is not root (root writes through the mode bits).
    std::filesystem::remove(userFile());
    group->setAny("b", 6, "user");
    std::filesystem::permissions(
        userFile(), std::filesystem::perms::owner_read | std::filesystem::perms::others_read);
    std::filesystem::permissions(dir_.path(), std::filesystem::perms::all);
    std::filesystem::permissions(dir_.path() / "user", std::filesystem::perms::all);
    const std::string readOnly = testsupport::readFile(userFile());
    EXPECT_EQ(0, hftest::runInChild([&] {
                  if (!hftest::dropRootPrivileges()) {
                      return 1;
                  }
                  group->setAny("b", 7, "user");
                  return saveFailure() == "open the file for writing: Permission denied" ? 0 : 2;
              }));
    EXPECT_EQ(readOnly, testsupport::readFile(userFile()));
}

TEST_F(SavingTest, EachChangeWritesItsProductFileAndRemovalsDeleteOrRewriteIt) {
    sc::turnOnDurableSaving();
    auto group = mountProduct();
    files_.forgetCalls();
    const sc::KeyValuePair batch[] = {{group->getChild("a"), 1}, {group->getChild("b"), 2}};
    group->setValues(batch, batch + 2, "user", true);
    EXPECT_EQ(2, callsOf("rename")) << "one write per changed key";
    group->setValues(batch, batch + 2, "user", true);
    group->setAny("a", 5, "session");
    EXPECT_EQ(2, callsOf("rename")) << "nothing changed, or a level without a file";

    group->removeKey("b");
    EXPECT_EQ(3, callsOf("rename"));
    EXPECT_EQ(std::string::npos, testsupport::readFile(userFile()).find("\"b\""));
    root()->removeNode("p");
    EXPECT_FALSE(std::filesystem::exists(userFile()));
    EXPECT_EQ(3, callsOf("rename"));

    // Saving off: memory only, files left alone, removals included.
    auto other = mountProduct();
    const std::string saved = testsupport::readFile(userFile());
    sc::turnOffSettingsSaving();
    other->setAny("a", 9, "user");
    root()->removeNode("p");
    EXPECT_EQ(saved, testsupport::readFile(userFile()));
}

}  // namespace
}  // namespace savingtest

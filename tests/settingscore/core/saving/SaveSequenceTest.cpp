// The save sequence on real files: first saves, the replace by rename with its move aside, the
// silent give-ups that leave the old file whole, and what each change writes.
#include "SavingFixture.hpp"

#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Operations.hpp>

#include <atomic>
#include <cerrno>

namespace savingtest {
namespace {

using hf::filesystem::upath;

// Calls of the replaced operations, which are plain function pointers.
std::atomic<int> renames{0}, asides{0};

// A rename counted in `calls` that fails always, or only when the target exists (as some
// systems' renames do).
template <std::atomic<int>& calls, bool always, bool whenTargetExists>
void countedRename(const upath& from, const upath& to) {
    ++calls;
    if (always || (whenTargetExists && hf::filesystem::exists(to))) {
        throw hf::filesystem::FileExistsError("rename", from, to,
                                              std::error_code(EEXIST, std::generic_category()));
    }
    hf::filesystem::rename(from, to);
}

TEST_F(SavingTest, ReplaceMovesTheOldFileAsideAndGiveUpsLeaveItWhole) {
    renames = asides = 0;
    Access::setTempToTarget(&countedRename<renames, false, true>);
    Access::setTargetToPrevious(&countedRename<asides, false, false>);
    auto group = mountProduct();  // the first save: no target yet, one rename
    ASSERT_TRUE(std::filesystem::exists(userFile()));
    EXPECT_EQ(1, renames.load());
    EXPECT_EQ(0, asides.load());

    group->setAny("a", std::wstring(L"new text"), "user");
    EXPECT_EQ(3, renames.load()) << "rename, fail, move aside, rename";
    EXPECT_EQ(1, asides.load());
    EXPECT_NE(std::string::npos, testsupport::readFile(userFile()).find("new text"));
    EXPECT_EQ(0, leftovers()) << "no .previous and no temp folder remain";

    // The silent give-ups: the old file stays whole, memory runs ahead of it.
    group->setAny("b", 1, "user");
    const std::string saved = testsupport::readFile(userFile());
    const auto expectOldFileAnd = [&](int inMemory) {
        EXPECT_EQ(saved, testsupport::readFile(userFile()));
        EXPECT_EQ(inMemory, boost::any_cast<int>(group->getAny("b", "")));
        EXPECT_EQ(0, leftovers());
    };

    // A short temporary file (as when the disk fills up half way) never replaces a whole one.
    Access::setWrite([](const sc::SettingsLevel*, sc::SettingsPtr&, const sc::detail::ReadAccess&,
                        const upath& file) {
        testsupport::writeFile(file.string(), "<?xml");
        return false;
    });
    EXPECT_NO_THROW(group->setAny("b", 2, "user"));
    expectOldFileAnd(2);
    Access::setWrite(write_);

    // A rename that never succeeds: 1000 passes (with their pauses), then silence.
    renames = 0;
    Access::setTempToTarget(&countedRename<renames, true, false>);
    Access::setTargetToPrevious(&countedRename<renames, true, false>);
    EXPECT_NO_THROW(group->setAny("b", 3, "user"));
    EXPECT_EQ(2000, renames.load());
    expectOldFileAnd(3);

    // A target that cannot be opened for writing (a folder in its place): skipped in silence.
    std::filesystem::remove(userFile());
    std::filesystem::create_directory(userFile());
    EXPECT_NO_THROW(group->setAny("b", 4, "user"));
    EXPECT_TRUE(std::filesystem::is_directory(userFile()));
    EXPECT_EQ(4, boost::any_cast<int>(group->getAny("b", "")));
    EXPECT_EQ(0, leftovers());
}

TEST_F(SavingTest, EachChangeWritesItsProductFileAndRemovalsDeleteOrRewriteIt) {
    renames = 0;  // one rename into place per save
    Access::setTempToTarget(&countedRename<renames, false, false>);
    sc::turnOnDurableSaving();
    auto group = mountProduct();
    EXPECT_EQ(1, renames.load());
    const sc::KeyValuePair batch[] = {{group->getChild("a"), 1}, {group->getChild("b"), 2}};
    group->setValues(batch, batch + 2, "user", true);
    EXPECT_EQ(3, renames.load()) << "one write per changed key";
    group->setValues(batch, batch + 2, "user", true);
    group->setAny("a", 5, "session");
    EXPECT_EQ(3, renames.load()) << "nothing changed, or a level without a file";

    group->removeKey("b");
    EXPECT_EQ(4, renames.load());
    EXPECT_EQ(std::string::npos, testsupport::readFile(userFile()).find("\"b\""));
    root()->removeNode("p");
    EXPECT_FALSE(std::filesystem::exists(userFile()));
    EXPECT_EQ(4, renames.load());

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

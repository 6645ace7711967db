// The save sequence on real files: first saves, the replace by rename with its move aside, the
// silent give-ups that leave the old file whole, and what each change writes.
#include "SavingFixture.hpp"

#include <settingscore/core/detail/FileLayerHooks.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Operations.hpp>

#include <atomic>
#include <cerrno>

namespace savingtest {
namespace {

std::atomic<int> writes{0};
std::atomic<int> renames{0};
std::atomic<int> asides{0};
sc::detail::WriteSettingsToFile realWrite = nullptr;

bool countingWrite(const sc::SettingsLevel* level, sc::SettingsPtr& object,
                   const sc::detail::ReadAccess& lock, const hf::filesystem::upath& file) {
    ++writes;
    return realWrite(level, object, lock, file);
}

// A rename that, like some systems', refuses to replace an existing target.
void renameRefusingTargets(const hf::filesystem::upath& from, const hf::filesystem::upath& to) {
    ++renames;
    if (hf::filesystem::exists(to)) {
        throw hf::filesystem::FileExistsError("rename", from, to,
                                              std::error_code(EEXIST, std::generic_category()));
    }
    hf::filesystem::rename(from, to);
}

void countingMoveAside(const hf::filesystem::upath& from, const hf::filesystem::upath& to) {
    ++asides;
    hf::filesystem::rename(from, to);
}

void alwaysFailingRename(const hf::filesystem::upath& from, const hf::filesystem::upath&) {
    ++renames;
    throw hf::filesystem::FsysExceptionBase("rename", from,
                                            std::error_code(EBUSY, std::generic_category()));
}

bool shortWrite(const sc::SettingsLevel*, sc::SettingsPtr&, const sc::detail::ReadAccess&,
                const hf::filesystem::upath& file) {
    testsupport::writeFile(file.string(), "<?xml");
    return false;  // as when the disk fills up half way
}

TEST_F(SavingTest, ReplaceMovesTheOldFileAsideWhenARenameRefusesAnExistingTarget) {
    renames = 0;
    asides = 0;
    Access::setTempToTarget(&renameRefusingTargets);
    Access::setTargetToPrevious(&countingMoveAside);
    auto group = mountProduct();  // the first save: no target yet, one rename
    ASSERT_TRUE(std::filesystem::exists(userFile()));
    EXPECT_EQ(1, renames.load());
    EXPECT_EQ(0, asides.load());

    group->setAny("a", std::wstring(L"new text"), "user");
    EXPECT_EQ(3, renames.load()) << "rename, fail, move aside, rename";
    EXPECT_EQ(1, asides.load());
    EXPECT_NE(std::string::npos, testsupport::readFile(userFile()).find("new text"));
    EXPECT_TRUE(leftovers().empty()) << "no .previous and no temp folder remain";
}

TEST_F(SavingTest, SilentGiveUpsKeepTheOldFileWholeAndMemoryAhead) {
    auto group = mountProduct();
    group->setAny("a", 1, "user");
    const std::string saved = testsupport::readFile(userFile());

    // A short temporary file never replaces a whole one.
    Access::setWrite(&shortWrite);
    EXPECT_NO_THROW(group->setAny("a", 2, "user"));
    EXPECT_EQ(saved, testsupport::readFile(userFile()));
    EXPECT_EQ(2, boost::any_cast<int>(group->getAny("a", "")));
    EXPECT_TRUE(leftovers().empty());
    Access::setWrite(write_);

    // A rename that never succeeds: 1000 passes (with their pauses), then silence.
    renames = 0;
    Access::setTempToTarget(&alwaysFailingRename);
    Access::setTargetToPrevious(&alwaysFailingRename);
    EXPECT_NO_THROW(group->setAny("a", 3, "user"));
    EXPECT_EQ(2000, renames.load());
    EXPECT_EQ(saved, testsupport::readFile(userFile()));
    EXPECT_TRUE(leftovers().empty());
    Access::setTempToTarget(tempToTarget_);
    Access::setTargetToPrevious(targetToPrevious_);

    // A target that cannot be opened for writing (a folder in its place): skipped in silence.
    std::filesystem::remove(userFile());
    std::filesystem::create_directory(userFile());
    EXPECT_NO_THROW(group->setAny("a", 4, "user"));
    EXPECT_TRUE(std::filesystem::is_directory(userFile()));
    EXPECT_EQ(4, boost::any_cast<int>(group->getAny("a", "")));
    EXPECT_TRUE(leftovers().empty());
}

TEST_F(SavingTest, EachChangeWritesItsProductFileAndRemovalsDeleteOrRewriteIt) {
    writes = 0;
    realWrite = write_;
    Access::setWrite(&countingWrite);
    sc::turnOnDurableSaving();
    auto group = mountProduct();
    EXPECT_EQ(1, writes.load());

    const sc::KeyValuePair batch[] = {{group->getChild("a"), 1}, {group->getChild("b"), 2}};
    group->setValues(batch, batch + 2, "user", true);
    EXPECT_EQ(3, writes.load()) << "one write per changed key";
    group->setValues(batch, batch + 2, "user", true);
    EXPECT_EQ(3, writes.load()) << "nothing changed, nothing written";
    group->setAny("a", 5, "session");
    EXPECT_EQ(3, writes.load()) << "the session level has no file";

    boost::dynamic_pointer_cast<sc::TSettings>(group)->removeKey("b");
    EXPECT_EQ(4, writes.load());
    EXPECT_EQ(std::string::npos, testsupport::readFile(userFile()).find("\"b\""));
    boost::dynamic_pointer_cast<sc::TSettings>(root())->removeNode("p");
    EXPECT_FALSE(std::filesystem::exists(userFile()));
    EXPECT_EQ(4, writes.load());

    // Saving off: memory only, files left alone, removals included.
    auto other = mountProduct();
    const std::string saved = testsupport::readFile(userFile());
    sc::turnOffSettingsSaving();
    other->setAny("a", 9, "user");
    boost::dynamic_pointer_cast<sc::TSettings>(root())->removeNode("p");
    EXPECT_EQ(saved, testsupport::readFile(userFile()));
}

TEST_F(SavingTest, FactoryLevelSavesAreRefused) {
    auto group = mountProduct();
    const auto* factory =
        sc::SettingsLevelManager::getSettingsLevelManagerInstance()->getSettingsLevelByName(
            "factory");
    sc::detail::SharedLock lock(sc::detail::rootMutex());
    EXPECT_THROW(sc::levelSaver(factory, group, lock),
                 sc::exception::CantModifyValuesOnReadOnlyLevel);
}

}  // namespace
}  // namespace savingtest

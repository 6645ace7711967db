// Roots and instances: one tree per instance built once, products loaded once, resets, the
// context registry's calls, per-instance directories, and the shutdown without a user folder.
#include "TreeFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include <platform/tvutil/contextmgr/ContextRegistry.hpp>

#include "platform/hf/ChildProcess.hpp"
#include "platform/hf/Threads.hpp"

#include <fcntl.h>
#include <queue>
#include <set>

namespace treetest {
namespace {

using namespace settings::core::exception;
using tvutil::contextmgr::InstanceID;
using tvutil::contextmgr::UndefinedInstanceID;

TEST_F(TreeTest, RacingThreadsBuildOneRootAndLoadEachProductOnceOnFirstTouch) {
    shipProduct("alpha");
    shipProduct("Beta");
    // The same product whatever the case: its user file is found and read as Beta's.
    testsupport::writeFile(dir_.path() / "user" / "beta.settings",
                           "<settings name=\"beta\" xmlns=\"urn:lindqvare.tolvan.settings\"><key "
                           "name=\"x\"><int32><value>5</value></int32></key></settings>");
    shipProduct("gamma");

    std::vector<boost::shared_ptr<Settings>> roots(8);
    hftest::onThreads(8, [&roots](int i) {
        roots[i] = Settings::getSettingsRoot(BlessedInstanceID);
        roots[i]->getNodeByPath("alpha.x");
    });
    EXPECT_EQ(1u, std::set<boost::shared_ptr<Settings>>(roots.begin(), roots.end()).size());
    EXPECT_EQ(1, factoryReads()) << "only alpha was touched, and loaded once";

    std::vector<std::string> names;
    for (const auto& product : roots[0]->getChildren()) {
        names.push_back(product->getName());
        EXPECT_TRUE(product->isVisible()) << "an untouched product answers from its files";
    }
    // One "beta" product whatever the case; children come in byte order of their names.
    EXPECT_EQ((std::vector<std::string>{"Beta", "alpha", "gamma"}), names);
    EXPECT_EQ(3, factoryReads());
    EXPECT_EQ(5, boost::any_cast<int>(roots[0]->getChild("Beta")->getAny("x", "")));
    // Its saves go back to the file that was read, never to a second spelling.
    roots[0]->getChild("Beta")->setAny("x", 6, "user");
    EXPECT_EQ((std::vector<std::string>{"user/beta.settings"}), savedFiles());
    EXPECT_FALSE(std::filesystem::exists(dir_.path() / "user" / "Beta.settings"));
}

TEST_F(TreeTest, ResetAndTheContextRegistryReplaceAndDropInstanceStates) {
    auto first = root();
    makeNode("p", false, first);
    // Whatever id is named, the blessed instance is the one reset; the old tree still works.
    EXPECT_EQ(first, TSettings::reset(InstanceID(42)));
    EXPECT_FALSE(Settings::getSettingsRoot(BlessedInstanceID));
    EXPECT_FALSE(TSettings::reset(BlessedInstanceID));
    EXPECT_TRUE(first->getChild("p"));
    std::queue<boost::shared_ptr<const settings::core::SettingsEvent>> queue;
    queue.push(nullptr);
    TSettings::eventQueue(queue, BlessedInstanceID);  // no root: the caller's queue stays
    EXPECT_EQ(1u, queue.size());
    EXPECT_FALSE(TSettings::reset(AnyInstanceID));  // root already gone; state replaced
    auto second = root();
    ASSERT_TRUE(second);
    EXPECT_TRUE(second->getChild("p")) << "attached, it was saved, and the new root lists it";

    // Recorded events that name the root must not keep a reset tree alive.
    boost::weak_ptr<Settings> gone = second;
    second->setRecordEvents(true);
    makeNode("q", false, second);
    second.reset();
    TSettings::reset(AnyInstanceID);
    EXPECT_TRUE(gone.expired());

    // The registry's calls: another instance's entry goes with it, the blessed one stays.
    auto& registry = tvutil::contextmgr::ContextRegistry::getInstance();
    registry.createContext(InstanceID(7));
    ASSERT_TRUE(Settings::getSettingsRoot(InstanceID(7)));
    registry.destroyContext(InstanceID(7));
    EXPECT_FALSE(Settings::getSettingsRoot(InstanceID(7)));
    EXPECT_TRUE(TSettings::createEmptySettingsFor(InstanceID(7)));
    EXPECT_FALSE(registry.createContext(BlessedInstanceID)) << "the blessed state exists already";
    registry.destroyContext(BlessedInstanceID);
    EXPECT_FALSE(root());
    EXPECT_FALSE(TSettings::createEmptySettingsFor(BlessedInstanceID));
}

TEST_F(TreeTest, InstanceDirectoriesResolveOnceWhileLevelPathsFollowTheEnvironment) {
    const auto* user = settings::core::SettingsLevelManager::getSettingsLevelManagerInstance()
                           ->getSettingsLevelByName("user");
    EXPECT_EQ(dir_.wpath("user"), TSettings::getUserDir(BlessedInstanceID));
    testsupport::EnvVarGuard moved("SETTINGS_USERDIR", (dir_.path() / "elsewhere").string());
    EXPECT_EQ(dir_.wpath("elsewhere"), user->levelRootPath());
    EXPECT_EQ(dir_.wpath("user"), TSettings::getUserDir(BlessedInstanceID));

    // The host's overrides: all three stated at once, absent ones cleared and resolved anew.
    TSettings::setSettingsFileLocation(BlessedInstanceID, std::wstring(L"/f"), std::wstring(L"/w"),
                                       std::wstring(L"/u"));
    EXPECT_EQ(L"/w", TSettings::getWorkgroupDir(BlessedInstanceID));
    EXPECT_EQ(L"/u", TSettings::getUserDir(BlessedInstanceID));
    TSettings::setSettingsFileLocation(BlessedInstanceID, boost::none, boost::none, boost::none);
    EXPECT_EQ(dir_.wpath("elsewhere"), TSettings::getUserDir(BlessedInstanceID));
    EXPECT_EQ(L"", TSettings::getWorkgroupDir(BlessedInstanceID));
    EXPECT_EQ(L"", TSettings::getFactoryDir(UndefinedInstanceID)) << "no active instance";
}

TEST_F(TreeTest, AnInstanceWithoutAUserDirectoryEndsTheProcessWhenItsRootIsBuilt) {
    const std::string log = (dir_.path() / "stderr.txt").string();
    testsupport::writeFile(dir_.path() / "file", "x");
    EXPECT_EQ(1, hftest::runInChild([&] {
                  ::dup2(::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
                  // A preference folder that can never be made: its parent is a regular file.
                  ::unsetenv("SETTINGS_USERDIR");
                  settings::core::setPreferencesDirectoryUStr(dir_.wpath("file/prefs"));
                  Settings::getSettingsRoot(BlessedInstanceID);
                  return 0;
              }));
    EXPECT_NE(std::string::npos, testsupport::readFile(log).find(
                                     "TOLVAN Shutdown : Failed To Create Preference Directory.\n"));

    // Through the host's entry point the same failure is an exception.
    TSettings::setSettingsFileLocation(BlessedInstanceID, boost::none, boost::none, std::wstring());
    EXPECT_THROW(
        TSettings::getUserDir(BlessedInstanceID),
        settings::core::MessageException<TOLVAN::settings::core::SettingsUserDirectoryNotExist>);
}

}  // namespace
}  // namespace treetest

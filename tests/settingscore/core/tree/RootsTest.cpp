// Roots and instances: one tree per instance built once, resets, the context registry's calls,
// per-instance directories, and the host's entry points.
#include "TreeFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include <platform/tvutil/contextmgr/ContextRegistry.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>
#include <queue>
#include <thread>

namespace treetest {
namespace {

using namespace settings::core::exception;
using settings::core::Settings;
using tvutil::contextmgr::ContextRegistry;
using tvutil::contextmgr::InstanceID;
using tvutil::contextmgr::UndefinedInstanceID;

TEST_F(TreeTest, ConcurrentFirstCallsBuildOneRootWithOneEmptyNodePerProduct) {
    shipProduct("alpha");
    shipProduct("Beta");
    testsupport::writeFile(dir_.path() / "user" / "beta.settings", "<x/>");  // same product
    testsupport::writeFile(dir_.path() / "user" / "gamma.settings", "<x/>");

    std::vector<boost::shared_ptr<Settings>> roots(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < roots.size(); ++i) {
        threads.emplace_back(
            [&roots, i] { roots[i] = Settings::getSettingsRoot(BlessedInstanceID); });
    }
    for (auto& t : threads) {
        t.join();
    }
    for (const auto& r : roots) {
        EXPECT_EQ(roots[0], r);
    }
    std::vector<std::string> names;
    for (const auto& product : roots[0]->getChildren()) {
        names.push_back(product->getName());
        EXPECT_FALSE(product->isVisible()) << "product nodes start without a visibility";
        EXPECT_TRUE(product->getChildren().empty());
        EXPECT_TRUE(boost::dynamic_pointer_cast<TSettings>(product)->isProductNode());
    }
    // One "beta" product whatever the case; children come in byte order of their names.
    EXPECT_EQ((std::vector<std::string>{"Beta", "alpha", "gamma"}), names);
    EXPECT_TRUE(roots[0]->isVisible());
    EXPECT_EQ("root", roots[0]->getName());
    EXPECT_EQ(3, loads_.load()) << "each product loaded once, on first touch";
}

TEST_F(TreeTest, ResetAlwaysHitsTheBlessedInstanceAndAnyInstallsAFreshState) {
    auto first = root();
    ASSERT_TRUE(first);
    makeNode("p", false)->setParent(first);

    // Whatever id is named, the blessed instance is the one reset; the old tree still works.
    EXPECT_EQ(first, TSettings::reset(InstanceID(42)));
    EXPECT_FALSE(Settings::getSettingsRoot(BlessedInstanceID));
    EXPECT_FALSE(TSettings::reset(BlessedInstanceID));
    EXPECT_TRUE(first->getChild("p"));
    EXPECT_EQ(BlessedInstanceID, first->getInstanceId());

    EXPECT_FALSE(TSettings::reset(AnyInstanceID));  // root already gone; state replaced
    auto second = root();
    ASSERT_TRUE(second);
    EXPECT_NE(first, second);
    EXPECT_FALSE(second->getChild("p"));

    // Recorded events that name the root must not keep a reset tree alive.
    boost::weak_ptr<Settings> gone = second;
    second->setRecordEvents(true);
    makeNode("q", false)->setParent(second);
    second.reset();
    TSettings::reset(AnyInstanceID);
    EXPECT_TRUE(gone.expired());
}

TEST_F(TreeTest, ContextRegistryCreatesAndDestroysInstanceStates) {
    auto& registry = ContextRegistry::getInstance();
    const InstanceID second(7);
    EXPECT_FALSE(Settings::getSettingsRoot(second));
    registry.createContext(second);
    auto secondRoot = Settings::getSettingsRoot(second);
    ASSERT_TRUE(secondRoot);
    EXPECT_EQ(second, secondRoot->getInstanceId());
    EXPECT_NE(root(), secondRoot);

    // The wildcard ids follow the active instance.
    registry.activateContext(second);
    EXPECT_EQ(secondRoot, Settings::getSettingsRoot(UndefinedInstanceID));
    registry.destroyContext(second);
    EXPECT_FALSE(Settings::getSettingsRoot(second));
    EXPECT_FALSE(TSettings::createEmptySettingsFor(BlessedInstanceID));
    EXPECT_TRUE(TSettings::createEmptySettingsFor(second)) << "its entry was erased";

    // The blessed instance: its root goes, its entry stays and answers null from now on.
    EXPECT_FALSE(registry.createContext(BlessedInstanceID)) << "the blessed state exists already";
    ASSERT_TRUE(root());
    registry.destroyContext(BlessedInstanceID);
    EXPECT_FALSE(root());
    EXPECT_FALSE(TSettings::createEmptySettingsFor(BlessedInstanceID));
}

TEST_F(TreeTest, InstanceDirectoriesResolveOnceWhileLevelPathsFollowTheEnvironment) {
    const auto manager = settings::core::SettingsLevelManager::getSettingsLevelManagerInstance();
    const auto* user = manager->getSettingsLevelByName("user");
    const std::wstring first = dir_.wpath("user");
    EXPECT_EQ(first, TSettings::getUserDir(BlessedInstanceID));
    EXPECT_EQ(dir_.wpath("factory"), TSettings::getFactoryDir(BlessedInstanceID));

    testsupport::EnvVarGuard moved("SETTINGS_USERDIR", (dir_.path() / "elsewhere").string());
    EXPECT_EQ(dir_.wpath("elsewhere"), user->levelRootPath());
    EXPECT_EQ(first, TSettings::getUserDir(BlessedInstanceID));

    // The host's overrides: all three stated at once, absent ones cleared and resolved anew.
    TSettings::setSettingsFileLocation(BlessedInstanceID, std::wstring(L"/f"), std::wstring(L"/w"),
                                       std::wstring(L"/u"));
    EXPECT_EQ(L"/f", TSettings::getFactoryDir(BlessedInstanceID));
    EXPECT_EQ(L"/w", TSettings::getWorkgroupDir(BlessedInstanceID));
    EXPECT_EQ(L"/u", TSettings::getUserDir(BlessedInstanceID));
    TSettings::setSettingsFileLocation(BlessedInstanceID, boost::none, boost::none, boost::none);
    EXPECT_EQ(dir_.wpath("elsewhere"), TSettings::getUserDir(BlessedInstanceID));
    EXPECT_EQ(L"", TSettings::getWorkgroupDir(BlessedInstanceID));
    // No active instance: the wildcard maps below the blessed one.
    EXPECT_EQ(L"", TSettings::getFactoryDir(UndefinedInstanceID));
}

TEST_F(TreeTest, AnInstanceWithoutAUserDirectoryEndsTheProcessWhenItsRootIsBuilt) {
    const std::string log = (dir_.path() / "stderr.txt").string();
    const pid_t child = ::fork();
    if (child == 0) {
        const int fd = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ::dup2(fd, 2);
        // A preference folder that can never be made: its parent is a regular file.
        testsupport::writeFile(dir_.path() / "file", "x");
        ::unsetenv("SETTINGS_USERDIR");
        settings::core::setPreferencesDirectoryUStr(dir_.wpath("file/prefs"));
        Settings::getSettingsRoot(BlessedInstanceID);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(1, WEXITSTATUS(status));
    EXPECT_NE(std::string::npos, testsupport::readFile(log).find(
                                     "TOLVAN Shutdown : Failed To Create Preference Directory.\n"));

    // Through the host's entry point the same failure is an exception.
    TSettings::setSettingsFileLocation(BlessedInstanceID, boost::none, boost::none, std::wstring());
    EXPECT_THROW(
        TSettings::getUserDir(BlessedInstanceID),
        settings::core::MessageException<TOLVAN::settings::core::SettingsUserDirectoryNotExist>);
}

TEST_F(TreeTest, HostEntryPointsMakeStandaloneNodesAndDrainQueues) {
    SettingsProperties properties;
    properties.readOnly = true;
    auto key = TSettings::createSetting("k", true, properties);
    EXPECT_TRUE(key->isVisible());
    EXPECT_TRUE(key->isKey());
    EXPECT_TRUE(key->isReadOnly());
    EXPECT_FALSE(key->isOnTree());
    EXPECT_EQ(UndefinedInstanceID, key->getInstanceId());
    properties.hidden = true;
    EXPECT_FALSE(TSettings::createSetting("h", false, properties)->isVisible());
    auto node =
        TSettings::createSettingsNode("n", false, false, settings::core::ValidatorVariant(), false);
    EXPECT_FALSE(node->isVisible());
    EXPECT_FALSE(node->isReadOnly());
    EXPECT_NE(node->getNodeId().toString(), key->getNodeId().toString());

    EXPECT_NO_THROW(TSettings::validateSettingOrGroupName("fontSize_2"));
    EXPECT_THROW(TSettings::validateSettingOrGroupName("font.size"), InvalidSettingOrGroupName);
    EXPECT_THROW(TSettings::validateSettingOrGroupName("2fonts"), InvalidSettingOrGroupName);

    // No root (reset): the caller's queue is left alone. With a root it is swapped.
    std::queue<boost::shared_ptr<const settings::core::SettingsEvent>> queue;
    queue.push(nullptr);
    TSettings::reset(BlessedInstanceID);
    TSettings::eventQueue(queue, BlessedInstanceID);
    EXPECT_EQ(1u, queue.size());
    TSettings::reset(AnyInstanceID);
    root()->setRecordEvents(true);
    EXPECT_TRUE(root()->isRecordingEvents());
    TSettings::eventQueue(queue, BlessedInstanceID);
    EXPECT_TRUE(queue.empty());
    TSettings::eventQueue(queue, BlessedInstanceID);
    EXPECT_EQ(1u, queue.size()) << "the swap handed the caller's entry to the root";
}

}  // namespace
}  // namespace treetest

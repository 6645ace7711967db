// The table of levels, their root paths from the environment, and what each level's folder
// lists as products and product files.
#include <settingscore/core/storage/LevelDirectories.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include "StorageTestSupport.hpp"

#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

using namespace settings::core;
using storagetest::StorageTest;
using testsupport::EnvVarGuard;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;
using Names = std::vector<std::string>;
using Paths = std::vector<std::wstring>;

namespace {

const SettingsLevel& session = SettingsLevelManager::getSettingsLevelObjs()[0];
const SettingsLevel& user = SettingsLevelManager::getSettingsLevelObjs()[1];
const SettingsLevel& factory = SettingsLevelManager::getSettingsLevelObjs()[2];

template <class T>
std::vector<T> sorted(std::vector<T> items) {
    std::sort(items.begin(), items.end());
    return items;
}

// Every case ends without a root or directory overrides of any instance.
class LevelDirectoriesTest : public StorageTest {
protected:
    ~LevelDirectoriesTest() override { TSettings::reset(AnyInstanceID); }

    // A fresh root of the blessed instance with these factory and user directories.
    boost::shared_ptr<SettingsImplRoot> rootWith(const std::string& factory,
                                                 const std::string& user) {
        TSettings::reset(AnyInstanceID);
        TSettings::setSettingsFileLocation(BlessedInstanceID, wat(factory), boost::none, wat(user));
        return boost::dynamic_pointer_cast<SettingsImplRoot>(
            Settings::getSettingsRoot(BlessedInstanceID));
    }
};

}  // namespace

TEST(SettingsLevelTable, OrderAndLookUpRules) {
    const auto manager = SettingsLevelManager::getSettingsLevelManagerInstance();
    EXPECT_EQ((Names{"session", "user", "factory"}), manager->getAllLevelNames());
    EXPECT_EQ("factory", SettingsLevelManager::getLastLevelName());
    EXPECT_EQ(&user, manager->getSettingsLevelByName("user"));
    EXPECT_TRUE(!session.canHaveFile() && session.levelRootPath().empty());
    // "factory" answers writable although nothing can be changed there.
    EXPECT_FALSE(manager->isWritableLevel("session") || factory.canBeModified());
    EXPECT_TRUE(manager->isWritableLevel("user") && manager->isWritableLevel("factory"));
    for (const char* unknown : {"workgroup", "User", "user "}) {
        EXPECT_FALSE(manager->isValidLevel(unknown) || manager->isWritableLevel(unknown) ||
                     manager->getSettingsLevelByName(unknown))
            << unknown;
    }
}

TEST_F(StorageTest, LevelRootPathsFollowTheEnvironment) {
    // While SETTINGS_USERDIR is set the preference directory is left alone (not even made).
    setPreferencesDirectoryUStr(wat("prefs"));
    {
        EnvVarGuard userDir("SETTINGS_USERDIR", at("one").string());
        EXPECT_EQ(wat("one"), user.levelRootPath());
    }
    EXPECT_FALSE(std::filesystem::exists(at("prefs")));
    EXPECT_EQ(wat("prefs"), user.levelRootPath());  // unset: made on the way
    EXPECT_TRUE(std::filesystem::is_directory(at("prefs")));

    // SETTINGS_FACTORYDIR, else "toolbox" below the root; empty counts as unset. A relative one is
    // made absolute against the working directory of its first reading, for good.
    detail::setTolvanRootOverride(wat("root/"));
    EXPECT_EQ(wat("root/toolbox"), factory.levelRootPath());
    {
        EnvVarGuard empty("SETTINGS_FACTORYDIR", std::string());
        EXPECT_EQ(wat("root/toolbox"), factoryLevelRootPath());
        EnvVarGuard set("SETTINGS_FACTORYDIR", "relative/as/it/stands/");
        const std::filesystem::path here = std::filesystem::current_path();
        EXPECT_EQ((here / "relative/as/it/stands/").wstring(), factory.levelRootPath());
        std::filesystem::current_path(temp_.path());
        EXPECT_EQ((here / "relative/as/it/stands/").wstring(), factoryLevelRootPath());
        std::filesystem::current_path(here);
    }
    EXPECT_EQ(L"", workgroupLevelRootPath());  // no fallback
}

TEST_F(LevelDirectoriesTest, ProductsAndTheirFilesAtEachLevel) {
    for (const char* file :
         {"f/alpha/a.settings", "f/alpha/e.v2.settings", "f/alpha/c.SETTINGS",
          "f/alpha/d.settings.bak", "f/alpha/dir.settings/x", "f/gridpool/g.settings",
          "f/Mixed_Case9/m.settings", "f/Beta/b.settings", "f/loose.settings",
          // not products: a digit first, a hyphen, a character above 127, no settings file
          "f/9lives/x.settings", "f/has-hyphen/x.settings", "f/caf\xC3\xA9/x.settings",
          "f/empty_product/readme.txt",
          // at the user level the name rule applies too: "gridpool" lists as "swarmtools"
          "u/beta.settings", "u/gridpool.settings", "u/swarmtools.settings", "u/two.dots.settings",
          "u/CAPS.SETTINGS", "u/user_only.settings", "u/dir.settings/x"}) {
        testsupport::writeFile(at(file), "");
    }
    const boost::shared_ptr<SettingsImplRoot> root = rootWith("f", "u");
    ASSERT_TRUE(root);

    EXPECT_EQ((Names{"Beta", "Mixed_Case9", "alpha", "swarmtools"}),
              sorted(productNamesAtLevel(factory, root)));
    EXPECT_EQ((Names{"beta", "swarmtools", "swarmtools", "two.dots", "user_only"}),
              sorted(productNamesAtLevel(user, root)));
    EXPECT_TRUE(productNamesAtLevel(session, root).empty());
    // The union: the factory level first, so its "Beta" stays; ordered regardless of case.
    EXPECT_EQ((Names{"alpha", "Beta", "Mixed_Case9", "swarmtools", "two.dots", "user_only"}),
              collectProductNames(root));

    EXPECT_EQ((Paths{wat("f/alpha/a.settings"), wat("f/alpha/e.v2.settings")}),
              sorted(productSettingsFilesAtLevel("alpha", factory, root)));
    EXPECT_EQ(Paths{wat("f/gridpool/g.settings")},
              productSettingsFilesAtLevel("swarmtools", factory, root));
    EXPECT_EQ(Paths{wat("u/swarmtools.settings")},  // no mapping on the way in
              productSettingsFilesAtLevel("swarmtools", user, root));
    EXPECT_TRUE(productSettingsFilesAtLevel("empty_product", factory, root).empty() &&
                productSettingsFilesAtLevel("alpha", user, root).empty() &&
                productSettingsFilesAtLevel("alpha", session, root).empty());

    // Missing directories list nothing; so does a root without state (null).
    EXPECT_TRUE(collectProductNames(rootWith("none-f", "none-u")).empty() &&
                collectProductNames(nullptr).empty());
}

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

template <class T>
std::vector<T> sorted(std::vector<T> items) {
    std::sort(items.begin(), items.end());
    return items;
}

// Every case starts and ends without a root or directory overrides of any instance.
class LevelDirectoriesTest : public StorageTest {
protected:
    LevelDirectoriesTest() { TSettings::reset(AnyInstanceID); }
    ~LevelDirectoriesTest() override { TSettings::reset(AnyInstanceID); }

    // A fresh root of the blessed instance with these factory and user directories.
    boost::shared_ptr<SettingsImplRoot> rootWith(const std::string& factory,
                                                 const std::string& user) {
        TSettings::reset(AnyInstanceID);
        TSettings::setSettingsFileLocation(BlessedInstanceID, wat(factory), boost::none, wat(user));
        return boost::dynamic_pointer_cast<SettingsImplRoot>(
            Settings::getSettingsRoot(BlessedInstanceID));
    }

    const SettingsLevel& session = SettingsLevelManager::getSettingsLevelObjs()[0];
    const SettingsLevel& user = SettingsLevelManager::getSettingsLevelObjs()[1];
    const SettingsLevel& factory = SettingsLevelManager::getSettingsLevelObjs()[2];
};

}  // namespace

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
    EXPECT_EQ(wat("f"), resolveLevelDirectory(factory, root));
    EXPECT_EQ(wat("u"), resolveLevelDirectory(user, root));
    EXPECT_EQ(L"", resolveLevelDirectory(session, root));

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
    EXPECT_EQ(Paths{wat("u/two.dots.settings")},
              productSettingsFilesAtLevel("two.dots", user, root));
    for (const auto& [product, level] : {std::make_pair("empty_product", &factory),
                                         {"missing", &factory},
                                         {"alpha", &user},
                                         {"alpha", &session}}) {
        EXPECT_TRUE(productSettingsFilesAtLevel(product, *level, root).empty()) << product;
    }

    // Missing directories list nothing; a root without state (null) knows no directory.
    EXPECT_TRUE(collectProductNames(rootWith("none-f", "none-u")).empty());
    const boost::shared_ptr<SettingsImplRoot> none;
    EXPECT_EQ(L"", resolveLevelDirectory(factory, none));
    EXPECT_TRUE(collectProductNames(none).empty());
    EXPECT_TRUE(productSettingsFilesAtLevel("alpha", factory, none).empty());
}

TEST_F(LevelDirectoriesTest, DirectoryOfALevelByItsFlagsInOrder) {
    EnvVarGuard workgroup("SETTINGS_WORKGROUPDIR", at("wg").string());
    const auto root = rootWith("f", "u");
    ASSERT_TRUE(root);
    const auto directoryOf = [&](bool isFactory, bool isWorkgroup) {
        return resolveLevelDirectory(SettingsLevel("x", {}, true, 1, isFactory, isWorkgroup, true),
                                     root);
    };
    EXPECT_EQ(wat("f"), directoryOf(true, true));
    EXPECT_EQ(wat("wg"), directoryOf(false, true));
    EXPECT_EQ(wat("u"), directoryOf(false, false));
}

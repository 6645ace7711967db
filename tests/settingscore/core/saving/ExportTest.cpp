// Export of selected nodes, import of the file back as a standalone tree, merging it into the
// live tree, and factory files made from standalone trees.
#include "SavingFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>

namespace savingtest {
namespace {

using namespace sc::exception;

class ExportTest : public SavingTest {
protected:
    // Products "p" (group g with keys a, b; group h with key c) and "q" (key z), with user values.
    void mountTwoProducts() {
        auto g = mountProduct();
        auto h = node("h", false);
        node("c", true)->setParent(h);
        h->setParent(root()->getChild("p"));
        auto q = node("q", false);
        node("z", true)->setParent(q);
        q->setParent(root());
        g->setAny("a", 1, "user");
        g->setAny("b", std::wstring(L"bee"), "user");
        root()->getNodeByPath("p.h")->setAny("c", 3.5, "user");
        root()->getChild("q")->setAny("z", true, "user");
    }
    std::wstring file(const std::string& name) const { return dir_.wpath(name); }
    boost::shared_ptr<const sc::Settings> at(const std::string& path) {
        return root()->getNodeByPath(path);
    }
};

TEST_F(ExportTest, SelectionsWriteOneProductFrameAndImportBackForAMerge) {
    mountTwoProducts();
    sc::Settings::exportSettings({at("p.g.a"), at("p.h.c")}, file("two.settings"), "user");
    const std::string two = testsupport::readFile(dir_.path() / "two.settings");
    EXPECT_EQ(two.find("<?xml"), two.rfind("<?xml")) << "one XML declaration";
    EXPECT_EQ(two.find("name=\"p\""), two.rfind("name=\"p\"")) << "one product frame";
    EXPECT_NE(std::string::npos, two.find("name=\"a\""));
    EXPECT_NE(std::string::npos, two.find("name=\"c\""));
    EXPECT_EQ(std::string::npos, two.find("name=\"b\""));

    // A group and a key inside it: the group in full.
    sc::Settings::exportSettings({at("p.g.a"), at("p.g")}, file("group.settings"), "user");
    EXPECT_NE(std::string::npos,
              testsupport::readFile(dir_.path() / "group.settings").find("name=\"b\""));

    // Import, change the live values, merge the file back: the exported values return.
    auto imported = sc::Settings::importAsStandaloneObject(file("group.settings"));
    ASSERT_TRUE(imported);
    EXPECT_FALSE(imported->isOnTree());
    auto g = root()->getNodeByPath("p.g");
    g->setAny("a", 100, "user");
    g->setAny("b", std::wstring(L"changed"), "user");
    root()->getChild("p")->mergeWith(imported, "user");
    EXPECT_EQ(1, boost::any_cast<int>(g->getAny("a", "user")));
    EXPECT_EQ(L"bee", boost::any_cast<std::wstring>(g->getAny("b", "user")));
    sc::TSettings::reset(AnyInstanceID);
    EXPECT_EQ(1, boost::any_cast<int>(root()->getNodeByPath("p.g")->getAny("a", "user")))
        << "the merge was saved";
}

TEST_F(ExportTest, BadSelectionsAndPathsAreRefusedInOrderBeforeAnyFileIsOpened) {
    mountTwoProducts();
    try {
        sc::Settings::exportSettings({at("p.g.a"), at("q.z")}, file("x.settings"), "user");
        FAIL() << "nodes of two products were exported together";
    } catch (const ErrorExportMultipleNodesBelongsToDiffProducts& e) {
        EXPECT_EQ("p", e.getProduct1Name());
        EXPECT_EQ("q", e.getProduct2Name());
    }
    EXPECT_THROW(sc::Settings::exportSettings({root()}, L"relative.settings", "user"),
                 CannotExportSettingsRoot);
    auto loose = node("loose", false);
    EXPECT_THROW(sc::Settings::exportSettings({loose}, L"relative.settings", "user"),
                 CannotExportStandaloneSettings);
    EXPECT_THROW(sc::Settings::exportSettings({at("p.g")}, L"relative.settings", "user"),
                 ErrorExportOrImportSettingsUsingRelativePath);
    EXPECT_THROW(sc::Settings::exportSettings({at("p.g")}, file("missing/x.settings"), "user"),
                 ErrorSaveSettingsDueToFileIOError);
    EXPECT_THROW(sc::Settings::importAsStandaloneObject(L"relative.settings"),
                 ErrorExportOrImportSettingsUsingRelativePath);
    EXPECT_FALSE(std::filesystem::exists(dir_.path() / "x.settings"));
}

TEST_F(ExportTest, AFactoryFileFromAStandaloneTreeLoadsAsThatProductsFactoryFile) {
    auto product = node("made", false);
    auto group = node("g", false);
    auto key = node("k", true);
    key->setParent(group);
    group->setParent(product);
    group->setAny("k", std::vector<int>{4, 5}, "session");
    EXPECT_THROW(sc::TSettings::createFactorySettingsFile(mountProduct(), file("f.settings"), 1),
                 ErrorCreateFactoryFileFromATreeNode);

    const auto path = dir_.path() / "factory" / "made" / "made.settings";
    std::filesystem::create_directories(path.parent_path());
    sc::Settings::createFactorySettingsFile(key, path.wstring(), 7);  // the whole product
    EXPECT_EQ(7u, product->getProductVersion().value_or(0));

    sc::TSettings::reset(AnyInstanceID);
    auto loaded = root()->getNodeByPath("made.g");
    ASSERT_TRUE(loaded);
    EXPECT_EQ((std::vector<int>{4, 5}),
              boost::any_cast<std::vector<int>>(loaded->getAny("k", "factory")));
    EXPECT_EQ(7u, root()->getChild("made")->getProductVersion().value_or(0));
    EXPECT_THROW(loaded->setAny("k", std::vector<int>{1, 2, 3}, "user"), DataArraySizeOutOfRange);
}

}  // namespace
}  // namespace savingtest

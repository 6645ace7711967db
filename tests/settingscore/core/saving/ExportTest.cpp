// Export of selected nodes, import of the file back as a standalone tree, merging it into the
// live tree, and factory files made from standalone trees.
#include "SavingFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>

namespace savingtest {
namespace {

using namespace sc::exception;

TEST_F(SavingTest, ExportsWriteOneProductFrameRefuseBadSelectionsAndImportBackForAMerge) {
    // Products "p" (group g with keys a, b; group h with key c) and "q" (key z), user values.
    auto g = mountProduct();
    auto h = node("h", false, root()->getChild("p"));
    node("c", true, h);
    node("z", true, node("q", false, root()));
    g->setAny("a", 1, "user");
    g->setAny("b", std::wstring(L"bee"), "user");
    h->setAny("c", 3.5, "user");
    const auto at = [this](const char* path) -> sc::ConstSettingsPtr {
        return root()->getNodeByPath(path);
    };

    sc::Settings::exportSettings({at("p.g.a"), at("p.h.c")}, dir_.wpath("two.settings"), "user");
    const std::string two = testsupport::readFile(dir_.path() / "two.settings");
    EXPECT_EQ(two.find("<?xml"), two.rfind("<?xml")) << "one XML declaration";
    EXPECT_EQ(two.find("name=\"p\""), two.rfind("name=\"p\"")) << "one product frame";
    const auto has = [&two](const std::string& name) {
        return two.find("name=\"" + name + "\"") != std::string::npos;
    };
    EXPECT_TRUE(has("a") && has("c") && !has("b")) << two;

    // Refused in this order, before any file is opened.
    try {
        sc::Settings::exportSettings({at("p.g.a"), at("q.z")}, dir_.wpath("x.settings"), "user");
        FAIL() << "nodes of two products were exported together";
    } catch (const ErrorExportMultipleNodesBelongsToDiffProducts& e) {
        EXPECT_EQ("p", e.getProduct1Name());
        EXPECT_EQ("q", e.getProduct2Name());
    }
    EXPECT_THROW(sc::Settings::exportSettings({root()}, L"relative.settings", "user"),
                 CannotExportSettingsRoot);
    EXPECT_THROW(sc::Settings::exportSettings({node("loose", false)}, L"relative.settings", "user"),
                 CannotExportStandaloneSettings);
    EXPECT_THROW(sc::Settings::exportSettings({at("p.g")}, L"relative.settings", "user"),
                 ErrorExportOrImportSettingsUsingRelativePath);
    EXPECT_THROW(sc::Settings::exportSettings({at("p.g")}, dir_.wpath("x.settings"), "nolevel"),
                 UnSupportedLevel);
    EXPECT_THROW(sc::Settings::exportSettings({}, dir_.wpath("x.settings"), "user"),
                 NoNodeSelectedForExport);
    EXPECT_FALSE(std::filesystem::exists(dir_.path() / "x.settings"));

    // A group and a key inside it: the group in full. Import it, change the live values, merge
    // the file back: the exported values return, and are saved.
    sc::Settings::exportSettings({at("p.g.a"), at("p.g")}, dir_.wpath("group.settings"), "user");
    auto imported = sc::Settings::importAsStandaloneObject(dir_.wpath("group.settings"));
    ASSERT_TRUE(imported);
    EXPECT_FALSE(imported->isOnTree());
    g->setAny("a", 100, "user");
    g->setAny("b", std::wstring(L"changed"), "user");
    root()->getChild("p")->mergeWith(imported, "user");
    EXPECT_EQ(L"bee", boost::any_cast<std::wstring>(g->getAny("b", "user")));
    // A product nobody touched yet is read before it is exported, not written empty.
    sc::TSettings::reset(AnyInstanceID);
    sc::Settings::exportSettings({root()->getChild("p")}, dir_.wpath("all.settings"), "user");
    const auto again = sc::Settings::importAsStandaloneObject(dir_.wpath("all.settings"));
    EXPECT_EQ(1, boost::any_cast<int>(again->getNodeByPath("g")->getAny("a", "user")));
}

TEST_F(SavingTest, AFactoryFileFromAStandaloneTreeLoadsAsThatProductsFactoryFile) {
    auto product = node("made", false);  // holds the rest: a child only points back weakly
    auto key = node("k", true, node("g", false, product));
    key->getParent()->setAny("k", std::vector<int>{4, 5}, "session");
    EXPECT_THROW(
        sc::TSettings::createFactorySettingsFile(mountProduct(), dir_.wpath("f.settings"), 1),
        ErrorCreateFactoryFileFromATreeNode);

    const auto path = dir_.path() / "factory" / "made" / "made.settings";
    std::filesystem::create_directories(path.parent_path());
    sc::Settings::createFactorySettingsFile(key, path.wstring(), 7);  // the whole product

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

// Attaching, finding and removing nodes: the case rule, read-only inheritance, path splitting,
// failures that leave the tree as it was, and the saves a structural change asks for.
#include "TreeFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>

namespace treetest {
namespace {

using namespace settings::core::exception;

TEST_F(TreeTest, NamesFollowTheirRulesAndProductNamesMayNotDifferByCase) {
    EXPECT_NO_THROW(TSettings::validateSettingOrGroupName("fontSize_2"));
    EXPECT_THROW(TSettings::validateSettingOrGroupName("font.size"), InvalidSettingOrGroupName);
    EXPECT_THROW(TSettings::validateSettingOrGroupName("2fonts"), InvalidSettingOrGroupName);

    auto r = root();
    makeNode("foo", false, r);
    try {
        makeNode("Foo", false, r);
        FAIL() << "a product differing by case only was accepted";
    } catch (const ErrorAddingTopLevelNode& e) {
        EXPECT_EQ("Foo", e.getProductNamePassedIn());
        EXPECT_EQ("foo", e.getExistingProductName());
    }
    EXPECT_EQ(1u, r->getChildren().size());
    EXPECT_FALSE(r->getChild("Foo"));  // lookup is exact, at the root too

    auto group = r->getChild("foo");
    makeNode("bar", false, group);
    makeNode("Bar", true, group);
    EXPECT_TRUE(group->getChild("Bar")->isKey());
    EXPECT_FALSE(group->getChild("bar")->isKey());
    EXPECT_FALSE(group->getChild("BAR"));

    // A refused node is left standalone, free to go elsewhere.
    auto clash = makeNode("bar", true);
    EXPECT_THROW(clash->setParent(group), ErrorAddingChildNodeOrKey);
    EXPECT_FALSE(clash->getParent());
    clash->setParent(group->getChild("bar"));
    EXPECT_EQ("foo.bar.bar", clash->getFullName());
}

TEST_F(TreeTest, GroupsInheritReadOnlyKeysDoNotAndStandaloneNodesAreNeverLocked) {
    SettingsProperties hidden;
    hidden.hidden = true;
    EXPECT_FALSE(TSettings::createSetting("k", true, hidden)->isVisible());
    // While standalone, a read-only group takes children and gives them up again.
    auto product = makeNode("prod", false, SettingsImpl::ReadOnly);
    auto inheriting = makeNode("inherits", false, product, SettingsImpl::InheritReadOnly);
    auto writableGroup = makeNode("open", false, product);
    auto key = makeNode("key", true, inheriting, SettingsImpl::InheritReadOnly);
    auto deep = makeNode("deep", false, writableGroup, SettingsImpl::InheritReadOnly);
    product->removeNode("open");
    writableGroup->setParent(product);
    EXPECT_TRUE(inheriting->isReadOnly());
    EXPECT_FALSE(key->isReadOnly());   // a key does not inherit
    EXPECT_FALSE(deep->isReadOnly());  // the nearest decided ancestor is writable

    product->setParent(root());
    // On the tree a read-only parent refuses both ways, before anything changes.
    EXPECT_THROW(makeNode("new", false, inheriting), CannotAddRemoveNodeUnderReadOnlyParent);
    EXPECT_THROW(inheriting->removeKey("key"), CannotAddRemoveNodeUnderReadOnlyParent);
    EXPECT_TRUE(inheriting->getChild("key"));
    makeNode("fine", true, deep);
    // An inheriting group directly under the root climbs to the root: writable.
    EXPECT_FALSE(makeNode("top", false, root(), SettingsImpl::InheritReadOnly)->isReadOnly());
}

TEST_F(TreeTest, PathsSplitAtDotsAndFailuresChangeNothing) {
    auto r = root();
    auto p = makeNode("p", false);
    auto g = makeNode("g", false, p);
    auto k = makeNode("k", true, g);
    p->setParent(r);

    const std::vector<std::pair<std::string, boost::shared_ptr<Settings>>> paths = {
        {"p.g.k", k},       {"..p..g.k.", k},     {"", nullptr},         {"...", nullptr},
        {"p.G.k", nullptr}, {"p.g.k.x", nullptr}, {"nothing.g", nullptr}};
    for (const auto& [path, expected] : paths) {
        EXPECT_EQ(expected, r->getNodeByPath(path)) << path;
    }
    EXPECT_EQ(g, p->getNodeByPath(std::vector<std::string>{"g"}));
    EXPECT_FALSE(r->getNodeByPath(std::vector<std::string>{"p", "", "k"}));
    EXPECT_EQ(BlessedInstanceID, k->getInstanceId());

    EXPECT_THROW(p->removeKey("g"), NotAKeyName);
    EXPECT_THROW(g->removeNode("k"), NotANodeName);
    EXPECT_THROW(p->removeNode("none"), NoSuchNode);
    EXPECT_THROW(p->removeKey("none"), NoSuchKey);
    EXPECT_THROW(p->getKeyType("g"), NotAKeyName);
    EXPECT_THROW(p->getKeyType("none"), NoSuchKey);
    EXPECT_THROW(makeNode("k2", true, r), CanNotAddKeyToRootException);
    // A node has one place: attached nodes, the root and rings are refused.
    EXPECT_THROW(k->setParent(p), ErrorAddingChildNodeOrKey);
    EXPECT_THROW(r->setParent(g), ErrorAddingChildNodeOrKey);
    auto a = makeNode("a", false);
    EXPECT_THROW(a->setParent(makeNode("b", false, a)), CannotAttachNodeBelowItself);
    EXPECT_THROW(a->setParent(a), CannotAttachNodeBelowItself);
    EXPECT_EQ(1u, p->getChildren().size());
    EXPECT_EQ(g, k->getParent());
    EXPECT_FALSE(a->getParent());

    // A detached subtree names itself from its own top, belongs to no instance, and can return.
    p->removeNode("g");
    EXPECT_FALSE(g->isOnTree());
    EXPECT_EQ("g.k", k->getFullName());
    EXPECT_EQ(tvutil::contextmgr::UndefinedInstanceID, k->getInstanceId());
    EXPECT_EQ(k, g->getNodeByPath("k"));
    g->setParent(p);
    EXPECT_EQ("p.g.k", k->getFullName());
}

TEST_F(TreeTest, ChangesSaveTheLevelsOfTheirSubtreeOnlyOnTheTree) {
    using Saves = std::vector<std::string>;
    auto p = makeNode("p", false);
    auto k = makeNode("k", true);
    k->putValue("session", 1);
    k->putValue("user", 2);
    k->setParent(p);
    EXPECT_TRUE(savedFiles().empty()) << "a standalone node never reaches a file";
    p->setParent(root());
    EXPECT_EQ((Saves{"user/p.settings"}), savedFiles());  // "session" has no file
    // A node bringing a factory value: its factory file cannot be rewritten.
    auto f = makeNode("f", true);
    f->putValue("factory", 3);
    EXPECT_THROW(f->setParent(p), CantModifyValuesOnReadOnlyLevel);
    EXPECT_TRUE(p->getChild("f"));
    try {
        p->removeKey("f");
        FAIL() << "removal touching the factory level was accepted";
    } catch (const NoFileWritePermissionOnMultipleLevels& e) {
        EXPECT_EQ("factory, user", e.getLevelNeedToBeUpdated());
        EXPECT_EQ("user", e.getLevelsHasWritenPermissionOn());
    }
    savedFiles();
    p->removeKey("k");  // saved on the parent's side, since the key has gone
    EXPECT_EQ((Saves{"user/p.settings"}), savedFiles());
}

}  // namespace
}  // namespace treetest

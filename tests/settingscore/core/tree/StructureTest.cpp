// Attaching, finding and removing nodes: the case rule, read-only inheritance, path splitting,
// and failures that leave the tree as it was.
#include "TreeFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include <thread>

namespace treetest {
namespace {

using namespace settings::core::exception;

TEST_F(TreeTest, ProductNamesMayNotDifferByCaseButDeeperNamesMay) {
    auto r = root();
    makeNode("foo", false)->setParent(r);
    try {
        makeNode("Foo", false)->setParent(r);
        FAIL() << "a product differing by case only was accepted";
    } catch (const ErrorAddingTopLevelNode& e) {
        EXPECT_EQ("Foo", e.getProductNamePassedIn());
        EXPECT_EQ("foo", e.getExistingProductName());
    }
    EXPECT_THROW(makeNode("foo", false)->setParent(r), ErrorAddingTopLevelNode);
    EXPECT_EQ(1u, r->getChildren().size());
    // Lookup is exact at every depth, the root too.
    EXPECT_FALSE(r->getChild("Foo"));
    EXPECT_TRUE(r->getChild("foo"));

    auto group = r->getChild("foo");
    makeNode("bar", false)->setParent(group);
    makeNode("Bar", true)->setParent(group);
    EXPECT_EQ(2u, group->getChildren().size());
    EXPECT_TRUE(group->getChild("Bar")->isKey());
    EXPECT_FALSE(group->getChild("bar")->isKey());
    EXPECT_FALSE(group->getChild("BAR"));

    // A refused node is left as it was: still standalone, free to go elsewhere.
    auto clash = makeNode("bar", true);
    EXPECT_THROW(clash->setParent(group), ErrorAddingChildNodeOrKey);
    EXPECT_FALSE(clash->isOnTree());
    EXPECT_FALSE(clash->getParent());
    EXPECT_TRUE(group->getChild("bar")->getChildren().empty());
    clash->setParent(group->getChild("bar"));
    EXPECT_EQ("foo.bar.bar", clash->getFullName());
}

TEST_F(TreeTest, GroupsInheritReadOnlyKeysDoNotAndStandaloneNodesAreNeverLocked) {
    auto r = root();
    auto product = makeNode("prod", false, SettingsImpl::ReadOnly);
    auto inheriting = makeNode("inherits", false, SettingsImpl::InheritReadOnly);
    auto writableGroup = makeNode("open", false, SettingsImpl::Writable);
    auto key = makeNode("key", true, SettingsImpl::InheritReadOnly);
    auto deep = makeNode("deep", false, SettingsImpl::InheritReadOnly);

    // While standalone, a read-only group takes children and gives them up again.
    inheriting->setParent(product);
    writableGroup->setParent(product);
    key->setParent(inheriting);
    deep->setParent(writableGroup);
    product->removeNode("open");
    writableGroup->setParent(product);
    EXPECT_TRUE(product->isReadOnly());
    EXPECT_TRUE(inheriting->isReadOnly());
    EXPECT_FALSE(key->isReadOnly());  // a key does not inherit
    EXPECT_FALSE(writableGroup->isReadOnly());
    EXPECT_FALSE(deep->isReadOnly());  // the nearest decided ancestor is writable

    product->setParent(r);
    // On the tree a read-only parent refuses both ways, before anything changes.
    EXPECT_THROW(makeNode("new", false)->setParent(inheriting),
                 CannotAddRemoveNodeUnderReadOnlyParent);
    EXPECT_THROW(inheriting->removeKey("key"), CannotAddRemoveNodeUnderReadOnlyParent);
    EXPECT_TRUE(inheriting->getChild("key"));
    makeNode("fine", true)->setParent(deep);  // below a writable group
    EXPECT_TRUE(deep->getChild("fine"));

    // An inheriting group directly under the root climbs to the root: writable.
    auto top = makeNode("top", false, SettingsImpl::InheritReadOnly);
    top->setParent(r);
    EXPECT_FALSE(top->isReadOnly());
}

TEST_F(TreeTest, PathsSplitAtDotsDropEmptyPartsAndNeverThrow) {
    auto r = root();
    auto p = makeNode("p", false);
    auto g = makeNode("g", false);
    auto k = makeNode("k", true);
    g->setParent(p);
    k->setParent(g);
    p->setParent(r);

    EXPECT_EQ(k, r->getNodeByPath("p.g.k"));
    EXPECT_EQ(k, r->getNodeByPath("..p..g.k."));
    EXPECT_EQ(k, g->getNodeByPath("k"));
    EXPECT_EQ(g, p->getNodeByPath(std::vector<std::string>{"g"}));
    EXPECT_FALSE(r->getNodeByPath(""));
    EXPECT_FALSE(r->getNodeByPath("..."));
    EXPECT_FALSE(r->getNodeByPath(std::vector<std::string>()));
    EXPECT_FALSE(r->getNodeByPath(std::vector<std::string>{"p", "", "k"}));
    EXPECT_FALSE(r->getNodeByPath("p.G.k"));
    EXPECT_FALSE(r->getNodeByPath("p.g.k.x"));
    EXPECT_FALSE(r->getNodeByPath("nothing.g"));

    EXPECT_EQ("", r->getFullName());
    EXPECT_EQ("p", p->getFullName());
    EXPECT_EQ("p.g.k", k->getFullName());
    EXPECT_EQ(BlessedInstanceID, k->getInstanceId());

    // A standalone subtree names itself from its own top and belongs to no instance.
    auto s = makeNode("s", false);
    auto sk = makeNode("sk", true);
    sk->setParent(s);
    EXPECT_EQ("s.sk", sk->getFullName());
    EXPECT_EQ(tvutil::contextmgr::UndefinedInstanceID, sk->getInstanceId());
    EXPECT_FALSE(sk->isOnTree());
    EXPECT_EQ(sk, s->getNodeByPath("sk"));
}

TEST_F(TreeTest, StructuralFailuresRaiseTheirClassAndChangeNothing) {
    auto r = root();
    auto p = makeNode("p", false);
    auto g = makeNode("g", false);
    auto k = makeNode("k", true);
    g->setParent(p);
    k->setParent(p);
    p->setParent(r);

    EXPECT_THROW(p->removeKey("g"), NotAKeyName);
    EXPECT_THROW(p->removeNode("k"), NotANodeName);
    EXPECT_THROW(p->removeNode("none"), NoSuchNode);
    EXPECT_THROW(p->removeKey("none"), NoSuchKey);
    EXPECT_THROW(p->getKeyType("g"), NotAKeyName);
    EXPECT_THROW(p->getKeyType("none"), NoSuchKey);
    EXPECT_THROW(makeNode("k2", true)->setParent(r), CanNotAddKeyToRootException);
    // A node has one place: attached nodes, the root and rings are refused.
    EXPECT_THROW(k->setParent(g), ErrorAddingChildNodeOrKey);
    EXPECT_THROW(r->setParent(g), ErrorAddingChildNodeOrKey);
    auto a = makeNode("a", false);
    auto b = makeNode("b", false);
    b->setParent(a);
    EXPECT_THROW(a->setParent(b), ErrorMergingWithCircularReference);
    EXPECT_THROW(a->setParent(a), ErrorMergingWithCircularReference);

    EXPECT_EQ(2u, p->getChildren().size());
    EXPECT_EQ(p, k->getParent());
    EXPECT_FALSE(a->getParent());

    // Removal: detached subtrees stay usable for whoever holds them.
    p->removeNode("g");
    EXPECT_FALSE(g->isOnTree());
    EXPECT_FALSE(g->getParent());
    EXPECT_EQ("g", g->getFullName());
    g->setParent(p);
    EXPECT_EQ("p.g", g->getFullName());
}

TEST_F(TreeTest, ChangesSaveTheLevelsOfTheirSubtreeOnlyOnTheTree) {
    auto r = root();
    auto p = makeNode("p", false);
    auto k = makeNode("k", true);
    k->putValue("session", 1);
    k->putValue("user", 2);
    k->setParent(p);
    EXPECT_TRUE(saves_.empty()) << "a standalone node never reaches a file";

    p->setParent(r);
    ASSERT_EQ(1u, saves_.size());  // "session" has no file, "user" is always there
    EXPECT_EQ(std::make_pair(std::string("user"), std::string("p")), saves_[0]);

    auto f = makeNode("f", true);
    f->putValue("factory", 3);
    f->setParent(p);
    ASSERT_EQ(3u, saves_.size());
    EXPECT_EQ("factory", saves_[1].first);
    EXPECT_EQ("user", saves_[2].first);
    EXPECT_EQ("p.f", saves_[2].second);

    // A key with a factory value cannot be removed: its factory file cannot be rewritten.
    try {
        p->removeKey("f");
        FAIL() << "removal touching the factory level was accepted";
    } catch (const NoFileWritePermissionOnMultipleLevels& e) {
        EXPECT_EQ("factory, user", e.getLevelNeedToBeUpdated());
        EXPECT_EQ("user", e.getLevelsHasWritenPermissionOn());
    }
    EXPECT_TRUE(p->getChild("f"));
    saves_.clear();
    p->removeKey("k");  // saved on the parent's side, since the key has gone
    ASSERT_EQ(1u, saves_.size());
    EXPECT_EQ(std::make_pair(std::string("user"), std::string("p")), saves_[0]);
}

TEST_F(TreeTest, RemovingAProductDeletesItsUserFileAndSavesNothing) {
    shipProduct("gone");
    const auto userFile = dir_.path() / "user" / "gone.settings";
    testsupport::writeFile(userFile, "<x/>");
    testsupport::writeFile(dir_.path() / "user" / "kept.settings", "<x/>");
    auto r = root();
    ASSERT_TRUE(r->getChild("gone"));
    r->removeNode("gone");
    EXPECT_FALSE(r->getChild("gone"));
    EXPECT_FALSE(std::filesystem::exists(userFile));
    EXPECT_TRUE(std::filesystem::exists(dir_.path() / "factory" / "gone" / "gone.settings"));
    EXPECT_TRUE(std::filesystem::exists(dir_.path() / "user" / "kept.settings"));
    EXPECT_TRUE(saves_.empty());
}

TEST_F(TreeTest, ProductLoadRunsOnceOnFirstTouchAndReportsOnlyToTheFirstCaller) {
    shipProduct("good");
    shipProduct("bad");
    failLoadOf_ = "bad";
    auto r = root();
    EXPECT_EQ(0, loads_.load()) << "building the root reads no product";

    auto bad = r->getChild("bad");
    EXPECT_EQ(0, loads_.load()) << "finding a product does not load it";
    try {
        bad->getChildren();
        FAIL() << "the failed load was not reported";
    } catch (const ErrorReadingSettingsData& e) {
        EXPECT_EQ(ErrorReadingSettingsData::ProductNodeLoadingFailed, e.getErrorCode());
        EXPECT_EQ(L"cannot read bad", e.getDetailErrorMsg());
    }
    EXPECT_EQ(1, loads_.load());
    EXPECT_NO_THROW(bad->getChildren());  // never repeated, failed or not
    EXPECT_EQ(1, loads_.load());

    // Many threads touching a fresh product at once: one load.
    auto good = r->getChild("good");
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] { good->getNodeByPath("x.y"); });
    }
    for (auto& t : threads) {
        t.join();
    }
    EXPECT_EQ(2, loads_.load());
}

}  // namespace
}  // namespace treetest

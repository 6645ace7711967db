// Values across levels: resolution order with run-time defaults, writes that validate every
// pair and merges that validate a copy before changing anything, what is saved and announced.
#include "ValuesFixture.hpp"

namespace valuestest {
namespace {

using settings::core::KeyValuePair;

TEST_F(ValuesTest, LevelsResolveSessionUserFactoryWithDefaultsAtTheirOwnLevel) {
    auto key = makeKey("k");
    auto group = mountUnderProduct({key});
    key->putValue("factory", std::wstring(L"shipped"));
    EXPECT_EQ(L"shipped", text(group->getAny("k", "")));
    key->setDefault("userDefault", "user");  // a user default beats the factory value
    EXPECT_EQ(L"userDefault", text(group->getAny("k", "")));
    EXPECT_EQ(L"shipped", text(group->getAny("k", "factory")));
    group->setAny("k", std::wstring(L"mine"), "user");  // a stored value beats its level's default
    EXPECT_EQ(L"mine", text(group->getAny("k", "")));
    group->setAny("k", std::wstring(L"now"), "session");
    EXPECT_EQ(L"now", text(group->getAny("k", "")));

    key->setDefault("factoryDefault", "factory");  // loses to any stored user value
    group->removeValue("k", "session");
    EXPECT_EQ(L"mine", text(group->getAny("k", "")));
    EXPECT_EQ(L"shipped", text(group->getAny("k", "factory")));  // stored wins at its level
    group->removeValue("k", "user");
    EXPECT_TRUE(group->getAny("k", "user").empty());

    // Standalone, a default counts at the first level asked, whatever it belongs to.
    auto holder = makeNode("holder", false);
    makeKey("loose", holder)->setDefault("anywhere", "factory");
    EXPECT_EQ(L"anywhere", text(holder->getAny("loose", "session")));

    EXPECT_THROW(group->getAny("k", "User"), UnSupportedLevel);
    EXPECT_THROW(group->getAny("missing", ""), NoSuchKey);
}

TEST_F(ValuesTest, WritesAndMergesAreAllOrNothingAndOnlyEffectiveChangesAreAnnounced) {
    auto a = makeKey("a");
    auto b = makeKey("b");
    auto c = makeKey("c");
    b->limit(0, 9);
    auto group = mountUnderProduct({a, b, c});
    const KeyValuePair pairs[] = {{a, 1}, {b, 99}, {c, 3}};
    const auto failures = group->setValues(pairs, pairs + 3, "user", false);
    ASSERT_EQ(1u, failures.size());
    EXPECT_EQ("p.g.b", failures[0].first);
    EXPECT_EQ(ValueIsNotInRange::whatText, failures[0].second);
    EXPECT_THROW(group->setValues(pairs, pairs + 3, "user", true), ValueIsNotInRange);
    const KeyValuePair withNull[] = {{a, 1}, {nullptr, 2}};
    const auto nullFailures = group->setValues(withNull, withNull + 2, "user", true);
    ASSERT_EQ(1u, nullFailures.size());
    EXPECT_EQ("NULLOBJ", nullFailures[0].first);
    EXPECT_EQ("The obj[1] passed in is NULL.\n", nullFailures[0].second);
    EXPECT_FALSE(group->hasValue("a", "user") || group->hasValue("c", "user"));
    EXPECT_TRUE(drainEvents().empty());
    EXPECT_TRUE(savedFiles().empty());

    // n changed keys: n saves, one per key, each after its own store.
    const KeyValuePair good[] = {{a, 1}, {b, 2}, {c, 3}};
    EXPECT_TRUE(group->setValues(good, good + 3, "user", true).empty());
    EXPECT_EQ(3u, savedFiles().size());
    EXPECT_EQ((std::vector<std::string>{"p.g.a", "p.g.b", "p.g.c"}), drainEvents());

    // Only a change of the effective value is announced, and only a store is saved.
    group->setAny("a", 5, "session");
    EXPECT_EQ((std::vector<std::string>{"p.g.a"}), drainEvents());
    EXPECT_TRUE(savedFiles().empty()) << "the session level has no file";
    group->setAny("a", 5, "session");
    EXPECT_TRUE(drainEvents().empty());
    group->setAny("a", 6, "user");  // shadowed by the session value: saved, not announced
    EXPECT_EQ(1u, savedFiles().size());
    EXPECT_TRUE(drainEvents().empty());
    group->setAny("a", 6, "user");  // unchanged: neither
    EXPECT_EQ(0u, savedFiles().size());
    group->removeValue("a", "session");  // the user value shows through: one event
    EXPECT_EQ((std::vector<std::string>{"p.g.a"}), drainEvents());

    // A merge is validated on a copy first: a bad value leaves the live tree untouched, silent.
    auto incoming = makeNode("g", false);
    auto incomingB = makeKey("b", incoming);
    incomingB->putValue("user", 42);
    makeKey("added", incoming)->putValue("user", std::wstring(L"new"));
    savedFiles();
    EXPECT_THROW(group->mergeWith(incoming, "user"), ValueIsNotInRange);
    EXPECT_FALSE(group->getChild("added"));
    EXPECT_EQ(2, boost::any_cast<int>(group->getAny("b", "")));
    EXPECT_TRUE(drainEvents().empty());
    EXPECT_TRUE(savedFiles().empty());
    incomingB->putValue("user", 7);
    group->mergeWith(incoming, "session");
    EXPECT_EQ(7, boost::any_cast<int>(group->getAny("b", "session")));
    EXPECT_EQ(L"new", text(group->getAny("added", "session")));
    EXPECT_FALSE(incoming->getChild("added")->isOnTree()) << "the live tree holds a copy";
    EXPECT_EQ(2u, drainEvents().size());  // b's value, "added" attached
    group->removeKey("added");
    drainEvents();
    group->mergeWith(incoming, "user");  // b merged, though "session" hides it
    EXPECT_EQ((std::vector<std::string>{"p.g.b", "p.g.added"}), drainEvents());
    EXPECT_THROW(group->mergeWith(group->getParent(), "user"), ErrorMergingWithCircularReference);
    EXPECT_THROW(root()->mergeWith(incoming, "user"), CannotMergeWithSettingsRoot);
    EXPECT_THROW(group->mergeWith(incoming, "factory"), CantModifyValuesOnReadOnlyLevel);
    EXPECT_THROW(group->mergeWith(makeNode("other", false, root()), "user"),
                 CanOnlyMergeTreeNodeWithStandaloneNode);
}

}  // namespace
}  // namespace valuestest

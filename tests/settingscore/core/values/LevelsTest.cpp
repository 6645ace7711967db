// Values across levels: resolution order with run-time defaults, writes that validate every
// pair before storing any, what a write or a clear saves and announces, and merges.
#include "ValuesFixture.hpp"

namespace valuestest {
namespace {

using namespace settings::core::exception;
using settings::core::KeyValuePair;

TEST_F(ValuesTest, LevelsResolveSessionUserFactoryWithDefaultsAtTheirOwnLevel) {
    auto key = makeKey("k");
    auto group = mountUnderProduct(key);
    key->putValue("factory", std::wstring(L"shipped"));
    EXPECT_EQ(L"shipped", text(group->getAny("k", "")));

    key->setDefault("userDefault", "user");  // a user default beats the factory value
    EXPECT_EQ(L"userDefault", text(group->getAny("k", "")));
    EXPECT_EQ(L"userDefault", text(group->getAny("k", "user")));
    EXPECT_EQ(L"shipped", text(group->getAny("k", "factory")));
    EXPECT_TRUE(group->getAny("k", "session").empty());
    group->setAny("k", std::wstring(L"mine"), "user");  // a stored value beats its level's default
    EXPECT_EQ(L"mine", text(group->getAny("k", "")));
    group->setAny("k", std::wstring(L"now"), "session");
    EXPECT_EQ(L"now", text(group->getAny("k", "")));

    key->setDefault("factoryDefault", "factory");  // loses to any stored user value
    group->removeValue("k", "session");
    EXPECT_EQ(L"mine", text(group->getAny("k", "")));
    EXPECT_TRUE(group->hasValue("k", "user"));
    EXPECT_EQ(L"shipped", text(group->getAny("k", "factory")));  // stored wins at its level
    group->removeValue("k", "user");
    EXPECT_TRUE(group->getAny("k", "user").empty());

    // Never cached: each read runs the default again.
    auto fresh = makeKey("fresh");
    fresh->setDefault("f", "factory");
    fresh->setParent(group);
    const int before = defaultCalls_.load();
    group->getAny("fresh", "");
    group->getAny("fresh", "");
    EXPECT_EQ(before + 2, defaultCalls_.load());

    // Standalone, a default counts at the first level asked, whatever it belongs to.
    auto loose = makeKey("loose");
    loose->setDefault("anywhere", "factory");
    auto holder = makeNode("holder", false);
    loose->setParent(holder);
    EXPECT_EQ(L"anywhere", text(holder->getAny("loose", "session")));
    EXPECT_EQ(L"anywhere", text(holder->getAny("loose", "")));

    EXPECT_THROW(group->getAny("k", "User"), UnSupportedLevel);
    EXPECT_THROW(group->getAny("missing", ""), NoSuchKey);
    EXPECT_THROW(makeNode("x", false)->getAny("missing", ""), NoSuchKey);
}

TEST_F(ValuesTest, BatchWritesStoreAllOrNothing) {
    auto a = makeKey("a");
    auto group = mountUnderProduct(a);
    auto b = makeKey("b");
    auto c = makeKey("c");
    b->limit(0, 9, boost::none);
    b->setParent(group);
    c->setParent(group);
    drainEvents();
    saves_.clear();

    const KeyValuePair pairs[] = {{a, 1}, {b, 99}, {c, 3}};
    const auto failures = group->setValues(pairs, pairs + 3, "user", false);
    ASSERT_EQ(1u, failures.size());
    EXPECT_EQ("p.g.b", failures[0].first);
    EXPECT_EQ(ValueIsNotInRange::whatText, failures[0].second);
    EXPECT_TRUE(a->stored("user").empty());
    EXPECT_TRUE(c->stored("user").empty());
    EXPECT_THROW(group->setValues(pairs, pairs + 3, "user", true), ValueIsNotInRange);
    EXPECT_TRUE(a->stored("user").empty());

    const KeyValuePair withNull[] = {{a, 1}, {nullptr, 2}};
    const auto nullFailures = group->setValues(withNull, withNull + 2, "user", true);
    ASSERT_EQ(1u, nullFailures.size());
    EXPECT_EQ("NULLOBJ", nullFailures[0].first);
    EXPECT_EQ("The obj[1] passed in is NULL.\n", nullFailures[0].second);
    EXPECT_TRUE(a->stored("user").empty());

    // n changed keys: n saves, one per key, each after its own store.
    const KeyValuePair good[] = {{a, 1}, {b, 2}, {c, 3}};
    EXPECT_TRUE(group->setValues(good, good + 3, "user", true).empty());
    EXPECT_EQ(3u, saves_.size());
    EXPECT_EQ((std::vector<std::string>{"p.g.a", "p.g.b", "p.g.c"}), drainEvents());

    EXPECT_THROW(group->setAny("a", 1, "factory"), CantModifyValuesOnReadOnlyLevel);
    EXPECT_THROW(group->setAny("a", 1, "nowhere"), UnSupportedLevel);
    EXPECT_THROW(group->setAny("a.b", 1, "user"), NoSuchKey);  // names are never paths here
}

TEST_F(ValuesTest, OnlyChangesOfTheEffectiveValueAreAnnouncedAndOnlyStoresAreSaved) {
    auto key = makeKey("k");
    auto group = mountUnderProduct(key);
    group->setAny("k", 1, "session");
    EXPECT_EQ((std::vector<std::string>{"p.g.k"}), drainEvents());
    EXPECT_TRUE(saves_.empty()) << "the session level has no file";
    group->setAny("k", 1, "session");
    EXPECT_TRUE(drainEvents().empty());

    group->setAny("k", 2, "user");  // shadowed by the session value: saved, not announced
    EXPECT_EQ(1u, saves_.size());
    EXPECT_TRUE(drainEvents().empty());
    group->setAny("k", 2, "user");  // unchanged: neither
    EXPECT_EQ(1u, saves_.size());

    group->removeValue("k", "session");  // the user value shows through: one event
    EXPECT_EQ((std::vector<std::string>{"p.g.k"}), drainEvents());
    EXPECT_EQ(2, boost::any_cast<int>(group->getAny("k", "")));
    EXPECT_THROW(group->removeValue("k", "session"), ValueNotDefinedForGivenLevel);
    key->putValue("factory", 3);
    EXPECT_THROW(group->removeValue("k", "factory"), CantModifyValuesOnReadOnlyLevel);

    // Read-only keys refuse writes on the tree, but their group decides about clearing.
    auto locked = boost::make_shared<ValueKey>(
        "locked", true, boost::optional<bool>(true), settings::core::ValidatorVariant(),
        SettingsImpl::ReadOnly, boost::shared_ptr<SettingsImpl>());
    locked->putValue("user", 5);
    locked->setParent(group);
    EXPECT_THROW(group->setAny("locked", 6, "user"), CannotChangeValueForReadOnlySetting);
    EXPECT_NO_THROW(group->removeValue("locked", "user"));
}

TEST_F(ValuesTest, MergeIsValidatedOnACopyAndLeavesTheTreeUntouchedOnFailure) {
    auto key = makeKey("k");
    auto group = mountUnderProduct(key);
    key->limit(0, 9, boost::none);
    group->setAny("k", 1, "user");
    drainEvents();
    saves_.clear();

    // A standalone tree shaped like the group: a bad value for "k" and a new key.
    auto incoming = makeNode("g", false);
    auto incomingKey = makeKey("k");
    incomingKey->putValue("user", 42);
    incomingKey->setParent(incoming);
    auto added = makeKey("added");
    added->putValue("user", std::wstring(L"new"));
    added->setParent(incoming);
    EXPECT_THROW(group->mergeWith(incoming, "user"), ValueIsNotInRange);
    EXPECT_FALSE(group->getChild("added"));
    EXPECT_EQ(1, boost::any_cast<int>(group->getAny("k", "")));
    EXPECT_TRUE(drainEvents().empty());
    EXPECT_TRUE(saves_.empty());

    incomingKey->putValue("user", 7);
    group->mergeWith(incoming, "session");
    EXPECT_EQ(7, boost::any_cast<int>(group->getAny("k", "session")));
    EXPECT_EQ(1, boost::any_cast<int>(group->getAny("k", "user")));
    EXPECT_EQ(L"new", text(group->getAny("added", "session")));
    EXPECT_FALSE(added->isOnTree()) << "the live tree holds a copy";
    const auto events = drainEvents();
    EXPECT_EQ(2u, events.size());
    EXPECT_TRUE(saves_.empty()) << "the session level has no file";

    EXPECT_THROW(group->mergeWith(group->getParent(), "user"), ErrorMergingWithCircularReference);
    EXPECT_THROW(group->mergeWith(root()->getChild("p"), "user"),
                 ErrorMergingWithCircularReference);
    EXPECT_THROW(root()->mergeWith(incoming, "user"), CannotMergeWithSettingsRoot);
    EXPECT_THROW(group->mergeWith(incoming, "factory"), CantModifyValuesOnReadOnlyLevel);
    auto other = makeNode("other", false);
    other->setParent(root());
    EXPECT_THROW(group->mergeWith(other, "user"), CanOnlyMergeTreeNodeWithStandaloneNode);
}

}  // namespace
}  // namespace valuestest

// Checking a value against a key: range and choices, conforming to the key's type, array
// sizes, the type a key takes from its first value, and the validator that applies.
#include "ValuesFixture.hpp"

#include <cmath>

namespace valuestest {
namespace {

using DataTypeNotMatchFailure =
    settings::core::MessageException<TOLVAN::settings::core::DataTypeNotMatch>;

// "ok", or the refusal with the texts it carries: "<class> <value> [<choices>] <min>..<max>".
std::wstring refusal(const boost::shared_ptr<TestNode>& group, const std::string& key,
                     const boost::any& value) {
    try {
        group->validateAny(key, value);
        return L"ok";
    } catch (const ValueIsNotOneOfTheChoicesAndNotInRange& e) {
        return L"choices " + e.getValueToSetStr() + L" [" + e.getChoicesStr() + L"] " +
               e.getMinValueStr() + L".." + e.getMaxValueStr();
    } catch (const ValueIsNotInRange& e) {
        return L"range " + e.getValueToSetStr() + L" " + e.getMinValueStr() + L".." +
               e.getMaxValueStr();
    }
}

TEST_F(ValuesTest, RangeAndChoicesAreAlternatives) {
    auto group = makeNode("g", false);
    using Anys = std::vector<boost::any>;
    makeKey("both", group)->limit(1, 10, Anys{20, 30});
    makeKey("choices", group)->limit(boost::any(), boost::any(), Anys{20, 30});
    makeKey("min", group)->limit(5, boost::any());
    makeKey("text", group)->limit(boost::any(), 3u);  // text keys bound their length
    makeKey("textChoice", group)->limit(boost::any(), 3u, Anys{std::wstring(L"abcd")});
    makeKey("ratio", group)->limit(0.0f, boost::any());
    makeKey("sizes", group)->limit(1, 10);

    const std::vector<std::tuple<std::string, boost::any, std::wstring>> cases = {
        {"both", 5, L"ok"},
        {"both", 30, L"ok"},
        {"both", 15, L"choices 15 [20, 30] 1..10"},
        {"choices", 5, L"choices 5 [20, 30] .."},
        {"min", 1000000, L"ok"},
        {"min", 4, L"range 4 5.."},
        {"text", std::wstring(L"abc"), L"ok"},
        {"text", std::wstring(L"abcd"), L"range abcd ..3"},
        {"textChoice", std::wstring(L"abcd"), L"ok"},  // a choice admits a longer text
        {"sizes", std::vector<int>{1, 10}, L"ok"},     // each element of an array is tested
        {"sizes", std::vector<int>{1, 11}, L"range 11 1..10"}};
    for (const auto& [key, value, expected] : cases) {
        EXPECT_EQ(expected, refusal(group, key, value)) << key;
    }
    EXPECT_THROW(group->validateAny("ratio", std::nanf("")), ValueIsNotInRange);
}

TEST_F(ValuesTest, ValuesAreConformedStrictlyToTheTypeOfTheFirstValue) {
    using Ints = std::vector<int>;
    auto group = mountUnderProduct({makeKey("scalar"), makeKey("array")});
    group->setAny("scalar", 5, "session");  // the key is an int scalar from now on
    EXPECT_EQ(7, group->getKeyType("scalar").value_or(0));
    group->setAny("scalar", Ints{6}, "session");
    EXPECT_THROW(group->setAny("scalar", short(1), "session"), DataTypeNotMatchFailure);
    // A two-element vector fails in the conformer, before the size test could.
    EXPECT_THROW(group->setAny("scalar", Ints{1, 2}, "session"), DataTypeNotMatchFailure);
    EXPECT_EQ(6, boost::any_cast<int>(group->getAny("scalar", "")));

    group->setAny("array", Ints{1, 2, 3}, "session");  // at most three from now on
    group->setAny("array", 4, "session");
    EXPECT_EQ(Ints{4}, boost::any_cast<Ints>(group->getAny("array", "")));
    EXPECT_THROW(group->setAny("array", Ints{1, 2, 3, 4}, "session"), DataArraySizeOutOfRange);
    // The size limits hold for scalars too.
    makeKey("pair", group)->setArrayBounds(2, 2);
    EXPECT_THROW(group->setAny("pair", Ints{1}, "session"), DataArraySizeOutOfRange);
    group->setAny("pair", Ints{1, 2}, "session");
    EXPECT_THROW(group->setAny("pair", 1, "session"), DataArraySizeOutOfRange);

    EXPECT_THROW(group->validateAny("scalar", boost::any()), DataTypeNotMatchFailure);
    makeKey("empty", group)->setArrayBounds(0, 0);
    EXPECT_THROW(group->validateAny("empty", boost::any()), DefaultValidationFailedOnVoidType);
    EXPECT_THROW(group->validateAny("empty", std::string("narrow")), UnsupportedType);
}

TEST_F(ValuesTest, TheNearestValidatorRunsWithTheKeysOwnNameAndParent) {
    std::vector<std::string> calls;  // "<function> <parent> <key>"
    JValidator::setJValProxy([&calls](const std::string&, const std::string& function,
                                      const boost::shared_ptr<const Settings>& parent,
                                      const std::string& key, const boost::any& value) {
        calls.push_back(function + " " + (parent ? parent->getName() : "-") + " " + key);
        if (boost::any_cast<int>(value) < 0) {
            throw std::runtime_error("negative");
        }
    });
    auto product = makeNode("p", false);
    auto group = makeNode("g", false, product);
    product->setValidator(JValidator("pkg", "productCheck"));
    group->setValidator(JValidator("pkg", "groupCheck"));
    makeKey("plain", group);
    makeKey("own", group)->setValidator(JValidator("pkg", "ownCheck"));
    group->validateAny("plain", 3);
    group->validateAny("own", 4);
    EXPECT_THROW(group->validateAny("plain", -1), ValidationFunctionInvokingError);
    // A standalone key reaches its caller's validator, and is called with no parent.
    const settings::core::KeyValuePair pair(makeKey("loose"), 5);
    group->validateValues(&pair, &pair + 1, true);
    makeNode("lonely", false)->validateValues(&pair, &pair + 1, true);
    EXPECT_EQ((std::vector<std::string>{"groupCheck g plain", "ownCheck g own",
                                        "groupCheck g plain", "groupCheck - loose"}),
              calls);

    // Attaching brings values under the validator they will inherit, unless they have their own.
    auto box = makeNode("box", false);
    auto refused = makeKey("refused", box);
    refused->putValue("user", -5);
    EXPECT_THROW(box->setParent(group), ValidationFunctionInvokingError);
    EXPECT_FALSE(group->getChild("box"));
    refused->setValidator(JValidator("pkg", "lenient"));
    box->setParent(group);
}

}  // namespace
}  // namespace valuestest

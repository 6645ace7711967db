// Checking a value against a key: range and choices, conforming to the key's type, array
// sizes, the type a key takes from its first value, and the validator that applies.
#include "ValuesFixture.hpp"

#include <cmath>

namespace valuestest {
namespace {

using namespace settings::core::exception;
using DataTypeNotMatchFailure =
    settings::core::MessageException<TOLVAN::settings::core::DataTypeNotMatch>;

std::vector<boost::any> anys(std::initializer_list<boost::any> values) {
    return values;
}

TEST_F(ValuesTest, RangeAndChoicesAreAlternatives) {
    auto group = makeNode("g", false);
    auto both = makeKey("both");
    both->limit(1, 10, anys({20, 30}));
    auto choicesOnly = makeKey("choices");
    choicesOnly->limit(boost::any(), boost::any(), anys({20, 30}));
    auto minOnly = makeKey("min");
    minOnly->limit(5, boost::any(), boost::none);
    for (const auto& key : {both, choicesOnly, minOnly}) {
        key->setParent(group);
    }

    for (int valid : {5, 20, 30}) {
        EXPECT_NO_THROW(group->validateAny("both", valid)) << valid;
    }
    try {
        group->validateAny("both", 15);
        FAIL() << "15 is neither in 1..10 nor a choice";
    } catch (const ValueIsNotOneOfTheChoicesAndNotInRange& e) {
        EXPECT_EQ(L"15", e.getValueToSetStr());
        EXPECT_EQ(L"20, 30", e.getChoicesStr());
        EXPECT_EQ(L"1", e.getMinValueStr());
        EXPECT_EQ(L"10", e.getMaxValueStr());
    }
    try {
        group->validateAny("choices", 5);
        FAIL();
    } catch (const ValueIsNotOneOfTheChoicesAndNotInRange& e) {
        EXPECT_EQ(L"", e.getMinValueStr());
        EXPECT_EQ(L"", e.getMaxValueStr());
    }
    EXPECT_NO_THROW(group->validateAny("min", 1000000));
    try {
        group->validateAny("min", 4);
        FAIL();
    } catch (const ValueIsNotInRange& e) {
        EXPECT_EQ(L"5", e.getMinValueStr());
        EXPECT_EQ(L"", e.getMaxValueStr());
    }

    // Text keys bound their length; a choice admits a text beyond it.
    auto text = makeKey("text");
    text->limit(boost::any(), 3u, boost::none);
    text->setParent(group);
    EXPECT_NO_THROW(group->validateAny("text", std::wstring(L"abc")));
    try {
        group->validateAny("text", std::wstring(L"abcd"));
        FAIL();
    } catch (const ValueIsNotInRange& e) {
        EXPECT_EQ(L"abcd", e.getValueToSetStr());
        EXPECT_EQ(L"3", e.getMaxValueStr());
    }
    text->limit(boost::any(), 3u, anys({std::wstring(L"abcd")}));
    EXPECT_NO_THROW(group->validateAny("text", std::wstring(L"abcd")));

    auto ratio = makeKey("ratio");
    ratio->limit(0.0f, boost::any(), boost::none);
    ratio->setParent(group);
    EXPECT_THROW(group->validateAny("ratio", std::nanf("")), ValueIsNotInRange);

    // Arrays: each element is tested; an empty array has none to fail.
    auto sizes = makeKey("sizes");
    sizes->limit(1, 10, boost::none);
    sizes->setParent(group);
    EXPECT_NO_THROW(group->validateAny("sizes", std::vector<int>{1, 2, 3, 4}));
    EXPECT_THROW(group->validateAny("sizes", std::vector<int>{1, 11}), ValueIsNotInRange);
}

TEST_F(ValuesTest, ValuesAreConformedStrictlyToTheTypeOfTheFirstValue) {
    auto group = mountUnderProduct(makeKey("scalar"));
    auto array = makeKey("array");
    array->setParent(group);

    group->setAny("scalar", 5, "session");  // the key is an int scalar from now on
    EXPECT_EQ(7, group->getKeyType("scalar").value_or(0));
    group->setAny("scalar", std::vector<int>{6}, "session");
    EXPECT_EQ(typeid(int), group->getAny("scalar", "session").type());
    EXPECT_EQ(6, boost::any_cast<int>(group->getAny("scalar", "")));
    EXPECT_THROW(group->setAny("scalar", short(1), "session"), DataTypeNotMatchFailure);
    // A two-element vector fails in the conformer, before the size test could.
    EXPECT_THROW(group->setAny("scalar", std::vector<int>{1, 2}, "session"),
                 DataTypeNotMatchFailure);
    EXPECT_EQ(6, boost::any_cast<int>(group->getAny("scalar", "")));

    group->setAny("array", std::vector<int>{1, 2, 3}, "session");  // at most three from now on
    group->setAny("array", 4, "session");
    EXPECT_EQ(std::vector<int>{4}, boost::any_cast<std::vector<int>>(group->getAny("array", "")));
    try {
        group->setAny("array", std::vector<int>{1, 2, 3, 4}, "session");
        FAIL();
    } catch (const DataArraySizeOutOfRange& e) {
        EXPECT_EQ(0u, e.getMinArraySize());
        EXPECT_EQ(3u, e.getMaxArraySize());
        EXPECT_EQ(4u, e.getActualArraySize());
    }
    // The size limits hold for scalars too.
    auto pair = makeKey("pair");
    pair->setArrayBounds(2, 2);
    pair->setParent(group);
    EXPECT_THROW(group->setAny("pair", std::vector<int>{1}, "session"), DataArraySizeOutOfRange);
    group->setAny("pair", std::vector<int>{1, 2}, "session");
    EXPECT_THROW(group->setAny("pair", 1, "session"), DataArraySizeOutOfRange);

    EXPECT_THROW(group->validateAny("scalar", boost::any()), DataTypeNotMatchFailure);
    auto empty = makeKey("empty");
    empty->setArrayBounds(0, 0);
    empty->setParent(group);
    EXPECT_THROW(group->validateAny("empty", boost::any()), DefaultValidationFailedOnVoidType);
    EXPECT_THROW(group->validateAny("empty", std::string("narrow")), UnsupportedType);
    EXPECT_THROW(group->validateAny("g2", 1), NoSuchKey);
}

TEST_F(ValuesTest, TheNearestValidatorRunsWithTheKeysOwnNameAndParent) {
    struct Call {
        std::string function, parent, key;
    };
    std::vector<Call> calls;
    JValidator::setJValProxy(
        [&calls](const std::string&, const std::string& function,
                 const boost::shared_ptr<const settings::core::Settings>& parent,
                 const std::string& key, const boost::any& value) {
            calls.push_back({function, parent ? parent->getName() : "<none>", key});
            if (boost::any_cast<int>(value) < 0) {
                throw std::runtime_error("negative");
            }
        });
    auto product = makeNode("p", false);
    auto group = makeNode("g", false);
    auto plain = makeKey("plain");
    auto own = makeKey("own");
    product->setValidator(JValidator("pkg", "productCheck"));
    group->setValidator(JValidator("pkg", "groupCheck"));
    own->setValidator(JValidator("pkg", "ownCheck"));
    plain->setParent(group);
    own->setParent(group);
    group->setParent(product);

    group->validateAny("plain", 3);
    group->validateAny("own", 4);
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ("groupCheck", calls[0].function);  // the nearest one, never the product's
    EXPECT_EQ("g", calls[0].parent);
    EXPECT_EQ("plain", calls[0].key);
    EXPECT_EQ("ownCheck", calls[1].function);
    EXPECT_THROW(group->validateAny("plain", -1), std::exception);

    // A standalone key reaches its caller's validator, and is called with no parent.
    calls.clear();
    auto loose = makeKey("loose");
    const settings::core::KeyValuePair pair(loose, 5);
    group->validateValues(&pair, &pair + 1, true);
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ("groupCheck", calls[0].function);
    EXPECT_EQ("<none>", calls[0].parent);
    calls.clear();
    makeNode("lonely", false)->validateValues(&pair, &pair + 1, true);
    EXPECT_TRUE(calls.empty());

    // Attaching brings values under the validator they will inherit, unless they have their own.
    auto refused = makeKey("refused");
    refused->putValue("user", -5);
    auto box = makeNode("box", false);
    refused->setParent(box);
    EXPECT_THROW(box->setParent(group), std::exception);
    EXPECT_FALSE(box->getParent());
    EXPECT_FALSE(group->getChild("box"));
    refused->setValidator(JValidator("pkg", "lenient"));
    box->setParent(group);
    EXPECT_EQ(group, box->getParent());
}

}  // namespace
}  // namespace valuestest

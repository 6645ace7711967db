// Values written at "user" come back from the user file after a restart (a new root over the
// same folders), for every type word, scalar and array; "session" values do not.
#include "SavingFixture.hpp"

#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <limits>

namespace savingtest {
namespace {

struct Sample {
    const char* word;
    boost::any scalar;
    boost::any array;
};

const std::vector<Sample> samples = {
    {"int8", static_cast<signed char>(-7), std::vector<signed char>{-128, 0, 127}},
    {"uint8", static_cast<unsigned char>(200), std::vector<unsigned char>{0, 255}},
    {"int16", static_cast<short>(-30000), std::vector<short>{1, -2}},
    {"uint16", static_cast<unsigned short>(65000), std::vector<unsigned short>{7, 65535}},
    {"int32", -2000000000, std::vector<int>{1, 2, 3}},
    {"uint32", 4000000000u, std::vector<unsigned int>{}},
    {"int64", std::numeric_limits<long long>::min(), std::vector<long long>{1LL << 40, -1}},
    {"uint64", std::numeric_limits<unsigned long long>::max(),
     std::vector<unsigned long long>{5, 0}},
    {"float", 0.1f, std::vector<float>{1.5f, -3.25e-3f}},
    {"double", 0.1, std::vector<double>{1e300, -2.5}},
    {"bool", true, std::vector<bool>{true, false, true}},
    {"string", std::wstring(L"caf\u00e9 ]]> <tag> & \u6f22"),
     std::vector<std::wstring>{L"one", L"", L"three"}},
};

TEST_F(SavingTest, UserValuesOfEveryTypeSurviveARestart) {
    // Keys "<word>" and "<word>s" take the type of their first value, scalar or array (a
    // one-element array would make a scalar key).
    auto group = mountProduct();
    for (const auto& sample : samples) {
        const std::string word = sample.word;
        node(word, true, group);
        group->setAny(word, sample.scalar, "user");
        node(word + "s", true, group);
        group->setAny(word + "s", sample.array, "user");
    }
    group->setAny("int32", 5, "session");  // memory only

    sc::TSettings::reset(AnyInstanceID);
    auto loaded = root()->getNodeByPath("p.g");
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->getAny("int32", "session").empty());
    for (const auto& sample : samples) {
        const std::string word = sample.word;
        EXPECT_TRUE(treestore::boostany::isEqual(sample.scalar, loaded->getAny(word, "user")))
            << word;
        EXPECT_TRUE(treestore::boostany::isEqual(sample.array, loaded->getAny(word + "s", "user")))
            << word << "s";
    }
}

}  // namespace
}  // namespace savingtest

// get<T>: strict against converting reads over every pair of supported types, the vector and
// scalar shapes, and the failures of bad input.
#include "ValueSamples.hpp"

#include <gtest/gtest.h>

#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>

namespace ba = treestore::boostany;
using ba::detail::EmptyVectorCastToScalar;
using ba::detail::TypeNotMatch;
using boostanytest::forEachType;
using boostanytest::number;

namespace {

// Strict reads succeed for the same type and for wrapping into / unwrapping from a
// one-element vector of the same scalar, every other pair is TypeNotMatch; converting reads
// of zero and one succeed for every pair.
TEST(BoostAnyGet, StrictAndConvertingReadsOverAllPairs) {
    int strictSuccesses = 0;
    forEachType(ba::SupportedTypes{}, [&](auto source) {
        using S = typename decltype(source)::type;
        forEachType(ba::SupportedTypes{}, [&](auto target) {
            using T = typename decltype(target)::type;
            const boost::any one = number<S>(1);
            SCOPED_TRACE(ba::typeNameOf(one) + " -> " + ba::typeNameOf(T()));
            if (std::is_same_v<S, T> || std::is_same_v<T, std::vector<S>> ||
                std::is_same_v<S, std::vector<T>>) {
                EXPECT_EQ(ba::get<T>(one, false), number<T>(1));
                ++strictSuccesses;
            } else {
                EXPECT_THROW(ba::get<T>(one, false), TypeNotMatch);
            }
            EXPECT_EQ(ba::get<T>(one, true), number<T>(1));
            EXPECT_EQ(ba::get<T>(number<S>(0), true), number<T>(0));
        });
    });
    EXPECT_EQ(strictSuccesses, 24 + 12 + 12);
}

TEST(BoostAnyGet, VectorShapes) {
    for (bool allow : {false, true}) {
        // The size is tested first, for 0 and for 2+ elements alike.
        EXPECT_THROW(ba::get<int>(std::vector<int>{}, allow), EmptyVectorCastToScalar);
        EXPECT_THROW(ba::get<int>(std::vector<short>{7, 8}, allow), EmptyVectorCastToScalar);
        // The same vector type is a copy of any size.
        EXPECT_EQ(ba::get<std::vector<int>>(std::vector<int>{1, 2, 3}, allow),
                  (std::vector<int>{1, 2, 3}));
    }
    // Vector to vector of another element: strict fails even when empty, one bad element
    // fails the whole converting read.
    EXPECT_THROW(ba::get<std::vector<short>>(std::vector<int>{}, false), TypeNotMatch);
    EXPECT_TRUE(ba::get<std::vector<short>>(std::vector<int>{}, true).empty());
    EXPECT_EQ(ba::get<std::vector<std::wstring>>(std::vector<double>{0.5, -2}, true),
              (std::vector<std::wstring>{L"0.5", L"-2"}));
    EXPECT_THROW(ba::get<std::vector<signed char>>(std::vector<int>{1, 300}, true),
                 boost::numeric::positive_overflow);
    // Text is never split.
    EXPECT_EQ(ba::get<std::vector<std::wstring>>(std::wstring(L"1,2"), false),
              std::vector<std::wstring>{L"1,2"});
    EXPECT_THROW(ba::get<std::vector<int>>(std::wstring(L"1,2"), true), boost::bad_lexical_cast);
}

// Reads `original` as T expecting exception E, then checks that the value is unchanged.
template <class T, class E, class Held>
void expectFailureLeavesValue(const Held& original) {
    const boost::any value = original;
    EXPECT_THROW(ba::get<T>(value, true), E);
    ASSERT_EQ(value.type(), typeid(Held));
    EXPECT_TRUE(boost::any_cast<Held>(value) == original);
}

TEST(BoostAnyGet, BadInputThrowsTheDocumentedExceptionAndLeavesTheValue) {
    // Types close to supported ones are still outside the list.
    expectFailureLeavesValue<int, ba::UnsupportedAnyType>(std::string("7"));
    expectFailureLeavesValue<int, ba::UnsupportedAnyType>(7L);
    expectFailureLeavesValue<int, ba::UnsupportedAnyType>('7');
    expectFailureLeavesValue<int, ba::UnsupportedAnyType>(std::vector<long>{7});
    expectFailureLeavesValue<int, boost::bad_lexical_cast>(std::wstring(L"abc"));
    expectFailureLeavesValue<signed char, boost::numeric::positive_overflow>(std::wstring(L"200"));
    expectFailureLeavesValue<int, EmptyVectorCastToScalar>(std::vector<int>{1, 2});
    try {
        ba::get<std::wstring>(7L, true);
        ADD_FAILURE() << "no exception";
    } catch (const ba::UnsupportedAnyType& e) {
        EXPECT_EQ(e.getHeldType(), typeid(long));
    }

    // An empty value gives a plain std::exception, none of the layer's classes.
    try {
        ba::get<int>(boost::any(), true);
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& e) {
        EXPECT_EQ(typeid(e), typeid(std::exception));
    }
}

}  // namespace

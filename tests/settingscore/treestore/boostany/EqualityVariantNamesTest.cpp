// isEqual and isSupported, the round trip through SupportedVariant, the type names and codes,
// the exception texts, and concurrent use of the stateless layer.
#include "ValueSamples.hpp"

#include "platform/hf/Threads.hpp"

#include <gtest/gtest.h>

#include <boost/variant/get.hpp>

#include <atomic>
#include <cmath>

namespace ba = treestore::boostany;
using boostanytest::forEachType;
using boostanytest::sample;

namespace {

TEST(BoostAnyEquality, IsEqualAndIsSupported) {
    const boost::any empty;
    EXPECT_TRUE(ba::isEqual(empty, boost::any()));
    EXPECT_FALSE(ba::isEqual(empty, 0));
    EXPECT_FALSE(ba::isEqual(0, empty));
    EXPECT_FALSE(ba::isEqual(5, 5LL));  // no conversion
    EXPECT_FALSE(ba::isEqual(std::vector<int>{1, 2}, std::vector<int>{1}));
    EXPECT_TRUE(ba::isEqual(0.0, -0.0));

    const boost::any nan = std::nan("");
    const boost::any nanVector = std::vector<double>{1.0, std::nan("")};
    EXPECT_TRUE(ba::isEqual(nan, nan));  // the same object
    EXPECT_FALSE(ba::isEqual(nan, boost::any(nan)));
    EXPECT_TRUE(ba::isEqual(nanVector, nanVector));
    EXPECT_FALSE(ba::isEqual(nanVector, boost::any(nanVector)));

    forEachType(ba::SupportedTypes{}, [](auto tag) {
        using T = typename decltype(tag)::type;
        EXPECT_TRUE(ba::isEqual(sample<T>(), sample<T>()));
        EXPECT_FALSE(ba::isEqual(sample<T>(), T()));
        EXPECT_TRUE(ba::isSupported(T()));
    });

    // Only the first operand must be supported.
    const boost::any narrow = std::string("a");
    EXPECT_THROW(ba::isEqual(narrow, std::string("a")), ba::UnsupportedAnyType);
    EXPECT_TRUE(ba::isEqual(narrow, narrow));
    EXPECT_FALSE(ba::isEqual(1, narrow));
    EXPECT_FALSE(ba::isEqual(empty, narrow));

    EXPECT_TRUE(ba::isSupported(empty));
    EXPECT_FALSE(ba::isSupported(narrow));
    EXPECT_FALSE(ba::isSupported(7L));
    EXPECT_FALSE(ba::isSupported(L'c'));
    EXPECT_FALSE(ba::isSupported(static_cast<const wchar_t*>(L"text")));
}

TEST(BoostAnyVariant, RoundTripsOfAllAlternatives) {
    EXPECT_EQ(ba::convertAnyToVariant(boost::any()).which(), 0);
    EXPECT_TRUE(ba::convertVariantToAny(ba::SupportedVariant()).empty());
    EXPECT_TRUE(ba::detail::CreateAny()().empty());
    EXPECT_EQ(ba::detail::CreateVariant()().which(), 0);

    int expectedWhich = 1;
    forEachType(ba::SupportedTypes{}, [&](auto tag) {
        using T = typename decltype(tag)::type;
        const ba::SupportedVariant variant = ba::convertAnyToVariant(sample<T>());
        EXPECT_EQ(variant.which(), expectedWhich++);
        ASSERT_NE(boost::get<T>(&variant), nullptr);
        EXPECT_EQ(boost::get<T>(variant), sample<T>());
        const boost::any back = ba::convertVariantToAny(variant);
        ASSERT_EQ(back.type(), typeid(T));
        EXPECT_EQ(boost::any_cast<T>(back), sample<T>());
    });
    EXPECT_THROW(ba::convertAnyToVariant(std::string("x")), ba::UnsupportedAnyType);
}

TEST(BoostAnyNames, NamesCodesAndExceptionTexts) {
    const char* const scalarNames[] = {"string", "bool",   "int8",  "uint8",  "int16", "uint16",
                                       "int32",  "uint32", "int64", "uint64", "float", "double"};
    int position = 0;
    forEachType(ba::SupportedTypes{}, [&](auto tag) {
        using T = typename decltype(tag)::type;
        const int scalar = position++ % 12;
        const std::string array = ba::isVectorType<T> ? "array of " : "";
        EXPECT_EQ(ba::typeNameOf(T()), array + scalarNames[scalar]);
        EXPECT_EQ(ba::fileTypeName<T>(), array.empty() ? scalarNames[scalar] : "unsupported");
        EXPECT_EQ(ba::typeCodeOf<T>(), scalar + 1);
        EXPECT_EQ(ba::typeCodeOf<T>(), ba::convertAnyToVariant(ba::ScalarOf<T>()).which());
    });
    EXPECT_EQ(ba::typeCodeOf<boost::mpl::void_>(), 25);
    EXPECT_EQ(ba::typeNameOf(boost::any()), "void");
    EXPECT_THROW(ba::typeNameOf(1L), ba::UnsupportedAnyType);
    std::string name = "previous content";
    ba::writeTypeName<short>(name);
    EXPECT_EQ(name, "int16");
    ba::writeArrayTypeName<std::wstring>(name);
    EXPECT_EQ(name, "array of string");

    EXPECT_STREQ(ba::detail::TypeNotMatch().what(),
                 "The desired type does not match the current type.");
    EXPECT_STREQ(ba::detail::EmptyVectorCastToScalar().what(),
                 "empty vector cannot be used to initialize a scalar.");
    EXPECT_STREQ(ba::UnsupportedAnyType(typeid(long)).what(),
                 "The type contained within the boost::any is not listed in "
                 "treestore::boostany::SupportedTypes.");
}

// The layer keeps no state: threads converting shared values all get their own results.
TEST(BoostAnyThreads, ConcurrentReadsOfSharedValues) {
    const boost::any number = 0.1f;
    const boost::any text = std::wstring(L"-1234");
    const boost::any vector = std::vector<double>{0.5, 1e300};
    const std::vector<std::wstring> vectorText{L"0.5", L"1.0000000000000001e+300"};
    std::atomic<int> failures{0};
    hftest::onThreads(4, [&](int) {
        for (int i = 0; i < 2000; ++i) {
            failures += ba::get<std::wstring>(number, true) != L"0.100000001" ||
                        ba::get<int>(text, true) != -1234 ||
                        ba::get<std::vector<std::wstring>>(vector, true) != vectorText;
        }
    });
    EXPECT_EQ(0, failures.load());
}

}  // namespace

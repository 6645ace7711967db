// The value layer: get<T> strict against converting over every pair of supported types, vector
// and scalar shapes, numeric ranges, numbers to text and back (independent of the C locale),
// bad input; isEqual and isSupported; the variant round trip and type codes.
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include "platform/hf/Threads.hpp"
#include "platform/hlu/CommaLocale.hpp"

#include <gtest/gtest.h>

#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>
#include <boost/variant/get.hpp>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace ba = treestore::boostany;
using ba::detail::EmptyVectorCastToScalar;
using ba::detail::TypeList;
using ba::detail::TypeNotMatch;
using boost::bad_lexical_cast;
using boost::numeric::negative_overflow;
using boost::numeric::positive_overflow;

namespace {

// Calls f(static_cast<T*>(nullptr)) for each T of the list, in order.
template <class... Ts, class F>
void forEachType(TypeList<Ts...>, F&& f) {
    (f(static_cast<Ts*>(nullptr)), ...);
}

// The number `n` in T: decimal text for wstring, n != 0 for bool, one element for vectors.
template <class T>
T number(int n) {
    if constexpr (ba::isVectorType<T>) {
        return T{number<typename T::value_type>(n)};
    } else if constexpr (std::is_same_v<T, std::wstring>) {
        return std::to_wstring(n);
    } else {
        return static_cast<T>(n);
    }
}

template <class T>
T read(const boost::any& source) {
    return ba::get<T>(source, true);
}
template <class T>
T parse(const std::wstring& source) {
    return read<T>(source);
}

// Strict reads succeed for the same type and to or from a one-element vector of it, every
// other pair is TypeNotMatch; converting reads of zero and one succeed for every pair.
TEST(BoostAnyGet, StrictAndConvertingReadsOverAllPairs) {
    int strictSuccesses = 0;
    forEachType(ba::SupportedTypes{}, [&](auto source) {
        using S = std::remove_pointer_t<decltype(source)>;
        forEachType(ba::SupportedTypes{}, [&](auto target) {
            using T = std::remove_pointer_t<decltype(target)>;
            const boost::any one = number<S>(1);
            SCOPED_TRACE(ba::typeNameOf(one) + " -> " + ba::typeNameOf(T()));
            if (std::is_same_v<S, T> || std::is_same_v<T, std::vector<S>> ||
                std::is_same_v<S, std::vector<T>>) {
                EXPECT_EQ(ba::get<T>(one, false), number<T>(1));
                ++strictSuccesses;
            } else {
                EXPECT_THROW(ba::get<T>(one, false), TypeNotMatch);
            }
            EXPECT_EQ(read<T>(one), number<T>(1));
            EXPECT_EQ(read<T>(number<S>(0)), number<T>(0));
        });
    });
    EXPECT_EQ(strictSuccesses, 24 + 12 + 12);
}

TEST(BoostAnyGet, VectorShapesAndBadInput) {
    for (bool allow : {false, true}) {  // the size is tested first, for 0 and 2+ elements alike
        EXPECT_THROW(ba::get<int>(std::vector<int>{}, allow), EmptyVectorCastToScalar);
        EXPECT_THROW(ba::get<int>(std::vector<short>{7, 8}, allow), EmptyVectorCastToScalar);
    }
    // Vector to vector of another element: strict fails even when empty, one bad element
    // fails the whole read; text is never split.
    EXPECT_THROW(ba::get<std::vector<short>>(std::vector<int>{}, false), TypeNotMatch);
    EXPECT_EQ(read<std::vector<std::wstring>>(std::vector<double>{0.5, -2}),
              (std::vector<std::wstring>{L"0.5", L"-2"}));
    EXPECT_THROW(read<std::vector<signed char>>(std::vector<int>{1, 300}), positive_overflow);
    EXPECT_EQ(read<std::vector<std::wstring>>(std::wstring(L"1,2")),
              std::vector<std::wstring>{L"1,2"});
    EXPECT_THROW(read<std::vector<int>>(std::wstring(L"1,2")), boost::bad_lexical_cast);

    // Types close to supported ones are still outside the list, and the failure names the type.
    for (const boost::any& bad : {boost::any(std::string("7")), boost::any(7L), boost::any('7'),
                                  boost::any(std::vector<long>{7})}) {
        try {
            read<int>(bad);
            ADD_FAILURE() << bad.type().name();
        } catch (const ba::UnsupportedAnyType& e) {
            EXPECT_EQ(e.getHeldType(), bad.type());
        }
    }
    // An empty value gives a plain std::exception, none of the layer's classes.
    try {
        read<int>(boost::any());
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& e) {
        EXPECT_EQ(typeid(e), typeid(std::exception));
    }
}

using IntegerTypes = TypeList<signed char, unsigned char, short, unsigned short, int, unsigned int,
                              long long, unsigned long long>;

// Each integer target takes its min and max from the widest integers and refuses one beyond;
// no NaN fits; floating sources are truncated toward zero, (min - 1, max + 1) exclusive.
TEST(BoostAnyNumeric, IntegerTargetLimits) {
    forEachType(IntegerTypes{}, [](auto tag) {
        using T = std::remove_pointer_t<decltype(tag)>;
        using L = std::numeric_limits<T>;
        SCOPED_TRACE(ba::typeNameOf(T()));
        EXPECT_EQ(read<T>(static_cast<long long>(L::min())), L::min());
        EXPECT_EQ(read<T>(static_cast<unsigned long long>(L::max())), L::max());
        if constexpr (!L::is_signed) {
            EXPECT_THROW(read<T>(static_cast<signed char>(-1)), negative_overflow);
        } else if constexpr (sizeof(T) < sizeof(long long)) {
            EXPECT_THROW(read<T>(static_cast<long long>(L::min()) - 1), negative_overflow);
        }
        if constexpr (L::max() < std::numeric_limits<unsigned long long>::max()) {
            EXPECT_THROW(read<T>(static_cast<unsigned long long>(L::max()) + 1), positive_overflow);
        }
        EXPECT_THROW(read<std::vector<T>>(std::vector<float>{1.0f, NAN}),
                     boost::numeric::bad_numeric_cast);
    });
    forEachType(TypeList<float, double>{}, [](auto tag) {
        using F = std::remove_pointer_t<decltype(tag)>;
        SCOPED_TRACE(ba::typeNameOf(F()));
        EXPECT_EQ(read<signed char>(F(-128.99)), -128);
        EXPECT_THROW(read<signed char>(F(128)), positive_overflow);
        EXPECT_EQ(read<unsigned int>(F(-0.5)), 0u);
        // At the wide ends the minimum is an exact power of two that the target holds.
        const F int64Min = F(-9223372036854775808.0), two64 = F(18446744073709551616.0);
        EXPECT_EQ(read<long long>(int64Min), std::numeric_limits<long long>::min());
        EXPECT_THROW(read<long long>(std::nextafter(int64Min, F(-1e30))), negative_overflow);
        EXPECT_THROW(read<long long>(-int64Min), positive_overflow);
        const F belowTwo64 = std::nextafter(two64, F(0));
        EXPECT_EQ(read<unsigned long long>(belowTwo64),
                  static_cast<unsigned long long>(belowTwo64));
        EXPECT_THROW(read<unsigned long long>(two64), positive_overflow);
    });
}

TEST(BoostAnyNumeric, FloatingAndBoolTargets) {
    EXPECT_THROW(read<float>(-1e39), negative_overflow);
    EXPECT_EQ(read<float>(3.4028234663852886e38), std::numeric_limits<float>::max());
    EXPECT_TRUE(std::isnan(read<float>(std::nan(""))));
    EXPECT_EQ(read<float>(16777217), 16777216.0f);  // plain, rounding conversion
    // bool takes 0 and 1, and floating values truncated toward zero to them.
    EXPECT_TRUE(read<bool>(static_cast<unsigned short>(1)) && read<bool>(1.9));
    EXPECT_FALSE(read<bool>(0.5) || read<bool>(-0.9f));
    EXPECT_THROW(read<bool>(2.0f), positive_overflow);
    EXPECT_THROW(read<bool>(static_cast<signed char>(-1)), negative_overflow);
}

TEST(BoostAnyText, NumbersToTextOnThreads) {
    const std::pair<boost::any, std::wstring> cases[] = {
        {static_cast<signed char>(-5), L"-5"},  // a number, not a character
        {std::numeric_limits<unsigned long long>::max(), L"18446744073709551615"},
        {true, L"1"},
        {0.1f, L"0.100000001"},
        {0.1, L"0.10000000000000001"},
        {std::nan(""), L"nan"},
        {-std::nanf(""), L"-nan"},
        {-HUGE_VAL, L"-inf"}};
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(read<std::wstring>(value), expected);
    }

    // A float's text (9 digits) and a double's (17) are printf's %.*g and read back exactly;
    // the layer keeps no state, so threads doing this at once all get their own results.
    const auto printfText = [](double value, int precision) {
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%.*g", precision, value);
        return std::wstring(buffer, buffer + std::strlen(buffer));
    };
    hftest::onThreads(4, [&](int seed) {
        std::mt19937_64 random(seed);
        for (int i = 0; i < 2000; ++i) {
            const std::uint64_t bits = random();
            double d;
            float f;
            std::memcpy(&d, &bits, sizeof d);
            std::memcpy(&f, &bits, sizeof f);
            if (std::isfinite(d)) {
                ASSERT_EQ(read<std::wstring>(d), printfText(d, 17));
                ASSERT_EQ(read<double>(read<std::wstring>(d)), d);
            }
            if (std::isfinite(f)) {
                ASSERT_EQ(read<std::wstring>(f), printfText(f, 9));
                ASSERT_EQ(read<float>(read<std::wstring>(f)), f);
            }
        }
    });
}

TEST(BoostAnyText, TextToNumbersAndBool) {
    EXPECT_THROW(parse<signed char>(L"-129"), negative_overflow);
    EXPECT_EQ(parse<unsigned short>(L"-1"), 65535);  // lexical_cast wraps unsigned targets
    EXPECT_THROW(parse<unsigned char>(L"-1"), positive_overflow);
    for (const wchar_t* nan : {L"nan", L"NAN", L"-nan", L"+NAN", L"nan(abc)", L"NAN()"}) {
        EXPECT_TRUE(std::isnan(parse<double>(nan)) && std::isnan(parse<float>(nan))) << nan;
    }
    for (const wchar_t* inf : {L"inf", L"INF", L"infinity", L"INFINITY", L"+inf", L"-INFINITY"}) {
        const double expected = inf[0] == L'-' ? -HUGE_VAL : HUGE_VAL;
        EXPECT_TRUE(parse<double>(inf) == expected && parse<float>(inf) == expected) << inf;
    }
    for (const wchar_t* bad :
         {L"NaN", L"Inf", L"nan(", L"inf(1)", L"1e", L"1-", L"1e+", L"1,5", L"", L" 1", L"A"}) {
        EXPECT_THROW(parse<double>(bad), bad_lexical_cast) << bad;
        EXPECT_THROW(parse<float>(bad), bad_lexical_cast) << bad;
        EXPECT_THROW(parse<int>(bad), bad_lexical_cast) << bad;
    }
    for (const wchar_t* good : {L"0", L"+0", L"-0", L"1", L"+1"}) {
        EXPECT_EQ(parse<bool>(good), good[std::wcslen(good) - 1] == L'1') << good;
    }
    for (const wchar_t* bad : {L"true", L"-1", L"2", L"00", L"01", L""}) {
        EXPECT_THROW(parse<bool>(bad), bad_lexical_cast) << bad;
    }
}

// Float text does not follow a comma LC_NUMERIC.
TEST(BoostAnyText, FloatingTextIgnoresACommaCLocale) {
    hlutest::CommaLocale comma;
    if (!comma.active()) {
        GTEST_SKIP() << "no locale with a decimal comma is installed or can be built";
    }
    EXPECT_EQ(read<std::wstring>(6.02214076e23), L"6.0221407599999999e+23");
    EXPECT_EQ(parse<double>(L"0.25"), 0.25);
    EXPECT_THROW(parse<double>(L"0,25"), bad_lexical_cast);
}

TEST(BoostAnyEquality, IsEqualAndIsSupported) {
    const boost::any empty, narrow = std::string("a");
    EXPECT_TRUE(ba::isEqual(empty, boost::any()) && ba::isEqual(0.0, -0.0));
    // No conversion between types, no prefix match.
    EXPECT_FALSE(ba::isEqual(empty, 0) || ba::isEqual(0, empty) || ba::isEqual(5, 5LL) ||
                 ba::isEqual(std::vector<int>{1, 2}, std::vector<int>{1}));
    // NaN equals only the very same object.
    for (const boost::any& nan :
         {boost::any(std::nan("")), boost::any(std::vector<double>{1.0, NAN})}) {
        EXPECT_TRUE(ba::isEqual(nan, nan));
        EXPECT_FALSE(ba::isEqual(nan, boost::any(nan)));
    }
    forEachType(ba::SupportedTypes{}, [](auto tag) {
        using T = std::remove_pointer_t<decltype(tag)>;
        EXPECT_TRUE(ba::isEqual(number<T>(7), number<T>(7)) && ba::isSupported(T()));
        EXPECT_FALSE(ba::isEqual(number<T>(7), T()));
    });
    // Only the first operand must be supported.
    EXPECT_THROW(ba::isEqual(narrow, std::string("a")), ba::UnsupportedAnyType);
    EXPECT_TRUE(ba::isEqual(narrow, narrow) && !ba::isEqual(1, narrow) &&
                !ba::isEqual(empty, narrow));
    EXPECT_TRUE(ba::isSupported(empty) && !ba::isSupported(narrow) && !ba::isSupported(7L));
}

// Every alternative through the variant and back: the empty value is alternative 0, each type
// sits at its position in SupportedTypes and has its scalar's type code.
TEST(BoostAnyVariant, RoundTripsAndCodesOfAllAlternatives) {
    EXPECT_TRUE(ba::convertAnyToVariant(boost::any()).which() == 0 &&
                ba::convertVariantToAny(ba::SupportedVariant()).empty());
    int position = 0;
    forEachType(ba::SupportedTypes{}, [&](auto tag) {
        using T = std::remove_pointer_t<decltype(tag)>;
        const ba::SupportedVariant variant = ba::convertAnyToVariant(number<T>(7));
        EXPECT_EQ(variant.which(), ++position);
        EXPECT_TRUE(boost::get<T>(&variant) && *boost::get<T>(&variant) == number<T>(7));
        const boost::any back = ba::convertVariantToAny(variant);
        EXPECT_TRUE(boost::any_cast<T>(&back) && *boost::any_cast<T>(&back) == number<T>(7));
        EXPECT_EQ(ba::typeCodeOf<T>(), (position - 1) % 12 + 1);
    });
    EXPECT_THROW(ba::convertAnyToVariant(std::string("x")), ba::UnsupportedAnyType);
    EXPECT_EQ(ba::typeCodeOf<boost::mpl::void_>(), 25);
    EXPECT_EQ(ba::typeNameOf(boost::any()), "void");
    EXPECT_THROW(ba::typeNameOf(1L), ba::UnsupportedAnyType);
    EXPECT_EQ(ba::fileTypeName<std::vector<signed char>>(), "unsupported");  // files: scalars only
}

}  // namespace

// Numbers to text and back: the written forms, the accepted spellings, and independence from
// the process's C locale.
#include "ValueSamples.hpp"

#include "platform/hlu/CommaLocale.hpp"

#include <gtest/gtest.h>

#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

namespace ba = treestore::boostany;
using boost::bad_lexical_cast;

namespace {

template <class S>
std::wstring text(S source) {
    return ba::get<std::wstring>(source, true);
}

template <class T>
T parse(const std::wstring& source) {
    return ba::get<T>(source, true);
}

// printf's %.*g in whatever C locale is current.
std::wstring printfText(double value, int precision) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*g", precision, value);
    return std::wstring(buffer, buffer + std::strlen(buffer));
}

TEST(BoostAnyText, NumbersToText) {
    EXPECT_EQ(text(static_cast<signed char>(-5)), L"-5");  // a number, not a character
    EXPECT_EQ(text(static_cast<unsigned char>(65)), L"65");
    EXPECT_EQ(text(std::numeric_limits<unsigned long long>::max()), L"18446744073709551615");
    EXPECT_EQ(text(true), L"1");
    EXPECT_EQ(text(0.1f), L"0.100000001");
    EXPECT_EQ(text(0.1), L"0.10000000000000001");
    EXPECT_EQ(text(1e39), L"9.9999999999999994e+38");
    EXPECT_EQ(text(std::nan("")), L"nan");
    EXPECT_EQ(text(-std::nanf("")), L"-nan");
    EXPECT_EQ(text(HUGE_VALF), L"inf");
    EXPECT_EQ(text(-HUGE_VAL), L"-inf");
}

// A float's text (9 digits) and a double's (17) are printf's %.*g and read back exactly.
TEST(BoostAnyText, FloatingTextMatchesPrintfAndRoundTrips) {
    std::mt19937_64 random(12345);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t bits = random();
        double d;
        float f;
        std::memcpy(&d, &bits, sizeof d);
        std::memcpy(&f, &bits, sizeof f);
        if (std::isfinite(d)) {
            ASSERT_EQ(text(d), printfText(d, 17));
            ASSERT_EQ(parse<double>(text(d)), d);
        }
        if (std::isfinite(f)) {
            ASSERT_EQ(text(f), printfText(f, 9));
            ASSERT_EQ(parse<float>(text(f)), f);
        }
    }
}

TEST(BoostAnyText, TextToNumbersAndBool) {
    EXPECT_EQ(parse<signed char>(L"65"), 65);
    EXPECT_THROW(parse<signed char>(L"200"), boost::numeric::positive_overflow);
    EXPECT_THROW(parse<signed char>(L"-129"), boost::numeric::negative_overflow);
    EXPECT_THROW(parse<signed char>(L"A"), bad_lexical_cast);
    EXPECT_EQ(parse<unsigned short>(L"-1"), 65535);  // lexical_cast wraps unsigned targets
    EXPECT_THROW(parse<unsigned char>(L"-1"), boost::numeric::positive_overflow);
    EXPECT_THROW(parse<int>(L" 1"), bad_lexical_cast);

    for (const wchar_t* nan : {L"nan", L"NAN", L"-nan", L"+NAN", L"nan(abc)", L"NAN()"}) {
        EXPECT_TRUE(std::isnan(parse<double>(nan))) << nan;
        EXPECT_TRUE(std::isnan(parse<float>(nan))) << nan;
    }
    for (const wchar_t* inf : {L"inf", L"INF", L"infinity", L"INFINITY", L"+inf", L"-INFINITY"}) {
        const double expected = inf[0] == L'-' ? -HUGE_VAL : HUGE_VAL;
        EXPECT_EQ(parse<double>(inf), expected) << inf;
        EXPECT_EQ(parse<float>(inf), static_cast<float>(expected)) << inf;
    }
    for (const wchar_t* bad : {L"NaN", L"Inf", L"Infinity", L"nan(", L"inf(1)", L"1e", L"1E", L"1-",
                               L"1+", L"1e+", L"1,5", L""}) {
        EXPECT_THROW(parse<double>(bad), bad_lexical_cast) << bad;
        EXPECT_THROW(parse<float>(bad), bad_lexical_cast) << bad;
    }
    EXPECT_EQ(parse<double>(L"1.5e3"), 1500.0);

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
    EXPECT_EQ(text(0.1f), L"0.100000001");
    EXPECT_EQ(text(6.02214076e23), L"6.0221407599999999e+23");
    EXPECT_EQ(parse<double>(L"0.25"), 0.25);
    EXPECT_THROW(parse<double>(L"0,25"), bad_lexical_cast);
}

}  // namespace

// The reading rule of value text, called directly: integers by strict cast, 8-bit integers
// range checked outside the failure translation, floating point through the number prefix
// with zero checked strictly, bool by exact words, strings untouched.
#include "ReadingFixture.hpp"

#include <settingscore/core/xml/ValueTextReading.hpp>

#include <boost/numeric/conversion/converter_policies.hpp>

#include <cmath>
#include <limits>

namespace readingtest {
namespace {

using sc::detail::readValueText;
using WrongValue =
    sc::MessageException<TOLVAN::settings::core::XMLParseErrorWrongValueForGivenType>;

// The arguments of the wrong-value failure that reading `text` as T raises; empty when it
// raises none.
template <class T>
std::vector<std::wstring> wrongValueArgs(const std::wstring& text) {
    try {
        readValueText<T>(text);
    } catch (const WrongValue& failure) {
        return failure.getMessage().getArgs();
    }
    return {};
}

TEST(ValueTextTest, IntegersCastStrictlyAndNameTheirTypeWhenTheyFail) {
    EXPECT_EQ(readValueText<short>(L"-32768"), -32768);
    EXPECT_EQ(readValueText<unsigned short>(L"65535"), 65535);
    EXPECT_EQ(readValueText<int>(L"-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(readValueText<unsigned>(L"4294967295"), 4294967295u);
    EXPECT_EQ(readValueText<long long>(L"-9223372036854775807"), -9223372036854775807LL);
    EXPECT_EQ(readValueText<unsigned long long>(L"18446744073709551615"),
              std::numeric_limits<unsigned long long>::max());

    const auto args = wrongValueArgs<int>(L"12abc");
    ASSERT_EQ(args.size(), 3u);
    EXPECT_EQ(args[0], L"int32");
    EXPECT_EQ(args[1], L"12abc");
    EXPECT_FALSE(args[2].empty());                                // the cast's own reason
    EXPECT_EQ(wrongValueArgs<short>(L"32768").at(0), L"int16");   // beyond 16 bits: no number
    EXPECT_EQ(wrongValueArgs<long long>(L" 5").at(0), L"int64");  // no trimming
    EXPECT_EQ(wrongValueArgs<unsigned long long>(L"").at(0), L"uint64");
}

TEST(ValueTextTest, EightBitIntegersOverflowOutsideTheWrongValueFailure) {
    EXPECT_EQ(readValueText<signed char>(L"-128"), -128);
    EXPECT_EQ(readValueText<signed char>(L"127"), 127);
    EXPECT_EQ(readValueText<unsigned char>(L"255"), 255);
    EXPECT_THROW(readValueText<signed char>(L"128"), boost::numeric::positive_overflow);
    EXPECT_THROW(readValueText<signed char>(L"-129"), boost::numeric::negative_overflow);
    EXPECT_THROW(readValueText<unsigned char>(L"256"), boost::numeric::positive_overflow);
    // Text that is no 16-bit number at all is a wrong value of the 8-bit type word.
    EXPECT_EQ(wrongValueArgs<signed char>(L"40000").at(0), L"int8");
    EXPECT_EQ(wrongValueArgs<unsigned char>(L"x").at(0), L"uint8");
}

TEST(ValueTextTest, FloatingPointReadsTheNumberPrefixAndChecksZeroStrictly) {
    EXPECT_EQ(readValueText<double>(L"1.5abc"), 1.5);
    EXPECT_EQ(readValueText<double>(L"-2.5e3"), -2500.0);
    EXPECT_EQ(readValueText<double>(L"0.1"), 0.1);
    EXPECT_EQ(readValueText<float>(L"0.1"), 0.1f);
    EXPECT_EQ(readValueText<double>(L"0"), 0.0);
    EXPECT_EQ(readValueText<float>(L"0.0"), 0.0f);
    EXPECT_TRUE(std::isnan(readValueText<double>(L"nan")));
    EXPECT_EQ(readValueText<double>(L"-inf"), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(readValueText<float>(L"1e300"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(readValueText<float>(L"-1e300"), -std::numeric_limits<float>::infinity());

    EXPECT_EQ(wrongValueArgs<double>(L"abc").at(0), L"double");
    EXPECT_EQ(wrongValueArgs<double>(L"0abc").at(1), L"0abc");
    EXPECT_EQ(wrongValueArgs<float>(L"").at(0), L"float");
    EXPECT_TRUE(wrongValueArgs<double>(L"1.5abc").empty());
}

TEST(ValueTextTest, BoolIsTrueForExactlyTrueOrOneAndNeverFails) {
    EXPECT_TRUE(readValueText<bool>(L"true"));
    EXPECT_TRUE(readValueText<bool>(L"1"));
    for (const wchar_t* text : {L"TRUE", L"yes", L"True", L" 1", L"0", L"false", L""}) {
        EXPECT_FALSE(readValueText<bool>(text)) << hf::i18n::to_string(text);
    }
}

TEST(ValueTextTest, StringsAreTakenAsTheyStand) {
    for (const wchar_t* text : {L"", L"  padded  ", L"Gr\u00FC\u00DFe \u20AC", L"a]]>b", L"0abc"}) {
        EXPECT_EQ(readValueText<std::wstring>(text), text);
    }
    EXPECT_STREQ(sc::detail::typeWordOf<std::wstring>(), "string");
    EXPECT_STREQ(sc::detail::typeWordOf<unsigned char>(), "uint8");
}

}  // namespace
}  // namespace readingtest

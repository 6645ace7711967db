#include <platform/hf/i18n/Conversion.hpp>

#include <support/EnvVarGuard.hpp>

#include <gtest/gtest.h>

#include <string>

namespace i18n = hf::i18n;

TEST(Conversion, Utf8AndWideRoundTripAcrossAllPlanes) {
    // Each side of every boundary between the lengths of the UTF-8 forms.
    const std::wstring wide = L"\u007F\u0080\u07FF\u0800\uFFFD\U00010000\U0010FFFF";
    const std::string utf8 = i18n::to_string(wide);
    EXPECT_EQ("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", utf8);
    EXPECT_EQ(wide, i18n::to_ustring(utf8));
    EXPECT_EQ(L"creation.timestamp", i18n::codecvt_ascii_to_ustring("creation.timestamp"));
}

TEST(Conversion, MalformedUtf8IsDroppedAndTheRestSurvives) {
    // Octal escapes: a truncated sequence, a stray continuation byte, a sequence cut before its
    // last byte, an overlong '/', an encoded surrogate.
    EXPECT_EQ(L"ab", i18n::to_ustring("a\377b"));
    EXPECT_EQ(L"ab", i18n::to_ustring("a\303b"));
    EXPECT_EQ(L"a\u00E9", i18n::to_ustring("a\200\303\251"));
    EXPECT_EQ(L"", i18n::to_ustring("\360\237\230"));
    EXPECT_EQ(L"ab", i18n::to_ustring("a\300\257b"));
    EXPECT_EQ(L"ab", i18n::to_ustring("a\355\240\200b"));
    // Wide characters outside Unicode have no UTF-8 form and are dropped.
    const std::wstring outside = {L'a', static_cast<wchar_t>(0xD800), L'b',
                                  static_cast<wchar_t>(0x110000)};
    EXPECT_EQ("ab", i18n::to_string(outside));
}

TEST(Conversion, GetenvReadsTheEnvironmentAsWideText) {
    const std::wstring name = L"HF_TEST_CONVERSION_VARIABLE";
    {
        testsupport::EnvVarGuard set("HF_TEST_CONVERSION_VARIABLE", "/home/j\xC3\xBCrgen/pref");
        EXPECT_EQ(L"/home/j\u00FCrgen/pref", i18n::getenv(name));
    }
    testsupport::EnvVarGuard unset("HF_TEST_CONVERSION_VARIABLE", std::nullopt);
    EXPECT_EQ(L"", i18n::getenv(name));
}

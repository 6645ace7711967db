#include <platform/hlu/hlu.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

// The conversion of `utf8`, released by hluRelease as the host's callers do.
std::u16string convert(const std::string& utf8) {
    std::unique_ptr<char16_t, decltype(&hluRelease)> buffer(hluLcpToUtf16(utf8.c_str()),
                                                            &hluRelease);
    return buffer ? std::u16string(buffer.get()) : std::u16string(u"<null>");
}

}  // namespace

TEST(Utf16, ConvertsAllPlanesWithSurrogatePairs) {
    EXPECT_EQ(u"", convert(""));
    EXPECT_EQ(u"http://www.example.com/settings", convert("http://www.example.com/settings"));
    EXPECT_EQ(u"\u00E9\u20AC\uFFFF", convert("\xC3\xA9\xE2\x82\xAC\xEF\xBF\xBF"));
    EXPECT_EQ(u"\u007F\u0080\u07FF\u0800", convert("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"));
    const std::u16string smiley = convert("\xF0\x9F\x98\x80");
    ASSERT_EQ(2u, smiley.size());
    EXPECT_EQ(0xD83D, smiley[0]);
    EXPECT_EQ(0xDE00, smiley[1]);
    EXPECT_EQ(u"\U00010000\U0010FFFF", convert("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
    EXPECT_EQ(nullptr, hluLcpToUtf16(nullptr));
    hluRelease(nullptr);
}

TEST(Utf16, EachMalformedSequenceBecomesOneReplacementCharacter) {
    // Octal escapes: a stray continuation byte, a lead byte without its continuation, a cut at
    // the end, overlong two- and three-byte forms, an encoded surrogate, above U+10FFFF, bytes
    // that never occur, and a cut sequence whose rest survives.
    const std::pair<const char*, const char16_t*> cases[] = {
        {"a\200b", u"a\uFFFDb"},
        {"a\303b", u"a\uFFFDb"},
        {"\342\202", u"\uFFFD"},
        {"\300\257", u"\uFFFD\uFFFD"},
        {"\340\200\257", u"\uFFFD\uFFFD\uFFFD"},
        {"\355\240\200", u"\uFFFD\uFFFD\uFFFD"},
        {"\364\220\200\200", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\377\376", u"\uFFFD\uFFFD"},
        {"\360\237\230x\303\251", u"\uFFFDx\u00E9"},
    };
    for (const auto& [utf8, utf16] : cases) {
        EXPECT_EQ(std::u16string(utf16), convert(utf8)) << utf8;
    }
}

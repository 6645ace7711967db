#include <settingscore/core/xml/detail/XmlText.hpp>

#include <platform/hlu/hlu.h>
#include <platform/hf/i18n/Conversion.hpp>

#include <xercesc/util/XMLString.hpp>

#include <new>
#include <type_traits>

namespace settings {
namespace core {
namespace detail {

static_assert(std::is_same<XMLCh, char16_t>::value,
              "the parser's characters are expected to be UTF-16 code units");

std::wstring toWideText(const XMLCh* text, std::size_t length) {
    std::wstring result;
    if (!text) {
        return result;
    }
    result.reserve(length);
    for (std::size_t i = 0; i < length; ++i) {
        const char32_t unit = text[i];
        const bool high = unit >= 0xD800 && unit <= 0xDBFF;
        if (high && i + 1 < length && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            const char32_t low = text[++i];
            result += static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
        } else if (unit >= 0xD800 && unit <= 0xDFFF) {
            result += L'\uFFFD';
        } else {
            result += static_cast<wchar_t>(unit);
        }
    }
    return result;
}

std::wstring toWideText(const XMLCh* text) {
    return text ? toWideText(text, xercesc::XMLString::stringLen(text)) : std::wstring();
}

std::string toNarrowText(const XMLCh* text) {
    return hf::i18n::to_string(toWideText(text));
}

Utf16Buffer toUtf16Buffer(const std::string& utf8) {
    char16_t* buffer = hluLcpToUtf16(utf8.c_str());
    if (!buffer) {
        throw std::bad_alloc();
    }
    return Utf16Buffer(buffer, [](XMLCh* memory) { hluRelease(memory); });
}

Utf16Buffer toUtf16Buffer(const std::wstring& text) {
    return toUtf16Buffer(hf::i18n::to_string(text));
}

std::string attributeText(const xercesc::Attributes& attributes, const XMLCh* localName) {
    return toNarrowText(attributes.getValue(u"", localName));
}

}  // namespace detail
}  // namespace core
}  // namespace settings

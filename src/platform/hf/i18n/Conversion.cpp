#include <platform/hf/i18n/Conversion.hpp>

#include <platform/hf/i18n/detail/Utf8Decoder.hpp>

#include <boost/locale/encoding_utf.hpp>

#include <cstdlib>

namespace hf {
namespace i18n {

std::string to_string(const std::wstring& text) {
    return boost::locale::conv::utf_to_utf<char>(text, boost::locale::conv::skip);
}

std::wstring to_ustring(const std::string& text) {
    // Not utf_to_utf with skip: after a cut-off sequence it also drops the next character.
    std::wstring result;
    result.reserve(text.size());
    detail::decodeUtf8(
        text.data(), text.size(),
        [&result](char32_t codePoint) { result += static_cast<wchar_t>(codePoint); }, [] {});
    return result;
}

std::wstring utf16_to_ustring(const char16_t* text, std::size_t length) {
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

std::wstring codecvt_ascii_to_ustring(const std::string& text) {
    return std::wstring(text.begin(), text.end());
}

std::wstring getenv(const std::wstring& name) {
    const char* value = std::getenv(to_string(name).c_str());
    return value ? to_ustring(value) : std::wstring();
}

}  // namespace i18n
}  // namespace hf

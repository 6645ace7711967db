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

std::wstring codecvt_ascii_to_ustring(const std::string& text) {
    return std::wstring(text.begin(), text.end());
}

std::wstring getenv(const std::wstring& name) {
    const char* value = std::getenv(to_string(name).c_str());
    return value ? to_ustring(value) : std::wstring();
}

}  // namespace i18n
}  // namespace hf

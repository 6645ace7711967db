// UTF-8 to UTF-16 for the host's wide interfaces. Malformed input is replaced rather than
// refused, one U+FFFD for each maximal ill-formed subsequence, so the text keeps its shape.

#include <platform/hlu/hlu.h>

#include <platform/hf/i18n/detail/Utf8Decoder.hpp>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr char16_t replacement = 0xFFFD;

void appendCodePoint(std::u16string& out, char32_t codePoint) {
    if (codePoint < 0x10000) {
        out += static_cast<char16_t>(codePoint);
    } else {
        codePoint -= 0x10000;
        out += static_cast<char16_t>(0xD800 + (codePoint >> 10));
        out += static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
    }
}

std::u16string toUtf16(const char* text) {
    std::u16string out;
    hf::i18n::detail::decodeUtf8(
        text, std::strlen(text), [&out](char32_t codePoint) { appendCodePoint(out, codePoint); },
        [&out] { out += replacement; });
    return out;
}

}  // namespace

char16_t* hluLcpToUtf16(const char* text) {
    if (!text) {
        return nullptr;
    }
    const std::u16string converted = toUtf16(text);
    auto* buffer = static_cast<char16_t*>(std::malloc((converted.size() + 1) * sizeof(char16_t)));
    if (!buffer) {
        return nullptr;
    }
    std::memcpy(buffer, converted.data(), converted.size() * sizeof(char16_t));
    buffer[converted.size()] = 0;
    return buffer;
}

void hluRelease(void* memory) {
    std::free(memory);
}

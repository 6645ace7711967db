// A strict UTF-8 decoder shared by the text conversions of the platform layer. It reports
// each well-formed code point, and each maximal ill-formed subsequence once, so a bad byte never
// swallows the good text after it. Overlong forms, encoded surrogates and values above
// U+10FFFF are ill-formed.
#pragma once

#include <cstddef>

namespace hf {
namespace i18n {
namespace detail {

// Calls onCodePoint(char32_t) for each code point of text[0, size) and onMalformed() for each
// ill-formed subsequence, in text order.
template <class OnCodePoint, class OnMalformed>
void decodeUtf8(const char* text, std::size_t size, OnCodePoint&& onCodePoint,
                OnMalformed&& onMalformed) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    std::size_t i = 0;
    while (i < size) {
        const unsigned char lead = bytes[i];
        if (lead < 0x80) {
            onCodePoint(static_cast<char32_t>(lead));
            ++i;
            continue;
        }
        // Length and the allowed range of the second byte, which excludes overlong forms,
        // surrogates and values above U+10FFFF.
        std::size_t length = 0;
        unsigned char low = 0x80;
        unsigned char high = 0xBF;
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            low = lead == 0xE0 ? 0xA0 : 0x80;
            high = lead == 0xED ? 0x9F : 0xBF;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            low = lead == 0xF0 ? 0x90 : 0x80;
            high = lead == 0xF4 ? 0x8F : 0xBF;
        } else {
            onMalformed();
            ++i;
            continue;
        }
        char32_t codePoint = lead & (0xFF >> (length + 1));
        std::size_t taken = 1;
        for (; taken < length && i + taken < size; ++taken) {
            const unsigned char next = bytes[i + taken];
            if (next < (taken == 1 ? low : 0x80) || next > (taken == 1 ? high : 0xBF)) {
                break;
            }
            codePoint = (codePoint << 6) | (next & 0x3F);
        }
        if (taken == length) {
            onCodePoint(codePoint);
        } else {
            onMalformed();
        }
        i += taken;
    }
}

}  // namespace detail
}  // namespace i18n
}  // namespace hf

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
    return hf::i18n::utf16_to_ustring(text, length);
}

std::wstring toWideText(const XMLCh* text) {
    return text ? toWideText(text, xercesc::XMLString::stringLen(text)) : std::wstring();
}

void assignWideText(std::wstring& target, const XMLCh* text, std::size_t length) {
    const XMLCh* const end = text + (text ? length : 0);
    for (const XMLCh* unit = text; unit != end; ++unit) {
        if (*unit >= 0xD800 && *unit <= 0xDFFF) {
            target = toWideText(text, length);  // pairs to join, or a lone one to replace
            return;
        }
    }
    target.assign(text, end);  // without surrogates each unit is its own character
}

std::string toNarrowText(const XMLCh* text) {
    if (!text) {
        return std::string();
    }
    // Tags, names and numbers are plain ASCII nearly always: taken over unit by unit, without
    // the detour through wide text.
    std::size_t length = 0;
    for (; text[length]; ++length) {
        if (text[length] >= 0x80) {
            return hf::i18n::to_string(toWideText(text));
        }
    }
    return std::string(text, text + length);  // each unit below 0x80 is its own char
}

bool equalsText(const XMLCh* text, const std::string& narrow) {
    if (!text) {
        return narrow.empty();
    }
    std::size_t i = 0;
    for (; text[i] && i < narrow.size(); ++i) {
        const auto unit = static_cast<unsigned char>(narrow[i]);
        if (unit >= 0x80 || text[i] != unit) {
            return false;
        }
    }
    return !text[i] && i == narrow.size();
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
    // One pass over the element's few attributes: the lookup by namespace and name that the
    // attribute list offers resolves the namespace on every call.
    const XMLSize_t count = attributes.getLength();
    for (XMLSize_t i = 0; i < count; ++i) {
        if (xercesc::XMLString::equals(attributes.getLocalName(i), localName)) {
            const XMLCh* const uri = attributes.getURI(i);
            if (!uri || !*uri) {
                return toNarrowText(attributes.getValue(i));
            }
        }
    }
    return std::string();
}

}  // namespace detail
}  // namespace core
}  // namespace settings

// Text between the XML parser and the settings core: the parser's UTF-16 to wide and narrow
// text, wide and narrow text to a parser string, and attribute values by local name.
#pragma once

#include <boost/shared_ptr.hpp>

#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XercesDefs.hpp>

#include <array>
#include <cstddef>
#include <string>

namespace settings {
namespace core {
namespace detail {

// UTF-16 from the parser as wide text, surrogate pairs joined; a lone surrogate becomes
// U+FFFD. A null text is empty.
std::wstring toWideText(const XMLCh* text, std::size_t length);
std::wstring toWideText(const XMLCh* text);
// toWideText into `target`, whose memory is reused: for a caller that converts many texts.
void assignWideText(std::wstring& target, const XMLCh* text, std::size_t length);

// UTF-16 from the parser as narrow UTF-8 text; a null text is empty.
std::string toNarrowText(const XMLCh* text);

// Whether UTF-16 `text` from the parser reads as `narrow`, compared unit by unit: meant for
// tags, which are plain ASCII (a text with any other character is never equal).
bool equalsText(const XMLCh* text, const std::string& narrow);

// A NUL-terminated UTF-16 copy of UTF-8 `text` made by hluLcpToUtf16 and released by
// hluRelease when the last share goes.
using Utf16Buffer = boost::shared_ptr<XMLCh>;
Utf16Buffer toUtf16Buffer(const std::string& utf8);
Utf16Buffer toUtf16Buffer(const std::wstring& text);

// The value of the attribute with local name `localName` and no namespace, as UTF-8; empty
// when the element has no such attribute (so an absent and an empty attribute read the same).
std::string attributeText(const xercesc::Attributes& attributes, const XMLCh* localName);

// attributeText for several names at once, in one pass over the element's attributes: the
// elements that every key has read three or four attributes each.
template <std::size_t N>
std::array<std::string, N> attributeTexts(const xercesc::Attributes& attributes,
                                          const std::array<const XMLCh*, N>& localNames) {
    std::array<std::string, N> texts;
    const XMLSize_t count = attributes.getLength();
    for (XMLSize_t i = 0; i < count; ++i) {
        const XMLCh* const name = attributes.getLocalName(i);
        for (std::size_t n = 0; n < N; ++n) {
            if (xercesc::XMLString::equals(name, localNames[n])) {
                const XMLCh* const uri = attributes.getURI(i);
                if (!uri || !*uri) {
                    texts[n] = toNarrowText(attributes.getValue(i));
                }
                break;
            }
        }
    }
    return texts;
}

}  // namespace detail
}  // namespace core
}  // namespace settings

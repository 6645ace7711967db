// The small pieces of settings file text that the writer puts together: indentation, the text
// of one value of each scalar type, CDATA sections, and the function elements.
#pragma once

#include <settingscore/core/callouts/CalloutVariants.hpp>

#include <boost/optional.hpp>

#include <ostream>
#include <string>

namespace settings {
namespace core {
namespace detail {

// Four blanks per depth step; nothing for a depth below one.
void writeIndent(std::ostream& out, int depth);

// `text` in UTF-8 inside <![CDATA[ ]]>; each "]]>" in it splits the section in two, between
// the brackets and the angle bracket, so that the reader joins the pieces back.
std::string cdataSection(const std::wstring& text);

// The text of one value as a "value" element holds it. Integers in decimal (the 8-bit ones as
// numbers, never as characters), bool as 1 or 0, float through the stream with 11 significant
// digits (the stream keeps that precision afterwards), double in the host's shortest
// round-trip form, text as a CDATA section.
void writeValueText(std::ostream& out, const std::wstring& value);
void writeValueText(std::ostream& out, bool value);
void writeValueText(std::ostream& out, signed char value);
void writeValueText(std::ostream& out, unsigned char value);
void writeValueText(std::ostream& out, short value);
void writeValueText(std::ostream& out, unsigned short value);
void writeValueText(std::ostream& out, int value);
void writeValueText(std::ostream& out, unsigned int value);
void writeValueText(std::ostream& out, long long value);
void writeValueText(std::ostream& out, unsigned long long value);
void writeValueText(std::ostream& out, float value);
void writeValueText(std::ostream& out, double value);

// One line <tag type='...' packagename='...' functionname='...'/> at `depth`, with "TOLVAN",
// "C" or "JAVA" by the callout's kind; nothing when the variant holds no function.
void writeFunctionElement(std::ostream& out, int depth, const char* tag,
                          const ValidatorVariant& validator);
void writeFunctionElement(std::ostream& out, int depth, const char* tag,
                          const RunTimeDefaultVariant& runTimeDefault);

// The level a run-time default was declared on; none when the variant holds no function.
boost::optional<std::string> belongingLevelOf(const RunTimeDefaultVariant& runTimeDefault);

}  // namespace detail
}  // namespace core
}  // namespace settings

// The small pieces of settings file text that the writer puts together: indentation, the text
// of one value of each scalar type, CDATA sections, and the function elements. Each appends to
// a text buffer: the writer builds a file's text in memory and hands it out in one piece.
#pragma once

#include <settingscore/core/callouts/CalloutVariants.hpp>

#include <boost/optional.hpp>

#include <string>

namespace settings {
namespace core {
namespace detail {

// Four blanks per depth step; nothing for a depth below one.
void writeIndent(std::string& out, int depth);

// `text` in UTF-8 inside <![CDATA[ ]]>; each "]]>" in it splits the section in two, between
// the brackets and the angle bracket, so that the reader joins the pieces back.
std::string cdataSection(const std::wstring& text);
void appendCdataSection(std::string& out, const std::wstring& text);

// The text of one value as a "value" element holds it. Integers in decimal (the 8-bit ones as
// numbers, never as characters), bool as 1 or 0, float with 11 significant digits in the
// shortest of fixed and exponent notation (as printf's %.11g in the "C" locale), double in the
// host's shortest round-trip form, text as a CDATA section. No locale takes part.
void writeValueText(std::string& out, const std::wstring& value);
void writeValueText(std::string& out, bool value);
void writeValueText(std::string& out, signed char value);
void writeValueText(std::string& out, unsigned char value);
void writeValueText(std::string& out, short value);
void writeValueText(std::string& out, unsigned short value);
void writeValueText(std::string& out, int value);
void writeValueText(std::string& out, unsigned int value);
void writeValueText(std::string& out, long long value);
void writeValueText(std::string& out, unsigned long long value);
void writeValueText(std::string& out, float value);
void writeValueText(std::string& out, double value);

// One line <tag type='...' packagename='...' functionname='...'/> at `depth`, with "TOLVAN",
// "C" or "JAVA" by the callout's kind; nothing when the variant holds no function.
void writeFunctionElement(std::string& out, int depth, const char* tag,
                          const ValidatorVariant& validator);
void writeFunctionElement(std::string& out, int depth, const char* tag,
                          const RunTimeDefaultVariant& runTimeDefault);

// The level a run-time default was declared on; none when the variant holds no function.
boost::optional<std::string> belongingLevelOf(const RunTimeDefaultVariant& runTimeDefault);

}  // namespace detail
}  // namespace core
}  // namespace settings

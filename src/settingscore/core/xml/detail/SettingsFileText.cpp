#include <settingscore/core/xml/detail/SettingsFileText.hpp>

#include <platform/hlu/hlu.h>
#include <platform/hf/i18n/Conversion.hpp>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <charconv>
#include <cstddef>

namespace settings {
namespace core {
namespace detail {

namespace {

const char* calloutTypeWord(const TValidator&) {
    return "TOLVAN";
}
const char* calloutTypeWord(const CValidator&) {
    return "C";
}
const char* calloutTypeWord(const JValidator&) {
    return "JAVA";
}
const char* calloutTypeWord(const TRunTimeDefault&) {
    return "TOLVAN";
}
const char* calloutTypeWord(const CRunTimeDefault&) {
    return "C";
}
const char* calloutTypeWord(const JRunTimeDefault&) {
    return "JAVA";
}

class FunctionElement : public boost::static_visitor<void> {
public:
    FunctionElement(std::string& out, int depth, const char* tag)
        : out_(out), depth_(depth), tag_(tag) {}

    void operator()(const boost::mpl::void_&) const {}

    template <class Callout>
    void operator()(const Callout& callout) const {
        // Names go out as they stand: the format has no escaping for them.
        writeIndent(out_, depth_);
        out_ += '<';
        out_ += tag_;
        out_ += " type='";
        out_ += calloutTypeWord(callout);
        out_ += "' packagename='";
        out_ += callout.getPackageName();
        out_ += "' functionname='";
        out_ += callout.getFunctionName();
        out_ += "'/>\n";
    }

private:
    std::string& out_;
    int depth_;
    const char* tag_;
};

// Decimal digits of any integer, without locale: to_chars writes neither grouping nor a plus.
template <class Integer>
void appendDecimal(std::string& out, Integer value) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    out.append(digits, end);
}

class BelongingLevel : public boost::static_visitor<boost::optional<std::string>> {
public:
    boost::optional<std::string> operator()(const boost::mpl::void_&) const { return {}; }

    template <class RunTimeDefault>
    boost::optional<std::string> operator()(const RunTimeDefault& runTimeDefault) const {
        return runTimeDefault.getBelongingLevel();
    }
};

}  // namespace

void writeIndent(std::string& out, int depth) {
    if (depth > 0) {
        out.append(static_cast<std::size_t>(depth) * 4, ' ');
    }
}

std::string cdataSection(const std::wstring& text) {
    std::string section;
    appendCdataSection(section, text);
    return section;
}

void appendCdataSection(std::string& out, const std::wstring& text) {
    static const std::string closing = "]]>";
    const std::string utf8 = hf::i18n::to_string(text);
    out += "<![CDATA[";
    std::string::size_type from = 0;
    for (auto found = utf8.find(closing); found != std::string::npos;
         found = utf8.find(closing, from)) {
        out.append(utf8, from, found - from);
        out += "]]]]><![CDATA[>";
        from = found + closing.size();
    }
    out.append(utf8, from, std::string::npos);
    out += closing;
}

void writeValueText(std::string& out, const std::wstring& value) {
    appendCdataSection(out, value);
}

void writeValueText(std::string& out, bool value) {
    out += value ? '1' : '0';
}

// The 8-bit types as numbers: appended as characters they would write the byte itself.
void writeValueText(std::string& out, signed char value) {
    appendDecimal(out, static_cast<int>(value));
}

void writeValueText(std::string& out, unsigned char value) {
    appendDecimal(out, static_cast<unsigned>(value));
}

void writeValueText(std::string& out, short value) {
    appendDecimal(out, value);
}

void writeValueText(std::string& out, unsigned short value) {
    appendDecimal(out, value);
}

void writeValueText(std::string& out, int value) {
    appendDecimal(out, value);
}

void writeValueText(std::string& out, unsigned int value) {
    appendDecimal(out, value);
}

void writeValueText(std::string& out, long long value) {
    appendDecimal(out, value);
}

void writeValueText(std::string& out, unsigned long long value) {
    appendDecimal(out, value);
}

// Floats and doubles have two different formats on purpose: a float keeps 11 significant
// digits in general notation, which to_chars gives exactly as %.11g would in the "C" locale
// (the float widened to double first, as a stream widens it).
void writeValueText(std::string& out, float value) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, static_cast<double>(value),
                                   std::chars_format::general, 11)
                         .ptr;
    out.append(text, end);
}

void writeValueText(std::string& out, double value) {
    HluFpcContext context;
    hluInitializeFpcContext(&context, hluMemoryContext());
    char buffer[64];
    const int length = hluFormatG(&context, buffer, sizeof buffer, value);
    hluClearFpcContext(&context);
    if (length > 0) {  // -1 cannot happen for 64 bytes; write nothing rather than garbage
        out.append(buffer, static_cast<std::size_t>(length));
    }
}

void writeFunctionElement(std::string& out, int depth, const char* tag,
                          const ValidatorVariant& validator) {
    boost::apply_visitor(FunctionElement(out, depth, tag), validator);
}

void writeFunctionElement(std::string& out, int depth, const char* tag,
                          const RunTimeDefaultVariant& runTimeDefault) {
    boost::apply_visitor(FunctionElement(out, depth, tag), runTimeDefault);
}

boost::optional<std::string> belongingLevelOf(const RunTimeDefaultVariant& runTimeDefault) {
    return boost::apply_visitor(BelongingLevel(), runTimeDefault);
}

}  // namespace detail
}  // namespace core
}  // namespace settings

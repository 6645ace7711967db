#include <settingscore/core/xml/detail/SettingsFileText.hpp>

#include <platform/hlu/hlu.h>
#include <platform/hf/i18n/Conversion.hpp>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

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
    FunctionElement(std::ostream& out, int depth, const char* tag)
        : out_(out), depth_(depth), tag_(tag) {}

    void operator()(const boost::mpl::void_&) const {}

    template <class Callout>
    void operator()(const Callout& callout) const {
        // Names go out as they stand: the format has no escaping for them.
        writeIndent(out_, depth_);
        out_ << '<' << tag_ << " type='" << calloutTypeWord(callout) << "' packagename='"
             << callout.getPackageName() << "' functionname='" << callout.getFunctionName()
             << "'/>\n";
    }

private:
    std::ostream& out_;
    int depth_;
    const char* tag_;
};

class BelongingLevel : public boost::static_visitor<boost::optional<std::string>> {
public:
    boost::optional<std::string> operator()(const boost::mpl::void_&) const { return {}; }

    template <class RunTimeDefault>
    boost::optional<std::string> operator()(const RunTimeDefault& runTimeDefault) const {
        return runTimeDefault.getBelongingLevel();
    }
};

}  // namespace

void writeIndent(std::ostream& out, int depth) {
    for (int step = 0; step < depth; ++step) {
        out << "    ";
    }
}

std::string cdataSection(const std::wstring& text) {
    static const std::string closing = "]]>";
    const std::string utf8 = hf::i18n::to_string(text);
    std::string section = "<![CDATA[";
    std::string::size_type from = 0;
    for (auto found = utf8.find(closing); found != std::string::npos;
         found = utf8.find(closing, from)) {
        section.append(utf8, from, found - from);
        section += "]]]]><![CDATA[>";
        from = found + closing.size();
    }
    section.append(utf8, from, std::string::npos);
    section += closing;
    return section;
}

void writeValueText(std::ostream& out, const std::wstring& value) {
    out << cdataSection(value);
}

void writeValueText(std::ostream& out, bool value) {
    out << value;
}

// The 8-bit types go through the 16-bit operators: the character operators would write the
// byte itself.
void writeValueText(std::ostream& out, signed char value) {
    out << static_cast<short>(value);
}

void writeValueText(std::ostream& out, unsigned char value) {
    out << static_cast<unsigned short>(value);
}

void writeValueText(std::ostream& out, short value) {
    out << value;
}

void writeValueText(std::ostream& out, unsigned short value) {
    out << value;
}

void writeValueText(std::ostream& out, int value) {
    out << value;
}

void writeValueText(std::ostream& out, unsigned int value) {
    out << value;
}

void writeValueText(std::ostream& out, long long value) {
    out << value;
}

void writeValueText(std::ostream& out, unsigned long long value) {
    out << value;
}

// A float keeps to the stream, and the precision stays set: floats and doubles have two
// different formats on purpose.
void writeValueText(std::ostream& out, float value) {
    out.precision(11);
    out << value;
}

void writeValueText(std::ostream& out, double value) {
    HluFpcContext context;
    hluInitializeFpcContext(&context, hluMemoryContext());
    char buffer[64];
    if (hluFormatG(&context, buffer, sizeof buffer, value) < 0) {
        buffer[0] = '\0';  // cannot happen for 64 bytes; write nothing rather than garbage
    }
    hluClearFpcContext(&context);
    out << buffer;
}

void writeFunctionElement(std::ostream& out, int depth, const char* tag,
                          const ValidatorVariant& validator) {
    boost::apply_visitor(FunctionElement(out, depth, tag), validator);
}

void writeFunctionElement(std::ostream& out, int depth, const char* tag,
                          const RunTimeDefaultVariant& runTimeDefault) {
    boost::apply_visitor(FunctionElement(out, depth, tag), runTimeDefault);
}

boost::optional<std::string> belongingLevelOf(const RunTimeDefaultVariant& runTimeDefault) {
    return boost::apply_visitor(BelongingLevel(), runTimeDefault);
}

}  // namespace detail
}  // namespace core
}  // namespace settings

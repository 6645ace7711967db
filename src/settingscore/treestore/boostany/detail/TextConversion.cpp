#include <settingscore/treestore/boostany/detail/TextConversion.hpp>

#include <charconv>
#include <cmath>
#include <string_view>
#include <typeinfo>

namespace treestore {
namespace boostany {
namespace detail {

namespace {

// Significant digits that make each floating type's text round-trip exactly.
constexpr int FloatDigits = 9;
constexpr int DoubleDigits = 17;

template <class F>
std::wstring formatWithPrecision(F value, int precision) {
    if (std::isnan(value)) {
        return std::signbit(value) ? L"-nan" : L"nan";
    }
    if (std::isinf(value)) {
        return value < 0 ? L"-inf" : L"inf";
    }
    // to_chars with a precision is defined as printf's "%.*g" in the C locale, so the decimal
    // point stays '.' even when the host has set a comma locale for LC_NUMERIC (which sprintf
    // would follow). The longest "%.17g" text is 24 characters.
    char buffer[64];
    const std::to_chars_result result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, precision);
    // The text is ASCII, so widening character by character is exact.
    return std::wstring(buffer, result.ptr);
}

bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// lexical_cast matches the letters of "nan" and "inf"/"infinity" one by one in either case,
// so it would also take "NaN" or "Inf". Only the all-lower and all-upper spellings are valid.
bool isValidSpecialWord(std::string_view word) {
    return word == "nan" || word == "NAN" || word == "inf" || word == "INF" || word == "infinity" ||
           word == "INFINITY";
}

template <class F>
F parseFloating(const std::wstring& text) {
    const std::string narrow = hf::i18n::to_string(text);
    const auto fail = [] { return boost::bad_lexical_cast(typeid(std::string), typeid(F)); };

    std::size_t wordStart = 0;
    if (!narrow.empty() && (narrow[0] == '+' || narrow[0] == '-')) {
        wordStart = 1;
    }
    if (wordStart < narrow.size() && isAsciiLetter(narrow[wordStart])) {
        std::size_t wordEnd = wordStart;
        while (wordEnd < narrow.size() && isAsciiLetter(narrow[wordEnd])) {
            ++wordEnd;
        }
        if (!isValidSpecialWord(std::string_view(narrow).substr(wordStart, wordEnd - wordStart))) {
            throw fail();
        }
    }
    // lexical_cast already rejects an unfinished exponent such as "1e" or "1e+"; the check is
    // kept here so that the rule does not hang on a detail of the dependency.
    if (!narrow.empty()) {
        const char last = narrow.back();
        if (last == 'e' || last == 'E' || last == '-' || last == '+') {
            throw fail();
        }
    }
    return boost::lexical_cast<F>(narrow);
}

}  // namespace

std::wstring formatFloating(float value) {
    return formatWithPrecision(value, FloatDigits);
}

std::wstring formatFloating(double value) {
    return formatWithPrecision(value, DoubleDigits);
}

float parseFloat(const std::wstring& text) {
    return parseFloating<float>(text);
}

double parseDouble(const std::wstring& text) {
    return parseFloating<double>(text);
}

bool parseBool(const std::wstring& text) {
    // lexical_cast<bool> also takes "00" or "01"; the accepted forms are exactly these five.
    if (text == L"0" || text == L"+0" || text == L"-0") {
        return false;
    }
    if (text == L"1" || text == L"+1") {
        return true;
    }
    throw boost::bad_lexical_cast(typeid(std::string), typeid(bool));
}

}  // namespace detail
}  // namespace boostany
}  // namespace treestore

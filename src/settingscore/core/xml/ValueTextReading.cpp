#include <settingscore/core/xml/ValueTextReading.hpp>

#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/xml/detail/ForEachTypeWord.hpp>
#include <settingscore/treestore/boostany/TypeNames.hpp>

#include <platform/hlu/hlu.h>
#include <platform/hf/i18n/Conversion.hpp>

#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>

#include <cfloat>
#include <cmath>
#include <limits>
#include <type_traits>

namespace settings {
namespace core {
namespace detail {

namespace {

using WrongValue = TOLVAN::settings::core::XMLParseErrorWrongValueForGivenType;

// The strict cast of `narrow` to N; a failure becomes the message failure for `typeWord`.
template <class N>
N castOrFail(const std::string& narrow, const std::wstring& text, const char* typeWord) {
    try {
        return boost::lexical_cast<N>(narrow);
    } catch (const boost::bad_lexical_cast& failure) {
        throw makeMessageException<WrongValue>(typeWord, text, failure.what());
    }
}

// hluStrtod's reading of the longest numeric prefix.
double parseDoublePrefix(const std::string& narrow) {
    return hluStrtod(hluFpcContext(), narrow.c_str(), nullptr, 0);
}

// A double to float without the undefined behaviour of an out-of-range conversion: what lies
// beyond the float range becomes the infinity of its sign, as IEEE rounding would give.
float narrowToFloat(double value) {
    if (std::isfinite(value) && std::fabs(value) > FLT_MAX) {
        return value > 0 ? std::numeric_limits<float>::infinity()
                         : -std::numeric_limits<float>::infinity();
    }
    return static_cast<float>(value);
}

}  // namespace

template <class T>
const char* typeWordOf() {
    return treestore::boostany::detail::scalarTypeName<T>();
}

template <class T>
T readValueText(const std::wstring& text) {
    const char* const typeWord = typeWordOf<T>();
    if constexpr (std::is_same_v<T, std::wstring>) {
        return text;
    } else if constexpr (std::is_same_v<T, bool>) {
        return text == L"true" || text == L"1";
    } else {
        const std::string narrow = hf::i18n::to_string(text);
        if constexpr (std::is_same_v<T, signed char> || std::is_same_v<T, unsigned char>) {
            using Wide = std::conditional_t<std::is_signed_v<T>, short, unsigned short>;
            const Wide wide = castOrFail<Wide>(narrow, text, typeWord);
            // Deliberately outside castOrFail: an out-of-range number is the conversion
            // layer's overflow, not a text that failed to read.
            return boost::numeric_cast<T>(wide);
        } else if constexpr (std::is_floating_point_v<T>) {
            const double parsed = parseDoublePrefix(narrow);
            const T value = std::is_same_v<T, float> ? narrowToFloat(parsed) : T(parsed);
            if (value == T(0)) {
                // Zero is also what hluStrtod answers for text without a number: only a text
                // that reads strictly as a number may give it.
                castOrFail<T>(narrow, text, typeWord);
            }
            return value;
        } else {
            return castOrFail<T>(narrow, text, typeWord);
        }
    }
}

unsigned readLengthBoundText(const std::wstring& text) {
    return castOrFail<unsigned>(hf::i18n::to_string(text), text, typeWordOf<std::wstring>());
}

#define SETTINGSCORE_INSTANTIATE_VALUE_TEXT(T) \
    template const char* typeWordOf<T>();      \
    template T readValueText<T>(const std::wstring&);
SETTINGSCORE_FOR_EACH_TYPE_WORD(SETTINGSCORE_INSTANTIATE_VALUE_TEXT)
#undef SETTINGSCORE_INSTANTIATE_VALUE_TEXT

}  // namespace detail
}  // namespace core
}  // namespace settings

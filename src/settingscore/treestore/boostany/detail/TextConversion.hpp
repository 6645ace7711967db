// Numbers to wide text and back, for the conversions between wstring and the numeric types.
// Internal to the value layer.
#pragma once

#include <platform/hf/i18n/Conversion.hpp>

#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>

#include <string>
#include <type_traits>

namespace treestore {
namespace boostany {
namespace detail {

// Plain decimal. The 8-bit types are widened first: as characters they would print as
// characters, not numbers.
template <class I>
std::wstring formatInteger(I value) {
    static_assert(std::is_integral_v<I> && !std::is_same_v<I, bool>);
    if constexpr (sizeof(I) == 1) {
        using Wide = std::conditional_t<std::is_signed_v<I>, short, unsigned short>;
        return hf::i18n::to_ustring(boost::lexical_cast<std::string>(static_cast<Wide>(value)));
    } else {
        return hf::i18n::to_ustring(boost::lexical_cast<std::string>(value));
    }
}

// "nan", "-nan", "inf", "-inf" for the special values; otherwise printf's "%.9g" (float) or
// "%.17g" (double) as in the C locale, whatever LC_NUMERIC the process runs under.
std::wstring formatFloating(float value);
std::wstring formatFloating(double value);

// Decimal text through boost::lexical_cast. The 8-bit types are parsed as 16-bit numbers and
// then range-checked, so that "65" is 65 and not the character 'A' and "200" as int8 gives
// positive_overflow. Unsigned targets keep lexical_cast's wrap-around of a leading '-'
// ("-1" as uint16 is 65535).
template <class I>
I parseInteger(const std::wstring& text) {
    static_assert(std::is_integral_v<I> && !std::is_same_v<I, bool>);
    const std::string narrow = hf::i18n::to_string(text);
    if constexpr (sizeof(I) == 1) {
        using Wide = std::conditional_t<std::is_signed_v<I>, short, unsigned short>;
        return boost::numeric_cast<I>(boost::lexical_cast<Wide>(narrow));
    } else {
        return boost::lexical_cast<I>(narrow);
    }
}

// Decimal or exponent text; also, with an optional sign, "nan" or "NAN" optionally followed by
// a parenthesised text, and "inf", "INF", "infinity", "INFINITY". A number ending in 'e', 'E',
// '-' or '+' is rejected. Throws boost::bad_lexical_cast.
float parseFloat(const std::wstring& text);
double parseDouble(const std::wstring& text);

// Exactly "0", "1", "+0", "+1" or "-0"; anything else ("true", "01", "-1") throws
// boost::bad_lexical_cast.
bool parseBool(const std::wstring& text);

}  // namespace detail
}  // namespace boostany
}  // namespace treestore

// The cell rules of the conversion between two different scalar types, chosen by the kind of
// source and target (integer, floating, bool, text) rather than written per pair. Internal to
// the value layer; only the slow path of get<T> includes it.
#pragma once

#include <settingscore/treestore/boostany/Exceptions.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>
#include <settingscore/treestore/boostany/detail/TextConversion.hpp>

#include <boost/numeric/conversion/cast.hpp>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

namespace treestore {
namespace boostany {
namespace detail {

enum class ScalarKind { Integer, Floating, Boolean, Text };

template <class T>
constexpr ScalarKind kindOf() {
    static_assert(isScalarType<T>, "kindOf: not one of the twelve scalar types");
    if constexpr (std::is_same_v<T, bool>) {
        return ScalarKind::Boolean;
    } else if constexpr (std::is_same_v<T, std::wstring>) {
        return ScalarKind::Text;
    } else if constexpr (std::is_floating_point_v<T>) {
        return ScalarKind::Floating;
    } else {
        return ScalarKind::Integer;
    }
}

// Floating to integer: a value at or below (minimum - 1) is a negative overflow, one at or
// above (maximum + 1) a positive overflow, and the rest is truncated toward zero. So int8
// takes the open interval (-129, 128) and an unsigned target takes -0.5 as 0.
//
// This is the range test of boost::numeric_cast with its default truncation, with two
// differences. A NaN passes boost's comparisons and would reach a float-to-integer cast, which
// is undefined behaviour; it is refused here with the common base bad_numeric_cast, since it
// is neither above nor below the range. And boost computes (minimum - 1) in the source type,
// where it rounds to the minimum once the type's spacing there exceeds 1 (float for int32,
// float and double for int64), so boost refuses the exact minimum, a value the target holds;
// the test below is exact for every pair.
template <class T, class F>
T floatingToInteger(F value) {
    if (std::isnan(value)) {
        throw boost::numeric::bad_numeric_cast();
    }
    // maximum + 1 is a power of two and exact in both floating types.
    const F maxPlusOne = std::ldexp(F(1), std::numeric_limits<T>::digits);
    if (value >= maxPlusOne) {
        throw boost::numeric::positive_overflow();
    }
    const F minimum = std::is_signed_v<T> ? -maxPlusOne : F(0);
    // When (minimum - 1) rounds to minimum, no value lies strictly between the two, so every
    // value below the minimum is also at or below (minimum - 1).
    if (value < minimum && value <= minimum - F(1)) {
        throw boost::numeric::negative_overflow();
    }
    return static_cast<T>(std::trunc(value));
}

// double to float: the bounds are float's largest finite value as a double. NaN passes the
// comparisons and stays NaN; an infinity is an overflow.
inline float doubleToFloat(double value) {
    constexpr double Limit = 3.4028234663852886e38;
    if (value < -Limit) {
        throw boost::numeric::negative_overflow();
    }
    if (value > Limit) {
        throw boost::numeric::positive_overflow();
    }
    return static_cast<float>(value);
}

// Floating to bool: at or below -1.0 and at or above 2.0 are overflows; the rest is truncated
// toward zero and compared with 0, so 0.5 and -0.9 are false and 1.9 is true. A NaN is not
// refused: it compares unequal to 0 and so reads as true.
template <class F>
bool floatingToBool(F value) {
    if (value <= F(-1)) {
        throw boost::numeric::negative_overflow();
    }
    if (value >= F(2)) {
        throw boost::numeric::positive_overflow();
    }
    return std::trunc(value) != F(0);
}

template <class T>
T parseText(const std::wstring& text) {
    if constexpr (std::is_same_v<T, bool>) {
        return parseBool(text);
    } else if constexpr (std::is_same_v<T, float>) {
        return parseFloat(text);
    } else if constexpr (std::is_same_v<T, double>) {
        return parseDouble(text);
    } else {
        return parseInteger<T>(text);
    }
}

// The cell rule from S to T, for two different scalar types; allowConversion has been checked.
template <class S, class T>
T convertCell(const S& source) {
    static_assert(!std::is_same_v<S, T>, "convertCell: the identity is a copy, not a cell");
    constexpr ScalarKind from = kindOf<S>();
    constexpr ScalarKind to = kindOf<T>();

    if constexpr (from == ScalarKind::Text) {
        return parseText<T>(source);
    } else if constexpr (to == ScalarKind::Text) {
        if constexpr (from == ScalarKind::Boolean) {
            return source ? L"1" : L"0";
        } else if constexpr (from == ScalarKind::Floating) {
            return formatFloating(source);
        } else {
            return formatInteger(source);
        }
    } else if constexpr (from == ScalarKind::Integer) {
        if constexpr (to == ScalarKind::Floating) {
            return static_cast<T>(source);
        } else {
            // Integer or bool target: below the minimum negative_overflow, above the maximum
            // positive_overflow (for bool: below 0, above 1).
            return boost::numeric_cast<T>(source);
        }
    } else if constexpr (from == ScalarKind::Floating) {
        if constexpr (to == ScalarKind::Integer) {
            return floatingToInteger<T>(source);
        } else if constexpr (to == ScalarKind::Boolean) {
            return floatingToBool(source);
        } else if constexpr (std::is_same_v<S, double>) {
            return doubleToFloat(source);
        } else {
            return static_cast<T>(source);  // float to double is exact
        }
    } else {
        static_assert(from == ScalarKind::Boolean);
        return static_cast<T>(source);  // 0 or 1, 0.0 or 1.0
    }
}

// The scalar rule: a copy for the same type, otherwise TypeNotMatch unless converting, then the
// cell rule.
template <class S, class T>
T convertScalar(const S& source, bool allowConversion) {
    if constexpr (std::is_same_v<S, T>) {
        return source;
    } else {
        if (!allowConversion) {
            throw TypeNotMatch();
        }
        return convertCell<S, T>(source);
    }
}

}  // namespace detail
}  // namespace boostany
}  // namespace treestore

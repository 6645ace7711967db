// Equality of two boost::any values and the test that a value lies in the closed type set.
#pragma once

#include <boost/any.hpp>

namespace treestore {
namespace boostany {

// True when a and b are the same object, or both empty, or both hold the same supported type
// with equal contents. There is no conversion (int32 5 and int64 5 differ). Scalars compare
// with ==, so NaN differs from itself and 0.0 equals -0.0; vectors compare by length, then
// element by element. Throws UnsupportedAnyType when a (not the same object as b) holds a
// type outside SupportedTypes.
bool isEqual(const boost::any& a, const boost::any& b);

// True for an empty value and for a value of one of the 24 supported types.
bool isSupported(const boost::any& value);

}  // namespace boostany
}  // namespace treestore

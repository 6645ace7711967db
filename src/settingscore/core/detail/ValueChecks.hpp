// The per-type parts of validating a value against a key: what a value's type tells about the
// key it is meant for (type code, conformer, array bounds), the conformers themselves, the
// element count, and the range-and-choices test with its message texts.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/SettingsKeyMetaData.hpp>
#include <settingscore/core/callouts/CalloutVariants.hpp>

#include <boost/any.hpp>
#include <boost/optional.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <shared_mutex>
#include <string>
#include <vector>

namespace settings {
namespace core {
namespace detail {

// Brings a value to the key's declared type, in place, or throws the DataTypeNotMatch
// message failure. Reads are strict: one element and a scalar of the same type convert into
// each other, nothing else does.
using TypeConformer = void (*)(boost::any& value);

// What the first value of a key declares about it.
struct TypeFacts {
    int typeCode;
    TypeConformer conformer;
    bool isArray;
    unsigned elementCount;
};

// The facts of the type `value` holds; none for an empty value.
boost::optional<TypeFacts> typeFactsOf(const boost::any& value);

// The conformer of a key of type code `typeCode` (1..12), scalar or array.
TypeConformer conformerFor(int typeCode, bool isArray);

// 0 for an empty value, the element count of a vector, 1 for a scalar (a text included).
unsigned arraySizeOf(const boost::any& value);

// Range and choices of `metaData` applied to a non-empty value: once for a scalar, for each
// element of a vector until the first failure. ValueIsNotInRange or
// ValueIsNotOneOfTheChoicesAndNotInRange name `key`.
void checkRangeAndChoices(const ConstSettingsPtr& key,
                          const SettingsKeyMetaData<boost::any>& metaData, const boost::any& value);

// "a, b, c": each choice's text followed by ", ", a line end, and the text cut at the last
// ", ". An empty list gives the line end alone.
template <class T>
std::wstring joinChoices(const std::vector<T>& choices);

// Calls `validator` with (parent, key name, value); false, calling nothing, when it is none.
bool invokeValidator(const ValidatorVariant& validator, const ConstSettingsPtr& parent,
                     const std::string& keyName, const boost::any& value);

// Guards the type caches of every key (type code, conformer, array bounds): filled once from a
// key's first value, possibly under a shared hold of the root mutex, so they need a lock of
// their own. A leaf: nothing is locked under it.
std::shared_mutex& keyCacheMutex();

}  // namespace detail
}  // namespace core
}  // namespace settings

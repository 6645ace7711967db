// The functions that write a key's type element into settings file text: one for each of the
// twelve type words, and one for keys of any type, which picks the type word from the value it
// finds.
#pragma once

#include <settingscore/core/detail/TreeLock.hpp>

#include <string>

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

// Appends the type element of `key` for `level` at indent depth `depth` to `out`: its opening line
// with the array attributes, then the run-time default that belongs to `level` or the values at
// `level`, then its closing line. REQUIRES: the tree lock witnessed by `lock`.
using ValueWriter = void (*)(std::string& out, const SettingsImpl& key, const ReadAccess& lock,
                             const std::string& level, unsigned depth);

// The writer of the scalar type T's type word (the twelve scalars; arrays of T use it too).
template <class T>
ValueWriter typedValueWriter();

// The writer for type code `typeCode` (1..12); null for any other code.
ValueWriter valueWriterForTypeCode(int typeCode);

// The writer of any-type keys: the type word of the value at hand, nothing for an empty value.
ValueWriter anyTypeValueWriter();

}  // namespace detail
}  // namespace core
}  // namespace settings

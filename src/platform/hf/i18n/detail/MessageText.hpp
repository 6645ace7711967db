// The text rules of the message catalogue: filling the placeholders of a catalogue entry, and
// the text that stands in for a message whose entry cannot be found.
#pragma once

#include <platform/hf/resource/BaseMsgID.hpp>

#include <string>
#include <vector>

namespace hf {
namespace i18n {
namespace detail {

// Replaces each "{N}" (N decimal) by args[N]. A placeholder without an argument, and every
// other brace, stay as written.
std::wstring fillPlaceholders(const std::wstring& text, const std::vector<std::wstring>& args);

// "<catalogue>:<key>(<arg0>, <arg1>, ...)".
std::wstring fallbackText(const hf::resource::BaseMsgID& id);

}  // namespace detail
}  // namespace i18n
}  // namespace hf

// Process-wide start of the XML parser library. Every user of Xerces-C in this process that
// goes through here starts it exactly once, whatever the threads; it is never terminated,
// since other parts of the program may keep parsing until the end.
#pragma once

namespace hf {
namespace i18n {
namespace detail {

// True when the parser library is ready; false if it could not be started (a later call
// tries again).
bool ensureXercesInitialized() noexcept;

}  // namespace detail
}  // namespace i18n
}  // namespace hf

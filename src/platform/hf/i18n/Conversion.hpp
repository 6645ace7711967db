// hf::i18n text conversions between the narrow UTF-8 text of names and files and the wide
// text of values and paths, and the wide view of the environment.
#pragma once

#include <cstddef>
#include <string>

namespace hf {
namespace i18n {

// Wide to UTF-8. Characters outside Unicode are dropped.
std::string to_string(const std::wstring& text);

// UTF-8 to wide. Malformed sequences are dropped; the rest of the text survives.
std::wstring to_ustring(const std::string& text);

// UTF-16 code units (the XML parser's text) to wide text, pairing surrogates; a lone
// surrogate becomes U+FFFD. A null `text` gives the empty string.
std::wstring utf16_to_ustring(const char16_t* text, std::size_t length);

// Widens 7-bit text character by character, for identifiers that are ASCII by construction.
std::wstring codecvt_ascii_to_ustring(const std::string& text);

// The value of environment variable `name`, widened from UTF-8; empty when unset.
std::wstring getenv(const std::wstring& name);

}  // namespace i18n
}  // namespace hf

// The texts the callout frames put into the invoking errors they raise.
#pragma once

#include <platform/hf/except/IException.hpp>

#include <string>

namespace settings {
namespace core {
namespace detail {

// The catalogue text of a message-id failure, in the host's global locale.
std::wstring catalogText(const hf::except::IMsgIDException& failure);

// A failure's `what` as wide text.
std::wstring whatText(const hf::except::IException& failure);

// The text of a failure whose kind the frame does not know.
std::wstring unknownFailureText();

}  // namespace detail
}  // namespace core
}  // namespace settings

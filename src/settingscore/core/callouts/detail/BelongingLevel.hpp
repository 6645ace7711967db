// Giving a key's run-time default, whatever its kind, the level it belongs to.
#pragma once

#include <settingscore/core/callouts/CalloutVariants.hpp>

#include <string>

namespace settings {
namespace core {
namespace detail {

// Sets the belonging level of the default `runTimeDefault` holds; nothing when it holds none.
void setBelongingLevel(RunTimeDefaultVariant& runTimeDefault, const std::string& level);

}  // namespace detail
}  // namespace core
}  // namespace settings

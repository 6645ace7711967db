// The table of enabled channels behind hf::log, shared by the channel switches and the
// loggers.
#pragma once

#include <string>

namespace hf {
namespace log {
namespace detail {

// True when `channel` is enabled for records of `severity`.
bool channelAccepts(const std::string& channel, int severity);

}  // namespace detail
}  // namespace log
}  // namespace hf

// Which diagnostic channels of hf::log write records. Every channel is off until the host
// enables it here or through the environment variable HF_DIAGNOSTIC_CHANNELS, read once at the
// first use of a channel: a comma-separated list of "channel" (every severity) or
// "channel=maxSeverity". A record of severity s is written when s <= the channel's maximum.
#pragma once

#include <string>

namespace hf {
namespace log {

// Enables `channel` for severities up to `maxSeverity`, replacing an earlier setting. The first
// channel enabled in the process also installs the default sink (below) unless it was refused.
void enable_channel(const std::string& channel, int maxSeverity);

// Turns `channel` off, whatever enabled it.
void disable_channel(const std::string& channel);

// The default sink writes enabled records to std::clog. While it is allowed (the initial
// setting) it is installed once some channel is enabled; false removes it, or keeps it from
// being installed, for hosts and tests with sinks of their own.
void use_default_sink(bool use);

}  // namespace log
}  // namespace hf

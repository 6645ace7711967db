// hf::log::basic_diagnostic_logger<Char>: a logger bound to one diagnostic channel. Records go
// through the Boost.Log core with the attributes "Channel" (std::string) and "Severity" (int),
// and the message as UTF-8 text; a channel writes nothing unless it is enabled (Channels.hpp).
#pragma once

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/log/Channels.hpp>

#include <memory>
#include <string>
#include <type_traits>

namespace hf {
namespace log {
namespace detail {

// The part of a logger that does not depend on its character type.
class DiagnosticChannel {
public:
    explicit DiagnosticChannel(std::string channel);

    const std::string& channel() const noexcept;
    bool isEnabled(int severity) const;
    // Writes one record when the channel accepts `severity`.
    void write(int severity, const std::string& utf8Line) const;

private:
    struct Impl;
    std::shared_ptr<Impl> impl_;  // shared by copies; the Boost.Log logger is thread-safe
};

}  // namespace detail

template <class Char>
class basic_diagnostic_logger {
    static_assert(std::is_same<Char, char>::value || std::is_same<Char, wchar_t>::value,
                  "diagnostic loggers take narrow (UTF-8) or wide text");

public:
    explicit basic_diagnostic_logger(std::string channel) : channel_(std::move(channel)) {}

    const std::string& channel() const noexcept { return channel_.channel(); }

    // Whether a record of `severity` would be written now; lets a caller skip building it.
    bool is_enabled(int severity) const { return channel_.isEnabled(severity); }

    // Writes `line` as one record of `severity`, if the channel accepts it.
    void log(int severity, const std::basic_string<Char>& line) const {
        if constexpr (std::is_same<Char, char>::value) {
            channel_.write(severity, line);
        } else {
            if (channel_.isEnabled(severity)) {
                channel_.write(severity, hf::i18n::to_string(line));
            }
        }
    }

private:
    detail::DiagnosticChannel channel_;
};

}  // namespace log
}  // namespace hf

#include <platform/hf/log/Channels.hpp>

#include <platform/hf/log/detail/ChannelRegistry.hpp>

#include <boost/core/null_deleter.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <climits>
#include <cstdlib>
#include <iostream>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <string>

namespace hf {
namespace log {
namespace {

constexpr char environmentVariable[] = "HF_DIAGNOSTIC_CHANNELS";

using ClogSink = boost::log::sinks::synchronous_sink<boost::log::sinks::text_ostream_backend>;

std::string trimmed(const std::string& text) {
    const char* blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return std::string();
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// One entry of HF_DIAGNOSTIC_CHANNELS: "channel" or "channel=maxSeverity". The split is at the
// last '=' since channel names hold "::". An entry whose severity is not a number is ignored.
bool parseEntry(const std::string& entry, std::string& channel, int& maxSeverity) {
    const std::size_t equals = entry.rfind('=');
    channel = trimmed(entry.substr(0, equals));
    if (channel.empty()) {
        return false;
    }
    if (equals == std::string::npos) {
        maxSeverity = INT_MAX;
        return true;
    }
    const std::string number = trimmed(entry.substr(equals + 1));
    try {
        std::size_t used = 0;
        maxSeverity = std::stoi(number, &used);
        return used == number.size();
    } catch (const std::exception&) {
        return false;
    }
}

// Lock order: mutex_ before the Boost.Log core's own locks; the core never calls back here.
class Registry {
public:
    // Built at the first use of any channel, which is when the environment is read. Never
    // destroyed, so loggers used by other objects' destructors at exit stay safe.
    static Registry& instance() {
        static Registry* registry = new Registry();
        return *registry;
    }

    bool accepts(const std::string& channel, int severity) const {
        std::shared_lock<std::shared_mutex> lock(mutex_);
        const auto found = channels_.find(channel);
        return found != channels_.end() && severity <= found->second;
    }

    void enable(const std::string& channel, int maxSeverity) {
        std::unique_lock<std::shared_mutex> lock(mutex_);
        channels_[channel] = maxSeverity;
        installDefaultSink(lock);
    }

    void disable(const std::string& channel) {
        std::unique_lock<std::shared_mutex> lock(mutex_);
        channels_.erase(channel);
    }

    void useDefaultSink(bool use) {
        std::unique_lock<std::shared_mutex> lock(mutex_);
        defaultSinkAllowed_ = use;
        if (use && !channels_.empty()) {
            installDefaultSink(lock);
        } else if (!use && defaultSink_) {
            boost::log::core::get()->remove_sink(defaultSink_);
            defaultSink_.reset();
        }
    }

private:
    Registry() {
        const char* value = std::getenv(environmentVariable);
        std::string list = value ? value : "";
        std::size_t start = 0;
        while (start <= list.size()) {
            std::size_t comma = list.find(',', start);
            if (comma == std::string::npos) {
                comma = list.size();
            }
            std::string channel;
            int maxSeverity = 0;
            if (parseEntry(list.substr(start, comma - start), channel, maxSeverity)) {
                channels_[channel] = maxSeverity;
            }
            start = comma + 1;
        }
        if (!channels_.empty()) {
            std::unique_lock<std::shared_mutex> lock(mutex_);
            installDefaultSink(lock);
        }
    }

    // REQUIRES: mutex_ held exclusively.
    void installDefaultSink(const std::unique_lock<std::shared_mutex>&) {
        if (!defaultSinkAllowed_ || defaultSink_) {
            return;
        }
        namespace expr = boost::log::expressions;
        auto sink = boost::make_shared<ClogSink>();
        sink->locked_backend()->add_stream(
            boost::shared_ptr<std::ostream>(&std::clog, boost::null_deleter()));
        sink->locked_backend()->auto_flush(true);
        // Only records of diagnostic channels: other users of the core keep their own sinks.
        sink->set_filter(expr::has_attr<std::string>("Channel") && expr::has_attr<int>("Severity"));
        sink->set_formatter(expr::stream << "[" << expr::attr<std::string>("Channel") << ":"
                                         << expr::attr<int>("Severity") << "] " << expr::smessage);
        boost::log::core::get()->add_sink(sink);
        defaultSink_ = sink;
    }

    mutable std::shared_mutex mutex_;
    std::map<std::string, int> channels_;
    bool defaultSinkAllowed_ = true;
    boost::shared_ptr<ClogSink> defaultSink_;
};

}  // namespace

void enable_channel(const std::string& channel, int maxSeverity) {
    Registry::instance().enable(channel, maxSeverity);
}

void disable_channel(const std::string& channel) {
    Registry::instance().disable(channel);
}

void use_default_sink(bool use) {
    Registry::instance().useDefaultSink(use);
}

namespace detail {

bool channelAccepts(const std::string& channel, int severity) {
    return Registry::instance().accepts(channel, severity);
}

}  // namespace detail
}  // namespace log
}  // namespace hf

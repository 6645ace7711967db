#include <platform/hf/log/DiagnosticLogger.hpp>

#include <platform/hf/log/detail/ChannelRegistry.hpp>

#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>

#include <utility>

namespace hf {
namespace log {
namespace detail {

struct DiagnosticChannel::Impl {
    explicit Impl(std::string name)
        : channel(std::move(name)), logger(boost::log::keywords::channel = channel) {}

    const std::string channel;
    // open_record is not const; the _mt logger serialises its callers itself.
    mutable boost::log::sources::severity_channel_logger_mt<int, std::string> logger;
};

DiagnosticChannel::DiagnosticChannel(std::string channel)
    : impl_(std::make_shared<Impl>(std::move(channel))) {}

const std::string& DiagnosticChannel::channel() const noexcept {
    return impl_->channel;
}

bool DiagnosticChannel::isEnabled(int severity) const {
    return channelAccepts(impl_->channel, severity);
}

void DiagnosticChannel::write(int severity, const std::string& utf8Line) const {
    if (!isEnabled(severity)) {
        return;
    }
    boost::log::record record =
        impl_->logger.open_record(boost::log::keywords::severity = severity);
    if (record) {
        boost::log::record_ostream stream(record);
        stream << utf8Line;
        stream.flush();
        impl_->logger.push_record(std::move(record));
    }
}

}  // namespace detail
}  // namespace log
}  // namespace hf

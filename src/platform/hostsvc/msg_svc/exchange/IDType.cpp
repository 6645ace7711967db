#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include <boost/random/mersenne_twister.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_hash.hpp>

namespace hostsvc {
namespace msg_svc {
namespace exchange {

namespace {

using Generator = boost::uuids::basic_random_generator<boost::random::mt19937>;

// The default-constructed generator owns its engine and seeds it from the operating system's
// random source; one per thread keeps generation lock-free and the seeding to once a thread.
Generator& threadGenerator() {
    thread_local Generator generator;
    return generator;
}

}  // namespace

IDType::IDType() : uuid_(threadGenerator()()) {}

std::string IDType::toString() const {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * uuid_.size());
    for (const std::uint8_t byte : uuid_) {
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 0x0f]);
    }
    return text;
}

std::size_t IDType::hashValue() const noexcept {
    return boost::uuids::hash_value(uuid_);
}

}  // namespace exchange
}  // namespace msg_svc
}  // namespace hostsvc

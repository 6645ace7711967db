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

namespace {

template <class Char>
void appendHex(const boost::uuids::uuid& uuid, std::basic_string<Char>& out) {
    static const char digits[] = "0123456789abcdef";
    const std::size_t start = out.size();
    out.resize(start + 2 * uuid.size());
    Char* next = &out[start];
    for (const std::uint8_t byte : uuid) {
        *next++ = static_cast<Char>(digits[byte >> 4]);
        *next++ = static_cast<Char>(digits[byte & 0x0f]);
    }
}

}  // namespace

std::string IDType::toString() const {
    std::string text;
    appendHex(uuid_, text);
    return text;
}

void IDType::appendTo(std::wstring& out) const {
    appendHex(uuid_, out);
}

std::size_t IDType::hashValue() const noexcept {
    return boost::uuids::hash_value(uuid_);
}

}  // namespace exchange
}  // namespace msg_svc
}  // namespace hostsvc

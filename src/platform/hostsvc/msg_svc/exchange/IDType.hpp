// hostsvc::msg_svc::exchange::IDType: a random 128-bit identity. Every default-constructed id is
// new; its text is 32 lowercase hex digits, usable as part of a file name.
#pragma once

#include <boost/uuid/uuid.hpp>

#include <cstddef>
#include <functional>
#include <string>

namespace hostsvc {
namespace msg_svc {
namespace exchange {

class IDType {
public:
    // A new random id. Each thread draws from its own generator, seeded once from the
    // operating system, so making ids takes no lock.
    IDType();

    // The id as 32 lowercase hex digits, without separators.
    std::string toString() const;
    // Appends the same 32 digits to `out`, as wide text, without a temporary.
    void appendTo(std::wstring& out) const;

    // A hash of the id for unordered containers.
    std::size_t hashValue() const noexcept;

    friend bool operator==(const IDType& a, const IDType& b) noexcept { return a.uuid_ == b.uuid_; }
    friend bool operator!=(const IDType& a, const IDType& b) noexcept { return a.uuid_ != b.uuid_; }
    friend bool operator<(const IDType& a, const IDType& b) noexcept { return a.uuid_ < b.uuid_; }

private:
    boost::uuids::uuid uuid_;
};

}  // namespace exchange
}  // namespace msg_svc
}  // namespace hostsvc

namespace std {
template <>
struct hash<hostsvc::msg_svc::exchange::IDType> {
    std::size_t operator()(const hostsvc::msg_svc::exchange::IDType& id) const noexcept {
        return id.hashValue();
    }
};
}  // namespace std

// tvutil::contextmgr::InstanceID: the identity of one host runtime instance, ordered as an
// integer, and the three ids with a fixed meaning.
#pragma once

#include <cstddef>
#include <functional>

namespace tvutil {
namespace contextmgr {

class InstanceID {
public:
    constexpr explicit InstanceID(long long value) noexcept : value_(value) {}

    constexpr long long value() const noexcept { return value_; }

    friend constexpr bool operator==(InstanceID a, InstanceID b) noexcept {
        return a.value_ == b.value_;
    }
    friend constexpr bool operator!=(InstanceID a, InstanceID b) noexcept {
        return a.value_ != b.value_;
    }
    friend constexpr bool operator<(InstanceID a, InstanceID b) noexcept {
        return a.value_ < b.value_;
    }
    friend constexpr bool operator<=(InstanceID a, InstanceID b) noexcept {
        return a.value_ <= b.value_;
    }
    friend constexpr bool operator>(InstanceID a, InstanceID b) noexcept {
        return a.value_ > b.value_;
    }
    friend constexpr bool operator>=(InstanceID a, InstanceID b) noexcept {
        return a.value_ >= b.value_;
    }

private:
    long long value_;
};

// Constants, not objects built at run time: other libraries read them from their own static
// initialisers, in whatever order those run.

// The main instance; the smallest valid id. Every id below it names no single instance.
inline constexpr InstanceID BlessedInstanceID{0};
// No instance.
inline constexpr InstanceID UndefinedInstanceID{-1};
// All instances.
inline constexpr InstanceID AnyInstanceID{-2};

}  // namespace contextmgr
}  // namespace tvutil

namespace std {
template <>
struct hash<tvutil::contextmgr::InstanceID> {
    std::size_t operator()(tvutil::contextmgr::InstanceID id) const noexcept {
        return std::hash<long long>()(id.value());
    }
};
}  // namespace std

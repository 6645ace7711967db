// hostsvc::msg_svc::eventmgr::detail::DerivedTypeInformation<T>: the TypeInformation of event
// class T, answering T's chain of type names from T's own declarations.
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/TypeInformation.hpp>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {
namespace detail {

// The name `step` levels up from T. T declares `static const std::wstring& typeName()` and
// `using base_type = ...;` naming its direct base event class; BaseEvent ends every chain.
template <class T>
std::wstring typeNameAt(std::size_t step) {
    if (step == 0) {
        return T::typeName();
    }
    if constexpr (std::is_same<T, BaseEvent>::value) {
        throw std::out_of_range("eventmgr::BaseEvent has no base types.");
    } else {
        static_assert(std::is_base_of<typename T::base_type, T>::value,
                      "an event's base_type must name its base class");
        return typeNameAt<typename T::base_type>(step - 1);
    }
}

template <class T>
class DerivedTypeInformation : public TypeInformation {
public:
    using event_type = T;

    explicit DerivedTypeInformation(std::vector<std::wstring> tags = {})
        : TypeInformation(std::move(tags)) {}

    std::wstring getTypeName(std::size_t step) const override { return typeNameAt<T>(step); }
};

}  // namespace detail
}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc

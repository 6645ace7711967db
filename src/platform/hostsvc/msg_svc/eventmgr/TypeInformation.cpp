#include <platform/hostsvc/msg_svc/eventmgr/TypeInformation.hpp>

#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>

#include <typeinfo>
#include <utility>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {

TypeInformation::TypeInformation(std::vector<std::wstring> tags) : tags_(std::move(tags)) {}

TypeInformation::~TypeInformation() = default;

// The walk stops at BaseEvent's name rather than at the out_of_range that follows it, so an
// ordinary question costs no exception.
bool TypeInformation::isKindOf(const std::wstring& typeName) const {
    const std::wstring& last = BaseEvent::typeName();
    for (std::size_t step = 0;; ++step) {
        const std::wstring name = getTypeName(step);
        if (name == typeName) {
            return true;
        }
        if (name == last) {
            return false;
        }
    }
}

bool TypeInformation::equals(const TypeInformation& other) const {
    return tags_ == other.tags_;
}

bool operator==(const TypeInformation& a, const TypeInformation& b) {
    return typeid(a) == typeid(b) && a.equals(b);
}

bool operator!=(const TypeInformation& a, const TypeInformation& b) {
    return !(a == b);
}

}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc

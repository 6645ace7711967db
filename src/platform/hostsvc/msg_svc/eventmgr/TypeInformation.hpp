// hostsvc::msg_svc::eventmgr::TypeInformation: what kind an event is, as the chain of its
// type names up to BaseEvent, and the user tags that address it to particular listeners.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {

// Immutable once built: events share one TypeInformation between copies.
class TypeInformation {
public:
    virtual ~TypeInformation();

    // The name of the type `step` levels up the class chain: 0 is the type itself, 1 its base,
    // and so on. Every chain ends at "hostsvc::msg_svc::eventmgr::BaseEvent"; a step beyond
    // that throws std::out_of_range("eventmgr::BaseEvent has no base types.").
    virtual std::wstring getTypeName(std::size_t step) const = 0;

    // Whether `typeName` appears on the chain.
    bool isKindOf(const std::wstring& typeName) const;

    // Whether `other` carries the same tags, in the same order. operator== adds the check that
    // both are of the same dynamic type.
    virtual bool equals(const TypeInformation& other) const;

    const std::vector<std::wstring>& getTags() const { return tags_; }

protected:
    explicit TypeInformation(std::vector<std::wstring> tags);
    TypeInformation(const TypeInformation&) = default;
    TypeInformation& operator=(const TypeInformation&) = delete;

private:
    std::vector<std::wstring> tags_;
};

// Same dynamic type, and `a.equals(b)`.
bool operator==(const TypeInformation& a, const TypeInformation& b);
bool operator!=(const TypeInformation& a, const TypeInformation& b);

}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc

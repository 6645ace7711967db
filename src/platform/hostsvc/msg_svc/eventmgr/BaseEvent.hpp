// hostsvc::msg_svc::eventmgr::BaseEvent: the root of every event class that goes through an
// EventMgr. An event knows its kind and its tags through the TypeInformation it holds.
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/TypeInformation.hpp>

#include <boost/shared_ptr.hpp>

#include <ostream>
#include <string>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {

// A derived event class names itself and its base for detail::DerivedTypeInformation:
//
//     class MyEvent : public BaseEvent {
//     public:
//         using base_type = BaseEvent;
//         static const std::wstring& typeName();  // "my::MyEvent"
//         explicit MyEvent(const std::vector<std::wstring>& tags)
//             : BaseEvent(boost::make_shared<detail::DerivedTypeInformation<MyEvent>>(tags)) {}
//         MyEvent* clone() const override { return new MyEvent(*this); }
//     };
class BaseEvent {
public:
    // "hostsvc::msg_svc::eventmgr::BaseEvent".
    static const std::wstring& typeName();

    // `typeInformation` must not be null (std::invalid_argument).
    explicit BaseEvent(const boost::shared_ptr<TypeInformation>& typeInformation);

    virtual ~BaseEvent();

    // A new copy of the event, of its dynamic class, owned by the caller.
    virtual BaseEvent* clone() const;

    // Writes the event's type name.
    virtual void fillStream(std::wostream& out) const;

    // Whether the event can travel outside the process; a BaseEvent cannot.
    virtual bool canBeSerialized() const;

    bool isKindOf(const std::wstring& typeName) const;

    const boost::shared_ptr<TypeInformation>& getTypeInformation() const {
        return typeInformation_;
    }

    // Equal type informations (same dynamic type, same tags).
    bool operator==(const BaseEvent& other) const;
    bool operator!=(const BaseEvent& other) const { return !(*this == other); }

protected:
    // Copies share the type information, which is immutable.
    BaseEvent(const BaseEvent&) = default;
    BaseEvent& operator=(const BaseEvent&) = delete;

private:
    boost::shared_ptr<TypeInformation> typeInformation_;
};

}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc

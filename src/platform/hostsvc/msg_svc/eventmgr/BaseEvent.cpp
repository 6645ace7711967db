#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>

#include <stdexcept>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {

const std::wstring& BaseEvent::typeName() {
    static const std::wstring name = L"hostsvc::msg_svc::eventmgr::BaseEvent";
    return name;
}

BaseEvent::BaseEvent(const boost::shared_ptr<TypeInformation>& typeInformation)
    : typeInformation_(typeInformation) {
    if (!typeInformation_) {
        throw std::invalid_argument("eventmgr::BaseEvent needs a type information.");
    }
}

BaseEvent::~BaseEvent() = default;

BaseEvent* BaseEvent::clone() const {
    return new BaseEvent(*this);
}

void BaseEvent::fillStream(std::wostream& out) const {
    out << typeInformation_->getTypeName(0);
}

bool BaseEvent::canBeSerialized() const {
    return false;
}

bool BaseEvent::isKindOf(const std::wstring& typeName) const {
    return typeInformation_->isKindOf(typeName);
}

bool BaseEvent::operator==(const BaseEvent& other) const {
    return *typeInformation_ == *other.typeInformation_;
}

}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc

// Frames for the failure classes that share one shape of arguments and accessors: each holds
// its fields and offers the accessors under the names the classes expose. A class of such a
// shape names its text and inherits the constructor, e.g.
//   class NoSuchKey : public detail::NodeAndInputNameException<NoSuchKey> { ... };
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/exception/detail/CatalogException.hpp>

#include <string>

namespace settings {
namespace core {
namespace detail {

// A node and the name that was asked of it.
template <class Derived>
class NodeAndInputNameException : public CatalogException<Derived, exception::InternalException> {
public:
    NodeAndInputNameException(const ConstSettingsPtr& objectInvolved, const std::string& inputName)
        : objectInvolved_(objectInvolved), inputName_(inputName) {}

    const std::string& getInputName() const { return inputName_; }
    const ConstSettingsPtr& getObjectInvovled() const { return objectInvolved_; }

private:
    ConstSettingsPtr objectInvolved_;
    std::string inputName_;
};

// The one node an operation was asked of.
template <class Derived>
class InvolvedNodeException : public CatalogException<Derived, exception::InternalException> {
public:
    explicit InvolvedNodeException(const ConstSettingsPtr& objectInvolved)
        : objectInvolved_(objectInvolved) {}

    const ConstSettingsPtr& getObjectInvovled() const { return objectInvolved_; }

private:
    ConstSettingsPtr objectInvolved_;
};

// The one node whose state caused the failure; NodePtr is SettingsPtr where the raiser hands
// over a mutable node.
template <class Derived, class NodePtr = ConstSettingsPtr>
class CausingNodeException : public CatalogException<Derived, exception::InternalException> {
public:
    explicit CausingNodeException(const NodePtr& causingObject) : causingObject_(causingObject) {}

    const NodePtr& getCausingObject() const { return causingObject_; }

private:
    NodePtr causingObject_;
};

// A call of a function found by name in a package, with the text describing what went wrong.
template <class Derived>
class FunctionInvokingException : public CatalogException<Derived, exception::InternalException> {
public:
    FunctionInvokingException(const std::string& functionName, const std::string& packageName,
                              const std::wstring& errorMsg)
        : functionName_(functionName), packageName_(packageName), errorMsg_(errorMsg) {}

    const std::wstring& getErrorMsg() const { return errorMsg_; }
    const std::string& getFunctionName() const { return functionName_; }
    const std::string& getPackageName() const { return packageName_; }

private:
    std::string functionName_;
    std::string packageName_;
    std::wstring errorMsg_;
};

}  // namespace detail
}  // namespace core
}  // namespace settings
